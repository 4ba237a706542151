#pragma once
#include "app/shown_dialog.h"
#include "support/gui_objects.h"
#include "support/message_box_driver.h"

#include <windows.h>
#include <functional>

constexpr const wchar_t* kAboutTitle = L"About Tessaly";

/// A function that shows an About box and returns when that is closed, running on a thread of its
/// own. The box is closed with the object unless it is already.
class ShownBox : public ShownDialog {
  public:
    explicit ShownBox(std::function<void()> fnShow) : ShownDialog(std::move(fnShow), &Find) {}

    /// How many of them this process shows.
    static int Count() {
        int n = 0;
        for (HWND h = nullptr; (h = ::FindWindowExW(nullptr, h, L"#32770", kAboutTitle));) {
            DWORD dwProcess = 0;
            ::GetWindowThreadProcessId(h, &dwProcess);
            n += dwProcess == ::GetCurrentProcessId();
        }
        return n;
    }

  private:
    static HWND Find() { return FindMessageBox(::GetCurrentProcessId(), kAboutTitle); }
};
