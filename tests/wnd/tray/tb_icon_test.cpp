#include "app/identity/product_info.h"
#include "runtime/system/dll_loader.h"
#include "support/fake_tray.h"
#include "support/test_resource_ids.h"
#include "support/wait_until.h"
#include "wnd/core/company_msg.h"
#include "wnd/tray/tb_icon.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>

namespace {
constexpr const wchar_t* kClass = L"TestTBIcon";
constexpr int kLibraryIcon = -IDI_TEST;

UINT TaskbarCreated() { return ::RegisterWindowMessageW(L"TaskbarCreated"); }

class ProbeIcon : public TBIcon {
  public:
    using TBIcon::Blink;
    using TBIcon::blinkPeriod;
    using TBIcon::blinkPhase;
    using TBIcon::DoBlink;
    using TBIcon::icon;
    using TBIcon::nid;
    using TBIcon::nidBytes;
    using TBIcon::pIconAlternate;
    using TBIcon::SetIcon;
    using TBIcon::shown;
    using TBIcon::timerBalloon;
    using TBIcon::timerBlink;

    int ShouldShowIcon() override { return bShould ? TBIcon::ShouldShowIcon() : 0; }
    int OnMyCompanyMessage(WPARAM wParam, LPARAM lParam, LRESULT* plResult) override {
        log.push_back("company " + std::to_string(wParam) + " " + std::to_string(lParam));
        if (!bHandleCompany) return TBIcon::OnMyCompanyMessage(wParam, lParam, plResult);
        *plResult = 77;
        return 1;
    }
    void OnLeftClick() override { Note("left"); }
    void OnDoubleClick() override { Note("double"); }
    void OnRightClick() override { Note("right"); }
    void OnBaloonShow() override { Note("show"); }
    void OnBaloonHide() override { Note("hide"); }
    void OnBaloonTimeout() override { Note("timeout"); }
    void OnBaloonClick() override { Note("click"); }
    void OnMouseMove() override { Note("move"); }
    void OnCreateWnd() override {
        log.push_back("create");
        TBIcon::OnCreateWnd();
    }
    void OnDestroyWnd() override {
        log.push_back("destroy");
        TBIcon::OnDestroyWnd();
    }

    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

    std::vector<std::string> log;
    int bShould = 1, bHandleCompany = 0;
    std::function<void()> fnInHandler;

  private:
    void Note(const char* psz) {
        log.push_back(psz);
        if (fnInHandler) fnInHandler();
    }
};
using Log = std::vector<std::string>;

void Pump() {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
}

int IsIconAlive(HICON hicon) {
    ICONINFO info{};
    if (!::GetIconInfo(hicon, &info)) return 0;
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
    return 1;
}

class TBIconTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(tray.IsInFront());
        ASSERT_EQ(1, wnd.CreateWnd(kClass));
        wnd.TakeLog();
    }
    void TearDown() override {
        wnd.Destroy();
        Pump();
    }
    void Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) {
        ::SendMessageW(wnd, uMsg, wParam, lParam);
    }
    /// The shell's callback, and what it is turned into.
    void Report(LPARAM lEvent) {
        Send(WM_USER + 1, 1, lEvent);
        Pump();
    }

    FakeTray tray;
    ProbeClass cls{kClass};
    ProbeIcon wnd;
};

TEST(TBIconData, StartsZeroedWithIdAndCallback) {
    ProbeIcon icon;
    EXPECT_EQ(TBIcon::GetDataSize(GetVerDll(L"SHELL32")), icon.nid.cbSize);
    EXPECT_EQ(1u, icon.nid.uID);
    EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE), icon.nid.uFlags);
    EXPECT_EQ(1025u, icon.nid.uCallbackMessage);
    EXPECT_EQ(0, icon.shown);
    EXPECT_EQ(nullptr, icon.pIconAlternate);
    icon.nid.cbSize = 0;
    icon.nid.uID = icon.nid.uFlags = icon.nid.uCallbackMessage = 0;
    for (unsigned char b : icon.nidBytes) EXPECT_EQ(0, b);
    EXPECT_EQ(976u, sizeof(icon.nidBytes));
}

TEST(TBIconData, FieldsStandInTheirOrder) {
    ProbeIcon icon;
    const void* fields[] = {static_cast<CSWnd*>(&icon), &icon.nid,          &icon.shown,
                            &icon.timerBlink,           &icon.timerBalloon, &icon.icon,
                            &icon.pIconAlternate,       &icon.blinkPhase,   &icon.blinkPeriod};
    for (std::size_t i = 1; i < std::size(fields); ++i) EXPECT_LT(fields[i - 1], fields[i]) << i;
    EXPECT_EQ(static_cast<void*>(&icon.nid), static_cast<void*>(icon.nidBytes));
}

/// The place of a virtual operation in the class's table, as this compiler writes it down.
template <class Fn>
std::size_t SlotOf(Fn pfn) {
    std::size_t n = 0;
    std::memcpy(&n, &pfn, sizeof(n));
    return (n - 1) / sizeof(void*);
}

