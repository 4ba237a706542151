#include "wnd/draw/csdc.h"

CSDC::CSDC(HDC hdc, int bSave) : hDC(hdc) {
    if (!hDC) {
        hDC = ::CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
        deleteDC = 1;
    } else if (bSave) {
        ::SaveDC(hDC);
        restoreDC = 1;
    }
}

CSDC::~CSDC() {
    if (restoreDC) ::RestoreDC(hDC, -1);
    if (deleteDC) ::DeleteDC(hDC);
}

ClientDC::ClientDC(HWND hwndShown) : CSDC(::GetDC(hwndShown), 1), hwnd(hwndShown) {}

ClientDC::~ClientDC() { ::ReleaseDC(hwnd, hDC); }

DCWindow::DCWindow(HWND hwndShown) : CSDC(::GetWindowDC(hwndShown), 1), hwnd(hwndShown) {}

DCWindow::~DCWindow() { ::ReleaseDC(hwnd, hDC); }

CompatibleDC::CompatibleDC(HDC hdc) : CSDC(::CreateCompatibleDC(hdc), 1) { deleteDC = 1; }
