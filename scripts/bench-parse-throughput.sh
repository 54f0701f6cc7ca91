#!/usr/bin/env bash
# Times `bxq parse --json -` on a take-off corpus (texts repeat, as members share sections) and
# on a corpus of distinct texts, and prints texts per second for each (best of RUNS runs).
# Usage: scripts/bench-parse-throughput.sh [COUNT]   (BUILD_DIR, RUNS override the defaults)
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
build="${BUILD_DIR:-$root/build}"
count="${1:-100000}"
runs="${RUNS:-3}"
bxq="$build/bin/bxq"
bench="$build/bin/bxq-bench"
for program in "$bxq" "$bench"; do
  [ -x "$program" ] || { echo "missing $program: build with cmake --build --preset default" >&2; exit 1; }
done

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
"$bench" --write-corpus "$work/takeoff.txt" "$count"
"$bench" --write-distinct-corpus "$work/distinct.txt" "$count"

# Best wall time of $runs runs, in seconds.
best_time() {
  local corpus="$1" best="" start end elapsed
  for _ in $(seq "$runs"); do
    start=$(date +%s.%N)
    "$bxq" parse --json - <"$corpus" >"$work/out.jsonl"
    end=$(date +%s.%N)
    elapsed=$(awk -v s="$start" -v e="$end" 'BEGIN { printf "%.6f", e - s }')
    if [ -z "$best" ] || awk -v a="$elapsed" -v b="$best" 'BEGIN { exit !(a < b) }'; then best="$elapsed"; fi
  done
  lines=$(wc -l <"$work/out.jsonl")
  [ "$lines" -eq "$count" ] || { echo "bxq wrote $lines lines for $count texts" >&2; exit 1; }
  echo "$best"
}

report() {
  local name="$1" corpus="$2" distinct seconds
  distinct=$(LC_ALL=C sort -u "$corpus" | wc -l)
  seconds=$(best_time "$corpus")
  awk -v n="$name" -v c="$count" -v d="$distinct" -v s="$seconds" \
    'BEGIN { printf "%-9s %7d texts (%6d distinct)  %8.3f s  %10.0f texts/s\n", n, c, d, s, c / s }'
}

report take-off "$work/takeoff.txt"
report distinct "$work/distinct.txt"
