#!/usr/bin/env bash
# Builds the three programs in Release and makes the Debian package
# build-package/tessiva_<version>_<arch>.deb; then checks that the packaged
# tessiva-cli runs from the package's own tree.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"

build="$root/build-package"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTESSIVA_BUILD_APP=ON -DTESSIVA_BUILD_TESTS=OFF \
  -DTESSIVA_BUILD_BENCH=OFF -DCMAKE_INSTALL_PREFIX=/usr
cmake --build "$build" -j "$(nproc)" --target tessiva tessiva-cli tessiva-solver
(cd "$build" && cpack -G DEB >/dev/null)
deb="$(ls "$build"/tessiva_*.deb)"

tree="$(mktemp -d)"
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$deb" "$tree"
"$tree/usr/bin/tessiva-cli" --help >/dev/null
echo "Package: $deb"
