#!/usr/bin/env bash
# bench/portable_openssl.sh FOLDER: builds OpenSSL's libcrypto there from Debian's source package,
# without its assembly: the portable C that our digests are held against. Takes about two minutes,
# and nothing when it has been built before.
set -eu
folder=$1
[ -e "$folder/built" ] && exit 0
"$(dirname "$0")/../scripts/install_packages.sh" dpkg-dev make perl
rm -rf "$folder"; mkdir -p "$folder/apt/lists/partial" "$folder/lib"
cd "$folder"

# The machine's own package sources, read for source packages, with lists of their own.
sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >apt/debian.sources
apt=(apt-get -qq -o Dir::Etc::sourcelist="$PWD/apt/debian.sources" -o Dir::Etc::sourceparts=/dev/null
    -o Dir::State::lists="$PWD/apt/lists" -o APT::Sandbox::User=root)
"${apt[@]}" update
. /etc/os-release # the release's own version: those of its updates come and go
"${apt[@]}" source --download-only "openssl/$VERSION_CODENAME"
dpkg-source --skip-patches -x openssl_*.dsc source >/dev/null 2>&1

cd source
./Configure linux-x86_64 no-asm shared no-tests no-legacy no-engine >/dev/null
make -s -j"$(nproc)" build_generated >/dev/null
make -s -j"$(nproc)" libcrypto.so >/dev/null
cp -P libcrypto.so* ../lib/
touch ../built
