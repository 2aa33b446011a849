#!/usr/bin/env bash
# Installs what building and testing Korvel needs on Debian 12, skipping
# packages that are already there. Run as root (or through sudo).
# With --windows it installs the MinGW-w64 cross compiler and Wine for the
# Windows build check instead; with --fuzz, clang and its libFuzzer runtime.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev libgl-dev libegl-dev libvulkan-dev qt6-translations-l10n
  libgtest-dev
  libsquish-dev libpng-dev
  xvfb xauth xdotool x11-apps fonts-dejavu-core
  desktop-file-utils appstream
)
if [ "${1:-}" = "--windows" ]; then
  packages=(g++-mingw-w64-x86-64-posix wine64)
elif [ "${1:-}" = "--fuzz" ]; then
  packages=(clang libclang-rt-14-dev ninja-build cmake)
fi

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
