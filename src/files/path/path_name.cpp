#include "files/path/path_name.h"
#include "files/path/path_chars.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_format.h"

#include <cwchar>

namespace {
constexpr AsciiSet kNameTable(L"\"*./:<>?\\|");
constexpr wchar_t kFirstDash = 0x2012, kLastDash = 0x2015; // figure dash to horizontal bar
constexpr std::size_t kMaxName = kPathChars - 1;
constexpr std::size_t kGroupSize = 16; // of "&#N;" with any code, and its terminator
constexpr unsigned kLargestCode = 0xFFFF;

bool IsDash(wchar_t ch) { return ch >= kFirstDash && ch <= kLastDash; }

/// The character for the group that starts at psz with "&#", 0 if it is none of the table; psz
/// moves behind the group.
wchar_t TakeGroup(const wchar_t*& psz) {
    psz += 2;
    unsigned nCode = 0;
    // Stops counting where the number is too large, so that it cannot wrap into a valid one.
    for (; IsNumChar(*psz) && nCode <= kLargestCode; ++psz) {
        nCode = nCode * 10 + static_cast<unsigned>(*psz - L'0');
    }
    while (*psz && *psz != L';') ++psz;
    if (*psz) ++psz;
    auto ch = static_cast<wchar_t>(nCode <= kLargestCode ? nCode : 0);
    return kNameTable.Has(ch) ? ch : L'\0';
}
} // namespace

void ConvertSlashes(wchar_t* pszPath) {
    for (wchar_t* p = pszPath; p && *p; ++p) {
        if (*p == L'/') *p = L'\\';
    }
}

void AppendBackSlash(wchar_t* pszPath) {
    std::size_t cch = LengthOf(pszPath);
    if (cch && !EndsInSeparator(pszPath, cch)) CopyTextPart(pszPath + cch, L"\\", 1);
}

void RemoveBackSlash(wchar_t* pszPath) {
    if (pszPath) pszPath[LengthWithoutSeparator(pszPath, LengthOf(pszPath))] = 0;
}

int StripBackSlash(wchar_t* pszPath) {
    std::size_t cch = LengthOf(pszPath);
    if (!EndsInSeparator(pszPath, cch)) return 0;
    pszPath[cch - 1] = 0;
    return 1;
}

void ConvertDashes(wchar_t* pszText) {
    for (wchar_t* p = pszText; p && *p; ++p) {
        if (IsDash(*p)) *p = L'-';
    }
}

void MakeNamePretty(wchar_t* pszName) {
    if (!pszName || !*pszName) return;
    CharToUpper(pszName);
    StrToLower(pszName + 1);
}

int FixFileName(wchar_t* pszOut, const wchar_t* pszIn) {
    if (!pszOut) return 0;
    bool bWhole = CopyPath(pszOut, pszIn ? pszIn : pszOut);
    for (wchar_t* p = pszOut; *p; ++p) {
        if (kNameTable.Has(*p)) *p = L'-';
    }
    return bWhole;
}

int EncodeFileName(wchar_t* pszOut, const wchar_t* pszIn) {
    if (!pszOut) return 0;
    wchar_t szOut[kPathChars], szPiece[kGroupSize];
    std::size_t cch = 0;
    const wchar_t* p = pszIn ? pszIn : L"";
    for (; *p; ++p) {
        bool bEncode = kNameTable.Has(*p);
        szPiece[0] = *p;
        auto cchPiece = static_cast<std::size_t>(bEncode ? FormatText(szPiece, L"&#%d;", *p) : 1);
        if (cch + cchPiece > kMaxName) break;
        cch += CopyTextPart(szOut + cch, szPiece, cchPiece);
    }
    bool bWhole = !*p; // before the output is written, which may be the input
    CopyTextPart(pszOut, szOut, cch);
    return bWhole;
}

int DecodeFileName(wchar_t* pszOut, const wchar_t* pszIn) {
    if (!pszOut) return 0;
    std::size_t cch = 0; // never ahead of the input
    const wchar_t* p = pszIn ? pszIn : L"";
    while (*p && cch < kMaxName) {
        wchar_t ch = p[0] == L'&' && p[1] == L'#' ? TakeGroup(p) : *p++;
        if (ch) pszOut[cch++] = ch;
    }
    bool bWhole = !*p;
    pszOut[cch] = 0;
    return bWhole;
}

void UpdateMask(wchar_t* pszMask, const wchar_t* pszName) {
    if (!pszMask || !pszName || std::wcscmp(pszMask, pszName) == 0) return;
    std::size_t i = 0; // the star needs room behind what stays
    while (i < kMaxName - 1 && pszMask[i] && pszMask[i] != L'*' && pszMask[i] == pszName[i]) ++i;
    pszMask[i] = L'*';
    pszMask[i + 1] = 0;
}
