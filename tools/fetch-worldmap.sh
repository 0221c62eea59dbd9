#!/bin/sh
# Builds the ground-track page's world map, DEST/Data/WorldSmall.dat, from
# Natural Earth's 1:110m land outline as published in the npm package
# world-atlas (TopoJSON, public domain).
#
# usage: tools/fetch-worldmap.sh DEST [ORVANE_WORLDMAP]
#   DEST             the data folder (the map goes to DEST/Data/WorldSmall.dat)
#   ORVANE_WORLDMAP  the builder program (default: build/bin/orvane-worldmap)
# Needs npm (the package is fetched with "npm pack" into a scratch folder).
set -eu
if [ $# -lt 1 ]; then
    echo "usage: $0 DEST [path/to/orvane-worldmap]" >&2
    exit 2
fi
dest=$1
here=$(cd "$(dirname "$0")/.." && pwd)
builder=${2:-$here/build/bin/orvane-worldmap}
version=2.0.2
if [ ! -x "$builder" ]; then
    echo "$0: the builder $builder is missing (build the target orvane-worldmap)" >&2
    exit 1
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$scratch" && npm pack --silent "world-atlas@$version" >/dev/null)
tar -xzf "$scratch/world-atlas-$version.tgz" -C "$scratch" package/land-110m.json
mkdir -p "$dest/Data"
"$builder" "$scratch/package/land-110m.json" "$dest/Data/WorldSmall.dat"
