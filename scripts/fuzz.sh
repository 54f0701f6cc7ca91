#!/usr/bin/env bash
# Fuzzes the section-text parser, the outline-text parser and the database openers with clang's
# libFuzzer under AddressSanitizer and UndefinedBehaviorSanitizer, SECONDS (default 60) per target.
# Each target starts from its seeds (tests/fuzz/corpus, the shipped databases) and keeps what it
# learns in build-fuzz/corpus/; an input that crashes or hangs is saved in build-fuzz/findings/
# and fails the run: copy it into tests/fuzz/regressions/TARGET/ once fixed, so that the test
# suites replay it for ever. Long runs: scripts/fuzz.sh 3600
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
seconds="${1:-60}"
scripts/install-deps.sh
cmake --preset fuzz >/dev/null
ASAN_OPTIONS=detect_leaks=0 cmake --build --preset fuzz

export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
failed=0
for target in section_text outline_text database; do
  corpus="build-fuzz/corpus/$target"
  findings="build-fuzz/findings/$target"
  mkdir -p "$corpus" "$findings"
  if [ "$target" = database ]; then
    cp -n build-fuzz/data/*.KDB "$corpus/" 2>/dev/null || true
  else
    cp -n "tests/fuzz/corpus/$target/"* "$corpus/"
  fi
  log="build-fuzz/fuzz-$target.log"
  # Qt's and the kernel's process-wide singletons are not leaks worth a finding.
  if build-fuzz/bin/fuzz_"$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -detect_leaks=0 \
      -max_len=8192 -print_final_stats=1 -artifact_prefix="$findings/" "$corpus" >"$log" 2>&1; then
    outcome="no finding"
  else
    outcome="FINDING (see $log and $findings/)"
    failed=1
  fi
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo "?")
  echo "fuzz $target: $runs executions in ${seconds}s, $outcome"
done
exit $failed
