#include "app/identity/product_info.h"
#include "progress/model_bar.h"
#include "progress/progress_clock.h"

#include <gtest/gtest.h>

namespace {
TEST(ProgressExStep, MovesTheBarAtOnceWithoutDivisor) {
    TestBar bar;
    bar.SetRange64(0, 10);
    bar.log.clear();
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(2, bar.nPos);
    EXPECT_EQ(0u, bar.nSubStep);
    EXPECT_EQ(BarLog({"step", "step"}), bar.log);
}

TEST(ProgressExStep, MovesTheBarOncePerDivisor) {
    TestBar bar;
    bar.SetRange64(0, 65535 * 3);
    bar.log.clear();
    for (int n = 1; n <= 12; ++n) {
        EXPECT_EQ(n % 3 == 0, bar.StepIt()) << n;
        EXPECT_EQ(static_cast<unsigned>(n % 3), bar.nSubStep) << n;
        EXPECT_EQ(n / 3, bar.nPos) << n;
    }
    EXPECT_EQ(BarLog(4, "step"), bar.log);
}

TEST(ProgressExStep, GoesOnPastTheEnd) {
    TestBar bar;
    bar.Setup(0, 2, 2);
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(3, bar.nPos);
}

TEST(ProgressExStep, PositionLeavesWhatWasSteppedSinceTheLastBarStep) {
    TestBar bar;
    bar.SetRange64(0, 65535 * 3);
    bar.StepIt();
    bar.StepIt();
    bar.SetPos64(300);
    EXPECT_EQ(2u, bar.nSubStep);
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(101, bar.nPos);
}

TEST(ProgressExStep, StaysAtTheLastNumber) {
    TestBar bar;
    bar.nPos = 0x7FFFFFFF;
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(0x7FFFFFFF, bar.nPos);
    EXPECT_EQ(BarLog({"step"}), bar.log);
}

TEST(ProgressExStep, AsksTheClockOnlyWhenTheBarMoves) {
    static int nAsked;
    nAsked = 0;
    auto Ask = []() WINAPI -> DWORD {
        ++nAsked;
        return 1;
    };
    ReplaceImport replaced(__imp_GetTickCount, static_cast<DWORD(WINAPI*)()>(Ask));
    TestBar bar;
    bar.SetRange64(0, 65535 * 100);
    for (int n = 0; n < 250; ++n) bar.StepIt();
    EXPECT_EQ(2, nAsked);
}

TEST(ProgressExCancel, IsSetAndTakenBack) {
    TestBar bar;
    EXPECT_EQ(0, bar.IsCanceled());
    bar.Cancel(1);
    EXPECT_EQ(1, bar.IsCanceled());
    EXPECT_EQ(1, bar.bCanceled.load());
    bar.Cancel(0);
    EXPECT_EQ(0, bar.IsCanceled());
}

TEST(ProgressExCancel, StopsNoStep) {
    TestBar bar;
    bar.SetRange64(0, 10);
    bar.Cancel(1);
    EXPECT_EQ(1, bar.StepIt());
    EXPECT_EQ(1, bar.nPos);
}

TEST(ProgressExText, VariadicFormHandsOnTheArguments) {
    TestBar bar;
    ProgressEx& progress = bar;
    progress.SetText(2, L"%d of %d, %s", 3, 7, L"copied");
    progress.SetText(0, L"plain");
    EXPECT_EQ(std::vector<std::wstring>({L"2: 3 of 7, copied", L"0: plain"}), bar.texts);
}

TEST(ProgressExText, FormatIsTheLibrarysDialect) {
    TestBar bar;
    ProgressEx& progress = bar;
    const char* pszNarrow = "narrow";
    progress.SetText(1, L"%hs and %s", pszNarrow, L"wide");
    progress.SetText(1, L"%I64d", 1LL << 40);
    EXPECT_EQ(std::vector<std::wstring>({L"1: narrow and wide", L"1: 1099511627776"}), bar.texts);
}

/// A bar that shows no text takes the base's.
class SilentBar : public ProgressEx {
  public:
    void DoStepIt() override {}
    void DoSetPos(int) override {}
    void DoSetRange(int, int) override {}
    int ProcessAllMessages() override { return 1; }
};

TEST(ProgressExText, IsNothingInTheBase) {
    SilentBar bar;
    bar.SetText(1, L"%d", 5);
    bar.SetText(99, nullptr);
    bar.SetText(-1, L"%s", nullptr);
}

TEST(ProgressExShutDown, IsSteppedByTheClosingOfModules) {
    ASSERT_NE(nullptr, ProductInfo::pfnStepProgress);
    TestBar bar;
    bar.Setup(0, 10, 4);
    EXPECT_EQ(1, ProductInfo::pfnStepProgress(&bar));
    EXPECT_EQ(5, bar.nPos);
}
} // namespace
