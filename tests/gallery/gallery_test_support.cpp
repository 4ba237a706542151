#include "gallery/gallery_test_support.h"

#include <stdexcept>

namespace {
constexpr const wchar_t* kTitle = L"Tessaly Gallery";
constexpr const wchar_t* kKey = L"Software\\Tessaly Gallery";
constexpr const wchar_t* kDialogClass = L"#32770";
constexpr const wchar_t* kTipClass = L"tooltips_class32";
constexpr DWORD kRestMs = 150;     // a window that has not moved for so long has come to rest
constexpr int kEditOfCombo = 1001; // what the platform gives the edit field of a combo box

HWND NextWindow(HWND hwndAfter, const wchar_t* pszClass, DWORD dwProcess) {
    for (HWND hwnd = hwndAfter; (hwnd = ::FindWindowExW(nullptr, hwnd, pszClass, nullptr));) {
        DWORD dwOwner = 0;
        ::GetWindowThreadProcessId(hwnd, &dwOwner);
        if (dwOwner == dwProcess && ::IsWindowVisible(hwnd)) return hwnd;
    }
    return nullptr;
}
} // namespace

Gallery::Gallery() {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    Start();
}

Gallery::~Gallery() {
    process.Kill();
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
}

void Gallery::Start() {
    process.Start(FolderBeside(L"gallery") + L"\\gallery.exe", L"");
    hwndMain = WaitForDialog(kTitle);
    if (!hwndMain) throw std::runtime_error("the gallery does not come up");
    process.WaitUntilIdle();
    if (!WaitUntil([&] { return ::GetForegroundWindow() == hwndMain; }))
        throw std::runtime_error("the gallery is not in front");
}

bool Gallery::Leave() {
    PressKeys(hwndMain, {L"Escape"});
    return HasEnded();
}

void Gallery::StoreBytes(const wchar_t* pszName, const void* p, size_t cb) {
    HKEY hkey = nullptr;
    ::RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &hkey,
                      nullptr);
    ::RegSetValueExW(hkey, pszName, 0, REG_BINARY, static_cast<const BYTE*>(p),
                     static_cast<DWORD>(cb));
    ::RegCloseKey(hkey);
}

HWND Gallery::Page() const {
    for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(hwndMain, hwnd, kDialogClass, nullptr));) {
        if (::IsWindowVisible(hwnd)) return hwnd;
    }
    return nullptr;
}

void Gallery::GoToPage(int nPage) {
    std::vector<std::wstring> keys{L"alt+p", L"Home"};
    keys.insert(keys.end(), nPage, L"Down");
    PressKeys(hwndMain, keys);
    if (!WaitUntil([&] { return ::SendMessageW(Item(IDC_PAGES), LB_GETCURSEL, 0, 0) == nPage; }))
        throw std::runtime_error("the page can't be reached by keys");
}

HWND Gallery::WaitForDialog(const std::wstring& strTitle) const {
    HWND hwnd = nullptr;
    WaitUntil([&] { return (hwnd = FindDialog(strTitle)) != nullptr; });
    return hwnd;
}

HWND Gallery::FindDialog(const std::wstring& strTitle) const {
    HWND hwnd = nullptr;
    while ((hwnd = NextWindow(hwnd, kDialogClass, process.Id()))) {
        if (TextOf(hwnd) == strTitle) return hwnd;
    }
    return nullptr;
}

HWND Gallery::FindTip() const { return NextWindow(nullptr, kTipClass, process.Id()); }

bool Gallery::WaitUntilGone(HWND hwnd) const {
    return WaitUntil([&] { return !::IsWindow(hwnd); });
}

GUITHREADINFO Gallery::ThreadInfo() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(hwndMain, nullptr), &info);
    return info;
}

int Gallery::FocusId() const {
    HWND hwnd = ThreadInfo().hwndFocus;
    if (!hwnd) return 0;
    HWND hwndParent = ::GetParent(hwnd);
    bool bOfCombo = ::GetDlgCtrlID(hwnd) == kEditOfCombo && ClassOf(hwndParent) == L"ComboBox";
    return ::GetDlgCtrlID(bOfCombo ? hwndParent : hwnd);
}

bool Gallery::WaitForFocus(int nId) const {
    return WaitUntil([&] { return FocusId() == nId; });
}

bool Gallery::WaitForText(HWND hwnd, const std::wstring& strText) const {
    return WaitUntil([&] { return TextOf(hwnd) == strText; });
}

