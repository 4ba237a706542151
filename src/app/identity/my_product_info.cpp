#include "app/identity/my_product_info.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/text/str_format.h"

// The resource version in resources/version.h states the same numbers.

namespace {
constexpr unsigned short kProductId = 16738;
constexpr unsigned kRevision = 2409;

constinit MyProductInfo myProductInfo;
constinit wchar_t szVersionRev[128] = {};
} // namespace

MyProductInfo& GetMyProductInfo() { return myProductInfo; }

void SetMyProductAsCurrent() {
    SetCurrentProduct({
        [] { return myProductInfo.GetAppInstance(); },
        [] { return myProductInfo.GetName(); },
        [] { return myProductInfo.GetID(); },
    });
}

unsigned short MyProductInfo::GetID() { return kProductId; }
const wchar_t* MyProductInfo::GetStoreID() { return L"tessaly"; }
const wchar_t* MyProductInfo::GetName() { return L"Tessaly"; }
const wchar_t* MyProductInfo::GetNickName() { return L"Tessaly"; }
const wchar_t* MyProductInfo::GetDisplayName() { return L"Tessaly"; }
int MyProductInfo::IsNameRegTM() { return 0; }
const wchar_t* MyProductInfo::GetVersionStr() { return L"1.1"; }
const wchar_t* MyProductInfo::GetVersionStrLong(int bRich) {
    return bRich ? L"Version <b>1.1</b>" : L"Version 1.1";
}
const wchar_t* MyProductInfo::GetVersionStrRev(int /*bRich*/) {
    FormatText(szVersionRev, L"%s (rev. %s)", GetVersionStr(), GetRevisionStr());
    return szVersionRev;
}
// QUIRK: 10 in the second byte, not 1: the number grows with the hundredths of the version.
// Test: MyProductInfo.VersionNumber
unsigned MyProductInfo::GetVersionNum() { return 1u << 24 | 10u << 16 | kRevision; }
unsigned long long MyProductInfo::GetVersionQWORD() { return 1ull << 48 | 1ull << 32 | kRevision; }
const wchar_t* MyProductInfo::GetLanguage() { return L"en"; }
const wchar_t* MyProductInfo::GetRevisionStr() { return L"2409"; }
unsigned MyProductInfo::GetRevisionNum() { return kRevision; }
const wchar_t* MyProductInfo::GetEditionShort() { return L"x64"; }
const wchar_t* MyProductInfo::GetEdition() { return L"x64 Edition"; }
const wchar_t* MyProductInfo::GetForOS() { return L"for Windows\u00AE 10, 7, Vista, XP (64-bit)"; }
const wchar_t* MyProductInfo::GetCopyrightYear() { return L"2017"; }
const wchar_t* MyProductInfo::GetHelpFile() { return L"Tessaly.chm"; }
const wchar_t* MyProductInfo::GetAutoUpdateFile() { return L"TSEXE64.exe"; }
unsigned MyProductInfo::GetIconID() { return static_cast<unsigned>(-IDI_TESSALY); }
HINSTANCE MyProductInfo::GetIconInstance() { return GetLibraryInstance(); }
