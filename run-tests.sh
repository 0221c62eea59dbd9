#!/usr/bin/env bash
# Builds Orvane and runs its tests. Tests that need the built catalogues or
# the shared reference data skip with a message when those are absent.
set -euo pipefail
cd "$(dirname "$0")"

tools/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo ${ORVANE_CMAKE_ARGS:-}
cmake --build build -j"$(nproc)"
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" "$@"
