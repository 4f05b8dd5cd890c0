#!/usr/bin/env bash
# Installs the Debian packages that Quorvex needs.
# Usage: scripts/install-deps.sh [runtime|package|test]
#   runtime  what building and running the program, the module and the
#            frei0r plug-in need (scripts/demo.sh)
#   package  that, and what building the Debian package needs
#   test     all of that, and what the tests, the sanitized build, the
#            fuzzers and the benchmarks need (the default)
# Runs as root on Debian 12; packages already present are left alone, so a
# second run costs one dpkg query.
set -euo pipefail

set_name=${1:-test}

# One package a line, each in the first set that needs it.
runtime_packages=(
  cmake
  g++
  make
  pkg-config
  libglbinding-dev
  libegl-dev
  libegl-mesa0
  libgl1-mesa-dri
  libgl-dev
  libopengl-dev
  libopenimageio-dev
  libavformat-dev
  libavcodec-dev
  libswscale-dev
  libavutil-dev
  libswresample-dev
  libcli11-dev
  frei0r-plugins-dev
  fonts-dejavu-core
)
package_packages=(
  dpkg-dev
  file
)
test_packages=(
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  openimageio-tools
  ffmpeg
  melt
  gstreamer1.0-tools
  gstreamer1.0-plugins-good
  gstreamer1.0-plugins-bad
  gstreamer1.0-libav
  frei0r-plugins
  parallel
  clang
  libclang-rt-14-dev
  kdenlive
  shotcut
  xvfb
  xauth
  xdotool
  qtdeclarative5-dev-tools
)

case "$set_name" in
  runtime) packages=("${runtime_packages[@]}") ;;
  package) packages=("${runtime_packages[@]}" "${package_packages[@]}") ;;
  test) packages=("${runtime_packages[@]}" "${package_packages[@]}" "${test_packages[@]}") ;;
  *)
    echo "install-deps: unknown package set '$set_name' (expected runtime, package or test)" >&2
    exit 2
    ;;
esac

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$package")
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

if [[ $(id -u) -ne 0 ]]; then
  echo "install-deps: these packages are missing and installing them needs root: ${missing[*]}" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
# Another installer may hold the package lock for a while: wait for it.
apt_options=(-o DPkg::Lock::Timeout=900)
apt-get "${apt_options[@]}" update -q
apt-get "${apt_options[@]}" install -y -q --no-install-recommends "${missing[@]}"
