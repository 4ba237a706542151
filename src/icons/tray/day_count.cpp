#include "icons/tray/day_count.h"
#include "app/identity/product_info.h"
#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"

#include <cwchar>

namespace {
constinit LocalTimeFunc* pfnLocalTime = nullptr; // null: the platform's

int EndText(int cch, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[cchBuffer - 1] = 0;
    return cch > 0;
}
} // namespace

void SetLocalTimeSource(LocalTimeFunc* pfnNew) { pfnLocalTime = pfnNew; }

int FormatToday(DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer) {
    SYSTEMTIME st{};
    if (pfnLocalTime) {
        pfnLocalTime(&st);
    } else {
        ::GetLocalTime(&st);
    }
    return FormatLocalDate(st, dwFlags, pszBuffer, cchBuffer);
}

int FormatLocalDate(const SYSTEMTIME& st, DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[0] = 0;
    int cch = ::GetDateFormatW(LOCALE_USER_DEFAULT, dwFlags, &st, nullptr, pszBuffer, cchBuffer);
    return EndText(cch, pszBuffer, cchBuffer);
}

int FormatLocalTime(const SYSTEMTIME& st, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[0] = 0;
    int cch = ::GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &st, nullptr, pszBuffer, cchBuffer);
    return EndText(cch, pszBuffer, cchBuffer);
}

int ToLocalTime(unsigned __int64 qwTime, SYSTEMTIME& st) {
    // Windows converts no time of the upper half; elsewhere it becomes a date all the same.
    if (qwTime >> 63) return 0;
    FILETIME ft{static_cast<DWORD>(qwTime), static_cast<DWORD>(qwTime >> 32)};
    FILETIME ftLocal{};
    return ::FileTimeToLocalFileTime(&ft, &ftLocal) && ::FileTimeToSystemTime(&ftLocal, &st);
}

namespace {
constexpr const wchar_t* kDayCount = L"DayCount";
constexpr const wchar_t* kLastUse = L"LastUse";
constexpr int kDateSize = 64;        // characters of today's date
constexpr unsigned kMaxLastUse = 64; // bytes of the one that is remembered
constexpr std::size_t kPathSize = ProductInfo::kRootKeySize + 16;

constinit DWORD dwLastCount = 0;

int OpenSetupKey(RegKey& key) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s", GetMyProductInfo().GetAppRootKey(), L"Setup");
    return key.Open(szPath, 1);
}

/// One character more than is read, so that a text that was stored without its end has one.
using LastUseText = wchar_t[kMaxLastUse / sizeof(wchar_t) + 1];

void ReadLastUse(const RegKey& key, LastUseText& szLastUse) {
    szLastUse[0] = 0;
    unsigned cb = key.GetBinSize(kLastUse);
    if (!cb || cb > kMaxLastUse) return;
    LastUseText szRead{};
    if (key.GetBin(kLastUse, szRead, kMaxLastUse)) std::wcscpy(szLastUse, szRead);
}
} // namespace

DWORD UpdateDayCount() {
    RegKey key;
    if (!OpenSetupKey(key)) return dwLastCount;
    DWORD dwCount = key.GetDword(kDayCount, 0);
    LastUseText szLastUse;
    ReadLastUse(key, szLastUse);
    wchar_t szToday[kDateSize];
    FormatToday(0, szToday, kDateSize);
    if (std::wcscmp(szToday, szLastUse) != 0) {
        if (*szLastUse) key.PutDword(kDayCount, ++dwCount, 1);
        key.PutStr(kLastUse, szToday, 1);
    }
    dwLastCount = dwCount;
    // From the second day on the update check is asked for here, once it exists.
    return dwCount;
}
