#include "icons/monitor/command_desk.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <cstring>
#include <random>
#include <vector>

namespace {
constexpr unsigned __int64 kOld = 0x01CAC36B51D3C400; // a day of 2010

class CommandDeskTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp(); // which takes the key away
        raw.Create();
        ASSERT_TRUE(monitor.CreateHidden(nullptr));
        Share(view, monitor);
    }
    void TearDown() override {
        monitor.Destroy();
        EngineTest::TearDown();
    }
    /// Sends bytes as they are, right before a page that may not be touched.
    LRESULT SendBytes(const std::vector<BYTE>& bytes) {
        GuardedMemory memory(bytes.size());
        if (!bytes.empty()) std::memcpy(memory.Get(), bytes.data(), bytes.size());
        COPYDATASTRUCT data{kCommandData, static_cast<DWORD>(bytes.size()), memory.Get()};
        return ::SendMessageW(monitor, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }
    static std::vector<BYTE> BytesOfCommand(CommandCode code, unsigned __int64 qwValue,
                                            const Layout& layout = {}) {
        CommandMessage head{code, static_cast<DWORD>(layout.size()), qwValue};
        std::vector<BYTE> bytes(sizeof(head) + layout.size() * sizeof(IconRecord));
        std::memcpy(bytes.data(), &head, sizeof(head));
        if (!layout.empty())
            std::memcpy(bytes.data() + sizeof(head), layout.data(), bytes.size() - sizeof(head));
        return bytes;
    }
    CommandResult Command(CommandCode code, unsigned __int64 qwValue = 0,
                          const Layout& layout = {}) {
        return static_cast<CommandResult>(SendBytes(BytesOfCommand(code, qwValue, layout)));
    }

    SnapshotKey raw;
    TestView view;
    FakeFrontEnd frontEnd;
    MyMonitor_Wnd monitor{frontEnd};
};

TEST_F(CommandDeskTest, RemembersWithoutAWordAndTellsTheOutcomeWhenItIsAsked) {
    IconRecord record = RecordOf(0, L"a", {1, 2});
    EXPECT_EQ(CommandResult::NoAnswer, Command(CommandCode::Outcome, 7));
    EXPECT_EQ(CommandResult::Pending, Command(CommandCode::Remember, 7));
    PumpAll();
    EXPECT_EQ(1, view.spyListView.CountOfCode(kCodeCapture));
    EXPECT_EQ(CommandResult::Pending, Command(CommandCode::Outcome, 7));
    OnIconsCaptured(&record, 1);
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Outcome, 7));
    EXPECT_EQ(CommandResult::NoAnswer, Command(CommandCode::Outcome, 8));
    EXPECT_EQ(CommandResult::Pending, Command(CommandCode::Remember, 8));
    OnIconsCaptured(&record, 1);
    OnIconsCaptured(&record, 1); // a later one is nobody's
    EXPECT_EQ(CommandResult::Unchanged, Command(CommandCode::Outcome, 8));
    EXPECT_EQ(CommandResult::NoAnswer, Command(CommandCode::Outcome, 7));
    EXPECT_TRUE(frontEnd.outcomes.empty());
}

TEST_F(CommandDeskTest, TellsThatTheRegistryRefused) {
    raw.Delete();
    ASSERT_TRUE(PlantDeadLink(HKEY_CURRENT_USER, kStoreKey));
    IconRecord record = RecordOf(0, L"a", {1, 2});
    EXPECT_EQ(CommandResult::Pending, Command(CommandCode::Remember, 1));
    OnIconsCaptured(&record, 1);
    EXPECT_EQ(CommandResult::NotWritten, Command(CommandCode::Outcome, 1));
    EXPECT_EQ(CommandResult::NotWritten, Command(CommandCode::Import, kOld, MakeLayout(1)));
}

TEST_F(CommandDeskTest, RestoresAndSuppressesCaptures) {
    raw.Plant(kOld, MakeLayout(2));
    monitor.ScheduleCapture();
    EXPECT_EQ(CommandResult::NoSnapshot, Command(CommandCode::Restore, kOld + 1));
    EXPECT_TRUE(IsCapturePending(monitor)); // as nothing is touched
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Restore, kOld));
    EXPECT_FALSE(IsCapturePending(monitor));
    EXPECT_TRUE(IsSuppressing(monitor));
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_TRUE(raw.HasValue(L""));
}

TEST_F(CommandDeskTest, RefusesARestoreBeforeAnythingIsTouched) {
    EXPECT_EQ(CommandResult::NoSnapshot, Command(CommandCode::Restore, kOld));
    RegBytes bytes = MakeSnapshotValue(MakeLayout(2));
    bytes[0] ^= 1;
    raw.Put(NameOf(kOld), REG_BINARY, bytes);
    raw.Put(NameOf(kOld + 1), REG_BINARY, RegBytes(17));
    raw.Plant(kOld + 2, MakeLayout(2));
    EXPECT_EQ(CommandResult::Damaged, Command(CommandCode::Restore, kOld));
    EXPECT_EQ(CommandResult::Damaged, Command(CommandCode::Restore, kOld + 1));
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE,
                        ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE) | LVS_AUTOARRANGE);
    EXPECT_EQ(CommandResult::AutoArranged, Command(CommandCode::Restore, kOld + 2));
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE,
                        ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE) & ~LVS_AUTOARRANGE);
    GetDesktopSharedData().hwndListView = nullptr;
    EXPECT_EQ(CommandResult::NoDesktop, Command(CommandCode::Restore, kOld + 2));
    EXPECT_EQ(CommandResult::NoDesktop, Command(CommandCode::Remember, 1));
    EXPECT_EQ(0, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_FALSE(raw.HasValue(L"")); // no mark
}

