#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
struct CSWndProc : testing::Test {
    ProbeClass cls;
    ProbeRecord record;
};
using CSWndNotify = CSWndProc;

class KindProbe : public CSWnd {
  public:
    int IsKindOf(LPCWSTR psz) override {
        return !lstrcmpW(psz, L"KindProbe") || CSWnd::IsKindOf(psz);
    }
};
class DlgKindProbe : public CSWnd {
  public:
    int IsKindOf(LPCWSTR psz) override { return !lstrcmpW(psz, L"CSDlg") || CSWnd::IsKindOf(psz); }
};

TEST(CSWndKind, NameIsComparedExactly) {
    CSWnd wnd;
    EXPECT_NE(0, wnd.IsKindOf(L"CSWnd"));
    for (auto* psz : {L"cswnd", L"CSWND", L"CSWn", L"CSWnd ", L"CSWndX", L"", L"CSDlg", L"CSCtrl"})
        EXPECT_EQ(0, wnd.IsKindOf(psz)) << testing::PrintToString(std::wstring(psz));
    EXPECT_EQ(0, wnd.IsKindOf(nullptr));
    EXPECT_EQ(0, wnd.IsDlg());
}

TEST(CSWndKind, DerivedClassesAnswerToBothNames) {
    KindProbe wnd;
    EXPECT_NE(0, wnd.IsKindOf(L"KindProbe"));
    EXPECT_NE(0, wnd.IsKindOf(L"CSWnd"));
    EXPECT_EQ(0, wnd.IsDlg());
    DlgKindProbe dlg;
    EXPECT_NE(0, dlg.IsDlg());
}

TEST(CSWndDefaults, PreTranslateMessageTakesNothing) {
    CSWnd wnd;
    MSG msg{};
    EXPECT_EQ(0, wnd.PreTranslateMessage(&msg));
}

TEST_F(CSWndProc, WindowWithoutObjectGivesZeroAndNoDefault) {
    PlainWnd plain;
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"changed")));
    EXPECT_EQ(L"plain", TextOf(plain));
    EXPECT_EQ(0, CSWnd::WndProc(nullptr, WM_CLOSE, 0, 0));
    EXPECT_EQ(0, CSWnd::WndProc(DeadWindow(), WM_CLOSE, 0, 0));
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_CLOSE, 0, 0));
    EXPECT_TRUE(::IsWindow(plain));
}

TEST_F(CSWndProc, PlainCreationOfTheClassFailsForWantOfAnObject) {
    EXPECT_EQ(nullptr, ::CreateWindowExW(0, kProbeClass, L"", WS_POPUP, 0, 0, 1, 1, nullptr,
                                         nullptr, ::GetModuleHandleW(nullptr), nullptr));
}

TEST_F(CSWndProc, StalePropertyIsNotTrusted) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    size_t nBefore = record.messages.size();
    PlainWnd plain;
    ::SetPropW(plain, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"changed")));
    EXPECT_EQ(L"plain", TextOf(plain));
    EXPECT_EQ(nBefore, record.messages.size());
    ::RemovePropW(plain, L"CSWND");
    wnd.Destroy();
}

TEST_F(CSWndProc, FromHandleOfOrdinaryHandles) {
    PlainWnd plain;
    EXPECT_EQ(nullptr, CSWnd::FromHandle(nullptr));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(DeadWindow()));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(::GetDesktopWindow()));
}

