#pragma once
#include "support/test_window.h"

#include <windows.h>

/// A push button, shown, in a window of its own.
class ShownButton {
  public:
    explicit ShownButton(const wchar_t* pszText = L"")
        : parent({}, nullptr, WS_POPUP | WS_VISIBLE),
          hwnd(::CreateWindowExW(0, L"BUTTON", pszText, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10,
                                 80, 60, parent, nullptr, nullptr, nullptr)) {}
    operator HWND() const { return hwnd; }
    HWND GetParent() const { return parent; }

  private:
    TestWindow parent;
    HWND hwnd;
};
