#pragma once
#include <windows.h>

/// CreateProcessW, asked again while it fails with ERROR_INTERNAL_ERROR: under load the test
/// platform now and then makes a process that ends before it has begun, and says it like that.
template <class... Args>
BOOL StartProcessSurely(Args... args) {
    constexpr int kTries = 6;
    for (int n = 1;; ++n) {
        if (::CreateProcessW(args...)) return TRUE;
        if (::GetLastError() != ERROR_INTERNAL_ERROR || n == kTries) return FALSE;
    }
}
