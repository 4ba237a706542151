#include "app/update/update_check.h"
#include "app/fake_clock.h"
#include "app/fake_wininet.h"
#include "app/other_window.h"
#include "app/shell_start_recorder.h"
#include "app/update/update_dlg.h"
#include "app/update/update_state.h"
#include "app/update_process.h"
#include "app/update_store.h"
#include "support/heap_count.h"
#include "support/message_box_driver.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

extern "C" FARPROC __imp_CreateEventW;

namespace {
constexpr DWORD kDay = 86400;
constexpr DWORD kNow = 688'000'001;
constexpr DWORD kDisabled = 0xFFFFFFFF;
constexpr const wchar_t* kEvent = L"Global\\Tessaly_CHECK4UPDATES_EVENT";
constexpr const wchar_t* kRoot = L"Tessaly update test";
/// A time-out of a question to another window, and what a loaded machine may add.
constexpr double kHungSeconds = 1.0 + 3.0;

/// Whether a call is under way anywhere.
bool IsEventThere() {
    HANDLE h = ::OpenEventW(SYNCHRONIZE, FALSE, kEvent);
    if (h) ::CloseHandle(h);
    return h != nullptr;
}

/// The settings, the clock and the shell of a test.
class CheckForUpdatesTest : public testing::Test {
  protected:
    ~CheckForUpdatesTest() override { EXPECT_FALSE(IsEventThere()); }

    /// What stands in the key, and when it was written last.
    struct Content {
        std::map<std::wstring, RegContent> values;
        unsigned long long qwWritten;
        bool operator==(const Content&) const = default;
    };
    Content Stored() { return {store.Values(), store.Setup().LastWrite()}; }
    void ExpectNothingDone(const Content& before) {
        EXPECT_TRUE(before == Stored());
        EXPECT_TRUE(shell.calls.empty());
    }
    static DWORD DueIn(DWORD dwDays) { return AddUpdateJitter(kNow + dwDays * kDay); }

    UpdateStore store;
    FakeClock clock{kNow};
    ShellStartRecorder shell;
};

/// A dialog of another thread that says which number it is, and what it answers when it is asked to
/// come forward.
struct NumberedDialog {
    explicit NumberedDialog(LPARAM nNumber, LRESULT nAnswer = 0, int nNoFirst = 0)
        : window(
              [this, nNumber, nAnswer, nNoFirst](HWND, UINT uMsg, WPARAM wParam,
                                                 LPARAM lParam) -> std::optional<LRESULT> {
                  if (uMsg != GetMyCompanyMsgId() || lParam != nNumber) return std::nullopt;
                  if (wParam == kCompanyCodeIsDialog) return ++nAskedNumber > nNoFirst;
                  if (wParam != kCompanyCodeActivate) return std::nullopt;
                  ++nAskedActivate;
                  return nAnswer;
              },
              OtherWindow::kDialogClass, L"a dialog") {}
    std::atomic<int> nAskedNumber{0}, nAskedActivate{0};
    OtherWindow window;
};

/// A call that is to come back without a dialog of that number. One that it shows all the same is a
/// failure, and cancelled.
template <class Fn>
int ResultWithoutDialog(unsigned short nNumber, Fn fn) {
    std::atomic<int> nResult{-1};
    WindowThread thread;
    thread.Post([&] { nResult = fn(); });
    if (WaitUntil([&] { return nResult >= 0; })) return nResult;
    ADD_FAILURE() << "it does not come back";
    WaitUntil([&] {
        ::PostMessageW(FindUpdateDlg(::GetCurrentProcessId(), nNumber), WM_COMMAND, IDCANCEL, 0);
        return nResult >= 0;
    });
    return -1;
}

int CheckAtOnce() {
    return ResultWithoutDialog(109, [] { return CheckForUpdates(nullptr); });
}

struct MadeEvent {
    BOOL bManual, bSet;
    std::wstring strName;
};
std::vector<MadeEvent> made;
decltype(&::CreateEventW) pfnCreateEvent;
HANDLE WINAPI NoteEvent(SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSet, LPCWSTR pszName) {
    if (pszName) made.push_back({bManual, bSet, pszName});
    return pfnCreateEvent(pSecurity, bManual, bSet, pszName);
}
} // namespace

// The event

