#!/usr/bin/env bash
# Tessiva's main job on its demo, in the directory DIR (default: ./tessiva-demo):
# a synthetic speckle pair of a strip necking under tension becomes a data
# file, the correlation solver turns it into a result, the result's major
# strain is painted as a map and its mesh and strains are exported. Then the
# desktop program starts in that directory, where "Manage Jobs" runs the
# solver again and the files wait in the dialogs.
#
# Installed as tessiva-demo, it uses the programs beside it; scripts/demo.sh
# runs it on a build tree by naming the programs in TESSIVA_CLI,
# TESSIVA_SOLVER, TESSIVA_APP and the demo settings in TESSIVA_DEMO_INI.
set -euo pipefail
here="$(cd "$(dirname "$(readlink -f "$0")")" && pwd)"
cli="${TESSIVA_CLI:-$here/tessiva-cli}"
solver="${TESSIVA_SOLVER:-$here/tessiva-solver}"
app="${TESSIVA_APP:-$here/tessiva}"
ini="${TESSIVA_DEMO_INI:-$here/../share/tessiva/demo/correl.ini}"
# The work happens in the demo's directory: paths given relative to here must hold there too.
cli="$(realpath -m "$cli")" solver="$(realpath -m "$solver")" app="$(realpath -m "$app")" ini="$(realpath -m "$ini")"
for needed in "$cli" "$solver" "$ini"; do
  [ -e "$needed" ] || { echo "tessiva-demo: $needed is missing; is Tessiva installed?" >&2; exit 1; }
done

work="$(mkdir -p "${1:-tessiva-demo}" && cd "${1:-tessiva-demo}" && pwd)"
# The program finds its solver through correl.ini's ExePath, beside it.
ln -sf "$solver" "$work/tessiva-solver"
# The file dialogs open on the demo's files.
sed "/^\[PATH\]/a LastDir=$work" "$ini" > "$work/correl.ini"

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
for format in cfr unv inp vtu csv; do
  "$cli" export "$work/neck.res" "--$format" "$work/neck.$format"
done
echo "Written in $work: neck.don, neck.res, neck-hencky.png, neck.cfr, neck.unv, neck.inp, neck.vtu, neck.csv"
echo "(truth.txt holds the exact field; \"Analyse\" on neck.res shows its maps in the desktop program)"

[ -x "$app" ] || exit 0
cd "$work"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display: starting Tessiva off-screen for a few seconds to check that it runs."
  status=0
  QT_QPA_PLATFORM=offscreen timeout 5 "$app" || status=$?
  [ "$status" -eq 124 ] && { echo "Tessiva started and ran; run this on a desktop to use it."; exit 0; }
  exit "$status"
fi
exec "$app"
