#include "wnd/core/cswnd.h"
#include "runtime/base/current_product.h"
#include "shell/subclass/shell_subclass.h"
#include "wnd/core/core_wnd.h"
#include "wnd/core/object_table.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cwchar>
#include <utility>

namespace {
constexpr const wchar_t* kCSWndProperty = L"CSWND";
constinit CreationSlot slotCSWnd;
constinit ObjectTable csWnds; // those that have or had a window

/// The objects that windows were last named after here, by window: reading a property is far dearer
/// than the rest of a message's way. Each place serves many windows, and what stands in it is only
/// where to look first. Written by the windows' own threads.
constexpr std::size_t kKnownPlaces = 512;
struct KnownName {
    std::atomic<HWND> hwnd{nullptr};
    std::atomic<CSWnd*> pWnd{nullptr};
};
constinit KnownName known[kKnownPlaces];

KnownName& KnownPlace(HWND hwnd) {
    return known[reinterpret_cast<std::uintptr_t>(hwnd) / 2 % kKnownPlaces]; // handles are even
}

/// Null: no longer. A thread that finds another one at the place leaves it to that.
void SetKnown(HWND hwnd, CSWnd* pWnd) {
    KnownName& place = KnownPlace(hwnd);
    const HWND hwndBusy = reinterpret_cast<HWND>(INT_PTR{-1});
    HWND hwndBefore = place.hwnd;
    if (hwndBefore == hwndBusy || (!pWnd && hwndBefore != hwnd)) return;
    if (!place.hwnd.compare_exchange_strong(hwndBefore, hwndBusy)) return;
    place.pWnd = pWnd;
    place.hwnd = pWnd ? hwnd : nullptr;
}

void NameWindow(HWND hwnd, CSWnd* pWnd) {
    ::SetPropW(hwnd, kCSWndProperty, pWnd);
    SetKnown(hwnd, pWnd);
}

void UnnameWindow(HWND hwnd) {
    ::RemovePropW(hwnd, kCSWndProperty);
    SetKnown(hwnd, nullptr);
}

/// The object that the window names, if that object names the window: neither a stale property nor
/// one that another program set is trusted. Only for a window of this process.
CSWnd* FindObject(HWND hwnd) {
    CSWnd* pWnd = static_cast<CSWnd*>(::GetPropW(hwnd, kCSWndProperty));
    return csWnds.Has(pWnd) && static_cast<HWND>(*pWnd) == hwnd ? pWnd : nullptr;
}
} // namespace

/// On the stack of a frame: holds the life of another object than the one that handles the message,
/// and is told when that goes all the same. An object is taken once by a frame, so that its holds
/// end in the opposite order.
class CSWnd::LifeHold {
  public:
    LifeHold() = default;
    LifeHold(const LifeHold&) = delete; // the object names it
    LifeHold& operator=(const LifeHold&) = delete;

    void Take(CSWnd* pHeld) {
        pWnd = pHeld;
        pOuter = std::exchange(pHeld->innermostHold, this);
        pHeld->HoldLife();
    }
    void Release() {
        CSWnd* pHeld = std::exchange(pWnd, nullptr);
        if (!pHeld) return;
        pHeld->innermostHold = pOuter;
        pHeld->ReleaseLife(true);
    }

  private:
    friend class CSWnd;

    CSWnd* pWnd = nullptr;
    LifeHold* pOuter = nullptr;
};

void CSWnd::SetLifeHolder(CSWnd* pHolder) noexcept {
    if (lifeHolder) {
        CSWnd** pp = &lifeHolder->firstHeld;
        while (*pp != this) pp = &(*pp)->nextHeld;
        *pp = nextHeld;
    }
    lifeHolder = pHolder;
    nextHeld = pHolder ? std::exchange(pHolder->firstHeld, this) : nullptr;
}

CSWnd::~CSWnd() {
    SetLifeHolder(nullptr);
    while (firstHeld) firstHeld->SetLifeHolder(nullptr);
    for (LifeHold* p = innermostHold; p; p = p->pOuter) p->pWnd = nullptr;
    if (hWnd && ::GetPropW(hWnd, kCSWndProperty) == this) UnnameWindow(hWnd);
    csWnds.Remove(this);
}

