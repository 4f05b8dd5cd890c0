#!/usr/bin/env bash
# Checks a Debian package made by scripts/package.sh without installing it:
# its name, architecture and dependencies, that it holds exactly the files it
# should, and that the programs in it run where it is unpacked: quorvex finds
# its module and renders, and ffmpeg renders with the frei0r plug-in.
# Usage: scripts/check-package.sh quorvex_<version>_amd64.deb
set -euo pipefail
if (($# != 1)) || [[ ! -f "$1" ]]; then
  echo "usage: scripts/check-package.sh PACKAGE.deb" >&2
  exit 2
fi
deb=$1
work=$(mktemp -d /tmp/quorvex-package-XXXXXX)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "check-package: $deb: $*" >&2
  failures=$((failures + 1))
}

[[ "$(dpkg-deb -f "$deb" Package)" == quorvex ]] || fail "the package is not named quorvex"
[[ "$(dpkg-deb -f "$deb" Architecture)" == amd64 ]] || fail "the architecture is not amd64"
# What dpkg-shlibdeps found (one for each library the files link to), and
# what the module loads without linking.
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libc6 libstdc++6 libglbinding2 libegl1 libopenimageio2.4 libavformat59 \
  libavcodec59 libswscale6 libegl-mesa0 libgl1-mesa-dri; do
  [[ ", $depends," == *", $needed "* || ", $depends," == *", $needed,"* ]] ||
    fail "Depends lacks $needed: $depends"
done

# No maintainer scripts: nothing is left of the package after `apt remove`.
scripts=$(dpkg-deb --ctrl-tarfile "$deb" | tar -t | grep -E 'inst$|rm$' || true)
[[ -z "$scripts" ]] || fail "has maintainer scripts: $scripts"

expected="./usr/bin/quorvex
./usr/lib/frei0r-1/quorvex.so
./usr/lib/quorvex/Quorvex.so
./usr/share/kdenlive/effects/frei0r_quorvex.xml
./usr/share/shotcut/qml/filters/quorvex/meta.qml
./usr/share/shotcut/qml/filters/quorvex/ui.qml"
files=$(dpkg-deb --contents "$deb" | awk '$1 !~ /^d/ { print $6 }' | sort)
[[ "$files" == "$expected" ]] || fail "holds other files than expected:"$'\n'"$files"

# The unpacked tree, as it would lie under /usr.
dpkg-deb -x "$deb" "$work/tree"
quorvex="$work/tree/usr/bin/quorvex"
info=$("$quorvex" info 2>&1) || fail "quorvex info failed: $info"
[[ "$info" == *"Glitch Type"* ]] || fail "quorvex info shows no Glitch Type: $info"

ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=128x72:rate=25,format=rgba" -frames:v 10 \
  -c:v ffv1 "$work/clip.mkv"
"$quorvex" render "$work/clip.mkv" "$work/quorvex.mkv" --glitch badtv --seed 7 --quiet ||
  fail "quorvex render failed"
ffmpeg -nostdin -v error -i "$work/quorvex.mkv" -f rawvideo -pix_fmt rgba "$work/quorvex.rgba" ||
  fail "quorvex render wrote no readable video"

# FREI0R_PATH comes before every other place ffmpeg looks, an installed
# plug-in included. Bad TV at Speed 1 and Seed 7, as above.
FREI0R_PATH="$work/tree/usr/lib/frei0r-1" ffmpeg -nostdin -v error -i "$work/clip.mkv" \
  -vf "frei0r=quorvex:1|0.333333333333|0.007007007" -f rawvideo -pix_fmt rgba "$work/frei0r.rgba" ||
  fail "ffmpeg with the frei0r plug-in failed"
ffmpeg -nostdin -v error -i "$work/clip.mkv" -f rawvideo -pix_fmt rgba "$work/clip.rgba"
if [[ -s "$work/frei0r.rgba" ]] && cmp -s "$work/frei0r.rgba" "$work/clip.rgba"; then
  fail "the frei0r plug-in left the clip unchanged"
fi

if ((failures > 0)); then
  exit 1
fi
echo "check-package: $deb: contents, dependencies and unpacked programs as expected" >&2
