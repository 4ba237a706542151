#pragma once
#include "progress/progress.h"
#include "progress/progress_clock.h"
#include "resources/resource_ids.h"
#include "support/message_box_driver.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <string>

// The dialog of a Progress as it is seen from the worker's thread. Ids are those of the library's
// dialog.
constexpr int kShownLineId = IDC_PROGRESS_LINE_0, kShownBarId = IDC_PROGRESS_BAR;

inline HWND WindowOf(Progress& progress) { return progress.GetDlgHWND(); }
inline bool IsShown(Progress& progress) { return WindowOf(progress) != nullptr; }

inline std::wstring TitleOf(Progress& progress) {
    wchar_t sz[2048] = L"";
    ::SendMessageW(WindowOf(progress), WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(sz));
    return sz;
}
inline std::wstring TextOf(Progress& progress, int nLine) {
    wchar_t sz[2048] = L"";
    ::GetDlgItemTextW(WindowOf(progress), kShownLineId + nLine, sz, 2048);
    return sz;
}
inline int AskBar(Progress& progress, UINT uMsg, WPARAM wParam = 0) {
    return static_cast<int>(
        ::SendDlgItemMessageW(WindowOf(progress), kShownBarId, uMsg, wParam, 0));
}
inline int PosOf(Progress& progress) { return AskBar(progress, PBM_GETPOS); }
inline int LowOf(Progress& progress) { return AskBar(progress, PBM_GETRANGE, TRUE); }
inline int HighOf(Progress& progress) { return AskBar(progress, PBM_GETRANGE, FALSE); }

/// Waits until the dialog has come up for good: the platform shows a dialog once more when its
/// thread has no messages left for the first time.
inline bool Settle(Progress& progress) {
    bool bVisible = PumpInRealTime([&] { return ::IsWindowVisible(WindowOf(progress)); });
    PumpInRealTime([] { return false; }, std::chrono::milliseconds(100));
    return bVisible;
}

/// A person who cancels and answers Yes; true once the dialog has gone.
inline bool CancelByHand(Progress& progress) {
    MessageBoxDriver driver({IDYES});
    ::PostMessageW(WindowOf(progress), WM_COMMAND, IDCANCEL, 0);
    bool bGone = PumpInRealTime([&] { return !IsShown(progress); });
    return bGone && driver.Finish().size() == 1;
}

/// So many windows of this process have a bar of the library's dialog.
inline int CountProgressWindows() {
    int n = 0;
    auto Count = [](HWND hwnd, LPARAM lCount) -> BOOL {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &dwProcess);
        if (dwProcess == ::GetCurrentProcessId() && ::GetDlgItem(hwnd, kShownBarId)) {
            ++*reinterpret_cast<int*>(lCount);
        }
        return TRUE;
    };
    ::EnumWindows(Count, reinterpret_cast<LPARAM>(&n));
    return n;
}