TEST(TBIconData, VirtualOperationsFollowTheBasesInTheirOrder) {
    std::size_t nLastOfBase = SlotOf(&CSWnd::OnSystemSettingChange);
    const std::size_t slots[] = {
        SlotOf(&TBIcon::ShouldShowIcon), SlotOf(&TBIcon::OnMyCompanyMessage),
        SlotOf(&TBIcon::OnLeftClick),    SlotOf(&TBIcon::OnDoubleClick),
        SlotOf(&TBIcon::OnRightClick),   SlotOf(&TBIcon::OnBaloonShow),
        SlotOf(&TBIcon::OnBaloonHide),   SlotOf(&TBIcon::OnBaloonTimeout),
        SlotOf(&TBIcon::OnBaloonClick),  SlotOf(&TBIcon::OnMouseMove),
        SlotOf(&TBIcon::OnCreateWnd),    SlotOf(&TBIcon::OnDestroyWnd)};
    for (std::size_t i = 0; i < std::size(slots); ++i) EXPECT_EQ(nLastOfBase + 1 + i, slots[i]);
    EXPECT_EQ(SlotOf(&CSWnd::OnWndMessage), SlotOf(&TBIcon::OnWndMessage));
}

struct SizeCase {
    unsigned short nVersion;
    DWORD dwSize;
};
class TBIconDataSize : public testing::TestWithParam<SizeCase> {};
TEST_P(TBIconDataSize, FollowsTheShellsVersion) {
    EXPECT_EQ(GetParam().dwSize, TBIcon::GetDataSize(GetParam().nVersion));
}
INSTANTIATE_TEST_SUITE_P(Cases, TBIconDataSize,
                         testing::Values(SizeCase{0, 168}, SizeCase{0x400, 168},
                                         SizeCase{0x4FF, 168}, SizeCase{0x500, 952},
                                         SizeCase{0x532, 952}, SizeCase{0x5FF, 952},
                                         SizeCase{0x600, 952}, SizeCase{0x601, 968},
                                         SizeCase{0x602, 976}, SizeCase{0x603, 976},
                                         SizeCase{0xA00, 976}),
                         [](const auto& row) { return "V" + std::to_string(row.param.nVersion); });

// The window

TEST_F(TBIconTest, WindowIsHiddenAndOnePixelInTheMiddle) {
    EXPECT_EQ(static_cast<HWND>(wnd), wnd.nid.hWnd);
    EXPECT_EQ(L"", TextOf(wnd));
    EXPECT_EQ(nullptr, ::GetWindow(wnd, GW_OWNER));
    EXPECT_FALSE(::IsWindowVisible(wnd));
    EXPECT_EQ(static_cast<DWORD>(WS_POPUP),
              wnd.GetStyle(0) & (WS_POPUP | WS_CHILD | WS_CAPTION | WS_VISIBLE));
    EXPECT_EQ(0u, wnd.GetStyle(1) & (WS_EX_TOOLWINDOW | WS_EX_APPWINDOW | WS_EX_TOPMOST));
    RECT rc{};
    ::GetWindowRect(wnd, &rc);
    EXPECT_EQ(::GetSystemMetrics(SM_CXFULLSCREEN) / 2, rc.left);
    EXPECT_EQ(::GetSystemMetrics(SM_CYFULLSCREEN) / 2, rc.top);
    EXPECT_EQ(1, rc.right - rc.left);
    EXPECT_EQ(1, rc.bottom - rc.top);
    EXPECT_TRUE(tray.calls.empty());
}

TEST_F(TBIconTest, CreateWndGivesZeroWithoutTheClass) {
    ProbeIcon other;
    EXPECT_EQ(0, other.CreateWnd(L"NoSuchClassAtAll"));
    EXPECT_EQ(nullptr, other.nid.hWnd);
}

TEST_F(TBIconTest, TellsOfTheWindowsBeginAndEnd) {
    ProbeIcon other;
    other.CreateWnd(kClass);
    EXPECT_EQ(Log{"create"}, other.TakeLog());
    other.Destroy();
    EXPECT_EQ(Log{"destroy"}, other.TakeLog());
}

TEST_F(TBIconTest, CloseDestroysTheWindow) {
    HWND hwnd = wnd;
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_CLOSE, 0, 0));
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, static_cast<HWND>(wnd));
}

TEST_F(TBIconTest, DestroyWndPostsCloseToTheOwnWindow) {
    HWND hwnd = wnd;
    wnd.DestroyWnd(L"NoSuchClassAtAll");
    EXPECT_TRUE(::IsWindow(hwnd)) << "posted";
    Pump();
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST_F(TBIconTest, DestroyWndWithoutAWindowFindsOneByItsClass) {
    HWND hwnd = wnd;
    ProbeIcon other;
    other.DestroyWnd(L"NoSuchClassAtAll");
    other.DestroyWnd(nullptr);
    Pump();
    EXPECT_TRUE(::IsWindow(hwnd));
    other.DestroyWnd(kClass);
    Pump();
    EXPECT_FALSE(::IsWindow(hwnd));
}

// Showing

TEST_F(TBIconTest, ShowHandsTheDataOver) {
    wnd.SetIcon(kLibraryIcon, 0, 0);
    wnd.SetTip(L"%s %d", L"tip", 7);
    wnd.SetBalloon(L"title", NIIF_WARNING, 3, L"text %d", 8);
    wnd.ShowIcon(1);
    ASSERT_EQ(1u, tray.calls.size());
    const FakeTray::Call& call = tray.calls[0];
    EXPECT_EQ(static_cast<DWORD>(NIM_ADD), call.dwMessage);
    EXPECT_EQ(static_cast<HWND>(wnd), call.hwnd);
    EXPECT_EQ(1u, call.uId);
    EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE | NIF_ICON | NIF_TIP | NIF_INFO), call.uFlags);
    EXPECT_EQ(1025u, call.uCallbackMsg);
    EXPECT_EQ(L"tip 7", call.strTip);
    EXPECT_EQ(L"text 8", call.strInfo);
    EXPECT_EQ(L"title", call.strInfoTitle);
    EXPECT_EQ(3000u, call.uTimeout);
    EXPECT_EQ(static_cast<DWORD>(NIIF_WARNING), call.dwInfoFlags);
    EXPECT_EQ(static_cast<UINT>(::GetSystemMetrics(SM_CXSMICON)), call.cxIcon);
    EXPECT_EQ(1, wnd.IsIconShown());
}

