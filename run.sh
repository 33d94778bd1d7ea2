#!/usr/bin/env bash
# Brings the house up: installs what is missing, builds, starts the server on the house's own bus, which
# starts the plug-in, and prints one address, with the key that lets the owner's browser in. Ctrl+C stops everything
# in order.
#
#   ./run.sh            with the music folder that VANTORIX_MUSIC says; where it isn't set, with those that player.ini
#                       names, or a small demonstration library, made once
#   ./run.sh FOLDER     with the music in FOLDER
#
# Options behind FOLDER or instead of it go to the server; build/release/bin/vantorix-standin --help tells them.
set -euo pipefail
from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")"
root=$PWD
case "${1:-}" in
  -h | --help)
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' run.sh
    exit
    ;;
esac
# shellcheck source=packaging/packages.sh
source packaging/packages.sh
# shellcheck source=packaging/desktop.sh
source packaging/desktop.sh
# shellcheck source=packaging/player.sh
source packaging/player.sh

music=${VANTORIX_MUSIC:-}
if [ $# -gt 0 ] && [[ $1 != --* ]]; then
  if ! music=$(cd "$from" && CDPATH='' cd -- "$1" 2>/dev/null && pwd); then
    echo "There is no music folder $1" >&2
    exit 1
  fi
  shift
fi

if [ -z "${VANTORIX_SKIP_BUILD:-}" ]; then
  install_packages "${BUILD_PACKAGES[@]}" "${RUN_PACKAGES[@]}"
  echo "Building (the first time takes some minutes)"
  cmake --preset release >/dev/null
  cmake --build --preset release --target vxif_WMP vantorix-standin vxcall vantorix-demo-library desktop_icons -- --quiet
fi
bin=${VANTORIX_BIN:-$root/build/release/bin}
services=${VANTORIX_SERVICES:-$root/build/release/dbus/services}

data=${XDG_DATA_HOME:-$HOME/.local/share}/vantorix
mkdir -p "$(dirname "$data")"
[ -d "$data" ] || mkdir -m 700 "$data"
chmod 700 "$data" 2>/dev/null || echo "Others may be able to look into $data" >&2
if [ -z "$music" ] && [ -z "$(in_library folder)" ]; then
  music=$data/demo-music
  "$bin/vantorix-demo-library" "$music"
fi

run=${XDG_RUNTIME_DIR:-/tmp/vantorix-$(id -u)}/vantorix
# The bus is as safe as its folder: nobody else may own it or write into it.
for folder in "$(dirname "$run")" "$run"; do
  [ -d "$folder" ] || mkdir -m 700 "$folder"
  if [ -L "$folder" ] || [ "$(stat -c %u "$folder")" != "$(id -u)" ]; then
    echo "The folder $folder belongs to somebody else: set XDG_RUNTIME_DIR to a folder of your own" >&2
    exit 1
  fi
done
chmod 700 "$run"
socket=$run/bus
config=$run/bus.conf
export VANTORIX_BUS=unix:path=$socket

if "$bin/vxcall" --bus "$VANTORIX_BUS" org.freedesktop.DBus:/org/freedesktop/DBus GetId >/dev/null 2>&1; then
  if "$bin/vxcall" --bus "$VANTORIX_BUS" host Version >/dev/null 2>&1; then
    echo "A house is running already on the bus $socket" >&2
    exit 1
  fi
  # A bus whose server is gone (it was killed) is a left-over.
  kill "$(cat "$run/bus.pid" 2>/dev/null)" 2>/dev/null || true
fi
rm -f "$socket"
sed -e "s|@SOCKET@|$socket|" -e "s|@SERVICES@|$services|" packaging/dbus/house.conf.in >"$config"

# The bus and the plug-in that it starts get a session of their own, so that Ctrl+C reaches the server alone,
# which then stops the plug-in in order. What bus and plug-in have to say besides the house's log is in bus.log.
# A bus tells whom it starts that it is the session bus itself; the user's own, on whose panels the player appears, is
# handed on beside that.
VANTORIX_MUSIC=$music VANTORIX_SESSION_BUS=${DBUS_SESSION_BUS_ADDRESS:-} setsid dbus-daemon --config-file="$config" --nofork --nopidfile \
  >"$run/bus.log" 2>&1 &
bus=$!
echo "$bus" >"$run/bus.pid"
for _ in $(seq 100); do
  [ -S "$socket" ] && break
  sleep 0.05
done

if on_a_desktop; then put_on_desktop "$bin"; fi
server=
# shellcheck disable=SC2317 # the trap calls it
stop() {
  if [ -n "$server" ]; then kill -TERM "$server" 2>/dev/null || true; fi
}
trap stop INT TERM HUP
"$bin/vantorix-standin" --bus "$VANTORIX_BUS" --data "$data/server" "$@" &
server=$!
code=0
wait "$server" || code=$?
# A signal ends the first wait early; the server is then still stopping the plug-in.
while kill -0 "$server" 2>/dev/null; do
  code=0
  wait "$server" || code=$?
done
take_from_desktop
kill "$bus" 2>/dev/null || true
wait "$bus" 2>/dev/null || true
rm -f "$socket" "$config" "$run/bus.pid"
exit "$code"
