// Which layouts the watcher keeps and for which displays, and from round to round.
#include "icons/displays/display_watcher_test_support.h"
#include "icons/monitor/command_message.h"
#include "icons/snapshots/snapshot_time.h"

#include <wtsapi32.h>
#include <cwchar>

extern "C" FARPROC __imp_RegSetValueExW;

namespace {
constexpr unsigned __int64 kOld = 0x01DB000000000000;

// Off

TEST_F(DisplayWatch, DoesNothingUnlessItIsTurnedOn) {
    StartRound();
    AnswerList(kThree);
    Change(true);
    Change(false);
    Send(kWtsSessionChange, WTS_CONSOLE_CONNECT, 1);
    EXPECT_EQ(1, Requests());
    EXPECT_FALSE(IsTicking());
    Tick(5000);
    AnswerList(kShuffled);
    AnswerView(kThree); // one of many
    SendCode(376);
    EXPECT_EQ(1, Requests());
    EXPECT_EQ(0, CompareRequests());
    EXPECT_EQ(0, displays.nAsked);
    EXPECT_EQ(3u, ReadStoredSnapshots().size());
    EXPECT_FALSE(key.Exists());
    EXPECT_TRUE(frontEnd.calls.empty());
    EXPECT_FALSE(Restored());
}

TEST_F(DisplayWatch, AsksForACaptureWhenItIsTurnedOn) {
    StartRound();
    SetRestoreOnChange(1);
    EXPECT_EQ(0, CompareRequests()); // the message has come
    EXPECT_EQ(1, Requests());
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, StopsWhenItIsTurnedOff) {
    StartKnown(kThree);
    Change(true);
    EXPECT_TRUE(IsTicking());
    SetRestoreOnChange(0);
    EXPECT_EQ(0, Requests());
    EXPECT_FALSE(IsTicking());
    Tick(2000);
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    Change(false);
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, BelievesTheValueWhateverTheMessageSays) {
    key.TurnOn();
    StartRound();
    SendCode(376);
    SendCode(376);
    EXPECT_EQ(2, Requests());
    Change(true);
    SendCode(376); // settles on
    EXPECT_TRUE(IsTicking());
    Send(GetTestCompanyMsg(), 376, 77);
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, StoresNoAnswerOfItsOwnThatComesAfterItIsTurnedOff) {
    StartKnown(kThree);
    ChangeAndSettle();
    SetRestoreOnChange(0);
    EXPECT_EQ(0, Requests()); // the message has come
    AnswerView(kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    SetRestoreOnChange(1);
    EXPECT_EQ(1, Requests());
    monitor->NoteRestore();
    EXPECT_EQ(1, CompareRequests());
    ClearRequests();
    SetRestoreOnChange(0);
    EXPECT_EQ(0, Requests());
    AnswerView(kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    AnswerView(kShuffled); // once more, as the shell looked at the request twice
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    ExpectKept(kOne, kThree);
}

// Keeping

TEST_F(DisplayWatch, KeepsWhatIsCapturedUnderThePresentDisplays) {
    StartKnown(kThree);
    monitor->RequestCapture();
    AnswerList(kShuffled);
    ExpectKept(kOne, kShuffled);
    AnswerList(kThree); // asked for by somebody else
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, key.Dump().subkeys.size());
    EXPECT_EQ(3u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, KeepsACaptureThatTheSnapshotsHaveAlready) {
    StartKnown(kThree);
    key.Plant(kOne, kShuffled);
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

decltype(&::RegSetValueExW) pfnPlatformsSet = nullptr;
/// A registry that takes no snapshots, known by the length of their names.
LSTATUS WINAPI SetNoSnapshot(HKEY hkey, LPCWSTR pszName, DWORD dwReserved, DWORD dwType,
                             const BYTE* pData, DWORD cb) {
    if (pszName && std::wcslen(pszName) == kSnapshotNameLength) return ERROR_ACCESS_DENIED;
    return pfnPlatformsSet(hkey, pszName, dwReserved, dwType, pData, cb);
}

TEST_F(DisplayWatch, KeepsNoCaptureThatCouldNotBeStoredButComparesWithIt) {
    StartKnown(kThree);
    pfnPlatformsSet =
        reinterpret_cast<decltype(pfnPlatformsSet)>(reinterpret_cast<void*>(__imp_RegSetValueExW));
    ReplaceImport refused(__imp_RegSetValueExW, &SetNoSnapshot);
    AnswerList(kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    ExpectKept(kOne, kThree);
    ChangeAndSettle();
    AnswerList(kShuffled);
    EXPECT_TRUE(IsTicking());
    Tick(10);
    ExpectRestored(kThree);
}

TEST_F(DisplayWatch, KeepsNothingWhileTheShellSettles) {
    StartKnown(kThree);
    Change(true);
    monitor->RequestCapture();
    AnswerList(kShuffled);
    EXPECT_EQ(2u, ReadStoredSnapshots().size()); // as ever
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    ExpectKept(kOne, kThree);
    ClearRequests();
    Tick(2000);
    EXPECT_EQ(0, CompareRequests()); // unknown
    EXPECT_EQ(0, Requests());
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, KeepsWhatTheUserHasHadPutBackAndStoresNoSnapshotOfIt) {
    StartKnown(kThree);
    monitor->NoteRestore();
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    ExpectKept(kOne, kShuffled);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    EXPECT_FALSE(IsTicking());
    AnswerView(Moved(kThree, 2, {900, 100})); // once more, as the shell looked at the request twice
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    ExpectKept(kOne, kShuffled);
    AnswerList(kShuffled);
    EXPECT_EQ(2u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, KeepsOnlyWhatACommandHasPutBack) {
    StartKnown(kThree);
    unsigned __int64 qwTime = ParseSnapshotName(ReadStoredSnapshots().begin()->first.c_str());
    CommandMessage message{CommandCode::Restore, 0, qwTime};
    COPYDATASTRUCT data{kCommandData, sizeof(message), &message};
    LONG_PTR dwStyle = ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE);
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle | LVS_AUTOARRANGE);
    EXPECT_EQ(static_cast<LRESULT>(CommandResult::AutoArranged),
              Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    EXPECT_EQ(0, CompareRequests());
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle);
    EXPECT_EQ(static_cast<LRESULT>(CommandResult::Done),
              Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    EXPECT_EQ(1, CompareRequests());
    ExpectRestored(kThree);
}

TEST_F(DisplayWatch, AsksForNothingAfterARestoreWhileItIsOffOrTheShellSettles) {
    StartRound();
    monitor->NoteRestore();
    EXPECT_EQ(0, CompareRequests());
    EndRound();
    StartKnown(kThree);
    Change(false);
    monitor->NoteRestore();
    EXPECT_EQ(0, CompareRequests());
}

TEST_F(DisplayWatch, DropsWhatWasPutBackUnderOtherDisplays) {
    StartKnown(kThree);
    monitor->NoteRestore();
    SetDisplays(true); // of which no message has come
    AnswerView(kShuffled);
    ExpectKept(kOne, kThree);
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, DropsWhatWasPutBackIfTheDisplaysChangeBeforeTheAnswer) {
    StartKnown(kThree);
    monitor->NoteRestore();
    Change(false);
    AnswerView(kShuffled);
    ExpectKept(kOne, kThree);
    Tick(2000);
    AnswerView(kThree); // the one to compare with
    ExpectKept(kOne, kThree);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(DisplayWatch, DropsACaptureThatWasAskedForUnderOtherDisplays) {
    StartKnown(kThree);
    monitor->RequestCapture();
    Change(true);
    Tick(2000);
    AnswerList(kThree); // the shell hung
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    monitor->RequestCapture();
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
    ExpectKept(kOne, kThree);
}

TEST_F(DisplayWatch, TakesOtherDisplaysForAChangeThoughNoMessageCame) {
    StartKnown(kThree);
    SetDisplays(true);
    AnswerList(kShuffled);
    EXPECT_TRUE(IsTicking());
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    ExpectKept(kOne, kThree);
    Tick(2000);
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
}

TEST_F(DisplayWatch, KeepsNothingWhileNoDisplayIsThere) {
    StartKnown(kThree);
    displays.displays.clear();
    Send(WM_DISPLAYCHANGE);
    Tick(2000);
    AnswerList(kShuffled);
    EXPECT_FALSE(IsTicking()); // no wake-ups meanwhile
    SetDisplays(false);
    AnswerList(kShuffled);
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    ExpectKept(kOne, kThree);
}

unsigned __int64 NumberOf(const RegContent& content) {
    unsigned __int64 qw = 0;
    if (content.bytes.size() == sizeof(qw)) memcpy(&qw, content.bytes.data(), sizeof(qw));
    return qw;
}

TEST_F(DisplayWatch, NotesTheUseOfASetupThatBecomesThePresentOne) {
    key.Plant(kOne, kThree, kOld);
    key.Plant(kTwo, kThree, kOld);
    key.TurnOn();
    StartRound();
    EXPECT_EQ(kOld, NumberOf(key.ValueOf(kOne, L"Used")));
    AnswerList(kThree); // the first of this life
    unsigned __int64 qwFirst = NumberOf(key.ValueOf(kOne, L"Used"));
    EXPECT_LT(kOld, qwFirst);
    AnswerList(kThree);
    EXPECT_EQ(qwFirst, NumberOf(key.ValueOf(kOne, L"Used")));
    Change(true);
    EXPECT_EQ(kOld, NumberOf(key.ValueOf(kTwo, L"Used")));
    Tick(2000);
    EXPECT_LT(kOld, NumberOf(key.ValueOf(kTwo, L"Used")));
}

// The start

TEST_F(DisplayWatch, SettlesAtTheStartIfOtherDisplaysWereThereWhenItRanLast) {
    key.Plant(kOne, kThree, kOld);
    key.Plant(kTwo, kShuffled, kOld + 1);
    key.TurnOn();
    for (int n = 0; n < 2; ++n) { // the first one ends within it
        StartRound();
        EXPECT_TRUE(IsTicking());
        AnswerList(kShuffled); // what the system has made of it
        EXPECT_EQ(1u, ReadStoredSnapshots().size());
        ExpectKept(kOne, kThree);
        EXPECT_EQ(kOld, NumberOf(key.ValueOf(kOne, L"Used")));
        if (n == 0) EndRound();
    }
    ClearRequests();
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    EXPECT_LT(kOld + 1, NumberOf(key.ValueOf(kOne, L"Used")));
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
    EXPECT_EQ(1u, frontEnd.putBacks.size());
    EndRound();
    StartRound();
    EXPECT_FALSE(IsTicking());
}

struct StartCase {
    const char* pszName;
    void (*pfnPlant)(const DisplaysKey& key);
};
class DisplayStart : public DisplayWatch, public testing::WithParamInterface<StartCase> {};

TEST_P(DisplayStart, LearnsWhatLiesThere) {
    key.TurnOn();
    GetParam().pfnPlant(key);
    StartRound();
    EXPECT_FALSE(IsTicking());
    AnswerList(kThree);
    ExpectKept(kOne, kThree);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DisplayStart,
    testing::Values(
        StartCase{"NothingKnown", [](const DisplaysKey&) {}},
        StartCase{"OnlyThese", [](const DisplaysKey& key) { key.Plant(kOne, kShuffled); }},
        StartCase{"TheseUsedLast",
                  [](const DisplaysKey& key) {
                      key.Plant(kOne, kShuffled, kOld + 1);
                      key.Plant(kTwo, kShuffled, kOld);
                  }},
        StartCase{"UsedAtOnce",
                  [](const DisplaysKey& key) {
                      key.Plant(kOne, kShuffled, kOld);
                      key.Plant(kTwo, kShuffled, kOld);
                  }},
        StartCase{"TheseUnknown", [](const DisplaysKey& key) { key.Plant(kTwo, kShuffled, kOld); }},
        StartCase{"TheseDamaged",
                  [](const DisplaysKey& key) {
                      key.Plant(kOne, kShuffled, kOld);
                      key.Put(L"Layout", REG_BINARY, {1, 2, 3}, DisplaysKey::NameOfText(kOne));
                      key.Plant(kTwo, kShuffled, kOld + 1);
                  }}),
    [](const auto& row) { return std::string(row.param.pszName); });

// Rounds

TEST_F(DisplayWatch, SettlesInTheNextRoundIfTheLastOneEndedWithinAChange) {
    StartKnown(kThree);
    Change(false);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
    AnswerList(kShuffled); // of a shell that has just come up
    ExpectKept(kOne, kThree);
    Tick(2000);
    EXPECT_EQ(1, CompareRequests());
    AnswerView(kShuffled);
    EndRound(); // within it again
    StartRound();
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    AnswerView(kShuffled);
    Tick(10);
    ExpectRestored(kThree);
    EndRound();
    StartRound();
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, SettlesInTheNextRoundIfTheDisplaysHaveChangedBetween) {
    StartKnown(kThree);
    EndRound();
    SetDisplays(true);
    StartRound();
    EXPECT_TRUE(IsTicking());
    Tick(2000);
    EXPECT_EQ(0, CompareRequests());
    EXPECT_TRUE(key.LayoutOf(kTwo).empty());
    AnswerList(kShuffled);
    ExpectKept(kTwo, kShuffled);
}

TEST_F(DisplayWatch, SettlesNotInARoundAfterOneThatWasCalmOrOff) {
    StartKnown(kThree);
    EndRound();
    StartRound();
    EXPECT_FALSE(IsTicking());
    Change(true);
    EndRound();
    key.TurnOn(0);
    StartRound();
    EndRound();
    key.TurnOn();
    StartRound();
    EXPECT_FALSE(IsTicking());
}

TEST_F(DisplayWatch, ShellThatHasGoneLeavesItToTheNextRound) {
    StartKnown(kThree);
    ChangeAndSettle();
    AnswerView(kShuffled);
    HWND hwndListView = std::exchange(GetDesktopSharedData().hwndListView, nullptr);
    Tick(10);
    EXPECT_FALSE(IsTicking());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    GetDesktopSharedData().hwndListView = hwndListView;
    EndRound();
    StartRound();
    ASSERT_TRUE(IsTicking());
    Tick(2000);
    AnswerView(kShuffled);
    fnAtRestore = [&] { GetDesktopSharedData().hwndView = nullptr; }; // in the middle of it
    Tick(10);
    EXPECT_TRUE(Restored());
    EXPECT_TRUE(frontEnd.putBacks.empty());
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
}

TEST_F(DisplayWatch, WaitsForTheNextRoundWhereTheShellHasGone) {
    StartKnown(kThree);
    Change(false);
    HWND hwndView = std::exchange(GetDesktopSharedData().hwndView, nullptr);
    Tick(2000);
    EXPECT_FALSE(IsTicking());
    GetDesktopSharedData().hwndView = hwndView;
    EXPECT_EQ(0, CompareRequests());
    AnswerList(kShuffled);
    ExpectKept(kOne, kThree);
    EndRound();
    StartRound();
    EXPECT_TRUE(IsTicking());
}
} // namespace
