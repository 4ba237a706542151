#include "support/test_resource_ids.h"
#include "support/wait_until.h"
#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
/// A message as the window got it.
struct Seen {
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const Seen&) const = default;
    friend void PrintTo(const Seen& s, std::ostream* os) {
        *os << s.uMsg << " " << s.wParam << " " << s.lParam;
    }
};

struct CSWndForward : testing::Test {
    CSWndForward() {
        EXPECT_EQ(1, wnd.Make());
        wnd.onMessage = [this](ProbeWnd&, UINT uMsg, WPARAM wParam, LPARAM lParam) {
            seen.push_back({uMsg, wParam, lParam});
            return ProbeWnd::Answer();
        };
    }
    ~CSWndForward() override { wnd.Destroy(); }
    std::vector<Seen> Of(UINT uMsg) const {
        std::vector<Seen> found;
        for (const auto& s : seen)
            if (s.uMsg == uMsg) found.push_back(s);
        return found;
    }
    /// The waiting message of that number, taken out of the queue.
    Seen Posted(UINT uMsg) {
        MSG msg{};
        if (!::PeekMessageW(&msg, wnd, uMsg, uMsg, PM_REMOVE)) return {};
        return {msg.message, msg.wParam, msg.lParam};
    }
    RECT UpdateRect() {
        RECT rc{-1, -1, -1, -1};
        ::GetUpdateRect(wnd, &rc, FALSE);
        return rc;
    }
    bool HasUpdate() { return ::GetUpdateRect(wnd, nullptr, FALSE) != FALSE; }
    /// On the screen, painted, with nothing to be painted.
    void ShowClean() {
        wnd.Show(1);
        PumpUntil([] { return true; });
        ::UpdateWindow(wnd);
        ::ValidateRect(wnd, nullptr);
        seen.clear();
    }

    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd{record};
    std::vector<Seen> seen;
};

void ExpectRect(const RECT& expected, const RECT& rc) {
    EXPECT_TRUE(::EqualRect(&expected, &rc))
        << rc.left << " " << rc.top << " " << rc.right << " " << rc.bottom;
}

TEST_F(CSWndForward, RedrawTakesTheWholeWindow) {
    ShowClean();
    EXPECT_NE(0, wnd.Redraw(RDW_INVALIDATE));
    RECT rcClient{};
    ::GetClientRect(wnd, &rcClient);
    ExpectRect(rcClient, UpdateRect());
    EXPECT_TRUE(Of(WM_PAINT).empty());
    EXPECT_NE(0, wnd.Redraw(RDW_VALIDATE));
    EXPECT_FALSE(HasUpdate());
    EXPECT_NE(0, wnd.Redraw(RDW_INVALIDATE | RDW_UPDATENOW));
    EXPECT_EQ(1u, Of(WM_PAINT).size());
}

TEST_F(CSWndForward, InvalidateAndItsErasing) {
    const RECT rc{3, 4, 30, 40};
    for (int bErase : {0, 1}) {
        ShowClean();
        EXPECT_NE(0, wnd.Invalidate(&rc, bErase));
        ExpectRect(rc, UpdateRect());
        EXPECT_TRUE(Of(WM_PAINT).empty());
        ::UpdateWindow(wnd);
        EXPECT_EQ(bErase != 0, !Of(WM_ERASEBKGND).empty());
    }
    ShowClean();
    EXPECT_NE(0, wnd.Invalidate(nullptr, 0));
    RECT rcClient{};
    ::GetClientRect(wnd, &rcClient);
    ExpectRect(rcClient, UpdateRect());
}

TEST_F(CSWndForward, InvalidateEraseAlwaysErases) {
    ShowClean();
    const RECT rc{3, 4, 30, 40};
    EXPECT_NE(0, wnd.InvalidateErase(&rc));
    ExpectRect(rc, UpdateRect());
    ::UpdateWindow(wnd);
    EXPECT_FALSE(Of(WM_ERASEBKGND).empty());
}

TEST_F(CSWndForward, InvalidateUpdatePaintsAtOnce) {
    const RECT rc{3, 4, 30, 40};
    for (int bErase : {0, 1}) {
        ShowClean();
        EXPECT_NE(0, wnd.InvalidateUpdate(&rc, bErase));
        EXPECT_EQ(1u, Of(WM_PAINT).size());
        EXPECT_EQ(bErase != 0, !Of(WM_ERASEBKGND).empty());
        EXPECT_FALSE(HasUpdate());
    }
}

