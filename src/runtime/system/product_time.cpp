#include "runtime/system/product_time.h"

namespace {
constexpr unsigned long long kTicksPerSecond = 10'000'000;    // FILETIME counts 100 ns
constexpr unsigned long long kUnixSince1601 = 11'644'473'600; // seconds
constexpr unsigned long long kProductSinceUnix = 819'936'000; // seconds
constexpr unsigned kFirstDosYear = 1980;
} // namespace

DWORD GetProductTime(const FILETIME& ft) {
    unsigned long long n =
        static_cast<unsigned long long>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    return static_cast<DWORD>(n / kTicksPerSecond - kUnixSince1601 - kProductSinceUnix);
}

DWORD GetCurTime() {
    FILETIME ft{};
    GetSysFileTime(&ft);
    return GetProductTime(ft);
}

int GetSysFileTime(FILETIME* pft) {
    SYSTEMTIME st;
    ::GetSystemTime(&st);
    return ::SystemTimeToFileTime(&st, pft) != 0;
}

DWORD GetDOSdate(const SYSTEMTIME* pst) {
    SYSTEMTIME stToday;
    if (!pst) {
        ::GetLocalTime(&stToday);
        pst = &stToday;
    }
    return (pst->wYear - kFirstDosYear) << 9 | pst->wMonth << 5 | pst->wDay;
}
