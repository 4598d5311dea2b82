#!/usr/bin/env bash
# Brings a machine what building, testing and running Hostscope needs; what is there already is left alone.
#
#   tools/setup.sh                  install every group that is missing, but for `coverage`
#   tools/setup.sh need GROUP...    install these groups where they are missing
#   tools/setup.sh has GROUP        ask, in silence, whether a group is there: native, fuzz, cross,
#                                   package, wine, display, emulator, lint, coverage
#
# The exit code is non-zero when a group that is needed can't be had. Without `need` only the native group
# is: a machine without one of the others builds and tests less, and is told so.
set -euo pipefail

readonly all_groups=(native fuzz cross package wine display emulator lint)

declare -rA purpose=(
  [native]="building and testing the Linux program"
  [fuzz]="running the fuzz targets"
  [cross]="building hscope.exe"
  [package]="turning the handbook's pages into texts for the package"
  [wine]="running hscope.exe"
  [display]="pressing keys in hscope.exe and taking its picture"
  [emulator]="trying the way to controller ports of hscope.exe on emulated hardware"
  [lint]="the static checks of the sources"
  [coverage]="telling which lines the tests run"
)

declare -rA packages=(
  [native]="g++ cmake ninja-build libgtest-dev libgmock-dev python3 clang-format git"
  [fuzz]="clang libclang-rt-dev"
  [cross]="g++-mingw-w64-i686-posix"
  [package]="pandoc"
  [wine]="wine wine32:i386 xvfb fonts-wine fonts-dejavu-core"
  [display]="xdotool imagemagick"
  [emulator]="qemu-system-x86"
  [lint]="clang-tidy cppcheck shellcheck"
  [coverage]="gcovr"
)

have() {
  local name
  for name in "$@"; do command -v "$name" >/dev/null || return 1; done
}

has_native() {
  have g++ cmake ninja python3 clang-format git flock &&
    [[ -e /usr/include/gtest/gtest.h && -e /usr/include/gmock/gmock.h ]] &&
    [[ -e /usr/src/googletest/CMakeLists.txt ]]
}

# The fuzzer is part of clang, but of another package.
has_fuzz() { have clang++ && [[ -n $(find "$(clang++ -print-resource-dir)" -name 'libclang_rt.fuzzer*' -print -quit) ]]; }

has_cross() { have i686-w64-mingw32-g++-posix i686-w64-mingw32-windres i686-w64-mingw32-objdump; }

has_package() { have pandoc; }

has_wine() {
  have wine wineboot wineserver Xvfb setpriv &&
    [[ -e /usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf ]] &&
    [[ -e /usr/share/wine/fonts/marlett.ttf ]] || return 1
  # Debian's `wine` is there without the 32-bit half too, and then starts no program of ours.
  [[ ! -d /usr/lib/wine || -x /usr/lib/wine/wine ]]
}

# ImageMagick's own `import`: another program of that name is of no use here.
has_display() { have xdotool import && import -version 2>/dev/null | grep -q ImageMagick; }

has_emulator() { have qemu-system-i386; }

has_lint() { have clang-tidy cppcheck shellcheck; }
has_coverage() { have gcovr; }

say() { printf 'setup: %s\n' "$*"; }

as_root() {
  if ((EUID == 0)); then "$@"; else sudo -n "$@"; fi
}

# Says why nothing can be installed here, or nothing when it can.
obstacle() {
  if ! have apt-get dpkg; then
    echo "this machine has no apt-get"
  elif ((EUID != 0)) && ! sudo -n true 2>/dev/null; then
    echo "that takes root, and sudo does not give it"
  fi
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 \
    -o Acquire::Retries=3 -o Dpkg::Use-Pty=0 "$@" </dev/null
}

lists_updated=no
update_lists() {
  [[ $lists_updated == no ]] || return 0
  apt update || say "some package lists could not be fetched; going on with the others"
  lists_updated=yes
}

install_plainly() {
  update_lists
  apt install --no-install-recommends "$@"
}

# can_install [options of apt] PACKAGES...
can_install() { apt install --simulate --no-install-recommends "$@" >/dev/null 2>&1; }

