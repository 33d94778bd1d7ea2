#!/usr/bin/env bash
# The player's library beside MPD's, on the same files: processor time a scanned file, the start with a known library,
# the titles of each genre, memory. Installs Debian's mpd where it is missing; it runs with a configuration and a
# socket of its own.
#
#   bench/engine/beside-mpd.sh [COUNT...]        20000 and 100000 files without
#
# BIN names the folder of library_run, WORK one that keeps the files from run to run.
set -euo pipefail
cd "$(dirname "$0")/../.."
bin=${BIN:-build/bench/bin}
[ $# -gt 0 ] || set -- 20000 100000
source packaging/packages.sh
install_packages "${BENCH_PACKAGES[@]}"
rounds=10 # of asking for the titles of every genre
work=${WORK:-$(mktemp -d)}
mkdir -p "$work"
daemon=
cleanup() {
  if [ -n "$daemon" ]; then kill "$daemon" 2>/dev/null || true; fi
  if [ -z "${WORK:-}" ]; then rm -rf "$work"; fi
}
trap cleanup EXIT

models=$work/models
if [ ! -d "$models" ]; then
  mkdir -p "$models"
  for kind in mp3 flac ogg m4a; do
    ffmpeg -v error -f lavfi -i sine=440:d=2 -y "$models/model.$kind" </dev/null
  done
fi

# What a process has used of the processor, in hundredths of a second, and what it holds, in KiB.
ticks() { awk '{ sub(/.*\) /, ""); print $12 + $13 }' "/proc/$1/stat"; }
resident() { awk '/^VmRSS/ { print $2 }' "/proc/$1/status"; }

# ask COMMAND...: what MPD answers.
ask() {
  python3 - "$place/socket" "$@" <<'PYTHON'
import socket, sys
link = socket.socket(socket.AF_UNIX)
link.connect(sys.argv[1])
talk = link.makefile("rw", newline="\n")
talk.readline()
for command in sys.argv[2:]:
    talk.write(command + "\n")
    talk.flush()
    for line in talk:
        print(line, end="")
        if line.startswith(("OK", "ACK")):
            break
PYTHON
}

start_mpd() {
  mpd --no-daemon "$place/mpd.conf" 2>"$place/mpd.log" &
  daemon=$!
  until [ -S "$place/socket" ] && ask ping >/dev/null 2>&1; do
    kill -0 "$daemon"
    sleep 0.1
  done
}

stop_mpd() {
  kill "$daemon"
  wait "$daemon" 2>/dev/null || true
  daemon=
  rm -f "$place/socket"
}

line() { # line NAME COUNT SECONDS-OF-PROCESSOR RESIDENT-KIB [title]
  awk -v name="$1" -v count="$2" -v used="$3" -v kib="$4" -v what="${5:-file}" 'BEGIN {
    printf "%-34s %8d %ss %9.2f us of processor a %s %8.1f MiB\n", name, count, what, used * 1e6 / count, what, kib / 1024 }'
}

for count in "$@"; do
  music=$work/music-$count
  place=$work/mpd-$count
  data=$work/data-$count
  if [ ! -f "$work/made-$count" ]; then
    rm -rf "$music"
    mkdir -p "$music"
    "$bin/library_run" make "$models" "$music" "$count"
    touch "$work/made-$count"
  fi
  rm -rf "$place" "$data"
  mkdir -p "$place/playlists" "$data"
  cat >"$place/mpd.conf" <<CONF
music_directory "$music"
playlist_directory "$place/playlists"
db_file "$place/database"
state_file "$place/state"
bind_to_address "$place/socket"
auto_update "no"
audio_output {
  type "null"
  name "silence"
}
CONF
  "$bin/library_run" read "$music" >/dev/null # so that everybody finds the files in memory alike
  read -r files _ used kib < <("$bin/library_run" read "$music")
  line "walking, reading 64 KiB of each" "$files" "$used" "$kib"

  start_mpd
  base=$(resident "$daemon")
  before=$(ticks "$daemon")
  ask update >/dev/null
  while [[ $(ask status) == *updating_db* ]]; do
    # It scans only while the processors have nothing else to do; on a busy machine that would never end.
    for thread in "/proc/$daemon/task"/*; do chrt --other --pid 0 "${thread##*/}" 2>/dev/null || true; done
    sleep 0.2
  done
  songs=$(ask stats | awk '/^songs/ { print $2 }')
  line "MPD: scan" "$songs" "$(awk -v a="$before" -v b="$(ticks "$daemon")" 'BEGIN { print (b - a) / 100 }')" "$(resident "$daemon")"
  stop_mpd
  start_mpd
  line "MPD: start" "$songs" "$(awk -v a="$(ticks "$daemon")" 'BEGIN { print a / 100 }')" "$(resident "$daemon")"
  mapfile -t genres < <(ask "list genre" | sed -n 's/^Genre: //p')
  questions=()
  for ((round = 0; round < rounds; ++round)); do
    for genre in "${genres[@]}"; do questions+=("find genre \"$genre\""); done
  done
  before=$(ticks "$daemon")
  told=$(ask "${questions[@]}" | grep -c '^file: ')
  line "MPD: titles of each genre" "$told" "$(awk -v a="$before" -v b="$(ticks "$daemon")" 'BEGIN { print (b - a) / 100 }')" "$(resident "$daemon")" title
  printf '%-34s %62.1f MiB\n' "MPD: with an empty library" "$(awk -v k="$base" 'BEGIN { print k / 1024 }')"
  stop_mpd

  read -r files _ used kib < <("$bin/library_run" scan "$music" "$data")
  line "the player: scan" "$files" "$used" "$kib"
  read -r files _ used kib < <("$bin/library_run" start "$music" "$data")
  line "the player: start" "$files" "$used" "$kib"
  read -r files _ used kib < <("$bin/library_run" genres "$music" "$data" "$rounds")
  line "the player: titles of each genre" "$files" "$used" "$kib" title
  mkdir -p "$work/empty"
  rm -rf "$work/empty-data"
  read -r _ _ _ kib < <("$bin/library_run" start "$work/empty" "$work/empty-data")
  printf '%-34s %62.1f MiB\n' "the player: with an empty library" "$(awk -v k="$kib" 'BEGIN { print k / 1024 }')"
done
