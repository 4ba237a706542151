#include "runtime/base/heap_array.h"
#include "runtime/text/str_find.h"
#include "runtime/text/str_format.h"
#include "store/registry/home_folder.h"
#include "store/registry/reg_key.h"
#include "store/registry/reg_path.h"

#include <algorithm>
#include <cwchar>

// Whole keys: emptiness, copies, renames, the move from the maker's former root, deletions, and the
// platform's files.

namespace {
constexpr int kWalkedNameSize = 256;  // of the names that are walked, with the terminator
constexpr int kDeletedNameSize = 257; // of the names of what is deleted
constexpr int kMaxLevels = 512;       // of the platform's trees
constexpr std::size_t kMakerPathSize = 257;

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
            LSTATUS status = (key.*pfnRead)(nAt, szName, kDeletedNameSize);
            if (status == ERROR_MORE_DATA) continue;
            if (status != ERROR_SUCCESS) return nullptr;
            if (StrIsSame(szName, szPrevious, 1)) continue;
            std::wcscpy(szPrevious, szName);
            return szName;
        }
    }

  private:
    const RegKey& key;
    ReadName pfnRead;
    DWORD nAt = 0;
    wchar_t szName[kDeletedNameSize] = {};
    wchar_t szPrevious[kDeletedNameSize] = {};
};

/// Opens a subkey for writing, if it is there and can be written.
bool OpenExisting(RegKey& child, RegKey& parent, const wchar_t* pszSubkey) {
    if (!child.Open(parent, pszSubkey, 0)) return false;
    child.Close(); // opened only to see that it is there: an open for writing would create it
    return child.Open(parent, pszSubkey, 1) != 0;
}

/// Joins root, maker's key and name. False if that was cut: it would be another key.
bool JoinMakerPath(wchar_t (&szPath)[kMakerPathSize], const wchar_t* pszRoot,
                   const wchar_t* pszMakerKey, const wchar_t* pszName) {
    FormatText(szPath, L"%s\\%s\\%s", pszRoot, pszMakerKey, pszName);
    return std::wcslen(pszRoot) + std::wcslen(pszMakerKey) + std::wcslen(pszName) + 2 <
           kMakerPathSize;
}
} // namespace

int RegKey::IsKeyEmpty() {
    wchar_t szName[kWalkedNameSize];
    if (GetFirstSubKey(szName, kWalkedNameSize)) return 0;
    // The default value has the empty name and need not come first. There is one of it, so that
    // whatever comes with it has a name.
    LSTATUS status = ReadValueName(0, szName, kWalkedNameSize);
    if (status == ERROR_NO_MORE_ITEMS) return 1;
    return status == ERROR_SUCCESS && !*szName && !GetValueByIndex(1, szName, kWalkedNameSize);
}

int RegKey::DelSubKeyIfEmpty(const wchar_t* pszSubkey) {
    if (!pszSubkey || !*pszSubkey) return 1; // would name this key itself
    {
        RegKey child;
        if (!OpenExisting(child, *this, pszSubkey)) return 1;
        if (!child.IsKeyEmpty()) return 0;
        child.DelValue(nullptr);
    }
    return ::RegDeleteKeyW(hkey, pszSubkey) == ERROR_SUCCESS;
}

int RegKey::DelValuesStartingWith(const wchar_t* pszPrefix, int bNoCase) {
    wchar_t szName[kDeletedNameSize], szPrevious[kDeletedNameSize];
    bool bHasPrevious = false; // the default value's empty name may be the previous one
    for (DWORD nAt = 0;;) {
        LSTATUS status = ReadValueName(nAt, szName, kDeletedNameSize);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return 1;
        bool bSelected = status == ERROR_SUCCESS && StrStartsWith(szName, pszPrefix, bNoCase);
        // What comes again could not be deleted and is stepped over too.
        if (!bSelected || (bHasPrevious && StrIsSame(szName, szPrevious, 1))) {
            ++nAt;
            continue;
        }
        std::wcscpy(szPrevious, szName);
        bHasPrevious = true;
        DelValue(*szName ? szName : nullptr);
    }
}

// QUIRK: a value with no bytes counts as missing: CopyTo, RenameSubkey and CS2WA lose it.
// Test: RegKeyTree.ValueWithoutBytesIsNotCopied
int RegKey::CopyValueTo(RegKey& target, const wchar_t* pszName) const {
    unsigned cb = GetBinSize(pszName);
    if (!cb) return 0;
    // The platform looks behind a text that has no terminator, and stores one that it finds there:
    // so that the copy has what the value has, none stands there.
    HeapArray<BYTE> bytes(std::size_t{cb} + sizeof(wchar_t));
    if (!bytes.IsReady()) return 0;
    std::fill(bytes.begin() + cb, bytes.end(), BYTE{0xFF});
    DWORD dwType = REG_NONE;
    if (!GetBin(pszName, bytes.Get(), cb, &dwType)) return 0; // it grew or went away meanwhile
    return target.PutBin(pszName, bytes.Get(), cb, dwType);
}