TEST_F(CheckForUpdatesTest, MarksItsRunWithANamedEvent) {
    made.clear();
    {
        ReplaceImport replaced(__imp_CreateEventW, &NoteEvent);
        pfnCreateEvent = replaced.Original<decltype(::CreateEventW)>();
        EXPECT_EQ(0, CheckForUpdates(nullptr));
    }
    ASSERT_EQ(1u, made.size());
    EXPECT_EQ(kEvent, made[0].strName);
    EXPECT_FALSE(made[0].bManual);
    EXPECT_FALSE(made[0].bSet);
}

TEST_F(CheckForUpdatesTest, DoesNothingWhileAnotherRuns) {
    store.Plant(2, 4, 1, 1); // long due
    auto before = Stored();
    HANDLE h = ::CreateEventW(nullptr, FALSE, FALSE, kEvent);
    NumberedDialog dialog(109);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    ExpectNothingDone(before);
    EXPECT_EQ(0, dialog.nAskedNumber);
    EXPECT_TRUE(IsEventThere());
    ::CloseHandle(h);
    EXPECT_FALSE(IsEventThere()); // it left none of its own
}

TEST_F(CheckForUpdatesTest, DoesNothingIfTheEventCannotBeMade) {
    store.Plant(2, 4, 1, 1);
    auto before = Stored();
    HANDLE h = ::CreateMutexW(nullptr, FALSE, kEvent);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    ExpectNothingDone(before);
    ::CloseHandle(h);
}

TEST_F(CheckForUpdatesTest, SecondProcessAtTheSameMomentLeaves) {
    store.Plant(2, 4, 1, 0); // the other one asks
    UpdateProcess other(kRoot, {L"check"});
    HWND hwndAsks = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (hwndAsks = FindUpdateDlg(other.Id(), 109)) != nullptr; }));
    EXPECT_TRUE(IsEventThere());
    auto before = Stored();
    EXPECT_EQ(0, CheckAtOnce());
    ExpectNothingDone(before);
    EXPECT_EQ(nullptr, FindUpdateDlg(::GetCurrentProcessId(), 109));
    ::PostMessageW(hwndAsks, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ((std::vector<unsigned long long>{0, 0}), other.Numbers());
    EXPECT_FALSE(IsEventThere());
    ExpectNothingDone(before);
}

// A dialog that is open already

TEST_F(CheckForUpdatesTest, OpenDialogIsBroughtForwardInstead) {
    store.Plant(2, 4, 1, 1);
    auto before = Stored();
    NumberedDialog dialog(109);
    OtherWindow front;
    GiveForeground(front);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_EQ(1, dialog.nAskedActivate);
    EXPECT_TRUE(HasForeground(dialog.window));
    ExpectNothingDone(before);
}

TEST_F(CheckForUpdatesTest, OpenDialogIsSeenBeforeAnythingIsScheduled) {
    auto before = Stored();
    NumberedDialog dialog(109);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    ExpectNothingDone(before);
}

TEST_F(CheckForUpdatesTest, IconicDialogIsRestored) {
    NumberedDialog dialog(109);
    dialog.window.Minimise();
    ASSERT_TRUE(::IsIconic(dialog.window));
    CheckForUpdates(nullptr);
    EXPECT_FALSE(::IsIconic(dialog.window));
    EXPECT_TRUE(HasForeground(dialog.window));
}

TEST_F(CheckForUpdatesTest, LastActivePopupOfTheDialogComesForward) {
    NumberedDialog dialog(109);
    HWND hwndPopup = dialog.window.MakeOwned();
    GiveForeground(hwndPopup);
    OtherWindow front;
    GiveForeground(front);
    CheckForUpdates(nullptr);
    EXPECT_TRUE(HasForeground(hwndPopup));
}

TEST_F(CheckForUpdatesTest, DialogThatCameForwardItselfIsLeftAlone) {
    NumberedDialog dialog(109, kActivateDone);
    dialog.window.Minimise();
    CheckForUpdates(nullptr);
    EXPECT_EQ(1, dialog.nAskedActivate);
    EXPECT_TRUE(::IsIconic(dialog.window));
}

TEST_F(CheckForUpdatesTest, DialogsOfOtherNumbersDoNotHoldIt) {
    store.Plant(2, 4, 1, 1);
    NumberedDialog offer(108), about(370);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_EQ(0, offer.nAskedActivate + about.nAskedActivate);
    EXPECT_EQ(1u, shell.calls.size());
}

