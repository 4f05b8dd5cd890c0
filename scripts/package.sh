#!/usr/bin/env bash
# Builds the Debian package quorvex_<version>_amd64.deb with CPack and prints
# its path: the program, its module, the frei0r plug-in and the editors'
# descriptions under /usr, with the packages they need declared.
# Usage: scripts/package.sh [BUILD_DIR]
# BUILD_DIR defaults to build-package, made a release build without tests
# when new; a folder already configured is built and packaged as it is.
# Then, as root: apt install ./build-package/quorvex_<version>_amd64.deb
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-"$root/build-package"}

# dpkg-shlibdeps (dpkg-dev) finds the libraries the files need.
"$root/scripts/install-deps.sh" package >&2
if [[ -f "$build_dir/CMakeCache.txt" ]]; then
  cmake --build "$build_dir" -j"$(nproc)" >&2
else
  "$root/scripts/build.sh" "$build_dir" Release -DQUORVEX_BUILD_TESTS=OFF >&2
fi
rm -f "$build_dir"/quorvex_*.deb
(cd "$build_dir" && cpack -G DEB >&2)
packages=("$build_dir"/quorvex_*.deb)
if ((${#packages[@]} != 1)) || [[ ! -f "${packages[0]}" ]]; then
  echo "package: cpack made no single quorvex_*.deb in $build_dir" >&2
  exit 1
fi
deb=${packages[0]}

# CPack gives every package with a .so under /usr/lib an ldconfig call
# after install and removal. Ours are plug-ins that hosts load by path and
# nothing links to, and a removal script would keep the package's record
# (dpkg's "rc") after `apt remove`: the package goes without them.
work=$(mktemp -d /tmp/quorvex-package-XXXXXX)
trap 'rm -rf "$work"' EXIT
dpkg-deb -R "$deb" "$work/tree"
rm -f "$work/tree/DEBIAN/postinst" "$work/tree/DEBIAN/postrm"
dpkg-deb --root-owner-group -b "$work/tree" "$work/quorvex.deb" >&2
mv -f "$work/quorvex.deb" "$deb"
echo "$deb"
