#include "progress/ctrl_taskbar.h"
#include "progress/progress_ex.h"
#include "progress/progress_top_log.h"
#include "progress/progress_window.h"

#include <gtest/gtest.h>
#include <vector>

// A bar with more units than pixels gets its steps together, now and then.

namespace {
constexpr __int64 kMany = 10'000'000; // 153 of them are a bar unit
constexpr int kUnit = 153, kUnits = 65359;

void StepUnits(Progress& progress, int nUnits) {
    for (int i = 0; i < nUnits * kUnit; ++i) progress.StepIt();
}

struct FineCase {
    const char* pszName;
    void (*fnCalls)(Progress&);
    int nPos, nHigh; // of the bar
    int nPercent;
};

class ProgressFineStepsTable : public testing::TestWithParam<FineCase> {};

TEST_P(ProgressFineStepsTable, AreExactForWhoeverAsks) {
    auto& row = GetParam();
    Progress progress;
    progress.SetRange64(0, kMany);
    row.fnCalls(progress);
    EXPECT_EQ(row.nPercent, progress.GetProgressEx()->GetPercentCompleted());
    EXPECT_EQ(row.nPos, PosOf(progress));
    EXPECT_EQ(row.nHigh, HighOf(progress));
    EXPECT_FALSE(PumpInRealTime([&] { return PosOf(progress) != row.nPos; },
                                std::chrono::milliseconds(60))); // nor do they come again
    EXPECT_EQ(row.nPercent, progress.GetProgressEx()->GetPercentCompleted());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgressFineStepsTable,
    testing::Values(FineCase{"Steps", [](Progress& p) { StepUnits(p, 10'000); }, 10'000, kUnits,
                             15},
                    FineCase{"OneStep", [](Progress& p) { StepUnits(p, 1); }, 1, kUnits, 0},
                    FineCase{"StepsBehindPosition",
                             [](Progress& p) {
                                 p.SetPos64(20'000 * kUnit);
                                 StepUnits(p, 7);
                             },
                             20'007, kUnits, 30},
                    FineCase{"PositionBehindSteps",
                             [](Progress& p) {
                                 StepUnits(p, 7);
                                 p.SetPos64(20'000 * kUnit);
                             },
                             20'000, kUnits, 30},
                    FineCase{"PositionBetweenSteps",
                             [](Progress& p) {
                                 StepUnits(p, 7);
                                 p.SetPos64(20'000 * kUnit);
                                 StepUnits(p, 5);
                                 p.SetPos64(30'000 * kUnit);
                                 StepUnits(p, 3);
                             },
                             30'003, kUnits, 45},
                    FineCase{"LargeRangeBehindSteps",
                             [](Progress& p) {
                                 StepUnits(p, 700);
                                 p.SetRange64(0, 1000);
                             },
                             700, 1000, 70},
                    FineCase{"SmallRangeBehindSteps",
                             [](Progress& p) {
                                 StepUnits(p, 70);
                                 p.SetRange64(0, 100); // at once from here on
                                 p.StepIt();
                             },
                             71, 100, 71},
                    FineCase{"ShortRangeBehindSteps",
                             [](Progress& p) {
                                 StepUnits(p, 70);
                                 p.SetRange(0, 100);
                             },
                             0, 100, 0},
                    FineCase{"ToTheEnd",
                             [](Progress& p) {
                                 p.SetPos64((kUnits - 5) * kUnit);
                                 StepUnits(p, 5);
                             },
                             kUnits, kUnits, 100}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ProgressFineSteps, AreCountedAtEveryMoment) {
    Progress progress;
    progress.SetRange64(0, kMany);
    for (int n = 1; n <= 40; ++n) {
        StepUnits(progress, 25);
        ASSERT_EQ(25 * n, PosOf(progress));
    }
}

TEST(ProgressFineSteps, AreTimedOneByOne) {
    FakeClock clock;
    Progress progress;
    progress.SetRange64(0, kMany);
    for (int n = 0; n < 11; ++n) {
        StepUnits(progress, 1);
        clock.Advance(1000);
    }
    EXPECT_EQ(1000u, progress.GetProgressEx()->GetAverageStepDuration());
    EXPECT_EQ(153u, progress.GetProgressEx()->GetEventsPerSeconds(1));
}

TEST(ProgressFineSteps, OfAWorkerThatGoesSilentAreShownByTheDialog) {
    Progress progress;
    progress.SetRange64(0, kMany);
    EXPECT_TRUE(Settle(progress));
    TopLog log(progress, false);
    StepUnits(progress, 3);
    std::string str;
    EXPECT_TRUE(PumpInRealTime([&] { return (str += log.Take()).size() > 0; }));
    EXPECT_EQ("top update ", (str + log.Take()).substr(0, 11));
    PumpInRealTime([] { return false; }, std::chrono::milliseconds(100)); // a later part of them
    log.Take();
    EXPECT_FALSE(PumpInRealTime([&] { return log.Take().size() > 0; },
                                std::chrono::milliseconds(150))); // without steps none
}

TEST(ProgressFineSteps, ThatSomebodyAskedForAreShownAllTheSame) {
    Progress progress;
    progress.SetRange64(0, kMany);
    EXPECT_TRUE(Settle(progress));
    TopLog log(progress, false);
    StepUnits(progress, 3);
    EXPECT_EQ(3, PosOf(progress)); // the bar has them now
    EXPECT_TRUE(PumpInRealTime([&] { return log.Take().size() > 0; }));
}

TEST(ProgressFineSteps, OfAQuickWorkerAreAllThere) {
    Progress progress;
    progress.SetRange64(0, kMany);
    StepUnits(progress, kUnits - 1);
    EXPECT_EQ(kUnits - 1, PosOf(progress));
    EXPECT_EQ(99, progress.GetProgressEx()->GetPercentCompleted());
}

TEST(ProgressFineSteps, OfAHiddenDialogDoNotBringItUp) {
    Progress progress;
    progress.SetRange64(0, kMany);
    EXPECT_TRUE(Settle(progress));
    progress.Show(0);
    TopLog log(progress, false);
    StepUnits(progress, 3);
    EXPECT_FALSE(
        PumpInRealTime([&] { return log.Take().size() > 0; }, std::chrono::milliseconds(150)));
    EXPECT_EQ(3, PosOf(progress));
}

TEST(ProgressFineSteps, LastOneIsShownAtOnce) {
    Progress progress;
    progress.SetRange64(0, kMany);
    progress.SetPos64((kUnits - 1) * kUnit);
    TopLog log(progress, false);
    StepUnits(progress, 1);
    EXPECT_EQ("top update ", log.Take());
}

TEST(ProgressFineSteps, ReachTheTaskbar) {
    FakeTaskbar taskbar;
    Progress progress;
    ASSERT_EQ(1, taskbar.nCreated.load());
    progress.SetRange64(0, kMany);
    taskbar.Take();
    StepUnits(progress, 30);
    std::string str;
    EXPECT_TRUE(PumpInRealTime([&] {
        str += taskbar.Take();
        return str.find(FakeTaskbar::Value(WindowOf(progress), 30, kUnits)) != str.npos;
    })) << str;
    HWND hwnd = WindowOf(progress);
    taskbar.Take();
    progress.Close();
    EXPECT_EQ(FakeTaskbar::State(hwnd, TBPF_NOPROGRESS) + "gone; ", taskbar.Take());
}

TEST(ProgressFineSteps, TaskbarEndsWithThePositionThatTheBarHas) {
    FakeTaskbar taskbar;
    Progress progress;
    HWND hwnd = WindowOf(progress);
    progress.SetRange64(0, kMany);
    const DWORD nWorker = ::GetCurrentThreadId();
    std::atomic<bool> bSet{false};
    // As a worker that sets a position while the dialog tells the taskbar an earlier one.
    taskbar.fnValue = [&] {
        if (::GetCurrentThreadId() == nWorker || bSet.exchange(true)) return;
        ::SendDlgItemMessageW(hwnd, kShownBarId, PBM_SETPOS, 500, 0);
    };
    StepUnits(progress, 3);
    std::string str;
    EXPECT_TRUE(PumpInRealTime([&] {
        str += taskbar.Take();
        return str.ends_with(FakeTaskbar::Value(hwnd, 500, kUnits));
    })) << str;
    progress.Close();
}

TEST(ProgressFineSteps, AreInAPictureOfTheBar) {
    Progress progress;
    HWND hwndBar = ::GetDlgItem(WindowOf(progress), kShownBarId);
    progress.SetRange64(0, kMany);
    constexpr int kWidth = 400, kHeight = 40;
    auto draw = [&] {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof(info.bmiHeader), kWidth, kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* pBits = nullptr;
        HBITMAP hbm = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pBits, nullptr, 0);
        HDC hdc = ::CreateCompatibleDC(nullptr);
        HGDIOBJ hOld = ::SelectObject(hdc, hbm);
        ::SendMessageW(hwndBar, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(hdc), PRF_CLIENT);
        ::GdiFlush();
        auto* p = static_cast<const DWORD*>(pBits);
        std::vector<DWORD> picture(p, p + kWidth * kHeight);
        ::SelectObject(hdc, hOld);
        ::DeleteDC(hdc);
        ::DeleteObject(hbm);
        return picture;
    };
    const std::vector<DWORD> empty = draw();
    StepUnits(progress, 8'000);
    const std::vector<DWORD> stepped = draw();
    EXPECT_NE(empty, stepped);
    EXPECT_EQ(8'000, PosOf(progress));
    EXPECT_EQ(stepped, draw());
}

TEST(ProgressFineSteps, MayBeLeftBehindAtTheEnd) {
    for (int n = 0; n < 20; ++n) {
        Progress progress;
        progress.SetRange64(0, kMany);
        StepUnits(progress, 10 + n);
        if (n % 2) progress.Close();
    }
    EXPECT_EQ(0, CountProgressWindows());
}
} // namespace
