#!/usr/bin/env bash
# Data step: the ground-track page's world map, Data/WorldSmall.dat, built by
# orvane-worldmap from the npm package world-atlas (tools/fetch-worldmap.sh).
# The map is optional: without npm or the builder the step says so and the
# ground-track page simply has no map.
set -uo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
if [[ -f "$data/Data/WorldSmall.dat" ]]; then
  echo "worldmap: Data/WorldSmall.dat present"
  exit 0
fi
if ! "$top/tools/fetch-worldmap.sh" "$data" "$bin/orvane-worldmap"; then
  echo "worldmap: could not build Data/WorldSmall.dat (needs npm and orvane-worldmap); skipped" >&2
fi
exit 0
