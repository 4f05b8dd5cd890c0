#!/usr/bin/env bash
# Installs the frei0r plug-in and Kdenlive's description of it for the
# current user, without root: the plug-in into ~/.frei0r-1/lib/ (where MLT,
# and so melt and Kdenlive, and ffmpeg look), the description into
# ~/.local/share/kdenlive/effects/. Shotcut reads descriptions only beside
# its own program: it needs the system install (the Debian package).
# Usage: scripts/install-user.sh [BUILD_DIR]   (default build; built when missing)
#        scripts/install-user.sh --uninstall
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
plugin_folder="$HOME/.frei0r-1/lib"
kdenlive_folder="${XDG_DATA_HOME:-$HOME/.local/share}/kdenlive/effects"
description=frei0r_quorvex.xml

if [[ "${1:-}" == --uninstall ]]; then
  rm -f "$plugin_folder/quorvex.so" "$kdenlive_folder/$description"
  echo "install-user: removed $plugin_folder/quorvex.so and $kdenlive_folder/$description"
  exit 0
fi

build_dir=${1:-"$root/build"}
if [[ ! -f "$build_dir/CMakeCache.txt" ]]; then
  "$root/scripts/build.sh" "$build_dir" RelWithDebInfo -DQUORVEX_BUILD_TESTS=OFF
else
  cmake --build "$build_dir" -j"$(nproc)" --target QuorvexFrei0r
fi

# A copy beside the target, renamed into place: a host that has the old
# plug-in loaded keeps its file, and no half-copied plug-in is ever seen.
install_file() {
  local source=$1 folder=$2 name=$3
  mkdir -p "$folder"
  install -m "$4" "$source" "$folder/.$name.new"
  mv -f "$folder/.$name.new" "$folder/$name"
  echo "install-user: $folder/$name"
}
install_file "$build_dir/lib/frei0r-1/quorvex.so" "$plugin_folder" quorvex.so 755
install_file "$root/Host/Frei0r/Editors/kdenlive/$description" "$kdenlive_folder" "$description" 644
