#include "wnd/core/wm_hook.h"
#include "wnd/core/cswnd.h"

WMHook::~WMHook() = default;

int WMHook::OnWndMessage(CSWnd*, UINT, WPARAM, LPARAM, LRESULT*) { return 0; }

int WMHook::OnDlgMessage(CSDlg*, UINT, WPARAM, LPARAM, LRESULT*) { return 0; }

void WMHook::AddToWnd(CSWnd* pWnd) { pWnd->AddWndHook(this); }

void WMHook::RemoveFromWnd(CSWnd* pWnd) { pWnd->RemoveWndHook(this); }
