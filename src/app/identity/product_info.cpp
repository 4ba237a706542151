#include "app/identity/product_info.h"
#include "app/identity/my_product_info.h"
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
constexpr DWORD kShutDownStepMs = 1000;
} // namespace

constinit std::atomic<AppInstance*> ProductInfo::pCurrentApp{nullptr};
constinit ProductInfo::StepProgressFunc* ProductInfo::pfnStepProgress = nullptr;

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
        // this default is reached only without it, or after the field was cleared. The registry
        // does not mind the case. Test: ProductInfoTest.EmptyOwnRootIsMadeFromTheNames
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

void ProductInfo::ConvertResourceId(int& nId, HINSTANCE& hinst) {
    ::ConvertResourceId(nId, hinst);
}

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

namespace {
constexpr int kComponentRootSize = 265;

constinit ManualLock csAppInstances;
constinit CSList appInstances; // newest at the head

void TakeHeadAsCurrent() {
    void* pHead = appInstances.IsEmpty() ? nullptr : appInstances.GetHead();
    ProductInfo::pCurrentApp = static_cast<AppInstance*>(pHead);
}
} // namespace

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

void ReplaceRootText(wchar_t*& pszOwned, int& nLength, const wchar_t* pszNew) {
    std::size_t cch = pszNew ? std::wcslen(pszNew) : 0;
    wchar_t* pszCopy = cch ? new (std::nothrow) wchar_t[cch + 1] : nullptr;
    if (pszCopy) std::wmemcpy(pszCopy, pszNew, cch + 1);
    nLength = pszCopy ? static_cast<int>(cch) : 0;
    delete[] std::exchange(pszOwned, pszCopy);
}
