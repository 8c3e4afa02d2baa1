#!/usr/bin/env bash
# Builds the fuzz targets and runs each for so many seconds:
#   scripts/fuzz.sh [SECONDS [TARGET...]]    60 seconds and all targets when not said
# Prints executions, corpus and how each ended; what it found lies in build/fuzz/findings, the
# grown corpus in build/fuzz/corpus. ZOV_FUZZ_SEEDS names a folder of more inputs, in a folder for
# each target. The exit status is 1 when something was found.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
need_packages "${build_packages[@]}" "${fuzz_packages[@]}"

seconds=${1:-60}
targets=("${@:2}")
if [ ${#targets[@]} -eq 0 ]; then
  for file in tests/fuzz/*_fuzz.cpp; do targets+=("$(basename "$file" _fuzz.cpp)"); done
fi
build_preset fuzz "${targets[@]/%/_fuzz}"

# Databases and homes are made and thrown away thousands of times.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
# The drivers' own crash handler stands aside; what the process keeps to its end is no leak.
export ASAN_OPTIONS=detect_leaks=0:handle_segv=2:handle_abort=2 UBSAN_OPTIONS=print_stacktrace=1
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8

found=0
for target in "${targets[@]}"; do
  findings=build/fuzz/findings/$target
  corpus=build/fuzz/corpus/$target
  mkdir -p "$findings" "$corpus"
  kind=$target
  [ "$target" = load ] && kind=tsql  # both read scripts
  inputs=("$corpus" "tests/fuzz/corpus/$kind")
  [ -n "${ZOV_FUZZ_SEEDS:-}" ] && [ -d "$ZOV_FUZZ_SEEDS/$target" ] && inputs+=("$ZOV_FUZZ_SEEDS/$target")
  log=build/fuzz/$target.log
  status=0
  "build/fuzz/tests/fuzz/${target}_fuzz" -max_total_time="$seconds" -entropic=0 -max_len=8192 -timeout=20 \
    -rss_limit_mb=3000 -dict="tests/fuzz/dictionaries/$kind.dict" -print_final_stats=1 \
    -artifact_prefix="$findings/" "${inputs[@]}" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  printf '%-9s %10s executions, corpus of %s, exit status %d\n' \
    "$target" "${runs:-no}" "$(find "$corpus" -type f | wc -l)" "$status"
  if [ "$status" -ne 0 ]; then
    found=1
    grep -E 'BROKEN PROMISE|runtime error|SUMMARY|Test unit written' "$log" | head -n 5 || tail -n 5 "$log"
  fi
done
exit $found
