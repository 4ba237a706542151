#!/usr/bin/env bash
# Has GCC's driver link by LLVM's linker: g++ -wrapper cmake/link_by_lld.sh ... GCC for this target calls
# GNU's linker by its full path, whatever -fuse-ld says; that one looks each section up from the first on,
# which takes it 15 seconds for a large test program, where this takes half a second.
set -eu
case ${1##*/} in
    collect2) shift ;;
    *) exec "$@" ;; # the compiler's other parts
esac
arguments=()
while [ $# -gt 0 ]; do
    case $1 in
        -plugin) shift ;; # for link-time optimisation
        -plugin-opt=*) ;;
        *) arguments+=("$1") ;;
    esac
    shift
done
exec ld.lld "${arguments[@]}"
