#include "app/identity/app_instance.h"
#include "app/identity/my_product_info.h"
#include "app/identity/root_key_text.h"
#include "runtime/base/cs_list.h"
#include "runtime/threads/manual_lock.h"
#include "runtime/text/text_format.h"

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
