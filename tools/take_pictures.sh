#!/usr/bin/env bash
# Takes the handbook's pictures of hscope.exe anew, under Wine: the message before a run, the dialog
# in the middle of a run and at its end, and the report in the editor.
#
#   tools/take_pictures.sh [FOLDER]    (default: docs/pictures)
#
# Look at each of them before you commit it. build/windows must hold hscope.exe and dialog_watch.exe
# (./run builds both). Exit code: 0, 1 when a picture could not be taken.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=tools/wine_session.sh
source "$root/tools/wine_session.sh"
folder=$(realpath -m -- "${1:-$root/docs/pictures}")
scratch=$(mktemp -d)
# Where the program lies, as it is seen in the pictures.
home='C:\Hostscope'

fail() {
  printf 'take_pictures: %s\n' "$*" >&2
  exit 1
}

tidy() {
  wine_session_close
  rm -rf "$scratch"
}

# wait_for WHAT COMMAND...: until the command succeeds, a minute at most.
wait_for() {
  local what=$1 left=600
  shift
  until "$@"; do
    ((left-- > 0)) || fail "waited in vain for $what"
    sleep 0.1
  done
}

window_of() { xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1; }
is_shown() { [[ -n $(window_of "$1") ]]; }

# take TITLE NAME: few colours are enough for windows of this kind, and make small files.
take() {
  local window
  window=$(window_of "$1")
  [[ -n $window ]] || fail "no window $1"
  xdotool windowraise "$window"
  # What is in a window is on the screen a moment later.
  sleep "${3:-1}"
  import -window "$window" -strip -colors 48 "PNG8:$folder/$2.png" || fail "no picture of $1"
  printf '%s: %s\n' "$folder/$2.png" "$(stat -c %s "$folder/$2.png") bytes"
}

press() {
  xdotool windowfocus "$(window_of "$1")"
  sleep 0.3
  xdotool key "$2"
}

has_line() { grep -qs "$2" "$1"; }

take_message() {
  wine "$home\\hscope.exe" support.ini &
  wait_for "the message" is_shown '^Hostscope$'
  take '^Hostscope$' message
  press '^Hostscope$' Escape
  wait $! || fail "the program did not end after the message"
}

take_dialog() {
  local dialog='^Hostscope v\.' watcher
  wine "$root/build/windows/dialog_watch.exe" start 300 "$home\\hscope.exe" full.ini \
    >"$scratch/progress" &
  watcher=$!
  wait_for "the middle of the run" has_line "$scratch/progress" '^Video codecs'
  take "$dialog" running 0
  wait "$watcher" || fail "the report was not finished: $(tail -n 1 "$scratch/progress")"
  take "$dialog" dialog
  press "$dialog" space
}

# The editor of Windows 95 has letters of one width.
editor_settings() {
  cat <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Microsoft\Notepad]
"lfFaceName"="DejaVu Sans Mono"
"iPointSize"=dword:0000004b
"iWindowPosX"=dword:00000000
"iWindowPosY"=dword:00000000
"iWindowPosDX"=dword:00000280
"iWindowPosDY"=dword:000001a4
REG
}

take_report() {
  editor_settings >"$scratch/editor.reg"
  wine regedit /S "$(windows_path "$scratch/editor.reg")"
  wine notepad "$home\\hscope.txt" &
  wait_for "the editor" is_shown 'hscope\.txt'
  take 'hscope\.txt' notepad
}

"$root/tools/setup.sh" has display || fail "xdotool and ImageMagick are needed"
for program in hscope dialog_watch; do
  [[ -e $root/build/windows/$program.exe ]] || fail "build/windows/$program.exe is not built: start ./run"
done
mkdir -p "$folder"
trap tidy EXIT
trap 'exit 143' TERM INT HUP
wine_session_open || fail "Wine could not be started"
mkdir "$WINEPREFIX/drive_c/Hostscope"
cp "$root/build/windows/hscope.exe" "$root"/profiles/{full,support}.ini "$WINEPREFIX/drive_c/Hostscope"
cd "$WINEPREFIX/drive_c/Hostscope"
take_message
take_dialog
take_report