TEST_F(CSWndForward, VValidates) {
    ShowClean();
    wnd.Invalidate(nullptr, 0);
    RECT rcClient{};
    ::GetClientRect(wnd, &rcClient);
    RECT rcTop{0, 0, rcClient.right, 10};
    EXPECT_NE(0, wnd.v(&rcTop));
    ExpectRect({0, 10, rcClient.right, rcClient.bottom}, UpdateRect());
    EXPECT_NE(0, wnd.v(nullptr));
    EXPECT_FALSE(HasUpdate());
}

TEST_F(CSWndForward, SendAndPost) {
    wnd.onMessage = [this](ProbeWnd&, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        seen.push_back({uMsg, wParam, lParam});
        return uMsg == WM_APP ? ProbeWnd::Answer(-5) : std::nullopt;
    };
    EXPECT_EQ(-5, wnd.SendMsg(WM_APP, 1, -2));
    EXPECT_EQ((std::vector<Seen>{{WM_APP, 1, -2}}), Of(WM_APP));
    EXPECT_NE(0, wnd.PostMsg(WM_APP, 3, -4));
    EXPECT_EQ(1u, Of(WM_APP).size()) << "not sent";
    EXPECT_EQ((Seen{WM_APP, 3, -4}), Posted(WM_APP));
}

TEST_F(CSWndForward, CommandsArePosted) {
    HWND hwnd = wnd;
    auto lCtl = reinterpret_cast<LPARAM>(hwnd);
    EXPECT_NE(0, wnd.PostCmd(0x1234, hwnd, 0x5678));
    EXPECT_EQ((Seen{WM_COMMAND, 0x56781234, lCtl}), Posted(WM_COMMAND));
    EXPECT_NE(0, wnd.PostCmd(0xFFFF, nullptr, 0xFFFF));
    EXPECT_EQ((Seen{WM_COMMAND, 0xFFFFFFFF, 0}), Posted(WM_COMMAND)) << "32 bits, no sign";
    EXPECT_NE(0, wnd.PostCmd(0xFFFF, nullptr, 0));
    EXPECT_EQ((Seen{WM_COMMAND, 0xFFFF, 0}), Posted(WM_COMMAND));
    EXPECT_NE(0, wnd.ClickButton(0xFEDC));
    EXPECT_EQ((Seen{WM_COMMAND, 0xFEDC, 0}), Posted(WM_COMMAND));
    EXPECT_TRUE(Of(WM_COMMAND).empty());
}

TEST_F(CSWndForward, ClickButtonNamesNoControlEvenIfThereIsOne) {
    ProbeRecord recordChild;
    ProbeWnd child(recordChild);
    ASSERT_EQ(1, child.CreateEx(0, kProbeClass, L"", WS_CHILD, 0, 0, 1, 1, wnd, 77ull, nullptr));
    EXPECT_NE(0, wnd.ClickButton(77));
    EXPECT_EQ((Seen{WM_COMMAND, 77, 0}), Posted(WM_COMMAND));
}

TEST_F(CSWndForward, FocusActivityAndForeground) {
    ProbeRecord recordOther;
    ProbeWnd other(recordOther);
    ASSERT_EQ(1, other.Make());
    other.Show(1);
    wnd.Show(1);
    ::SetForegroundWindow(wnd);
    ::SetFocus(other);
    wnd.SetFocus();
    EXPECT_TRUE(wnd.HasFocus());
    EXPECT_FALSE(other.HasFocus());
    EXPECT_EQ(::GetActiveWindow() == wnd.hWnd, wnd.IsActive() != 0);
    EXPECT_TRUE(wnd.IsActive());
    EXPECT_FALSE(other.IsActive());
    ASSERT_TRUE(PumpUntil([&] { return ::GetForegroundWindow() == wnd.hWnd; }));
    EXPECT_TRUE(wnd.IsForeground());
    EXPECT_FALSE(other.IsForeground());
    ::SetForegroundWindow(other);
    ASSERT_TRUE(PumpUntil([&] { return ::GetForegroundWindow() == other.hWnd; }));
    EXPECT_FALSE(wnd.IsForeground());
    EXPECT_FALSE(wnd.HasFocus());
    EXPECT_FALSE(wnd.IsActive());
    other.Destroy();
}

