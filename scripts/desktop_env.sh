# Sourced. A throw-away Windows-like environment: its own home, Wine prefix and virtual display,
# with one desktop for all programs. Nothing of the caller's session is read or written.
#
#   desktop_env_template FOLDER [WINDOWS]
#                              makes a prefix to copy from, once per Wine version: FOLDER, which shows
#                              itself as the platform does without being told, as Windows 7. With a
#                              name of windows_versions.sh also FOLDER-WINDOWS, which shows itself so
#   desktop_env_start [BASE]   makes it; BASE is such a prefix, if given
#   desktop_env_stop           ends every process of it and removes it
#   desktop_env_fixed_layout COMMAND...
#                              to be called first: starts the script anew, as COMMAND, where the memory
#                              of every program is laid out alike
#   desktop_env_own_mounts COMMAND...
#                              to be called first, if the environment shall have two small disks:
#                              starts the script anew, as COMMAND, where what it mounts is seen by
#                              nobody else and goes with its last process
#
#   desktop_env_stay N         to be called before the start: this process and all that it starts stay on
#                              the N-th processor that it may have, counted round;
#                              DESKTOP_ENV_PROCESSORS are all of them, as taskset takes them
#
#   desktop_env_processes VALUE  lists the processes whose TESSALY_RUN is that value
#   desktop_env_kill VALUE       ends them
#
# After the start DESKTOP_ENV is its folder, and HOME, WINEPREFIX and DISPLAY belong to it.
# With DESKTOP_ENV_DISPLAY set, that display is used and no virtual one is started. Of the disks tell,
# as Wine spells them, TESSALY_SMALL_DISK (256 KiB, empty) and TESSALY_READ_ONLY_DISK (holds a file
# "file" with "old" in it); they are not set where this user may not mount.

. "$(dirname "${BASH_SOURCE[0]}")/windows_versions.sh"

desktop_env_variables() {
    export HOME="$1/home" WINEPREFIX="$1/prefix"
    export WINEDEBUG="${TESSALY_WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree,mshtml="
    export LC_ALL=C.UTF-8 # without it, no file name beyond ASCII can be created
    export XCOMPOSEFILE=/dev/null # no sequences of keys: each program with windows would read thousands
    export FONTCONFIG_SYSROOT="$1/no-fonts" # the prefix's own fonts are all: each program would read the others
    export TZ=UTC
    unset XDG_RUNTIME_DIR WAYLAND_DISPLAY
    mkdir -p "$HOME" "$FONTCONFIG_SYSROOT/etc/fonts"
    cat >"$FONTCONFIG_SYSROOT/etc/fonts/fonts.conf" <<TEXT
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig><dir>/fonts</dir><cachedir>/cache</cachedir></fontconfig>
TEXT
}

# Makes a Wine prefix in $1/prefix. Takes 5 to 15 seconds, no display.
desktop_env_make_prefix() (
    desktop_env_variables "$1"
    unset DISPLAY
    wineboot -i >/dev/null 2>&1
    explorer='HKCU\Software\Wine\Explorer'
    # One desktop for all processes; otherwise windows of two programs do not find each other.
    wine reg add "$explorer" /v Desktop /d shell /f >/dev/null
    wine reg add "$explorer\\Desktops" /v shell /d 1024x768 /f >/dev/null
    # A crash ends the program with a backtrace; the dialog would hang the run.
    wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null
    desktop_env_keep_utc
    wineserver -w
    # The profile's folders are links into HOME; as links, files there would become desktop icons.
    for link in "$WINEPREFIX"/drive_c/users/*/{Desktop,Documents,Downloads,Music,Pictures,Videos}; do
        if [ -L "$link" ]; then rm "$link"; mkdir "$link"; fi
    done
    # Of the platform's fonts the Western ones: each program that shows a window reads all that are there.
    fonts=()
    for font in /usr/share/wine/fonts/{*.ttf,{coure,smalle,sserife,sseriff,vgafix,vgasys}.fon}; do
        case $font in *_jp.ttf) ;; *) fonts+=("$font") ;; esac
    done
    cp -n "${fonts[@]}" "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
)

# Each program looks for the machine's time zone among all that the registry tells of: some hundred keys
# before the one that TZ means. The platform takes Greenwich's for UTC.
desktop_env_keep_utc() {
    local zones='HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\Time Zones'
    { printf 'REGEDIT4\n'
      wine reg query "$zones" | tr -d '\r' | grep -F "$zones\\" |
          grep -vE '\\(UTC|Greenwich Standard Time)$' | sed 's/.*/\n[-&]/'; } >"$WINEPREFIX/zones.reg"
    wine regedit /S "$WINEPREFIX/zones.reg"
    rm "$WINEPREFIX/zones.reg"
}

