#include "wnd/core/creation_slot.h"

CreationSlot::~CreationSlot() {
    DWORD dw = dwIndex.exchange(TLS_OUT_OF_INDEXES);
    if (dw != TLS_OUT_OF_INDEXES) ::TlsFree(dw);
}

int CreationSlot::Set(void* pObject) noexcept {
    DWORD dw = dwIndex.load();
    if (dw == TLS_OUT_OF_INDEXES) {
        DWORD dwNew = ::TlsAlloc();
        if (dwNew == TLS_OUT_OF_INDEXES) return 0;
        if (dwIndex.compare_exchange_strong(dw, dwNew)) {
            dw = dwNew;
        } else {
            ::TlsFree(dwNew); // another thread was first; dw is its slot now
        }
    }
    return ::TlsSetValue(dw, pObject) != FALSE;
}

void* CreationSlot::Take() noexcept {
    DWORD dw = dwIndex.load();
    if (dw == TLS_OUT_OF_INDEXES) return nullptr;
    DWORD dwError = ::GetLastError(); // TlsGetValue clears it, and this is a window's message path
    void* pObject = ::TlsGetValue(dw);
    if (pObject) ::TlsSetValue(dw, nullptr);
    ::SetLastError(dwError);
    return pObject;
}