TEST_F(CSWndForward, SetFocusGivesTheOneBefore) {
    wnd.Show(1);
    ProbeRecord recordChild;
    ProbeWnd one(recordChild), other(recordChild);
    ASSERT_EQ(1, one.Make(wnd, L"", WS_VISIBLE));
    ASSERT_EQ(1, other.Make(wnd, L"", WS_VISIBLE));
    one.SetFocus();
    ASSERT_TRUE(one.HasFocus());
    EXPECT_EQ(one.hWnd, other.SetFocus());
    EXPECT_TRUE(other.HasFocus());
}

TEST_F(CSWndForward, EnableAndShowGiveTheStateBefore) {
    EXPECT_EQ(0, wnd.Enable(0)) << "was not disabled";
    EXPECT_FALSE(::IsWindowEnabled(wnd));
    EXPECT_NE(0, wnd.Enable(1));
    EXPECT_TRUE(::IsWindowEnabled(wnd));
    EXPECT_EQ(0, wnd.Show(2)) << "was not visible";
    EXPECT_TRUE(::IsWindowVisible(wnd));
    EXPECT_NE(0, wnd.Show(0));
    EXPECT_FALSE(::IsWindowVisible(wnd));
}

TEST_F(CSWndForward, ShowLeavesAMaximizedWindowMaximized) {
    ::ShowWindow(wnd, SW_SHOWMAXIMIZED);
    wnd.Show(0);
    wnd.Show(-1);
    EXPECT_TRUE(::IsZoomed(wnd)) << "SW_SHOW and not SW_SHOWNORMAL";
}

TEST_F(CSWndForward, GetParent) {
    EXPECT_EQ(nullptr, wnd.GetParent());
    ProbeRecord recordChild;
    ProbeWnd child(recordChild);
    ASSERT_EQ(1, child.Make(wnd));
    EXPECT_EQ(wnd.hWnd, child.GetParent());
}

TEST_F(CSWndForward, TextAndItsLength) {
    EXPECT_NE(0, wnd.SetText(L"twelve chars"));
    EXPECT_EQ(12, wnd.GetTextLength());
    wchar_t sz[8];
    std::fill(sz, sz + 8, L'#');
    EXPECT_EQ(4, wnd.GetText(sz, 5));
    EXPECT_STREQ(L"twel", sz);
    EXPECT_EQ(L'#', sz[5]);
    EXPECT_NE(0, wnd.SetText(static_cast<LPCWSTR>(nullptr)));
    EXPECT_EQ(0, wnd.GetTextLength());
    std::wstring strLong(2000, L'x');
    EXPECT_NE(0, wnd.SetText(strLong.c_str()));
    EXPECT_EQ(2000, wnd.GetTextLength()) << "a plain text is not cut";
    EXPECT_NE(0, wnd.SetText(L"%d%s%n"));
    EXPECT_EQ(L"%d%s%n", TextOf(wnd)) << "nor is it a format";
}

TEST_F(CSWndForward, TextByFormat) {
    EXPECT_NE(0, wnd.SetTextFmt(L"%d-%s-%x", -3, L"abc", 255));
    EXPECT_EQ(L"-3-abc-ff", TextOf(wnd));
    EXPECT_NE(0, wnd.SetTextFmt(L""));
    EXPECT_EQ(L"", TextOf(wnd));
    wnd.SetText(L"before");
    wnd.SetTextFmt(static_cast<LPCWSTR>(nullptr));
    EXPECT_EQ(L"", TextOf(wnd));
}

TEST_F(CSWndForward, TextById) {
    EXPECT_NE(0, wnd.SetText(static_cast<unsigned>(IDS_TEST_PLAIN)));
    EXPECT_EQ(L"plain test string", TextOf(wnd));
    EXPECT_NE(0, wnd.SetText(static_cast<unsigned>(IDS_TEST_NUMBER_AND_TEXT), 7, L"x"));
    EXPECT_EQ(L"number 7, text x", TextOf(wnd));
    EXPECT_NE(0, wnd.SetText(static_cast<unsigned>(-IDS_TEST_NUMBER_AND_TEXT), 8, L"y"));
    EXPECT_EQ(L"number 8, text y", TextOf(wnd)) << "negative: the library's own";
}

