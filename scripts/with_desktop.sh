#!/usr/bin/env bash
# Runs a command in an environment of its own: scripts/with_desktop.sh wine build/bin/x.exe ARGS...
# TESSALY_TEMPLATE names a folder in which the prefix to copy from is kept between runs, TESSALY_WINDOWS
# the Windows as which it is to show itself (scripts/windows_versions.sh), TESSALY_PROCESSOR the number of
# the one processor that all of it stays on.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/desktop_env.sh"
desktop_env_fixed_layout "$root/scripts/with_desktop.sh" "$@"
desktop_env_own_mounts "$root/scripts/with_desktop.sh" "$@"
template=${TESSALY_TEMPLATE:-$root/build/wine-template}
desktop_env_template "$template" "${TESSALY_WINDOWS:-}" || exit 1
trap desktop_env_stop EXIT
[ -z "${TESSALY_PROCESSOR:-}" ] || desktop_env_stay "$TESSALY_PROCESSOR"
desktop_env_start "$template${TESSALY_WINDOWS:+-$TESSALY_WINDOWS}"
"$@"
