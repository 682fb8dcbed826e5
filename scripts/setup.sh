#!/usr/bin/env bash
# Installs the Debian 12 packages QUORVEL builds and tests with, when any is missing.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    qt6-base-dev libqt6sql6-sqlite libmicrohttpd-dev qt6-websockets-dev qt6-multimedia-dev
    qt6-image-formats-plugins qt6-svg-dev qt6-qpa-plugins libxcb1-dev libsodium-dev
    libgtest-dev libbenchmark-dev xvfb xauth xdotool x11-utils x11-apps netpbm
    dbus at-spi2-core python3-pyatspi gir1.2-atspi-2.0 openbox iproute2
    clang libclang-rt-14-dev
    dpkg-dev lintian desktop-file-utils appstream
    wine wine64 g++-mingw-w64-x86-64
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if ((${#missing[@]} == 0)); then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo=""
if [[ $(id -u) -ne 0 ]]; then
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