TEST_F(TBIconTest, ShowTwiceAddsOnce) {
    wnd.ShowIcon(1);
    wnd.ShowIcon(1);
    EXPECT_EQ("add", tray.TakeNames());
    wnd.ShowIcon(0);
    wnd.ShowIcon(0);
    EXPECT_EQ("delete", tray.TakeNames());
    EXPECT_EQ(0, wnd.IsIconShown());
    EXPECT_EQ(0u, tray.CountIcons());
}

TEST_F(TBIconTest, ShouldShowIconKeepsItOutButNotIn) {
    wnd.bShould = 0;
    wnd.ShowIcon(1);
    EXPECT_EQ("", tray.TakeNames());
    wnd.bShould = 1;
    wnd.ShowIcon(1);
    wnd.bShould = 0;
    wnd.ShowIcon(0);
    EXPECT_EQ("add delete", tray.TakeNames());
}

TEST_F(TBIconTest, RefusedAddIsNotRepeatedUntilTheNextShow) {
    tray.Refuse(true);
    wnd.ShowIcon(1);
    EXPECT_EQ(0, wnd.IsIconShown());
    wnd.UpdateIcon();
    Pump();
    EXPECT_EQ("add", tray.TakeNames());
    tray.Refuse(false);
    wnd.ShowIcon(1);
    EXPECT_EQ("add", tray.TakeNames());
    EXPECT_EQ(1, wnd.IsIconShown());
}

TEST_F(TBIconTest, RefusedDeleteLeavesItShown) {
    wnd.ShowIcon(1);
    tray.Refuse(true);
    wnd.ShowIcon(0);
    EXPECT_EQ(1, wnd.IsIconShown());
    tray.Refuse(false);
}

TEST_F(TBIconTest, ShowTakesTheWindowFromTheObjectIfTheDataHaveNone) {
    wnd.nid.hWnd = nullptr;
    wnd.ShowIcon(1);
    EXPECT_EQ(static_cast<HWND>(wnd), tray.calls.at(0).hwnd);
}

TEST_F(TBIconTest, ShowKeepsAWindowThatTheDataHave) {
    PlainWnd other;
    wnd.nid.hWnd = other;
    wnd.ShowIcon(1);
    EXPECT_EQ(other, tray.calls.at(0).hwnd);
    wnd.ShowIcon(0);
}

TEST_F(TBIconTest, ShowWithoutAnyWindowIsTriedAllTheSame) {
    ProbeIcon other;
    other.ShowIcon(1);
    EXPECT_EQ("add", tray.TakeNames());
    other.ShowIcon(0);
}

TEST_F(TBIconTest, UpdateModifiesOnlyWhatIsShown) {
    wnd.UpdateIcon();
    EXPECT_EQ("", tray.TakeNames());
    wnd.ShowIcon(1);
    wnd.SetTip(L"new");
    EXPECT_EQ("add", tray.TakeNames()) << "only prepared";
    wnd.UpdateIcon();
    ASSERT_EQ(1u, tray.calls.size());
    EXPECT_EQ(static_cast<DWORD>(NIM_MODIFY), tray.calls[0].dwMessage);
    EXPECT_EQ(L"new", tray.calls[0].strTip);
}

TEST_F(TBIconTest, FocusIsGivenBackToTheArea) {
    int nResult = wnd.SetFocus();
    std::string str = tray.TakeNames();
    if (str.empty()) GTEST_SKIP() << "NIM_SETFOCUS is not handed over on this platform";
    EXPECT_EQ("focus", str);
    EXPECT_EQ(0, nResult) << "the answer of the tray";
}

TEST_F(TBIconTest, EndOfTheWindowTakesTheIconAway) {
    wnd.ShowIcon(1);
    wnd.Destroy();
    EXPECT_EQ("add delete", tray.TakeNames());
    EXPECT_EQ(0, wnd.IsIconShown());
    EXPECT_EQ(0u, tray.CountIcons());
}

TEST_F(TBIconTest, EndOfAWindowWithoutAnIconAsksForNothing) {
    wnd.Destroy();
    EXPECT_EQ("", tray.TakeNames());
}

