#include "files/path/path_chars.h"
#include "files/path/path_shape.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>

// What a PIDL has to ask folders for. Lists are walked from the desktop on, one item at a time:
// when it has been dealt with, its folder is the one for the next item. Where it is no folder the
// same one stays.

namespace {
constexpr const wchar_t* kNameSeparator = L" \u00BB ";
} // namespace

int PIDL::CompareAbs(const ITEMIDLIST* pidlA, const ITEMIDLIST* pidlB) {
    iShellFolder folder(nullptr, nullptr);
    int nResult = 0;
    for (;; pidlA = GetNext(pidlA), pidlB = GetNext(pidlB)) {
        if (!pidlA || !pidlB) return !pidlA && !pidlB ? 0 : pidlB ? -2 : 2;
        PIDL itemA, itemB;
        itemA.CopyOne(pidlA);
        itemB.CopyOne(pidlB);
        if (itemA.IsEmpty()) return itemB.IsEmpty() ? 0 : -2;
        if (itemB.IsEmpty()) return 2;
        if (!folder.Compare(itemA, itemB, 0, nResult, 0)) return nResult;
        if (nResult) return nResult < 0 ? -1 : 1;
        folder.BindTo(itemA);
    }
}

int PIDL::IsIE(HWND hwnd) const { return IsSpecialFolder(hwnd, CSIDL_INTERNET); }

int PIDL::IsSpecialFolder(HWND hwnd, int nCsidl) const {
    LPITEMIDLIST pidlFolder = nullptr;
    if (FAILED(::SHGetSpecialFolderLocation(hwnd, nCsidl, &pidlFolder)) || !pidlFolder) return 0;
    PIDL special;
    special.Attach(pidlFolder);
    return CompareAbs(special) == 0;
}

ITEMIDLIST* PIDL::GetChildOf(const ITEMIDLIST* pidlParent) const {
    iShellFolder folder(nullptr, nullptr);
    const ITEMIDLIST* pidlRest = pidl;
    for (; !IsEmpty(pidlRest); pidlRest = GetNext(pidlRest), pidlParent = GetNext(pidlParent)) {
        if (IsEmpty(pidlParent)) return GetFirst(pidlRest);
        PIDL item, itemOfParent;
        item.CopyOne(pidlRest);
        itemOfParent.CopyOne(pidlParent);
        int nResult = 0;
        if (!folder.Compare(item, itemOfParent, 0, nResult, 0) || nResult) return nullptr;
        folder.BindTo(item);
    }
    return nullptr;
}

int PIDL::GetDisplayPath(const ITEMIDLIST* pidlAsked, wchar_t* pszOut, unsigned cchOut) {
    if (!CopyTextCut(pszOut, cchOut, L"") || !pidlAsked) return 0;
    iShellFolder folder(nullptr, nullptr);
    if (IsEmpty(pidlAsked)) folder.GetDisplayNameOf(pidlAsked, SHGDN_NORMAL, pszOut, cchOut);
    for (; !IsEmpty(pidlAsked); pidlAsked = GetNext(pidlAsked)) {
        PIDL item;
        item.CopyOne(pidlAsked);
        wchar_t szName[MAX_PATH];
        if (!folder.GetDisplayNameOf(item, SHGDN_INFOLDER, szName, MAX_PATH)) break;
        if (!IsWipedName(szName)) {
            if (*pszOut) AppendTextCut(pszOut, cchOut, kNameSeparator);
            AppendTextCut(pszOut, cchOut, szName);
        }
        folder.BindTo(item);
    }
    return *pszOut;
}

int PIDL::GetDisplayPath(wchar_t* pszOut, unsigned cchOut) const {
    return GetDisplayPath(pidl, pszOut, cchOut);
}

int PIDL::GetDisplayFileName(const ITEMIDLIST* pidlAsked, wchar_t* pszOut, unsigned cchOut) {
    if (!CopyTextCut(pszOut, cchOut, L"") || !pidlAsked) return 0;
    iShellFolder folder;
    PIDL parent(pidlAsked);
    parent.RemoveLast();
    folder.BindToAbs(parent);
    const ITEMIDLIST* pidlLast = GetLast(pidlAsked);
    folder.GetDisplayNameOf(pidlLast ? pidlLast : pidlAsked, SHGDN_INFOLDER, pszOut, cchOut);
    return *pszOut;
}

int PIDL::GetDisplayFileName(wchar_t* pszOut, unsigned cchOut) const {
    return GetDisplayFileName(pidl, pszOut, cchOut);
}
