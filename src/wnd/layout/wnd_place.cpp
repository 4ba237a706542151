#include "wnd/layout/wnd_place.h"
#include "runtime/base/current_product.h"
#include "store/registry/reg_key.h"
#include "wnd/core/wnd_free.h"
#include "wnd/draw/rect_util.h"
#include "wnd/layout/coordinates.h"

#include <algorithm>

namespace {
constexpr const wchar_t* kLeftValue = L"posLeft"; // in the registry, behind the caller's prefix
constexpr const wchar_t* kTopValue = L"posTop";

bool ReadMonitor(HMONITOR hmonitor, MONITORINFO& info) {
    info = {};
    info.cbSize = sizeof(info);
    return ::GetMonitorInfoW(hmonitor, &info) != FALSE;
}

/// The monitor nearest the other window, or nearest hwnd if there is no other one.
bool ReadMonitorNear(HWND hwndOther, HWND hwnd, MONITORINFO& info) {
    HWND hwndNear = ::IsWindow(hwndOther) ? hwndOther : hwnd;
    return ReadMonitor(::MonitorFromWindow(hwndNear, MONITOR_DEFAULTTONEAREST), info);
}

/// Shifts a start along one axis so that the size ends on the monitor. What is larger than the
/// monitor starts with it, or ends with it if that would start on it.
int KeepWithin(int nStart, int nSize, int nFrom, int nTo) {
    if (nStart < nFrom) return nFrom;
    return GetDistance(nStart, nTo) < nSize ? GetDistance(nSize, nTo) : nStart;
}

int MoveOnMonitor(HWND hwnd, int x, int y, const RECT& rcWnd, const RECT& rcMonitor) {
    return SetWndOrigin(hwnd, KeepWithin(x, GetWidth(rcWnd), rcMonitor.left, rcMonitor.right),
                        KeepWithin(y, GetHeight(rcWnd), rcMonitor.top, rcMonitor.bottom), 0);
}
} // namespace

int CenterWindow(HWND hwnd, HWND hwndOther) {
    RECT rc, rcRef;
    MONITORINFO info;
    if (!::GetWindowRect(hwnd, &rc) || !ReadMonitorNear(hwndOther, hwnd, info)) return 0;
    // Owners that only exist to own, such as the window of a tray icon, have next to no size.
    if (!hwndOther || !::GetWindowRect(hwndOther, &rcRef) || IsRectEmpty(rcRef) ||
        (GetWidth(rcRef) <= 1 && GetHeight(rcRef) <= 1)) {
        rcRef = info.rcMonitor;
    }
    return MoveOnMonitor(hwnd, GetCenteredStart(rcRef.left, rcRef.right, GetWidth(rc)),
                         GetCenteredStart(rcRef.top, rcRef.bottom, GetHeight(rc)), rc,
                         info.rcMonitor);
}

int CascadeWindow(HWND hwnd, HWND hwndOther) {
    RECT rc, rcRef;
    MONITORINFO info;
    if (!::GetWindowRect(hwnd, &rc) || !ReadMonitorNear(hwndOther, hwnd, info)) return 0;
    if (!hwndOther || !::GetWindowRect(hwndOther, &rcRef)) rcRef = info.rcMonitor;
    return MoveOnMonitor(hwnd, AddCoordinates(rcRef.left, ::GetSystemMetrics(SM_CXVSCROLL)),
                         AddCoordinates(rcRef.top, ::GetSystemMetrics(SM_CYCAPTION)), rc,
                         info.rcMonitor);
}

int MoveWindowToMouse(HWND hwnd) {
    RECT rc;
    POINT pt;
    if (!::GetCursorPos(&pt) || !::GetWindowRect(hwnd, &rc)) return 0;
    RECT rcNew{pt.x, pt.y, AddCoordinates(pt.x, GetWidth(rc)), AddCoordinates(pt.y, GetHeight(rc))};
    MONITORINFO info;
    if (!ReadMonitor(::MonitorFromRect(&rcNew, MONITOR_DEFAULTTONEAREST), info)) return 0;
    return MoveOnMonitor(hwnd, pt.x, pt.y, rcNew, info.rcMonitor);
}

void EnsureWindowVisible(HWND hwnd, HWND hwndOther) {
    if (!::MonitorFromWindow(hwnd, MONITOR_DEFAULTTONULL)) CenterWindow(hwnd, hwndOther);
}

void FitRectToNearestMonitor(RECT* prc) {
    MONITORINFO info;
    if (!prc || !ReadMonitor(::MonitorFromRect(prc, MONITOR_DEFAULTTONEAREST), info)) return;
    const RECT& rcWork = info.rcWork;
    if (prc->right > rcWork.right) {
        prc->left = GetDistance(GetWidth(*prc), rcWork.right);
        prc->right = rcWork.right;
    }
    if (prc->bottom > rcWork.bottom) {
        prc->top = GetDistance(GetHeight(*prc), rcWork.bottom);
        prc->bottom = rcWork.bottom;
    }
    prc->left = std::max(prc->left, rcWork.left);
    prc->top = std::max(prc->top, rcWork.top);
}

void WndStorePosition(HWND hwnd, LPCWSTR pszPrefix) {
    RECT rc;
    if (!::GetWindowRect(hwnd, &rc)) return;
    RegKey key(GetCurrentProduct().pfnGetRootKey(), 1);
    if (!key.GetHandle()) return;
    key.PutIntPrefix(pszPrefix, kLeftValue, rc.left);
    key.PutIntPrefix(pszPrefix, kTopValue, rc.top);
}

void WndRestorePosition(HWND hwnd, LPCWSTR pszPrefix) {
    RECT rc;
    if (!::GetWindowRect(hwnd, &rc)) return;
    RegKey key(GetCurrentProduct().pfnGetRootKey(), 0);
    if (!key.GetHandle()) return;
    int x = key.GetIntPrefix(pszPrefix, kLeftValue, rc.left);
    int y = key.GetIntPrefix(pszPrefix, kTopValue, rc.top);
    // The caption must stay in reach of the mouse, so nothing goes beyond the top.
    int cxHalf = GetWidth(rc) / 2, cyHalf = GetHeight(rc) / 2;
    x = std::max(std::min(x, ::GetSystemMetrics(SM_CXSCREEN) - cxHalf), -cxHalf);
    y = std::max(std::min(y, ::GetSystemMetrics(SM_CYSCREEN) - cyHalf), 0);
    SetWndOrigin(hwnd, x, y, 0);
}