TEST_F(CSWndForward, TextByIdOfAModule) {
    HINSTANCE hinst = ::GetModuleHandleW(nullptr);
    EXPECT_NE(0, wnd.SetTextFmt(hinst, static_cast<unsigned>(IDS_TEST_NUMBER_AND_TEXT), 9, L"z"));
    EXPECT_EQ(L"number 9, text z", TextOf(wnd));
    HINSTANCE hinstOther = ::GetModuleHandleW(L"kernel32.dll");
    EXPECT_NE(0,
              wnd.SetTextFmt(hinstOther, static_cast<unsigned>(IDS_TEST_NUMBER_AND_TEXT), 9, L"z"));
    EXPECT_EQ(L"", TextOf(wnd)) << "that module has no such string";
}

TEST_F(CSWndForward, MissingStringGivesTheEmptyText) {
    for (unsigned nId : {60001u, 0u, static_cast<unsigned>(-60001)}) {
        wnd.SetText(L"before");
        EXPECT_NE(0, wnd.SetText(nId));
        EXPECT_EQ(L"", TextOf(wnd)) << nId;
        wnd.SetText(L"before");
        EXPECT_NE(0, wnd.SetTextFmt(::GetModuleHandleW(nullptr), nId));
        EXPECT_EQ(L"", TextOf(wnd)) << nId;
    }
}

TEST_F(CSWndForward, HostileFormatOfAStringIsText) {
    wnd.SetText(static_cast<unsigned>(IDS_TEST_HOSTILE_FORMAT));
    EXPECT_EQ(L"%n is no conversion", TextOf(wnd));
}

