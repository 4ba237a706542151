#include "files/disk/path_fs.h"
#include "files/operations/file_copy.h"
#include "files/path/path_chars.h"
#include "files/text/cs_file.h"

#include <windows.h>
#include <cstddef>
#include <cwchar>

// Lists of texts, each terminated, with one more terminator behind the last.

namespace {
const wchar_t* NextText(const wchar_t* psz) { return psz + std::wcslen(psz) + 1; }

/// The characters of a list, with its last terminator; 0 if it does not end within cchMost.
std::size_t GetListSize(const wchar_t* pszList, std::size_t cchMost) {
    bool bTextEnded = true; // a terminator now is the list's
    for (std::size_t n = 0; n < cchMost; ++n) {
        if (!pszList[n] && bTextEnded) return n + 1;
        bTextEnded = !pszList[n];
    }
    return 0;
}

/// Writes a folder, a separator where it has none, and a name, if there is an output. Returns the
/// characters with the terminator.
std::size_t PutPath(wchar_t* pszOut, const wchar_t* pszFolder, const wchar_t* pszName) {
    const std::size_t cchFolder = LengthOf(pszFolder), cchName = std::wcslen(pszName);
    const bool bSeparator = cchFolder && !EndsInSeparator(pszFolder, cchFolder);
    if (pszOut) {
        if (cchFolder) std::wmemcpy(pszOut, pszFolder, cchFolder);
        pszOut += cchFolder;
        if (bSeparator) *pszOut++ = L'\\';
        std::wmemcpy(pszOut, pszName, cchName + 1);
    }
    return cchFolder + bSeparator + cchName + 1;
}
} // namespace

unsigned CSFile::MakeCopyList(const wchar_t* pszTargetFolder, const wchar_t* pszSourceFolder,
                              const wchar_t* pszNames, wchar_t* pszOut) {
    std::size_t n = 0;
    auto put = [&](const wchar_t* pszFolder, const wchar_t* pszName) {
        n += PutPath(pszOut ? pszOut + n : nullptr, pszFolder, pszName);
    };
    for (const wchar_t* psz = pszNames; psz && *psz; psz = NextText(psz)) {
        put(pszTargetFolder, psz);
        if (pszSourceFolder) put(pszSourceFolder, psz);
    }
    if (pszOut) pszOut[n] = 0;
    return static_cast<unsigned>(n + 1);
}

int CSFile::CopyByList(const wchar_t* pszList, DWORD nFlags) {
    int bAll = 1;
    for (const wchar_t* psz = pszList; psz && *psz;) {
        const wchar_t* pszTarget = psz;
        const wchar_t* pszSource = NextText(psz);
        if (!*pszSource) return 0; // the list ends within a pair
        if (!Copy(pszTarget, pszSource, nFlags)) {
            if (!(nFlags & kListGoOn)) return 0;
            bAll = 0;
        }
        psz = NextText(pszSource);
    }
    return bAll;
}

int CSFile::DeleteByList(const wchar_t* pszList, DWORD nFlags) {
    int bAll = 1;
    for (const wchar_t* psz = pszList; psz && *psz; psz = NextText(psz)) {
        if (!::FileExists(psz) || Delete(psz, (nFlags & kListNotify) != 0)) continue;
        if (!(nFlags & kListGoOn)) return 0;
        bAll = 0;
    }
    return bAll;
}

int CSFile::CopyDoubleZeroTerminatedList(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszList) {
    if (!pszOut || !pszList) return 0;
    const std::size_t cch = GetListSize(pszList, cchOut); // what does not fit is not read either
    if (!cch) return 0;
    std::wmemmove(pszOut, pszList, cch);
    return 1;
}
