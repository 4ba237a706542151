#include "shell/clipboard/clipboard.h"
#include "runtime/base/ownership.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>

namespace {
/// A moveable block, which the clipboard wants; the other flag is what programs ask for since ever.
HGLOBAL AllocateBlock(UINT cb) { return ::GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, cb); }

bool FillBlock(HGLOBAL hBlock, const void* pData, UINT cb) {
    void* p = ::GlobalLock(hBlock);
    if (!p) return false;
    std::memcpy(p, pData, cb);
    ::GlobalUnlock(hBlock);
    return true;
}

/// The bytes of a text with its terminator; 0 for one that no block can hold.
UINT GetTextBytes(const wchar_t* pszText) {
    const std::size_t cb = (std::wcslen(pszText) + 1) * sizeof(wchar_t);
    return cb <= UINT32_MAX ? static_cast<UINT>(cb) : 0;
}

/// Calls fnRead with the start and the size of the clipboard's block; false without one.
template <class Fn>
bool ReadBlock(UINT nFormat, Fn fnRead) {
    HANDLE hBlock = ::GetClipboardData(nFormat);
    if (!hBlock) return false;
    const void* p = ::GlobalLock(hBlock);
    if (!p) return false;
    fnRead(p, ::GlobalSize(hBlock));
    ::GlobalUnlock(hBlock);
    return true;
}

/// The text's length with its terminator, 0 without one; up to cchOut characters of it go to pszOut
/// if that is not null. Another program made the block: the terminator may be missing in it.
UINT ReadText(wchar_t* pszOut, std::size_t cchOut) {
    std::size_t cch = 0;
    ReadBlock(CF_UNICODETEXT, [&](const void* p, SIZE_T cb) {
        const auto* psz = static_cast<const wchar_t*>(p);
        const std::size_t cchText = wcsnlen(psz, cb / sizeof(wchar_t));
        cch = cchText + 1;
        if (!pszOut) return;
        const std::size_t cchCopied = std::min(cchText, cchOut - 1);
        std::wmemcpy(pszOut, psz, cchCopied);
        pszOut[cchCopied] = 0;
    });
    return static_cast<UINT>(cch);
}
} // namespace

Clipboard::Clipboard(HWND hwndOwner) : bOpen(::OpenClipboard(hwndOwner)) {}

Clipboard::~Clipboard() {
    if (bOpen) ::CloseClipboard();
    bOpen = 0;
}

int Clipboard::IsDataAvailable(UINT nFormat) const {
    return ::IsClipboardFormatAvailable(nFormat) != FALSE;
}

int Clipboard::Clear() { return ::EmptyClipboard() != FALSE; }

int Clipboard::AddData(UINT nFormat, const BYTE* pData, UINT cb) {
    if (!pData) return 0;
    HGLOBAL hBlock = AllocateBlock(cb);
    if (!hBlock || !FillBlock(hBlock, pData, cb)) return 0;
    return ::SetClipboardData(nFormat, hBlock) != nullptr;
}

int Clipboard::AddStr(const wchar_t* pszText) {
    if (!pszText) pszText = L"";
    const UINT cb = GetTextBytes(pszText);
    return cb && AddData(CF_UNICODETEXT, reinterpret_cast<const BYTE*>(pszText), cb);
}

int Clipboard::GetData(UINT nFormat, BYTE* pBuffer, UINT cb) const {
    if (!pBuffer) return 0;
    return ReadBlock(nFormat, [&](const void* p, SIZE_T cbBlock) {
        const std::size_t cbCopied = std::min<std::size_t>(cb, cbBlock);
        std::memcpy(pBuffer, p, cbCopied);
        std::memset(pBuffer + cbCopied, 0, cb - cbCopied);
    });
}

int Clipboard::GetStr(wchar_t* pszOut, UINT) const {
    return static_cast<int>(ReadText(pszOut, SIZE_MAX));
}

int Clipboard::GetText(wchar_t* pszOut, UINT cchOut) {
    Clipboard clipboard(nullptr);
    if (!clipboard.IsDataAvailable(CF_UNICODETEXT)) {
        if (pszOut) *pszOut = 0;
        return 0;
    }
    const UINT cch = ReadText(nullptr, 0);
    if (cchOut && cchOut < cch) return 0;
    if (pszOut && cch) ReadText(pszOut, cch); // no more than was measured, whoever writes meanwhile
    return static_cast<int>(cch);
}

int Clipboard::SetText(HWND hwndOwner, const wchar_t* pszText) {
    if (!pszText) pszText = L"";
    const UINT cb = GetTextBytes(pszText);
    OwnedGlobal block(cb ? AllocateBlock(cb) : nullptr);
    // The block first: what the clipboard holds is given up only when there is something new.
    if (!block || !FillBlock(block.Get(), pszText, cb)) return 0;
    Clipboard clipboard(hwndOwner);
    if (!clipboard.bOpen) return 0;
    clipboard.Clear();
    if (!::SetClipboardData(CF_UNICODETEXT, block.Get())) return 0;
    static_cast<void>(block.Release()); // the system's now
    return 1;
}
