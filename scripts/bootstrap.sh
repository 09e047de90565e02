#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, but only those that are missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-5compat-dev libgl-dev
  libtinyxml-dev
  glslang-dev glslang-tools clang
  libegl1 libegl-mesa0 libegl-dev libgles-dev libgl1-mesa-dri
  python3
  xvfb xauth
  desktop-file-utils appstream shared-mime-info
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
