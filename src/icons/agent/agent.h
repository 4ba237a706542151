#pragma once
#include "icons/agent/told_positions.h"
#include "wnd/core/cswnd.h"
#include <windows.h>

// The agent: the half of the icon engine that runs in the shell, on the thread that owns the
// desktop's windows. It shows nothing, touches no registry, and knows of the monitor only what
// DesktopSharedData says.

/// The WH_GETMESSAGE hook on the list view's thread. Acts on the company message with kCodeCapture
/// and kCodeAttach, for whatever window of the thread; lParam points to the MSG and may be null.
/// Every message goes on to its window. Returns what the next hook returns.
/// It stands first in the library's code, whatever the build: a shell that still maps an older
/// file, which was moved away for a newer one, calls that one's code at the place where the newer
/// has this.
[[gnu::section(".init")]] LRESULT CALLBACK DesktopHookProc(int nCode, WPARAM wParam, LPARAM lParam);

/// A window of the shell, while the agent is attached to it. There are two, one of each class
/// below, in every process that maps the library; only the shell's are ever attached.
class AgentWnd : public CSWnd {
  public:
    constexpr AgentWnd() noexcept = default;
    ~AgentWnd() override;
    /// Ties the object to the window (null: to the one it held before), which must belong to the
    /// calling thread. False, without a change, if it does not; false too if the platform refuses
    /// the subclassing: then no window is attached.
    bool AttachTo(HWND hwndTarget);
    /// Gives the window back its own procedure; nothing if none is attached.
    void DetachFrom();
    bool IsAttached() const { return bAttached; }
    void OnPostNcDestroy() override;

  protected:
    /// The window is no longer attached, and may have gone.
    virtual void OnDetached() {}

  private:
    bool bAttached = false;
};

/// The desktop's list view: performs restores, tells the folder view of them and sees a drag's end.
class MySysLVWnd : public AgentWnd {
  public:
    constexpr MySysLVWnd() noexcept = default;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    /// A drag has begun: the mouse's next movement over the list view is to be reported.
    void SetDragBegun() { bDragBegun = 1; }

  protected:
    void OnDetached() override { toldPositions.Drop(); }

  private:
    void OnRestore(const COPYDATASTRUCT& data);

    int bDragBegun = 0;
    ToldPositions toldPositions;
};

/// The desktop's view, the list view's parent: hears of drags and renames.
class MyShellWnd : public AgentWnd {
  public:
    constexpr MyShellWnd() noexcept = default;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
};

/// Keeps this library mapped while the shell's windows call into it. The hook's own reference goes
/// with the process that set it: without a second one, a monitor that is killed would leave the
/// shell with procedures of a library that is gone.
class LibraryHold {
  public:
    constexpr LibraryHold() noexcept = default;
    LibraryHold(const LibraryHold&) = delete; // owns the reference
    LibraryHold& operator=(const LibraryHold&) = delete;

    /// Takes the reference unless it is held.
    void Take();
    /// Gives it back, a second later and on a thread of its own: the caller still runs code of this
    /// library. Only for a caller on whose stack nothing else of this library waits.
    void Release();

  private:
    HMODULE hmodHeld = nullptr; // null: no reference is held
};
