#!/usr/bin/env bash
# Installs what building and testing need, and the packages given as arguments, from Debian's
# packages. Does nothing, and asks for no rights, when all of it is there.
set -eu

packages=(
    cmake ninja-build ccache python3
    g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64
    googletest
    clang clang-format clang-tidy lld
    nsis
    wine wine64 fonts-wine fonts-dejavu-core
    doxygen chromium-headless-shell
    xvfb xdotool xclip imagemagick procps python3-aiohttp curl
)
packages+=("$@") # what a caller needs besides
missing=()
for name in "${packages[@]}"; do
    [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$name" 2>/dev/null)" = "ii " ] || missing+=("$name")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "install_packages: needs root or sudo for: ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
