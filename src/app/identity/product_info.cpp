#include "app/identity/product_info.h"
#include "resources/resource_ids.h"
#include "resources/version.h"
#include "runtime/base/cs_list.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/res_str.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/text/str_format.h"
#include "runtime/threads/crit_sec.h"
#include "wnd/core/company_msg.h"

#include <algorithm>
#include <cwchar>
#include <new>
#include <utility>

namespace {
// Where the settings of all of the maker's products live.
constexpr const wchar_t* kMakerRootKey = L"HKCU\\Software\\Orvanta";
constexpr int kComponentRootSize = 265;
constexpr DWORD kShutDownStepMs = 1000;
constexpr unsigned short kProductId = 16738;

// One object from before the library's start to its end: its destructor is trivial, so that nothing
// of it has an order among the other statics.
constinit MyProductInfo myProductInfo;
constinit wchar_t szVersionRev[128] = {};

constinit ManualLock csAppInstances;
constinit CSList appInstances; // newest at the head

/// Under the lock.
void TakeHeadAsCurrent() {
    void* pHead = appInstances.IsEmpty() ? nullptr : appInstances.GetHead();
    ProductInfo::pCurrentApp = static_cast<AppInstance*>(pHead);
}

/// Frees an owned text and puts a copy of pszNew in its place, with its length; null and 0 for a
/// null or empty text, or when out of memory. pszNew may be the present text, which is therefore
/// freed last.
void ReplaceRootText(wchar_t*& pszOwned, int& nLength, const wchar_t* pszNew) {
    std::size_t cch = pszNew ? std::wcslen(pszNew) : 0;
    wchar_t* pszCopy = cch ? new (std::nothrow) wchar_t[cch + 1] : nullptr;
    if (pszCopy) std::wmemcpy(pszCopy, pszNew, cch + 1);
    nLength = pszCopy ? static_cast<int>(cch) : 0;
    delete[] std::exchange(pszOwned, pszCopy);
}
} // namespace

constinit std::atomic<AppInstance*> ProductInfo::pCurrentApp{nullptr};
constinit ProductInfo::StepProgressFunc* ProductInfo::pfnStepProgress = nullptr;

// What all products have in common

const wchar_t* ProductInfo::GetOEMStr() { return L""; }

const wchar_t* ProductInfo::GetMsgTitle() { return GetNickName(); }

void ProductInfo::MakeTitleLong(wchar_t* pszBuffer, int cchBuffer) {
    if (cchBuffer <= 0) return;
    FormatText(pszBuffer, static_cast<std::size_t>(cchBuffer), L"%s %s %s", GetNickName(),
               GetEdition(), GetVersionStr());
}

const wchar_t* ProductInfo::GetAppRootKey() {
    if (pszPushedRoot) return pszPushedRoot;
    if (AppInstance* pApp = pCurrentApp) {
        if (const wchar_t* pszRoot = pApp->GetAppRootKey()) return pszRoot;
    }
    if (!szRootKey[0]) {
        // QUIRK: the library's start writes this field with "SOFTWARE" and without a second level;
        // this default, which differs in both, is reached only after the field was cleared. The
        // registry does not mind the case. Test: ProductInfoTest.EmptyOwnRootIsMadeFromTheNames
        FormatText(szRootKey, L"%s\\%s\\%s", kMakerRootKey, GetName(), GetNickName());
    }
    return szRootKey;
}

void ProductInfo::SetAppRootKey(const wchar_t* pszRoot) {
    AppInstance* pApp = pCurrentApp;
    if (pApp && pApp->GetAppRootKey()) {
        pApp->SetAppRootKey(pszRoot);
    } else {
        if (!pszRoot) pszRoot = L"";
        // The text may be this field itself, as GetAppRootKey gave it.
        std::size_t cch = std::min<std::size_t>(std::wcslen(pszRoot), kRootKeySize - 1);
        std::wmemmove(szRootKey, pszRoot, cch);
        szRootKey[cch] = 0;
    }
}

void ProductInfo::PushAppRootKey(const wchar_t* pszRoot) {
    ReplaceRootText(pszPushedRoot, nPushedRootLength, pszRoot);
}

void ProductInfo::PopAppRootKey() { PushAppRootKey(nullptr); }

HINSTANCE ProductInfo::GetAppInstance() {
    AppInstance* pApp = pCurrentApp;
    return pApp ? pApp->GetInstance() : GetLibraryInstance();
}

const wchar_t* ProductInfo::GetComponent() {
    AppInstance* pApp = pCurrentApp;
    return pApp && pApp->GetComponent() ? pApp->GetComponent() : GetNickName();
}

void ProductInfo::ConvertResourceId(int& nId, HINSTANCE& hinst) { ::ConvertResourceId(nId, hinst); }

int ProductInfo::IsSameVersion(const wchar_t* pszVersion) {
    if (!pszVersion) return 0;
    return ::_wcsicmp(pszVersion + std::wcscspn(pszVersion, L"0123456789"), GetVersionStr()) == 0;
}

int ProductInfo::IsLangEN() { return std::wcscmp(GetLanguage(), L"en") == 0; }

const wchar_t* ProductInfo::GetRegTM() { return IsNameRegTM() ? L"\u00AE" : L"[TM]"; }

int ProductInfo::BroadcastMyMessage(WPARAM nCode, LPARAM lValue) {
    UINT nId = GetMyCompanyMsgId();
    return nId && ::SendNotifyMessageW(HWND_BROADCAST, nId, nCode, lValue);
}

