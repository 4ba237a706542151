#include "icons/commands/snapshot_step.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/command_turn.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/command_result.h"
#include "support/no_memory.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <optional>
#include <thread>
#include <vector>

namespace {
constexpr unsigned __int64 kOld = 0x01CAC36B51D3C400; // a day of 2010

class SnapshotStepTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp(); // which takes the key away
        raw.Create();
    }
    void TearDown() override {
        Do(SnapshotStep::End);
        EngineTest::TearDown();
    }
    static CommandResult Do(SnapshotStep step, unsigned __int64 qwTime = 0, int bQuiet = 1) {
        SnapshotWork work{};
        work.step = step;
        work.qwTime = qwTime;
        work.bQuiet = bQuiet;
        return static_cast<CommandResult>(DoSnapshotStep(&work));
    }
    static CommandResult Import(unsigned __int64 qwTime, Layout layout) {
        SnapshotWork work{};
        work.step = SnapshotStep::Import;
        work.qwTime = qwTime;
        work.pRecords = layout.data();
        work.nRecords = static_cast<unsigned>(layout.size());
        return static_cast<CommandResult>(DoSnapshotStep(&work));
    }
    void ExpectNothingLeftIn(DesktopThread& desktop) {
        EXPECT_EQ(nullptr, ::GetPropW(desktop.GetListView(), L"CSWND"));
        EXPECT_EQ(nullptr, ::GetPropW(desktop.GetView(), L"CSWND"));
        EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
        EXPECT_EQ(nullptr, GetDesktopSharedData().hwndMonitor);
        EXPECT_EQ(nullptr, MyMonitor_Wnd::GetCurrent());
        EXPECT_EQ(nullptr, ::FindWindowW(kMonitorClass, nullptr));
        EXPECT_FALSE(HasInstanceMark(0, GetMyProductInfo().GetName()));
    }

    SnapshotKey raw;
};

/// A window of the monitor's class on a thread of its own, with an answer to commands.
class OtherMonitor {
  public:
    explicit OtherMonitor(LRESULT nAnswerToAll) {
        nAnswer = nAnswerToAll;
        thread.Run([this] {
            WNDCLASSW wc{};
            wc.lpfnWndProc = &Proc;
            wc.lpszClassName = kMonitorClass;
            wc.hInstance = ::GetModuleHandleW(nullptr);
            ::RegisterClassW(&wc);
            hwnd = ::CreateWindowExW(0, kMonitorClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                     wc.hInstance, nullptr);
        });
    }
    ~OtherMonitor() {
        thread.Run([this] {
            ::DestroyWindow(hwnd);
            ::UnregisterClassW(kMonitorClass, ::GetModuleHandleW(nullptr));
        });
    }
    OtherMonitor(const OtherMonitor&) = delete;
    OtherMonitor& operator=(const OtherMonitor&) = delete;

    static constexpr LRESULT kGone = -77; // its window goes instead of answering

  private:
    static LRESULT CALLBACK Proc(HWND hwndOwn, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != WM_COPYDATA) return ::DefWindowProcW(hwndOwn, uMsg, wParam, lParam);
        if (nAnswer != kGone) return nAnswer;
        ::DestroyWindow(hwndOwn);
        return 0;
    }
    static inline LRESULT nAnswer;
    HWND hwnd = nullptr;
    WindowThread thread;
};

TEST_F(SnapshotStepTest, NoWorkIsRefused) {
    EXPECT_EQ(static_cast<int>(CommandResult::NoSnapshot), DoSnapshotStep(nullptr));
}

