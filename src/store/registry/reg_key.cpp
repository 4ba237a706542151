#include "store/registry/reg_key.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_find.h"
#include "runtime/text/str_format.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

// Values: reading, writing, their names, and the operations on entries. Opening and the log are in
// reg_key_open.cpp, whole keys in reg_key_tree.cpp.

namespace {
constexpr DWORD kMaxValueSize = 0x7FFFFFF0; // leaves room for terminators in 32 bits
constexpr DWORD kMaxTestedSize = 520;       // bytes; a longer text matches nothing in a test
constexpr std::size_t kJoinedSize = 256;    // of a prefix and a name, with the terminator

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

/// Copies pszText into the buffer, cut to fit; the two may be the same place.
void CopyCut(wchar_t* pszBuffer, int cchBuffer, const wchar_t* pszText) {
    if (pszText == pszBuffer) return;
    std::size_t cch = std::min(std::wcslen(pszText), static_cast<std::size_t>(cchBuffer) - 1);
    std::wmemmove(pszBuffer, pszText, cch);
    pszBuffer[cch] = 0;
}
} // namespace

// Reading

/// The size of a value in bytes; false, and size 0, if it cannot be queried.
bool RegKey::QuerySize(const wchar_t* pszName, DWORD& cbValue) const {
    DWORD cb = 0;
    LSTATUS status = ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, nullptr, &cb);
    cbValue = status == ERROR_SUCCESS ? cb : 0;
    return status == ERROR_SUCCESS;
}

DWORD RegKey::GetValueType(const wchar_t* pszName) const {
    DWORD dwType = REG_NONE;
    LSTATUS status = ::RegQueryValueExW(hkey, pszName, nullptr, &dwType, nullptr, nullptr);
    return status == ERROR_SUCCESS ? dwType : REG_NONE;
}

int RegKey::GetInt(const wchar_t* pszName, int nDefault) const {
    return static_cast<int>(GetDword(pszName, static_cast<DWORD>(nDefault)));
}

DWORD RegKey::GetDword(const wchar_t* pszName, DWORD dwDefault) const {
    DWORD dwValue = 0, cb = sizeof(dwValue);
    LSTATUS status =
        ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, reinterpret_cast<BYTE*>(&dwValue), &cb);
    return status == ERROR_SUCCESS ? dwValue : dwDefault;
}

/// The reading half of GetStr: false, with the buffer as it was, if there is no text that fits.
bool RegKey::ReadStr(const wchar_t* pszName, wchar_t* pszBuffer, int cchBuffer) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || cb > kMaxValueSize) return false;
    if (cb > 2 * static_cast<unsigned long long>(cchBuffer)) return false;
    // Stored text need not be terminated, and the buffer may be the default at the same time: it is
    // read elsewhere first. Behind a text of one byte the platform itself writes a terminator,
    // however little room it is told of.
    HeapArray<wchar_t> text(cb / sizeof(wchar_t) + 2);
    if (!text.IsReady()) return false;
    auto* pBytes = reinterpret_cast<BYTE*>(text.Get());
    if (::RegQueryValueExW(hkey, pszName, nullptr, nullptr, pBytes, &cb) != ERROR_SUCCESS)
        return false;

    std::size_t cch = std::min<std::size_t>(cb / sizeof(wchar_t), cchBuffer);
    std::size_t cchText = ::wcsnlen(text.Get(), cch);
    if (cchText >= static_cast<std::size_t>(cchBuffer)) return false; // no room for the terminator
    std::wmemcpy(pszBuffer, text.Get(), cch);
    pszBuffer[cchText] = 0;
    return true;
}

int RegKey::GetStr(const wchar_t* pszName, wchar_t* pszBuffer, int cchBuffer,
                   const wchar_t* pszDefault) const {
    if (!pszBuffer || cchBuffer <= 0) return 0;
    if (!ReadStr(pszName, pszBuffer, cchBuffer)) {
        CopyCut(pszBuffer, cchBuffer, pszDefault ? pszDefault : L"");
    }
    return static_cast<int>(std::wcslen(pszBuffer));
}

unsigned RegKey::GetStrSize(const wchar_t* pszName) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || !cb) return 0;
    return cb / sizeof(wchar_t) + 1;
}

unsigned RegKey::GetBinSize(const wchar_t* pszName) const {
    DWORD cb = 0;
    QuerySize(pszName, cb);
    return cb;
}

