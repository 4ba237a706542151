// How a dialog comes up, runs, closes and goes.

#include "runtime/base/current_product.h"
#include "runtime/messages/res_str.h"
#include "wnd/core/core_wnd.h"
#include "wnd/core/object_table.h"
#include "wnd/core/wnd_free.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/life_mark.h"

namespace {
constexpr const wchar_t* kCSDlgProperty = L"CSDLG";
/// Posted to the thread when a dialog with a loop of its own has gone; wParam is its window. With
/// none it ends the innermost loop.
constexpr UINT kMsgLoopEnd = 1034;

constinit CreationSlot slotCSDlg; // the LifeMark of the run
constinit ObjectTable csDlgs;     // those that ran

bool IsLoopEnd(const MSG& msg) {
    return !msg.hwnd && msg.message == kMsgLoopEnd; // a window has messages of that number too
}

/// Takes what a dialog posted for a loop that has noticed its end by itself. The other loops of the
/// thread notice theirs likewise, so that one of those messages may go with it.
void DropLoopEnd(HWND hwndEnded) {
    const HWND hwndThreadOnly = reinterpret_cast<HWND>(INT_PTR{-1});
    MSG msg;
    while (::PeekMessageW(&msg, hwndThreadOnly, kMsgLoopEnd, kMsgLoopEnd, PM_REMOVE)) {
        if (msg.message == WM_QUIT) { // comes through every filter
            ::PostQuitMessage(static_cast<int>(msg.wParam));
            return;
        }
        if (reinterpret_cast<HWND>(msg.wParam) == hwndEnded) return;
    }
}
} // namespace

/// While it lasts, the thread's next unknown dialog is the one of this run. A creation within, for
/// a message that the platform sends before the window's first one, comes in between.
class CSDlg::Creation {
  public:
    Creation(LifeMark& markOfRun, unsigned nTemplateId)
        : mark(markOfRun), pBefore(slotCSDlg.Take()),
          bReady(csDlgs.Add(markOfRun.GetDlg()) && slotCSDlg.Set(&markOfRun)) {
        mark.nTemplateId = nTemplateId;
        // A creation that fails half-way sends the last message too; the object stays its owner's.
        mark.bHoldsLife = true;
        mark.pDlg->HoldLife();
    }
    ~Creation() {
        slotCSDlg.Clear(); // also if not one message came
        if (pBefore) static_cast<void>(slotCSDlg.Set(pBefore));
        if (!mark.bHoldsLife || mark.IsGone()) return;
        mark.bHoldsLife = false;
        mark.pDlg->ReleaseLife(!mark.hwndRun);
    }
    Creation(const Creation&) = delete; // stands for one call
    Creation& operator=(const Creation&) = delete;

    bool IsReady() const { return bReady; }

  private:
    LifeMark& mark;
    void* pBefore;
    bool bReady;
};

CSDlg::~CSDlg() {
    for (LifeMark* pMark = pLifeMark; pMark; pMark = pMark->pOuter) {
        pMark->pDlg = nullptr;
        pMark->nLastResult = result;
    }
    if (FindObject(hWnd) == this) { // deleted before its window
        ::RemovePropW(hWnd, kCSDlgProperty);
        ::SetWindowLongPtrW(hWnd, DWLP_DLGPROC, 0);
        CommonUnsubclass();
    }
    EnableFullDrag(0);
    RemoveAllDlgHooks();
    RemoveAllWndHooks();
    for (POS pos = ctrlGroups.GetHeadPos(); pos;) {
        delete static_cast<CSCtrlGroup*>(ctrlGroups.ExtractAt(pos));
    }
    if (bkgBrush) ::DeleteObject(bkgBrush);
    delayTimer.Stop();
    csDlgs.Remove(this);
}

/// The object that the window names, if that one names the window: any program can set a property.
CSDlg* CSDlg::FindObject(HWND hwnd) {
    if (!hwnd) return nullptr;
    // A message that is on its way through the object's own procedure comes from it; asking the
    // window for its name would cost as much as all the rest.
    CSWnd* pWnd = RecallHandle(hwnd);
    if (csDlgs.Has(pWnd) && pWnd->IsInChain()) return static_cast<CSDlg*>(pWnd);
    CSDlg* pDlg = static_cast<CSDlg*>(::GetPropW(hwnd, kCSDlgProperty));
    return csDlgs.Has(pDlg) && pDlg->hWnd == hwnd ? pDlg : nullptr;
}

