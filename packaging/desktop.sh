# The player's entry in the desktop's menu, with its icons: there while the house is up, or is a service, for the user who
# has brought it up. Panels find the player's name and icon by it. For scripts that take it in with "source".
# shellcheck shell=bash

# What an installed service is told by: its unit in the user's folder.
units=${XDG_CONFIG_HOME:-$HOME/.config}/systemd/user
unit=${VANTORIX_SERVICE:-vantorix}.service

desktop_share=${XDG_DATA_HOME:-$HOME/.local/share}

# in_exec WORD: the word as a desktop file's Exec takes it, whatever characters it has.
in_exec() {
  local word=$1
  # Quoted for Exec, and once more as every text of a desktop file, in which a backslash stands for itself twice.
  word=${word//\\/\\\\\\\\}
  word=${word//\"/\\\\\"}
  word=${word//\`/\\\\\`}
  word=${word//\$/\\\\\$}
  word=${word//%/%%}
  printf '"%s"' "$word"
}

on_a_desktop() {
  [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]
}

# put_on_desktop BIN: BIN holds the programs, and beside it lie the icons. A house is brought up all the same where the
# folders can't be written.
put_on_desktop() {
  local bin=$1 line
  mkdir -p "$desktop_share/applications" "$desktop_share/icons" 2>/dev/null || return 0
  cp -r "$bin/../share/icons/hicolor" "$desktop_share/icons/" 2>/dev/null || true
  while IFS= read -r line; do
    [ "${line#*@VXCALL@}" = "$line" ] || line=${line%%@VXCALL@*}$(in_exec "$bin/vxcall")${line#*@VXCALL@}
    printf '%s\n' "$line"
  done <packaging/desktop/vantorix-media-player.desktop.in \
    >"$desktop_share/applications/vantorix-media-player.desktop" 2>/dev/null || true
}

# What an installed service has put there stays for it.
take_from_desktop() {
  [ ! -e "$units/$unit" ] || return 0
  rm -f "$desktop_share/applications/vantorix-media-player.desktop" \
    "$desktop_share"/icons/hicolor/*/apps/vantorix-media-player.* 2>/dev/null || true
}
