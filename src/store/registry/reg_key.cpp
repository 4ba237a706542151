#include "store/registry/reg_key.h"
#include "runtime/base/cs_buf.h"
#include "runtime/text/str_format.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

// Reading, writing and enumerating. Opening, deleting, operations and the log have files of their
// own.




namespace {
constexpr DWORD kMaxValueSize = 0x7FFFFFF0; // leaves room for terminators in 32 bits

/// Copies pszText into the buffer, cut to fit; the two may be the same place.
void CopyCut(wchar_t* pszBuffer, int cchBuffer, const wchar_t* pszText) {
    if (pszText == pszBuffer) return;
    std::size_t cch = std::min(std::wcslen(pszText), static_cast<std::size_t>(cchBuffer) - 1);
    std::wmemmove(pszBuffer, pszText, cch);
    pszBuffer[cch] = 0;
}
} // namespace

int RegKey::QuerySize(const wchar_t* pszName, DWORD& cbValue) const {
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

/// The reading half of GetStr: 0, with the buffer as it was, if there is no text that fits.
int RegKey::ReadStr(const wchar_t* pszName, wchar_t* pszBuffer, int cchBuffer) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || cb > kMaxValueSize) return 0;
    if (cb > 2 * static_cast<unsigned long long>(cchBuffer)) return 0;
    // Stored text need not be terminated, and the buffer may be the default at the same time: it is
    // read elsewhere first.
    CSBuf block(cb + sizeof(wchar_t));
    if (!block.IsReady()) return 0;
    unsigned char* pBytes = block;
    if (::RegQueryValueExW(hkey, pszName, nullptr, nullptr, pBytes, &cb) != ERROR_SUCCESS) return 0;

    const auto* pszRead = reinterpret_cast<const wchar_t*>(pBytes);
    std::size_t cch = std::min<std::size_t>(cb / sizeof(wchar_t), cchBuffer);
    std::size_t cchText = ::wcsnlen(pszRead, cch);
    if (cchText >= static_cast<std::size_t>(cchBuffer)) return 0; // no room for the terminator
    std::wmemcpy(pszBuffer, pszRead, cch);
    pszBuffer[cchText] = 0;
    return 1;
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
int RegKey::HoldsStr(const wchar_t* pszName, const wchar_t* pszText) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || !cb || cb % sizeof(wchar_t) || cb > kMaxValueSize) return 0;
    // One character more than stored: a text without its terminator is compared too, and the
    // default has room.
    int cch = static_cast<int>(cb / sizeof(wchar_t)) + 1;
    CSBuf block(static_cast<unsigned>(cch) * sizeof(wchar_t));
    if (!block.IsReady()) return 0;
    auto* pszStored = reinterpret_cast<wchar_t*>(static_cast<unsigned char*>(block));
    GetStr(pszName, pszStored, cch, *pszText ? L"" : L"1"); // a default that differs
    return std::wcscmp(pszStored, pszText) == 0;
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

int RegKey::HoldsBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes) const {
    DWORD cb = 0;
    if (!QuerySize(pszName, cb) || !cb || cb != cbBytes) return 0;
    CSBuf block(cb);
    if (!block.IsReady()) return 0; // written without a comparison then
    unsigned char* pStored = block;
    if (::RegQueryValueExW(hkey, pszName, nullptr, nullptr, pStored, &cb) != ERROR_SUCCESS)
        return 0;
    return cb == cbBytes && std::memcmp(pStored, pBytes, cb) == 0;
}

int RegKey::PutBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes, DWORD dwType) {
    if (cbBytes && !pBytes) return 0;
    if (HoldsBin(pszName, pBytes, cbBytes)) return 1;
    LSTATUS status =
        ::RegSetValueExW(hkey, pszName, 0, dwType, static_cast<const BYTE*>(pBytes), cbBytes);
    return status == ERROR_SUCCESS;
}

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

// Whole keys in files of the platform's own format.


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

// The text log: what a series of operations would do, as text instead of in the registry.




constinit int RegKey::bLogMode = 0;
constinit wchar_t* RegKey::pszLog = nullptr;
constinit unsigned RegKey::nLogSizeChars = 0;
constinit long RegKey::lError = 0;
constinit const wchar_t* RegKey::pszFmtPrefix = L"%s%s";

namespace {
constexpr std::size_t kLineSize = 255; // with the terminator; longer lines are cut, ends and all
} // namespace

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
