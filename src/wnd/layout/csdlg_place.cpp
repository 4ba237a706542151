// Where a dialog comes up and how it gets back to where it was left.

#include "wnd/core/wnd_free.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/layout/coordinates.h"
#include "wnd/layout/wnd_place.h"

namespace {
constinit FrameThickness frameThickness{};

/// How a dialog is shown that was left hidden or minimised, as a record says: it comes back
/// neither.
int GetUsefulShowCmd(UINT nStored) {
    switch (nStored) {
    case SW_HIDE:
    case SW_SHOWMINIMIZED:
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
    case SW_FORCEMINIMIZE: return SW_SHOWNORMAL;
    }
    return static_cast<int>(nStored);
}
} // namespace

const FrameThickness& GetFrameThickness() { return frameThickness; }

void ReadFrameThickness() {
    frameThickness = {::GetSystemMetrics(SM_CXFRAME), ::GetSystemMetrics(SM_CYFRAME)};
}

// The record of the place

void CSDlg::EnableResizing(unsigned long dwFlags, MyWindowPlacement* pPlacement) {
    flags |= dwFlags;
    placement = pPlacement;
}

void CSDlg::DisableResizing() {
    flags &= ~static_cast<unsigned long>(kDlgResizeBoth);
    placement = nullptr;
}

void CSDlg::StoreResizingInfo() {
    if (!placement) return;
    MyWindowPlacement now; // of its own, so that a failure does not mark an empty record as filled
    now.Initialize();
    if (::GetWindowPlacement(hWnd, &now)) *placement = now;
}

// The start. Any handler of a derived class that is called here may destroy the window, and the
// object with it: after each one the window is asked for by its handle before the object is used.

__int64 CSDlg::OnInitDialog(unsigned __int64, __int64) {
    HWND hwnd = hWnd;
    if (!placement && !IsFlag(kDlgResizeBoth)) {
        isInitialized = 1;
        OnInitDone(); // before the place is known, unlike below: it may still change the size
        if (::IsWindow(hwnd)) AlignDlg();
        return 1;
    }
    isInitialized = 0; // in a further run of the object: its record waits to be used
    RECT rc{};
    ::GetWindowRect(hwnd, &rc);
    OnInitRect(rc);
    if (!::IsWindow(hwnd)) return 1;
    originX = rc.left;
    originY = rc.top;
    minWidth = prevWidth = GetWidth(rc);
    minHeight = prevHeight = GetHeight(rc);
    if (!IsFlag(kDlgShowsItself)) ::ShowWindow(hwnd, SW_HIDE);
    int nShowCmd = SW_SHOW;
    if (placement && placement->IsInitialized()) {
        nShowCmd = PlaceAsStored();
    } else {
        PlaceFirst(rc);
    }
    if (!::IsWindow(hwnd)) return 1;
    if (::IsZoomed(hwnd)) ReadZoomedSize();
    if (IsFlag(kDlgResizeBoth) && (curWidth != prevWidth || curHeight != prevHeight)) {
        OnResize(GetDistance(prevWidth, curWidth), GetDistance(prevHeight, curHeight));
        if (!::IsWindow(hwnd)) return 1;
    }
    isInitialized = 1;
    OnInitDone();
    if (::IsWindow(hwnd) && !IsFlag(kDlgShowsItself | kDlgStartHidden)) {
        ::ShowWindow(hwnd, nShowCmd);
    }
    return 1;
}

/// The first run, or one without a record: where alignMode says.
void CSDlg::PlaceFirst(const RECT& rc) {
    HWND hwnd = hWnd;
    curWidth = GetWidth(rc);
    curHeight = GetHeight(rc);
    ::SetWndPos(hwnd, &rc, 0);
    if (::IsWindow(hwnd)) AlignDlg();
    if (::IsWindow(hwnd)) StoreResizingInfo();
}

/// As the record says, without showing the window yet; returns how it is to be shown.
int CSDlg::PlaceAsStored() {
    curWidth = GetWidth(placement->rcNormalPosition);
    curHeight = GetHeight(placement->rcNormalPosition);
    int nShowCmd = GetUsefulShowCmd(placement->showCmd);
    placement->showCmd = SW_HIDE;
    MyWindowPlacement stored = *placement; // the caller's may go with the dialog meanwhile
    HWND hwnd = hWnd;
    ::SetWindowPlacement(hwnd, &stored);
    ::EnsureWindowVisible(hwnd, nullptr); // a damaged record may be beyond what the platform mends
    // Nor is the size the record's if that is below the smallest one (a template may have grown
    // since) or larger than the screen: the controls follow the window.
    RECT rc{};
    if (::GetWindowRect(hwnd, &rc)) {
        curWidth = GetWidth(rc);
        curHeight = GetHeight(rc);
    }
    return nShowCmd;
}

void CSDlg::ReadZoomedSize() {
    RECT rcWork{};
    if (!::SystemParametersInfoW(SPI_GETWORKAREA, 0, &rcWork, 0)) return;
    curWidth = GetWidth(rcWork) + 2 * ::GetSystemMetrics(SM_CXDLGFRAME);
    curHeight = GetHeight(rcWork) + 2 * ::GetSystemMetrics(SM_CYDLGFRAME);
}

void CSDlg::OnInitDone() {
    EnableFullDrag(1);
    if (IsFlag(kDlgTopmostAtStart)) ::SetWndZOrder(hWnd, HWND_TOPMOST, 0);
}

void CSDlg::OnActivate(int) {
    if (!IsFlag(kDlgTopmostAtStart)) return;
    SetFlags(kDlgTopmostAtStart, 0); // it came up in front of everything once, that is enough
    ::SetWndZOrder(hWnd, HWND_NOTOPMOST, 0);
}

void CSDlg::OnSystemSettingChange(WPARAM wParam, LPARAM lParam) {
    CSWnd::OnSystemSettingChange(wParam, lParam);
    ReadFrameThickness();
}

// The place by alignMode

void CSDlg::AlignDlg() {
    HWND hwndOwner = ::GetWindow(hWnd, GW_OWNER);
    if (hwndOwner && ::IsIconic(hwndOwner)) hwndOwner = nullptr;
    switch (alignMode) {
    case kDlgCentered: CenterWindow(hwndOwner); break;
    case kDlgCascaded: CascadeWindow(hwndOwner); break;
    case kDlgAtMouse:
        if (!::MoveWindowToMouse(hWnd)) CenterWindow(hwndOwner);
        break;
    }
}

int CSDlg::CenterWindow(HWND hwndOther) { return ::CenterWindow(hWnd, hwndOther); }

int CSDlg::CascadeWindow(HWND hwndOther) {
    return ::CascadeWindow(hWnd, hwndOther ? hwndOther : ::GetDesktopWindow());
}
