#include "progress/ctrl_dlg.h"
#include "progress/ctrl_taskbar.h"
#include "support/test_window.h"
#include "support/this_windows.h"

#include <gtest/gtest.h>

namespace {
struct Mirror {
    TestWindow window;
    FakeTaskbar taskbar;
    ProgressDialog test{0, 10, 0};

    Mirror() {
        EXPECT_EQ(0, taskbar.nCreated.load()); // Init makes none
        test.ctrl.EnableTaskbarProgress(window);
        EXPECT_EQ(1, taskbar.nCreated.load());
        EXPECT_EQ("", taskbar.Take());
    }
    std::string State(TBPFLAG state) { return FakeTaskbar::State(window, state); }
    std::string Value(int nDone, int nAll) {
        return FakeTaskbar::Value(window, static_cast<ULONGLONG>(nDone),
                                  static_cast<ULONGLONG>(nAll));
    }
};

TEST(CSProgressCtrlTaskbar, RangeMakesTheStateNormal) {
    Mirror mirror;
    mirror.test.ctrl.SetRange64(0, 50);
    EXPECT_EQ(mirror.State(TBPF_NORMAL), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, PositionIsTold) {
    Mirror mirror;
    mirror.test.ctrl.SetPos64(4);
    EXPECT_EQ(mirror.Value(4, 10), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, SetupTellsBoth) {
    Mirror mirror;
    mirror.test.ctrl.Setup64(0, 131070, 600);
    EXPECT_EQ(mirror.State(TBPF_NORMAL) + mirror.Value(300, 65535), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, StepTellsWhereTheBarIs) {
    Mirror mirror;
    mirror.test.ctrl.SetPos64(4);
    mirror.taskbar.Take();
    mirror.test.ctrl.StepIt();
    EXPECT_EQ(mirror.Value(5, 10), mirror.taskbar.Take());
    ::SendMessageW(mirror.test.Bar(), PBM_SETPOS, 8, 0);
    mirror.test.ctrl.StepIt();
    EXPECT_EQ(mirror.Value(9, 10), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, StepsBelowTheDivisorTellNothing) {
    Mirror mirror;
    mirror.test.ctrl.Setup64(0, 131070, 600);
    mirror.taskbar.Take();
    mirror.test.ctrl.StepIt();
    EXPECT_EQ("", mirror.taskbar.Take());
    mirror.test.ctrl.StepIt();
    EXPECT_EQ(mirror.Value(301, 65535), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, PauseIsAState) {
    Mirror mirror;
    mirror.test.ctrl.Pause(1);
    EXPECT_EQ(mirror.State(TBPF_PAUSED), mirror.taskbar.Take());
    mirror.test.ctrl.Pause(0);
    EXPECT_EQ(mirror.State(TBPF_NORMAL), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, NullWindowDropsTheMirror) {
    Mirror mirror;
    mirror.test.ctrl.EnableTaskbarProgress(nullptr);
    EXPECT_EQ(mirror.State(TBPF_NOPROGRESS) + "gone; ", mirror.taskbar.Take());
    EXPECT_EQ(1, mirror.taskbar.nCreated.load());
    mirror.test.ctrl.Setup64(0, 50, 5);
    mirror.test.ctrl.StepIt();
    mirror.test.ctrl.Pause(1);
    mirror.test.ctrl.EnableTaskbarProgress(nullptr);
    EXPECT_EQ("", mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, OtherWindowGetsAMirrorInThePlaceOfTheFirst) {
    Mirror mirror;
    TestWindow other;
    mirror.test.ctrl.EnableTaskbarProgress(other);
    EXPECT_EQ(mirror.State(TBPF_NOPROGRESS) + "gone; ", mirror.taskbar.Take());
    EXPECT_EQ(2, mirror.taskbar.nCreated.load());
    mirror.test.ctrl.SetPos64(3);
    EXPECT_EQ(FakeTaskbar::Value(other, 3, 10), mirror.taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, DestructorDropsTheMirror) {
    TestWindow window;
    FakeTaskbar taskbar;
    {
        CSProgressCtrl ctrl;
        ctrl.EnableTaskbarProgress(window);
    }
    EXPECT_EQ(FakeTaskbar::State(window, TBPF_NOPROGRESS) + "gone; ", taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, ThatCannotBeMadeIsNone) {
    TestWindow window;
    FakeTaskbar taskbar;
    taskbar.hrCreate = CO_E_NOTINITIALIZED;
    ProgressDialog test;
    test.ctrl.EnableTaskbarProgress(window);
    EXPECT_EQ(1, taskbar.nCreated.load());
    test.ctrl.Setup64(0, 50, 5);
    test.ctrl.StepIt();
    test.ctrl.Pause(1);
    EXPECT_EQ(6, test.Pos());
    test.ctrl.EnableTaskbarProgress(nullptr);
    EXPECT_EQ("", taskbar.Take());
}

TEST(CSProgressCtrlTaskbar, FailureAfterAMirrorLeavesNone) {
    Mirror mirror;
    TestWindow other;
    mirror.taskbar.hrCreate = E_FAIL;
    mirror.test.ctrl.EnableTaskbarProgress(other);
    EXPECT_EQ(mirror.State(TBPF_NOPROGRESS) + "gone; ", mirror.taskbar.Take());
    mirror.test.ctrl.SetPos64(3);
    EXPECT_EQ("", mirror.taskbar.Take());
}

struct OldCase {
    const char* pszName;
    DWORD nPlatform, nMajor, nMinor;
    int nCreated;
};

class CSProgressCtrlTaskbarVersions : public testing::TestWithParam<OldCase> {};

TEST_P(CSProgressCtrlTaskbarVersions, HaveAMirrorFromWindows7On) {
    auto& row = GetParam();
    TestWindow window;
    FakeTaskbar taskbar;
    ToldVersion version(Version(row.nPlatform, row.nMajor, row.nMinor, VER_NT_WORKSTATION));
    ProgressDialog test;
    test.ctrl.EnableTaskbarProgress(window);
    EXPECT_EQ(row.nCreated, taskbar.nCreated.load());
    test.ctrl.SetPos64(30);
    test.ctrl.StepIt();
    EXPECT_EQ(31, test.Pos());
    EXPECT_EQ(row.nCreated, !taskbar.Take().empty());
}

INSTANTIATE_TEST_SUITE_P(Cases, CSProgressCtrlTaskbarVersions,
                         testing::Values(OldCase{"XP64", 2, 5, 2, 0}, OldCase{"Vista", 2, 6, 0, 0},
                                         OldCase{"Windows7", 2, 6, 1, 1},
                                         OldCase{"Windows8", 2, 6, 2, 1},
                                         OldCase{"Windows10", 2, 10, 0, 1},
                                         OldCase{"NotOfNT", 1, 6, 1, 0}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSProgressCtrlTaskbar, ThisWindowsHasAMirrorFrom7On) {
    const int nExpected = IsThisWindowsAtLeast(6, 1) ? 1 : 0;
    TestWindow window;
    FakeTaskbar taskbar;
    ToldVersion told(ThisWindows());
    ProgressDialog test;
    test.ctrl.EnableTaskbarProgress(window);
    EXPECT_EQ(nExpected, taskbar.nCreated.load());
    test.ctrl.StepIt();
    EXPECT_EQ(nExpected == 0, taskbar.Take().empty());
}

TEST(CSProgressCtrlTaskbar, OlderWindowsStillDropsWhatThereWas) {
    Mirror mirror;
    ToldVersion version(Version(VER_PLATFORM_WIN32_NT, 6, 0, VER_NT_WORKSTATION));
    mirror.test.ctrl.EnableTaskbarProgress(mirror.window);
    EXPECT_EQ(mirror.State(TBPF_NOPROGRESS) + "gone; ", mirror.taskbar.Take());
    EXPECT_EQ(1, mirror.taskbar.nCreated.load());
}

TEST(CSProgressCtrlTaskbar, RealOneIsThereWithComAndHarmlessWithout) {
    TestWindow window;
    ProgressDialog test;
    test.ctrl.EnableTaskbarProgress(window); // no COM on this thread
    test.ctrl.StepIt();
    bool bCom = SUCCEEDED(::CoInitialize(nullptr));
    test.ctrl.EnableTaskbarProgress(window);
    test.ctrl.StepIt();
    test.ctrl.Pause(1);
    test.ctrl.EnableTaskbarProgress(nullptr);
    if (bCom) ::CoUninitialize();
    EXPECT_EQ(2, test.Pos());
}
} // namespace
