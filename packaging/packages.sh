# The Debian packages that the house needs, in one place. For scripts that take it in with "source".
# shellcheck shell=bash disable=SC2034

# What building the programs takes.
BUILD_PACKAGES=(
  ca-certificates g++ cmake ninja-build pkg-config ccache
  libsystemd-dev libexpat1-dev libmpv-dev libtag1-dev libsqlite3-dev libcdio-dev libsndfile1-dev zlib1g-dev
  libcpp-httplib-dev libcurl4-openssl-dev libssl-dev libsodium-dev nlohmann-json3-dev
  libpocketsphinx-dev flite1-dev liblua5.4-dev libespeak-ng-dev libutf8proc-dev libgdk-pixbuf-2.0-dev libpng-dev
  qt6-base-dev qt6-svg-dev libegl-dev libgl-dev libglib2.0-dev libxcb1-dev librsvg2-bin
)
# Installs what the pages import. It may have come another way than as a package.
command -v npm >/dev/null || BUILD_PACKAGES+=(npm)
# What running them takes beyond the libraries that come with those; the decoder's is loaded when it is needed, and brings
# what finds a graphics card's driver.
RUN_PACKAGES=(dbus-daemon libmpv2 webp-pixbuf-loader pocketsphinx-en-us)
# What the server records with where it is to listen by its own microphone. One of them is enough, and the page says so.
ROOM_PACKAGES=(alsa-utils pulseaudio-utils)
# What the tests and checks take on top. Where they run there is no graphics card: a driver stands in for it.
TEST_PACKAGES=(
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libegl-mesa0 libgl1-mesa-dri
  clang lld libclang-rt-14-dev clang-format clang-tidy shellcheck
  chromium chromium-driver python3 ffmpeg espeak-ng
  xvfb tigervnc-standalone-server x11-xserver-utils xdotool openbox trayer x11-utils imagemagick weston qt6-wayland playerctl desktop-file-utils
  systemd
)
# What bench/engine/beside-mpd.sh takes beside those of the build.
BENCH_PACKAGES=(mpd ffmpeg)

# install_packages NAME...: installs what is missing, says what it does, asks nothing.
install_packages() {
  local missing=()
  local name
  for name in "$@"; do
    dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if ! command -v apt-get >/dev/null; then
    echo "These packages are missing and there is no apt-get to install them: ${missing[*]}" >&2
    return 1
  fi
  echo "Installing ${#missing[@]} packages: ${missing[*]}"
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then sudo=(sudo); fi
  "${sudo[@]}" apt-get update -q >/dev/null
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}" >/dev/null
}