TEST_F(CheckForUpdatesTest, DialogOfAnotherProcessIsFoundAmongOthers) {
    store.Plant(2, 4, 1, 1);
    auto before = Stored();
    UpdateProcess asking(kRoot, {L"ask"}), offering(kRoot, {L"offer"});
    HWND hwndAsks = asking.Window(), hwndOffers = offering.Window();
    ASSERT_TRUE(WaitUntil([&] { return FindUpdateDlg(asking.Id(), 109) == hwndAsks; }));
    ASSERT_NE(nullptr, hwndAsks);
    ASSERT_TRUE(WaitUntil([&] { return FindUpdateDlg(offering.Id(), 108) == hwndOffers; }));
    NumberedDialog other(107);
    OtherWindow front;
    GiveForeground(front);
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_TRUE(HasForeground(hwndAsks));
    ExpectNothingDone(before);
    ::ShowWindow(hwndAsks, SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([&] { return ::IsIconic(hwndAsks); }));
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_TRUE(WaitUntil([&] { return !::IsIconic(hwndAsks); }));
    ExpectNothingDone(before);
}

TEST_F(CheckForUpdatesTest, HungDialogHoldsTheSearchNoLongerThanItsTimeOut) {
    store.Plant(2, 4, 1, 1);
    NumberedDialog hung(109);
    hung.window.Hang();
    double dTime = Seconds([&] { EXPECT_EQ(0, CheckForUpdates(nullptr)); });
    EXPECT_LT(dTime, kHungSeconds);
    EXPECT_EQ(1u, shell.calls.size()) << "it went on";
}

TEST_F(CheckForUpdatesTest, HungDialogInFrontDoesNotHideTheOneBehindIt) {
    store.Plant(2, 4, 1, 1);
    NumberedDialog wanted(109), hung(109);
    GiveForeground(hung.window); // the windows have come to rest
    hung.window.Hang();
    double dTime = Seconds([&] { EXPECT_EQ(0, CheckForUpdates(nullptr)); });
    EXPECT_LT(dTime, kHungSeconds);
    EXPECT_EQ(1, wanted.nAskedActivate);
    EXPECT_TRUE(shell.calls.empty());
}

// The schedule

TEST_F(CheckForUpdatesTest, FirstRunOnlySetsTheDate) {
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_EQ(DueIn(7), store.Next());
    EXPECT_EQ(UpdateStore::kMissing, store.Last());
    EXPECT_EQ(1u, store.Frequency());
    EXPECT_EQ(1u, store.Auto());
    EXPECT_EQ(3u, store.Values().size());
    EXPECT_TRUE(shell.calls.empty());
    auto before = Stored();
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    ExpectNothingDone(before);
}

TEST_F(CheckForUpdatesTest, FirstRunMakesTheKey) {
    store.Setup().Delete();
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    store.Setup().Create();
    EXPECT_EQ(DueIn(7), store.Next());
}

