#!/usr/bin/env bash
# The deep-sky catalogues (revised NGC/IC with Messier and Caldwell numbers
# and common names, the PGC galaxies of LEDA, the Strasbourg planetary
# nebulae): built by orvane-databuild --deepsky from stellarium-data's
# deep-sky catalogue, fetched from Debian's archive by tools/fetch-sources.sh,
# when the data folder lacks any of the files or holds an earlier revision.
# The Saguaro Astronomy Club database is in no Debian package: a user who
# places the club's SAC_DeepSky_Ver81_QCQ.TXT in data-sources/sac/ gets the
# SAC catalogue built beside the others; without it there is none.
set -euo pipefail
data="$1"
bin="$2"
top="$(cd "$(dirname "$0")/../.." && pwd)"
sources="${ORVANE_SOURCES:-$top/data-sources}"

needed=(deepsky/ngcic/ngcic.dat deepsky/ngcic/ngcicnam.idx deepsky/ngcic/ngcicbnd.dat
        deepsky/LEDA/LEDA.dat deepsky/LEDA/LEDAbnd.dat deepsky/LEDA/LEDAName.idx deepsky/LEDA/LEDAName.dat
        deepsky/Strasbrg/pln.dat deepsky/Strasbrg/plnbnd.dat CatExt.dat)
# Raised whenever orvane-databuild --deepsky writes different files from the
# same sources.
revision=2
stamp="$data/deepsky/.databuild-revision"

missing=0
for f in "${needed[@]}"; do [[ -s "$data/$f" ]] || missing=1; done
if compgen -G "$sources/sac/[Ss][Aa][Cc]*_[Qq][Cc][Qq].[Tt][Xx][Tt]" >/dev/null && [[ ! -s "$data/deepsky/sac/sacsupp.dat" ]]; then
  missing=1
fi
if ((missing == 0)) && [[ "$(cat "$stamp" 2>/dev/null)" == "$revision" ]]; then
  echo "deepsky: the deep-sky files are in place"
  exit 0
fi
if [[ ! -f "$sources/stellarium-data/usr/share/stellarium/nebulae/default/catalog.dat" ]]; then
  "$top/tools/fetch-sources.sh" "$sources"
fi
"$bin/orvane-databuild" --deepsky --sources "$sources" --out "$data"
echo "$revision" >"$stamp"
