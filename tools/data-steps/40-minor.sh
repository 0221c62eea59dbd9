#!/usr/bin/env bash
# The default comet and asteroid catalogues ("asteroid.cat", "comet.cat"):
# built by orvane-databuild --minor from kstars-data's element lists (the JPL
# Small-Body Database's asteroids.dat and the Minor Planet Center's
# cometels.json.gz), fetched from Debian's archive by tools/fetch-sources.sh,
# when the data folder lacks either file or holds an earlier revision.
set -euo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
sources="${ORVANE_SOURCES:-$top/data-sources}"

# Raised whenever orvane-databuild --minor writes different files from the
# same sources.
revision=1
stamp="$data/.minor-databuild-revision"

if [[ -s "$data/asteroid.cat" && -s "$data/comet.cat" && "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "minor: the comet and asteroid catalogues are in place"
  exit 0
fi
kstars="$sources/kstars-data/usr/share/kstars"
if [[ ! -f "$kstars/asteroids.dat" || ! -f "$kstars/cometels.json.gz" ]]; then
  "$top/tools/fetch-sources.sh" "$sources"
fi
"$bin/orvane-databuild" --minor --sources "$sources" --out "$data"
echo "$revision" >"$stamp"