int RegKey::GetBin(const wchar_t* pszName, void* pBuffer, unsigned cbMax, DWORD* pdwType) const {
    DWORD dwType = REG_NONE, cb = 0;
    LSTATUS status = ::RegQueryValueExW(hkey, pszName, nullptr, &dwType, nullptr, &cb);
    if (status != ERROR_SUCCESS) return 0;
    if (pdwType) *pdwType = dwType;
    if (cbMax && cb > cbMax) return 0;
    // The size that was asked for is the limit: a value that grew meanwhile is not read.
    status = ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, static_cast<BYTE*>(pBuffer), &cb);
    return status == ERROR_SUCCESS;
}

// Writing

int RegKey::PutDword(const wchar_t* pszName, DWORD dwValue, int bCompare) {
    if (bLogMode) return Log(L"%s=dword:%08X\r\n", pszName ? pszName : L"", dwValue);
    if (bCompare && GetDword(pszName, ~dwValue) == dwValue) return 1;
    LSTATUS status = ::RegSetValueExW(hkey, pszName, 0, REG_DWORD,
                                      reinterpret_cast<const BYTE*>(&dwValue), sizeof(dwValue));
    return status == ERROR_SUCCESS;
}

int RegKey::PutInt(const wchar_t* pszName, int nValue) {
    return PutDword(pszName, static_cast<DWORD>(nValue), 1);
}

/// Whether the value is a text equal to pszText. A stored size that is odd is no text's.
bool RegKey::HoldsStr(const wchar_t* pszName, const wchar_t* pszText) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || !cb || cb % sizeof(wchar_t) || cb > kMaxValueSize) return false;
    // One character more than stored: a text without its terminator is compared too, and the
    // default has room.
    int cch = static_cast<int>(cb / sizeof(wchar_t)) + 1;
    HeapArray<wchar_t> stored(static_cast<std::size_t>(cch));
    if (!stored.IsReady()) return false;
    GetStr(pszName, stored.Get(), cch, *pszText ? L"" : L"1"); // a default that differs
    return std::wcscmp(stored.Get(), pszText) == 0;
}

int RegKey::PutStr(const wchar_t* pszName, const wchar_t* pszText, int bCompare) {
    if (!pszText) pszText = L"";
    if (bLogMode) return Log(L"%s=%s\r\n", pszName ? pszName : L"", pszText);
    if (bCompare && HoldsStr(pszName, pszText)) return 1;
    std::size_t cb = (std::wcslen(pszText) + 1) * sizeof(wchar_t);
    if (cb > kMaxValueSize) return 0;
    LSTATUS status = ::RegSetValueExW(
        hkey, pszName, 0, REG_SZ, reinterpret_cast<const BYTE*>(pszText), static_cast<DWORD>(cb));
    return status == ERROR_SUCCESS;
}

int RegKey::PutStrOrDelEmpty(const wchar_t* pszName, const wchar_t* pszText, int bCompare) {
    if (!pszText || !*pszText) return DelValue(pszName);
    return PutStr(pszName, pszText, bCompare);
}

/// Whether the value has just these bytes, whatever its type.
bool RegKey::HoldsBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || !cb || cb != cbBytes) return false;
    HeapArray<BYTE> stored(cb + sizeof(wchar_t)); // with a terminator, as in ReadStr
    if (!stored.IsReady()) return false;          // written without a comparison then
    if (::RegQueryValueExW(hkey, pszName, nullptr, nullptr, stored.Get(), &cb) != ERROR_SUCCESS)
        return false;
    return cb == cbBytes && std::memcmp(stored.Get(), pBytes, cb) == 0;
}

int RegKey::PutBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes, DWORD dwType) {
    if (cbBytes && !pBytes) return 0;
    if (HoldsBin(pszName, pBytes, cbBytes)) return 1;
    LSTATUS status =
        ::RegSetValueExW(hkey, pszName, 0, dwType, static_cast<const BYTE*>(pBytes), cbBytes);
    return status == ERROR_SUCCESS;
}

// Names of subkeys and values

