#include "files/operations/file_operation.h"
#include "files/operations/file_operation_object.h"

#include <windows.h>
#include <objbase.h>
#include <utility>

namespace {
HRESULT CreateOperation(IFileOperation** ppOperation) {
    return ::CoCreateInstance(CLSID_FileOperation, nullptr, CLSCTX_ALL, IID_IFileOperation,
                              reinterpret_cast<void**>(ppOperation));
}
} // namespace

MyFileOperation::MyFileOperation() {
    static_cast<void>(Recreate()); // Get tells
}

MyFileOperation::~MyFileOperation() {
    ReleaseOperation();
    if (bCoInitialized) ::CoUninitialize();
}

int MyFileOperation::Recreate() {
    ReleaseOperation();
    if (CreateOperation(&pOperation) == CO_E_NOTINITIALIZED) {
        // Each initialisation has its own end, and this object has one.
        const HRESULT hr =
            bCoInitialized
                ? S_OK
                : ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
        bCoInitialized = SUCCEEDED(hr);
        if (bCoInitialized) static_cast<void>(CreateOperation(&pOperation));
    }
    return pOperation != nullptr;
}

void MyFileOperation::ReleaseOperation() {
    if (pOperation) std::exchange(pOperation, nullptr)->Release();
}

unsigned FileSet::GetCount() const { return pSet ? nCount : 0; }
