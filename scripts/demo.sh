#!/usr/bin/env bash
# Builds Tessiva and runs its main job on a bundled demo: a synthetic speckle
# pair of a strip necking under tension becomes a data file, the correlation
# solver turns it into a result, the result's major strain is painted as a
# map and its mesh and strains are exported. Then the desktop program starts in that directory, where
# "Manage Jobs" runs the solver again and the files wait in the dialogs.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"

build="$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTESSIVA_BUILD_APP=ON -DTESSIVA_BUILD_TESTS=OFF
cmake --build "$build" -j "$(nproc)" --target tessiva tessiva-cli tessiva-solver

work="$build/demo"
mkdir -p "$work"
cli="$build/cli/tessiva-cli"
# The program finds its solver through correl.ini's ExePath, beside it.
ln -sf "$build/solver/tessiva-solver" "$work/tessiva-solver"
# The file dialogs open on the demo's files.
sed "/^\[PATH\]/a LastDir=$work" "$root/demo/correl.ini" > "$work/correl.ini"

echo "== Pictures: a 512 x 512 strip stretched 2 % with a neck peaking at 8 %"
"$cli" synth "$work" neck 0.02 0.06 80 --size 512 --noise 1
echo "== Setup: one area, a pattern every 8 pixels, a start point found by the start search"
"$cli" setup "$work" --data neck.don --grid 8
echo "== Correlation"
printf 'neck.don\n' > "$work/entre.dat"
"$work/tessiva-solver" "$work" "$work"
echo "== The major strain of the result as a colour map"
"$cli" map "$work/neck.res" --field "Epsilon I Major Hencky" --png "$work/neck-hencky.png"
echo "== Exports of the result's mesh and strains"
"$cli" export "$work/neck.res" --cfr "$work/neck.cfr"
"$cli" export "$work/neck.res" --unv "$work/neck.unv"
"$cli" export "$work/neck.res" --inp "$work/neck.inp"
echo "Written in $work: neck.don, neck.res, neck-hencky.png, neck.cfr, neck.unv, neck.inp"
echo "(truth.txt holds the exact field; \"Analyse\" on neck.res shows its maps in the desktop program)"

cd "$work"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display: starting Tessiva off-screen for a few seconds to check that it runs."
  status=0
  QT_QPA_PLATFORM=offscreen timeout 5 "$build/app/tessiva" || status=$?
  [ "$status" -eq 124 ] && { echo "Tessiva started and ran; run this script on a desktop to use it."; exit 0; }
  exit "$status"
fi
exec "$build/app/tessiva"