TEST_F(TBIconTest, DestructorLeavesTheIconIn) {
    {
        auto pOther = std::make_unique<ProbeIcon>();
        pOther->CreateWnd(kClass);
        pOther->ShowIcon(1);
        pOther->Detach();
    }
    EXPECT_EQ("add", tray.TakeNames());
}

TEST_F(TBIconTest, RestartOfTheShellPutsItInAgain) {
    wnd.ShowIcon(1);
    tray.TakeNames();
    tray.Restart(); // and refuses to delete what it does not know
    Send(TaskbarCreated());
    EXPECT_EQ("delete add", tray.TakeNames());
    EXPECT_EQ(1, wnd.IsIconShown());
    EXPECT_EQ(1u, tray.CountIcons());
}

TEST_F(TBIconTest, AnnouncementOfAShellThatStillHasItTakesItOutFirst) {
    wnd.ShowIcon(1);
    tray.TakeNames();
    Send(TaskbarCreated());
    EXPECT_EQ("delete add", tray.TakeNames());
    EXPECT_EQ(1, wnd.IsIconShown());
}

TEST_F(TBIconTest, RestartOfTheShellAsksWhetherToShowIt) {
    wnd.ShowIcon(1);
    tray.TakeNames();
    tray.Restart();
    wnd.bShould = 0;
    Send(TaskbarCreated());
    EXPECT_EQ("delete", tray.TakeNames());
    EXPECT_EQ(0, wnd.IsIconShown());
}

TEST_F(TBIconTest, RestartOfTheShellIsTwoStepsOfTheBlinking) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.ShowIcon(1);
    EXPECT_EQ("add modify", tray.TakeNames());
    Send(TaskbarCreated());
    EXPECT_EQ("delete add modify", tray.TakeNames());
    EXPECT_EQ(1, wnd.blinkPhase);
    tray.Restart();
    Send(TaskbarCreated());
    EXPECT_EQ("delete modify add modify", tray.TakeNames()) << "still shown after the refusal";
    EXPECT_EQ(1, wnd.blinkPhase);
    EXPECT_TRUE(wnd.timerBlink.IsTicking());
}

TEST_F(TBIconTest, RestartOfTheShellShowsAPreparedBalloonAgain) {
    wnd.ShowIcon(1);
    wnd.SetBalloon(L"title", NIIF_INFO, 60, L"text");
    tray.calls.clear();
    tray.Restart();
    Send(TaskbarCreated());
    ASSERT_EQ(2u, tray.calls.size());
    EXPECT_EQ(L"text", tray.calls[1].strInfo);
    EXPECT_TRUE(tray.calls[1].uFlags & NIF_INFO);
    EXPECT_TRUE(wnd.timerBalloon.IsTicking());
}

TEST_F(TBIconTest, RestartOfTheShellShowsWhatWasNotShown) {
    Send(TaskbarCreated());
    EXPECT_EQ("add", tray.TakeNames());
}

TEST_F(TBIconTest, RestartOfTheShellPutsInWhatWasRefused) {
    tray.Refuse(true);
    wnd.ShowIcon(1);
    tray.Refuse(false);
    tray.TakeNames();
    Send(TaskbarCreated());
    EXPECT_EQ("add", tray.TakeNames());
}

// Texts

struct TextCase {
    const char* pszName;
    std::size_t cch;
};
class TBIconTexts : public TBIconTest, public testing::WithParamInterface<TextCase> {};
TEST_P(TBIconTexts, AreCutAtTheirLimits) {
    std::wstring str;
    for (std::size_t i = 0; i < GetParam().cch; ++i)
        str += static_cast<wchar_t>(L'a' + static_cast<int>(i % 26));
    std::fill(std::begin(wnd.nid.szTip), std::end(wnd.nid.szTip), L'x');
    std::fill(std::begin(wnd.nid.szInfo), std::end(wnd.nid.szInfo), L'x');
    std::fill(std::begin(wnd.nid.szInfoTitle), std::end(wnd.nid.szInfoTitle), L'x');
    wnd.SetTip(L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 127), wnd.nid.szTip);
    wnd.SetBalloon(str.c_str(), NIIF_INFO, 1, L"%s", str.c_str());
    EXPECT_EQ(str.substr(0, 255), wnd.nid.szInfo);
    EXPECT_EQ(str.substr(0, 63), wnd.nid.szInfoTitle);
    EXPECT_EQ(1000u, wnd.nid.uTimeout) << "the field between the texts";
}
INSTANTIATE_TEST_SUITE_P(Cases, TBIconTexts,
                         testing::Values(TextCase{"Empty", 0}, TextCase{"One", 1},
                                         TextCase{"TitleFits", 63}, TextCase{"TitleIsCut", 64},
                                         TextCase{"TipFits", 127}, TextCase{"TipIsCut", 128},
                                         TextCase{"InfoFits", 255}, TextCase{"InfoIsCut", 256},
                                         TextCase{"Long", 3000}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(TBIconTest, TitleIsNoFormat) {
    wnd.SetBalloon(L"100%s %n", 0, 0, L"x");
    EXPECT_STREQ(L"100%s %n", wnd.nid.szInfoTitle);
    wnd.SetBalloon(nullptr, 0, 0, L"x");
    EXPECT_STREQ(L"", wnd.nid.szInfoTitle);
}

TEST_F(TBIconTest, EnableSetsAndClearsTheBalloonsFlagAlone) {
    wnd.SetTip(L"x");
    wnd.EnableBaloon(1);
    EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE | NIF_TIP | NIF_INFO), wnd.nid.uFlags);
    wnd.EnableBaloon(0);
    EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE | NIF_TIP), wnd.nid.uFlags);
    EXPECT_EQ("", tray.TakeNames());
}

