#include "icons/tray/day_count.h"
#include "app/identity/my_product_info.h"
#include "icons/tray/local_date.h"
#include "runtime/text/text_format.h"
#include "store/registry/reg_key.h"

#include <cwchar>

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
