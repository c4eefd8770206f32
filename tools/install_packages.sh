#!/usr/bin/env bash
# Installs what building and testing need, from Debian's packages, where it is missing; with names, those instead.
set -euo pipefail

packages=(g++ cmake ninja-build ccache pkg-config python3
          libfmt-dev nlohmann-json3-dev libpugixml-dev libsodium-dev libcurl4-openssl-dev libzip-dev libgtest-dev libbenchmark-dev
          libfltk1.3-dev libx11-dev fonts-liberation xvfb xauth xdotool x11-apps imagemagick strace)
[ $# -eq 0 ] || packages=("$@")

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
