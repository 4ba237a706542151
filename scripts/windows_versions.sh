# Sourced. The Windows as which the test platform can show itself.
#
#   windows_names            their names, the oldest first, a name in a line
#   windows_registry NAME    what the registry has of that one, as regedit reads it; nothing and 1 for
#                            another name

# Name, version, build, service pack. The platform has no name of its own for the last; like the others
# it is what the registry says.
windows_versions='
winxp64  5.2   3790 2
vista    6.0   6002 2
win7     6.1   7601 1
win8     6.2   9200 0
win81    6.3   9600 0
win10   10.0  19045 0
win11   10.0  26100 0
'

windows_names() { awk 'NF { print $1 }' <<<"$windows_versions"; }

windows_registry() {
    local version build pack text=
    read -r version build pack < <(awk -v name="$1" '$1 == name { print $2, $3, $4 }' <<<"$windows_versions")
    [ -n "$version" ] || return 1
    [ "$pack" = 0 ] || text="Service Pack $pack"
    cat <<TEXT
REGEDIT4

[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion]
"CurrentVersion"="$version"
"CurrentMajorVersionNumber"=dword:$(printf %08x "${version%.*}")
"CurrentMinorVersionNumber"=dword:$(printf %08x "${version#*.}")
"CurrentBuild"="$build"
"CurrentBuildNumber"="$build"
"CSDVersion"="$text"

[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Control\\Windows]
"CSDVersion"=dword:00000${pack}00

[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Control\\ProductOptions]
"ProductType"="WinNT"
TEXT
}
