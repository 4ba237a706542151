#include "icons/tray/local_date.h"

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
