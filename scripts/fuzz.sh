#!/usr/bin/env bash
# Builds the fuzz targets of the file readers with clang's libFuzzer and runs
# one of them, or each in turn, for a number of seconds:
#
#   scripts/fuzz.sh [READER|all] [SECONDS] [LIBFUZZER OPTION...]
#
# READER is datafile, seqfile, sidefiles, entre, result or bmp (default all),
# SECONDS defaults to 60. The seeds of tests/fuzz/corpus/READER are copied to
# a working corpus under the build directory, which keeps growing from run to
# run; inputs that break a target are written beside it, in artifacts/READER.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${TESSIVA_FUZZ_BUILD:-$root/build-fuzz}"
readers=(datafile seqfile sidefiles entre result bmp)

which="${1:-all}"
seconds="${2:-60}"
shift $(( $# < 2 ? $# : 2 ))
if [[ "$which" == all ]]; then
  chosen=("${readers[@]}")
elif [[ " ${readers[*]} " == *" $which "* ]]; then
  chosen=("$which")
else
  echo "usage: $0 [${readers[*]// /|}|all] [SECONDS] [LIBFUZZER OPTION...]" >&2
  exit 2
fi

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTESSIVA_FUZZ=ON -DTESSIVA_BUILD_APP=OFF -DTESSIVA_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "${TESSIVA_FUZZ_JOBS:-2}" --target "${chosen[@]/#/fuzz_}"

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
work="$build/fuzz-work"
dictionary="$root/tests/fuzz/keyfile.dict"
failed=()
for reader in "${chosen[@]}"; do
  corpus="$work/corpus/$reader"
  artifacts="$work/artifacts/$reader"
  mkdir -p "$corpus" "$artifacts"
  cp -n "$root/tests/fuzz/corpus/$reader/"* "$corpus/"
  options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
           -artifact_prefix="$artifacts/")
  [[ "$reader" == datafile || "$reader" == sidefiles || "$reader" == result ]] && options+=(-dict="$dictionary")
  echo "== fuzz_$reader for $seconds s, corpus $corpus"
  if ! "$build/tests/fuzz/fuzz_$reader" "${options[@]}" "$@" "$corpus"; then
    failed+=("$reader")
  fi
done
if (( ${#failed[@]} )); then
  echo "broken: ${failed[*]} (inputs in $work/artifacts)" >&2
  exit 1
fi
