#pragma once
#include "icons/monitor/front_end.h"
#include "wnd/tray/tb_icon.h"

/// The tray icon window's class.
constexpr const wchar_t* kTrayIconClass = L"TessalyTBIcon";

/// The monitor's icon in the notification area: any click asks the monitor window for its menu. One
/// per round of DoMonitor, on the heap, with autoDelete. If its window closes by itself the object
/// is gone too, so everybody asks GetCurrent each time.
class MyTBIcon : public TBIcon {
  public:
    /// Registers the window class kTrayIconClass.
    MyTBIcon();
    /// Unregisters it.
    ~MyTBIcon() override;
    // QUIRK: each click asks on its own account, so a double click asks more than once.
    // Test: MyTBIconTest.DoubleClickAsksForTheMenuMoreThanOnce
    void OnLeftClick() override;
    void OnDoubleClick() override;
    void OnRightClick() override;

    /// Makes the window and shows the icon with the product's name as its tip. A window that can't
    /// be made changes nothing: the icon is tried all the same.
    void CreateTrayIcon(HWND hwndNewMonitor);

    /// The icon of this process, null if there is none.
    static MyTBIcon* GetCurrent();
    /// Allocates the icon of a new round and shows it. Null if out of memory.
    static MyTBIcon* StartRound(HWND hwndNewMonitor);
    /// Has the window closed by a posted message, and deletes the object at once; nothing if there
    /// is none. Takes no icon out of the notification area: hide it before.
    static void EndRound();

  private:
    void AskForMenu();

    HWND hwndMonitor = nullptr;
};

/// The monitor's face as the user has it: the icon in the notification area with its balloons, and
/// the menu. Has no state of its own: the icon is MyTBIcon's.
class TrayFrontEnd final : public MonitorFrontEnd {
  public:
    void OnMonitorStart() override;
    void OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) override;
    void OnMenuRequest(MyMonitor_Wnd& monitor) override;
    /// Silent without an icon, which may have closed by itself.
    void OnCaptureOutcome(const wchar_t* pszText) override;
    void OnMonitorClose() override;
    void OnRoundEnd() override;
    /// Silent without an icon, too.
    void OnIconsPutBack(const wchar_t* pszText) override;
};
