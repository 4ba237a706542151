#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <atomic>

/// A minimal window object: one procedure, no hooks, no nesting count. The window carries its
/// object under the property "COREWND". For more than a plain window use CSWnd.
class TESSALY_API CoreWnd {
  public:
    /// Whether the object deletes itself after its window's last message.
    enum AutoDelete { KeepObject = 0, DeleteObject = 1 };

    CoreWnd();
    CoreWnd(const CoreWnd&) = delete; // the window names one object
    CoreWnd& operator=(const CoreWnd&) = delete;
    /// Does not destroy the window; it only takes its name off a window that is still there.
    virtual ~CoreWnd();
    /// Every message of the window. The default hands it to oldWndProc. Returns the
    /// message's result.
    virtual LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam);

    /// Registers a class whose windows belong to CoreWnd objects, with the library's instance.
    /// Returns the class's atom, 0 on failure.
    static ATOM RegisterClassExW(LPCWSTR pszName, UINT uStyle, HICON hicon, HICON hiconSmall,
                                 HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                                 int cbClassExtra, int cbWndExtra);

    /// Creates the window; 1 on success. On failure hWnd is null and the object stays its owner's,
    /// also with autoDelete set.
    int Create(LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y, int cx, int cy,
               HWND hwndParent, HMENU hmenu, void* pParam);
    /// Creates it with extended styles, otherwise as Create.
    int CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y,
                 int cx, int cy, HWND hwndParent, HMENU hmenu, void* pParam);

    HWND hWnd = nullptr;                // the tied window; null when none is
    WNDPROC oldWndProc = nullptr;       // where OnWndMessage forwards to
    AutoDelete autoDelete = KeepObject; // set before the window goes

  protected:
    static LRESULT CALLBACK WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

  private:
    int nCreating = 0; // calls of CreateEx under way
};

// What CoreWnd and CSWnd have in common

/// RegisterClassExW of both, with the procedure that ties a window to its object: the class's atom,
/// 0 on failure.
ATOM RegisterWndClass(WNDPROC pfnWndProc, LPCWSTR pszName, UINT uStyle, HICON hicon,
                      HICON hiconSmall, HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                      int cbClassExtra, int cbWndExtra);

/// The object whose window is being created at the moment, one per thread: the first message of a
/// new window comes before its creator has the handle, and finds its object here.
class CreationSlot {
  public:
    constexpr CreationSlot() noexcept = default;
    CreationSlot(const CreationSlot&) = delete;
    CreationSlot& operator=(const CreationSlot&) = delete;
    ~CreationSlot();

    /// Stores the object (null: none) for the calling thread. False if the process has no slots
    /// left.
    [[nodiscard]] bool Set(void* pObject) noexcept;
    /// No object of the calling thread waits any longer.
    void Clear() noexcept { static_cast<void>(Take()); }
    /// The calling thread's object, which is no longer waiting then; null for none.
    void* Take() noexcept;

  private:
    std::atomic<DWORD> dwIndex{TLS_OUT_OF_INDEXES}; // allocated by the first Set
};
