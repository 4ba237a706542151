#include "runtime/threads/co_init.h"

#include <windows.h>
#include <commctrl.h>
#include <objbase.h>

namespace {
LONG nCoInitEx = 0; // objects of that class in the process
} // namespace

CoInit::CoInit() { ::CoInitialize(nullptr); }

CoInit::~CoInit() { ::CoUninitialize(); }

CoInitEx::CoInitEx() {
    if (::InterlockedIncrement(&nCoInitEx) != 1) return;
    ::CoInitialize(nullptr);
    ::InitCommonControls();
}

CoInitEx::~CoInitEx() {
    if (::InterlockedDecrement(&nCoInitEx) == 0) ::CoUninitialize();
}