TEST_F(CommandDeskTest, DeletesOneWithItsMarkAndDamagedOnesToo) {
    raw.Plant(kOld, MakeLayout(1));
    raw.Plant(kOld + 1, MakeLayout(1));
    raw.Put(NameOf(kOld + 2), REG_BINARY, RegBytes(3));
    raw.Put(NameOf(kOld + 3), REG_NONE, MakeSnapshotValue(MakeLayout(1)));
    raw.PutStr(L"", NameOf(kOld));
    raw.PutStr(L"other", L"x");
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Delete, kOld + 1));
    EXPECT_TRUE(raw.HasValue(L""));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Delete, kOld));
    EXPECT_FALSE(raw.HasValue(L""));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Delete, kOld + 2));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Delete, kOld + 3));
    EXPECT_EQ(CommandResult::NoSnapshot, Command(CommandCode::Delete, kOld + 3));
    EXPECT_TRUE(ReadStoredSnapshots().empty());
    EXPECT_TRUE(raw.HasValue(L"other"));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::DeleteAll));
    EXPECT_FALSE(raw.HasValue(L"other"));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::DeleteAll));
}

TEST_F(CommandDeskTest, ImportsWhatIsNewAsLongAsThereIsRoom) {
    for (unsigned n = 0; n < 24; ++n) raw.Plant(kOld + n, MakeLayout(1));
    EXPECT_EQ(CommandResult::IsThere, Command(CommandCode::Import, kOld, MakeLayout(1)));
    EXPECT_EQ(CommandResult::Differs, Command(CommandCode::Import, kOld, MakeLayout(1, 5)));
    EXPECT_EQ(CommandResult::Differs, Command(CommandCode::Import, kOld, MakeLayout(2)));
    EXPECT_EQ(CommandResult::Done, Command(CommandCode::Import, kOld - 1, MakeLayout(999)));
    EXPECT_EQ(MakeSnapshotValue(MakeLayout(999)), ReadStoredSnapshots()[NameOf(kOld - 1)]);
    EXPECT_EQ(CommandResult::NoRoom, Command(CommandCode::Import, kOld - 2, MakeLayout(1)));
    EXPECT_EQ(25u, ReadStoredSnapshots().size());
}

TEST_F(CommandDeskTest, TakesNoImportThatNoCaptureCouldBe) {
    FILETIME ft;
    ::GetSystemTimeAsFileTime(&ft);
    unsigned __int64 qwLater =
        (static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime) + 3000000000;
    for (unsigned __int64 qw : {0ull, qwLater, 1ull << 63, ~0ull})
        EXPECT_EQ(CommandResult::Damaged, Command(CommandCode::Import, qw, MakeLayout(1))) << qw;
    EXPECT_EQ(CommandResult::Damaged, Command(CommandCode::Import, kOld));
    EXPECT_EQ(CommandResult::Damaged, Command(CommandCode::Import, kOld, MakeLayout(1000)));
    EXPECT_TRUE(ReadStoredSnapshots().empty());
}

TEST_F(CommandDeskTest, MessagesOfTheWrongSizeChangeNothing) {
    raw.Plant(kOld, MakeLayout(2));
    auto before = ReadStoredSnapshots();
    const auto damaged = static_cast<LRESULT>(CommandResult::Damaged);
    for (CommandCode code : {CommandCode::Delete, CommandCode::DeleteAll, CommandCode::Restore,
                             CommandCode::Remember, CommandCode::Outcome, CommandCode::Import}) {
        std::vector<BYTE> bytes = BytesOfCommand(code, kOld);
        for (std::size_t n = 0; n < bytes.size(); ++n)
            EXPECT_EQ(damaged, SendBytes({bytes.begin(), bytes.begin() + n}));
        for (std::size_t n : {1, 23, 24, 25}) {
            std::vector<BYTE> longer = bytes;
            longer.resize(bytes.size() + n); // more than the count tells of
            EXPECT_EQ(damaged, SendBytes(longer));
        }
        for (DWORD nCount : {1ul, 999ul, 0x0AAAAAABul, 0x80000000ul, 0xFFFFFFFFul}) {
            CommandMessage head{code, nCount, kOld}; // records that are not there
            std::memcpy(bytes.data(), &head, sizeof(head));
            EXPECT_EQ(damaged, SendBytes(bytes));
        }
        if (code == CommandCode::Import) continue;
        EXPECT_EQ(damaged, SendBytes(BytesOfCommand(code, kOld, MakeLayout(1))));
    }
    COPYDATASTRUCT data{kCommandData, 16, nullptr};
    EXPECT_EQ(damaged, ::SendMessageW(monitor, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)));
    for (DWORD nCode : {0ul, 7ul, 0xFFFFFFFFul})
        EXPECT_EQ(CommandResult::Damaged, Command(static_cast<CommandCode>(nCode), kOld));
    EXPECT_EQ(before, ReadStoredSnapshots());
    EXPECT_EQ(0, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_FALSE(IsSuppressing(monitor));
}

TEST_F(CommandDeskTest, RandomMessagesStayWithinTheirEnds) {
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::vector<BYTE> bytes(random() % 100);
        for (BYTE& b : bytes) b = static_cast<BYTE>(random() % (i % 2 ? 256 : 4));
        LRESULT nAnswer = SendBytes(bytes);
        EXPECT_LE(1, nAnswer);
        EXPECT_GE(static_cast<LRESULT>(CommandResult::NoRoom), nAnswer);
    }
}
} // namespace