TEST_F(SnapshotStepTest, ListsWithAnyRoom) {
    RegBytes bytes = MakeSnapshotValue(MakeLayout(2));
    bytes[0] ^= 1;
    raw.Plant(kOld, MakeLayout(3));
    raw.Put(NameOf(kOld + 1), REG_BINARY, bytes);
    raw.Plant(1ull << 63, MakeLayout(1)); // no date
    raw.PutStr(L"", NameOf(kOld));
    for (unsigned nRoom : {0u, 1u, 2u, 5u}) {
        std::vector<SnapshotEntry> entries(nRoom);
        SnapshotWork work{};
        work.step = SnapshotStep::List;
        work.pEntries = nRoom ? entries.data() : nullptr;
        work.nEntries = nRoom;
        EXPECT_EQ(static_cast<int>(CommandResult::Done), DoSnapshotStep(&work));
        EXPECT_EQ(2u, work.nEntries);
        EXPECT_EQ(3u, work.nStored);
        for (unsigned n = 0; n < std::min(nRoom, 2u); ++n) {
            bool bFirst = entries[n].qwTime == kOld;
            EXPECT_EQ(bFirst ? 3u : 2u, entries[n].nIcons);
            EXPECT_EQ(bFirst, entries[n].bIntact != 0);
            EXPECT_EQ(bFirst, entries[n].bRestoredLast != 0);
        }
    }
}

TEST_F(SnapshotStepTest, LoadsIntoEnoughRoomAlone) {
    Layout layout = MakeLayout(3), read(3);
    raw.Plant(kOld, layout);
    SnapshotWork work{};
    work.step = SnapshotStep::Load;
    work.qwTime = kOld;
    work.pRecords = read.data();
    work.nRecords = 2;
    EXPECT_EQ(static_cast<int>(CommandResult::NoMemory), DoSnapshotStep(&work));
    EXPECT_EQ(3u, work.nRecords);
    EXPECT_EQ(static_cast<int>(CommandResult::Done), DoSnapshotStep(&work));
    EXPECT_TRUE(SameRecord(layout[2], read[2]));
    work.qwTime = kOld + 1;
    EXPECT_EQ(static_cast<int>(CommandResult::NoSnapshot), DoSnapshotStep(&work));
}

TEST_F(SnapshotStepTest, LackOfMemoryIsToldAndChangesNothing) {
    raw.Plant(kOld, MakeLayout(3));
    Layout layout = MakeLayout(3);
    SnapshotWork load{}, import{};
    load.step = SnapshotStep::Load;
    load.qwTime = kOld;
    import.step = SnapshotStep::Import;
    import.qwTime = kOld + 1;
    load.pRecords = import.pRecords = layout.data();
    load.nRecords = import.nRecords = 3;
    int nLoaded = 0, nImported = 0;
    {
        NoMemory none;
        nLoaded = DoSnapshotStep(&load);
        nImported = DoSnapshotStep(&import);
    }
    EXPECT_EQ(static_cast<int>(CommandResult::NoMemory), nLoaded);
    EXPECT_EQ(static_cast<int>(CommandResult::NotWritten), nImported);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(SnapshotStepTest, WithoutAMonitorCapturesAndLeavesNothingBehind) {
    DesktopThread desktop({{L"one", {10, 20}}, {L"two", {30, 40}}});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::Remember));
    ExpectNothingLeftIn(desktop);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
    EXPECT_EQ(CommandResult::Unchanged, Do(SnapshotStep::Remember));
    ExpectNothingLeftIn(desktop);
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(SnapshotStepTest, WithoutAMonitorRestoresAndLeavesNothingBehind) {
    DesktopThread desktop({{L"one", {10, 20}}, {L"two", {30, 40}}});
    raw.Plant(kOld, {RecordOf(0, L"two", {300, 200})});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::Restore, kOld));
    ExpectNothingLeftIn(desktop);
    POINT pt{};
    desktop.Run([&] { pt = PosOfIcon(desktop.GetListView(), 1); });
    EXPECT_EQ(300, pt.x);
    EXPECT_EQ(200, pt.y);
    EXPECT_EQ(CommandResult::NoSnapshot, Do(SnapshotStep::Restore, kOld + 1));
    ExpectNothingLeftIn(desktop);
}