int CSWnd::IsKindOf(LPCWSTR pszClass) { return pszClass && std::wcscmp(pszClass, L"CSWnd") == 0; }

void CSWnd::PreInit() {}

int CSWnd::PreTranslateMessage(MSG*) { return 0; }

void CSWnd::OnPostNcDestroy() { RemoveAllWndHooks(); }

void CSWnd::OnActivate(int) {}

void CSWnd::OnEnable(int) {}

void CSWnd::OnSystemSettingChange(WPARAM wParam, LPARAM lParam) {
    // Grandchildren are the children's own business: one without an object cuts off its subtree.
    for (HWND hwnd = ::GetWindow(hWnd, GW_CHILD); hwnd; hwnd = ::GetWindow(hwnd, GW_HWNDNEXT)) {
        if (CSWnd* pWnd = FromHandle(hwnd)) pWnd->OnSystemSettingChange(wParam, lParam);
    }
}

CSWnd* CSWnd::FromHandle(HWND hwnd) {
    if (!hwnd) return nullptr;
    // Another process's property is a pointer of that process.
    DWORD dwProcess = 0;
    if (!::GetWindowThreadProcessId(hwnd, &dwProcess)) return nullptr;
    return dwProcess == ::GetCurrentProcessId() ? FindObject(hwnd) : nullptr;
}

CSWnd* CSWnd::RecallHandle(HWND hwnd) {
    const KnownName& place = KnownPlace(hwnd);
    if (hwnd && place.hwnd == hwnd) {
        CSWnd* pWnd = place.pWnd;
        // Only this window's thread writes its handle there: unlike another window's object, this
        // one can't go meanwhile.
        if (place.hwnd == hwnd && csWnds.Has(pWnd) && pWnd->hWnd == hwnd) return pWnd;
    }
    return FromHandle(hwnd);
}

// Classes and creation

ATOM CSWnd::RegisterClassExW(LPCWSTR pszName, UINT uStyle, HICON hicon, HICON hiconSmall,
                             HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                             int cbClassExtra, int cbWndExtra) {
    return RegisterWndClass(&CSWnd::WndProc, pszName, uStyle, hicon, hiconSmall, hbrBackground,
                            hcur, pszMenuName, cbClassExtra, cbWndExtra);
}

ATOM CSWnd::RegisterClassExWithWndExtra(LPCWSTR pszName, int cbWndExtra) {
    return RegisterClassExW(pszName, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 0, cbWndExtra);
}

int CSWnd::UnregisterClassW(LPCWSTR pszName) {
    return ::UnregisterClassW(pszName, GetLibraryInstance()) != FALSE;
}

int CSWnd::Create(LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y, int cx, int cy,
                  HWND hwndParent, HMENU hmenu, void* pParam) {
    return CreateEx(0, pszClass, pszTitle, dwStyle, x, y, cx, cy, hwndParent, hmenu, pParam);
}

int CSWnd::CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x,
                    int y, int cx, int cy, HWND hwndParent, unsigned __int64 qwId, void* pParam) {
    return CreateEx(dwExStyle, pszClass, pszTitle, dwStyle, x, y, cx, cy, hwndParent,
                    reinterpret_cast<HMENU>(qwId), pParam);
}

int CSWnd::CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x,
                    int y, int cx, int cy, HWND hwndParent, HMENU hmenu, void* pParam) {
    if (ncDestroyed) EndLife(false); // of the window before, while the object names that one
    if (!csWnds.Add(this) || !slotCSWnd.Set(this)) return 0;
    oldWndProc = ::DefWindowProcW;
    ++procDepth; // a creation that fails half-way must not delete the object in here
    HWND hwndNew = ::CreateWindowExW(dwExStyle, pszClass, pszTitle, dwStyle, x, y, cx, cy,
                                     hwndParent, hmenu, GetLibraryInstance(), pParam);
    --procDepth;
    slotCSWnd.Clear();
    if (ncDestroyed) EndLife(false); // it has failed half-way; no outer frame may delete the object
    hWnd = hwndNew;
    return hwndNew != nullptr;
}

