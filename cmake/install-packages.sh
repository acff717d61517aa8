#!/bin/sh
# Installs what is missing of Debian's packages: install-packages.sh build|test|bench...
set -e
packages=""
for group in "$@"; do
  case "$group" in
  build) packages="$packages g++ cmake ninja-build ccache pkg-config libpng-dev libtiff-dev libjpeg-dev libfreetype-dev
         libagg-dev libsdl2-dev libx11-dev" ;;
  test) packages="$packages clang libclang-rt-14-dev lld libgtest-dev python3 xvfb xauth xdotool libxfixes-dev
         libfltk1.3-dev" ;;
  bench) packages="$packages libopencv-core-dev libopencv-imgproc-dev libopencv-highgui-dev qt6-base-dev libcairo2-dev
         libpixman-1-dev libyuv-dev libswscale-dev libvncserver-dev libxext-dev fonts-dejavu-core xvfb xauth" ;;
  *) echo "install-packages.sh: unknown group $group" >&2; exit 2 ;;
  esac
done
missing=""
for package in $packages; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
echo "Installing:$missing"
sudo=""
[ "$(id -u)" = 0 ] || sudo=sudo
log=$(mktemp)
if ! { $sudo apt-get update && DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends $missing; } \
    >"$log" 2>&1; then
  cat "$log" >&2
  rm -f "$log"
  exit 1
fi
rm -f "$log"
