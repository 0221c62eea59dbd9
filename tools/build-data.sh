#!/usr/bin/env bash
# Builds the data folder given as the first argument (default build/data)
# from public sources, skipping what is already there. Every step is
# idempotent: run it again after a failure.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
top="$(cd "$here/.." && pwd)"
data="${1:-$top/build/data}"
bin="${ORVANE_BIN:-$top/build/bin}"
mkdir -p "$data"
echo "build-data: data folder $data"
for step in "$here"/data-steps/*.sh; do
  [[ -e "$step" ]] || continue
  bash "$step" "$data" "$bin"
done
echo "build-data: done"