void CSWnd::Destroy() {
    if (this && hWnd && ::IsWindow(hWnd)) ::DestroyWindow(hWnd);
}

int CSWnd::Attach(HWND hwndTaken) {
    SettleEndBefore(hwndTaken);
    static_cast<void>(csWnds.Add(this)); // without memory it has its handle all the same
    hWnd = hwndTaken;
    return hwndTaken != nullptr;
}

HWND CSWnd::Detach() {
    HWND hwndHeld = hWnd;
    hWnd = nullptr;
    return hwndHeld;
}

// Users of the class ask a pointer that may be null whether there is a window.

int CSWnd::IsReady() { return this && hWnd && ::IsWindow(hWnd); }

CSWnd::operator HWND() const { return this ? hWnd : nullptr; }

int CSWnd::IsDlg() { return IsKindOf(L"CSDlg"); }

// Messages

LRESULT CALLBACK CSWnd::WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    CSWnd* pWnd = hwnd ? FindObject(hwnd) : nullptr;
    if (!pWnd) {
        pWnd = hwnd ? static_cast<CSWnd*>(slotCSWnd.Take()) : nullptr;
        // QUIRK: not even the default procedure runs: what still arrives for a window whose object
        // is gone is dropped. Test: CSWndProc.WindowWithoutObjectGivesZeroAndNoDefault
        if (!pWnd) return 0;
        NameWindow(hwnd, pWnd);
        pWnd->hWnd = hwnd;
        pWnd->PreInit();
    } else if (pWnd->hwndInChain == hwnd) {
        // This object has seen the message in the chain, at whose end it comes here once more.
        return ::CallWindowProcW(pWnd->GetEndProc(), hwnd, uMsg, wParam, lParam);
    }
    return pWnd->Dispatch(uMsg, wParam, lParam);
}

LRESULT CALLBACK CSWnd::ShellSubclassProc(HWND, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                          DWORD_PTR dwRefData) {
    return reinterpret_cast<CSWnd*>(dwRefData)->Dispatch(uMsg, wParam, lParam);
}

/// What both procedures have in common. Frames are counted besides the dispatches: a handler that
/// destroys its own window goes on running, and the object must last until it has returned.
LRESULT CSWnd::Dispatch(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    HWND hwndInChainBefore = std::exchange(hwndInChain, nullptr); // this message is a new one
    HWND hwndOfFrameBefore = std::exchange(hwndOfFrame, hWnd);
    ++procDepth;
    // An edit field may go with its combo box, that with its page, and the page with its dialog.
    std::array<LifeHold, 4> holds;
    std::size_t nHeld = 0;
    for (CSWnd* p = lifeHolder; p && nHeld < holds.size(); p = p->lifeHolder)
        holds[nHeld++].Take(p);
    LRESULT lResult = hWnd ? OnWndMessage(uMsg, wParam, lParam) : 0;
    hwndOfFrame = hwndOfFrameBefore;
    hwndInChain = hwndInChainBefore;
    ReleaseLife(true); // the object may be gone, with the last holder at the latest
    for (std::size_t n = 0; n < nHeld; ++n) holds[n].Release();
    return lResult;
}

void CSWnd::ReleaseLife(bool bMayDelete) {
    --procDepth;
    if (!ncDestroyed) return;
    if (!bMayDelete) {
        EndLife(false);
    } else if (msgDepth == 0 && procDepth == 0) {
        EndLife(true);
    }
}

void CSWnd::EndLife(bool bMayDelete) {
    ncDestroyed = 0;
    if (replaced) { // the window lives on with the next object and is not touched
        replaced = 0;
        oldWndProc = nullptr;
    } else {
        HWND hwndEnded = hWnd;
        OnPostNcDestroy();
        if (hooksRemovalPending & kRemoveAllHooks) {
            // A dispatch is under way and the object is about to be tied anew: the hooks that come
            // on until that dispatch returns are the next window's and stay.
            for (POS pos = hooks.GetHeadPos(); pos;) hooks.GetNext(pos) = nullptr;
            hooksRemovalPending = kRemoveEmptyEntries;
        }
        if (hWnd && hWnd != hwndEnded) return; // OnPostNcDestroy has tied the object anew
        CommonUnsubclass();
    }
    bool bDelete = autoDelete && bMayDelete;
    hWnd = nullptr;
    SetLifeHolder(nullptr);
    if (bDelete) delete this;
}