# desktop_env_copy FROM TO: a prefix. The platform's own files, which nothing writes to, are the same ones
# in both where the disk can do that: they are most of it, and programs of several environments then share
# them in memory, too.
desktop_env_copy() {
    local own=drive_c/windows/system32
    mkdir -p "$2"
    tar -C "$1" --exclude="./$own" -cf - . | tar -C "$2" -xf - &&
        { cp -al "$1/$own" "$2/$own" 2>/dev/null || { rm -rf "${2:?}/$own"; cp -a --reflink=auto "$1/$own" "$2/$own"; }; }
}

desktop_env_template() {
    local version # of the platform, and of what is made of it
    version=$(wine --version 2>/dev/null; declare -f desktop_env_make_prefix desktop_env_keep_utc | cksum)
    if [ "$(cat "$1/made-by" 2>/dev/null)" != "$version" ]; then
        rm -rf "$1"; mkdir -p "$1"
        desktop_env_make_prefix "$1" || return 1
        echo "$version" >"$1/made-by"
    fi
    [ -z "${2:-}" ] || desktop_env_windows_template "$1" "$1-$2" "$2"
}

# Every program of such a prefix is told that Windows: it stands where Windows itself has it.
desktop_env_windows_template() {
    local registry made_by
    registry=$(windows_registry "$3") || { echo "desktop_env: no Windows is called $3" >&2; return 1; }
    made_by=$(cat "$1/made-by" <(echo "$registry"))
    [ "$(cat "$2/made-by" 2>/dev/null)" = "$made_by" ] && return 0
    rm -rf "$2"; mkdir -p "$2"
    desktop_env_copy "$1/prefix" "$2/prefix"
    echo "$registry" >"$2/windows.reg"
    (desktop_env_variables "$2"; unset DISPLAY; wine regedit /S "$2/windows.reg" && wineserver -w) || return 1
    echo "$made_by" >"$2/made-by"
}

# With a random layout the kernel puts the heap of one program in some 7000 where Wine's loader must have
# the page that it shares with its server: that program then ends before it has begun
# (ERROR_INTERNAL_ERROR of CreateProcess, 9009 at the prompt).
desktop_env_fixed_layout() {
    local no_random=0x40000 # ADDR_NO_RANDOMIZE of <sys/personality.h>
    (( (0x$(cat /proc/self/personality) & no_random) == 0 )) || return 0
    setarch --addr-no-randomize true 2>/dev/null || return 0
    exec setarch --addr-no-randomize "$@"
}

# The first call notes the mounts that everybody sees; later ones find the note and do nothing.
desktop_env_own_mounts() {
    [ -z "${DESKTOP_ENV_COMMON_MOUNTS:-}" ] || return 0
    DESKTOP_ENV_COMMON_MOUNTS=$(readlink /proc/self/ns/mnt) || return 0
    export DESKTOP_ENV_COMMON_MOUNTS
    unshare -m true 2>/dev/null || return 0
    exec unshare -m -- "$@"
}

desktop_env_mount_disks() {
    local small=$DESKTOP_ENV/small-disk read_only=$DESKTOP_ENV/read-only-disk
    unset TESSALY_SMALL_DISK TESSALY_READ_ONLY_DISK
    [ "${DESKTOP_ENV_COMMON_MOUNTS:-}" ] || return 0
    [ "$(readlink /proc/self/ns/mnt)" != "$DESKTOP_ENV_COMMON_MOUNTS" ] || return 0
    mkdir "$small" "$read_only"
    mount -t tmpfs -o size=256k tessaly "$small" 2>/dev/null || return 0
    export TESSALY_SMALL_DISK="Z:${small//\//\\}"
    mount -t tmpfs -o size=256k tessaly "$read_only" 2>/dev/null || return 0
    printf old >"$read_only/file"
    mount -o remount,ro "$read_only" || return 0
    export TESSALY_READ_ONLY_DISK="Z:${read_only//\//\\}"
}

