#include "progress/cs_progress_ctrl.h"
#include "runtime/system/system_facts.h"
#include "runtime/threads/message_pump.h"
#include "wnd/dialog/csdlg.h"

#include <commctrl.h>
#include <objbase.h>
#include <shobjidl.h>
#include <algorithm>

namespace {
#ifndef PBM_SETSTATE // commctrl.h, from Windows Vista on; earlier bars ignore it
constexpr UINT PBM_SETSTATE = WM_USER + 16;
constexpr WPARAM PBST_NORMAL = 0x0001;
constexpr WPARAM PBST_PAUSED = 0x0003;
#endif
} // namespace

/// The mirror for the length of a block, in which another thread may drop it.
class CSProgressCtrl::MirrorUse {
  public:
    explicit MirrorUse(CSProgressCtrl& ctrl) {
        CritSecLock lock(ctrl.csTaskbar);
        if (!ctrl.pTaskbarList) return;
        ctrl.pTaskbarList->AddRef();
        list = OwnedInterface<ITaskbarList3>(ctrl.pTaskbarList);
        hwndButton = ctrl.hwndTaskbar;
    }
    MirrorUse(const MirrorUse&) = delete; // holds a reference
    MirrorUse& operator=(const MirrorUse&) = delete;

    void SetState(TBPFLAG state) {
        if (list) list.Get()->SetProgressState(hwndButton, state);
    }
    void SetValue(int nPos, int nHigh) {
        if (!list) return;
        list.Get()->SetProgressValue(hwndButton, static_cast<ULONGLONG>(std::max(nPos, 0)),
                                     static_cast<ULONGLONG>(std::max(nHigh, 0)));
    }

  private:
    OwnedInterface<ITaskbarList3> list;
    HWND hwndButton = nullptr;
};

// The arithmetic's bar

void ProgressExForCtrl::DoStepIt() {
    if (!pCtrl || !pCtrl->IsReady()) return;
    pCtrl->SendMsg(PBM_STEPIT, 0, 0);
    nPos = static_cast<int>(pCtrl->SendMsg(PBM_GETPOS, 0, 0));
    pCtrl->ShowMirror(nPos);
}

void ProgressExForCtrl::DoSetPos(int nBarPos) {
    if (!pCtrl || !pCtrl->IsReady()) return;
    pCtrl->SendMsg(PBM_SETPOS, static_cast<WPARAM>(nBarPos), 0);
    CSProgressCtrl::MirrorUse(*pCtrl).SetValue(nBarPos, nHigh);
}

void ProgressExForCtrl::DoSetRange(int nBarLow, int nBarHigh) {
    if (!pCtrl || !pCtrl->IsReady()) return;
    pCtrl->SendMsg(PBM_SETRANGE32, static_cast<WPARAM>(nBarLow), nBarHigh);
    pCtrl->SendMsg(PBM_SETSTEP, 1, 0);
    CSProgressCtrl::MirrorUse(*pCtrl).SetState(TBPF_NORMAL);
    RECT rc{};
    ::GetClientRect(*pCtrl, &rc);
    bFine = static_cast<__int64>(nBarHigh) - nBarLow > rc.right;
}

/// StepBar for later, where that is not seen. Not for the last step, behind which nothing may come.
bool ProgressExForCtrl::PutOffStep() {
    if (!bFine || nPos >= nHigh - 1) return false;
    ++nPos;
    ++nPutOff;
    bUnshown = true;
    TimeStep();
    return true;
}

int ProgressExForCtrl::ProcessAllMessages() {
    QuitKeeper keeper;
    return ::ProcessAllMessages();
}

void ProgressExForCtrl::SetText(int nLine, const wchar_t* pszFormat, char* pArgs) {
    if (pCtrl) pCtrl->SetText(nLine, pszFormat, ArgList{pArgs});
}

// The control

CSProgressCtrl::CSProgressCtrl() { progressEx.SetCtrl(this); }

CSProgressCtrl::~CSProgressCtrl() { DropMirror(); }

LRESULT CSProgressCtrl::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case PBM_SETPOS: progressEx.nPutOff = 0; break;
    case PBM_STEPIT:
    case PBM_DELTAPOS:
    case PBM_GETPOS:
    case PBM_SETRANGE:
    case PBM_SETRANGE32:
    case WM_PAINT:
    case WM_PRINTCLIENT: CatchUp(); break;
    case WM_ENABLE: EnableLines(); break;
    case WM_DROPFILES: return OnDropFilesMessage(wParam, lParam);
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

