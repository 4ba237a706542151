#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"
#include "store/registry/reg_key_names.h"

#include <algorithm>
#include <cwchar>

// Opening: the walk over a textual path, and the roots that it knows.




namespace {
constexpr wchar_t kSeparator = L'\\';
constexpr std::size_t kComponentSize = 128; // with the terminator
constexpr std::size_t kPathSize = 256;      // of a path joined from two texts
/// While the text log is on, this stands for every key: the platform fails on it.
const HKEY kLoggedKey = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(1));

struct RootName {
    const wchar_t* pszShort;
    const wchar_t* pszLong;
    HKEY hkey;
};

HKEY FindRoot(const wchar_t* pszName) {
    static const RootName kRoots[] = {
        {L"HKCLS", L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
        {L"HKCU", L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
        {L"HKLM", L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
        {L"HKU", L"HKEY_USERS", HKEY_USERS},
    };
    for (const RootName& root : kRoots) {
        if (IsSameRegName(pszName, root.pszShort) || IsSameRegName(pszName, root.pszLong)) {
            return root.hkey;
        }
    }
    return nullptr;
}

/// Takes the next component off the path and the backslash behind it. 0 if it is too long.
int TakeComponent(const wchar_t*& pszPath, wchar_t (&szComponent)[kComponentSize]) {
    std::size_t cch = std::wcscspn(pszPath, L"\\");
    if (cch >= kComponentSize) return 0;
    std::copy_n(pszPath, cch, szComponent);
    szComponent[cch] = 0;
    pszPath += cch;
    if (*pszPath == kSeparator) ++pszPath;
    return 1;
}

int CountComponents(const wchar_t* pszPath) {
    return 1 + static_cast<int>(std::count(pszPath, pszPath + std::wcslen(pszPath), kSeparator));
}
} // namespace

HKEY RegKey::OpenKey(const wchar_t* pszPath, int bWrite, int nLevels) {
    if (bLogMode) {
        Log(L"[%s]\r\n", pszPath ? pszPath : L"");
        return kLoggedKey;
    }
    HKEY hkeyCurrent = nullptr;
    while (pszPath && *pszPath) {
        if (nLevels && nLevels >= CountComponents(pszPath)) break;
        wchar_t szComponent[kComponentSize];
        if (!TakeComponent(pszPath, szComponent)) {
            if (hkeyCurrent) ::RegCloseKey(hkeyCurrent);
            return nullptr;
        }
        if (!*szComponent) continue;
        if (!hkeyCurrent) {
            // QUIRK: what is no root is passed over, so that "xyz\HKCU" is HKCU.
            // Test: RegKeyOpen.ComponentsBeforeTheRootArePassedOver
            hkeyCurrent = FindRoot(szComponent);
            continue;
        }
        HKEY hkeyParent = hkeyCurrent;
        hkeyCurrent = OpenKey(hkeyParent, szComponent, bWrite);
        ::RegCloseKey(hkeyParent); // a root too: closing a predefined handle is allowed
        if (!hkeyCurrent) return nullptr;
    }
    return hkeyCurrent;
}

HKEY RegKey::OpenKey(HKEY hkeyParent, const wchar_t* pszSubkey, int bWrite) {
    HKEY hkeyOpened = nullptr;
    LSTATUS status = bWrite ? ::RegCreateKeyExW(hkeyParent, pszSubkey, 0, nullptr, 0,
                                                KEY_ALL_ACCESS, nullptr, &hkeyOpened, nullptr)
                            : ::RegOpenKeyExW(hkeyParent, pszSubkey, 0, KEY_READ, &hkeyOpened);
    return status == ERROR_SUCCESS ? hkeyOpened : nullptr;
}

RegKey::RegKey(const wchar_t* pszPath, int bWrite) { Open(pszPath, bWrite); }

RegKey::RegKey(const wchar_t* pszPath, Op op) { Open(pszPath, op); }

RegKey::RegKey(const wchar_t* pszPath, const wchar_t* pszSubpath, int bWrite) {
    Open(pszPath, pszSubpath, bWrite);
}

RegKey::RegKey(RegKey& parent, const wchar_t* pszSubkey, int bWrite) {
    Open(parent, pszSubkey, bWrite);
}

RegKey::RegKey(RegKey& parent, const wchar_t* pszSubkey, Op op) { Open(parent, pszSubkey, op); }

RegKey::~RegKey() { Close(); }

int RegKey::Open(const wchar_t* pszPath, int bWrite) { return OpenParent(pszPath, bWrite, 0); }

int RegKey::Open(const wchar_t* pszPath, Op op) { return Open(pszPath, IsWritable(op)); }

int RegKey::Open(const wchar_t* pszPath, const wchar_t* pszSubpath, int bWrite) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s", pszPath ? pszPath : L"", pszSubpath ? pszSubpath : L"");
    return Open(szPath, bWrite);
}

int RegKey::Open(RegKey& parent, const wchar_t* pszSubkey, int bWrite) {
    hkey = OpenKey(parent.hkey, pszSubkey, bWrite);
    return hkey != nullptr;
}

int RegKey::Open(RegKey& parent, const wchar_t* pszSubkey, Op op) {
    return Open(parent, pszSubkey, IsWritable(op));
}

int RegKey::OpenParent(const wchar_t* pszPath, int bWrite, int nLevels) {
    hkey = OpenKey(pszPath, bWrite, nLevels);
    return hkey != nullptr;
}

int RegKey::Attach(HKEY hkeyTaken, int) {
    if (hkeyTaken != hkey) Close();
    hkey = hkeyTaken;
    return 1;
}

void RegKey::Close() {
    if (hkey) ::RegCloseKey(hkey);
    hkey = nullptr;
}

int RegKey::Flush() {
    if (bLogMode) return 1;
    return ::RegFlushKey(hkey) == ERROR_SUCCESS;
}

// Values whose names have a prefix in common.



namespace {
constexpr std::size_t kJoinedSize = 256; // of a prefix and a name, with the terminator

/// A prefix and a name as one name.
class JoinedName {
  public:
    JoinedName(const wchar_t* pszPrefix, const wchar_t* pszName) {
        FormatText(szJoined, RegKey::pszFmtPrefix, pszPrefix ? pszPrefix : L"",
                   pszName ? pszName : L"");
    }
    operator const wchar_t*() const { return szJoined; }

  private:
    wchar_t szJoined[kJoinedSize] = {};
};
} // namespace

int RegKey::DelValuePrefix(const wchar_t* pszPrefix, const wchar_t* pszName) {
    return DelValue(JoinedName(pszPrefix, pszName));
}

int RegKey::GetIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nDefault) const {
    return GetInt(JoinedName(pszPrefix, pszName), nDefault);
}

