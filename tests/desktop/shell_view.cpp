#include "desktop/desktop_view.h"

#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>
#include <stdexcept>

namespace {
constexpr const char* kNoView = "the platform gave no view of the desktop folder";

/// What the platform's view asks of the window around it. Lives as long as the program.
class Browser final : public IShellBrowser {
  public:
    explicit Browser(HWND hwndHost) : hwnd(hwndHost) {}
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;
    IShellView* pView = nullptr; // owned by the ShellView around it

    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
        bool bKnown = riid == IID_IUnknown || riid == IID_IOleWindow || riid == IID_IShellBrowser;
        *ppv = bKnown ? static_cast<IShellBrowser*>(this) : nullptr;
        return bKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetWindow(HWND* phwnd) override {
        *phwnd = hwnd;
        return S_OK;
    }
    STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP InsertMenusSB(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
    STDMETHODIMP SetMenuSB(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
    STDMETHODIMP RemoveMenusSB(HMENU) override { return E_NOTIMPL; }
    STDMETHODIMP SetStatusTextSB(LPCOLESTR) override { return S_OK; }
    STDMETHODIMP EnableModelessSB(BOOL) override { return S_OK; }
    STDMETHODIMP TranslateAcceleratorSB(LPMSG, WORD) override { return S_FALSE; }
    STDMETHODIMP BrowseObject(LPCITEMIDLIST, UINT) override { return E_NOTIMPL; }
    STDMETHODIMP GetViewStateStream(DWORD, LPSTREAM*) override { return E_NOTIMPL; }
    STDMETHODIMP GetControlWindow(UINT, HWND*) override { return E_NOTIMPL; }
    STDMETHODIMP SendControlMsg(UINT, UINT, WPARAM, LPARAM, LRESULT*) override { return E_NOTIMPL; }
    STDMETHODIMP QueryActiveShellView(LPSHELLVIEW* ppView) override {
        *ppView = pView;
        if (pView) pView->AddRef();
        return pView ? S_OK : E_FAIL;
    }
    STDMETHODIMP OnViewWindowActive(LPSHELLVIEW) override { return S_OK; }
    STDMETHODIMP SetToolbarItems(LPTBBUTTONSB, UINT, UINT) override { return E_NOTIMPL; }

  private:
    HWND hwnd;
};

class ShellView final : public DesktopView {
  public:
    explicit ShellView(HWND hwndHost) : browser(hwndHost) {
        IShellFolder* pFolder = nullptr;
        if (FAILED(::SHGetDesktopFolder(&pFolder))) throw std::runtime_error(kNoView);
        HRESULT hr = pFolder->CreateViewObject(hwndHost, IID_IShellView,
                                               reinterpret_cast<void**>(&browser.pView));
        pFolder->Release();
        if (FAILED(hr)) throw std::runtime_error(kNoView);

        FOLDERSETTINGS settings{FVM_ICON, FWF_DESKTOP | FWF_NOCLIENTEDGE | FWF_NOSCROLL};
        RECT rc{};
        ::GetClientRect(hwndHost, &rc);
        hr = browser.pView->CreateViewWindow(nullptr, &settings, &browser, &rc, &hwndView);
        if (FAILED(hr)) throw std::runtime_error(kNoView);
        hwndList = ::FindWindowExW(hwndView, nullptr, L"SysListView32", nullptr);
        if (!hwndList) throw std::runtime_error("the platform's view has no list view");
        browser.pView->UIActivate(SVUIA_ACTIVATE_NOFOCUS);
        // A desktop whose icons stay where they are put; a test can turn it on again.
        LONG_PTR nStyle = ::GetWindowLongPtrW(hwndList, GWL_STYLE);
        ::SetWindowLongPtrW(hwndList, GWL_STYLE, nStyle & ~LONG_PTR{LVS_AUTOARRANGE});
        ListView_SetBkColor(hwndList, kDesktopColor);
        ListView_SetTextBkColor(hwndList, CLR_NONE);
        ListView_SetTextColor(hwndList, RGB(255, 255, 255));
        // The test platform's list view arranges all icons when it first paints some: now, and not
        // after somebody has placed one.
        ::InvalidateRect(hwndList, nullptr, TRUE);
        ::UpdateWindow(hwndList);
    }
    ~ShellView() override {
        if (::IsWindow(hwndView)) browser.pView->DestroyViewWindow();
        browser.pView->Release();
    }
    ShellView(const ShellView&) = delete;
    ShellView& operator=(const ShellView&) = delete;

    HWND View() const override { return hwndView; }
    HWND List() const override { return hwndList; }
    bool TakesKey(MSG& msg) override {
        return msg.message >= WM_KEYFIRST && msg.message <= WM_KEYLAST &&
               browser.pView->TranslateAccelerator(&msg) == S_OK;
    }

  private:
    Browser browser;
    HWND hwndView = nullptr;
    HWND hwndList = nullptr;
};
} // namespace

std::unique_ptr<DesktopView> CreateShellView(HWND hwndHost) {
    return std::make_unique<ShellView>(hwndHost);
}