void CSProgressCtrl::Init(CSDlg* pDlg, unsigned int nId, int nLow, int nHigh, int nPos) {
    CSCtrl::Init(pDlg, nId, nullptr, 0);
    std::fill(std::begin(idText), std::end(idText), 0u);
    Setup(nLow, nHigh, nPos);
}

/// On the bar's thread: gives it the steps that were put off.
void CSProgressCtrl::CatchUp() {
    // Its own message and what that paints come by here again: with a quick worker, deeper and
    // deeper, until the platform would drop one.
    if (bCatchingUp) return;
    bCatchingUp = true;
    if (const int nSteps = progressEx.nPutOff.exchange(0)) {
        SendMsg(PBM_DELTAPOS, static_cast<WPARAM>(nSteps), 0);
    }
    bCatchingUp = false;
}

/// On the bar's thread: the same for all that shows the bar. Whether there was anything to show,
/// which may have reached the bar already.
bool CSProgressCtrl::ShowPutOff() {
    if (!progressEx.bUnshown.exchange(false)) return false;
    const int nPos = static_cast<int>(SendMsg(PBM_GETPOS, 0, 0));
    ShowMirror(nPos);
    // The worker may have set another one meanwhile, whose place on the taskbar this one has taken.
    if (static_cast<int>(SendMsg(PBM_GETPOS, 0, 0)) != nPos) progressEx.bUnshown = true;
    return true;
}

void CSProgressCtrl::ShowMirror(int nPos) { MirrorUse(*this).SetValue(nPos, progressEx.nHigh); }

// The lines

void CSProgressCtrl::EnableLines() {
    if (!dlg) return;
    const int bEnabled = ::IsWindowEnabled(hWnd);
    for (unsigned nId : idText) {
        if (nId) dlg->EnableDlgItem(static_cast<int>(nId), bEnabled);
    }
}

void CSProgressCtrl::SetupLines(unsigned nId0, unsigned nId1, unsigned nId2, unsigned nId3) {
    const unsigned nIds[] = {nId0, nId1, nId2, nId3};
    std::copy(std::begin(nIds), std::end(nIds), idText);
    for (int nLine = 0; nLine < static_cast<int>(std::size(idText)); ++nLine) {
        SetText(nLine, nullptr);
    }
}

void CSProgressCtrl::SetText(int nLine, const wchar_t* pszText) {
    if (!dlg || nLine < 0 || nLine >= static_cast<int>(std::size(idText))) return;
    if (!idText[nLine]) return; // a dialog may have items with the id 0
    ::SetDlgItemTextW(*dlg, static_cast<int>(idText[nLine]), pszText ? pszText : L"");
}

void CSProgressCtrl::SetText(int nLine, const wchar_t* pszFormat, ArgList args) {
    wchar_t szText[kMessageSize];
    FormatTextV(szText, std::size(szText), pszFormat, args.v);
    SetText(nLine, szText);
}

void CSProgressCtrl::SetTextFmt(int nLine, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    SetText(nLine, pszFormat, ArgList{args});
    va_end(args);
}

// The taskbar's button

void CSProgressCtrl::DropMirror() {
    OwnedInterface<ITaskbarList3> list;
    HWND hwndBefore = nullptr;
    {
        CritSecLock lock(csTaskbar);
        list = OwnedInterface<ITaskbarList3>(std::exchange(pTaskbarList, nullptr));
        hwndBefore = std::exchange(hwndTaskbar, nullptr);
    }
    if (list) list.Get()->SetProgressState(hwndBefore, TBPF_NOPROGRESS);
}

void CSProgressCtrl::EnableTaskbarProgress(HWND hwndButton) {
    DropMirror();
    if (!hwndButton || !::Win7()) return;
    OwnedInterface<ITaskbarList3> list;
    if (FAILED(::CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_ITaskbarList3, reinterpret_cast<void**>(list.Put())))) {
        return;
    }
    CritSecLock lock(csTaskbar);
    hwndTaskbar = hwndButton;
    pTaskbarList = list.Release();
}

// The looks

void CSProgressCtrl::Pause(int bPause) {
    progressEx.Pause(bPause);
    SendMsg(PBM_SETSTATE, bPause ? PBST_PAUSED : PBST_NORMAL, 0);
    MirrorUse(*this).SetState(bPause ? TBPF_PAUSED : TBPF_NORMAL);
}

void CSProgressCtrl::DoMarquee(int bOn, unsigned nIntervalMs) {
    // The style has to stand while the message is handled.
    if (bOn) ModifyStyle(0, PBS_MARQUEE, 0);
    SendMsg(PBM_SETMARQUEE, static_cast<WPARAM>(bOn), static_cast<LPARAM>(nIntervalMs));
    if (!bOn) ModifyStyle(PBS_MARQUEE, 0, 0);
}