int ProductInfo::PostMyMessage(HWND hwnd, WPARAM nCode, LPARAM lValue) {
    return PostMyCompanyMsg(hwnd, nCode, lValue);
}

LRESULT ProductInfo::SendMyMessage(HWND hwnd, WPARAM nCode, LPARAM lValue) {
    return SendMyCompanyMsg(hwnd, nCode, lValue);
}

void ProductInfo::ShutDownMyModules(HWND /*hwnd*/, ProgressEx* pProgress, unsigned nSeconds) {
    CSWaitCursor wait;
    BroadcastMyMessage(kCompanyCodeClose, GetID());
    BroadcastMyMessage(kCompanyCodeShutDown, GetID());
    for (unsigned n = 0; n < nSeconds; ++n) {
        if (pProgress && pfnStepProgress) pfnStepProgress(pProgress);
        ::Sleep(kShutDownStepMs);
    }
}

// The components

void AppInstance::StartLock() { csAppInstances.Start(); }

void AppInstance::StopLock() { csAppInstances.Stop(); }

AppInstance::AppInstance(HINSTANCE hinstApp, const wchar_t* pszComponentName)
    : hinst(hinstApp), pszComponent(pszComponentName) {
    ManualLockGuard lock(csAppInstances);
    if (pszComponent) {
        wchar_t szRoot[kComponentRootSize];
        FormatText(szRoot, L"%s\\%s\\%s", kMakerRootKey, GetMyProductInfo().GetName(),
                   pszComponent);
        SetAppRootKey(szRoot);
    }
    appInstances.AddHead(this);
    TakeHeadAsCurrent();
}

AppInstance::~AppInstance() {
    {
        ManualLockGuard lock(csAppInstances);
        POS pos = appInstances.Find(this);
        if (pos) appInstances.ExtractAt(pos);
        TakeHeadAsCurrent();
    }
    GetMyProductInfo().PopAppRootKey();
    SetAppRootKey(nullptr);
}

void AppInstance::SetAppRootKey(const wchar_t* pszRoot) {
    ReplaceRootText(pszRootKey, nRootKeyLength, pszRoot);
}

const wchar_t* AppInstance::GetAppRootKey() { return nRootKeyLength ? pszRootKey : nullptr; }

// This product

MyProductInfo& GetMyProductInfo() { return myProductInfo; }

void SetMyProductAsCurrent() {
    SetCurrentProduct({
        [] { return myProductInfo.GetAppInstance(); },
        [] { return myProductInfo.GetName(); },
        [] { return myProductInfo.GetID(); },
        [] { return myProductInfo.GetHelpFile(); },
        [] { return myProductInfo.GetAppRootKey(); },
        [] { return myProductInfo.GetIconID(); },
    });
}

unsigned short MyProductInfo::GetID() { return kProductId; }
const wchar_t* MyProductInfo::GetStoreID() { return L"tessaly"; }
const wchar_t* MyProductInfo::GetName() { return L"Tessaly"; }
const wchar_t* MyProductInfo::GetNickName() { return L"Tessaly"; }
const wchar_t* MyProductInfo::GetDisplayName() { return L"Tessaly"; }
int MyProductInfo::IsNameRegTM() { return 0; }
const wchar_t* MyProductInfo::GetVersionStr() { return TEXT(TESSALY_VERSION_SHORT_TEXT); }
const wchar_t* MyProductInfo::GetVersionStrLong(int bRich) {
    return bRich ? L"Version <b>" TEXT(TESSALY_VERSION_SHORT_TEXT) L"</b>"
                 : L"Version " TEXT(TESSALY_VERSION_SHORT_TEXT);
}
const wchar_t* MyProductInfo::GetVersionStrRev(int /*bRich*/) {
    FormatText(szVersionRev, L"%s (rev. %s)", GetVersionStr(), GetRevisionStr());
    return szVersionRev;
}
// QUIRK: the second byte is ten times the minor version: it counts the version's hundredths.
// Test: MyProductInfo.VersionNumber
unsigned MyProductInfo::GetVersionNum() {
    return TESSALY_VERSION_MAJOR << 24 | TESSALY_VERSION_MINOR * 10u << 16 | TESSALY_REVISION;
}
unsigned long long MyProductInfo::GetVersionQWORD() {
    return static_cast<unsigned long long>(TESSALY_VERSION_MAJOR) << 48 |
           static_cast<unsigned long long>(TESSALY_VERSION_MINOR) << 32 |
           static_cast<unsigned long long>(TESSALY_VERSION_BUILD) << 16 | TESSALY_REVISION;
}
const wchar_t* MyProductInfo::GetLanguage() { return L"en"; }
const wchar_t* MyProductInfo::GetRevisionStr() { return TEXT(TESSALY_REVISION_TEXT); }
unsigned MyProductInfo::GetRevisionNum() { return TESSALY_REVISION; }
const wchar_t* MyProductInfo::GetEditionShort() { return L"x64"; }
const wchar_t* MyProductInfo::GetEdition() { return L"x64 Edition"; }
const wchar_t* MyProductInfo::GetForOS() { return L"for Windows\u00AE 10, 7, Vista, XP (64-bit)"; }
const wchar_t* MyProductInfo::GetCopyrightYear() { return L"2017"; }
const wchar_t* MyProductInfo::GetHelpFile() { return L"Tessaly.chm"; }
const wchar_t* MyProductInfo::GetAutoUpdateFile() { return L"TSEXE64.exe"; }
unsigned MyProductInfo::GetIconID() { return static_cast<unsigned>(-IDI_TESSALY); }
HINSTANCE MyProductInfo::GetIconInstance() { return GetLibraryInstance(); }
