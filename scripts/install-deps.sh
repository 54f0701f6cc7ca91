#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the GUI screenshots need.
# Idempotent: quiet and quick when everything is already present.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config binutils lld
  qtbase5-dev qtscript5-dev qttools5-dev-tools qttools5-dev libqt5svg5-dev
  libsqlite3-dev sqlite3
  libocct-foundation-dev libocct-modeling-data-dev libocct-modeling-algorithms-dev
  libocct-data-exchange-dev libocct-visualization-dev libtbb-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libopenscenegraph-dev libegl-dev libgl-dev libegl-mesa0 libgl1-mesa-dri libeigen3-dev
  clang-14 libclang-rt-14-dev
  fonts-wqy-microhei xvfb xauth qttranslations5-l10n
  libdxflib-dev python3-ezdxf dpkg-dev nodejs
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
