#pragma once
#include <windows.h>
#include <memory>

constexpr COLORREF kDesktopColor = RGB(58, 110, 165);

/// A view of the desktop in a window of ours: "SHELLDLL_DefView" with a "SysListView32" in it. Its
/// windows go with the object, or with the window that hosts them.
class DesktopView {
  public:
    virtual ~DesktopView() = default;
    virtual HWND View() const = 0;
    virtual HWND List() const = 0;
    /// True if the message was one of the view's keyboard commands and has been dealt with.
    virtual bool TakesKey(MSG&) { return false; }
};

/// The platform's own view of the desktop folder, over the real files of the profile. Throws
/// std::runtime_error.
std::unique_ptr<DesktopView> CreateShellView(HWND hwndHost);
/// Windows of the same classes over a list of whatever items a test asks for; empty at first.
/// Throws std::runtime_error.
std::unique_ptr<DesktopView> CreatePlainView(HWND hwndHost);
