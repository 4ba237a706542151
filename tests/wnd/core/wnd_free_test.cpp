#include "runtime/threads/message_pump.h"
#include "support/replace_import.h"
#include "wnd/core/wnd_free.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

extern "C" FARPROC __imp_GetDC, __imp_ReleaseDC;

namespace {
/// Which flags the platform may change before the window is asked, and which ask nobody.
constexpr UINT kFlagsSeen = SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE |
                            SWP_FRAMECHANGED | SWP_SHOWWINDOW | SWP_HIDEWINDOW | SWP_NOCOPYBITS |
                            SWP_NOOWNERZORDER | SWP_DEFERERASE;

/// A child of a visible parent that holds the last WINDOWPOS it was asked about.
struct WndFree : testing::Test {
    WndFree() {
        EXPECT_EQ(1, parent.Make());
        EXPECT_EQ(1, wnd.CreateEx(0, kProbeClass, L"child", WS_CHILD, 15, 25, 60, 70, parent,
                                  300ull, nullptr));
        wnd.onMessage = [this](ProbeWnd&, UINT uMsg, WPARAM wParam, LPARAM lParam) {
            if (uMsg == WM_WINDOWPOSCHANGING && !bSeen) {
                pos = *reinterpret_cast<WINDOWPOS*>(lParam);
                bSeen = true;
            }
            if (uMsg == WM_STYLECHANGING) styleChanges.push_back(static_cast<int>(wParam));
            return ProbeWnd::Answer();
        };
    }
    ~WndFree() override { parent.Destroy(); }

    /// The rectangle in the parent's client pixels.
    RECT Rect() {
        RECT rc{};
        ::GetWindowRect(wnd, &rc);
        ::MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rc), 2);
        return rc;
    }
    void ExpectRect(int l, int t, int r, int b) {
        RECT rc = Rect();
        EXPECT_EQ(l, rc.left);
        EXPECT_EQ(t, rc.top);
        EXPECT_EQ(r, rc.right);
        EXPECT_EQ(b, rc.bottom);
    }
    template <class Fn>
    UINT FlagsOf(Fn fn) {
        bSeen = false;
        pos = {};
        fn();
        EXPECT_TRUE(bSeen);
        return pos.flags & kFlagsSeen;
    }

    ProbeClass cls;
    ProbeRecord record, recordParent;
    ProbeWnd parent{recordParent}, wnd{record};
    WINDOWPOS pos{};
    bool bSeen = false;
    std::vector<int> styleChanges;
};

