#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer and
# runs the whole test suite.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"

build="$root/build-test"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTESSIVA_SANITIZE=ON -DTESSIVA_BUILD_APP=ON -DTESSIVA_BUILD_TESTS=ON -DTESSIVA_BUILD_BENCH=ON
cmake --build "$build" -j "$(nproc)"

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen
cd "$build"
ctest --output-on-failure -j "$(nproc)"
