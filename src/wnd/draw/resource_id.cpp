#include "wnd/draw/resource_id.h"
#include "app/identity/my_product_info.h"
#include "runtime/base/library_instance.h"

ResourceRef ResolveResourceId(int nId, HINSTANCE hinst, DefaultModule defaultModule) {
    // The product's own rule keeps the module that is named, and asks the application otherwise.
    if (nId < 0) hinst = nullptr;
    if (nId >= 0 && !hinst && defaultModule == DefaultModule::kLibrary)
        hinst = GetLibraryInstance();
    GetMyProductInfo().ConvertResourceId(nId, hinst);
    return {hinst, MAKEINTRESOURCEW(static_cast<WORD>(nId))};
}
