#include "desktop/desktop_view.h"

#include <windows.h>
#include <commctrl.h>
#include <stdexcept>

namespace {
constexpr const wchar_t* kViewClass = L"SHELLDLL_DefView";
constexpr UINT_PTR kListId = 1;

/// One icon for all items. Those of the system take long to gather.
HIMAGELIST OneIcon() {
    HIMAGELIST himl = ImageList_Create(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON),
                                       ILC_COLOR32 | ILC_MASK, 1, 1);
    ImageList_AddIcon(himl, ::LoadIconW(nullptr, IDI_APPLICATION));
    return himl;
}

LRESULT CALLBACK ViewProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_SIZE) {
        HWND hwndList = ::GetDlgItem(hwnd, kListId);
        if (hwndList) ::MoveWindow(hwndList, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

class PlainView final : public DesktopView {
  public:
    explicit PlainView(HWND hwndHost) {
        HINSTANCE hinst = ::GetModuleHandleW(nullptr);
        WNDCLASSW wc{};
        wc.lpfnWndProc = ViewProc;
        wc.hInstance = hinst;
        wc.lpszClassName = kViewClass;
        ::RegisterClassW(&wc);

        RECT rc{};
        ::GetClientRect(hwndHost, &rc);
        hwndView = ::CreateWindowExW(0, kViewClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0,
                                     0, rc.right, rc.bottom, hwndHost, nullptr, hinst, nullptr);
        hwndList = ::CreateWindowExW(
            0, WC_LISTVIEWW, L"FolderView",
            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | LVS_ICON | LVS_SHOWSELALWAYS |
                LVS_EDITLABELS | LVS_ALIGNLEFT | LVS_NOSCROLL,
            0, 0, rc.right, rc.bottom, hwndView, reinterpret_cast<HMENU>(kListId), hinst, nullptr);
        if (!hwndView || !hwndList) throw std::runtime_error("the plain view could not be made");
        ListView_SetImageList(hwndList, OneIcon(), LVSIL_NORMAL);
        ListView_SetIconSpacing(hwndList, 75, 75);
        ListView_SetBkColor(hwndList, kDesktopColor);
        ListView_SetTextBkColor(hwndList, CLR_NONE);
        ListView_SetTextColor(hwndList, RGB(255, 255, 255));
        PaintFirstItem();
    }
    ~PlainView() override { ::DestroyWindow(hwndView); }
    PlainView(const PlainView&) = delete;
    PlainView& operator=(const PlainView&) = delete;

    HWND View() const override { return hwndView; }
    HWND List() const override { return hwndList; }

  private:
    /// The test platform's list view arranges all icons when it first paints some. Let that be over
    /// before anybody places one.
    void PaintFirstItem() {
        LVITEMW item{};
        ListView_InsertItem(hwndList, &item);
        ::UpdateWindow(hwndList);
        ListView_DeleteAllItems(hwndList);
    }

    HWND hwndView = nullptr;
    HWND hwndList = nullptr;
};
} // namespace

std::unique_ptr<DesktopView> CreatePlainView(HWND hwndHost) {
    return std::make_unique<PlainView>(hwndHost);
}
