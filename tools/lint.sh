#!/usr/bin/env bash
# Holds the sources against the static checks.
#
#   tools/lint.sh                   all parts
#   tools/lint.sh PART              one of them: tidy, cppcheck, shellcheck, layout
#   tools/lint.sh PART FILES...     over these files alone
#
# Prints the findings and a line per part. Exit code: 0 clean, 1 findings, 77 when the one part's tool
# is missing (with all parts that is only said). HOSTSCOPE_LINT_JOBS: how many processes at a time
# (default: one per core).
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly kept=build/lint
readonly program_rooms=(util profile report probes scans delivery app platform/windows sdk)
readonly layer_rooms=(platform/host linux)
jobs=${HOSTSCOPE_LINT_JOBS:-$(nproc)}
readonly jobs

say() { printf 'lint: %s\n' "$*"; }

# Files of the repository, new ones too, but none that was deleted.
# sources PATTERNS...
sources() {
  local file
  git ls-files --cached --others --exclude-standard -- "$@" | sort -u | while IFS= read -r file; do
    if [[ -f $file ]]; then printf '%s\n' "$file"; fi
  done
}

run_tidy() { HOSTSCOPE_LINT_JOBS=$jobs python3 tools/tidy.py "$kept/tidy" "$@"; }

# look_through NAME ARGUMENTS...: each platform has its own knowledge and so its own folder of results.
look_through() {
  mkdir -p "$kept/cppcheck_$1"
  cppcheck --quiet -j "$(((jobs + 1) / 2))" --cppcheck-build-dir="$kept/cppcheck_$1" --std=c++20 -I . \
    --enable=warning,performance,portability --inline-suppr \
    --suppressions-list=tools/cppcheck_suppressions.txt --error-exitcode=1 "${@:2}"
}

run_cppcheck() {
  local status=0 program
  look_through program --platform=win32A --library=windows -D_WIN32 "${@:-${program_rooms[@]}}" &
  program=$!
  look_through layer --platform=unix64 --library=posix "${@:-${layer_rooms[@]}}" || status=1
  wait "$program" || status=1
  return "$status"
}

run_shellcheck() {
  local scripts
  mapfile -t scripts < <(sources | xargs -d '\n' grep -lE --max-count=1 '^(#!.*sh|# shellcheck shell=.*)$')
  shellcheck -x "${@:-${scripts[@]}}"
}

run_layout() {
  local files
  mapfile -t files < <(sources '*.cpp' '*.h' '*.c')
  clang-format --dry-run -Werror --style=file:.clang-format "${@:-${files[@]}}"
}

declare -rA tool=([tidy]=clang-tidy [cppcheck]=cppcheck [shellcheck]=shellcheck [layout]=clang-format)

# lint PART FILES...
lint() {
  if ! command -v "${tool[$1]}" >/dev/null; then
    say "$1 is left out, since there is no ${tool[$1]}; tools/setup.sh installs it"
    return 77
  fi
  if "run_$1" "${@:2}"; then
    say "$1: nothing found"
  else
    say "$1: see above"
    return 1
  fi
}

main() {
  local part status outcome=0
  if (($# > 0)); then
    if [[ -n ${tool[$1]:-} ]]; then
      lint "$@"
      return
    fi
    say "unknown part $1 (see the top of tools/lint.sh)" >&2
    return 2
  fi
  for part in layout shellcheck cppcheck tidy; do
    status=0
    lint "$part" || status=$?
    if ((status == 1)); then outcome=1; fi
  done
  return "$outcome"
}

main "$@"
