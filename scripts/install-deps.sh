#!/usr/bin/env bash
# Installs the Debian packages that building and testing Quorvex need.
# Runs as root on Debian 12; packages already present are left alone, so a
# second run costs one dpkg query.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  libglbinding-dev libegl-dev libegl-mesa0 libgl1-mesa-dri libgl-dev libopengl-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libopenimageio-dev openimageio-tools
  libavformat-dev libavcodec-dev libswscale-dev libavutil-dev libswresample-dev
  libcli11-dev
  ffmpeg melt gstreamer1.0-tools gstreamer1.0-plugins-good gstreamer1.0-plugins-bad
  gstreamer1.0-libav frei0r-plugins-dev frei0r-plugins
  parallel fonts-dejavu-core
  clang libclang-rt-14-dev
  kdenlive shotcut xvfb xdotool qtdeclarative5-dev-tools
)

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
