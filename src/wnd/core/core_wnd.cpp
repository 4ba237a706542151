#include "wnd/core/core_wnd.h"
#include "runtime/base/current_product.h"
#include "wnd/core/object_table.h"

namespace {
constexpr const wchar_t* kCoreWndProperty = L"COREWND";
constinit CreationSlot slotCoreWnd;
constinit ObjectTable coreWnds; // all there are: the property may name each
} // namespace

CoreWnd::CoreWnd() {
    static_cast<void>(coreWnds.Add(this)); // without memory its window finds no object
}

CoreWnd::~CoreWnd() {
    coreWnds.Remove(this);
    if (hWnd && ::GetPropW(hWnd, kCoreWndProperty) == this) ::RemovePropW(hWnd, kCoreWndProperty);
}

LRESULT CoreWnd::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::CallWindowProcW(oldWndProc, hWnd, uMsg, wParam, lParam);
}

ATOM CoreWnd::RegisterClassExW(LPCWSTR pszName, UINT uStyle, HICON hicon, HICON hiconSmall,
                               HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                               int cbClassExtra, int cbWndExtra) {
    return RegisterWndClass(&CoreWnd::WndProc, pszName, uStyle, hicon, hiconSmall, hbrBackground,
                            hcur, pszMenuName, cbClassExtra, cbWndExtra);
}

int CoreWnd::Create(LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y, int cx, int cy,
                    HWND hwndParent, HMENU hmenu, void* pParam) {
    return CreateEx(0, pszClass, pszTitle, dwStyle, x, y, cx, cy, hwndParent, hmenu, pParam);
}

int CoreWnd::CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x,
                      int y, int cx, int cy, HWND hwndParent, HMENU hmenu, void* pParam) {
    if (!slotCoreWnd.Set(this)) return 0;
    oldWndProc = ::DefWindowProcW;
    ++nCreating; // one that fails half-way sends the last message too; the object stays its owner's
    hWnd = ::CreateWindowExW(dwExStyle, pszClass, pszTitle, dwStyle, x, y, cx, cy, hwndParent,
                             hmenu, GetLibraryInstance(), pParam);
    --nCreating;
    slotCoreWnd.Clear();
    return hWnd != nullptr;
}

ATOM RegisterWndClass(WNDPROC pfnWndProc, LPCWSTR pszName, UINT uStyle, HICON hicon,
                      HICON hiconSmall, HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                      int cbClassExtra, int cbWndExtra) {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    wc.style = uStyle;
    wc.lpfnWndProc = pfnWndProc;
    wc.cbClsExtra = cbClassExtra;
    wc.cbWndExtra = cbWndExtra;
    wc.hInstance = GetLibraryInstance();
    wc.hIcon = hicon;
    wc.hIconSm = hiconSmall;
    wc.hCursor = hcur;
    wc.hbrBackground = hbrBackground;
    wc.lpszMenuName = pszMenuName;
    wc.lpszClassName = pszName;
    return ::RegisterClassExW(&wc);
}

LRESULT CALLBACK CoreWnd::WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    CoreWnd* pWnd = hwnd ? static_cast<CoreWnd*>(::GetPropW(hwnd, kCoreWndProperty)) : nullptr;
    if (!coreWnds.Has(pWnd)) { // any program can write any value there
        pWnd = static_cast<CoreWnd*>(slotCoreWnd.Take());
        if (!pWnd) return 0; // its object is gone, or it was never made by CreateEx
        ::SetPropW(hwnd, kCoreWndProperty, pWnd);
        pWnd->hWnd = hwnd;
    }
    if (!pWnd->hWnd) return 0;
    LRESULT lResult = pWnd->OnWndMessage(uMsg, wParam, lParam);
    if (uMsg == WM_NCDESTROY) {
        // The property stays; the platform drops it with the window.
        bool bDelete = pWnd->autoDelete == DeleteObject && !pWnd->nCreating;
        pWnd->hWnd = nullptr;
        if (bDelete) delete pWnd;
    }
    return lResult;
}

// The creation slot is one of the platform: the compiler's thread-locals fail on XP in a library
// that is loaded late.

CreationSlot::~CreationSlot() {
    DWORD dw = dwIndex.exchange(TLS_OUT_OF_INDEXES);
    if (dw != TLS_OUT_OF_INDEXES) ::TlsFree(dw);
}

bool CreationSlot::Set(void* pObject) noexcept {
    DWORD dw = dwIndex.load();
    if (dw == TLS_OUT_OF_INDEXES) {
        DWORD dwNew = ::TlsAlloc();
        if (dwNew == TLS_OUT_OF_INDEXES) return false;
        if (dwIndex.compare_exchange_strong(dw, dwNew)) {
            dw = dwNew;
        } else {
            ::TlsFree(dwNew); // another thread was first; dw is its slot now
        }
    }
    return ::TlsSetValue(dw, pObject) != FALSE;
}

void* CreationSlot::Take() noexcept {
    DWORD dw = dwIndex.load();
    if (dw == TLS_OUT_OF_INDEXES) return nullptr;
    DWORD dwError = ::GetLastError(); // TlsGetValue clears it, and this is a window's message path
    void* pObject = ::TlsGetValue(dw);
    if (pObject) ::TlsSetValue(dw, nullptr);
    ::SetLastError(dwError);
    return pObject;
}
