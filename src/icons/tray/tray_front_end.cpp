#include "icons/tray/tray_front_end.h"
#include "app/identity/my_product_info.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/tray/day_count.h"
#include "icons/tray/my_tb_icon.h"
#include "icons/tray/tray_menu.h"

namespace {
constexpr unsigned kBalloonSeconds = 5;

/// Says pszText on the icon. Silent without one.
void ShowBalloon(const wchar_t* pszText) {
    MyTBIcon* pIcon = MyTBIcon::GetCurrent();
    if (!pIcon) return;
    pIcon->SetBalloon(GetMyProductInfo().GetName(), NIIF_INFO, kBalloonSeconds, L"%s", pszText);
    pIcon->UpdateIcon(); // a balloon only shows with the next change of the icon
}
} // namespace

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