TEST_F(SnapshotStepTest, DesktopThatIsNotThereOrHasNoIconsIsTold) {
    {
        DesktopThread desktop({});
        EXPECT_EQ(CommandResult::NoIcons, Do(SnapshotStep::Remember));
        ExpectNothingLeftIn(desktop);
    }
    raw.Plant(kOld, MakeLayout(1));
    if (::FindWindowW(L"Progman", nullptr)) GTEST_SKIP() << "another desktop is there";
    EXPECT_EQ(CommandResult::NoDesktop, Do(SnapshotStep::Remember));
    EXPECT_EQ(CommandResult::NoDesktop, Do(SnapshotStep::Restore, kOld));
}

TEST_F(SnapshotStepTest, ArrangedDesktopIsLeftAloneWhenNobodyMayBeAsked) {
    DesktopThread desktop({{L"one", {10, 20}}});
    ::SetWindowLongPtrW(desktop.GetListView(), GWL_STYLE,
                        ::GetWindowLongPtrW(desktop.GetListView(), GWL_STYLE) | LVS_AUTOARRANGE);
    raw.Plant(kOld, {RecordOf(0, L"one", {300, 200})});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    EXPECT_EQ(CommandResult::AutoArranged, Do(SnapshotStep::Restore, kOld));
    ExpectNothingLeftIn(desktop);
}

TEST_F(SnapshotStepTest, WorksOnTheStoreWithoutAMonitor) {
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    EXPECT_EQ(CommandResult::Done, Import(kOld, MakeLayout(2)));
    EXPECT_EQ(CommandResult::IsThere, Import(kOld, MakeLayout(2)));
    EXPECT_EQ(CommandResult::Damaged, Import(kOld + 1, {}));
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::Delete, kOld));
    EXPECT_EQ(CommandResult::NoSnapshot, Do(SnapshotStep::Delete, kOld));
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::DeleteAll));
    raw.Delete();
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::DeleteAll));
    EXPECT_EQ(CommandResult::NoSnapshot, Do(SnapshotStep::Delete, kOld));
    RegKey key;
    EXPECT_FALSE(OpenSnapshotKey(key, 0)); // none was made
}

TEST_F(SnapshotStepTest, AnswersOfWindowsThatAreNoMonitorAreKnown) {
    DesktopThread desktop({{L"one", {10, 20}}});
    raw.Plant(kOld, MakeLayout(1));
    struct {
        LRESULT nAnswer;
        CommandResult result;
    } const kAnswers[] = {
        {0, CommandResult::OldMonitor},
        {-1, CommandResult::NoAnswer},
        {static_cast<LRESULT>(CommandResult::NoIcons), CommandResult::NoAnswer},
        {0x10000000A, CommandResult::NoAnswer},
        {OtherMonitor::kGone, CommandResult::NoAnswer},
        {static_cast<LRESULT>(CommandResult::NoRoom), CommandResult::NoRoom},
    };
    for (const auto& row : kAnswers) {
        OtherMonitor monitor(row.nAnswer);
        ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
        EXPECT_EQ(row.result, Do(SnapshotStep::Delete, kOld)) << row.nAnswer;
        Do(SnapshotStep::End);
    }
    EXPECT_EQ(1u, ReadStoredSnapshots().size());
}

TEST_F(SnapshotStepTest, MonitorThatIsStartingIsWaitedFor) {
    SingleInstanceXP mark;
    ASSERT_EQ(1, mark.IsFirstInstance(0, GetMyProductInfo().GetName()));
    std::optional<OtherMonitor> monitor;
    std::thread starting([&] {
        CommandTurn turn; // it comes to its turn while the command waits for its window
        if (turn.Take(kTestDeadlineMs)) monitor.emplace(static_cast<LRESULT>(CommandResult::Done));
    });
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    starting.join();
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::DeleteAll));
    monitor.reset();
}
} // namespace