/// A handler may tie the object anew while the end of its window still waits for that handler's
/// frame: it must not come over the next window.
void CSWnd::SettleEndBefore(HWND hwndNext) {
    if (ncDestroyed && (replaced || hwndNext != hWnd) && ::IsWindow(hwndNext)) EndLife(false);
}

bool CSWnd::IsTiedAnew() const { return hwndOfFrame && hWnd && hwndOfFrame != hWnd; }

LRESULT CSWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT lResult = DoWndMessage(uMsg, wParam, lParam, nullptr);
    switch (uMsg) {
    case WM_ACTIVATE: OnActivate(LOWORD(wParam) != WA_INACTIVE); break;
    case WM_ENABLE: OnEnable(static_cast<int>(wParam)); break;
    case WM_SETTINGCHANGE: OnSystemSettingChange(wParam, lParam); break;
    case WM_NCDESTROY:
        if (!IsTiedAnew()) ncDestroyed = 1;
        break;
    }
    return lResult;
}

LRESULT CSWnd::DoWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, WMHook* pAfter) {
    ++msgDepth;
    LRESULT lResult = 0;
    if (!AskHooks(uMsg, wParam, lParam, pAfter, &lResult)) {
        lResult = CallDefault(uMsg, wParam, lParam);
    }
    if (--msgDepth == 0 && hooksRemovalPending) SettleHooks();
    return lResult;
}

LRESULT CSWnd::CallDefault(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    // The message of a window that has gone meanwhile is none of the next window's.
    if (IsTiedAnew() && (uMsg == WM_NCDESTROY || !::IsWindow(hwndOfFrame))) return 0;
    if (shellSubclassed) {
        HWND hwndInChainBefore = std::exchange(hwndInChain, hWnd);
        LRESULT lResult = ShellSubclass::Default(hWnd, uMsg, wParam, lParam);
        hwndInChain = hwndInChainBefore;
        return lResult;
    }
    // An object that is only attached has no earlier procedure.
    WNDPROC pfn = oldWndProc ? oldWndProc : ::DefWindowProcW;
    return ::CallWindowProcW(pfn, hWnd, uMsg, wParam, lParam);
}

// Hooks

bool CSWnd::AskHooks(UINT uMsg, WPARAM wParam, LPARAM lParam, WMHook* pAfter, LRESULT* plResult) {
    for (POS pos = hooks.GetHeadPos(); pos;) {
        POS posNow = pos;
        hooks.GetNext(pos); // before the hook is asked, which may take itself off
        WMHook* pHook = static_cast<WMHook*>(hooks.GetAt(posNow));
        if (!pHook) continue;
        if (pAfter) {
            if (pHook == pAfter) pAfter = nullptr;
            continue;
        }
        if (pHook->OnWndMessage(this, uMsg, wParam, lParam, plResult)) return true;
    }
    return false;
}

void CSWnd::AddWndHook(WMHook* pHook) { hooks.AddHead(pHook); }

void CSWnd::RemoveWndHook(WMHook* pHook) {
    POS pos = pHook ? hooks.Find(pHook) : nullptr;
    if (!pos) return;
    if (msgDepth == 0) {
        hooks.RemoveAt(pos);
        return;
    }
    // A dispatch may stand on this very node: it is emptied now and unlinked when none runs.
    hooks.SetAt(pos, nullptr);
    hooksRemovalPending |= kRemoveEmptyEntries;
}

void CSWnd::RemoveAllWndHooks() {
    if (msgDepth != 0) {
        hooksRemovalPending |= kRemoveAllHooks;
        return;
    }
    while (!hooks.IsEmpty()) hooks.RemoveHead();
}

