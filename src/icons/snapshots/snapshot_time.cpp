#include "icons/snapshots/snapshot_time.h"
#include "runtime/text/text_format.h"

namespace {
FILETIME ToFileTime(unsigned __int64 qwTime) {
    return {static_cast<DWORD>(qwTime), static_cast<DWORD>(qwTime >> 32)};
}

/// Windows converts no time of the upper half; elsewhere it becomes a date all the same.
bool IsInRange(unsigned __int64 qwTime) { return !(qwTime >> 63); }
} // namespace

void FormatSnapshotName(wchar_t (&szName)[kSnapshotNameLength + 1], unsigned __int64 qwTime) {
    FormatText(szName, L"%08X%08X", static_cast<unsigned>(qwTime >> 32),
               static_cast<unsigned>(qwTime));
}

bool ToLocalTime(unsigned __int64 qwTime, SYSTEMTIME& st) {
    if (!IsInRange(qwTime)) return false;
    FILETIME ft = ToFileTime(qwTime), ftLocal{};
    return ::FileTimeToLocalFileTime(&ft, &ftLocal) && ::FileTimeToSystemTime(&ftLocal, &st);
}

bool ToUtcTime(unsigned __int64 qwTime, SYSTEMTIME& st) {
    FILETIME ft = ToFileTime(qwTime);
    return IsInRange(qwTime) && ::FileTimeToSystemTime(&ft, &st);
}

unsigned __int64 GetPresentTime() {
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    return static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
}

void FormatTime(wchar_t (&szText)[kTimeTextSize], const SYSTEMTIME& st) {
    FormatText(szText, L"%04u-%02u-%02uT%02u:%02u:%02u", st.wYear, st.wMonth, st.wDay, st.wHour,
               st.wMinute, st.wSecond);
}

bool IsImportableTime(unsigned __int64 qwTime) {
    SYSTEMTIME st{};
    return qwTime && qwTime <= GetPresentTime() && ToUtcTime(qwTime, st) && ToLocalTime(qwTime, st);
}
