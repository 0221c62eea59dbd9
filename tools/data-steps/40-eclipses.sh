#!/usr/bin/env bash
# Data step: the eclipse tables data/solar1-5.dat and data/lunar1-5.dat,
# every solar and lunar eclipse of -1999 ... +3000 computed by
# "orvane-databuild --eclipses" from our own solar and lunar theory (the
# VSOP87 files of the planets step and the built-in lunar series). Nothing is
# fetched.
set -euo pipefail
data="$1"
bin="$2"
# Raised whenever the eclipse computation changes, so that tables built
# before are built again.
revision=3
stamp="$data/data/.eclipses-revision"

have_all=1
for kind in solar lunar; do
  for n in 1 2 3 4 5; do
    [[ -s "$data/data/$kind$n.dat" ]] || have_all=0
  done
done
if [[ $have_all == 1 && "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "eclipses: data/solar1-5.dat and data/lunar1-5.dat are in place"
  exit 0
fi
ORVANE_DATA="$data" "$bin/orvane-databuild" --eclipses --out "$data"
mkdir -p "$data/data"
echo "$revision" >"$stamp"
