#!/usr/bin/env bash
# Formats the C++ code by .clang-format, with the version of clang-format that Debian 12 has:
#   scripts/format.sh [FILE...]            formats; without files, all of src, tests and bench
#   scripts/format.sh --check [FILE...]    names the files that would change; exit status 1 then
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
need_packages "${format_packages[@]}"

formatter=clang-format-14
check=
if [ "${1:-}" = --check ]; then
  check=yes
  shift
fi
files=("$@")
if [ ${#files[@]} -eq 0 ]; then
  mapfile -d '' files < <(find src tests bench \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z)
fi

if [ -z "$check" ]; then
  printf '%s\0' "${files[@]}" | xargs -0 -n 50 -P "$(nproc)" "$formatter" -i
  exit
fi
status=0
differing=$(printf '%s\0' "${files[@]}" | xargs -0 -n 50 "$formatter" --dry-run 2>&1 |
  sed -n 's/^\([^:]*\):[0-9]*:[0-9]*: warning: code should be clang-formatted.*/\1/p' | sort -u) || status=$?
if [ -n "$differing" ]; then
  printf '%s\n' "$differing"
  echo "These files aren't formatted: scripts/format.sh does it." >&2
  exit 1
fi
exit "$status"