TEST_F(CSWndProc, WindowOfAnotherProcessIsNeverAnObjects) {
    HWND hwnd = ::FindWindowW(L"Shell_TrayWnd", nullptr);
    if (!hwnd) hwnd = ::GetDesktopWindow();
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    ASSERT_NE(::GetCurrentProcessId(), dwProcess);
    if (!::SetPropW(hwnd, L"CSWND", reinterpret_cast<HANDLE>(0x10)))
        GTEST_SKIP() << "the platform lets no other process's window be marked";
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    // Also an address that is good here must not be believed.
    ProbeWnd wnd(record);
    wnd.Attach(hwnd);
    ::SetPropW(hwnd, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    wnd.Detach();
    ::RemovePropW(hwnd, L"CSWND");
}

/// The earlier procedure of a window that notes when it was asked.
ProbeRecord* pDefaultRecord = nullptr;
LRESULT CALLBACK NotingProc(HWND, UINT, WPARAM, LPARAM) {
    pDefaultRecord->log.push_back("default");
    return 55; // the platform's own would activate the window and send more messages
}

struct NotifyCase {
    const char* pszName;
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    const char* pszNote;
};
class CSWndNotification : public testing::TestWithParam<NotifyCase> {};
TEST_P(CSWndNotification, ComesAfterHooksAndDefault) {
    const auto& row = GetParam();
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.oldWndProc = &NotingProc;
    ProbeHook hook([&](CSWnd*, UINT, WPARAM, LPARAM, LRESULT*) {
        record.log.push_back("hook");
        return 0;
    });
    wnd.AddWndHook(&hook);
    record.log.clear();
    pDefaultRecord = &record;
    EXPECT_EQ(55, wnd.OnWndMessage(row.uMsg, row.wParam, row.lParam));
    EXPECT_EQ((std::vector<std::string>{"hook", "default", row.pszNote}), record.log);

    // A hook that takes the message stops the default and not the notification.
    record.log.clear();
    hook.fn = [&](CSWnd*, UINT, WPARAM, LPARAM, LRESULT* pl) {
        *pl = 77;
        return 1;
    };
    EXPECT_EQ(77, wnd.OnWndMessage(row.uMsg, row.wParam, row.lParam));
    EXPECT_EQ(std::vector<std::string>{row.pszNote}, record.log);
    wnd.RemoveAllWndHooks();
    wnd.oldWndProc = &::DefWindowProcW;
    wnd.Destroy();
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CSWndNotification,
    testing::Values(NotifyCase{"Inactive", WM_ACTIVATE, WA_INACTIVE, 0, "OnActivate 0"},
                    NotifyCase{"ActiveByClick", WM_ACTIVATE, WA_CLICKACTIVE, 0, "OnActivate 1"},
                    NotifyCase{"HighWordIsNotLooked", WM_ACTIVATE, 0x10000, 0, "OnActivate 0"},
                    NotifyCase{"Enabled", WM_ENABLE, 1, 0, "OnEnable 1"},
                    NotifyCase{"Disabled", WM_ENABLE, 0, 0, "OnEnable 0"},
                    NotifyCase{"EnableValueAsItIs", WM_ENABLE, 7, 0, "OnEnable 7"},
                    NotifyCase{"EnableValueIsAnInt", WM_ENABLE, 0xFFFFFFFF, 0, "OnEnable -1"},
                    NotifyCase{"EnableHighHalfIsCutOff", WM_ENABLE, 1ull << 32, 0, "OnEnable 0"},
                    NotifyCase{"Setting", WM_SETTINGCHANGE, 47, 0, "setting 47 0"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSWndNotify, EnableWindowIsToldToTheWindow) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    record.log.clear();
    wnd.Enable(0);
    wnd.Enable(1);
    std::vector<std::string> enables;
    for (const auto& s : record.log)
        if (s.starts_with("OnEnable")) enables.push_back(s);
    EXPECT_EQ((std::vector<std::string>{"OnEnable 0", "OnEnable 1"}), enables);
    wnd.Destroy();
}

TEST_F(CSWndNotify, DefaultOfOnEnableDoesNothing) {
    struct Noting : CSWnd {
        LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
            messages.push_back(uMsg);
            return CSWnd::OnWndMessage(uMsg, wParam, lParam);
        }
        std::vector<UINT> messages;
    };
    Noting wnd;
    ASSERT_EQ(1, wnd.Create(kProbeClass, L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr));
    wnd.messages.clear();
    wnd.OnEnable(0);
    EXPECT_TRUE(::IsWindowEnabled(wnd)) << "it is told of a change and makes none";
    wnd.Enable(0);
    EXPECT_EQ(1, std::count(wnd.messages.begin(), wnd.messages.end(), UINT{WM_ENABLE}));
    EXPECT_FALSE(::IsWindowEnabled(wnd));
    wnd.messages.clear();
    wnd.OnEnable(1);
    EXPECT_FALSE(::IsWindowEnabled(wnd));
    EXPECT_TRUE(wnd.messages.empty());
    wnd.Destroy();
    CSWnd untied;
    untied.OnEnable(1); // also without a window
}

TEST_F(CSWndNotify, SettingChangeReachesObjectsBelowObjects) {
    ProbeRecord recordChild, recordGrand, recordOther, recordBelowPlain, recordStale;
    ProbeWnd wnd(record), child(recordChild), grand(recordGrand), other(recordOther),
        belowPlain(recordBelowPlain), stale(recordStale);
    ASSERT_EQ(1, wnd.Make());
    ASSERT_EQ(1, child.Make(wnd));
    ASSERT_EQ(1, grand.Make(child));
    PlainWnd plain(wnd);
    ASSERT_EQ(1, belowPlain.Make(plain));
    ASSERT_EQ(1, other.Make(wnd));
    ASSERT_EQ(1, stale.Make());
    PlainWnd named(wnd);
    ::SetPropW(named, L"CSWND", static_cast<CSWnd*>(&stale));

    ::SendMessageW(wnd, WM_SETTINGCHANGE, 5, 0);
    std::string expected = "setting 5 0";
    auto nTimes = [&](const ProbeRecord& r) {
        int n = 0;
        for (const auto& s : r.log) n += s == expected;
        return n;
    };
    EXPECT_EQ(1, nTimes(record));
    EXPECT_EQ(1, nTimes(recordChild));
    EXPECT_EQ(1, nTimes(recordGrand));
    EXPECT_EQ(1, nTimes(recordOther));
    EXPECT_EQ(0, nTimes(recordBelowPlain)) << "a child without object cuts off what is below";
    EXPECT_EQ(0, nTimes(recordStale));
    EXPECT_FALSE(recordChild.Saw(WM_SETTINGCHANGE)) << "children are called, not sent";
    ::RemovePropW(named, L"CSWND");
    stale.Destroy();
    wnd.Destroy();
}

TEST_F(CSWndNotify, ChildMayEndItselfInASettingChange) {
    ProbeRecord recordChild;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    auto* pChild = new ProbeWnd(recordChild);
    ASSERT_EQ(1, pChild->Make(wnd));
    pChild->autoDelete = 0;
    pChild->onSetting = [](ProbeWnd& w) { w.Destroy(); };
    ::SendMessageW(wnd, WM_SETTINGCHANGE, 0, 0);
    EXPECT_EQ(1, recordChild.nPostNcDestroys);
    delete pChild;
    wnd.Destroy();
}
} // namespace
