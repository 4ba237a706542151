// What a dialog of fifty controls costs beside the platform's own: opening and closing it, one
// message through its layers, one step of dragging it larger. `bench_dialog`.

#include "../measure.h"
#include "app/start/library_start.h"
#include "dialog_bench_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/dialog/csdlg.h"

#include <commctrl.h>
#include <cstdlib>

namespace {
constexpr int kControls = CONTROL_COUNT;
constexpr UINT_PTR kSubclassId = 1;

HINSTANCE Program() { return ::GetModuleHandleW(nullptr); }

void Check(bool bTrue, const char* pszWhat) {
    if (bTrue) return;
    std::printf("%s\n", pszWhat);
    std::exit(1);
}

// Opening and closing: the command that ends the dialog is posted as soon as it is there.

struct BriefDlg : CSDlg {
    __int64 OnInitDialog(unsigned __int64 qwParam, __int64 qlParam) override {
        ::PostMessageW(hWnd, WM_COMMAND, IDCANCEL, 0);
        return CSDlg::OnInitDialog(qwParam, qlParam);
    }
};

INT_PTR CALLBACK BriefProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM) {
    if (uMsg == WM_INITDIALOG) {
        ::PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0);
        return TRUE;
    }
    if (uMsg == WM_COMMAND && LOWORD(wParam) == IDCANCEL) ::EndDialog(hwnd, IDCANCEL);
    return FALSE;
}

bool MeasureModal() {
    constexpr int kTurns = 41;
    auto RunOurs = [] {
        BriefDlg dlg;
        Check(dlg.Modal(IDD_BENCH, Program(), nullptr) == IDCANCEL, "the dialog did not run");
    };
    auto RunBare = [] {
        Check(::DialogBoxParamW(Program(), MAKEINTRESOURCEW(IDD_BENCH), nullptr, &BriefProc, 0) ==
                  IDCANCEL,
              "the bare dialog did not run");
    };
    return Report("Modal of 50 controls / bare DialogBoxParamW", Compare(kTurns, RunOurs, RunBare),
                  1.35, true);
}

// One message. The bare ones have a subclass that only calls on, by the platform's functions.

LRESULT CALLBACK CallOn(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    return ::DefSubclassProc(hwnd, uMsg, wParam, lParam);
}

/// Takes no part but is asked, as an application's own hook would be.
struct IdleHook : WMHook {};

struct HookedDlg : CSDlg {
    IdleHook hookWnd, hookDlg;
    HWND Open() {
        Check(Modeless(IDD_BENCH, Program(), nullptr, 0) != nullptr, "the dialog did not open");
        AddWndHook(&hookWnd);
        AddDlgHook(&hookDlg);
        return hWnd;
    }
};

INT_PTR CALLBACK IdleProc(HWND, UINT uMsg, WPARAM, LPARAM) { return uMsg == WM_INITDIALOG; }

HWND OpenBare(DLGPROC pfnProc) {
    HWND hwnd = ::CreateDialogParamW(Program(), MAKEINTRESOURCEW(IDD_BENCH), nullptr, pfnProc, 0);
    Check(hwnd != nullptr, "the bare dialog did not open");
    return hwnd;
}

HWND ItemOf(HWND hwndDlg, int nIndex) { return ::GetDlgItem(hwndDlg, ID_FIRST + nIndex); }

/// The dialog and its controls.
void SubclassAll(HWND hwndDlg) {
    ::SetWindowSubclass(hwndDlg, &CallOn, kSubclassId, 0);
    for (int i = 0; i < kControls; ++i) {
        ::SetWindowSubclass(ItemOf(hwndDlg, i), &CallOn, kSubclassId, 0);
    }
}

constexpr int kEdit = 1; // the index of a control
constexpr int kMessages = 1'000;

/// A notification that an edit's text has changed, which the dialog asks the control's object for.
void SendNotifications(HWND hwndDlg) {
    HWND hwndEdit = ItemOf(hwndDlg, kEdit);
    for (int i = 0; i < kMessages; ++i) {
        ::SendMessageW(hwndDlg, WM_COMMAND, MAKEWPARAM(ID_FIRST + kEdit, EN_CHANGE),
                       reinterpret_cast<LPARAM>(hwndEdit));
    }
}

void SendToControl(HWND hwndDlg) {
    HWND hwndEdit = ItemOf(hwndDlg, kEdit);
    for (int i = 0; i < kMessages; ++i) ::SendMessageW(hwndEdit, EM_GETSEL, 0, 0);
}

bool MeasureMessages() {
    constexpr int kTurns = 41;
    HookedDlg dlg;
    HWND hwndOurs = dlg.Open(), hwndBare = OpenBare(&IdleProc);
    SubclassAll(hwndBare);
    Check(CSCtrl::FromHandle(ItemOf(hwndOurs, kEdit)) != nullptr, "the control has no object");
    bool bOk = Report(
        "message through dialog, hooks and control / bare subclass",
        Compare(
            kTurns, [&] { SendNotifications(hwndOurs); }, [&] { SendNotifications(hwndBare); }),
        1.2, true);
    bOk &= Report("message of a control through its object / bare subclass",
                  Compare(
                      kTurns, [&] { SendToControl(hwndOurs); }, [&] { SendToControl(hwndBare); }),
                  1.2, true);
    ::DestroyWindow(hwndOurs);
    ::DestroyWindow(hwndBare);
    return bOk;
}

