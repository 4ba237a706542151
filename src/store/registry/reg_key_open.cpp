#include "runtime/text/str_find.h"
#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"
#include "store/registry/reg_path.h"

#include <algorithm>
#include <cwchar>

// Opening: the walk over a textual path, and the roots that it knows; and the text log, which
// stands in the place of the registry.

namespace {
constexpr std::size_t kComponentSize = 128; // with the terminator
constexpr std::size_t kPathSize = 256;      // of a path joined from two texts
constexpr std::size_t kLineSize = 255;      // of the log; longer lines are cut, ends and all
/// While the text log is on, this stands for every key: the platform fails on it.
HKEY__* const kLoggedKey = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(1));

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
        if (StrIsSame(pszName, root.pszShort, 1) || StrIsSame(pszName, root.pszLong, 1)) {
            return root.hkey;
        }
    }
    return nullptr;
}

/// Takes the next component off the path and the backslash behind it. False if it is too long.
bool TakeComponent(const wchar_t*& pszPath, wchar_t (&szComponent)[kComponentSize]) {
    std::size_t cch = std::wcscspn(pszPath, L"\\");
    if (cch >= kComponentSize) return false;
    std::copy_n(pszPath, cch, szComponent);
    szComponent[cch] = 0;
    pszPath += cch;
    if (*pszPath == kRegSeparator) ++pszPath;
    return true;
}

int CountComponents(const wchar_t* pszPath) {
    return 1 + static_cast<int>(std::count(pszPath, pszPath + std::wcslen(pszPath), kRegSeparator));
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

// The text log

constinit int RegKey::bLogMode = 0;
constinit wchar_t* RegKey::pszLog = nullptr;
constinit unsigned RegKey::nLogSizeChars = 0;
constinit long RegKey::lError = 0;
constinit const wchar_t* RegKey::pszFmtPrefix = L"%s%s";

void RegKey::StartLog(wchar_t* pszBuffer) {
    bLogMode = 1;
    pszLog = pszBuffer;
    nLogSizeChars = 0;
}

unsigned RegKey::EndLog() {
    bLogMode = 0;
    if (!nLogSizeChars) return 0;
    if (pszLog) *pszLog = 0;
    return nLogSizeChars + 1;
}

/// Appends one line. Always 1, which is what a logged operation gives.
int RegKey::Log(const wchar_t* pszFormat, ...) {
    wchar_t szLine[kLineSize];
    va_list args;
    va_start(args, pszFormat);
    auto cch = static_cast<unsigned>(FormatTextV(szLine, kLineSize, pszFormat, args));
    va_end(args);
    if (pszLog) {
        std::wmemcpy(pszLog, szLine, cch);
        pszLog += cch;
    }
    nLogSizeChars += cch;
    return 1;
}
