#include "store/registry/home_folder.h"
#include "runtime/text/str_format.h"

namespace {
constexpr std::size_t kHomePathSize = 257;
constexpr std::size_t kRestrictionsPathSize = 256;

/// False without a key, and where only a part of its path would fit: that would be another key.
bool OpenSetup(RegKey& key, const wchar_t* pszMakerKey, const wchar_t* pszProduct, int bWrite) {
    wchar_t szPath[kHomePathSize + 1]; // one more, in which a longer path shows
    std::size_t cch = FormatText(szPath, L"HKLM\\%s\\%s\\Setup", pszMakerKey, pszProduct);
    return cch < kHomePathSize && key.Open(szPath, bWrite);
}
} // namespace

int ProcessHomeFolder(RegKey::Op op, const wchar_t* pszProduct, wchar_t* pszText,
                      unsigned cchText) {
    if (!pszProduct) return 0;
    int bWrite = RegKey::IsWritable(op);
    if (bWrite) RegKey::CS2WA(0, pszProduct);
    RegKey key;
    if (!OpenSetup(key, kMakerKey, pszProduct, bWrite)) {
        // What was installed by an older version is only read where it lies.
        if (bWrite || !OpenSetup(key, kFormerMakerKey, pszProduct, 0)) return 0;
    }
    return key.ProcessEntry(op, L"Home", pszText, cchText);
}

int GetHomeFolder(const wchar_t* pszProduct, wchar_t* pszOut) {
    if (!pszOut) return 0;
    *pszOut = 0;
    return ProcessHomeFolder(RegKey::OpGet, pszProduct, pszOut, MAX_PATH);
}

int Restricted(const wchar_t* pszProduct, const wchar_t* pszName) {
    if (!pszProduct || !pszName) return 0;
    wchar_t szPath[kRestrictionsPathSize + 1]; // as in OpenSetup
    std::size_t cch =
        FormatText(szPath, L"HKCU\\%s\\%s\\Setup\\Restrictions", kMakerKey, pszProduct);
    if (cch >= kRestrictionsPathSize) return 0;
    RegKey key(szPath, 0);
    return key.GetHandle() ? key.GetInt(pszName, 0) : 0;
}

int IsPowerUser() {
    // The rights of the key tell less than an attempt: groups and policies decide too.
    wchar_t szPath[kHomePathSize];
    FormatText(szPath, L"HKLM\\%s", kMakerKey);
    RegKey key(szPath, 1);
    if (!key.GetHandle() || !key.PutDword(L"Temp", 0, 1)) return 0;
    key.DelValue(L"Temp");
    return 1;
}
