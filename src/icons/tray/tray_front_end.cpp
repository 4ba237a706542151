#include "icons/tray/tray_front_end.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/tray/day_count.h"
#include "icons/tray/tray_menu.h"
#include "resources/resource_ids.h"
#include "wnd/core/company_msg.h"

#include <new>

namespace {
constinit MyTBIcon* pCurrent = nullptr;

constexpr unsigned kBalloonSeconds = 5;

/// Says pszText on the icon. Silent without one.
void ShowBalloon(const wchar_t* pszText) {
    MyTBIcon* pIcon = MyTBIcon::GetCurrent();
    if (!pIcon) return;
    pIcon->SetBalloon(GetMyProductInfo().GetName(), NIIF_INFO, kBalloonSeconds, L"%s", pszText);
    pIcon->UpdateIcon(); // a balloon only shows with the next change of the icon
}
} // namespace

MyTBIcon::MyTBIcon() {
    autoDelete = 1;
    // A failure means that the class is there already, as long as a window of the last round is
    // still to close. It serves as well.
    RegisterClassExWithWndExtra(kTrayIconClass, 0);
    pCurrent = this;
}

MyTBIcon::~MyTBIcon() {
    if (pCurrent == this) pCurrent = nullptr;
    UnregisterClassW(kTrayIconClass);
}

void MyTBIcon::OnLeftClick() { AskForMenu(); }

void MyTBIcon::OnDoubleClick() { AskForMenu(); }

void MyTBIcon::OnRightClick() { AskForMenu(); }

void MyTBIcon::AskForMenu() { PostMyCompanyMsg(hwndMonitor, kCodeOpenMenu, 1); }

void MyTBIcon::CreateTrayIcon(HWND hwndNewMonitor) {
    hwndMonitor = hwndNewMonitor;
    CreateWnd(kTrayIconClass);
    SetIcon(-IDI_TESSALY, 0, 0);
    SetTip(L"%s", GetMyProductInfo().GetName());
    ShowIcon(1);
}

MyTBIcon* MyTBIcon::GetCurrent() { return pCurrent; }

MyTBIcon* MyTBIcon::StartRound(HWND hwndNewMonitor) {
    auto* pIcon = new (std::nothrow) MyTBIcon;
    if (pIcon) pIcon->CreateTrayIcon(hwndNewMonitor);
    return pIcon;
}

void MyTBIcon::EndRound() {
    MyTBIcon* pIcon = pCurrent;
    if (!pIcon) return; // closed by somebody else, and gone by itself
    pIcon->DestroyWnd(kTrayIconClass);
    // The message that was posted finds a window of the platform alone: the object goes now. It
    // reaches the window in the next round's loop, or the process ends before.
    pIcon->CommonUnsubclass();
    pIcon->autoDelete = 0;
    delete pIcon;
}

void TrayFrontEnd::OnMonitorStart() { UpdateDayCount(); }

void TrayFrontEnd::OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) {
    MyTBIcon::StartRound(monitor);
    if (bAnnounce) ShowBalloon(L"Monitoring the desktop icons...");
}

void TrayFrontEnd::OnMenuRequest(MyMonitor_Wnd& monitor) { OpenTrayMenu(monitor); }

void TrayFrontEnd::OnCaptureOutcome(const wchar_t* pszText) { ShowBalloon(pszText); }

void TrayFrontEnd::OnMonitorClose() {
    if (MyTBIcon* pIcon = MyTBIcon::GetCurrent()) pIcon->ShowIcon(0);
}

void TrayFrontEnd::OnRoundEnd() { MyTBIcon::EndRound(); }

void TrayFrontEnd::OnIconsPutBack(const wchar_t* pszText) { ShowBalloon(pszText); }
