// The commands that store the icons and put them back, through a monitor that runs and without one.

#include "e2e/command_test_support.h"
#include "support/fake_tray.h"
#include "support/window_thread.h"

#include <memory>

namespace {
std::string BackAt(const std::wstring& strName) {
    return "The icons are back as they were at " + ToUtf8(LocalText(strName)) + ".\r\n";
}

/// The notification area while the object lives, on a thread that answers.
class TrayCalls {
  public:
    TrayCalls() {
        thread.Run([this] { tray = std::make_unique<FakeTray>(); });
    }
    ~TrayCalls() {
        thread.Run([this] { tray.reset(); });
    }
    TrayCalls(const TrayCalls&) = delete;
    TrayCalls& operator=(const TrayCalls&) = delete;
    std::string Take() {
        std::string str;
        thread.Run([&] { str = tray->TakeNames(); });
        return str;
    }

  private:
    WindowThread thread;
    std::unique_ptr<FakeTray> tray;
};

class CommandRemember : public CommandBoth {};
INSTANTIATE_COMMAND_BOTH(CommandRemember);

TEST_P(CommandRemember, StoresTheIconsAndTellsWhetherTheyHaveChanged) {
    Begin(6);
    EXPECT_EQ(std::vector<std::string>{"Icons stored"},
              Lines(Expect(kCodeDone, L"/REMEMBER").strOut));
    ASSERT_EQ(1, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    EXPECT_TRUE(store.Newest()->DigestHolds());
    const std::vector<std::string> kNoChanges{"No changes to the icons have been detected."};
    EXPECT_EQ(kNoChanges, Lines(Expect(kCodeDone, L"/REMEMBER").strOut));
    EXPECT_EQ(1, store.Count());
    MoveSomething();
    Expect(kCodeDone, L"/REMEMBER");
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    EXPECT_FALSE(store.Marked());
}

TEST_P(CommandRemember, KeepsTheNewestTwentyFive) {
    Begin();
    for (unsigned n = 0; n < 24; ++n) Plant(100 + n);
    std::wstring strOldest = *Names().begin();
    Expect(kCodeDone, L"/REMEMBER");
    EXPECT_EQ(25, store.Count());
    EXPECT_TRUE(Names().contains(strOldest));
    MoveSomething();
    Expect(kCodeDone, L"/REMEMBER");
    EXPECT_EQ(25, store.Count());
    EXPECT_FALSE(Names().contains(strOldest));
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_P(CommandRemember, ShowsNoBalloonAndNoIcon) {
    TrayCalls tray;
    Begin();
    tray.Take();                     // what the monitor's start needs
    Expect(kCodeDone, L"/REMEMBER"); // stored
    Expect(kCodeDone, L"/REMEMBER"); // no changes
    EXPECT_EQ("", tray.Take());
}

TEST_P(CommandRemember, TellsThatTheRegistryRefuses) {
    Begin();
    {
        RefusedKey refused;
        CommandEnd end = Expect(kCodeNotWritten, L"/REMEMBER");
        EXPECT_NE("", end.strErr);
    }
    Expect(kCodeDone, L"/REMEMBER");
    EXPECT_EQ(1, store.Count());
}

TEST_P(CommandRemember, TellsOfAShellThatDoesNotAnswer) {
    Begin();
    desktop->Hang(60000);
    Expect(kCodeNoShell, L"/REMEMBER");
    EXPECT_EQ(0, store.Count());
    desktop->Kill();
    desktop->Start();
    desktop->Fill(3);
    ASSERT_TRUE(!GetParam() || monitor.WaitUntilOn(*desktop));
}

class CommandRestore : public CommandBoth {
  protected:
    /// Two snapshots of this desktop, in other places than the icons now are.
    void BeginWithTwo() {
        Begin(4);
        std::vector<StoredIcon> icons = ExpectedIcons();
        for (StoredIcon& icon : icons) icon.x += 300;
        newer = icons;
        for (StoredIcon& icon : icons) icon.y += 100;
        older = icons;
        strNewer = Plant(100, newer);
        strOlder = Plant(200, older);
    }
    std::vector<StoredIcon> newer, older;
    std::wstring strNewer, strOlder;
};
INSTANTIATE_COMMAND_BOTH(CommandRestore);

TEST_P(CommandRestore, PutsTheNewestBackAndMarksIt) {
    BeginWithTwo();
    EXPECT_EQ(BackAt(strNewer), Expect(kCodeDone, L"/RESTORE").strOut);
    EXPECT_EQ(newer, ExpectedIcons());
    EXPECT_EQ(strNewer, store.Marked());
    EXPECT_EQ(2, store.Count()); // and stores nothing itself
}

TEST_P(CommandRestore, PutsTheOneOfThatNumberBack) {
    BeginWithTwo();
    EXPECT_EQ(BackAt(strOlder), Expect(kCodeDone, L"/RESTORE:2").strOut);
    EXPECT_EQ(older, ExpectedIcons());
    EXPECT_EQ(strOlder, store.Marked());
    EXPECT_EQ(BackAt(strNewer), Expect(kCodeDone, L"-restore=1").strOut);
    EXPECT_EQ(newer, ExpectedIcons());
    EXPECT_EQ(strNewer, store.Marked());
}

TEST_P(CommandRestore, PutsTheOneOfThatTimeBack) {
    BeginWithTwo();
    EXPECT_EQ(BackAt(strOlder), Expect(kCodeDone, L"/RESTORE:" + LocalText(strOlder)).strOut);
    EXPECT_EQ(older, ExpectedIcons());
    EXPECT_EQ(strOlder, store.Marked());
}

TEST_P(CommandRestore, TakesTheNewestOfSeveralOfOneSecond) {
    BeginWithTwo();
    std::vector<std::wstring> names;
    uint64_t nSecond = (Now() / 10'000'000 - 50) * 10'000'000;
    for (uint64_t nTicks : {1u, 9'999'999u, 5'000'000u}) {
        wchar_t sz[17];
        swprintf(sz, 17, L"%016llX", static_cast<unsigned long long>(nSecond + nTicks));
        std::vector<StoredIcon> icons = newer;
        for (StoredIcon& icon : icons) icon.y += static_cast<int>(nTicks / 100'000);
        store.Plant(sz, MakeSnapshotBytes(icons));
        names.push_back(sz);
    }
    Expect(kCodeDone, L"/RESTORE:" + LocalText(names[0]));
    EXPECT_EQ(names[1], store.Marked());
    EXPECT_EQ(store.Named(names[1])->Icons(), ExpectedIcons());
}

TEST_P(CommandRestore, OfOneThatIsNotThereDoesNothing) {
    BeginWithTwo();
    Mark(strOlder);
    auto before = AllValues(store);
    auto icons = ExpectedIcons();
    for (const std::wstring& str :
         {std::wstring(L"0"), std::wstring(L"3"), std::wstring(L"4294967297"),
          std::wstring(L"99999999999999999999999"), LocalText(NameBeforeNow(150)),
          std::wstring(L"1999-12-31T23:59:59")})
        Expect(kCodeNoSuchSnapshot, L"/RESTORE:" + str);
    EXPECT_EQ(before, AllValues(store));
    EXPECT_EQ(icons, ExpectedIcons());
    store.Clear();
    Expect(kCodeNoSuchSnapshot, L"/RESTORE");
    Expect(kCodeNoSuchSnapshot, L"/RESTORE:1");
    EXPECT_EQ(icons, ExpectedIcons());
}

TEST_P(CommandRestore, OfADamagedOneDoesNothing) {
    BeginWithTwo();
    std::vector<BYTE> bytes = MakeSnapshotBytes(older);
    bytes.back() ^= 1;
    std::wstring strBad = NameBeforeNow(50);
    store.Plant(strBad, bytes);
    Mark(strOlder);
    desktop->SetAutoArrange(true); // nobody is asked
    auto before = AllValues(store);
    auto icons = ExpectedIcons();
    for (const std::wstring& str : {std::wstring(), std::wstring(L":1"), L":" + LocalText(strBad)})
        Expect(kCodeDamaged, L"/RESTORE" + str);
    EXPECT_EQ(before, AllValues(store));
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_TRUE(desktop->IsAutoArranged());
}

TEST_P(CommandRestore, IconsThatCannotBeFoundAreNoFailure) {
    BeginWithTwo();
    desktop->Remove(1);
    desktop->Rename(0, L"another");
    Expect(kCodeDone, L"/RESTORE");
    EXPECT_EQ(newer[2].x, desktop->Items().at(1).pt.x);
    store.Clear();
    Plant(100, 5); // icons of which none is there
    Expect(kCodeDone, L"/RESTORE");
}

TEST_P(CommandRestore, AsksItselfBeforeItEndsTheAutomaticArrangement) {
    BeginWithTwo();
    auto icons = ExpectedIcons();
    desktop->SetAutoArrange(true);
    for (int nButton : {IDNO, IDYES}) {
        CommandProcess process;
        process.Start(L"/RESTORE");
        std::optional<SeenMessageBox> box = AnswerMessageBox(process.Id(), nButton);
        ASSERT_TRUE(box);
        EXPECT_EQ(L"Tessaly", box->strTitle);
        EXPECT_EQ(kAutoArrangeText, box->strText);
        EXPECT_EQ((std::vector<int>{IDYES, IDNO}), box->buttons);
        CommandEnd end = process.Wait();
        if (nButton == IDNO) {
            EXPECT_EQ(DWORD{kCodeAutoArranged}, end.dwCode);
            EXPECT_TRUE(desktop->IsAutoArranged());
            EXPECT_EQ(icons, ExpectedIcons());
            EXPECT_FALSE(store.Marked());
        } else {
            EXPECT_EQ(DWORD{kCodeDone}, end.dwCode) << end.All();
            EXPECT_EQ(BackAt(strNewer), end.strOut);
            EXPECT_FALSE(desktop->IsAutoArranged());
            EXPECT_EQ(newer, ExpectedIcons());
            EXPECT_EQ(strNewer, store.Marked());
        }
    }
}

TEST_P(CommandRestore, QuietAsksNobodyAndLeavesTheArrangement) {
    BeginWithTwo();
    auto icons = ExpectedIcons();
    desktop->SetAutoArrange(true);
    CommandBoxes ended = RunWithBoxes(L"/RESTORE /QUIET", IDYES);
    EXPECT_EQ(DWORD{kCodeAutoArranged}, ended.dwCode);
    EXPECT_EQ(0u, ended.boxes.size());
    EXPECT_TRUE(desktop->IsAutoArranged());
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_FALSE(store.Marked());
}

TEST_P(CommandRestore, TellsOfAShellThatDoesNotAnswer) {
    BeginWithTwo();
    desktop->Hang(60000);
    Expect(kCodeNoShell, L"/RESTORE");
    desktop->Kill();
    desktop->Start();
    desktop->Fill(3);
    ASSERT_TRUE(!GetParam() || monitor.WaitUntilOn(*desktop));
}

class CommandOnEveryDesktop : public CommandTest,
                              public testing::WithParamInterface<DesktopMode> {};
TEST_P(CommandOnEveryDesktop, StoresAndRestoresWithoutAMonitor) {
    StartDesktop(GetParam());
    if (GetParam() != DesktopMode::Real) desktop->Fill(12);
    Expect(kCodeDone, L"/REMEMBER");
    auto icons = ExpectedIcons();
    ASSERT_TRUE(store.Newest());
    EXPECT_EQ(icons, store.Newest()->Icons());
    EXPECT_TRUE(LeftNothing());
    for (int n = 0, nCount = desktop->Count(); n < nCount; ++n) desktop->Move(n, {500 - n, 30 * n});
    ASSERT_NE(icons, ExpectedIcons());
    Expect(kCodeDone, L"/RESTORE");
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_TRUE(LeftNothing());
    StartMonitor(); // finds everything as on a desktop where nothing was
    EXPECT_EQ(1, store.Count());
    EXPECT_TRUE(StillCaptures());
    EXPECT_TRUE(monitor.Exit());
    EXPECT_TRUE(LeftNothing());
    EXPECT_EQ(0u, desktop->End());
}
INSTANTIATE_TEST_SUITE_P(Modes, CommandOnEveryDesktop,
                         testing::Values(DesktopMode::Real, DesktopMode::Plain,
                                         DesktopMode::WorkerW, DesktopMode::WorkerWInside),
                         ModeName);

TEST_F(CommandTest, NoDesktopIsToldWithoutAnotherBox) {
    std::wstring strName = Plant(100);
    auto before = AllValues(store);
    for (const wchar_t* psz : {L"/REMEMBER", L"/RESTORE"}) Expect(kCodeNoShell, psz);
    CommandBoxes told = RunWithBoxes(L"/REMEMBER");
    EXPECT_EQ(DWORD{kCodeNoShell}, told.dwCode);
    ASSERT_EQ(1u, told.boxes.size());
    EXPECT_EQ(std::wstring::npos, told.boxes[0].strText.find(L"report this error"));
    EXPECT_EQ(before, AllValues(store));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(CommandTest, RestoreThroughTheMonitorSuppressesCapturesForASecond) {
    Begin(true);
    Plant(100);
    auto icons = ExpectedIcons();
    for (StoredIcon& icon : icons) icon.x += 200;
    Plant(200, icons);
    CommandProcess restore;
    restore.Start(L"/RESTORE:2");
    // The mark comes right after the icons have been moved: well within the second.
    ASSERT_TRUE(WaitUntil([&] { return store.Marked().has_value(); }));
    monitor.PostCompanyMsg(kCodeIconsMoved);
    EXPECT_EQ(kCodeDone, restore.Wait().dwCode);
    constexpr DWORD kCaptureComesMs = 11500;
    EXPECT_TRUE(HoldsFor([&] { return store.Count() == 2; }, kCaptureComesMs));
    EXPECT_TRUE(StillCaptures());
}

TEST_F(CommandTest, MonitorDoesItsWorkWhileItsMenuIsOpen) {
    Begin(true);
    monitor.PostCompanyMsg(kCodeOpenMenu, 1);
    ASSERT_TRUE(WaitUntil([] { return ::FindWindowW(L"#32768", nullptr) != nullptr; }));
    Expect(kCodeDone, L"/REMEMBER");
    EXPECT_EQ(1, store.Count());
    EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
}

TEST_F(CommandTest, MonitorThatIsToldGoesOnAsBefore) {
    Begin(true);
    HWND hwndMonitor = monitor.Window();
    Expect(kCodeDone, L"/REMEMBER");
    Expect(kCodeDone, L"/RESTORE");
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_EQ(hwndMonitor, monitor.Window());
    EXPECT_TRUE(desktop->IsFullyAttached());
    EXPECT_TRUE(StillCaptures());
    EXPECT_TRUE(monitor.Exit());
    EXPECT_TRUE(LeftNothing());
}
} // namespace
