#!/usr/bin/env bash
# Runs the tests of the Linux build, counts the lines of the shipped sources that they run, and prints a table:
# a row for each folder, and the total outside the user interface (coverage_table.py says what that is).
# What stands in platform/windows/ is part of hscope.exe alone; its tests run it under Wine, where no line
# is counted. The lines that no test runs are listed by file in build/coverage/files.txt. The build is optimised
# a little, for without that one test takes minutes; of the lines so listed a few are run after all.
#
# Exit code 1 when a test fails or when the total is 90 % or less.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/build_targets.sh
source tools/build_targets.sh

tools/setup.sh need native coverage
build_targets coverage all
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage --parallel 2 --output-on-failure --exclude-regex '^(windows|fuzz|lint|rooms)'
gcovr --root . --object-directory build/coverage --exclude tests/ --exclude build/ \
  --txt build/coverage/files.txt --json-summary build/coverage/summary.json
python3 tools/coverage_table.py build/coverage/summary.json 90
