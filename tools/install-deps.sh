#!/usr/bin/env bash
# Installs the Debian packages Orvane needs to build, test and run, skipping
# those already present. Needs root (or sudo) only when something is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git xz-utils ca-certificates
  clang libclang-rt-14-dev
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
  libfreeimage-dev liberfa-dev zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  fonts-dejavu-core
  python3-sgp4
  nodejs npm
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

# node and npm may come from elsewhere than Debian; what matters is that they run.
if command -v node >/dev/null 2>&1 && command -v npm >/dev/null 2>&1; then
  filtered=()
  for p in "${missing[@]}"; do [[ "$p" == nodejs || "$p" == npm ]] || filtered+=("$p"); done
  missing=("${filtered[@]+"${filtered[@]}"}")
fi

if ((${#missing[@]} == 0)); then
  echo "install-deps: every package is present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [[ $(id -u) -ne 0 ]]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
