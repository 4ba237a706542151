#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <algorithm>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_MonitorFromWindow;
extern "C" FARPROC __imp_MonitorFromRect;
extern "C" FARPROC __imp_GetMonitorInfoW;

/// A screen made of the monitors that the test says, the first of which is the primary one, for the
/// length of a block.
class FakeMonitors {
  public:
    struct Monitor {
        RECT rcMonitor;
        RECT rcWork;
    };

    explicit FakeMonitors(std::vector<Monitor> list)
        : fromWindow(__imp_MonitorFromWindow, &FromWindow),
          fromRect(__imp_MonitorFromRect, &FromRect), info(__imp_GetMonitorInfoW, &GetInfo) {
        monitors = std::move(list);
    }
    FakeMonitors(const FakeMonitors&) = delete;
    FakeMonitors& operator=(const FakeMonitors&) = delete;

    /// Two beside each other: the second one lies to the right and begins 200 pixels higher. Each
    /// has a bar of 40 pixels, the first below, the second on its left.
    static std::vector<Monitor> Two() {
        return {{{0, 0, 1024, 768}, {0, 0, 1024, 728}},
                {{1024, -200, 2304, 824}, {1064, -200, 2304, 824}}};
    }

  private:
    static LONGLONG Overlap(const RECT& a, const RECT& b) {
        LONGLONG cx = LONGLONG{std::min(a.right, b.right)} - std::max(a.left, b.left);
        LONGLONG cy = LONGLONG{std::min(a.bottom, b.bottom)} - std::max(a.top, b.top);
        return cx > 0 && cy > 0 ? cx * cy : 0;
    }
    static LONGLONG Distance(const RECT& a, const RECT& b) {
        LONGLONG dx = std::max({LONGLONG{a.left} - b.right, LONGLONG{b.left} - a.right, 0LL});
        LONGLONG dy = std::max({LONGLONG{a.top} - b.bottom, LONGLONG{b.top} - a.bottom, 0LL});
        return dx + dy;
    }
    static HMONITOR WINAPI FromRect(const RECT* prc, DWORD dwFlags) {
        std::size_t nBest = 0, nNearest = 0;
        LONGLONG qwBest = 0;
        for (std::size_t i = 0; i < monitors.size(); ++i) {
            LONGLONG qw = Overlap(*prc, monitors[i].rcMonitor);
            if (qw > qwBest) {
                qwBest = qw;
                nBest = i + 1;
            }
            if (Distance(*prc, monitors[i].rcMonitor) <
                Distance(*prc, monitors[nNearest].rcMonitor)) {
                nNearest = i;
            }
        }
        if (monitors.empty()) return nullptr;
        if (!nBest && dwFlags == MONITOR_DEFAULTTONEAREST) nBest = nNearest + 1;
        if (!nBest && dwFlags == MONITOR_DEFAULTTOPRIMARY) nBest = 1;
        return reinterpret_cast<HMONITOR>(nBest);
    }
    static HMONITOR WINAPI FromWindow(HWND hwnd, DWORD dwFlags) {
        RECT rc{};
        if (!::GetWindowRect(hwnd, &rc) && dwFlags == MONITOR_DEFAULTTONULL) return nullptr;
        return FromRect(&rc, dwFlags);
    }
    static BOOL WINAPI GetInfo(HMONITOR hmonitor, MONITORINFO* pInfo) {
        auto n = reinterpret_cast<std::size_t>(hmonitor);
        if (n == 0 || n > monitors.size()) return FALSE;
        pInfo->rcMonitor = monitors[n - 1].rcMonitor;
        pInfo->rcWork = monitors[n - 1].rcWork;
        pInfo->dwFlags = n == 1 ? MONITORINFOF_PRIMARY : 0;
        return TRUE;
    }

    static inline std::vector<Monitor> monitors;
    ReplaceImport fromWindow, fromRect, info;
};
