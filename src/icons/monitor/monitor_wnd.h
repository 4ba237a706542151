#pragma once
#include "icons/agent/icon_record.h"
#include "icons/displays/display_watcher.h"
#include "icons/monitor/command_desk.h"
#include "runtime/threads/message_pump.h"
#include "shell/namespace/shell_notify.h"
#include "wnd/core/cswnd.h"

class MonitorFrontEnd;

/// The hidden window that decides when a capture is taken: it hears of what may have moved the
/// icons, waits until it is quiet, leaves out what a restore causes itself, and receives the
/// captures. One per round of DoMonitor.
class MyMonitor_Wnd : public CSWnd {
  public:
    /// Registers the window class kMonitorClass. The front end is not owned and outlives the
    /// object.
    explicit MyMonitor_Wnd(MonitorFrontEnd& frontEndToCall);
    /// Unregisters the class; stops both timers, the suppress timer first; ends the shell
    /// notification.
    ~MyMonitor_Wnd() override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;

    /// Creates the window, hidden, 1 by 1; hwndParent may be null. False if the platform refuses.
    [[nodiscard]] bool CreateHidden(HWND hwndParent);
    /// Asks the shell to report changes of the desktop to this window. Where it refuses, drags and
    /// renames are heard of all the same, by the agent.
    void RegisterNotification();
    void EndNotification();

    /// An event that may have moved icons: the capture comes 10 seconds after the last of them.
    /// During the second after a restore it only stops a capture that was pending.
    void ScheduleCapture();
    /// Asks the agent for a capture, now.
    void RequestCapture();
    /// Before a restore that the user chose: no capture is pending, and none gets scheduled for a
    /// second, so that the restore's own changes lead to none.
    void SuppressCaptures();
    /// Non-zero puts hook and agent in place unless they are; 0 takes them out.
    void SetHook(int bInstall);

    /// Non-zero: the user asked for this capture; its outcome is to be told.
    int GetSnapshotAnnounce() const { return SnapshotAnnounce; }
    void SetSnapshotAnnounce(int bAnnounce) { SnapshotAnnounce = bAnnounce; }
    /// The capture that the user asked for has been dealt with: clears SnapshotAnnounce and has the
    /// front end tell pszText.
    void ReportCaptureOutcome(const wchar_t* pszText);

    /// The restore that the user chose has moved icons: what lies there now is to be kept as the
    /// layout of the displays.
    void NoteRestore() { displays.OnRestored(); }
    /// A capture has come. bSeen: it was stored, or found unchanged, and so is the layout of the
    /// displays as they are.
    void NoteLayout(const IconRecord* pRecords, unsigned nRecords, bool bSeen);
    /// Where the commands of the command line are taken.
    CommandDesk& GetCommandDesk() { return commandDesk; }

    /// The monitor window of this process, null between rounds.
    static MyMonitor_Wnd* GetCurrent();

  private:
    void OnCompanyMessage(WPARAM wCode, LPARAM lParam);
    void OnNotification(WPARAM wParam, LPARAM lParam);
    void OnCopyData(HWND hwndAsked, const COPYDATASTRUCT* pData);
    LRESULT OnCommand(const COPYDATASTRUCT& data);
    void OnTimer(UINT_PTR uTimerId);
    void OnDisplaysTimer();
    void OnSessionChange(WPARAM wEvent);
    void RegisterSessions();
    void OnClose();

    ShellNotify notify;
    UINT uNotifyMsg = 0; // "WM_TESSALY_SHLN"; 0 before RegisterNotification
    CSTimer timerDebounce;
    CSTimer timerSuppress;
    DisplayWatcher displays;
    int SnapshotAnnounce = 0;
    bool bHearsOfSessions = false;
    CommandDesk commandDesk;
    MonitorFrontEnd& frontEnd;
};

/// A capture has arrived: stores it if it differs from the newest snapshot, and has the monitor
/// window report the outcome if the user asked for it; silently while no such window lives. No
/// records: nothing happens at all.
void OnIconsCaptured(const IconRecord* pRecords, unsigned nRecords);

/// Registers "TaskbarCreated", by which a shell that has started announces itself, for the monitor
/// windows of this process. Before that they do not know the message.
void RegisterTaskbarCreated();
/// Whether DoMonitor goes round again when its present round has ended; true at first.
bool GetRestartFlag();
void SetRestartFlag(bool bRestart);