TEST_F(CheckForUpdatesTest, FirstRunGoesByTheStoredFrequency) {
    for (auto [dwFrequency, dwDays] : {std::pair<DWORD, DWORD>{0, 1}, {2, 30}, {3, 3650}}) {
        store.Plant(1000, 0, dwFrequency, 0);
        EXPECT_EQ(0, CheckAtOnce());
        EXPECT_EQ(DueIn(dwDays), store.Next()) << dwFrequency;
        EXPECT_EQ(1000u, store.Last());
        EXPECT_EQ(dwFrequency, store.Frequency());
        EXPECT_EQ(0u, store.Auto());
    }
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(CheckForUpdatesTest, FirstForcedRunSetsOneValueADayAhead) {
    UpdateProcess monitor(kRoot, {L"clock=" + std::to_wstring(kNow), L"enforce=112", L"check"});
    EXPECT_EQ((std::vector<unsigned long long>{0, 0}), monitor.Numbers());
    EXPECT_EQ(DueIn(1), store.Next());
    EXPECT_EQ(1u, store.Values().size());
}

TEST_F(CheckForUpdatesTest, DisabledOnesEndAtOnce) {
    for (DWORD dwAuto : {0, 1}) {
        store.Plant(2, kDisabled, 0, dwAuto);
        auto before = Stored();
        EXPECT_EQ(0, CheckAtOnce());
        ExpectNothingDone(before);
    }
    auto before = Stored();
    UpdateProcess monitor(kRoot, {L"enforce=112", L"check"});
    EXPECT_EQ((std::vector<unsigned long long>{0, 0}), monitor.Numbers());
    ExpectNothingDone(before);
}

TEST_F(CheckForUpdatesTest, UsualCallOnlyReads) {
    for (DWORD dwNext : {kNow, kNow + 1, kNow + 21 * kDay, kDisabled - 1}) {
        for (DWORD dwAuto : {0, 1}) {
            store.Plant(2, dwNext, 0, dwAuto);
            auto before = Stored();
            EXPECT_EQ(0, CheckAtOnce());
            ExpectNothingDone(before);
        }
    }
}

TEST_F(CheckForUpdatesTest, ForcedCallBringsAFarDateBackAndKeepsTheStoredOne) {
    store.Plant(2, kNow + 21 * kDay, 3, 0);
    auto before = Stored();
    UpdateProcess monitor(kRoot, {L"clock=" + std::to_wstring(kNow), L"enforce=112", L"check",
                                  L"clock=" + std::to_wstring(kNow + 20 * kDay), L"check",
                                  L"clock=" + std::to_wstring(kNow + 21 * kDay + 1), L"check"});
    EXPECT_EQ((std::vector<unsigned long long>{0, 0}), monitor.Numbers());
    EXPECT_EQ((std::vector<unsigned long long>{0, 0}), monitor.Numbers());
    EXPECT_EQ((std::vector<unsigned long long>{0, 1}), monitor.Numbers()); // due, and unasked
    EXPECT_TRUE(before == Stored());
}

TEST_F(CheckForUpdatesTest, UsualCallLeavesNoMemory) {
    store.Plant(2, kNow + 5, 1, 1);
    CheckForUpdates(nullptr);
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 20; ++n) CheckForUpdates(nullptr);
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

// Due, and automatic

TEST_F(CheckForUpdatesTest, DueCheckIsDoneByTheHost) {
    for (DWORD dwNext : {kNow - 1, DWORD{2}, DWORD{1}}) {
        for (DWORD dwAuto : {1, 5}) {
            store.Plant(2, dwNext, 3, dwAuto);
            auto before = Stored();
            EXPECT_EQ(0, CheckForUpdates(nullptr));
            ASSERT_EQ(1u, shell.calls.size());
            ShellCall call = shell.TakeOne();
            const std::wstring strFile = call.file.str, strEnd = L"\\TSEXE64.exe";
            ASSERT_LT(strEnd.size(), strFile.size());
            EXPECT_EQ(strEnd, strFile.substr(strFile.size() - strEnd.size()));
            EXPECT_EQ(MaybeText(L"/CHECK4UPDATES"), call.parameters);
            EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
            EXPECT_EQ(::GetCurrentThreadId(), call.dwThread);
            EXPECT_TRUE(before == Stored());
        }
    }
}

TEST_F(CheckForUpdatesTest, HostIsStartedForTheWindow) {
    store.Plant(2, 4, 1, 1);
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    CheckForUpdates(window);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
}

TEST_F(CheckForUpdatesTest, EventIsThereUntilTheHostIsStarted) {
    store.Plant(2, 4, 1, 1);
    bool bThere = false;
    shell.fnDuring = [&](SHELLEXECUTEINFOW&) { bThere = IsEventThere(); };
    CheckForUpdates(nullptr);
    shell.fnDuring = nullptr;
    EXPECT_TRUE(bThere);
}

TEST_F(CheckForUpdatesTest, HostThatDoesNotStartChangesNothing) {
    store.Plant(2, 4, 1, 1);
    auto before = Stored();
    shell.bSucceed = FALSE;
    shell.dwError = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ(0, CheckForUpdates(nullptr));
    EXPECT_TRUE(before == Stored());
    shell.calls.clear();
    shell.bSucceed = TRUE;
    EXPECT_EQ(0, CheckForUpdates(nullptr)); // and the next call tries again
    EXPECT_EQ(1u, shell.calls.size());
}

TEST_F(CheckForUpdatesTest, NoNetworkIsTouchedHere) {
    FakeWinInet network("OK");
    for (DWORD dwNext : {DWORD{0}, DWORD{2}, kNow + 5, kDisabled}) {
        store.Plant(2, dwNext, 1, 1);
        CheckForUpdates(nullptr);
    }
    EXPECT_EQ(0, network.nSent);
    store.Plant(2, 4, 1, 1);
    UpdateProcess monitor(kRoot, {L"network", L"enforce=112", L"check", L"network"});
    const auto before = monitor.Numbers();
    EXPECT_EQ((std::vector<unsigned long long>{0, 1}), monitor.Numbers());
    EXPECT_EQ(before, monitor.Numbers()) << "the platform's client was not mapped for it";
}

// Due, and the user wants to be asked

namespace {
/// A due check that asks, on a thread of its own.
class Asked {
  public:
    Asked() : dlg(109, [this] { nResult = CheckForUpdates(nullptr); }) {}
    std::atomic<int> nResult{-1};
    ShownUpdateDlg dlg;
};
} // namespace

TEST_F(CheckForUpdatesTest, AsksWithTheFrequencyAndTheDays) {
    for (DWORD dwFrequency : {0, 1, 2, 3}) {
        store.Plant(kNow - 12 * kDay - 5, 4, dwFrequency, 0);
        Asked asked;
        EXPECT_EQ(static_cast<int>(dwFrequency), asked.dlg.Selection());
        EXPECT_EQ(
            0u, WindowText(asked.dlg.Item(21503)).find(L"Last check for updates was 12 days ago."));
        EXPECT_TRUE(::IsWindowVisible(asked.dlg.Item(21503)));
        EXPECT_TRUE(IsEventThere());
    }
    store.Plant(0, 4, 1, 0);
    Asked asked;
    EXPECT_FALSE(::IsWindowVisible(asked.dlg.Item(21503)));
}

TEST_F(CheckForUpdatesTest, QuestionBelongsToTheWindow) {
    store.Plant(2, 4, 1, 0);
    HWND hwndOwner = nullptr;
    ShownUpdateDlg dlg(109, [&] {
        TestWindow owner({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        hwndOwner = owner;
        CheckForUpdates(owner);
    });
    EXPECT_EQ(hwndOwner, ::GetWindow(dlg, GW_OWNER));
    EXPECT_FALSE(::IsWindowEnabled(hwndOwner));
}

TEST_F(CheckForUpdatesTest, CancelledQuestionSchedulesNothing) {
    store.Plant(1000, 4, 1, 0);
    auto before = Stored();
    for (int n = 0; n < 3; ++n) {
        Asked asked;
        asked.dlg.Select(2);
        asked.dlg.Click(21537);
        asked.dlg.Click(1008);
        if (n == 0) asked.dlg.Click(IDCANCEL);
        if (n == 1) asked.dlg.PressKey(VK_ESCAPE);
        if (n == 2) asked.dlg.PressAltF4();
        EXPECT_TRUE(asked.dlg.HasClosed());
        EXPECT_EQ(0, asked.nResult);
        ExpectNothingDone(before);
    }
}

TEST_F(CheckForUpdatesTest, NoSchedulesByTheDialogsFrequency) {
    for (auto [nFrequency, dwDays] : {std::pair<int, DWORD>{0, 1}, {1, 7}, {2, 30}, {3, 3650}}) {
        for (int bAuto : {0, 1}) {
            store.Plant(1000, 4, 1, 0);
            Asked asked;
            asked.dlg.Select(nFrequency);
            asked.dlg.Click(21537);
            if (bAuto) asked.dlg.Click(1008);
            asked.dlg.Click(IDOK);
            EXPECT_TRUE(asked.dlg.HasClosed());
            EXPECT_EQ(0, asked.nResult);
            EXPECT_EQ(DueIn(dwDays), store.Next());
            EXPECT_EQ(1000u, store.Last());
            EXPECT_EQ(static_cast<DWORD>(nFrequency), store.Frequency());
            EXPECT_EQ(static_cast<DWORD>(bAuto), store.Auto());
        }
    }
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(CheckForUpdatesTest, YesChecksAndLeavesTheScheduleToThat) {
    FakeWinInet network("OK");
    store.Plant(1000, 4, 1, 0);
    Asked asked;
    asked.dlg.Select(3);
    asked.dlg.Click(1008);
    MessageBoxDriver driver({IDOK});
    asked.dlg.Click(IDOK);
    EXPECT_TRUE(asked.dlg.HasClosed());
    auto seen = driver.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(L"No updates are available at this time. You are using the latest version available.",
              seen[0].strText);
    EXPECT_EQ(asked.dlg, seen[0].hwndOwner);
    EXPECT_EQ(0, asked.nResult);
    EXPECT_EQ(1, network.nSent);
    EXPECT_EQ(kNow - 1, store.Last());
    EXPECT_EQ(DueIn(7), store.Next());
    EXPECT_EQ(1u, store.Frequency()); // what was chosen beside a yes is not kept
    EXPECT_EQ(0u, store.Auto());
}

TEST_F(CheckForUpdatesTest, YesToTheUpdateTooIsTold) {
    FakeWinInet network(
        "[dl]\r\nversion=2.0\r\ndescr=Better\r\nurldownload=http://orvanta.example/get\r\n");
    store.Plant(1000, 4, 1, 0);
    Asked asked;
    ::PostMessageW(asked.dlg.Item(IDOK), BM_CLICK, 0, 0);
    const HWND hwndAsks = asked.dlg;
    asked.dlg.WaitFor(108);
    EXPECT_TRUE(::IsWindowVisible(hwndAsks)) << "the question stays on the screen";
    EXPECT_EQ(hwndAsks, ::GetWindow(asked.dlg, GW_OWNER));
    asked.dlg.Select(2);
    asked.dlg.Click(IDOK);
    EXPECT_TRUE(asked.dlg.HasClosed());
    EXPECT_EQ(1, asked.nResult);
    ASSERT_EQ(1u, shell.calls.size());
    EXPECT_EQ(MaybeText(L"http://orvanta.example/get"), shell.calls[0].file);
    EXPECT_EQ(kNow - 1, store.Last());
    EXPECT_EQ(DueIn(30), store.Next());
    EXPECT_EQ(2u, store.Frequency());
}

TEST_F(CheckForUpdatesTest, DialogThatCameUpMeanwhileIsBroughtForwardInsteadOfAsking) {
    store.Plant(1000, 4, 1, 0);
    auto before = Stored();
    NumberedDialog late(109, 0, 1); // says yes when it is asked again
    OtherWindow front;
    GiveForeground(front);
    EXPECT_EQ(0, CheckAtOnce());
    EXPECT_EQ(2, late.nAskedNumber);
    EXPECT_EQ(1, late.nAskedActivate);
    EXPECT_TRUE(HasForeground(late.window));
    ExpectNothingDone(before);
}

// The offer of an update while one is open

TEST_F(CheckForUpdatesTest, OpenOfferOfAnotherProcessIsBroughtForward) {
    FakeWinInet network("[dl]\r\nversion=2.0\r\nurldownload=http://orvanta.example/get\r\n");
    UpdateProcess offering(kRoot, {L"offer"}), asking(kRoot, {L"ask"});
    HWND hwndOffers = offering.Window();
    ASSERT_TRUE(WaitUntil([&] { return FindUpdateDlg(offering.Id(), 108) == hwndOffers; }));
    ASSERT_NE(nullptr, asking.Window());
    for (const wchar_t* pszSwitch : {static_cast<const wchar_t*>(nullptr), L"/CHECK4UPDATES"}) {
        store.Plant(1000, 4, 1, 1);
        OtherWindow front;
        GiveForeground(front);
        int bGet = 0;
        EXPECT_EQ(1, ResultWithoutDialog(
                         108, [&] { return DoCheckForUpdates(nullptr, &bGet, pszSwitch); }));
        EXPECT_TRUE(HasForeground(hwndOffers));
        EXPECT_EQ(0, bGet);
        EXPECT_TRUE(shell.calls.empty());
        EXPECT_EQ(kNow - 1, store.Last());
        EXPECT_EQ(DueIn(7), store.Next());
    }
}

TEST_F(CheckForUpdatesTest, HungOfferDoesNotHoldTheNext) {
    FakeWinInet network("[dl]\r\nversion=2.0\r\n");
    store.Plant(1000, 4, 1, 1);
    NumberedDialog hung(108);
    hung.window.Hang();
    ShownUpdateDlg offer(108, [] { DoCheckForUpdates(nullptr, nullptr, L"/CHECK4UPDATES"); });
    EXPECT_NE(hung.window, offer);
    offer.Click(IDCANCEL);
    EXPECT_TRUE(offer.HasClosed());
    EXPECT_EQ(DueIn(7), store.Next());
}