INT_PTR CALLBACK CSDlg::ModalProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    CSDlg* pDlg = FindObject(hwnd);
    LifeMark* pRun = nullptr;
    if (!pDlg) {
        if (::GetPropW(hwnd, kCSDlgProperty)) return 0; // not new: what it named has gone
        pRun = static_cast<LifeMark*>(slotCSDlg.Take());
        pDlg = pRun ? pRun->pDlg : nullptr;
        if (!pDlg) return 0;
    }
    // The first message has no frame of the window procedure below it.
    LifeMark mark(*pDlg);
    pDlg->HoldLife();
    if (pRun) {
        pRun->hwndRun = hwnd;
        pRun->bEnded = false;
        pDlg->SubclassDlg(hwnd, pRun->nTemplateId);
    }
    if (uMsg == WM_INITDIALOG && !mark.IsGone()) {
        for (LifeMark* p = mark.pOuter; p; p = p->pOuter) {
            if (p->hwndRun != hwnd) continue;
            p->bInitialized = true;
            if (!p->bHoldsLife) continue;
            p->bHoldsLife = false;
            pDlg->ReleaseLife(true); // not the last one
        }
    }
    if (mark.IsGone()) return 0;
    mark.bHandled = false;
    INT_PTR nResult = pDlg->OnDlgMessage(uMsg, wParam, lParam);
    // The result of a swallowed system command is 0, which would let the platform go on.
    if (uMsg == WM_SYSCOMMAND && mark.bHandled) nResult = TRUE;
    if (!mark.IsGone()) pDlg->ReleaseLife(true);
    return nResult;
}

void CSDlg::SubclassDlg(HWND hwnd, unsigned int nTemplateId) {
    ::SetPropW(hwnd, kCSDlgProperty, this);
    // Without memory the dialog lives without the first of its two layers.
    if (CommonSubclass(hwnd) && !shellSubclassed) {
        ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CSWnd::WndProc));
    }
    hWnd = hwnd;
    dlgId = nTemplateId;
    // The end of an earlier run has taken all hooks off.
    WMHook* pHandler = &msgHandler;
    if (!hooks.Find(pHandler)) hooks.AddTail(pHandler);
    WMHook* pDragger = dragger;
    if (pDragger && !hooks.Find(pDragger)) AddWndHook(pDragger);
    PreInit();
}

// Running

/// What all ways to run a template have in common. The id becomes its absolute value.
ResourceRef CSDlg::Prepare(int& nTemplateId, HINSTANCE hinst, HWND hwndParentNew) {
    ResourceRef ref = ResolveResourceId(nTemplateId, hinst, DefaultModule::kLibrary);
    if (nTemplateId < 0) nTemplateId = static_cast<int>(0u - static_cast<unsigned>(nTemplateId));
    hParent = hwndParentNew;
    hResources = ref.hinst;
    return ref;
}

/// A second window would leave the first one to an object that has forgotten it.
bool CSDlg::IsRunning() { return FindObject(hWnd) == this && ::IsWindow(hWnd); }

__int64 CSDlg::Modal(int nTemplateId, HINSTANCE hinst, HWND hwndParent) {
    if (IsRunning()) return -1;
    // isModeless stays as an earlier run has left it.
    LifeMark mark(*this);
    ResourceRef ref = Prepare(nTemplateId, hinst, hwndParent);
    INT_PTR nResult = -1;
    {
        Creation creation(mark, static_cast<unsigned>(nTemplateId));
        if (creation.IsReady()) {
            nResult = ::DialogBoxParamW(ref.hinst, ref.pszName, hwndParent, &ModalProc, 0);
        }
    }
    if (!mark.IsGone()) modalResult = nResult;
    return nResult;
}

HWND CSDlg::Modeless(int nTemplateId, HINSTANCE hinst, HWND hwndParent, int nShow) {
    LifeMark mark(*this);
    return StartModeless(mark, nTemplateId, hinst, hwndParent, nShow);
}

HWND CSDlg::StartModeless(LifeMark& mark, int nTemplateId, HINSTANCE hinst, HWND hwndParentNew,
                          int nShow) {
    if (IsRunning()) return nullptr;
    isModeless = 1;
    ResourceRef ref = Prepare(nTemplateId, hinst, hwndParentNew);
    HWND hwndNew = nullptr;
    {
        Creation creation(mark, static_cast<unsigned>(nTemplateId));
        if (creation.IsReady()) {
            hwndNew = ::CreateDialogParamW(ref.hinst, ref.pszName, hwndParentNew, &ModalProc, 0);
        }
    }
    // Of a dialog that closed itself while it came up some versions of the platform give nothing.
    if (!hwndNew && mark.bInitialized) hwndNew = mark.hwndRun;
    if (!hwndNew || mark.IsGone() || !nShow) return hwndNew;
    ::ShowWindow(hwndNew, IsFlag(kDlgStartHidden) ? SW_HIDE : SW_SHOW);
    ::UpdateWindow(hwndNew);
    return hwndNew;
}

