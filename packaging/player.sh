# What the player's own file says of the library. For scripts that take it in with "source".
# shellcheck shell=bash

player_file=${XDG_CONFIG_HOME:-$HOME/.config}/vantorix/player.ini

# in_library KEY: what the file's section [library] sets it to, a line each; nothing where there is no such file.
in_library() {
  [ -r "$player_file" ] || return 0
  LC_ALL=C awk -v key="$1" '
    NR == 1 { sub(/^\357\273\277/, "") } # a byte order mark
    { sub(/\r$/, ""); gsub(/^[ \t]+|[ \t]+$/, "") }
    /^\[/ { here = tolower($0) == "[library]" }
    here && /^[^#;[]/ && (equals = index($0, "=")) {
      name = substr($0, 1, equals - 1)
      value = substr($0, equals + 1)
      sub(/[ \t]+$/, "", name)
      sub(/^[ \t]+/, "", value)
      if (tolower(name) == key && value != "") print value
    }' "$player_file"
}
