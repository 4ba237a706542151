#include "runtime/text/str_copy.h"

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
