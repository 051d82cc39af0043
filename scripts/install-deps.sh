#!/usr/bin/env bash
# Installs the Debian packages Tessiva builds and tests with, when any is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
  libtiff-dev libpng-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  calculix-ccx python3-meshio gmsh
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
