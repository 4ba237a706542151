#include "runtime/text/str_copy.h"

#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <utility>

// Building texts

void CopyStr(wchar_t*& pszDest, const wchar_t* pszSource, unsigned& cch) {
    StrCopy(pszDest, pszSource, cch);
}

void CopyStrZ(wchar_t*& pszDest, const wchar_t* pszSource, unsigned& cch) {
    StrCopy(pszDest, pszSource, cch);
    CharAdd(pszDest, L'\0', cch);
}

void StrCopy(wchar_t*& pszDest, const wchar_t*& pszSource, unsigned& cch) {
    while (pszSource && *pszSource) CharAdd(pszDest, *pszSource++, cch);
}

void CharAdd(wchar_t*& pszDest, wchar_t ch, unsigned& cch) {
    CharAdd(pszDest, ch);
    ++cch;
}

// Steps over text

namespace {
template <class Char>
Char* MoveOn(Char*& p) {
    if (p) ++p;
    return p;
}

template <class Char>
Char* MoveOnFrom(Char*& p) {
    Char* pOld = p;
    MoveOn(p);
    return pOld;
}

template <class Char>
Char* MoveBack(const wchar_t* pStart, Char*& p) {
    if (p && p > pStart) --p;
    return p;
}
} // namespace

void CharAdd(wchar_t*& pszDest, wchar_t ch) {
    if (pszDest) *pszDest++ = ch;
}

int CharCopy(wchar_t*& pszDest, const wchar_t*& pszSource) {
    if (!pszDest || !pszSource) return 0;
    wchar_t ch = *pszSource++;
    *pszDest++ = ch;
    return ch != 0;
}

const wchar_t* IncPsz(const wchar_t*& psz) { return MoveOn(psz); }
wchar_t* IncPsz(wchar_t*& psz) { return MoveOn(psz); }
const wchar_t* PszInc(const wchar_t*& psz) { return MoveOnFrom(psz); }
wchar_t* PszInc(wchar_t*& psz) { return MoveOnFrom(psz); }
const wchar_t* DecPsz(const wchar_t* pszStart, const wchar_t*& psz) {
    return MoveBack(pszStart, psz);
}
wchar_t* DecPsz(const wchar_t* pszStart, wchar_t*& psz) { return MoveBack(pszStart, psz); }
wchar_t CharAt(const wchar_t* psz) { return psz ? *psz : L'\0'; }

// Texts on the heap. The functions' interface owns them by plain pointers, so that nothing but
// these functions may know where they come from.

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

// Blocks of memory

void StrErase(wchar_t* pszText, unsigned n) {
    if (pszText) ::SecureZeroMemory(pszText, static_cast<std::size_t>(n) * sizeof(wchar_t));
}

int IsMemSetTo(const void* pBlock, unsigned char b, std::size_t n) {
    if (!pBlock || n == 0) return 0;
    const auto* pBytes = static_cast<const unsigned char*>(pBlock);
    return std::all_of(pBytes, pBytes + n, [b](unsigned char bRead) { return bRead == b; });
}
