// The switch /DISPLAYS of the program: what it writes, tells and says to a monitor that runs.

#include "e2e/displays_test_support.h"
#include "e2e/support/command_run.h"

namespace {
constexpr DWORD kDone = 0, kIsOff = 4, kNotWritten = 5;

class DisplaysSwitch : public DisplaysTest {
  protected:
    /// The stored number; nothing if it is not there or no number.
    std::optional<DWORD> StoredNumber() const {
        std::optional<StoredSnapshot> value = layouts.Switch();
        DWORD dw = 0;
        if (!value || value->dwType != REG_DWORD || value->bytes.size() != sizeof(dw)) return {};
        memcpy(&dw, value->bytes.data(), sizeof(dw));
        return dw;
    }
    /// The one box that the program shows without a console, answered, and the exit code.
    std::pair<std::wstring, DWORD> TextAndCode(const std::wstring& strArguments) {
        CommandBoxes told = RunWithBoxes(strArguments);
        EXPECT_EQ(1u, told.boxes.size());
        return {told.boxes.empty() ? L"" : told.boxes[0].strText, told.dwCode};
    }
};

TEST_F(DisplaysSwitch, OnStoresOneAndOffStoresZero) {
    for (int n = 0; n < 2; ++n) {
        EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:ON /QUIET"));
        EXPECT_EQ(DWORD{1}, StoredNumber());
        EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:ON /QUIET"));
        EXPECT_EQ(DWORD{1}, StoredNumber());
        EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:OFF /QUIET"));
        EXPECT_EQ(DWORD{0}, StoredNumber());
    }
    EXPECT_EQ(0, layouts.Count()); // nobody has captured anything
}

TEST_F(DisplaysSwitch, AloneTellsByItsExitCodeAndWritesNothing) {
    EXPECT_EQ(kIsOff, RunHost(L"/DISPLAYS /QUIET"));
    EXPECT_FALSE(layouts.KeyExists());
    layouts.PlantSwitch(1);
    EXPECT_EQ(kDone, RunHost(L"/DISPLAYS /QUIET"));
    EXPECT_EQ(DWORD{1}, StoredNumber());
    layouts.PlantSwitch(0);
    EXPECT_EQ(kIsOff, RunHost(L"/DISPLAYS /QUIET"));
    EXPECT_EQ(DWORD{0}, StoredNumber());
}

TEST_F(DisplaysSwitch, AloneTellsInABox) {
    auto off = TextAndCode(L"/DISPLAYS");
    EXPECT_EQ(L"Tessaly does not put the icons back when the displays change.", off.first);
    EXPECT_EQ(kIsOff, off.second);
    layouts.PlantSwitch(1);
    auto on = TextAndCode(L"/DISPLAYS");
    EXPECT_EQ(L"Tessaly puts the icons back when the displays change.", on.first);
    EXPECT_EQ(kDone, on.second);
}

TEST_F(DisplaysSwitch, AloneTellsOnARedirectedOutput) {
    CommandEnd off = RunCommand(L"/DISPLAYS");
    EXPECT_EQ("Tessaly does not put the icons back when the displays change.\r\n", off.strOut);
    EXPECT_EQ(kIsOff, off.dwCode);
    EXPECT_EQ(L"", off.strBox);
    layouts.Block();
    CommandEnd refused = RunCommand(L"/DISPLAYS:ON");
    EXPECT_NE("", refused.strErr);
    EXPECT_EQ("", refused.strOut);
    EXPECT_EQ(kNotWritten, refused.dwCode);
}

TEST_F(DisplaysSwitch, SaysThatItCouldNotBeWritten) {
    layouts.Block();
    EXPECT_EQ(kNotWritten, RunHost(L"/DISPLAYS:ON /QUIET"));
    EXPECT_EQ(kNotWritten, RunHost(L"/DISPLAYS:OFF /QUIET"));
    EXPECT_EQ(kIsOff, RunHost(L"/DISPLAYS /QUIET"));
    auto told = TextAndCode(L"/DISPLAYS:ON");
    EXPECT_NE(L"", told.first);
    EXPECT_EQ(kNotWritten, told.second);
}

TEST_F(DisplaysSwitch, OnMakesThePresentSetUpKnownToARunningMonitorAtOnce) {
    StartPlain(5);
    StartMonitor();
    Record();
    ASSERT_FALSE(layouts.KeyExists());
    EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:ON /QUIET"));
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    EXPECT_EQ(1, recorder->Count(monitor.Window(), CompanyMsg(), kCodeDisplaysSwitch));
    EXPECT_EQ(1, CountCapturesAsked());
    EXPECT_EQ(1, store.Count()); // nothing has moved
}

TEST_F(DisplaysSwitch, MonitorReadsTheValueWhateverItIsSent) {
    StartPlain(5);
    StartMonitor();
    Record();
    for (LPARAM lParam : {0, 1, 2}) monitor.PostCompanyMsg(kCodeDisplaysSwitch, lParam);
    ASSERT_TRUE(Capture());
    EXPECT_FALSE(layouts.KeyExists()); // it is off
    layouts.PlantSwitch(1);
    monitor.PostCompanyMsg(kCodeDisplaysSwitch, 0);
    EXPECT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    layouts.PlantSwitch(0);
    monitor.PostCompanyMsg(kCodeDisplaysSwitch, 1);
    std::vector<StoredLayout> before = layouts.All();
    MoveSomething();
    ASSERT_TRUE(Capture());
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(before, layouts.All());
}

TEST_F(DisplaysSwitch, OffKeepsTheLayoutsAndPutsNothingBack) {
    StartSwitchedOn(4);
    layouts.Plant(TextOf(kLarge), Shifted(300, 200), Now());
    std::vector<StoredLayout> before = layouts.All();
    EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:OFF /QUIET"));
    FlushShell();
    EXPECT_EQ(before, layouts.All());
    Record();
    display.SetSize(kLarge);
    EXPECT_TRUE(StayAfterSettling());
    EXPECT_EQ(0, CountCapturesAsked());
    EXPECT_EQ(before, layouts.All());
    EXPECT_EQ(1, store.Count());
}

TEST_F(DisplaysSwitch, OnAgainTheOldLayoutsCount) {
    layouts.PlantSwitch(0);
    StartPlain(4);
    StartMonitor();
    std::vector<StoredIcon> known = Shifted(300, 200);
    layouts.Plant(TextOf(kLarge), known, Now());
    EXPECT_EQ(kDone, RunHost(L"/DISPLAYS:ON /QUIET"));
    ASSERT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(kHome)); }));
    Record();
    display.SetSize(kLarge);
    EXPECT_TRUE(ComeAfterSettling(known));
}
} // namespace