class CSWndTextCut : public CSWndForward, public testing::WithParamInterface<int> {};
TEST_P(CSWndTextCut, FormattedTextIsCutAndDoesNotFail) {
    std::wstring str;
    for (int n = 0; n < GetParam(); ++n) str += static_cast<wchar_t>(L'a' + n % 26);
    std::wstring strExpected = str.substr(0, 1023);
    EXPECT_NE(0, wnd.SetTextFmt(L"%s", str.c_str()));
    EXPECT_EQ(strExpected, TextOf(wnd));
    // The length need not come from an argument.
    wnd.SetText(L"");
    EXPECT_NE(0, wnd.SetTextFmt(str.c_str()));
    EXPECT_EQ(strExpected, TextOf(wnd));
    std::wstring strInString = L"number 5, text " + str;
    EXPECT_NE(0, wnd.SetText(static_cast<unsigned>(IDS_TEST_NUMBER_AND_TEXT), 5, str.c_str()));
    EXPECT_EQ(strInString.substr(0, 1023), TextOf(wnd));
    EXPECT_NE(0, wnd.SetTextFmt(::GetModuleHandleW(nullptr),
                                static_cast<unsigned>(IDS_TEST_NUMBER_AND_TEXT), 5, str.c_str()));
    EXPECT_EQ(strInString.substr(0, 1023), TextOf(wnd));
}
INSTANTIATE_TEST_SUITE_P(Lengths, CSWndTextCut,
                         testing::Values(0, 1, 1008, 1009, 1022, 1023, 1024, 1025, 2000),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_F(CSWndForward, StylesPlainAndExtended) {
    DWORD dwStyle = static_cast<DWORD>(::GetWindowLongPtrW(wnd, GWL_STYLE));
    DWORD dwEx = static_cast<DWORD>(::GetWindowLongPtrW(wnd, GWL_EXSTYLE));
    EXPECT_EQ(dwStyle, wnd.GetStyle(0));
    EXPECT_EQ(dwEx, wnd.GetStyle(1));
    EXPECT_EQ(dwEx, wnd.GetStyle(-1)) << "anything but 0";

    EXPECT_EQ(dwStyle, wnd.SetStyle(dwStyle | 0x55, 0));
    EXPECT_EQ(dwStyle | 0x55, wnd.GetStyle(0));
    EXPECT_EQ(dwEx, wnd.GetStyle(1));
    EXPECT_EQ(dwEx, wnd.SetStyle(dwEx | WS_EX_ACCEPTFILES, 2));
    EXPECT_EQ(dwEx | WS_EX_ACCEPTFILES, wnd.GetStyle(1));
    EXPECT_EQ(dwStyle | 0x55, wnd.GetStyle(0));

    wnd.ModifyStyle(0x0F, 0x0A, 0);
    EXPECT_EQ((dwStyle | 0x55) - 0x05 + 0x0A, wnd.GetStyle(0)) << "first off, then on";
    wnd.ModifyStyle(WS_EX_ACCEPTFILES, WS_EX_NOPARENTNOTIFY, 1);
    EXPECT_EQ(dwEx | WS_EX_NOPARENTNOTIFY, wnd.GetStyle(1));
}

TEST_F(CSWndForward, StyleBitsArePlainOnes) {
    DWORD dwStyle = wnd.GetStyle(0), dwEx = wnd.GetStyle(1);
    wnd.SetStyleBits(0x30, 1);
    EXPECT_EQ(dwStyle | 0x30, wnd.GetStyle(0));
    wnd.SetStyleBits(0x10, 0);
    EXPECT_EQ(dwStyle | 0x20, wnd.GetStyle(0));
    wnd.SetStyleBits(0x40, -1);
    EXPECT_EQ(dwStyle | 0x60, wnd.GetStyle(0));
    wnd.SetStyleBits(0, 1);
    wnd.SetStyleBits(0, 0);
    EXPECT_EQ(dwStyle | 0x60, wnd.GetStyle(0));
    EXPECT_EQ(dwEx, wnd.GetStyle(1));
}

TEST_F(CSWndForward, FontIsAskedFromTheWindow) {
    auto hfont = static_cast<HFONT>(::GetStockObject(ANSI_FIXED_FONT));
    wnd.onMessage = [&](ProbeWnd&, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        seen.push_back({uMsg, wParam, lParam});
        return uMsg == WM_GETFONT ? ProbeWnd::Answer(reinterpret_cast<LRESULT>(hfont))
                                  : std::nullopt;
    };
    EXPECT_EQ(hfont, wnd.GetFont());
    EXPECT_EQ((std::vector<Seen>{{WM_GETFONT, 0, 0}}), Of(WM_GETFONT));
}

struct SetIconCase {
    const char* pszName;
    unsigned nWhich;
    std::vector<WPARAM> expected;
};
struct CSWndSetIcon : CSWndForward, testing::WithParamInterface<SetIconCase> {};
TEST_P(CSWndSetIcon, GoesByBitSmallFirst) {
    HICON hicon = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_WARNING));
    seen.clear();
    wnd.SetIcon(hicon, GetParam().nWhich);
    std::vector<Seen> expected;
    for (WPARAM w : GetParam().expected)
        expected.push_back({WM_SETICON, w, reinterpret_cast<LPARAM>(hicon)});
    EXPECT_EQ(expected, Of(WM_SETICON));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CSWndSetIcon,
    testing::Values(SetIconCase{"None", 0, {}}, SetIconCase{"Small", 1, {ICON_SMALL}},
                    SetIconCase{"Big", 2, {ICON_BIG}},
                    SetIconCase{"Both", 3, {ICON_SMALL, ICON_BIG}},
                    SetIconCase{"AnotherBit", 4, {}},
                    SetIconCase{"AllBits", 0xFFFFFFFF, {ICON_SMALL, ICON_BIG}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSWndForward, NoIconIsSetToo) {
    seen.clear();
    wnd.SetIcon(nullptr, 3);
    EXPECT_EQ((std::vector<Seen>{{WM_SETICON, ICON_SMALL, 0}, {WM_SETICON, ICON_BIG, 0}}),
              Of(WM_SETICON));
}

TEST(CSWndForwardUntied, OperationsWithoutAWindowFail) {
    CSWnd wnd;
    wchar_t sz[4] = L"abc";
    EXPECT_EQ(0, wnd.SendMsg(WM_APP, 0, 0));
    EXPECT_EQ(0, wnd.GetTextLength());
    EXPECT_EQ(0, wnd.GetText(sz, 4));
    EXPECT_EQ(0, wnd.SetText(L"x"));
    EXPECT_EQ(0, wnd.SetTextFmt(L"x"));
    EXPECT_EQ(0u, wnd.GetStyle(0));
    EXPECT_EQ(0u, wnd.ModifyStyle(1, 2, 0));
    EXPECT_EQ(nullptr, wnd.GetParent());
    EXPECT_EQ(nullptr, wnd.GetFont());
    EXPECT_EQ(0, wnd.Enable(1));
    EXPECT_EQ(0, wnd.Show(1));
    wnd.SetIcon(nullptr, 3);
}
} // namespace
