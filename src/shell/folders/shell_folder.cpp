#include "shell/folders/shell_folder.h"
#include "files/path/path_chars.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_find.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>
#include <algorithm>
#include <cstring>

namespace {
constexpr DWORD kAskedAttributes = SFGAO_FOLDER | SFGAO_FILESYSTEM | SFGAO_BROWSABLE;
static_assert(kAskedAttributes == 0x68000000);

/// 8-bit text of at most cb bytes, which need no terminator, in the system code page, cut to cchOut
/// characters. Empty when out of memory.
void WidenText(const char* psz, std::size_t cb, wchar_t* pszOut, unsigned cchOut) {
    const auto cbText = static_cast<int>(strnlen(psz, cb));
    HeapArray<wchar_t> wide(static_cast<std::size_t>(cbText) + 1); // no byte gives two characters
    if (wide.IsReady())
        ::MultiByteToWideChar(CP_ACP, 0, psz, cbText, wide.Get(), cbText); // 0 leaves it empty
    CopyTextCut(pszOut, cchOut, wide.Get());
}
} // namespace

int StrRetToText(STRRET& ret, const ITEMIDLIST* pidlItem, wchar_t* pszOut, unsigned cchOut) {
    switch (ret.uType) {
    case STRRET_WSTR:
        CopyTextCut(pszOut, cchOut, ret.pOleStr);
        ShellFree(ret.pOleStr);
        ret.pOleStr = nullptr;
        return 1;
    case STRRET_OFFSET: {
        const unsigned cbItem = PIDL::GetSizeTotal(pidlItem);
        const unsigned nOffset = std::min<unsigned>(ret.uOffset, cbItem);
        WidenText(reinterpret_cast<const char*>(pidlItem) + nOffset, cbItem - nOffset, pszOut,
                  cchOut);
        return 1;
    }
    case STRRET_CSTR: WidenText(ret.cStr, sizeof(ret.cStr), pszOut, cchOut); return 1;
    }
    CopyTextCut(pszOut, cchOut, L"");
    return 0;
}

// Going down

iShellFolder::iShellFolder(iShellFolder* pParent, const ITEMIDLIST* pidlItem) {
    if (!pParent) {
        BindToDesktop();
        return;
    }
    IShellFolder* pFolder = nullptr;
    if (pParent->BindToObject(pidlItem, &pFolder)) Take(pFolder);
}

void iShellFolder::Take(IShellFolder* pTaken) {
    Detach();
    pUnk = pTaken;
}

int iShellFolder::BindToDesktop() {
    IShellFolder* pDesktop = nullptr;
    if (!Keep(::SHGetDesktopFolder(&pDesktop)) || !pDesktop) return 0;
    Take(pDesktop);
    return 1;
}

void iShellFolder::SetupAttributes(const ITEMIDLIST* pidlItem) {
    const DWORD nAttributes = pidlItem ? GetAttributesOf(pidlItem, kAskedAttributes) : 0;
    bFolder = (nAttributes & SFGAO_FOLDER) != 0;
    bFileSystem = (nAttributes & SFGAO_FILESYSTEM) != 0;
    bBrowsable = (nAttributes & SFGAO_BROWSABLE) != 0;
    bPlainFolder = bFolder && bFileSystem && !bBrowsable;
}

template <class Interface>
int iShellFolder::Bind(const ITEMIDLIST* pidlItem, REFIID iid, Interface** ppOut) {
    SetupAttributes(pidlItem);
    if (ppOut) *ppOut = nullptr;
    IShellFolder* pFolder = *this;
    if (!pFolder || !pidlItem || !ppOut) return Keep(E_POINTER);
    return Keep(pFolder->BindToObject(pidlItem, nullptr, iid, reinterpret_cast<void**>(ppOut)));
}

int iShellFolder::BindToObject(const ITEMIDLIST* pidlItem, IShellFolder** ppOut) {
    return Bind(pidlItem, IID_IShellFolder, ppOut);
}

int iShellFolder::BindToObject(const ITEMIDLIST* pidlItem, IShellItem** ppOut) {
    return Bind(pidlItem, IID_IShellItem, ppOut);
}

int iShellFolder::BindTo(const ITEMIDLIST* pidlItem) {
    if (!pUnk) {
        bFolder = bFileSystem = bBrowsable = bPlainFolder = 0;
        return BindToDesktop();
    }
    IShellFolder* pFolder = nullptr;
    if (!BindToObject(pidlItem, &pFolder) || !pFolder) return 0;
    Take(pFolder);
    return 1;
}