# Lists of the release alone, without its updates, in a folder; the archive's address is the machine's.
# The result is in release_only: the options that make apt use them.
release_only=()
fetch_release_lists() {
  local folder=$1 release archive keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  # shellcheck source=/dev/null
  release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
  # shellcheck disable=SC2016 # apt's own names
  archive=$(apt-get indextargets --format '$(RELEASE) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
    awk -v release="$release" '$1 == release && $2 == "main" { print $3; exit }')
  if [[ -z $release || -z $archive ]]; then
    say "the package sources of this machine do not name its release"
    return 1
  fi
  mkdir -p "$folder/lists/partial" "$folder/parts"
  {
    printf 'Types: deb\nURIs: %s\nSuites: %s\nComponents: main\n' "$archive" "$release"
    if [[ -e $keyring ]]; then printf 'Signed-By: %s\n' "$keyring"; fi
  } >"$folder/parts/release.sources"
  printf 'Package: *\nPin: release n=%s\nPin-Priority: 1001\n' "$release" >"$folder/older"
  release_only=(-o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$folder/parts"
    -o "Dir::State::Lists=$folder/lists")
  apt "${release_only[@]}" update
}

# Where libraries of two architectures are installed, the two halves of a library must have the same
# version. An archive may give the updates of one architecture only, and then they never match: so next
# the release itself is tried, and last with the machine's own halves set back to it.
# install_matching FOLDER PACKAGES...; the folder is for the lists.
install_matching() {
  local folder=$1 older=()
  shift
  release_only=()
  if ! can_install "$@"; then
    fetch_release_lists "$folder" || return 1
    if ! can_install "${release_only[@]}" "$@"; then
      say "setting libraries of both architectures back to the versions of the release"
      older=(-o "Dir::Etc::preferences=$folder/older" --allow-downgrades)
    fi
  fi
  apt install --no-install-recommends "${release_only[@]}" "${older[@]}" "$@"
}

install_for_two_architectures() {
  local folder status=0
  update_lists
  folder=$(mktemp -d)
  chmod 755 "$folder"
  install_matching "$folder" "$@" || status=$?
  as_root rm -rf "$folder"
  return "$status"
}

# Its 32-bit half is of the second architecture.
install_wine() {
  as_root dpkg --add-architecture i386
  lists_updated=no
  install_for_two_architectures "$@"
}

install_group() {
  local group=$1 wanted
  read -ra wanted <<<"${packages[$group]}"
  say "installing for ${purpose[$group]}: ${wanted[*]}"
  case $group in
    wine) install_wine "${wanted[@]}" ;;
    # It shares libraries with Wine.
    emulator) install_for_two_architectures "${wanted[@]}" ;;
    *) install_plainly "${wanted[@]}" ;;
  esac
}

missing_packages() {
  local package
  for package in ${packages[$1]}; do
    dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^.i' || echo "$package"
  done
}

# Leaves the group there, or says what is missing and what for.
ensure_group() {
  local group=$1 reason missing
  if "has_$group"; then return 0; fi
  reason=$(obstacle)
  if [[ -z $reason ]]; then
    if install_group "$group" && "has_$group"; then return 0; fi
    reason="the installation failed"
  fi
  mapfile -t missing < <(missing_packages "$group")
  say "not available: ${purpose[$group]} ($reason); missing packages: ${missing[*]:-none known}"
  return 1
}

# Whether all the words are names of groups, and there are some.
are_groups() {
  local word
  (($# > 0)) || return 1
  for word in "$@"; do [[ -n $word && -n ${purpose[$word]:-} ]] || return 1; done
}

main() {
  local group status=0 needed=(native) wanted=("${all_groups[@]}")
  if (($# == 2)) && [[ $1 == has ]] && are_groups "$2"; then
    "has_$2"
    return
  elif (($# > 1)) && [[ $1 == need ]] && are_groups "${@:2}"; then
    needed=("${@:2}")
    wanted=("${needed[@]}")
  elif (($# > 0)); then
    say "unknown arguments: $* (see the top of tools/setup.sh)"
    return 2
  fi
  exec 9<"${BASH_SOURCE[0]}"
  if have flock; then flock 9; fi
  for group in "${wanted[@]}"; do
    # apt's children must not keep the lock when this script is killed.
    ensure_group "$group" 9<&- || { [[ " ${needed[*]} " != *" $group "* ]] || status=1; }
  done
  return "$status"
}

main "$@"
