#include "files/disk/mix_path.h"
#include "files/disk/path_drive.h"
#include "files/path/path_chars.h"
#include "files/path/path_join.h"
#include "files/path/path_shape.h"
#include "files/stream/core_file.h"
#include "runtime/text/str_chars.h"

#include <cwchar>

namespace {
constexpr wchar_t kLevel = L'|';
constexpr wchar_t kSpelling = L'>';
constexpr wchar_t kBetweenLevels[] = L"|";
constexpr wchar_t kBetweenSpellings[] = L">";

bool EndsLevel(wchar_t ch) { return !ch || IsPathSeparator(ch); }

template <class Char>
Char* SkipSeparators(Char* psz) {
    while (IsPathSeparator(*psz)) ++psz;
    return psz;
}

// The head

/// The first level of a network path; moves on behind it.
int PutNetworkHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    wchar_t* pszStart = pszPath;
    pszPath = EndOfName(pszPath + 2); // behind the server
    if (*pszPath) pszPath = EndOfName(pszPath + 1);
    wchar_t chBehind = *pszPath;
    *pszPath = 0;
    int bFits = AppendTextCut(pszText, cch, pszStart);
    *pszPath = chBehind;
    return bFits;
}

/// The same of a path on a drive.
int PutDriveHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    wchar_t szDrive[] = L"_:";
    szDrive[0] = CharToUpper(*pszPath);
    pszPath += 2;
    if (!AppendTextCut(pszText, cch, szDrive)) return 0;
    wchar_t szName[kPathChars];
    if (GetDriveTypeFromPath(szDrive) != DRIVE_REMOTE ||
        !GetUniversalName(szName, kPathChars, szDrive, 0)) {
        return 1;
    }
    RemoveBackSlash(szName);
    return AppendTextCut(pszText, cch, kBetweenSpellings) && AppendTextCut(pszText, cch, szName);
}

int PutHead(wchar_t* pszText, unsigned cch, wchar_t*& pszPath) {
    if (IsNetworkPath(pszPath)) return PutNetworkHead(pszText, cch, pszPath);
    if (!StartsWithDrive(pszPath) || !EndsLevel(pszPath[2])) return 0;
    return PutDriveHead(pszText, cch, pszPath);
}

// The other levels

int PutLevel(wchar_t* pszText, unsigned cch, const WIN32_FIND_DATAW& data) {
    if (!AppendTextCut(pszText, cch, kBetweenLevels) ||
        !AppendTextCut(pszText, cch, data.cFileName))
        return 0;
    if (!data.cAlternateFileName[0]) return 1;
    return AppendTextCut(pszText, cch, kBetweenSpellings) &&
           AppendTextCut(pszText, cch, data.cAlternateFileName);
}

int PutAll(wchar_t* pszText, unsigned cch, wchar_t (&szPath)[kPathChars]) {
    wchar_t* p = szPath;
    if (!PutHead(pszText, cch, p)) return 0;
    for (p = SkipSeparators(p); *p; p = SkipSeparators(p)) {
        p = EndOfName(p);
        WIN32_FIND_DATAW data;
        wchar_t chBehind = *p;
        *p = 0;
        int bFound = CoreFile::GetInfo(szPath, &data);
        *p = chBehind;
        if (!bFound || !PutLevel(pszText, cch, data)) return 0;
    }
    return 1;
}

// Recognising

/// Where the path goes on behind the spelling, of cch characters, that it starts with; null if it
/// does not.
const wchar_t* MatchSpelling(const wchar_t* pszSpelling, std::size_t cch, const wchar_t* pszPath) {
    if (std::wcsncmp(pszSpelling, pszPath, cch) != 0) return nullptr;
    return EndsLevel(pszPath[cch]) ? pszPath + cch : nullptr;
}

/// Steps over one level of both. 0, with neither moved, if no spelling matches.
int Step(const wchar_t*& pszMix, const wchar_t*& pszPath) {
    const wchar_t* pszBehind = nullptr;
    const wchar_t* p = pszMix;
    for (;;) {
        const wchar_t* pszSpelling = p;
        while (*p && *p != kSpelling && *p != kLevel) ++p;
        if (!pszBehind) {
            pszBehind =
                MatchSpelling(pszSpelling, static_cast<std::size_t>(p - pszSpelling), pszPath);
        }
        if (*p != kSpelling) break;
        ++p;
    }
    if (!pszBehind) return 0;
    pszMix = *p ? p + 1 : p;
    pszPath = SkipSeparators(pszBehind);
    return 1;
}

/// As many steps as match. 1 if the mix path is used up; pszPath is then what remains of the path.
int UseUp(const wchar_t* pszMix, const wchar_t*& pszPath) {
    if (!pszMix || !pszPath) return 0;
    while (*pszMix) {
        if (!Step(pszMix, pszPath)) return 0;
    }
    return 1;
}
} // namespace

int MakeMixPath(wchar_t* pszText, unsigned cch, const wchar_t* pszPath) {
    if (!pszText || cch == 0) return 0;
    wchar_t szPath[kPathChars];
    int bFits = CopyPath(szPath, pszPath); // before the text is emptied, which may be the path
    *pszText = 0;
    if (bFits && PutAll(pszText, cch, szPath)) return *pszText != 0;
    *pszText = 0;
    return 0;
}

int IsMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath) {
    return UseUp(pszMixPath, pszPath) && !*pszPath;
}

int IsUnderMixPath(const wchar_t* pszMixPath, const wchar_t* pszPath) {
    return UseUp(pszMixPath, pszPath);
}
