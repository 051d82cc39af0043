#!/usr/bin/env bash
# Remakes the README's pictures in docs/pictures from the demo: the setup
# window with an area, its grid and a start point, the analysis window with a
# strain map, and the PNG map tessiva-cli writes. Everything is rendered off
# any screen, so the pictures show the program as it is built now.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"

build="$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTESSIVA_BUILD_APP=ON -DTESSIVA_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j "$(nproc)" --target tessiva-cli tessiva-solver tessiva-readme-pictures

demo="$(mktemp -d)"
trap 'rm -rf "$demo"' EXIT
TESSIVA_CLI="$build/cli/tessiva-cli" TESSIVA_SOLVER="$build/solver/tessiva-solver" TESSIVA_APP=/nonexistent \
  TESSIVA_DEMO_INI="$root/demo/correl.ini" "$root/scripts/run-demo.sh" "$demo" >/dev/null

out="$root/docs/pictures"
mkdir -p "$out"
QT_QPA_PLATFORM=offscreen "$build/tools/tessiva-readme-pictures" "$demo" "$out" 2>/dev/null
cp "$demo/neck-hencky.png" "$out/map-major-strain.png"
echo "Wrote $out/map-major-strain.png"
