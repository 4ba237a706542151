#include "icons/commands/snapshot_step.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/command_turn.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/command_result.h"
#include "support/message_box_driver.h"
#include "support/no_memory.h"
#include "support/replace_import.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <optional>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_OpenProcess, __imp_RegEnumValueW;

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
    static void Arrange(DesktopThread& desktop) {
        LONG_PTR dwStyle = ::GetWindowLongPtrW(desktop.GetListView(), GWL_STYLE);
        ::SetWindowLongPtrW(desktop.GetListView(), GWL_STYLE, dwStyle | LVS_AUTOARRANGE);
    }
    static bool IsArranged(DesktopThread& desktop) {
        return ::GetWindowLongPtrW(desktop.GetListView(), GWL_STYLE) & LVS_AUTOARRANGE;
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
        nAsked = 0;
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
    static inline int nAsked;

  private:
    static LRESULT CALLBACK Proc(HWND hwndOwn, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != WM_COPYDATA) return ::DefWindowProcW(hwndOwn, uMsg, wParam, lParam);
        ++nAsked;
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
        {static_cast<LRESULT>(CommandResult::NoMemory), CommandResult::NoMemory},
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
TEST_F(SnapshotStepTest, MonitorThatMayNotBeLookedAtIsAnothersAndAskedNothing) {
    HANDLE(WINAPI * pfnNone)
    (DWORD, BOOL, DWORD) = [](DWORD, BOOL, DWORD) -> HANDLE {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    };
    OtherMonitor monitor(static_cast<LRESULT>(CommandResult::Done));
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    {
        ReplaceImport refused(__imp_OpenProcess, pfnNone);
        EXPECT_EQ(CommandResult::OtherUser, Do(SnapshotStep::DeleteAll));
    }
    EXPECT_EQ(0, OtherMonitor::nAsked);
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::DeleteAll));
    EXPECT_EQ(1, OtherMonitor::nAsked);
}

TEST_F(SnapshotStepTest, ArrangedDesktopIsClearedAfterAYes) {
    DesktopThread desktop({{L"one", {10, 20}}});
    Arrange(desktop);
    raw.Plant(kOld, {RecordOf(0, L"one", {300, 200})});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    MessageBoxDriver no({IDNO});
    EXPECT_EQ(CommandResult::AutoArranged, Do(SnapshotStep::Restore, kOld, 0));
    EXPECT_EQ(1u, no.Finish().size());
    EXPECT_TRUE(IsArranged(desktop));
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    MessageBoxDriver yes({IDYES});
    EXPECT_EQ(CommandResult::Done, Do(SnapshotStep::Restore, kOld, 0));
    EXPECT_EQ(1u, yes.Finish().size());
    EXPECT_FALSE(IsArranged(desktop));
}

TEST_F(SnapshotStepTest, NobodyIsAskedAboutAnArrangedDesktopIfTheMonitorCannotRestoreIt) {
    DesktopThread desktop({{L"one", {10, 20}}});
    Arrange(desktop);
    raw.Plant(kOld, {RecordOf(0, L"one", {300, 200})});
    OtherMonitor monitor(0); // of an older version
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    MessageBoxDriver driver({IDYES});
    EXPECT_EQ(CommandResult::OldMonitor, Do(SnapshotStep::Restore, kOld, 0));
    EXPECT_EQ(CommandResult::NoSnapshot, Do(SnapshotStep::Restore, kOld + 1, 0));
    EXPECT_TRUE(driver.Finish().empty());
    EXPECT_TRUE(IsArranged(desktop));
}

TEST_F(SnapshotStepTest, ArrangedDesktopIsLeftIfTheSnapshotGoesDuringTheQuestion) {
    DesktopThread desktop({{L"one", {10, 20}}});
    Arrange(desktop);
    raw.Plant(kOld, {RecordOf(0, L"one", {300, 200})});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    std::thread user([this] {
        WaitUntil([] { return IsMessageBoxOpen() != 0; });
        ::RegDeleteValueW(raw.Get(), NameOf(kOld).c_str());
        AnswerMessageBox(::GetCurrentProcessId(), IDYES);
    });
    EXPECT_EQ(CommandResult::NoSnapshot, Do(SnapshotStep::Restore, kOld, 0));
    user.join();
    EXPECT_TRUE(IsArranged(desktop));
    ExpectNothingLeftIn(desktop);
}

TEST_F(SnapshotStepTest, ImportBesideOneThatCannotBeReadForWantOfMemoryTellsThat) {
    raw.Plant(kOld, MakeLayout(3));
    Layout layout = MakeLayout(3);
    SnapshotWork import{};
    import.step = SnapshotStep::Import;
    import.qwTime = kOld;
    import.pRecords = layout.data();
    import.nRecords = 3;
    int nResult = 0;
    {
        NoMemory none;
        nResult = DoSnapshotStep(&import);
    }
    EXPECT_EQ(static_cast<int>(CommandResult::NoMemory), nResult);
}

decltype(&RegEnumValueW) pfnEnumValue = nullptr;
HKEY hkeyTrimmed = nullptr;
/// The platform's; after the last value a monitor deletes one.
LSTATUS WINAPI EnumAndDelete(HKEY hkey, DWORD nAt, wchar_t* psz, DWORD* pcch, DWORD* pReserved,
                             DWORD* pdwType, BYTE* pBytes, DWORD* pcb) {
    LSTATUS status = pfnEnumValue(hkey, nAt, psz, pcch, pReserved, pdwType, pBytes, pcb);
    if (status == ERROR_NO_MORE_ITEMS) ::RegDeleteValueW(hkeyTrimmed, NameOf(kOld).c_str());
    return status;
}

TEST_F(SnapshotStepTest, SnapshotThatGoesWhileItIsListedIsLeftOut) {
    raw.Plant(kOld, MakeLayout(1));
    raw.Plant(kOld + 1, MakeLayout(2));
    SnapshotEntry entries[2]{};
    SnapshotWork work{};
    work.step = SnapshotStep::List;
    work.pEntries = entries;
    work.nEntries = 2;
    pfnEnumValue = &::RegEnumValueW;
    hkeyTrimmed = raw.Get();
    {
        ReplaceImport replaced(__imp_RegEnumValueW, &EnumAndDelete);
        EXPECT_EQ(static_cast<int>(CommandResult::Done), DoSnapshotStep(&work));
    }
    ASSERT_EQ(1u, work.nEntries);
    EXPECT_EQ(kOld + 1, entries[0].qwTime);
}

TEST_F(SnapshotStepTest, CaptureWhoseWindowIsClosedTellsSoUnlessItWasDone) {
    DesktopThread desktop({{L"one", {10, 20}}});
    ASSERT_EQ(CommandResult::Done, Do(SnapshotStep::Begin));
    ::PostQuitMessage(0); // as the window does when it is closed
    CommandResult result = Do(SnapshotStep::Remember);
    // What the shell sends is taken before that; it may have been quick.
    DWORD nStored = 0;
    ::RegQueryInfoKeyW(raw.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &nStored,
                       nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(nStored ? CommandResult::Done : CommandResult::NoAnswer, result);
    ExpectNothingLeftIn(desktop);
}
} // namespace
