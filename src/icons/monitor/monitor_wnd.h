#pragma once
#include "runtime/threads/message_pump.h"
#include "shell/namespace/shell_notify.h"
#include "wnd/core/cswnd.h"

/// The hidden window that decides when a capture is taken: it hears of what may have moved the
/// icons, waits until it is quiet, leaves out what a restore causes itself, and receives the
/// captures. One per round of DoMonitor.
class MyMonitor_Wnd : public CSWnd {
  public:
    /// Registers the window class "TessalyWnd".
    MyMonitor_Wnd();
    /// Unregisters it; stops both timers, the suppress timer first; ends the shell notification.
    ~MyMonitor_Wnd() override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;

    /// Creates the window, hidden, 1 by 1. 1 on success.
    int CreateHidden(HWND hwndParent);
    /// Asks the shell to report changes of the desktop to this window.
    void RegisterNotification();
    void EndNotification();

    /// An event that may have moved icons: the capture comes 10 seconds after the last of them.
    /// During the second after a restore it only stops a capture that was pending.
    void ScheduleCapture();
    /// Before a restore that the user chose: no capture is pending, and none gets scheduled for a
    /// second, so that the restore's own changes lead to none.
    void SuppressCaptures();
    /// install non-zero: puts hook and agent in place unless they are; 0: takes them out.
    void SetHook(int bInstall);

    /// Non-zero: the user asked for this capture; its outcome is to be told.
    int GetSnapshotAnnounce() const { return SnapshotAnnounce; }
    void SetSnapshotAnnounce(int bAnnounce) { SnapshotAnnounce = bAnnounce; }
    int IsCapturePending() const { return timerDebounce.IsTicking(); }
    int IsSuppressing() const { return timerSuppress.IsTicking(); }

    /// The monitor window of this process, null between rounds.
    static MyMonitor_Wnd* GetCurrent();

  private:
    void OnCompanyMessage(WPARAM wCode, LPARAM lParam);
    void OnNotification(WPARAM wParam, LPARAM lParam);
    void OnCopyData(const COPYDATASTRUCT* pData);
    void OnTimer(UINT_PTR uTimerId);
    void OnSessionChange(WPARAM wEvent);
    void OnClose();

    ShellNotify notify;
    UINT uNotifyMsg = 0; // "WM_TESSALY_SHLN"
    CSTimer timerDebounce;
    CSTimer timerSuppress;
    int SnapshotAnnounce = 0;
};

/// "TaskbarCreated", by which a shell that has started announces itself; 0 before the first call of
/// RegisterTaskbarCreated.
void RegisterTaskbarCreated();
/// Whether DoMonitor goes round again when its present round has ended.
int GetRestartFlag();
void SetRestartFlag(int bRestart);
