#pragma once
#include "icons/agent/desktop_shared_data.h"
#include "icons/displays/restore_on_change.h"
#include "icons/displays_test_support.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_GetTickCount, __imp_GetGUIThreadInfo;

// The watcher in the monitor window that owns it: what comes in is messages, what goes out is
// messages, registry values and calls of the front end. The clock stands still, and the shell's
// thread is about what a test says.

constexpr UINT_PTR kDisplaysTimer = 12;
constexpr UINT kWtsSessionChange = 689;
inline const std::wstring kOne = L"1920x1080+0+0@96";
inline const std::wstring kTwo = L"1920x1080+0+0@96 1280x1024+1920+0@96";
inline const FakeDisplay kSecond{{1920, 0, 3200, 1024}};

inline DWORD dwPassed = 0; // of a clock that stands still by itself
inline DWORD WINAPI StandingClock() { return 0xFFFFFF00 + dwPassed; } // it wraps soon

inline GUITHREADINFO shellState{};
inline DWORD dwAskedThread = 0;
inline BOOL bGuiTold = TRUE;
inline BOOL WINAPI ShellState(DWORD dwThread, GUITHREADINFO* pInfo) {
    EXPECT_EQ(sizeof(GUITHREADINFO), pInfo->cbSize);
    dwAskedThread = dwThread;
    if (bGuiTold) *pInfo = shellState;
    return bGuiTold;
}

inline Layout Moved(Layout layout, std::size_t nAt, POINT pt) {
    layout[nAt].pt = pt;
    return layout;
}

/// On one display at first, with the feature off.
class DisplayWatch : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        dwPassed = 0;
        shellState = {};
        bGuiTold = TRUE;
    }
    void TearDown() override {
        EndRound();
        key.Delete();
        { // without the switch nothing is left for the rounds of other tests
            MyMonitor_Wnd last(frontEnd);
            EXPECT_TRUE(last.CreateHidden(nullptr));
            last.Destroy();
        }
        EngineTest::TearDown();
    }
    /// The window of a round, and its first request for a capture.
    void StartRound() {
        monitor.emplace(frontEnd);
        ASSERT_TRUE(monitor->CreateHidden(nullptr));
        Share(view, *monitor);
        monitor->RequestCapture();
        ClearRequests();
    }
    void EndRound() {
        if (monitor) monitor->Destroy();
        monitor.reset();
    }
    LRESULT Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) {
        return ::SendMessageW(*monitor, uMsg, wParam, lParam);
    }
    void SendCode(WPARAM wCode) { Send(GetTestCompanyMsg(), wCode, 0); }
    void ClearRequests() {
        PumpAll();
        view.spyListView.Clear();
        view.spyView.Clear();
    }
    /// The agent's answer to a request that was posted to that window.
    void Answer(HWND hwndAsked, const Layout& layout) {
        COPYDATASTRUCT data{layout.size(), static_cast<DWORD>(layout.size() * sizeof(IconRecord)),
                            const_cast<IconRecord*>(layout.data())};
        monitor->OnWndMessage(WM_COPYDATA, reinterpret_cast<WPARAM>(hwndAsked),
                              reinterpret_cast<LPARAM>(&data));
    }
    void AnswerList(const Layout& layout) { Answer(view.hwndListView, layout); }
    void AnswerView(const Layout& layout) { Answer(view.wndView, layout); }
    void SetDisplays(bool bTwo) {
        displays.displays = {{{0, 0, 1920, 1080}, true}};
        if (bTwo) displays.displays.push_back(kSecond);
    }
    void Change(bool bTwo) {
        SetDisplays(bTwo);
        Send(WM_DISPLAYCHANGE, 32, MAKELPARAM(1920, 1080));
    }
    void Tick(DWORD nMs) {
        dwPassed += nMs;
        Send(WM_TIMER, kDisplaysTimer, 0);
    }
    bool IsTicking() { return RunningTimers::IsRunning(*monitor, kDisplaysTimer); }
    int CompareRequests() {
        PumpAll();
        return view.spyView.CountOfCode(kCodeCapture);
    }
    int Requests() {
        PumpAll();
        return view.spyListView.CountOfCode(kCodeCapture);
    }
    /// What was sent to the list view last as a restore.
    std::optional<Layout> Restored() {
        std::vector<Layout> all = std::exchange(restores, {});
        EXPECT_LE(all.size(), 1u);
        return all.empty() ? std::nullopt : std::optional(all.back());
    }
    void ExpectRestored(const Layout& layout) {
        std::optional<Layout> sent = Restored();
        ASSERT_TRUE(sent.has_value());
        ASSERT_EQ(layout.size(), sent->size());
        EXPECT_EQ(0, memcmp(layout.data(), sent->data(), layout.size() * sizeof(IconRecord)));
    }
    void ExpectKept(const std::wstring& strText, const Layout& layout) {
        EXPECT_EQ(MakeSnapshotValue(layout), key.LayoutOf(strText));
    }
    /// On, under one display, with that layout known.
    void StartKnown(const Layout& layout) {
        key.TurnOn();
        StartRound();
        AnswerList(layout);
        ExpectKept(kOne, layout);
    }
    /// Changes to two displays and back, up to the request to compare.
    void ChangeAndSettle() {
        Change(true);
        Change(false);
        Tick(2000);
        EXPECT_EQ(1, CompareRequests());
        ClearRequests();
    }
    /// The same, where every icon has another place by then; up to the restore, if there is one.
    void ComeToKnownWithAllElsewhere(const Layout& known) {
        StartKnown(known);
        ChangeAndSettle();
        Layout present = known;
        for (IconRecord& record : present) record.pt = {40, 40};
        AnswerView(present);
        Tick(10);
    }
    int OnTheList(UINT uMsg, LPARAM lParam) {
        if (uMsg != WM_COPYDATA) return 0;
        auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        auto* pFirst = static_cast<const IconRecord*>(pData->lpData);
        EXPECT_EQ(pData->dwData * sizeof(IconRecord), pData->cbData);
        restores.push_back({pFirst, pFirst + pData->dwData});
        if (fnAtRestore) fnAtRestore();
        return 1;
    }

    ReplaceImport clock{__imp_GetTickCount, &StandingClock};
    ReplaceImport gui{__imp_GetGUIThreadInfo, &ShellState};
    FakeDisplays displays;
    DisplaysKey key;
    TestView view;
    std::vector<Layout> restores;
    std::function<void()> fnAtRestore;
    FakeFrontEnd frontEnd;
    std::optional<MyMonitor_Wnd> monitor;

    DisplayWatch() {
        view.spyListView.handler = [this](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
            return OnTheList(uMsg, lParam);
        };
    }
};

inline const Layout kThree = MakeLayout(3);
inline const Layout kShuffled = Moved(kThree, 1, {500, 500});