DWORD RegKey::GetDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName,
                             DWORD dwDefault) const {
    return GetDword(JoinedName(pszPrefix, pszName), dwDefault);
}

unsigned RegKey::GetBinSizePrefix(const wchar_t* pszPrefix, const wchar_t* pszName) const {
    return GetBinSize(JoinedName(pszPrefix, pszName));
}

int RegKey::GetBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, void* pBuffer,
                         unsigned cbMax) const {
    return GetBin(JoinedName(pszPrefix, pszName), pBuffer, cbMax);
}

int RegKey::GetStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, wchar_t* pszBuffer,
                         int cchBuffer, const wchar_t* pszDefault) const {
    return GetStr(JoinedName(pszPrefix, pszName), pszBuffer, cchBuffer, pszDefault);
}

int RegKey::PutIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nValue) {
    return PutInt(JoinedName(pszPrefix, pszName), nValue);
}

int RegKey::PutDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, DWORD dwValue) {
    return PutDword(JoinedName(pszPrefix, pszName), dwValue, 1);
}

int RegKey::PutStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const wchar_t* pszText) {
    return PutStr(JoinedName(pszPrefix, pszName), pszText, 1);
}

int RegKey::PutBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const void* pBytes,
                         unsigned cbBytes) {
    return PutBin(JoinedName(pszPrefix, pszName), pBytes, cbBytes, REG_BINARY);
}
