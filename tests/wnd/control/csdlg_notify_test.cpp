#include "support/test_resource_ids.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <cstring>

namespace {
using Ctrl = Recorded<CSCtrl>;

// WM_NOTIFY

TEST(CSDlgNotified, NotificationEndsAtItsControl) {
    Dialogs t;
    t.ctrl.onNotify = [&](NMHDR* pHdr, __int64* plResult) {
        EXPECT_EQ(t.ctrl.hWnd, pHdr->hwndFrom);
        *plResult = 0x77;
        return pHdr->code == 5u;
    };
    NMHDR hdr{t.ctrl.hWnd, IDC_CTL_BUTTON, 5};
    EXPECT_EQ(0x77, t.Notify(&hdr));
    hdr.code = 6;
    EXPECT_EQ(0, t.Notify(&hdr)) << "the result is not the control's";
    EXPECT_EQ((Log{"OnNotify 5", "OnNotify 6"}), t.ctrl.log);
    EXPECT_EQ(Log{}, t.dialog.log) << "no tooltip was asked for";
}

TEST(CSDlgNotified, NotificationOfAChildGoesToTheControlAroundIt) {
    Dialogs t;
    PlainWnd inside(t.ctrl.hWnd);
    PlainWnd deep(static_cast<HWND>(inside));
    NMHDR hdr{inside, 1, 5};
    t.Notify(&hdr);
    EXPECT_EQ((Log{"OnNotify 5"}), t.ctrl.log);
    t.ctrl.log.clear();
    hdr.hwndFrom = deep;
    t.Notify(&hdr);
    EXPECT_EQ(Log{}, t.ctrl.log) << "one level up, no more";
}

TEST(CSDlgNotified, ControlsOwnObjectComesBeforeItsParents) {
    Dialogs t;
    Ctrl inner;
    HWND hwndInner = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, t.ctrl.hWnd,
                                       reinterpret_cast<HMENU>(5), nullptr, nullptr);
    inner.Subclass(hwndInner);
    NMHDR hdr{hwndInner, 5, 6};
    t.Notify(&hdr);
    EXPECT_EQ((Log{"OnNotify 6"}), inner.log);
    EXPECT_EQ(Log{}, t.ctrl.log);
    ::DestroyWindow(hwndInner);
}

TEST(CSDlgNotified, NotificationWithoutASourceGivesZero) {
    Dialogs t;
    t.dialog.onTipText = [](wchar_t*, unsigned) { return 1; };
    NMTTDISPINFOW info{};
    info.hdr = {nullptr, IDC_CTL_BUTTON, TTN_NEEDTEXTW};
    EXPECT_EQ(0, t.Notify(&info.hdr));
    EXPECT_EQ(Log{}, t.dialog.log);
    info.hdr.hwndFrom = DeadWindow();
    info.hdr.code = 5;
    EXPECT_EQ(0, t.Notify(&info.hdr));
}

// Tooltips

struct Tips : Dialogs {
    Tips() {
        info.hdr = {Item(IDC_CTL_EDIT), IDC_CTL_BUTTON, TTN_NEEDTEXTW};
        info.hinst = kInstance;
        info.lpszText = kText;
        narrow.hdr = {Item(IDC_CTL_EDIT), IDC_CTL_BUTTON, TTN_NEEDTEXTA};
        narrow.hinst = kInstance;
        narrow.lpszText = reinterpret_cast<char*>(kText);
        for (auto& ch : info.szText) ch = L'#';
        for (auto& ch : narrow.szText) ch = '#';
    }
    LRESULT Ask() { return Notify(&info.hdr); }
    LRESULT AskNarrow() { return Notify(&narrow.hdr); }

    static inline const HINSTANCE kInstance = reinterpret_cast<HINSTANCE>(0x1234);
    static inline wchar_t* const kText = reinterpret_cast<wchar_t*>(0x5678);
    const std::string strAskString = "tip string " + std::to_string(IDC_CTL_BUTTON);
    const std::string strAskText = "tip text " + std::to_string(IDC_CTL_BUTTON) + " 80";
    NMTTDISPINFOW info{};
    NMTTDISPINFOA narrow{};
};

TEST(CSDlgTooltip, StringFormComesFirst) {
    Tips t;
    auto hinst = reinterpret_cast<HINSTANCE>(0xABCDEF01234);
    t.dialog.onTipString = [&](HINSTANCE& hinstOut, unsigned short& nStringId) {
        hinstOut = hinst;
        nStringId = 0xFEDC;
        return 1;
    };
    EXPECT_EQ(0, t.Ask());
    EXPECT_EQ(Log{t.strAskString}, t.dialog.log);
    EXPECT_EQ(hinst, t.info.hinst);
    EXPECT_EQ(MAKEINTRESOURCEW(0xFEDC), t.info.lpszText);
    EXPECT_EQ(0, t.AskNarrow());
    EXPECT_EQ(hinst, t.narrow.hinst);
    EXPECT_EQ(MAKEINTRESOURCEA(0xFEDC), t.narrow.lpszText);
}

