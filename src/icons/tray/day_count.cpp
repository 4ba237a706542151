#include "icons/tray/day_count.h"
#include "app/update/update_check.h"
#include "app/update/update_state.h"
#include "store/registry/reg_key.h"

#include <cwchar>

namespace {
constexpr const wchar_t* kDayCount = L"DayCount";
constexpr const wchar_t* kLastUse = L"LastUse";
constexpr int kDateSize = 64;        // characters of today's date
constexpr unsigned kMaxLastUse = 64; // bytes of the one that is remembered

constinit DWORD dwLastCount = 0; // as it was last known in this process

/// After the platform has written, or failed to: a failure may leave the text without an end.
bool EndText(int cch, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[cchBuffer - 1] = 0;
    return cch > 0;
}

/// One character more than is read, so that a text that was stored without its end has one.
using LastUseText = wchar_t[kMaxLastUse / sizeof(wchar_t) + 1];

/// Empty if nothing is remembered, or too much.
void ReadLastUse(const RegKey& key, LastUseText& szLastUse) {
    szLastUse[0] = 0;
    unsigned cb = key.GetBinSize(kLastUse);
    if (!cb || cb > kMaxLastUse) return;
    LastUseText szRead{};
    if (key.GetBin(kLastUse, szRead, kMaxLastUse)) std::wcscpy(szLastUse, szRead);
}

/// Counts the day if it is a new one. Gives the counter.
DWORD CountToday(RegKey& key) {
    DWORD dwCount = key.GetDword(kDayCount, 0);
    LastUseText szLastUse;
    ReadLastUse(key, szLastUse);
    wchar_t szToday[kDateSize];
    FormatToday(0, szToday, kDateSize);
    if (std::wcscmp(szToday, szLastUse) == 0) return dwCount;
    if (*szLastUse) key.PutDword(kDayCount, ++dwCount, 1);
    key.PutStr(kLastUse, szToday, 1);
    return dwCount;
}
} // namespace

bool FormatToday(DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer) {
    SYSTEMTIME st{};
    ::GetLocalTime(&st);
    return FormatLocalDate(st, dwFlags, pszBuffer, cchBuffer);
}

bool FormatLocalDate(const SYSTEMTIME& st, DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[0] = 0; // not every platform writes what does not fit
    int cch = ::GetDateFormatW(LOCALE_USER_DEFAULT, dwFlags, &st, nullptr, pszBuffer, cchBuffer);
    return EndText(cch, pszBuffer, cchBuffer);
}

bool FormatLocalTime(const SYSTEMTIME& st, wchar_t* pszBuffer, int cchBuffer) {
    pszBuffer[0] = 0;
    int cch = ::GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &st, nullptr, pszBuffer, cchBuffer);
    return EndText(cch, pszBuffer, cchBuffer);
}

DWORD UpdateDayCount() {
    RegKey key;
    if (OpenSetupKey(key, 1)) dwLastCount = CountToday(key);
    if (dwLastCount) { // not on the first day
        EnforceCheckForUpdates(kCheckDaily | kForceFrequency | kForceAutoCheck | kForceAutoCheckOn);
        CheckForUpdates(nullptr);
    }
    return dwLastCount;
}
