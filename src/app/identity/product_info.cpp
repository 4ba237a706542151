#include "app/identity/product_info.h"
#include "app/identity/app_instance.h"
#include "app/identity/root_key_text.h"
#include "runtime/base/library_instance.h"
#include "runtime/text/text_format.h"
#include "wnd/core/company_msg.h"
#include "wnd/core/wait_cursor.h"
#include <algorithm>
#include <cwchar>

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
    if (nId == 0) return;
    if (!hinst) hinst = nId < 0 ? GetLibraryInstance() : GetAppInstance();
    // Unsigned, because the least int has no magnitude; no resource has that id anyway.
    if (nId < 0) nId = static_cast<int>(0u - static_cast<unsigned>(nId));
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
