#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer, UndefinedBehavior-
# Sanitizer) in build-fuzz/ and runs each for SECONDS (default 60) from its
# seed corpus in tests/fuzz/<target>/. Inputs a run finds new coverage with
# are kept in build-fuzz/corpus/<target>/ (not in the repository); a crash,
# leak, undefined behaviour or time-out stops the script with the input
# saved as build-fuzz/artifacts/<target>/crash-* and exit status 1. Add
# every input that once crashed to tests/fuzz/<target>/ as a regression.
#
#   tools/fuzz.sh [SECONDS] [TARGET...]
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-60}"
shift || true
build="$top/build-fuzz"

CC=clang CXX=clang++ cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORVANE_FUZZ=ON \
  -DORVANE_BUILD_GUI=OFF -DORVANE_BUILD_TESTS=OFF -DORVANE_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target orvane_fuzz_all -j"$(nproc)"

targets=("$@")
if ((${#targets[@]} == 0)); then
  for t in "$build"/fuzz/fuzz_*; do targets+=("$(basename "$t")"); done
fi

export ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
status=0
for t in "${targets[@]}"; do
  corpus="$build/corpus/$t"
  artifacts="$build/artifacts/$t"
  mkdir -p "$corpus" "$artifacts"
  # A run: every seed first, then mutation for the time budget. -timeout
  # makes an input that runs over 10 s a failure (a hang); -rss_limit_mb an
  # input that makes the reader take over 2 GB.
  echo "fuzz: $t for $seconds s"
  if ! "$build/fuzz/$t" "$corpus" "$top/tests/fuzz/$t" -max_total_time="$seconds" -timeout=10 \
       -rss_limit_mb=2048 -max_len=262144 -print_final_stats=1 -artifact_prefix="$artifacts/" \
       >"$artifacts/log.txt" 2>&1; then
    echo "fuzz: $t FAILED; the input and the report are in $artifacts/"
    tail -n 40 "$artifacts/log.txt"
    status=1
  else
    grep -E "stat::number_of_executed_units|stat::new_units_added" "$artifacts/log.txt" | sed "s/^/fuzz: $t /"
  fi
done
exit $status