/// A function, called with flags, and what it makes of them.
struct FlagCase {
    const char* pszName;
    int (*pfn)(HWND hwnd, DWORD dwFlags);
    DWORD dwOff, dwOn;
};
class WndFreeFlags : public WndFree, public testing::WithParamInterface<FlagCase> {};
TEST_P(WndFreeFlags, AreAsGivenBesidesItsOwn) {
    const auto& row = GetParam();
    // Bits that no message shows or that would leave it out cannot be looked at.
    const DWORD singles[] = {0,
                             SWP_NOSIZE,
                             SWP_NOMOVE,
                             SWP_NOZORDER,
                             SWP_NOREDRAW,
                             SWP_NOACTIVATE,
                             SWP_FRAMECHANGED,
                             SWP_SHOWWINDOW,
                             SWP_HIDEWINDOW,
                             SWP_NOCOPYBITS,
                             SWP_NOOWNERZORDER,
                             SWP_DEFERERASE};
    for (DWORD dwOne : singles) {
        for (DWORD dwOther : singles) {
            DWORD dwFlags = dwOne | dwOther;
            UINT uSeen = FlagsOf([&] { EXPECT_NE(0, row.pfn(wnd, dwFlags)); });
            EXPECT_EQ((dwFlags & ~row.dwOff) | row.dwOn, uSeen) << "flags " << dwFlags;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(
    Cases, WndFreeFlags,
    testing::Values(
        FlagCase{"ZOrder", [](HWND h, DWORD f) { return SetWndZOrder(h, HWND_BOTTOM, f); }, 4, 19},
        FlagCase{"Size", [](HWND h, DWORD f) { return SetWndSize(h, 30, 40, f); }, 1, 22},
        FlagCase{"Origin", [](HWND h, DWORD f) { return SetWndOrigin(h, 3, 4, f); }, 2, 21},
        FlagCase{"Pos", [](HWND h, DWORD f) { return SetWndPos(h, 1, 2, 30, 40, f); }, 3, 20},
        FlagCase{"PosOfRect",
                 [](HWND h, DWORD f) {
                     RECT rc{1, 2, 31, 42};
                     return SetWndPos(h, &rc, f);
                 },
                 3, 20},
        FlagCase{"Show", [](HWND h, DWORD f) { return SetWndShow(h, 1, f); }, 0, 64 | 23},
        FlagCase{"Hide", [](HWND h, DWORD f) { return SetWndShow(h, 0, f); }, 0, 128 | 23}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(WndFree, SizeKeepsTheOrigin) {
    EXPECT_NE(0, SetWndSize(wnd, 33, 44, 0));
    ExpectRect(15, 25, 15 + 33, 25 + 44);
    EXPECT_NE(0, SetWndSize(wnd, 0, 0, 0));
    ExpectRect(15, 25, 15, 25);
}

TEST_F(WndFree, OriginKeepsTheSize) {
    EXPECT_NE(0, SetWndOrigin(wnd, -7, 9, 0));
    ExpectRect(-7, 9, -7 + 60, 9 + 70);
}

TEST_F(WndFree, PosByNumbersAndByRectangle) {
    EXPECT_NE(0, SetWndPos(wnd, 1, 2, 30, 40, 0));
    ExpectRect(1, 2, 31, 42);
    RECT rc{5, 6, 50, 60};
    bSeen = false;
    EXPECT_NE(0, SetWndPos(wnd, &rc, 0));
    ExpectRect(5, 6, 50, 60);
    EXPECT_EQ(45, pos.cx) << "width, not right edge";
    EXPECT_EQ(0, SetWndPos(wnd, nullptr, 0));
    ExpectRect(5, 6, 50, 60);
}

TEST_F(WndFree, ZOrderMovesBehindTheWindowThatIsNamed) {
    ProbeRecord recordOther;
    ProbeWnd other(recordOther);
    ASSERT_EQ(1, other.Make(parent));
    EXPECT_NE(0, SetWndZOrder(wnd, HWND_TOP, 0));
    EXPECT_EQ(other.hWnd, ::GetWindow(wnd, GW_HWNDNEXT));
    EXPECT_NE(0, SetWndZOrder(wnd, other, SWP_NOZORDER)) << "that flag is taken off";
    EXPECT_EQ(wnd.hWnd, ::GetWindow(other, GW_HWNDNEXT));
    ExpectRect(15, 25, 75, 95);
}

TEST_F(WndFree, ShowAndHide) {
    EXPECT_NE(0, SetWndShow(wnd, 1, 0));
    EXPECT_TRUE(wnd.GetStyle(0) & WS_VISIBLE);
    EXPECT_NE(0, SetWndShow(wnd, 0, 0));
    EXPECT_FALSE(wnd.GetStyle(0) & WS_VISIBLE);
    EXPECT_NE(0, SetWndShow(wnd, -4, 0));
    EXPECT_TRUE(wnd.GetStyle(0) & WS_VISIBLE);
    ExpectRect(15, 25, 75, 95);
}

TEST_F(WndFree, OffsetOfAChild) {
    UINT uFlags = FlagsOf([&] { EXPECT_NE(0, OffsetWnd(wnd, 5, -6)); });
    EXPECT_EQ(21u, uFlags);
    ExpectRect(20, 19, 80, 89);
    EXPECT_EQ(20, pos.x);
    EXPECT_EQ(19, pos.y);
    EXPECT_NE(0, OffsetWnd(wnd, 0, 0));
    ExpectRect(20, 19, 80, 89);
    EXPECT_NE(0, OffsetWnd(wnd, -100, -100));
    ExpectRect(-80, -81, -20, -11);
}

TEST_F(WndFree, OffsetOfATopLevelWindow) {
    RECT rcBefore{}, rcAfter{};
    ::GetWindowRect(parent, &rcBefore);
    EXPECT_NE(0, OffsetWnd(parent, 11, 12));
    ::GetWindowRect(parent, &rcAfter);
    ::OffsetRect(&rcBefore, 11, 12);
    EXPECT_TRUE(::EqualRect(&rcBefore, &rcAfter));
}

TEST_F(WndFree, OffsetOfAnOwnedPopupIsOfTheScreen) {
    // It has an owner and no parent. (The owner stands where mapping through it would show.)
    ::SetWindowPos(parent, nullptr, 140, 150, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    HWND hwndPopup = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 200, 210, 40, 30, parent,
                                       nullptr, nullptr, nullptr);
    ASSERT_EQ(parent.hWnd, ::GetParent(hwndPopup)) << "which gives the owner";
    EXPECT_NE(0, OffsetWnd(hwndPopup, 5, -6));
    RECT rc{};
    ::GetWindowRect(hwndPopup, &rc);
    EXPECT_EQ(205, rc.left);
    EXPECT_EQ(204, rc.top);
    EXPECT_EQ(40, rc.right - rc.left);
    EXPECT_EQ(30, rc.bottom - rc.top);
    ::DestroyWindow(hwndPopup);
}

TEST_F(WndFree, OffsetOfAPopupThatGotAParent) {
    HWND hwndPopup = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 30, 40, 20, 20, nullptr,
                                       nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, ::SetParent(hwndPopup, parent));
    RECT rcBefore{}, rcAfter{};
    ::GetWindowRect(hwndPopup, &rcBefore);
    EXPECT_NE(0, OffsetWnd(hwndPopup, 5, -6));
    ::GetWindowRect(hwndPopup, &rcAfter);
    ::OffsetRect(&rcBefore, 5, -6);
    EXPECT_EQ(rcBefore.left, rcAfter.left);
    EXPECT_EQ(rcBefore.top, rcAfter.top);
    ::DestroyWindow(hwndPopup);
}

TEST_F(WndFree, ResizeByDeltas) {
    UINT uFlags = FlagsOf([&] { EXPECT_NE(0, ResizeWnd(wnd, 5, -6)); });
    EXPECT_EQ(22u, uFlags);
    ExpectRect(15, 25, 80, 89);
    EXPECT_NE(0, ResizeWnd(wnd, 0, 0));
    ExpectRect(15, 25, 80, 89);
}

TEST_F(WndFree, BadHandlesGiveZero) {
    for (HWND hwnd : {static_cast<HWND>(nullptr), DeadWindow()}) {
        RECT rc{0, 0, 5, 5};
        EXPECT_EQ(0, SetWndZOrder(hwnd, HWND_TOP, 0));
        EXPECT_EQ(0, SetWndSize(hwnd, 1, 1, 0));
        EXPECT_EQ(0, SetWndOrigin(hwnd, 1, 1, 0));
        EXPECT_EQ(0, SetWndPos(hwnd, 1, 1, 1, 1, 0));
        EXPECT_EQ(0, SetWndPos(hwnd, &rc, 0));
        EXPECT_EQ(0, SetWndShow(hwnd, 1, 0));
        EXPECT_EQ(0, OffsetWnd(hwnd, 1, 1));
        EXPECT_EQ(0, ResizeWnd(hwnd, 1, 1));
        EXPECT_EQ(0u, GetWndStyle(hwnd, 0));
        EXPECT_EQ(0u, SetWndStyle(hwnd, 1, 1));
        EXPECT_EQ(0u, ModifyWndStyle(hwnd, 1, 2, 0));
        ModifyStyle(hwnd, 1, 2, 3, 4);
        EXPECT_EQ(0, SendMsg(hwnd, WM_APP, 0, 0));
        EXPECT_EQ(0, SendCommand(hwnd, 1, nullptr, 0));
    }
    EXPECT_EQ(0, PostMsg(DeadWindow(), WM_APP, 0, 0));
    EXPECT_EQ(0, PostCommand(DeadWindow(), 1, nullptr, 0));
    EXPECT_EQ(0, SimulateButton(DeadWindow(), 1));
}

TEST_F(WndFree, StylesOfAHandle) {
    DWORD dwStyle = GetWndStyle(wnd, 0), dwEx = GetWndStyle(wnd, 1);
    EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(wnd, GWL_STYLE)), dwStyle);
    EXPECT_EQ(static_cast<DWORD>(::GetWindowLongPtrW(wnd, GWL_EXSTYLE)), dwEx);
    EXPECT_EQ(dwStyle, SetWndStyle(wnd, dwStyle | 0x0F, 0));
    EXPECT_EQ(dwEx, SetWndStyle(wnd, dwEx | WS_EX_NOPARENTNOTIFY, 1));
    EXPECT_EQ(dwStyle | 0x0F, ModifyWndStyle(wnd, 0x05, 0x31, 0));
    EXPECT_EQ(dwStyle | 0x3B, GetWndStyle(wnd, 0)) << "what is in both masks is on";
    ModifyWndStyle(wnd, 0xFFFFFFFF, dwEx, 1);
    EXPECT_EQ(dwEx, GetWndStyle(wnd, 1));
}

struct StyleCase {
    const char* pszName;
    DWORD dwRemove, dwAdd, dwRemoveEx, dwAddEx;
    std::vector<int> changes;
};
struct ModifiedStyle : WndFree, testing::WithParamInterface<StyleCase> {};
TEST_P(ModifiedStyle, TouchesOnlyWhatAMaskNames) {
    const StyleCase& row = GetParam();
    SetWndStyle(wnd, GetWndStyle(wnd, 0) | 1, 0); // so that there is something to remove
    SetWndStyle(wnd, GetWndStyle(wnd, 1) ^ row.dwRemoveEx, 1);
    DWORD dwStyle = GetWndStyle(wnd, 0), dwEx = GetWndStyle(wnd, 1);
    styleChanges.clear();
    ModifyStyle(wnd, row.dwRemove, row.dwAdd, row.dwRemoveEx, row.dwAddEx);
    EXPECT_EQ(row.changes, styleChanges);
    EXPECT_EQ((dwStyle & ~row.dwRemove) | row.dwAdd, GetWndStyle(wnd, 0));
    EXPECT_EQ((dwEx & ~row.dwRemoveEx) | row.dwAddEx, GetWndStyle(wnd, 1));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, ModifiedStyle,
    testing::Values(
        StyleCase{"NoMask", 0, 0, 0, 0, {}}, StyleCase{"Remove", 1, 0, 0, 0, {GWL_STYLE}},
        StyleCase{"Add", 0, 1, 0, 0, {GWL_STYLE}},
        StyleCase{"RemoveExtended", 0, 0, WS_EX_ACCEPTFILES, 0, {GWL_EXSTYLE}},
        StyleCase{"AddExtended", 0, 0, 0, WS_EX_ACCEPTFILES, {GWL_EXSTYLE}},
        StyleCase{"All", 1, 2, WS_EX_ACCEPTFILES, WS_EX_NOPARENTNOTIFY, {GWL_STYLE, GWL_EXSTYLE}}),
    [](const auto& row) { return std::string(row.param.pszName); });

struct WndFreeCommand : WndFree {
    WndFreeCommand() {
        parent.onMessage = [this](ProbeWnd&, UINT uMsg, WPARAM wParam, LPARAM lParam) {
            if (uMsg != WM_COMMAND) return ProbeWnd::Answer();
            wSent = wParam;
            lSent = lParam;
            return ProbeWnd::Answer(61);
        };
    }
    MSG Posted(UINT uMsg) {
        MSG msg{};
        EXPECT_TRUE(::PeekMessageW(&msg, parent, uMsg, uMsg, PM_REMOVE));
        return msg;
    }
    WPARAM wSent = 0;
    LPARAM lSent = -1;
};

TEST_F(WndFreeCommand, SimulateButtonNamesTheItem) {
    EXPECT_NE(0, SimulateButton(parent, 300));
    MSG msg = Posted(WM_COMMAND);
    EXPECT_EQ(300u, msg.wParam);
    EXPECT_EQ(reinterpret_cast<LPARAM>(wnd.hWnd), msg.lParam);
    EXPECT_NE(0, SimulateButton(parent, 0xFFFF));
    msg = Posted(WM_COMMAND);
    EXPECT_EQ(0xFFFFu, msg.wParam);
    EXPECT_EQ(0, msg.lParam) << "there is no such item";
}

TEST_F(WndFreeCommand, CommandsArePostedAndSent) {
    auto l = reinterpret_cast<LPARAM>(wnd.hWnd);
    EXPECT_NE(0, PostCommand(parent, 0xABCD, wnd, 0xFEDC));
    MSG msg = Posted(WM_COMMAND);
    EXPECT_EQ(0xFEDCABCDu, msg.wParam);
    EXPECT_EQ(l, msg.lParam);
    EXPECT_EQ(-1, lSent);
    EXPECT_EQ(61, SendCommand(parent, 0xABCD, wnd, 0xFEDC));
    EXPECT_EQ(0xFEDCABCDu, wSent);
    EXPECT_EQ(l, lSent);
    EXPECT_EQ(61, SendCommand(parent, 5, nullptr, 0));
    EXPECT_EQ(5u, wSent);
    EXPECT_EQ(0, lSent);
}

TEST_F(WndFreeCommand, BareMessages) {
    EXPECT_EQ(61, SendMsg(parent, WM_COMMAND, 0x123456789, -2));
    EXPECT_EQ(0x123456789u, wSent);
    EXPECT_EQ(-2, lSent);
    EXPECT_NE(0, PostMsg(parent, WM_APP, 0x987654321, -3));
    MSG msg = Posted(WM_APP);
    EXPECT_EQ(0x987654321u, msg.wParam);
    EXPECT_EQ(-3, msg.lParam);
}

TEST_F(WndFreeCommand, ProcessAllMessagesSwallowsTheQuit) {
    ::PostQuitMessage(0);
    PostCommand(parent, 9, nullptr, 0);
    EXPECT_EQ(0, ProcessAllMessages(nullptr));
    EXPECT_EQ(9u, wSent);
    EXPECT_EQ(1, ProcessAllMessages(nullptr));
    EXPECT_EQ(1, ProcessAllMessages(parent));
}

/// The size by the platform alone.
SIZE Measure(HFONT hfont, LPCWSTR psz) {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    HGDIOBJ hBefore = hfont ? ::SelectObject(hdc, hfont) : nullptr;
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, psz, ::lstrlenW(psz), &size);
    if (hBefore) ::SelectObject(hdc, hBefore);
    ::DeleteDC(hdc);
    return size;
}

TEST(GetTextSizeForWindow, UsesTheWindowsFont) {
    PlainWnd plain;
    HFONT hfontBig = ::CreateFontW(-40, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma");
    for (HFONT hfont : {static_cast<HFONT>(nullptr), hfontBig,
                        static_cast<HFONT>(::GetStockObject(ANSI_FIXED_FONT))}) {
        ::SendMessageW(plain, WM_SETFONT, reinterpret_cast<WPARAM>(hfont), 0);
        for (auto* psz : {L"W", L"Measured text", L"line\nline", L""}) {
            SIZE expected = Measure(hfont, psz);
            SIZE size{-1, -1};
            EXPECT_NE(0, GetTextSizeForWindow(plain, psz, &size));
            EXPECT_EQ(expected.cx, size.cx);
            EXPECT_EQ(expected.cy, size.cy);
        }
    }
    ::SendMessageW(plain, WM_SETFONT, 0, 0);
    ::DeleteObject(hfontBig);
}

TEST(GetTextSizeForWindow, LeavesNoHandles) {
    PlainWnd plain;
    SIZE size{};
    GetTextSizeForWindow(plain, L"warm", &size);
    DWORD nBefore = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    for (int n = 0; n < 15000; ++n) ASSERT_NE(0, GetTextSizeForWindow(plain, L"x", &size)) << n;
    EXPECT_EQ(nBefore, ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS));
}

TEST(GetTextSizeForWindow, NullTextAndDeadWindowDoNotCrash) {
    PlainWnd plain;
    SIZE size{};
    GetTextSizeForWindow(plain, nullptr, &size);
    EXPECT_EQ(0, GetTextSizeForWindow(plain, L"x", nullptr));
    GetTextSizeForWindow(DeadWindow(), L"x", &size);
}

// GetWndTextSize and GetWndTextWidth

int nDCsTaken = 0, nDCsReleased = 0;
HWND hwndOfDC = nullptr;
bool bNoDC = false;
const ReplaceImport *pGetDC = nullptr, *pReleaseDC = nullptr;
HDC WINAPI NoteGetDC(HWND hwnd) {
    hwndOfDC = hwnd;
    if (bNoDC) return nullptr;
    ++nDCsTaken;
    return pGetDC->Original<decltype(::GetDC)>()(hwnd);
}
int WINAPI NoteReleaseDC(HWND hwnd, HDC hdc) {
    ++nDCsReleased;
    EXPECT_EQ(hwndOfDC, hwnd);
    return pReleaseDC->Original<decltype(::ReleaseDC)>()(hwnd, hdc);
}

struct WndTextSize : testing::Test {
    WndTextSize() {
        nDCsTaken = nDCsReleased = 0;
        bNoDC = false;
        pGetDC = &getDC;
        pReleaseDC = &releaseDC;
    }
    ~WndTextSize() override {
        SetFont(nullptr);
        ::DeleteObject(hfontBig);
    }
    void SetFont(HFONT hfont) {
        ::SendMessageW(plain, WM_SETFONT, reinterpret_cast<WPARAM>(hfont), 0);
    }
    /// 0, with size and width that tell so.
    void ExpectNone(HWND hwnd, LPCWSTR psz) {
        SIZE size{-1, -2};
        EXPECT_EQ(0, GetWndTextSize(hwnd, psz, &size));
        EXPECT_EQ(-1, size.cx);
        EXPECT_EQ(-2, size.cy);
        EXPECT_EQ(0, GetWndTextWidth(hwnd, psz));
    }

    PlainWnd plain;
    HFONT hfontBig = ::CreateFontW(-40, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma");
    ReplaceImport getDC{__imp_GetDC, &NoteGetDC}, releaseDC{__imp_ReleaseDC, &NoteReleaseDC};
};

TEST_F(WndTextSize, UsesTheWindowsFontOnItsContext) {
    for (HFONT hfont : {hfontBig, static_cast<HFONT>(::GetStockObject(ANSI_FIXED_FONT))}) {
        SetFont(hfont);
        for (auto* psz : {L"W", L"Measured text", L"line\nline", L""}) {
            SIZE expected = Measure(hfont, psz);
            SIZE size{-1, -1};
            nDCsTaken = nDCsReleased = 0;
            EXPECT_NE(0, GetWndTextSize(plain, psz, &size));
            EXPECT_EQ(expected.cx, size.cx);
            EXPECT_EQ(expected.cy, size.cy);
            EXPECT_EQ(expected.cx, GetWndTextWidth(plain, psz));
            EXPECT_EQ(plain, hwndOfDC);
            EXPECT_EQ(2, nDCsTaken);
            EXPECT_EQ(2, nDCsReleased);
        }
    }
}

TEST_F(WndTextSize, WindowWithoutAFontHasNone) {
    ExpectNone(plain, L"text");
    SIZE size{};
    EXPECT_NE(0, GetTextSizeForWindow(plain, L"text", &size)) << "where the other one measures";
}

TEST_F(WndTextSize, WithoutAContextThereIsNone) {
    SetFont(hfontBig);
    bNoDC = true;
    ExpectNone(plain, L"text");
    EXPECT_EQ(0, nDCsReleased);
}

TEST_F(WndTextSize, NoTextNoSizeNoWindow) {
    SetFont(hfontBig);
    ExpectNone(plain, nullptr);
    EXPECT_EQ(0, GetWndTextSize(plain, L"x", nullptr));
    ExpectNone(nullptr, L"x");
    ExpectNone(DeadWindow(), L"x");
}

TEST_F(WndTextSize, ContextOfTheWindowKeepsItsFont) {
    WNDCLASSW wc{};
    wc.style = CS_OWNDC;
    wc.lpfnWndProc = [](HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (uMsg == WM_GETFONT) return ::GetWindowLongPtrW(hwnd, GWLP_USERDATA);
        return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    };
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = L"WindowWithItsOwnContext";
    ASSERT_NE(0, ::RegisterClassW(&wc));
    HWND hwnd = ::CreateWindowExW(0, wc.lpszClassName, L"", WS_POPUP, 0, 0, 10, 10, nullptr,
                                  nullptr, wc.hInstance, nullptr);
    ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(hfontBig));
    HDC hdc = ::GetDC(hwnd);
    HGDIOBJ hBefore = ::GetCurrentObject(hdc, OBJ_FONT);
    EXPECT_EQ(Measure(hfontBig, L"text").cx, GetWndTextWidth(hwnd, L"text"));
    EXPECT_EQ(hBefore, ::GetCurrentObject(hdc, OBJ_FONT));
    ::ReleaseDC(hwnd, hdc);
    ::DestroyWindow(hwnd);
    ::UnregisterClassW(wc.lpszClassName, wc.hInstance);
}

// GetPopupParent

HWND MakeWindow(DWORD dwStyle, HWND hwndParent) {
    return ::CreateWindowExW(0, L"STATIC", L"", dwStyle, 0, 0, 10, 10, hwndParent, nullptr, nullptr,
                             nullptr);
}

TEST(GetPopupParent, ClimbsToTheFirstPopup) {
    HWND hwndOwner = MakeWindow(WS_OVERLAPPEDWINDOW, nullptr);
    HWND hwndOuter = MakeWindow(WS_POPUP, hwndOwner);
    HWND hwndPopup = MakeWindow(WS_POPUP, hwndOuter);
    HWND hwndChild = MakeWindow(WS_CHILD, hwndPopup);
    HWND hwndInner = MakeWindow(WS_CHILD, hwndChild);
    EXPECT_EQ(hwndPopup, GetPopupParent(hwndInner));
    EXPECT_EQ(hwndPopup, GetPopupParent(hwndChild));
    EXPECT_EQ(hwndPopup, GetPopupParent(hwndPopup)) << "itself, and none above it";
    EXPECT_EQ(hwndOuter, GetPopupParent(hwndOuter));
    ::DestroyWindow(hwndOwner);
}

TEST(GetPopupParent, GivesTheLastWindowWithoutAPopup) {
    HWND hwndTop = MakeWindow(WS_OVERLAPPEDWINDOW, nullptr);
    HWND hwndChild = MakeWindow(WS_CHILD, hwndTop);
    HWND hwndInner = MakeWindow(WS_CHILD, hwndChild);
    EXPECT_EQ(hwndTop, GetPopupParent(hwndInner));
    EXPECT_EQ(hwndTop, GetPopupParent(hwndTop));
    ::DestroyWindow(hwndTop);
}

TEST(GetPopupParent, OwnerOfAnOverlappedWindowIsNoParent) {
    HWND hwndOwner = MakeWindow(WS_POPUP, nullptr);
    HWND hwndTop = MakeWindow(WS_OVERLAPPEDWINDOW, hwndOwner);
    HWND hwndChild = MakeWindow(WS_CHILD, hwndTop);
    EXPECT_EQ(hwndTop, GetPopupParent(hwndChild));
    EXPECT_EQ(hwndTop, GetPopupParent(hwndTop));
    ::DestroyWindow(hwndOwner);
}

TEST(GetPopupParent, NullGivesNull) { EXPECT_EQ(nullptr, GetPopupParent(nullptr)); }
} // namespace
