#!/usr/bin/env bash
# The whole tessiva-solver process on the strict job users run: a synthetic
# speckle pair strained 1 % across and -0.5 % down with grey-level noise 1,
# a pattern every 4 pixels, 21 x 21 subsets, stop at 0.001 pixel. Each solver
# given runs at 1 and at 2 threads, the solvers and thread counts interleaved
# round after round, so that a load that comes and goes on a shared machine
# falls on all of them alike. Prints each run's wall time and peak memory,
# then the medians; with two solvers, the largest difference of their results.
#
#   bench/solver_process.sh CLI SOLVER [OTHER_SOLVER] [--rounds N] [--size N] [--grid N] [--dir DIR]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
rounds=3 size=1024 grid=4 dir=""
solvers=()
cli="$1"
shift
while [ $# -gt 0 ]; do
  case "$1" in
    --rounds) rounds="$2"; shift 2 ;;
    --size) size="$2"; shift 2 ;;
    --grid) grid="$2"; shift 2 ;;
    --dir) dir="$2"; shift 2 ;;
    *) solvers+=("$(realpath "$1")"); shift ;;
  esac
done
[ ${#solvers[@]} -ge 1 ] || { echo "usage: $0 CLI SOLVER [OTHER_SOLVER] [--rounds N] [--size N] [--grid N] [--dir DIR]" >&2; exit 2; }
dir="${dir:-$(mktemp -d)}"
mkdir -p "$dir/job"

"$cli" synth "$dir/job" strain 0.01 -0.005 --size "$size" --noise 1 >/dev/null
"$cli" setup "$dir/job" --data strict.don --grid "$grid" --pattern 21 21 >/dev/null
sed -i 's/^\(\s*Precision=\).*/\11000/' "$dir/job/strict.don"
printf 'strict.don\n' > "$dir/job/entre.dat"
# One copy of the job per solver, so that each keeps its own result.
for i in "${!solvers[@]}"; do
  rm -rf "$dir/run$i" && cp -r "$dir/job" "$dir/run$i"
done

echo "solver threads round wall_s peak_rss_mb"
for round in $(seq "$rounds"); do
  for threads in 1 2; do
    for i in "${!solvers[@]}"; do
      TESSIVA_SOLVER_THREADS=$threads /usr/bin/time -f "%e %M" -o "$dir/time" \
        "${solvers[$i]}" "$dir/run$i" "$dir/run$i" >/dev/null
      read -r wall rss < "$dir/time"
      echo "$i $threads $round $wall $((rss / 1024))" | tee -a "$dir/times"
    done
  done
done

echo "median wall time and peak memory, per solver and thread count:"
for i in "${!solvers[@]}"; do
  for threads in 1 2; do
    awk -v s="$i" -v t="$threads" '$1 == s && $2 == t { print $4, $5 }' "$dir/times" | sort -n |
      awk -v s="$i" -v t="$threads" -v name="${solvers[$i]}" \
        '{ w[NR] = $1; m[NR] = $2 } END { printf "%s (solver %d) threads %d: %.2f s, %d MB\n", name, s, t, w[int((NR + 1) / 2)], m[int((NR + 1) / 2)] }'
  done
done
if [ ${#solvers[@]} -ge 2 ]; then
  python3 "$here/compare_results.py" "$dir/run0/strict.res" "$dir/run1/strict.res"
fi
echo "job and results in $dir"
