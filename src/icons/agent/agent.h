#pragma once
#include "icons/agent/told_positions.h"
#include "wnd/core/cswnd.h"
#include <windows.h>

// The agent: the half of the icon engine that runs in the shell, on the thread that owns the
// desktop's windows. It shows nothing, touches no registry, and knows of the monitor only what
// DesktopSharedData says.

/// The WH_GETMESSAGE hook on the list view's thread. Acts on the company message with kCodeCapture
/// and kCodeAttach, for whatever window of the thread; lParam points to the MSG. Every message goes
/// on to its window.
LRESULT CALLBACK DesktopHookProc(int nCode, WPARAM wParam, LPARAM lParam);

/// A window of the shell, while the agent is attached to it.
class AgentWnd : public CSWnd {
  public:
    constexpr AgentWnd() noexcept = default;
    ~AgentWnd() override;
    /// Ties the object to the window (null: to the one it held before), which must belong to the
    /// calling thread. 1 on success.
    int AttachTo(HWND hwndTarget);
    void DetachFrom();
    void OnPostNcDestroy() override;
    /// The property "CSWND" is no measure of it: another copy of the library can have taken it.
    int IsAttached() const { return bAttached; }

  protected:
    /// The window is no longer attached, and may have gone.
    virtual void OnDetached() {}

  private:
    int bAttached = 0;
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

/// Whether the agent keeps this library mapped in its process: while a window is attached, and
/// beyond that until no frame of the agent waits on the stack.
int IsAgentHoldingLibrary();

/// This process's two objects; only the shell's are ever attached.
MySysLVWnd& GetAgentListView();
MyShellWnd& GetAgentView();