/// Copies the values; those with a name whatever its length.
void RegKey::CopyValues(RegKey& target) {
    CopyValueTo(target, nullptr);
    DWORD cchLongest = 0;
    if (::RegQueryInfoKeyW(hkey, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           &cchLongest, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
        return;
    }
    int cchBuffer = static_cast<int>(std::min<DWORD>(cchLongest, 0x7FFF)) + 1;
    HeapArray<wchar_t> name(static_cast<std::size_t>(cchBuffer));
    if (!name.IsReady()) return;
    for (nIndex = 0;; ++nIndex) {
        LSTATUS status = ReadValueName(nIndex, name.Get(), cchBuffer);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return;
        if (name[0]) CopyValueTo(target, name.Get());
    }
}

/// CopyTo, down to so many levels.
void RegKey::CopyTree(RegKey& target, int nLevelsLeft) {
    wchar_t szName[kWalkedNameSize];
    for (nIndex = 0; nLevelsLeft > 0; ++nIndex) {
        LSTATUS status = ReadSubKeyName(nIndex, szName, kWalkedNameSize);
        if (status == ERROR_MORE_DATA) continue;
        if (status != ERROR_SUCCESS) break; // no more; an error would come again at every index
        RegKey child, childOfTarget;
        if (!child.Open(*this, szName, 0) || !childOfTarget.Open(target, szName, 1)) continue;
        child.CopyTree(childOfTarget, nLevelsLeft - 1);
    }
    CopyValues(target);
}

int RegKey::CopyTo(RegKey& target) {
    CopyTree(target, kMaxLevels);
    return 1;
}

int RegKey::RenameSubkey(const wchar_t* pszOld, const wchar_t* pszNew) {
    if (!pszOld || !pszNew || !*pszNew) return 0;
    if (FindRegPathBelow(pszNew, pszOld)) return 0; // would be deleted with the old one
    {
        RegKey source, target;
        if (!source.Open(*this, pszOld, 0)) return 0;
        // Onto a parent: what would come to lie in the old key itself would be deleted with it, as
        // the subkey "b" of "a\b", renamed to "a".
        const wchar_t* pszBelow = FindRegPathBelow(pszOld, pszNew);
        if (pszBelow && RegKey(source, pszBelow, 0).GetHandle()) return 0;
        if (!target.Open(*this, pszNew, 1)) return 0;
        source.CopyTo(target);
    }
    return DelSubKey(pszOld);
}

int RegKey::CS2WA(int bUser, const wchar_t* pszName) {
    if (!pszName) pszName = L"";
    const wchar_t* pszRoot = bUser ? L"HKCU" : L"HKLM";
    wchar_t szNew[kMakerPathSize], szOld[kMakerPathSize];
    if (!JoinMakerPath(szNew, pszRoot, kMakerKey, pszName)) return 1;
    if (!JoinMakerPath(szOld, pszRoot, kFormerMakerKey, pszName)) return 1;
    if (RegKey(szNew, 0).GetHandle()) return 1; // moved already, or taken over
    {
        RegKey source, target;
        if (!source.Open(szOld, 0)) return 1; // nothing to move
        if (!target.Open(szNew, 1)) return 0;
        source.CopyTo(target);
    }
    wchar_t szPath[kMakerPathSize];
    FormatText(szPath, L"%s\\%s", pszRoot, kFormerMakerKey);
    RegKey former;
    if (!former.Open(szPath, 1)) return 1;
    former.DelSubKey(pszName);
    former.Close(); // it may go now
    FormatText(szPath, L"%s\\Software", pszRoot);
    RegKey software(szPath, 1);
    if (software.GetHandle())
        software.DelSubKeyIfEmpty(RegKey::FindLastSubkeyName(kFormerMakerKey));
    return 1;
}

// Deleting

// QUIRK: a value of type REG_NONE counts as not there and is never deleted.
// Test: RegKeyDelete.ValueWithoutTypeStays
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

// QUIRK: a subkey that exists and cannot be opened for writing is passed over with 1.
// Test: RegKeyDelete.SubKeyThatCannotBeWrittenIsPassedOver
int RegKey::DelSubKey(const wchar_t* pszSubkey) {
    if (!pszSubkey || !*pszSubkey) return 1; // would name this key itself
    {
        RegKey child;
        if (!OpenExisting(child, *this, pszSubkey)) return 1;
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

// Whole keys in files of the platform's own format

int RegKey::SaveKey(HKEY hkeySaved, const wchar_t* pszFile, SECURITY_ATTRIBUTES* pSecurity) {
    if (!pszFile || !*pszFile) {
        lError = ERROR_INVALID_PARAMETER;
        return 0;
    }
    DWORD dwAttributes = ::GetFileAttributesW(pszFile);
    if (dwAttributes == INVALID_FILE_ATTRIBUTES) {
        dwAttributes = FILE_ATTRIBUTE_ARCHIVE;
    } else {
        // The platform writes over no file, and deletes none that is read-only.
        ::SetFileAttributesW(pszFile, FILE_ATTRIBUTE_NORMAL);
        ::DeleteFileW(pszFile);
    }
    lError = ::RegSaveKeyW(hkeySaved, pszFile, pSecurity);
    ::SetFileAttributesW(pszFile, dwAttributes);
    return lError == ERROR_SUCCESS;
}

int RegKey::LoadKey(HKEY hkeyParent, const wchar_t* pszSubkey, const wchar_t* pszFile) {
    return ::RegLoadKeyW(hkeyParent, pszSubkey, pszFile) == ERROR_SUCCESS;
}

int RegKey::UnLoadKey(HKEY hkeyParent, const wchar_t* pszSubkey) {
    return ::RegUnLoadKeyW(hkeyParent, pszSubkey) == ERROR_SUCCESS;
}