// Balloons

TEST_F(TBIconTest, HideBalloonWithoutUpdateOnlyClearsTheFields) {
    wnd.ShowIcon(1);
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    tray.TakeNames();
    wnd.HideBalloon(0);
    EXPECT_EQ("", tray.TakeNames());
    EXPECT_STREQ(L"", wnd.nid.szInfo);
    EXPECT_STREQ(L"", wnd.nid.szInfoTitle);
    EXPECT_EQ(0u, wnd.nid.dwInfoFlags);
    EXPECT_EQ(0u, wnd.nid.uTimeout);
    EXPECT_TRUE(wnd.nid.uFlags & NIF_INFO);
}

TEST_F(TBIconTest, HideBalloonWithUpdateTellsTheShellOfWhatIsShown) {
    wnd.HideBalloon(1);
    EXPECT_EQ("", tray.TakeNames());
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    wnd.ShowIcon(1);
    tray.TakeNames();
    wnd.HideBalloon(1);
    ASSERT_EQ(1u, tray.calls.size());
    EXPECT_EQ(static_cast<DWORD>(NIM_MODIFY), tray.calls[0].dwMessage);
    EXPECT_EQ(L"", tray.calls[0].strInfo);
    EXPECT_TRUE(tray.calls[0].uFlags & NIF_INFO);
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
}

TEST_F(TBIconTest, BalloonGoesWhenItsTimeIsUp) {
    wnd.SetBalloon(L"title", NIIF_INFO, 1, L"text");
    wnd.nid.uTimeout = 30;
    wnd.ShowIcon(1);
    EXPECT_TRUE(wnd.timerBalloon.IsTicking());
    EXPECT_EQ(1u, wnd.timerBalloon.GetID());
    EXPECT_EQ("add", tray.TakeNames());
    EXPECT_TRUE(PumpUntil([&] { return !tray.calls.empty(); }));
    EXPECT_EQ(L"", tray.calls[0].strInfo);
    EXPECT_EQ("modify", tray.TakeNames());
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
}

TEST_F(TBIconTest, BalloonsTimeBeginsWithTheIconAndNotWithAnUpdate) {
    wnd.ShowIcon(1);
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    wnd.UpdateIcon();
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
}

TEST_F(TBIconTest, HideBalloonEndsItsTimeWithOrWithoutUpdate) {
    for (int bUpdate : {0, 1}) {
        wnd.SetBalloon(L"title", NIIF_INFO, 60, L"text");
        wnd.ShowIcon(1);
        EXPECT_TRUE(wnd.timerBalloon.IsTicking());
        wnd.HideBalloon(bUpdate);
        EXPECT_FALSE(wnd.timerBalloon.IsTicking());
        wnd.ShowIcon(0); // NIF_INFO is still set
        EXPECT_TRUE(wnd.timerBalloon.IsTicking());
    }
}

TEST_F(TBIconTest, BalloonThatIsNotEnabledHasNoTime) {
    wnd.SetBalloon(L"title", NIIF_INFO, 60, L"text");
    wnd.EnableBaloon(0);
    wnd.ShowIcon(1);
    EXPECT_FALSE(tray.calls.at(0).uFlags & NIF_INFO);
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
    wnd.EnableBaloon(1);
    wnd.UpdateIcon();
    EXPECT_EQ(L"text", tray.calls.at(1).strInfo);
}

TEST_F(TBIconTest, SecondShowBeginsTheBalloonsTimeAnew) {
    wnd.SetBalloon(L"title", NIIF_INFO, 60, L"text");
    wnd.ShowIcon(1);
    wnd.nid.uTimeout = 20;
    wnd.ShowIcon(0);
    wnd.ShowIcon(1);
    EXPECT_EQ(1u, wnd.timerBalloon.GetID());
    EXPECT_TRUE(PumpUntil([&] { return !wnd.timerBalloon.IsTicking(); })) << "not after a minute";
    EXPECT_STREQ(L"", wnd.nid.szInfo);
}

TEST_F(TBIconTest, WithoutABalloonNoTimeBegins) {
    wnd.ShowIcon(1);
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
    EXPECT_FALSE(wnd.timerBlink.IsTicking());
    Send(WM_TIMER, 1);
    EXPECT_EQ("add", tray.TakeNames());
}

TEST_F(TBIconTest, RemovalStartsTheBalloonsTimeToo) {
    wnd.ShowIcon(1);
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    wnd.ShowIcon(0);
    EXPECT_TRUE(wnd.timerBalloon.IsTicking());
}

TEST_F(TBIconTest, RefusedIconStartsTheBalloonsTimeToo) {
    tray.Refuse(true);
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    wnd.ShowIcon(1);
    EXPECT_TRUE(wnd.timerBalloon.IsTicking());
    tray.Refuse(false);
}

// Icons and blinking

