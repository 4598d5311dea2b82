#!/usr/bin/env bash
# Runs one fuzz target, beginning with its kept inputs.
#
#   tests/fuzz/run.sh NAME SECONDS
#
# Exit code 77 when the target has not been built, which takes clang. An input that breaks something
# is left in build/fuzz/findings; mend the fault and keep the input in tests/fuzz/corpus/NAME.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
name=$1
seconds=$2
program=$root/build/fuzz/fuzz_$name
if [[ ! -x $program ]]; then
  echo "skipped: $name has not been built; the fuzz targets need clang"
  exit 77
fi

new=$(mktemp -d)
trap 'rm -rf "$new"' EXIT
mkdir -p "$root/build/fuzz/findings"
# Every kept input, however little time there is, and then new ones.
"$program" -runs=0 "$root/tests/fuzz/corpus/$name" 2>&1 | tail -n 2
"$program" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=65536 -verbosity=0 \
  -print_final_stats=1 -artifact_prefix="$root/build/fuzz/findings/$name-" \
  "$new" "$root/tests/fuzz/corpus/$name"