int CSDlg::CreateIndirect(const DLGTEMPLATE* pTemplate, HWND hwndParent) {
    if (IsRunning()) return 0;
    LifeMark mark(*this);
    hParent = hwndParent;
    hResources = GetLibraryInstance();
    Creation creation(mark, 0);
    if (!creation.IsReady()) return 0;
    HWND hwndNew = ::CreateDialogIndirectParamW(hResources, pTemplate, hwndParent, &ModalProc, 0);
    return hwndNew || mark.bInitialized;
}

int CSDlg::ModelessWithLoop(int bDisableOwner, int nTemplateId, HINSTANCE hinst, HWND hwndParent,
                            HWND* phwndCreated) {
    if (IsRunning()) return -1;
    hasOwnLoop = 1;
    LifeMark mark(*this);
    HWND hwndNew = StartModeless(mark, nTemplateId, hinst, hwndParent, TRUE);
    if (!hwndNew) {
        if (mark.hwndRun) DropLoopEnd(mark.hwndRun); // of a creation that failed half-way
        return -1;
    }
    if (phwndCreated) *phwndCreated = hwndNew;
    HWND hwndOwner = ::GetPopupParent(hwndParent);
    bool bDisabled = bDisableOwner && hwndOwner && !::EnableWindow(hwndOwner, FALSE);
    RunLoop(mark); // the object may be gone after it
    if (bDisabled) ::EnableWindow(hwndOwner, TRUE);
    if (hwndOwner) ::SetForegroundWindow(hwndOwner);
    return mark.GetResult();
}

/// Until the dialog's window is gone, or its thread has to end. Loops can be nested, of dialogs
/// that end in any order, and the thread's end messages can be lost in a loop of the platform's
/// (that of a message box): each loop looks itself whether it is over, and the message is only
/// there to wake it.
void CSDlg::RunLoop(LifeMark& mark) {
    while (!mark.HasEnded()) {
        MSG msg;
        BOOL nGot = ::GetMessageW(&msg, nullptr, 0, 0);
        if (nGot == -1) return;
        if (nGot == 0) {
            ::PostQuitMessage(static_cast<int>(msg.wParam)); // for the loop outside
            return;
        }
        if (IsLoopEnd(msg)) {
            HWND hwndEnded = reinterpret_cast<HWND>(msg.wParam);
            if (!hwndEnded || hwndEnded == mark.hwndRun) return;
            continue;
        }
        // The end may have come while the message was waited for.
        if (!mark.IsGone() && mark.pDlg->PreTranslateMessage(&msg)) continue;
        if (::IsDialogMessageW(mark.hwndRun, &msg)) continue;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
    DropLoopEnd(mark.hwndRun);
}

// The end

int CSDlg::CloseDialog(int nResult, int nOkControls) {
    LifeMark mark(*this);
    HWND hwndClosing = hWnd; // handlers may end this window and tie the object to another one
    isClosing = 1;
    bool bCanClose = CanClose(nResult) != 0;
    if (bCanClose && !mark.IsGone()) {
        result = nResult;
        if (nOkControls == -1) nOkControls = nResult != IDCANCEL;
        if (nOkControls) OKControls();
        if (!mark.IsGone()) DoClose(nResult);
    }
    if (bCanClose && !mark.IsGone()) {
        WINDOWPLACEMENT wp{};
        wp.length = sizeof(wp);
        if (placement && ::GetWindowPlacement(hwndClosing, &wp)) {
            static_cast<WINDOWPLACEMENT&>(*placement) = wp;
        }
        if (!isModeless) {
            ::EndDialog(hwndClosing, nResult);
        } else if (hwndClosing && ::IsWindow(hwndClosing)) {
            ::DestroyWindow(hwndClosing);
        }
    }
    if (!mark.IsGone()) isClosing = 0;
    return 1;
}

int CSDlg::EndDialog(int nResult) { return ::EndDialog(hWnd, nResult); }

void CSDlg::OnPostNcDestroy() {
    CSWnd::OnPostNcDestroy();
    ::RemovePropW(hWnd, kCSDlgProperty);
    ::SetWindowLongPtrW(hWnd, DWLP_DLGPROC, 0); // another program may have sent the message
    delayTimer.Stop();                          // the platform's went with the window
    for (LifeMark* pMark = pLifeMark; pMark; pMark = pMark->pOuter) {
        if (pMark->hwndRun == hWnd) pMark->bEnded = true;
    }
    if (hasOwnLoop) {
        ::PostThreadMessageW(::GetCurrentThreadId(), kMsgLoopEnd, reinterpret_cast<WPARAM>(hWnd),
                             0);
    }
}