TEST_F(TBIconTest, SetIconLoadsByTheSignOfTheId) {
    AppInstance app(::LoadLibraryW(L"shell32.dll"), nullptr);
    wnd.SetIcon(kLibraryIcon, 0, 0);
    EXPECT_TRUE(wnd.icon.IsReady());
    EXPECT_EQ(static_cast<HICON>(wnd.icon), wnd.nid.hIcon);
    EXPECT_TRUE(wnd.nid.uFlags & NIF_ICON);
    int cx = 0, cy = 0;
    wnd.icon.GetSize(cx, cy);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), cy);
    wnd.SetIcon(1, 0, 0);
    EXPECT_TRUE(wnd.icon.IsReady()) << "the application's";
    EXPECT_EQ("", tray.TakeNames());
}

TEST_F(TBIconTest, SetIconDropsTheFormerIcons) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 50);
    HICON hiconOld = wnd.icon, hiconOldAlternate = *wnd.pIconAlternate;
    ASSERT_TRUE(IsIconAlive(hiconOldAlternate));
    EXPECT_NE(hiconOld, hiconOldAlternate);
    EXPECT_EQ(50u, wnd.blinkPeriod);
    EXPECT_EQ(hiconOld, wnd.nid.hIcon);
    wnd.SetIcon(kLibraryIcon, 0, 70);
    EXPECT_FALSE(IsIconAlive(hiconOld));
    EXPECT_FALSE(IsIconAlive(hiconOldAlternate));
    EXPECT_EQ(nullptr, wnd.pIconAlternate);
    EXPECT_EQ(50u, wnd.blinkPeriod) << "the period comes with an alternate icon";
}

TEST_F(TBIconTest, DestructorDestroysBothIcons) {
    HICON hicon, hiconAlternate;
    {
        ProbeIcon other;
        other.SetIcon(kLibraryIcon, kLibraryIcon, 50);
        hicon = other.icon;
        hiconAlternate = *other.pIconAlternate;
    }
    EXPECT_FALSE(IsIconAlive(hicon));
    EXPECT_FALSE(IsIconAlive(hiconAlternate));
}

TEST_F(TBIconTest, DestructorStopsBothTimers) {
    auto pOther = std::make_unique<ProbeIcon>();
    ASSERT_EQ(1, pOther->CreateWnd(kClass));
    pOther->SetBalloon(L"title", NIIF_INFO, 60, L"text");
    pOther->ShowIcon(1);
    pOther->SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    pOther->Blink(1);
    ASSERT_TRUE(pOther->timerBalloon.IsTicking() && pOther->timerBlink.IsTicking());
    HWND hwnd = pOther->Detach();
    pOther.reset();
    EXPECT_FALSE(::KillTimer(hwnd, 1));
    EXPECT_FALSE(::KillTimer(hwnd, 2));
    ::DestroyWindow(hwnd);
}

TEST_F(TBIconTest, AlternateIconIsLoadedLikewise) {
    AppInstance app(::LoadLibraryW(L"shell32.dll"), nullptr);
    wnd.SetIcon(kLibraryIcon, 1, 60000);
    ASSERT_NE(nullptr, wnd.pIconAlternate);
    EXPECT_TRUE(wnd.pIconAlternate->IsReady()) << "the application's";
    int cx = 0, cy = 0;
    wnd.pIconAlternate->GetSize(cx, cy);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), cy);
    EXPECT_EQ(static_cast<HICON>(wnd.icon), wnd.nid.hIcon);
}

TEST_F(TBIconTest, WithoutTheAlternateIconBlinkingEnds) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.ShowIcon(1);
    EXPECT_TRUE(wnd.timerBlink.IsTicking());
    wnd.SetIcon(kLibraryIcon, 0, 0);
    EXPECT_FALSE(wnd.timerBlink.IsTicking());
    EXPECT_EQ(0, wnd.blinkPhase);
}

TEST_F(TBIconTest, ShownWithAnAlternateItBlinks) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 20);
    wnd.SetBalloon(L"title", NIIF_INFO, 5, L"text");
    wnd.ShowIcon(1);
    EXPECT_EQ("add modify", tray.TakeNames());
    EXPECT_EQ(1, wnd.blinkPhase);
    EXPECT_EQ(static_cast<HICON>(*wnd.pIconAlternate), wnd.nid.hIcon);
    EXPECT_EQ(2u, wnd.timerBlink.GetID());
    EXPECT_FALSE(wnd.timerBalloon.IsTicking()) << "blinking comes first";
    EXPECT_TRUE(PumpUntil([&] { return tray.calls.size() >= 2; }));
    EXPECT_EQ(0u, tray.TakeNames().find("modify modify"));
}

TEST_F(TBIconTest, EachStepShowsTheOtherIcon) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.DoBlink();
    EXPECT_EQ(static_cast<HICON>(*wnd.pIconAlternate), wnd.nid.hIcon);
    EXPECT_EQ("", tray.TakeNames()) << "not shown";
    wnd.DoBlink();
    EXPECT_EQ(static_cast<HICON>(wnd.icon), wnd.nid.hIcon);
    EXPECT_EQ(0, wnd.blinkPhase);
}

