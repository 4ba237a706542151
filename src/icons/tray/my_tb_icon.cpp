#include "icons/tray/my_tb_icon.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "resources/resource_ids.h"
#include "wnd/core/company_msg.h"

#include <new>

namespace {
constinit MyTBIcon* pCurrent = nullptr;
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
