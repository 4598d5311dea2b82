#!/usr/bin/env bash
# Runs a Windows program in a Wine session of its own and hands its exit code through.
#
#   tools/under_wine.sh PROGRAM.exe [arguments...]
#
# Exit code 77 with one line means that this machine can't run it: no Wine, or a program that was not
# built for want of a compiler. HOSTSCOPE_TIME_LIMIT: seconds until the program is ended (default 300);
# HOSTSCOPE_DISPLAY=real: see wine_session.sh. The environment reaches the program as it is.
set -euo pipefail

tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tools/wine_session.sh
source "$tools/wine_session.sh"

skip() {
  echo "skipped: $*"
  exit 77
}

if (($# == 0)); then
  echo "usage: tools/under_wine.sh PROGRAM.exe [arguments...]" >&2
  exit 2
fi
program=$1
shift

if ! "$tools/setup.sh" has wine; then skip "Wine is not available on this machine"; fi
if [[ ! -e $program ]]; then
  if ! "$tools/setup.sh" has cross; then
    skip "the compiler for Windows is not available on this machine"
  fi
  echo "$program: no such program" >&2
  exit 1
fi

limit=${HOSTSCOPE_TIME_LIMIT:-300}
trap wine_session_close EXIT
trap 'exit 143' TERM INT HUP
wine_session_open

# A command in the background leaves the shell free to hear a signal; one that this shell can't hear
# ends the program too.
setpriv --pdeathsig TERM timeout --kill-after=5 "$limit" wine "$program" "$@" </dev/null &
status=0
wait $! || status=$?
if ((status == 124)); then echo "$program: ended after $limit seconds" >&2; fi
exit "$status"
