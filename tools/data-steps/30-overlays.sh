#!/usr/bin/env bash
# The map overlays that come with the program (the Milky Way's outline from
# kstars-data's milkyway.dat, the galactic equator) and the default overlay
# list overlay.dat naming them, inactive: written by orvane-databuild
# --overlays when the data folder lacks them or holds an earlier revision.
set -euo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
sources="${ORVANE_SOURCES:-$top/data-sources}"

needed=(overlay.dat overlays/milkyway.ovl overlays/galactic.ovl)
# Raised whenever the builder writes different overlays from the same sources.
revision=1
stamp="$data/overlays/.overlays-revision"

missing=0
for f in "${needed[@]}"; do [[ -s "$data/$f" ]] || missing=1; done
if ((missing == 0)) && [[ "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "overlays: the overlay files are in place"
  exit 0
fi
if [[ ! -f "$sources/kstars-data/usr/share/kstars/milkyway.dat" ]]; then
  "$top/tools/fetch-sources.sh" "$sources"
fi
"$bin/orvane-databuild" --overlays --sources "$sources" --out "$data"
mkdir -p "$data/overlays"
echo "$revision" >"$stamp"