// A step of dragging: the dialog gets another size, and its controls move and grow with it. A
// control with an object has the platform's subclass, which costs more than moving (two look-ups of
// a property per message, and a moved window gets five): the bare dialog's windows have one as
// well.

struct Change {
    int dx, dy, dw, dh;
};

Change ChangeOf(int nIndex, int dw, int dh) {
    switch (nIndex % 4) {
    case 0: return {dw, dh, 0, 0};
    case 1: return {0, 0, dw, dh};
    case 2: return {0, dh, 0, 0};
    default: return {dw, 0, 0, dh};
    }
}

struct SizableDlg : CSDlg {
    SizableDlg() { EnableResizing(kDlgResizeBoth, nullptr); }
    void OnResize(int dw, int dh) override {
        for (int i = 0; i < kControls; ++i) {
            Change change = ChangeOf(i, dw, dh);
            MoveResizeCtrl(static_cast<unsigned>(ID_FIRST + i), change.dx, change.dy, change.dw,
                           change.dh, 0);
        }
    }
};

/// A dialog that does nothing but the moves: from where a control is, which it asks the platform.
struct BareSizable {
    HWND hwnd = nullptr;
    SIZE size{};

    void OnSize(int cx, int cy) {
        int dw = cx - size.cx, dh = cy - size.cy;
        if (!dw && !dh) return;
        size = {cx, cy};
        for (int i = 0; i < kControls; ++i) {
            Change change = ChangeOf(i, dw, dh);
            HWND hwndCtl = ItemOf(hwnd, i);
            RECT rc{};
            ::GetWindowRect(hwndCtl, &rc);
            ::MapWindowPoints(HWND_DESKTOP, hwnd, reinterpret_cast<POINT*>(&rc), 2);
            ::SetWindowPos(hwndCtl, nullptr, rc.left + change.dx, rc.top + change.dy,
                           rc.right - rc.left + change.dw, rc.bottom - rc.top + change.dh,
                           SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
};
BareSizable bare;

INT_PTR CALLBACK SizableProc(HWND, UINT uMsg, WPARAM, LPARAM lParam) {
    if (uMsg == WM_INITDIALOG) return TRUE;
    if (uMsg == WM_WINDOWPOSCHANGED && bare.hwnd) {
        auto* pPos = reinterpret_cast<WINDOWPOS*>(lParam);
        bare.OnSize(pPos->cx, pPos->cy);
    }
    return FALSE;
}

SIZE SizeOf(HWND hwnd) {
    RECT rc{};
    ::GetWindowRect(hwnd, &rc);
    return {rc.right - rc.left, rc.bottom - rc.top};
}

constexpr int kSteps = 10; // of a turn, to and fro

/// Changes the size step by step, as the platform does while the user drags the corner.
void Drag(HWND hwnd, SIZE sizeFrom) {
    for (int i = 1; i <= kSteps; ++i) {
        int nMore = (i % 2) * 8;
        ::SetWindowPos(hwnd, nullptr, 0, 0, sizeFrom.cx + nMore, sizeFrom.cy + nMore,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

RECT LastControl(HWND hwndDlg) {
    RECT rc{};
    ::GetWindowRect(ItemOf(hwndDlg, kControls - 1), &rc);
    ::MapWindowPoints(HWND_DESKTOP, hwndDlg, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

/// Both have done the same.
void CheckMoves(HWND hwndOurs, HWND hwndBare, SIZE size) {
    for (HWND hwnd : {hwndOurs, hwndBare}) {
        RECT rcBefore = LastControl(hwnd);
        ::SetWindowPos(hwnd, nullptr, 0, 0, size.cx + 8, size.cy + 8,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        RECT rc = LastControl(hwnd);
        Change change = ChangeOf(kControls - 1, 8, 8);
        Check(rc.left == rcBefore.left + change.dx && rc.top == rcBefore.top + change.dy,
              "the controls did not move");
        ::SetWindowPos(hwnd, nullptr, 0, 0, size.cx, size.cy,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

bool MeasureDrag() {
    constexpr int kTurns = 21;
    SizableDlg dlg;
    HWND hwndOurs = dlg.Modeless(IDD_BENCH, Program(), nullptr, 0);
    Check(hwndOurs != nullptr, "the dialog did not open");
    bare.hwnd = OpenBare(&SizableProc);
    bare.size = SizeOf(bare.hwnd);
    // Side by side, so that none covers the other.
    SIZE size = SizeOf(hwndOurs);
    ::SetWindowPos(hwndOurs, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ::SetWindowPos(bare.hwnd, nullptr, size.cx + 10, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    CheckMoves(hwndOurs, bare.hwnd, size);
    auto CompareDrags = [&] {
        return Compare(
            kTurns, [&] { Drag(hwndOurs, size); }, [&] { Drag(bare.hwnd, size); });
    };
    Comparison plain = CompareDrags();
    std::printf("%-58s %8.3f ms / %8.3f ms = %6.3f (not limited)\n",
                "10 drag-resize steps / bare moves without any subclass", plain.dFirst * 1e3,
                plain.dSecond * 1e3, plain.Ratio());
    SubclassAll(bare.hwnd);
    bool bOk =
        Report("10 drag-resize steps of 50 controls / bare moves", CompareDrags(), 1.2, true);
    ::DestroyWindow(hwndOurs);
    ::DestroyWindow(bare.hwnd);
    return bOk;
}
} // namespace

int main() {
    LibraryStart(Program());
    bool bOk = MeasureModal();
    bOk &= MeasureMessages();
    bOk &= MeasureDrag();
    LibraryStop();
    return bOk ? 0 : 1;
}
