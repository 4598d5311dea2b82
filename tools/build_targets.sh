# shellcheck shell=bash
# Sourced by bash scripts that build a part of the project:
#
#   build_targets PRESET TARGETS...   returns 1, with the reason on stderr, when that fails

build_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_targets() {
  local preset=$1 log=$build_root/build/$1.configure.log
  shift
  mkdir -p "$build_root/build" || return 1
  if ! (cd "$build_root" && cmake --preset "$preset") >"$log" 2>&1; then
    cat "$log" >&2
    return 1
  fi
  (cd "$build_root" && cmake --build --preset "$preset" --target "$@")
}