desktop_env_start() {
    DESKTOP_ENV=$(mktemp -d --suffix=.tessaly)
    if [ -n "${1:-}" ]; then
        desktop_env_copy "$1/prefix" "$DESKTOP_ENV/prefix"
    else
        desktop_env_make_prefix "$DESKTOP_ENV"
    fi
    desktop_env_variables "$DESKTOP_ENV"
    desktop_env_mount_disks
    if [ -n "${DESKTOP_ENV_DISPLAY:-}" ]; then
        export DISPLAY="$DESKTOP_ENV_DISPLAY"
    else
        # The server itself picks a free number and tells it when it is ready.
        mkfifo "$DESKTOP_ENV/display"
        Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$DESKTOP_ENV/display" >/dev/null 2>&1 &
        DESKTOP_ENV_XVFB=$!
        DISPLAY=":$(head -n 1 "$DESKTOP_ENV/display")"
        export DISPLAY
    fi
}

# Each call of the platform asks its server, which is a process of its own: between two processors such
# a question takes three times as long as on one.
desktop_env_stay() {
    local range processors=()
    DESKTOP_ENV_PROCESSORS=$(taskset -cp "$BASHPID" | sed 's/.*: //') || return 0
    for range in ${DESKTOP_ENV_PROCESSORS//,/ }; do
        mapfile -t -O ${#processors[@]} processors < <(seq "${range%-*}" "${range#*-}")
    done
    taskset -cp "${processors[$1 % ${#processors[@]}]}" "$BASHPID" >/dev/null
}

# Every process of a run inherits its TESSALY_RUN, whoever started it and whatever its parent is now.
desktop_env_processes() {
    local folder pid
    for folder in /proc/[0-9]*; do
        pid=${folder#/proc/}
        if [ "$pid" = "$$" ] || [ "$pid" = "$BASHPID" ] || [ "$pid" = "$PPID" ]; then continue; fi
        tr '\0' '\n' 2>/dev/null <"$folder/environ" | grep -qxF "TESSALY_RUN=$1" || continue
        echo "$pid $(tr '\0' ' ' <"$folder/cmdline" 2>/dev/null)"
    done 2>/dev/null
}

desktop_env_kill() {
    local pid rest
    desktop_env_processes "$1" | while read -r pid rest; do kill -KILL "$pid" 2>/dev/null; done
    return 0
}

desktop_env_stop() {
    [ -n "${DESKTOP_ENV:-}" ] || return 0
    timeout -k 2 10 wineserver -k >/dev/null 2>&1 || true
    # Returns when the last process of the prefix has gone; a process that does not die is killed.
    if ! timeout -k 2 10 wineserver -w >/dev/null 2>&1; then
        timeout -k 2 10 wineserver -k9 >/dev/null 2>&1 || true
        timeout -k 2 10 wineserver -w >/dev/null 2>&1 || true
    fi
    if [ -n "${DESKTOP_ENV_XVFB:-}" ]; then
        kill "$DESKTOP_ENV_XVFB" 2>/dev/null || true
        wait "$DESKTOP_ENV_XVFB" 2>/dev/null || true
        DESKTOP_ENV_XVFB=
    fi
    umount -l "$DESKTOP_ENV/small-disk" "$DESKTOP_ENV/read-only-disk" 2>/dev/null || true
    rm -rf "$DESKTOP_ENV"
    DESKTOP_ENV=
}

# Has programs run with checked heaps; what is found is told as "err:heap". Each argument is one of
#   marks:FILE  the ends of blocks and what is freed are marked; the program looks at them itself
#   block:FILE  and the platform looks at the block that a call of a heap is about
#   calls:FILE  and the platform looks at all blocks at each call of a heap
desktop_env_check_heaps() {
    local options='HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\Image File Execution Options'
    local check flags
    { echo 'REGEDIT4'
      for check in "$@"; do
          case $check in
              marks:*) flags=30 ;; # tail and free checking
              block:*) flags=70 ;; # and validation of parameters
              calls:*) flags=f0 ;; # and validation of parameters and of all
          esac
          printf '\n[%s\%s]\n"GlobalFlag"=dword:000000%s\n' "$options" "${check#*:}" "$flags"
      done; } >"$DESKTOP_ENV/heap.reg"
    wine regedit /S "$DESKTOP_ENV/heap.reg"
}
