#!/usr/bin/env bash
# Data step: the VSOP87 planetary series, Data/VSOP87.idx and Data/VSOP87.dat,
# built by "orvane-databuild --planets" from the full VSOP87D series carried by
# the npm package astronomia (MIT licence; the series are Bretagnon &
# Francou's, CDS VI/81). The package is fetched with "npm pack" through npm's
# own configuration into a scratch folder and removed afterwards.
set -euo pipefail
data="$1"
bin="$2"
version=4.2.0
# Raised whenever orvane-databuild writes different planet files from the
# same package, so that a data folder built before is built again.
revision=1
stamp="$data/Data/.planets-revision"

if [[ -s "$data/Data/VSOP87.idx" && -s "$data/Data/VSOP87.dat" &&
      "$(cat "$stamp" 2>/dev/null)" == "$version/$revision" ]]; then
  echo "planets: Data/VSOP87.idx and Data/VSOP87.dat are in place"
  exit 0
fi
if ! command -v npm >/dev/null; then
  echo "planets: npm is needed to fetch the VSOP87 series (package astronomia@$version)" >&2
  exit 1
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$scratch" && npm pack --silent "astronomia@$version" >/dev/null)
tar -xzf "$scratch/astronomia-$version.tgz" -C "$scratch" package/data
"$bin/orvane-databuild" --planets "$scratch/package" --out "$data"
echo "$version/$revision" >"$stamp"