int iShellFolder::BindToAbs(const ITEMIDLIST* pidlAbs) {
    Detach();
    BindTo(nullptr); // the desktop
    for (; !PIDL::IsEmpty(pidlAbs); pidlAbs = PIDL::GetNext(pidlAbs)) {
        PIDL item;
        item.CopyOne(pidlAbs);
        BindTo(item);
    }
    return IsReady();
}

// Asking

int iShellFolder::CreateShellViewObject(HWND hwnd, IShellView** ppOut) {
    if (ppOut) *ppOut = nullptr;
    IShellFolder* pFolder = *this;
    if (!pFolder || !ppOut) return Keep(E_POINTER);
    return Keep(pFolder->CreateViewObject(hwnd, IID_IShellView, reinterpret_cast<void**>(ppOut)));
}

DWORD iShellFolder::GetAttributesOf(const ITEMIDLIST* pidlItem, DWORD nMask) {
    IShellFolder* pFolder = *this;
    SFGAOF nAttributes = nMask;
    const int bTold = Keep(
        pFolder && pidlItem ? pFolder->GetAttributesOf(1, &pidlItem, &nAttributes) : E_POINTER);
    return bTold ? nAttributes : 0;
}

int iShellFolder::GetUIObjectOf(HWND hwnd, UINT nCount, const ITEMIDLIST** ppidlItems, REFIID iid,
                                void** ppOut) {
    if (ppOut) *ppOut = nullptr;
    IShellFolder* pFolder = *this;
    if (!pFolder || !ppOut) return Keep(E_POINTER);
    return Keep(pFolder->GetUIObjectOf(hwnd, nCount, ppidlItems, iid, nullptr, ppOut));
}

int iShellFolder::GetItemObj(HWND hwnd, const ITEMIDLIST* pidlItem, REFIID iid, void** ppOut) {
    return GetUIObjectOf(hwnd, 1, &pidlItem, iid, ppOut);
}

int iShellFolder::GetDisplayNameOf(const ITEMIDLIST* pidlItem, DWORD nFlags, wchar_t* pszOut,
                                   unsigned cchOut) {
    CopyTextCut(pszOut, cchOut, L"");
    IShellFolder* pFolder = *this;
    STRRET ret{};
    if (!pFolder || !pidlItem) return Keep(E_POINTER);
    if (!Keep(pFolder->GetDisplayNameOf(pidlItem, nFlags, &ret))) return 0;
    static_cast<void>(StrRetToText(ret, pidlItem, pszOut, cchOut));
    if (pszOut && cchOut)
        pszOut[cchOut - 1] = 0; // also behind a shorter name, for who fills the buffer
    return 1;
}

ITEMIDLIST* iShellFolder::ParseDisplayName(const wchar_t* pszText, DWORD* pnAttributes) {
    IShellFolder* pFolder = *this;
    HeapArray<wchar_t> text = CopyToHeap(pszText); // the parser takes a text that it may write to
    ITEMIDLIST* pidl = nullptr;
    const int bParsed =
        Keep(pFolder && text.IsReady() ? pFolder->ParseDisplayName(nullptr, nullptr, text.Get(),
                                                                   nullptr, &pidl, pnAttributes)
                                       : E_POINTER);
    return bParsed ? pidl : nullptr;
}

int iShellFolder::GetDataFromIDList(const ITEMIDLIST* pidlItem, int nFormat, void* pData, int cb) {
    IShellFolder* pFolder = *this;
    if (!pFolder || !pidlItem) return Keep(E_POINTER);
    return Keep(::SHGetDataFromIDListW(pFolder, pidlItem, nFormat, pData, cb));
}

int iShellFolder::Compare(const ITEMIDLIST* pidlA, const ITEMIDLIST* pidlB, int nFlags,
                          int& nResult, __int64 qwParameter) {
    // Items can be one to the user although their folder tells them apart: names come first.
    const DWORD nForm = nFlags ? SHGDN_NORMAL : SHGDN_INFOLDER;
    wchar_t szNameA[MAX_PATH], szNameB[MAX_PATH];
    GetDisplayNameOf(pidlA, nForm, szNameA, MAX_PATH);
    GetDisplayNameOf(pidlB, nForm, szNameB, MAX_PATH);
    if (*szNameA && *szNameB && StrIsSame(szNameA, szNameB, 1)) {
        nResult = 0;
        return 1;
    }
    IShellFolder* pFolder = *this;
    if (!pFolder || !pidlA || !pidlB) return Keep(E_POINTER);
    if (!Keep(pFolder->CompareIDs(qwParameter, pidlA, pidlB))) return 0;
    nResult = static_cast<short>(HRESULT_CODE(hr));
    return 1;
}