class CSDlgTooltipText : public testing::TestWithParam<int> {};
TEST_P(CSDlgTooltipText, GoesIntoTheRecordsOwnBuffer) {
    Tips t;
    // No string: refused, or accepted with the id 0.
    t.dialog.onTipString = [](HINSTANCE& hinstOut, unsigned short& nStringId) {
        hinstOut = nullptr;
        nStringId = GetParam() ? 0 : 5;
        return GetParam();
    };
    unsigned cchOffered = 0;
    wchar_t* pszOffered = nullptr;
    t.dialog.onTipText = [&](wchar_t* psz, unsigned cch) {
        cchOffered = cch;
        pszOffered = psz;
        ::lstrcpynW(psz, L"tip text", static_cast<int>(cch));
        return 1;
    };
    EXPECT_EQ(0, t.Ask());
    EXPECT_EQ((Log{t.strAskString, t.strAskText}), t.dialog.log);
    EXPECT_EQ(80u, cchOffered);
    EXPECT_EQ(t.info.szText, pszOffered) << "straight into it";
    EXPECT_STREQ(L"tip text", t.info.szText);
    EXPECT_EQ(Tips::kText, t.info.lpszText);
    EXPECT_EQ(Tips::kInstance, t.info.hinst);

    EXPECT_EQ(0, t.AskNarrow());
    EXPECT_EQ(80u, cchOffered);
    EXPECT_STREQ("tip text", t.narrow.szText);
    EXPECT_EQ(Tips::kInstance, t.narrow.hinst);
}
INSTANTIATE_TEST_SUITE_P(StringFormReturns, CSDlgTooltipText, testing::Values(0, 1));

TEST(CSDlgTooltip, LongestTextFitsBothForms) {
    Tips t;
    t.dialog.onTipText = [](wchar_t* psz, unsigned cch) {
        for (unsigned n = 0; n + 1 < cch; ++n) psz[n] = static_cast<wchar_t>(L'a' + n % 26);
        psz[cch - 1] = 0;
        return 1;
    };
    EXPECT_EQ(0, t.Ask());
    EXPECT_EQ(79, ::lstrlenW(t.info.szText));
    EXPECT_EQ(0, t.AskNarrow());
    EXPECT_EQ(79, ::lstrlenA(t.narrow.szText));
    EXPECT_EQ('a', t.narrow.szText[0]);
}

TEST(CSDlgTooltip, NarrowTextIsInTheDefaultCodePageAndTerminated) {
    Tips t;
    t.dialog.onTipText = [](wchar_t* psz, unsigned) {
        psz[0] = L'\xE4';
        psz[1] = L'x';
        psz[2] = 0;
        return 1;
    };
    EXPECT_EQ(0, t.AskNarrow());
    char szExpected[20] = "";
    ::WideCharToMultiByte(CP_ACP, 0, L"\xE4x", -1, szExpected, 20, nullptr, nullptr);
    EXPECT_STREQ(szExpected, t.narrow.szText);
}

TEST(CSDlgTooltip, WithoutATextNothingIsShown) {
    Tips t;
    EXPECT_EQ(0, t.Ask());
    EXPECT_EQ((Log{t.strAskString, t.strAskText}), t.dialog.log);
    EXPECT_EQ(Tips::kText, t.info.lpszText);
    t.dialog.onTipText = [](wchar_t*, unsigned) { return 0; };
    t.narrow.szText[79] = 0;
    EXPECT_EQ(0, t.AskNarrow());
    EXPECT_EQ(nullptr, std::memchr(t.narrow.szText, '\xCC', 80));
}

TEST(CSDlgTooltip, ControlsAnswerComesFirst) {
    Tips t;
    t.info.hdr.hwndFrom = t.ctrl.hWnd;
    t.ctrl.onNotify = [](NMHDR*, __int64* plResult) {
        *plResult = 9;
        return 1;
    };
    EXPECT_EQ(9, t.Ask());
    EXPECT_EQ(Log{}, t.dialog.log);
    t.ctrl.onNotify = nullptr;
    EXPECT_EQ(0, t.Ask());
    EXPECT_EQ((Log{t.strAskString, t.strAskText}), t.dialog.log);
}

TEST(CSDlgTooltip, OtherCodesAskForNothing) {
    Tips t;
    for (UINT uCode : {TTN_SHOW, TTN_POP, TTN_NEEDTEXTW - 1, TTN_NEEDTEXTW + 1, TTN_NEEDTEXTA - 1,
                       TTN_NEEDTEXTA + 1, 0u}) {
        t.info.hdr.code = uCode;
        EXPECT_EQ(0, t.Ask());
    }
    EXPECT_EQ(Log{}, t.dialog.log);
}

TEST(CSDlgTooltip, RealTooltipShowsBothForms) {
    INITCOMMONCONTROLSEX init{sizeof(init), ICC_BAR_CLASSES};
    ::InitCommonControlsEx(&init);
    Dialogs t(IDC_CTL_BUTTON, 1);
    HWND hwndTip = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP, 0, 0, 0, 0,
                                     t.dialog, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, hwndTip);
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.hwnd = t.dialog;
    tool.uId = IDC_CTL_BUTTON;
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    tool.hinst = ::GetModuleHandleW(nullptr);
    ASSERT_NE(0, ::SendMessageW(hwndTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool)));
    auto Shown = [&] {
        wchar_t sz[100] = L"";
        tool.lpszText = sz;
        ::SendMessageW(hwndTip, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        return std::wstring(sz);
    };
    t.dialog.onTipText = [](wchar_t* psz, unsigned cch) {
        ::lstrcpynW(psz, L"text form", static_cast<int>(cch));
        return 1;
    };
    EXPECT_EQ(L"text form", Shown());
    t.dialog.onTipString = [](HINSTANCE& hinst, unsigned short& nStringId) {
        hinst = ::GetModuleHandleW(nullptr);
        nStringId = IDS_TEST_PLAIN;
        return 1;
    };
    EXPECT_EQ(L"plain test string", Shown());
    ::DestroyWindow(hwndTip);
}
} // namespace
