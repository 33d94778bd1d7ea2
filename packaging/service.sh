#!/usr/bin/env bash
# Has systemd bring the house up whenever its owner's session is, in a sandbox.
#
#   packaging/service.sh install [FOLDER]   with the music in FOLDER, or as ./run.sh finds it
#   packaging/service.sh remove             and leaves the house's own folder as it is
#   packaging/service.sh print [FOLDER]     only shows the unit
#
# It brings up what ./run.sh has built, and neither builds nor installs anything itself.
set -euo pipefail
from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=packaging/desktop.sh
source packaging/desktop.sh
# shellcheck source=packaging/player.sh
source packaging/player.sh

data=${XDG_DATA_HOME:-$HOME/.local/share}/vantorix

# quoted WORD: as a unit's ExecStart and Environment take it.
quoted() {
  local word=${1//%/%%}
  word=${word//\\/\\\\}
  word=${word//\"/\\\"}
  printf '"%s"' "$word"
}
# program WORD: the same, and no "$" is taken for a variable.
program() {
  local word
  word=$(quoted "$1")
  printf '%s' "${word//\$/\$\$}"
}
# path WORD: the same for a list of paths; none has to be there.
path() {
  local word
  word=$(quoted "$1")
  printf '"-%s' "${word#\"}"
}

# put MARK TEXT: the text in place of the mark in the line, whatever characters it has.
put() {
  [ "${line#*"$1"}" = "$line" ] || line=${line%%"$1"*}$2${line#*"$1"}
}

# at_home FOLDER: as the player reads it.
at_home() {
  case $1 in
    \~ | \~/*) printf '%s' "$HOME${1#\~}" ;;
    *) printf '%s' "$1" ;;
  esac
}

music=
demo=$data/demo-music
first=
playlists=
# The playlists lie where the player's own file says, or else in the first music folder.
look_for_music() {
  first=$demo
  if [ $# -gt 0 ]; then
    if ! music=$(cd "$from" && CDPATH='' cd -- "$1" 2>/dev/null && pwd); then
      echo "There is no music folder $1" >&2
      exit 1
    fi
    first=$music
  elif [ -n "$(in_library folder)" ]; then
    first=$(at_home "$(in_library folder | sed -n 1p)")
  fi
  playlists=$(in_library playlists | sed -n '$p')
  playlists=$(at_home "${playlists:-$first/Playlists}")
}

print() {
  local line
  while IFS= read -r line; do
    put @RUN@ "$(program "$PWD/run.sh")"
    if [ -n "$music" ]; then put @MUSIC@ "$(program "$music")"; else put " @MUSIC@" ""; fi
    put @FOLDERS@ "$(quoted "XDG_DATA_HOME=${XDG_DATA_HOME:-$HOME/.local/share}") $(
      quoted "XDG_CONFIG_HOME=${XDG_CONFIG_HOME:-$HOME/.config}")"
    put @DATA@ "$(path "$data")"
    put @PLAYLISTS@ "$(path "$playlists")"
    printf '%s\n' "$line"
  done <packaging/systemd/vantorix.service.in
}

usage() {
  sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' packaging/service.sh
}

case "${1:-}" in
  -h | --help) usage ;;
  print)
    shift
    look_for_music "$@"
    print
    ;;
  install)
    shift
    if [ ! -x "${VANTORIX_BIN:-build/release/bin}/vantorix-standin" ]; then
      echo "Nothing is built yet: run ./run.sh once" >&2
      exit 1
    fi
    look_for_music "$@"
    # The demonstration library lies in the house's own folder and is made where there is none. Any other may be away
    # with its disc: then nothing is to be made in the place where that belongs.
    if [ "$first" != "$demo" ] && [ ! -d "$first" ]; then
      echo "There is no music folder $first" >&2
      exit 1
    fi
    mkdir -p "$units" "$data"
    if [ "$playlists" != "$demo/Playlists" ]; then mkdir -p "$playlists"; fi
    chmod 700 "$data"
    print >"$units/$unit"
    # The sandbox writes no menus. Whoever installs it from elsewhere may have a desktop all the same.
    put_on_desktop "$(cd "${VANTORIX_BIN:-build/release/bin}" && pwd)"
    systemctl --user daemon-reload
    systemctl --user enable --now "$unit"
    echo "The house comes up with your session. See it with: systemctl --user status $unit"
    ;;
  remove)
    systemctl --user disable --now "$unit" 2>/dev/null || true
    rm -f "$units/$unit"
    take_from_desktop
    systemctl --user daemon-reload
    ;;
  *)
    usage
    exit 1
    ;;
esac
