#include "shell/folders/shell_icons.h"
#include "shell/namespace/pidl.h"

#include <shellapi.h>
#include <shlobj.h>

namespace {
/// What the shell tells of an object, all zero if it does not know it.
SHFILEINFOW GetInfoOf(const ITEMIDLIST* pidl, UINT nFlags) {
    SHFILEINFOW info{};
    if (!pidl || !::SHGetFileInfoW(reinterpret_cast<const wchar_t*>(pidl), 0, &info, sizeof(info),
                                   nFlags | SHGFI_PIDL))
        return {};
    return info;
}

UINT GetIconFlags(int bOpen, int bLarge, int bLink) {
    return (bOpen ? SHGFI_OPENICON : 0u) | (bLarge ? SHGFI_LARGEICON : SHGFI_SMALLICON) |
           (bLink ? SHGFI_LINKOVERLAY : 0u);
}
} // namespace

int GetSysIconIndex(const ITEMIDLIST* pidl, int bOpen, int bLarge, int bLink) {
    return GetInfoOf(pidl, GetIconFlags(bOpen, bLarge, bLink) | SHGFI_SYSICONINDEX).iIcon;
}

HICON GetIconOf(const ITEMIDLIST* pidl, int bOpen, int bLarge, int bLink, int* pnIndex) {
    UINT nFlags = GetIconFlags(bOpen, bLarge, bLink) | SHGFI_ICON | SHGFI_SHELLICONSIZE;
    if (pnIndex) nFlags |= SHGFI_SYSICONINDEX;
    const SHFILEINFOW info = GetInfoOf(pidl, nFlags);
    if (pnIndex) *pnIndex = info.iIcon;
    return info.hIcon;
}

HICON GetIconOf(const wchar_t* pszPath, int bOpen, int bLarge, int bLink, int* pnIndex) {
    PIDL list;
    list.Attach(GetPidlOf(pszPath));
    return list ? GetIconOf(list, bOpen, bLarge, bLink, pnIndex) : nullptr;
}

DWORD GetAttributesOf(const ITEMIDLIST* pidl) {
    return GetInfoOf(pidl, SHGFI_ATTRIBUTES).dwAttributes;
}

DWORD ShouldShowExt() {
    SHELLFLAGSTATE state{};
    ::SHGetSettings(&state, SSF_SHOWEXTENSIONS);
    return state.fShowExtensions ? 0xFFFFFFFF : 0;
}