std::vector<int> Gallery::WalkByTab() {
    constexpr size_t kMost = 30;
    std::vector<int> ids{FocusId()};
    for (;;) {
        int nBefore = ids.back(), nNow = nBefore;
        PressKeys(hwndMain, {L"Tab"});
        WaitUntil([&] { return (nNow = FocusId()) && nNow != nBefore; });
        if (nNow == ids.front() || ids.size() == kMost) return ids;
        ids.push_back(nNow);
    }
}

void Gallery::DragWindow(POINT pt, int dx, int dy) {
    mouse::Drag(pt, {pt.x + dx, pt.y + dy}, mouse::Button::Left, [this] {
        EXPECT_TRUE(WaitUntil([&] { return (ThreadInfo().flags & GUI_INMOVESIZE) != 0; }));
    });
}

void Gallery::DragCorner(HWND hwnd, int dx, int dy) {
    constexpr int kIntoGrip = 4; // pixels from the corner of the client area
    RECT rc{};
    ::GetClientRect(hwnd, &rc);
    POINT pt{rc.right - kIntoGrip, rc.bottom - kIntoGrip};
    ::ClientToScreen(hwnd, &pt);
    mouse::Drag(pt, {pt.x + dx, pt.y + dy});
    // The next drag begins at the corner where it is when this one has ended.
    WaitUntil([&] {
        RECT rcBefore = RectOf(hwnd);
        return HoldsFor(
            [&] {
                RECT rcNow = RectOf(hwnd);
                return !(ThreadInfo().flags & GUI_INMOVESIZE) && ::EqualRect(&rcBefore, &rcNow);
            },
            kRestMs);
    });
}

std::wstring FaultsOfLayout(HWND hwndDlg) {
    struct Child {
        HWND hwnd;
        RECT rc;
        bool bGroup;
    };
    std::wstring strFaults;
    std::vector<Child> children;
    RECT rcDlg{};
    ::GetClientRect(hwndDlg, &rcDlg);
    ::MapWindowPoints(hwndDlg, nullptr, reinterpret_cast<POINT*>(&rcDlg), 2);
    HDC hdc = ::GetDC(nullptr);
    // The font of the templates at 96 dots per inch.
    HFONT hfont = ::CreateFontW(-11, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                                PROOF_QUALITY, 0, L"Tahoma");
    HGDIOBJ hBefore = ::SelectObject(hdc, hfont);
    for (HWND hwnd = ::GetWindow(hwndDlg, GW_CHILD); hwnd; hwnd = ::GetWindow(hwnd, GW_HWNDNEXT)) {
        if (!::IsWindowVisible(hwnd)) continue;
        const std::wstring strClass = ClassOf(hwnd), strText = TextOf(hwnd);
        const LONG_PTR nType = ::GetWindowLongPtrW(hwnd, GWL_STYLE) & BS_TYPEMASK;
        bool bButton = strClass == L"Button", bGroup = bButton && nType == BS_GROUPBOX;
        Child child{hwnd, RectOf(hwnd), bGroup};
        RECT rcBoth;
        ::UnionRect(&rcBoth, &rcDlg, &child.rc);
        if (!::EqualRect(&rcBoth, &rcDlg)) strFaults += L"\"" + strText + L"\" leaves its dialog. ";
        for (const Child& other : children) {
            if (bGroup == other.bGroup && ::IntersectRect(&rcBoth, &child.rc, &other.rc) &&
                strClass != L"msctls_updown32") {
                strFaults += L"\"" + strText + L"\" lies on \"" + TextOf(other.hwnd) + L"\". ";
            }
        }
        RECT rcText{};
        ::DrawTextW(hdc, strText.c_str(), -1, &rcText, DT_CALCRECT | DT_SINGLELINE);
        constexpr int kCheckWidth = 16, kButtonMargin = 8;
        int nRoom = WidthOf(child.rc);
        if (bButton) nRoom -= nType >= BS_CHECKBOX ? kCheckWidth : kButtonMargin;
        if ((bButton || strClass == L"Static") && WidthOf(rcText) > nRoom)
            strFaults += L"\"" + strText + L"\" is cut: " + std::to_wstring(WidthOf(rcText)) +
                         L" in " + std::to_wstring(nRoom) + L" pixels. ";
        children.push_back(child);
    }
    ::SelectObject(hdc, hBefore);
    ::DeleteObject(hfont);
    ::ReleaseDC(nullptr, hdc);
    return strFaults;
}
