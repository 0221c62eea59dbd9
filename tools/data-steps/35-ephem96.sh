#!/usr/bin/env bash
# Data step: the compact fitted ephemeris Data/Ephem96.dat, fitted by
# "orvane-databuild --ephem96" to the full VSOP87D series that the planets
# step (30-planets.sh) wrote into the data folder, and to the program's
# built-in Pluto series. The builder checks the fit on a dense grid and fails
# when any body's geocentric direction departs from its source by more than
# 0.05 arcsec; nothing is replaced then. Needs no download.
set -euo pipefail
data="$1"
bin="$2"
# Raised whenever orvane-databuild fits differently, so that a data folder
# built before is built again; the planets step's stamp is part of ours.
revision=1
stamp="$data/Data/.ephem96-revision"
want="$revision/$(cat "$data/Data/.planets-revision" 2>/dev/null || echo none)"

if [[ -s "$data/Data/Ephem96.dat" && "$(cat "$stamp" 2>/dev/null)" == "$want" ]]; then
  echo "ephem96: Data/Ephem96.dat is in place"
  exit 0
fi
if [[ ! -s "$data/Data/VSOP87.idx" || ! -s "$data/Data/VSOP87.dat" ]]; then
  echo "ephem96: the VSOP87 files are missing from $data/Data (data step 30-planets)" >&2
  exit 1
fi
"$bin/orvane-databuild" --ephem96 --out "$data"
echo "$want" >"$stamp"
