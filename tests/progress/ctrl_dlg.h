#pragma once
#include "progress/ctrl_ids.h"
#include "progress/cs_progress_ctrl.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/control/message_tap.h"

#include <commctrl.h>
#include <memory>
#include <string>

#ifndef PBM_SETSTATE
#define PBM_SETSTATE (WM_USER + 16)
#define PBM_GETSTATE (WM_USER + 17)
#define PBST_NORMAL 1
#define PBST_PAUSED 3
#endif

/// A dialog with a bar and four lines of text, of which a control object was told. The tap lies
/// between the bar and the object.
struct ProgressDialog {
    explicit ProgressDialog(int nLow = 0, int nHigh = 100, int nPos = 0) {
        dialog.onInit = [=, this] {
            tap = std::make_unique<MessageTap>(::GetDlgItem(dialog, IDC_TEST_BAR));
            ctrl.Init(&dialog, IDC_TEST_BAR, nLow, nHigh, nPos);
        };
        EXPECT_TRUE(dialog.Run(IDD_PROGRESS_CTRL));
    }
    void SetupLines() {
        ctrl.SetupLines(IDC_TEST_LINE0, IDC_TEST_LINE1, IDC_TEST_LINE2, IDC_TEST_LINE3);
    }
    HWND Bar() { return ::GetDlgItem(dialog, IDC_TEST_BAR); }
    HWND Line(int n) { return ::GetDlgItem(dialog, IDC_TEST_LINE0 + n); }
    std::wstring Text(int n) { return WndText(Line(n)); }
    int Pos() { return static_cast<int>(::SendMessageW(Bar(), PBM_GETPOS, 0, 0)); }
    int Low() { return static_cast<int>(::SendMessageW(Bar(), PBM_GETRANGE, TRUE, 0)); }
    int High() { return static_cast<int>(::SendMessageW(Bar(), PBM_GETRANGE, FALSE, 0)); }
    /// The messages of progress bars that came since the last call, of those that change one.
    std::string Take() {
        std::string str;
        for (auto& message : tap->seen) {
            auto n = std::to_string(static_cast<int>(message.wParam));
            auto l = std::to_string(static_cast<int>(message.lParam));
            switch (message.uMsg) {
            case PBM_SETRANGE: str += "range16 " + l + "; "; break;
            case PBM_SETRANGE32: str += "range " + n + " " + l + "; "; break;
            case PBM_SETPOS: str += "pos " + n + "; "; break;
            case PBM_SETSTEP: str += "by " + n + "; "; break;
            case PBM_STEPIT: str += "step; "; break;
            case PBM_SETSTATE: str += "state " + n + "; "; break;
            case PBM_SETMARQUEE: str += "marquee " + n + " " + l + "; "; break;
            default: break;
            }
        }
        tap->seen.clear();
        return str;
    }

    std::unique_ptr<MessageTap> tap;
    Recorded<CSProgressCtrl> ctrl;
    CtrlDialog dialog;
};
