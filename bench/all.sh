#!/usr/bin/env bash
# Builds what the benchmarks take and runs all of them, one after the other. The machine should have nothing
# else to do. Those of hscope.exe are skipped, by name, where it can't be built or run.
#
# Exit code 1 when one of them is over what it may be; docs/performance.md tells their figures.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/build_targets.sh
source tools/build_targets.sh

status=0
# run TITLE COMMAND...
run() {
  printf '\n== %s\n' "$1"
  shift
  "$@" || {
    status=1
    echo "over what it may be, or failed"
  }
}

tools/setup.sh need native
build_targets linux hscope
run "Runs of the Linux program" python3 bench/linux_costs.py build/linux/hscope 15
run "Registry exports of 50 MB" python3 bench/reg_exports.py build/linux/hscope
if tools/setup.sh has cross && tools/setup.sh has wine; then
  build_targets windows hscope hscope_counted sample scan_times
  export HSCOPE_EXE=$PWD/build/windows/hscope.exe HOSTSCOPE_TIME_LIMIT=900
  run "Scans of the exe" tools/under_wine.sh build/windows/scan_times.exe 5
  run "Memory of the exe" python3 bench/memory.py build/windows
else
  echo "skipped: scans and memory of the exe, which can't be built or run here"
fi
echo "load of this machine: $(cut -d ' ' -f 1-3 /proc/loadavg) (over 1, 5 and 15 minutes)"
exit "$status"
