#!/usr/bin/env bash
# The Tycho-2 star catalogue and its indexes: fetched from Debian's archive
# and built by orvane-databuild when the data folder lacks any of its files
# or holds files of an earlier revision of the builder.
set -euo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
sources="${ORVANE_SOURCES:-$top/data-sources}"

needed=(star/Tycho2/Tycho2.dat star/Tycho2/t2region.idx data/rgnbound.dat star/Tycho2/T2Id.idx
        star/Tycho2/hip.idx star/Tycho2/StarLabl.dat star/Tycho2/StarProp.dat)
# Raised whenever orvane-databuild writes different files from the same
# sources, so that a data folder built before is built again (2: Hipparcos V
# and B-V for the Hipparcos stars).
revision=2
stamp="$data/star/Tycho2/.databuild-revision"

missing=0
for f in "${needed[@]}"; do [[ -s "$data/$f" ]] || missing=1; done
if ((missing == 0)) && [[ "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "stars: the Tycho-2 files are in place"
  exit 0
fi
"$top/tools/fetch-sources.sh" "$sources"
"$bin/orvane-databuild" --sources "$sources" --out "$data"
echo "$revision" >"$stamp"