void CSWnd::SettleHooks() {
    int nPending = hooksRemovalPending;
    hooksRemovalPending = 0;
    if (nPending & kRemoveAllHooks) {
        RemoveAllWndHooks();
        return;
    }
    for (POS pos = hooks.GetHeadPos(); pos;) {
        if (hooks.GetAt(pos)) {
            hooks.GetNext(pos);
        } else {
            hooks.RemoveAt(pos);
        }
    }
}

// Subclassing

int CSWnd::CommonSubclass(HWND hwndTarget) {
    SettleEndBefore(hwndTarget);
    if (!csWnds.Add(this)) return 0;
    // The window may be another object's, or this one's already, with WndProc as its procedure.
    // Its messages would come back to this object for ever, so they go where they went so far.
    CSWnd* pOther = FromHandle(hwndTarget);
    WNDPROC pfnEnd = pOther ? pOther->GetEndProc() : ::DefWindowProcW;
    if (ShellSubclass::IsReady()) {
        shellSubclassed = 1;
        chainEndProc = pfnEnd;
        hWnd = hwndTarget;
        // QUIRK: the result is not looked at.
        // Test: CSWndSubclassChain.ResultOfThePlatformIsNotLookedAt
        ShellSubclass::Set(hwndTarget, &CSWnd::ShellSubclassProc,
                           reinterpret_cast<DWORD_PTR>(this));
    } else if (!oldWndProc) {
        hWnd = hwndTarget;
        oldWndProc = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hwndTarget, GWLP_WNDPROC));
        if (!oldWndProc) return 0;
        if (oldWndProc == &CSWnd::WndProc) oldWndProc = pfnEnd;
    }
    NameWindow(hWnd, this);
    return 1;
}

WNDPROC CSWnd::GetEndProc() const {
    WNDPROC pfn = chainEndProc ? chainEndProc : oldWndProc;
    return pfn ? pfn : ::DefWindowProcW;
}

int CSWnd::CommonUnsubclass() {
    if (!hWnd) return 0;
    if (ShellSubclass::IsReady() && shellSubclassed) {
        ShellSubclass::Remove(hWnd, &CSWnd::ShellSubclassProc);
        chainEndProc = nullptr;
    } else if (oldWndProc) {
        // QUIRK: whoever replaced the procedure later is cut out with it.
        // Test: CSWndSubclassProcedure.UnsubclassCutsOutWhoeverCameLater
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(oldWndProc));
        oldWndProc = nullptr;
    }
    UnnameWindow(hWnd);
    return 1;
}

void CSWnd::ReplaceObjectOf(HWND hwndTarget) {
    CSWnd* pFormer = FromHandle(hwndTarget);
    if (!pFormer) return;
    WNDPROC pfnEarlier = pFormer->oldWndProc;
    pFormer->CommonUnsubclass();
    if (!pFormer->autoDelete || pFormer == this) return;
    if (pFormer->msgDepth == 0 && pFormer->procDepth == 0) {
        delete pFormer;
        return;
    }
    // The messages that it is handling still go where they would have gone.
    pFormer->oldWndProc = pfnEarlier;
    pFormer->replaced = 1;
    pFormer->ncDestroyed = 1; // its life ends with its outermost frame
}

int CSWnd::Subclass(HWND hwndTarget) {
    if (!CommonSubclass(hwndTarget ? hwndTarget : hWnd)) return 0;
    if (!shellSubclassed) {
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CSWnd::WndProc));
    }
    return 1;
}

int CSWnd::Unsubclass() { return CommonUnsubclass() != 0; }

// The hook itself

WMHook::~WMHook() = default;

int WMHook::OnWndMessage(CSWnd*, UINT, WPARAM, LPARAM, LRESULT*) { return 0; }

int WMHook::OnDlgMessage(CSDlg*, UINT, WPARAM, LPARAM, LRESULT*) { return 0; }

void WMHook::AddToWnd(CSWnd* pWnd) { pWnd->AddWndHook(this); }

void WMHook::RemoveFromWnd(CSWnd* pWnd) { pWnd->RemoveWndHook(this); }
