#!/usr/bin/env bash
# Builds Orvane and everything it needs — Debian packages, the program, the
# star catalogue and other data — and starts it.
set -euo pipefail
cd "$(dirname "$0")"

tools/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$(nproc)"
tools/build-data.sh build/data

if [[ -x build/bin/orvane ]]; then
  exec build/bin/orvane "$@"
fi
# Without the desktop program, describe the default map.
exec build/bin/orvane-cli map new --out build/Default.ovm --title "Default map"
