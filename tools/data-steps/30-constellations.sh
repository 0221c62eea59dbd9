#!/usr/bin/env bash
# The constellation files (figures, name places, names, boundaries): built by
# orvane-databuild --constellations from stellarium-data and kstars-data,
# fetched from Debian's archive, when the data folder lacks any of them or
# holds files of an earlier revision of the builder.
set -euo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
sources="${ORVANE_SOURCES:-$top/data-sources}"

needed=(star/Tycho2/ConstFig.dat data/conname.dat data/constnam.dat data/conbound.dat)
# Raised whenever the builder writes different constellation files from the
# same sources.
revision=1
stamp="$data/data/.constellations-revision"

missing=0
for f in "${needed[@]}"; do [[ -s "$data/$f" ]] || missing=1; done
if ((missing == 0)) && [[ "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "constellations: the constellation files are in place"
  exit 0
fi
"$top/tools/fetch-sources.sh" "$sources"
"$bin/orvane-databuild" --sources "$sources" --out "$data" --constellations
mkdir -p "$data/data"
echo "$revision" >"$stamp"
