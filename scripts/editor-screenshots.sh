#!/usr/bin/env bash
# Takes the README's pictures of Quorvex in Kdenlive and in Shotcut: each
# editor starts on a virtual display (Xvfb) with the build's plug-in and the
# repository's descriptions, opens the test project (a clip with Quorvex on
# it), selects the clip, shows the effect's controls and a glitched frame, and
# the screen is saved as a PNG.
#
#   bash scripts/editor-screenshots.sh [BUILD] [OUTPUT-FOLDER]
#
# BUILD defaults to build/, OUTPUT-FOLDER to Host/Frei0r/Editors/screenshots/.
# Needs kdenlive, shotcut, xvfb, xdotool and ffmpeg (scripts/install-deps.sh
# installs them) and a build. The clicks land where Debian 12's editors put
# their panels at first start; look at the pictures before committing them.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
output=${2:-$root/Host/Frei0r/Editors/screenshots}
editors=$root/Host/Frei0r/Editors
projects=$root/Tests/Frei0r/Projects

for program in kdenlive shotcut Xvfb xdotool ffmpeg dbus-run-session; do
  command -v "$program" > /dev/null || {
    echo "editor-screenshots: $program is missing; run scripts/install-deps.sh as root" >&2
    exit 1
  }
done
[[ -f $build/lib/frei0r-1/quorvex.so ]] || {
  echo "editor-screenshots: no $build/lib/frei0r-1/quorvex.so; build first (scripts/build.sh)" >&2
  exit 1
}
mkdir -p "$output"

work=$(mktemp -d /tmp/quorvex-screenshots-XXXXXX)
pids=()
cleanup() {
  stop_all
  rm -rf "$work"
}
trap cleanup EXIT

# A moving test pattern of the projects' size and length.
ffmpeg -v error -f lavfi -i testsrc2=size=192x108:rate=25:duration=1.6 -c:v ffv1 -pix_fmt yuv420p "$work/clip.mkv"

# Starts Xvfb of SIZE (WxH) and sets DISPLAY to it.
start_display() {
  local size=$1
  Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3> "$work/display" 2> "$work/xvfb.log" &
  pids+=($!)
  for _ in $(seq 100); do
    [[ -s $work/display ]] && break
    sleep 0.1
  done
  export DISPLAY=:$(< "$work/display")
}

# Waits until a window whose name matches PATTERN shows, at most 90 s.
wait_for_window() {
  for _ in $(seq 180); do
    xdotool search --onlyvisible --name "$1" 2> /dev/null | head -1 && return 0
    sleep 0.5
  done
  echo "editor-screenshots: no window \"$1\" came up within 90 s" >&2
  return 1
}

click() {
  xdotool mousemove "$1" "$2" click 1
  sleep "${3:-1}"
}

# Saves the screen's top-left WxH as a small palette PNG.
screenshot() {
  ffmpeg -v error -y -f x11grab -video_size "$2" -i "$DISPLAY" -frames:v 1 "$work/screen.png"
  ffmpeg -v error -y -i "$work/screen.png" \
    -vf "split[a][b];[a]palettegen=max_colors=128[p];[b][p]paletteuse=dither=none" "$1"
  echo "editor-screenshots: wrote $1" >&2
}

# Ends what was started, last first: the editor before its D-Bus session
# (which then ends its own bus) and before the display.
stop_all() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2> /dev/null || true
    sleep 1
  done
  pids=()
}

export FREI0R_PATH=$build/lib/frei0r-1
export XDG_RUNTIME_DIR=$work/runtime
mkdir -m 700 "$XDG_RUNTIME_DIR"

# Shotcut reads filters only from share/shotcut/qml/filters beside its
# program's folder: a prefix of links to Debian's, ours among them.
shotcut=$(readlink -f "$(command -v shotcut)")
share=$(dirname "$(dirname "$shotcut")")/share/shotcut
prefix=$work/shotcut
mkdir -p "$prefix/bin" "$prefix/share/shotcut/qml/filters" "$work/home-shotcut"
ln "$shotcut" "$prefix/bin/shotcut" 2> /dev/null || cp "$shotcut" "$prefix/bin/shotcut"
for entry in "$share"/*; do [[ $(basename "$entry") == qml ]] || ln -s "$entry" "$prefix/share/shotcut/"; done
for entry in "$share"/qml/*; do [[ $(basename "$entry") == filters ]] || ln -s "$entry" "$prefix/share/shotcut/qml/"; done
for entry in "$share"/qml/filters/*; do [[ $(basename "$entry") == quorvex ]] || ln -s "$entry" "$prefix/share/shotcut/qml/filters/"; done
ln -sT "$editors/shotcut/quorvex" "$prefix/share/shotcut/qml/filters/quorvex"
cp "$projects/shotcut.mlt" "$work/shotcut.mlt"

start_display 1280x800
(cd "$work" && HOME=$work/home-shotcut exec "$prefix/bin/shotcut" "$work/shotcut.mlt" > "$work/shotcut.log" 2>&1) &
pids+=($!)
disown
wait_for_window "Shotcut" > /dev/null
sleep 12
click 175 525      # the clip on V1
click 103 397 2    # the Filters tab
click 77 165 4     # Quorvex in the clip's filters
click 178 488 3    # the playhead into the clip
xdotool mousemove 1100 750
screenshot "$output/shotcut.png" 1270x690
stop_all

# Kdenlive reads effect descriptions from kdenlive/effects in XDG_DATA_DIRS.
mkdir -p "$work/share/kdenlive/effects" "$work/home-kdenlive"
ln -s "$editors/kdenlive/frei0r_quorvex.xml" "$work/share/kdenlive/effects/"
sed -e "s|@FOLDER@|$work|" -e 's|docproperties.position">0<|docproperties.position">25<|' \
  "$projects/kdenlive.kdenlive" > "$work/kdenlive.kdenlive"

start_display 1400x900
(cd "$work" && HOME=$work/home-kdenlive XDG_DATA_DIRS=$work/share:/usr/local/share:/usr/share \
  exec dbus-run-session -- kdenlive "$work/kdenlive.kdenlive" > "$work/kdenlive.log" 2>&1) &
pids+=($!)
disown
window=$(wait_for_window "Kdenlive")
pids+=($(ps -o pid= --ppid "${pids[-1]}"))  # kdenlive, in the D-Bus session
sleep 10
xdotool windowsize "$window" 1400 900
sleep 3
click 185 556      # the clip on V1
click 1161 852 3   # the Effect/Composition Stack tab
xdotool mousemove 1380 880
screenshot "$output/kdenlive.png" 1400x900
stop_all
