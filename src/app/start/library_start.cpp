#include "app/start/library_start.h"
#include "app/identity/product_info.h"
#include "buttons/icon_btn.h"
#include "progress/progress_ex.h"
#include "runtime/base/current_product.h"
#include "runtime/base/ownership.h"
#include "runtime/system/wts_api32.h"
#include "shell/namespace/pidl.h"
#include "shell/subclass/shell_subclass.h"

// C++ leaves the order of construction open across files. So everything in the library that lives
// as long as it does is either constant-initialised, as the product is, or made here. What may load
// a module (the pointer to IsWow64Process, the shell's allocator) is looked up at its first use
// instead: this runs under the loader's lock.

namespace {
constexpr UINT_PTR kSubclassId = 18;
constexpr const wchar_t* kSubclassTag = L"TSLY";
constexpr const wchar_t* kRootKey = L"HKCU\\SOFTWARE\\Orvanta\\Tessaly";

constinit ManualObject<WtsApi32> wtsApi32;
} // namespace

void LibraryStart(HINSTANCE hinst) {
    IconBtn::ReserveCommon(kIconCenterVertically | kIconLink, 2, 0);
    wtsApi32.Start(); // the library imports the module: it is mapped already
    ShellSubclass::StartLock();
    AppInstance::StartLock();

    SetLibraryInstance(hinst);
    SetMyProductAsCurrent();
    ProductInfo::pfnStepProgress = [](ProgressEx* pProgress) { return pProgress->StepIt(); };
    GetMyProductInfo().SetAppRootKey(kRootKey);
    ShellSubclass::Initialize(kSubclassId, kSubclassTag);
}

void LibraryStop() {
    AppInstance::StopLock();
    ShellSubclass::StopLock();
    ReleaseShellMalloc();
    wtsApi32.Stop();
    GetMyProductInfo().PopAppRootKey();
    IconBtn::Uninitialize();
}
