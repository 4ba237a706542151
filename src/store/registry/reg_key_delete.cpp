// Deleting: single values, and whole trees by walks that end even beside what cannot be deleted.

#include "store/registry/reg_key.h"

#include "store/registry/reg_key_names.h"

#include <cwchar>

namespace {
constexpr int kNameSize = 257; // of the longest key name that is walked, with the terminator

/// A walk over names that vanish while they are walked: the index stays where it is as long as what
/// it names gets deleted. A name that comes a second time was not, and is stepped over.
class DeletingWalk {
  public:
    using ReadName = LSTATUS (RegKey::*)(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const;

    DeletingWalk(const RegKey& keyToWalk, ReadName pfnReadName)
        : key(keyToWalk), pfnRead(pfnReadName) {}

    /// The next name to delete; null at the end. Any error but a name that is too long is the end:
    /// it would come again at every index.
    const wchar_t* Next() {
        for (;; ++nAt) {
            LSTATUS status = (key.*pfnRead)(nAt, szName, kNameSize);
            if (status == ERROR_MORE_DATA) continue;
            if (status != ERROR_SUCCESS) return nullptr;
            if (IsSameRegName(szName, szPrevious)) continue;
            std::wcscpy(szPrevious, szName);
            return szName;
        }
    }

  private:
    const RegKey& key;
    ReadName pfnRead;
    DWORD nAt = 0;
    wchar_t szName[kNameSize] = {};
    wchar_t szPrevious[kNameSize] = {};
};
} // namespace

int RegKey::DelValue(const wchar_t* pszName) {
    if (bLogMode) return Log(L"%s=@\r\n", pszName ? pszName : L"");
    if (!FindValue(pszName)) return 1;
    return ::RegDeleteValueW(hkey, pszName) == ERROR_SUCCESS;
}

/// Deletes all children; with bEmptyFirst each is emptied by DelAll before.
void RegKey::DelSubKeys(int bEmptyFirst) {
    DeletingWalk walk(*this, &RegKey::ReadSubKeyName);
    while (const wchar_t* pszChild = walk.Next()) {
        if (bEmptyFirst) {
            RegKey child;
            if (child.Open(*this, pszChild, 1)) child.DelAll();
        }
        DelSubKey(pszChild);
    }
}

/// Deletes all values. A default value that comes first is stepped over: the callers delete it.
void RegKey::DelValues() {
    DeletingWalk walk(*this, &RegKey::ReadValueName);
    while (const wchar_t* pszValue = walk.Next()) DelValue(*pszValue ? pszValue : nullptr);
}

int RegKey::DelSubKey(const wchar_t* pszSubkey) {
    if (!pszSubkey || !*pszSubkey) return 1; // would name this key itself
    {
        RegKey child;
        if (!child.Open(*this, pszSubkey, 0)) return 1;
        child.Close(); // opened only to see that it is there: the next open would create it
        if (!child.Open(*this, pszSubkey, 1)) return 1;
        child.DelSubKeys(0);
        child.DelValues();
        child.DelValue(nullptr);
    }
    return ::RegDeleteKeyW(hkey, pszSubkey) == ERROR_SUCCESS;
}

int RegKey::DelAll() {
    DelSubKeys(1);
    DelValue(nullptr);
    DelValues();
    return 1;
}