TEST_F(TBIconTest, BlinkOffLeavesTheNormalIcon) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.ShowIcon(1);
    tray.TakeNames();
    wnd.Blink(0);
    EXPECT_FALSE(wnd.timerBlink.IsTicking());
    EXPECT_EQ(static_cast<HICON>(wnd.icon), wnd.nid.hIcon);
    EXPECT_EQ("modify", tray.TakeNames());
    wnd.Blink(0);
    EXPECT_EQ("", tray.TakeNames()) << "the normal icon shows already";
}

TEST_F(TBIconTest, RemovalStartsTheBlinkToo) {
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.ShowIcon(1);
    wnd.Blink(0);
    tray.TakeNames();
    wnd.ShowIcon(0);
    EXPECT_EQ("delete", tray.TakeNames());
    EXPECT_TRUE(wnd.timerBlink.IsTicking());
    EXPECT_EQ(1, wnd.blinkPhase);
}

TEST_F(TBIconTest, TimerIsABlinkStepWhileBothTimersRun) {
    wnd.SetBalloon(L"title", NIIF_INFO, 60, L"text");
    wnd.ShowIcon(1);
    wnd.SetIcon(kLibraryIcon, kLibraryIcon, 60000);
    wnd.Blink(1);
    ASSERT_TRUE(wnd.timerBalloon.IsTicking());
    ASSERT_TRUE(wnd.timerBlink.IsTicking());
    tray.TakeNames();
    Send(WM_TIMER, 1); // the balloon's own number
    EXPECT_EQ(0, wnd.blinkPhase);
    EXPECT_STREQ(L"text", wnd.nid.szInfo);
    EXPECT_TRUE(wnd.timerBalloon.IsTicking());
    EXPECT_EQ("modify", tray.TakeNames());
    wnd.Blink(0);
    Send(WM_TIMER, 4711);
    EXPECT_STREQ(L"", wnd.nid.szInfo);
    EXPECT_FALSE(wnd.timerBalloon.IsTicking());
}

// Events

