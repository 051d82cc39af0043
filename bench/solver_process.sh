#!/usr/bin/env bash
# The whole tessiva-solver process on the strict job users run: a synthetic
# speckle pair strained 1 % across and -0.5 % down with grey-level noise 1,
# a pattern every 4 pixels, 21 x 21 subsets, stop at 0.001 pixel. Each solver
# given runs at 1 and at 2 threads, the solvers and thread counts interleaved
# round after round, so that a load that comes and goes on a shared machine
# falls on all of them alike. Prints each run's wall time and processor time
# (user and system, all threads), then their medians, the peak memory of one
# more run and the speed-up from 1 to 2 threads; with two solvers, the
# largest difference of their results.
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

# Wall and processor time (user and system, all threads) from the shell's
# own timer, which adds no process of its own to the run it times.
TIMEFORMAT="%3R %3U %3S"
: > "$dir/times"
: > "$dir/peaks"
echo "solver threads round wall_s cpu_s"
for round in $(seq "$rounds"); do
  for threads in 1 2; do
    for i in "${!solvers[@]}"; do
      times=$( { time TESSIVA_SOLVER_THREADS=$threads "${solvers[$i]}" "$dir/run$i" "$dir/run$i" >/dev/null 2>"$dir/stderr"; } 2>&1)
      read -r wall user system <<< "$times"
      echo "$i $threads $round $wall $(awk -v u="$user" -v s="$system" 'BEGIN { print u + s }')" | tee -a "$dir/times"
    done
  done
done
# Peak memory, in one more run of each.
for threads in 1 2; do
  for i in "${!solvers[@]}"; do
    TESSIVA_SOLVER_THREADS=$threads /usr/bin/time -f "%M" -o "$dir/rss" "${solvers[$i]}" "$dir/run$i" "$dir/run$i" >/dev/null
    echo "$i $threads $(($(cat "$dir/rss") / 1024))" >> "$dir/peaks"
  done
done

# The median of column $3 of the runs of solver $1 at $2 threads.
median() {
  awk -v s="$1" -v t="$2" -v c="$3" '$1 == s && $2 == t { print $c }' "$dir/times" | sort -n |
    awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}
peak() { awk -v s="$1" -v t="$2" '$1 == s && $2 == t { print $3 }' "$dir/peaks"; }
echo "median wall and processor time, and peak memory, per solver and thread count:"
for i in "${!solvers[@]}"; do
  for threads in 1 2; do
    echo "${solvers[$i]} (solver $i) threads $threads: $(median "$i" "$threads" 4) s," \
      "$(median "$i" "$threads" 5) s of processor, $(peak "$i" "$threads") MB"
  done
  # Each round's two runs follow each other, so the ratio within a round
  # suffers least from a load that drifts over the whole measurement.
  perRound=$(awk -v s="$i" '$1 == s { w[$3, $2] = $4; rounds[$3] = 1 }
    END { for (r in rounds) if (w[r, 2] > 0) print w[r, 1] / w[r, 2] }' "$dir/times" | sort -n |
    awk '{ v[NR] = $1 } END { printf "%.2f", v[int((NR + 1) / 2)] }')
  echo "${solvers[$i]} (solver $i) from 1 to 2 threads: $(awk -v a="$(median "$i" 1 4)" -v b="$(median "$i" 2 4)" \
    'BEGIN { printf "%.2f", a / b }') times as fast (median of the rounds' own ratios: $perRound)"
done
if [ ${#solvers[@]} -ge 2 ]; then
  python3 "$here/compare_results.py" "$dir/run0/strict.res" "$dir/run1/strict.res"
fi
echo "job and results in $dir"
