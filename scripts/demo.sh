#!/usr/bin/env bash
# Builds Tessiva and runs its main job on the bundled demo (scripts/run-demo.sh)
# in build/demo, then starts the desktop program there.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"

build="$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTESSIVA_BUILD_APP=ON -DTESSIVA_BUILD_TESTS=OFF
cmake --build "$build" -j "$(nproc)" --target tessiva tessiva-cli tessiva-solver

TESSIVA_CLI="$build/cli/tessiva-cli" TESSIVA_SOLVER="$build/solver/tessiva-solver" TESSIVA_APP="$build/app/tessiva" \
  TESSIVA_DEMO_INI="$root/demo/correl.ini" exec "$root/scripts/run-demo.sh" "$build/demo"
