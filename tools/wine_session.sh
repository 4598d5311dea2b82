# shellcheck shell=bash
# Sourced by bash scripts that run Windows programs. One session is one prefix, one server and one
# display of its own, so that runs side by side never meet:
#
#   wine_session_open     make them; returns 1 with a plain line on stderr when that fails
#   wine_session_close    end the programs still running in it and remove the prefix
#   wine_template         only make what all sessions are copied from (some 15 s, once)
#   windows_path PATH     the name that a Windows program knows PATH by
#
# HOSTSCOPE_DISPLAY=real uses the display that DISPLAY names instead of an own one.

wine_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
wine_template_folder=$wine_root/build/wine-template
wine_runs_folder=$wine_root/build/wine-runs
wine_display_process=

# mscoree and mshtml would ask to download; the debugger would wait for ever at a crash.
wine_environment() {
  export WINEARCH=win32 WINEDEBUG="${WINEDEBUG:--all}" LC_ALL=C.UTF-8
  # For the tests that turn sound on.
  export ALSA_CONFIG_PATH=$wine_root/tools/wine_no_sound.conf
  export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe=d;winemenubuilder.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
}

wine_settings() {
  cat <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\Drivers]
"Audio"=""

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Lucida Console"="DejaVu Sans Mono"
REG
}

# Wine links the folders of its user to those of the home folder, where no test has any business.
wine_own_user_folders() {
  local link
  while IFS= read -r -d '' link; do
    rm "$link"
    mkdir "$link"
  done < <(find "$1/drive_c/users" -type l -print0)
}

# shellcheck disable=SC2030,SC2031 # a prefix of its own, for this subshell alone
wine_boot_template() (
  wine_environment
  unset DISPLAY
  export WINEPREFIX=$1
  settings=$(mktemp --suffix=.reg)
  wine_settings >"$settings"
  timeout --kill-after=10 180 wineboot -i && timeout --kill-after=10 60 wine regedit /S "$settings" &&
    timeout --kill-after=10 60 wineserver -w
  status=$?
  rm "$settings"
  if ((status == 0)); then
    wine_own_user_folders "$WINEPREFIX"
    # The distribution's Wine does not look for its own fonts where its package puts them.
    cp -n /usr/share/wine/fonts/*.{ttf,fon} "$WINEPREFIX/drive_c/windows/Fonts/"
  fi
  exit "$status"
) </dev/null >/dev/null 2>&1

wine_template() {
  local made_by new=$wine_template_folder.new
  made_by=$(cat "${BASH_SOURCE[0]}" <(wine --version) | sha256sum)
  mkdir -p "$wine_root/build"
  (
    flock 8
    if [[ $(cat "$wine_template_folder/made-by" 2>/dev/null) == "$made_by" ]]; then exit 0; fi
    rm -rf "$wine_template_folder" "$new"
    if ! wine_boot_template "$new" 8<&- || [[ ! -e $new/user.reg ]]; then
      echo "Wine could not make a fresh Windows folder" >&2
      exit 1
    fi
    printf '%s\n' "$made_by" >"$new/made-by"
    mv "$new" "$wine_template_folder"
  ) 8>"$wine_template_folder.lock"
}

# Links instead of copies where the file system knows them. The files that Wine rewrites in place
# are real copies, else every session would write to the template.
wine_copy_template() {
  local prefix=$1 file
  cp -al "$wine_template_folder" "$prefix" 2>/dev/null || {
    rm -rf "$prefix"
    cp -a "$wine_template_folder" "$prefix"
  }
  for file in system.reg user.reg userdef.reg drive_c/windows/win.ini drive_c/windows/system.ini; do
    if [[ -e $wine_template_folder/$file ]]; then
      cp --remove-destination "$wine_template_folder/$file" "$prefix/$file"
    fi
  done
}

# What a session left behind that was killed before it could tidy up.
wine_remove_stale_runs() {
  local folder
  for folder in "$wine_runs_folder"/*; do
    if [[ -d $folder ]] && ! kill -0 "${folder##*/}" 2>/dev/null; then rm -rf "$folder"; fi
  done
}

# The display ends with this shell, whatever ends that, and takes Wine's programs with it.
wine_open_display() {
  local screen=1024x768x24 number descriptor
  exec {descriptor}< <(exec setpriv --pdeathsig KILL Xvfb -displayfd 1 -screen 0 "$screen" \
    -nolisten tcp -noreset 2>/dev/null)
  wine_display_process=$!
  if ! read -r -t 30 number <&"$descriptor" || [[ -z $number ]]; then
    echo "Xvfb did not start" >&2
    return 1
  fi
  exec {descriptor}<&-
  export DISPLAY=:$number
}

# shellcheck disable=SC2031 # not the prefix of the template
wine_session_open() {
  wine_template || return 1
  mkdir -p "$wine_runs_folder"
  wine_remove_stale_runs
  wine_environment
  export WINEPREFIX=$wine_runs_folder/$$
  wine_copy_template "$WINEPREFIX"
  if [[ ${HOSTSCOPE_DISPLAY:-} != real ]]; then wine_open_display || return 1; fi
}

wine_session_close() {
  if [[ -n ${WINEPREFIX:-} && -d $WINEPREFIX ]]; then
    wineserver -k >/dev/null 2>&1 || true
    timeout 10 wineserver -w >/dev/null 2>&1 || true
    rm -rf "$WINEPREFIX"
  fi
  if [[ -n $wine_display_process ]]; then kill "$wine_display_process" 2>/dev/null || true; fi
}

windows_path() {
  local path
  path=$(realpath -m -- "$1")
  printf 'Z:%s\n' "${path//\//\\}"
}