LSTATUS RegKey::ReadSubKeyName(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const {
    if (!pszBuffer || cchBuffer <= 0) return ERROR_MORE_DATA;
    *pszBuffer = 0; // an error leaves no name of an earlier call
    auto cch = static_cast<DWORD>(cchBuffer);
    return ::RegEnumKeyExW(hkey, nAt, pszBuffer, &cch, nullptr, nullptr, nullptr, nullptr);
}

LSTATUS RegKey::ReadValueName(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const {
    if (!pszBuffer || cchBuffer <= 0) return ERROR_MORE_DATA;
    *pszBuffer = 0;
    auto cch = static_cast<DWORD>(cchBuffer);
    return ::RegEnumValueW(hkey, nAt, pszBuffer, &cch, nullptr, nullptr, nullptr, nullptr);
}

// QUIRK: every walk answers 1 to any error but "no more", so that one over a key that is not open
// never ends: the open has to be tested first. Test: RegKeyRead.NameThatDoesNotFitGivesOneAndNoName
int RegKey::GetSubKeyByIndex(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const {
    return ReadSubKeyName(nAt, pszBuffer, cchBuffer) != ERROR_NO_MORE_ITEMS;
}

int RegKey::GetValueByIndex(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const {
    return ReadValueName(nAt, pszBuffer, cchBuffer) != ERROR_NO_MORE_ITEMS;
}

int RegKey::GetFirstSubKey(wchar_t* pszBuffer, int cchBuffer) {
    nIndex = 0;
    return GetSubKeyByIndex(nIndex, pszBuffer, cchBuffer);
}

int RegKey::GetNextSubKey(wchar_t* pszBuffer, int cchBuffer) {
    return GetSubKeyByIndex(++nIndex, pszBuffer, cchBuffer);
}

int RegKey::GetFirstValue(wchar_t* pszBuffer, int cchBuffer) {
    nIndex = 0;
    return GetValueByIndex(nIndex, pszBuffer, cchBuffer);
}

int RegKey::GetNextValue(wchar_t* pszBuffer, int cchBuffer) {
    return GetValueByIndex(++nIndex, pszBuffer, cchBuffer);
}

// Operations on entries

/// Whether the value is the text; one that cannot be read is like an empty one.
bool RegKey::TestStr(const wchar_t* pszName, const wchar_t* pszText, int bNoCase) const {
    wchar_t szStored[kMaxTestedSize / sizeof(wchar_t) + 1] = {}; // one more: text may be open-ended
    DWORD cb = kMaxTestedSize;
    LSTATUS status =
        ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, reinterpret_cast<BYTE*>(szStored), &cb);
    szStored[status == ERROR_SUCCESS ? cb / sizeof(wchar_t) : 0] = 0;
    return StrIsSame(szStored, pszText, bNoCase);
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, wchar_t* pszText, unsigned cchText) {
    if (op != OpGet) return ProcessEntry(op, pszName, static_cast<const wchar_t*>(pszText));
    int cch = cchText > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(cchText);
    return GetStr(pszName, pszText, cch, nullptr) != 0;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, const wchar_t* pszText) {
    if (!pszText) pszText = L"";
    switch (op) {
    case OpTest:
    case OpTestNoCase: return TestStr(pszName, pszText, op == OpTestNoCase);
    case OpDelete: DelValue(pszName); return 1;
    case OpSet: return TestStr(pszName, pszText, 0) || PutStr(pszName, pszText, 1);
    case OpGet: return 0; // there is no buffer to read to
    case OpTestAbsent: return !FindValue(pszName);
    case OpSetAlways: return PutStr(pszName, pszText, 0);
    }
    return 1;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, DWORD& dwValue) {
    switch (op) {
    case OpTest:
    case OpTestNoCase: return GetDword(pszName, 0) == dwValue;
    case OpDelete: DelValue(pszName); return 1;
    case OpSet:
        if (GetDword(pszName, 0) == dwValue) return 1;
        if (dwValue) return PutDword(pszName, dwValue, 1);
        DelValue(pszName);
        return 1;
    case OpGet: dwValue = GetDword(pszName, 0); return 1;
    case OpTestAbsent: return !FindValue(pszName);
    case OpSetAlways: return PutDword(pszName, dwValue, 0);
    }
    return 1;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, int& nValue) {
    auto dwValue = static_cast<DWORD>(nValue);
    int nResult = ProcessEntry(op, pszName, dwValue);
    nValue = static_cast<int>(dwValue);
    return nResult;
}

int RegKey::ProcessSubKey(Op op, const wchar_t* pszSubkey) {
    if (op != OpDelete && op != OpSet && op != OpSetAlways) return 1;
    DelSubKey(pszSubkey);
    RegKey created;
    if (op != OpDelete) created.Open(*this, pszSubkey, 1);
    if (!bLogMode) Flush();
    return 1;
}

// Values whose names have a prefix in common

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
