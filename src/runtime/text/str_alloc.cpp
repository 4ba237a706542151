#include "runtime/text/str_alloc.h"

#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <utility>

namespace {
/// A copy with its terminator; null for a null text or without memory.
wchar_t* NewCopy(const wchar_t* pszText, std::size_t cch) {
    if (!pszText) return nullptr;
    auto* pszCopy = static_cast<wchar_t*>(std::malloc((cch + 1) * sizeof(wchar_t)));
    if (pszCopy) std::wmemcpy(pszCopy, pszText, cch + 1);
    return pszCopy;
}
} // namespace

void StrAllocCopy(wchar_t*& pszText, unsigned& cch, const wchar_t* pszNew, int bWipe) {
    std::size_t cchNew = pszNew ? std::wcslen(pszNew) : 0;
    wchar_t* pszCopy = NewCopy(pszNew, cchNew); // before the old one goes: it may lie in there
    if (pszText && bWipe) {
        ::SecureZeroMemory(pszText, (static_cast<std::size_t>(cch) + 1) * sizeof(wchar_t));
    }
    std::free(std::exchange(pszText, pszCopy));
    cch = pszCopy ? static_cast<unsigned>(cchNew) : 0;
}

void StrRealloc(wchar_t*& pszText, const wchar_t* pszNew) {
    wchar_t* pszCopy = pszNew && *pszNew ? NewCopy(pszNew, std::wcslen(pszNew)) : nullptr;
    std::free(std::exchange(pszText, pszCopy));
}

void StrErase(wchar_t* pszText, unsigned n) {
    if (pszText) ::SecureZeroMemory(pszText, static_cast<std::size_t>(n) * sizeof(wchar_t));
}

int IsMemSetTo(const void* pBlock, unsigned char b, std::size_t n) {
    if (!pBlock || n == 0) return 0;
    const auto* pBytes = static_cast<const unsigned char*>(pBlock);
    return std::all_of(pBytes, pBytes + n, [b](unsigned char bRead) { return bRead == b; });
}
