#include "wnd/dialog/csdlg.h"

#include <cwchar>

CSDlg::CSDlg(void* /*pUnused*/) {
    isDlg = 1;
    AddWndHook(&msgHandler);
    AddDlgHook(&msgHandler);
    ReadFrameThickness();
}

int CSDlg::IsKindOf(LPCWSTR pszClass) {
    return (pszClass && std::wcscmp(pszClass, L"CSDlg") == 0) || CSWnd::IsKindOf(pszClass);
}

// What a dialog does unless a derived class knows better

int CSDlg::UpdateControls() { return 1; }

int CSDlg::UpdateData() {
    dataUpdated = 1;
    return 1;
}

int CSDlg::OnMyCompanyMsg(unsigned __int64, __int64, __int64*) { return 0; }

__int64 CSDlg::OnOK() {
    if (!dataUpdated && !UpdateData()) return 0;
    return CloseDialog(IDOK, 1);
}

__int64 CSDlg::OnCancel() { return CloseDialog(IDCANCEL, 0); }

int CSDlg::OnSysCommand(unsigned short, unsigned short, unsigned short) { return 0; }

void CSDlg::OnButtonClicked(unsigned short) {}

void CSDlg::OnComboSelChanged(unsigned short) {}

void CSDlg::OnDeleteItem(unsigned int, void*) {}

int CSDlg::GetTootTip(unsigned int, wchar_t*, unsigned int) { return 0; }

int CSDlg::GetTootTip(unsigned int, HINSTANCE&, unsigned short&) { return 0; }

LPCWSTR CSDlg::GetHtmlPage(unsigned int) { return nullptr; }

void CSDlg::OnHtmlHelpError(LPCWSTR) {}

int CSDlg::CanClose(int) { return 1; }

void CSDlg::DoClose(int) { isClosed = 1; }

void CSDlg::OnResize(int, int) {}

void CSDlg::OnInitRect(RECT&) {}

void CSDlg::OnMouseMove(unsigned __int64, int, int) {}

void CSDlg::EnsureDlgItemVisible(HWND) {}

int CSDlg::DelayAction(unsigned long dwCode, unsigned long dwMs) {
    delayTimer.Stop();
    delayedAction = dwMs ? dwCode : 0;
    return dwMs ? delayTimer.Start(hWnd, dwMs, nullptr, 1) : 1;
}

void CSDlg::OnDelayedAction(unsigned long) {
    delayTimer.Stop();
    delayedAction = 0;
}

void CSDlg::SetFlags(unsigned long dwMask, int bOn) {
    flags = bOn ? flags | dwMask : flags & ~dwMask;
}