struct EventCase {
    const char* pszName;
    LPARAM lReported;
    UINT uPosted;
    const char* pszHandler;
};
class TBIconEvents : public TBIconTest, public testing::WithParamInterface<EventCase> {};
TEST_P(TBIconEvents, AreHandledOutsideTheShellsCall) {
    const EventCase& row = GetParam();
    Send(WM_USER + 1, 1, row.lReported);
    EXPECT_TRUE(wnd.log.empty()) << "not yet";
    MSG msg{};
    ASSERT_TRUE(::PeekMessageW(&msg, wnd, WM_USER, WM_USER + 100, PM_REMOVE));
    EXPECT_EQ(row.uPosted, msg.message);
    EXPECT_EQ(1u, msg.wParam);
    EXPECT_EQ(0, msg.lParam) << "the message itself says what happened";
    ::DispatchMessageW(&msg);
    EXPECT_EQ(Log{row.pszHandler}, wnd.TakeLog());
    EXPECT_FALSE(::PeekMessageW(&msg, wnd, WM_USER, WM_USER + 100, PM_REMOVE));
}
INSTANTIATE_TEST_SUITE_P(Cases, TBIconEvents,
                         testing::Values(EventCase{"LeftUp", 514, 1026, "left"},
                                         EventCase{"Double", 515, 1027, "double"},
                                         EventCase{"RightUp", 517, 1028, "right"},
                                         EventCase{"BalloonShow", 1026, 1029, "show"},
                                         EventCase{"BalloonHide", 1027, 1030, "hide"},
                                         EventCase{"BalloonTimeout", 1028, 1031, "timeout"},
                                         EventCase{"BalloonClick", 1029, 1032, "click"},
                                         EventCase{"Move", 512, 1033, "move"}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(TBIconTest, OtherEventsAreNotHandled) {
    for (LPARAM lEvent : {0, 513, 516, 518, 519, 520, 521, 522, 0x7b, 1024, 1025, 1030, 1033})
        Report(lEvent);
    Report(0x10000 + WM_LBUTTONUP);
    Send(WM_USER + 10); // one past the last
    EXPECT_TRUE(wnd.log.empty());
}

TEST_F(TBIconTest, HandlersDoNothingByThemselves) {
    TBIcon plain;
    ASSERT_EQ(1, plain.CreateWnd(kClass));
    for (UINT uMsg = WM_USER + 2; uMsg <= WM_USER + 9; ++uMsg) ::SendMessageW(plain, uMsg, 1, 0);
    EXPECT_EQ(1, plain.ShouldShowIcon());
    EXPECT_EQ(0, plain.OnMyCompanyMessage(1, 1, nullptr));
    EXPECT_EQ("", tray.TakeNames());
    plain.Destroy();
}

TEST_F(TBIconTest, WhileAHandlerRunsNoOtherIsCalled) {
    ProbeIcon other;
    ASSERT_EQ(1, other.CreateWnd(kClass));
    wnd.fnInHandler = [&] {
        Report(WM_RBUTTONUP);
        ::SendMessageW(other, WM_USER + 2, 1, 0);
    };
    Report(WM_LBUTTONUP);
    EXPECT_EQ(Log{"left"}, wnd.TakeLog());
    EXPECT_EQ(Log{"create"}, other.TakeLog()) << "the guard is one for all icons";
    wnd.fnInHandler = nullptr;
    Report(WM_RBUTTONUP);
    ::SendMessageW(other, WM_USER + 2, 1, 0);
    EXPECT_EQ(Log{"right"}, wnd.TakeLog());
    EXPECT_EQ(Log{"left"}, other.TakeLog());
    other.Destroy();
}

TEST_F(TBIconTest, WhileAHandlerRunsItsPopupComesToTheFront) {
    PlainWnd elsewhere;
    ::ShowWindow(elsewhere, SW_SHOW);
    wnd.fnInHandler = [&] {
        HWND hwndPopup = ::CreateWindowExW(0, L"STATIC", L"popup", WS_POPUP | WS_VISIBLE, 0, 0, 50,
                                           50, wnd, nullptr, nullptr, nullptr);
        ::SetForegroundWindow(hwndPopup);
        ::SetForegroundWindow(elsewhere);
        EXPECT_EQ(elsewhere, ::GetForegroundWindow());
        Report(WM_LBUTTONUP);
        EXPECT_EQ(hwndPopup, ::GetForegroundWindow());
        ::DestroyWindow(hwndPopup);
    };
    Report(WM_RBUTTONUP);
    EXPECT_EQ(Log{"right"}, wnd.TakeLog());
}

TEST_F(TBIconTest, HandlerMayDestroyTheWindow) {
    wnd.ShowIcon(1);
    wnd.fnInHandler = [&] { wnd.Destroy(); };
    Report(WM_LBUTTONUP);
    EXPECT_EQ((Log{"left", "destroy"}), wnd.TakeLog());
    ProbeIcon other;
    ASSERT_EQ(1, other.CreateWnd(kClass));
    ::SendMessageW(other, WM_USER + 2, 1, 0);
    EXPECT_EQ((Log{"create", "left"}), other.TakeLog()) << "the guard is off again";
    other.Destroy();
}

// The company message

TEST_F(TBIconTest, CodeCloseWithTheProductsNumberClosesTheWindow) {
    HWND hwnd = wnd;
    UINT uMsg = GetMyCompanyMsgId();
    LPARAM lId = GetMyProductInfo().GetID();
    for (LPARAM lOther : {LPARAM{0}, lId + 1}) {
        ::SendMessageW(hwnd, uMsg, kCompanyCodeClose, lOther);
        Pump();
        EXPECT_TRUE(::IsWindow(hwnd)) << lOther;
    }
    ::SendMessageW(hwnd, uMsg, kCompanyCodeClose + 1, lId);
    Pump();
    EXPECT_TRUE(::IsWindow(hwnd)) << "another code";
    ::SendMessageW(hwnd, uMsg, kCompanyCodeClose, 0x30000 + lId);
    EXPECT_TRUE(::IsWindow(hwnd)) << "posted";
    Pump();
    EXPECT_FALSE(::IsWindow(hwnd)) << "the number is in the low 16 bits";
}

TEST_F(TBIconTest, CompanyMessageThatIsHandledEndsThere) {
    HWND hwnd = wnd;
    wnd.bHandleCompany = 1;
    EXPECT_EQ(77, ::SendMessageW(hwnd, GetMyCompanyMsgId(), kCompanyCodeClose,
                                 GetMyProductInfo().GetID()));
    Pump();
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(1u, wnd.TakeLog().size());
}

TEST_F(TBIconTest, EverythingButCloseReachesTheHooks) {
    std::vector<UINT> seen;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        seen.push_back(uMsg);
        return 0;
    });
    wnd.AddWndHook(&hook);
    const std::vector<UINT> kMessages{GetMyCompanyMsgId(), TaskbarCreated(), WM_TIMER,
                                      WM_USER + 1,         WM_USER + 2,      WM_USER + 9};
    for (UINT uMsg : kMessages) Send(uMsg);
    EXPECT_EQ(kMessages, seen);
    seen.clear();
    Send(WM_CLOSE);
    for (UINT uMsg : seen) EXPECT_NE(static_cast<UINT>(WM_CLOSE), uMsg);
    EXPECT_FALSE(seen.empty()) << "the window's end did";
}

TEST(TBIconInTheRealArea, GoesInOnceAndOut) {
    ProbeClass cls(kClass);
    ProbeIcon wnd;
    ASSERT_EQ(1, wnd.CreateWnd(kClass));
    wnd.SetIcon(kLibraryIcon, 0, 0);
    wnd.SetTip(L"tip");
    // The taskbar may still be coming up in a fresh environment.
    ASSERT_TRUE(WaitUntil([&] {
        wnd.ShowIcon(1);
        return wnd.IsIconShown() != 0;
    }));
    NOTIFYICONDATAW again = wnd.nid;
    EXPECT_FALSE(::Shell_NotifyIconW(NIM_ADD, &again)) << "it is in";
    EXPECT_TRUE(::Shell_NotifyIconW(NIM_MODIFY, &again));
    wnd.ShowIcon(0);
    EXPECT_EQ(0, wnd.IsIconShown());
    EXPECT_FALSE(::Shell_NotifyIconW(NIM_DELETE, &again)) << "it is out";
    wnd.ShowIcon(1);
    wnd.Destroy();
    EXPECT_FALSE(::Shell_NotifyIconW(NIM_DELETE, &again)) << "gone with the window";
}
} // namespace
