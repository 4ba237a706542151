#include "progress/ctrl_dlg.h"

#include <gtest/gtest.h>

namespace {
std::string Range(int nLow, int nHigh) {
    return "range " + std::to_string(nLow) + " " + std::to_string(nHigh) + "; by 1; ";
}

TEST(CSProgressCtrlBar, InitTiesTheObjectAndSetsTheBarUp) {
    ProgressDialog test(10, 50, 20);
    EXPECT_EQ(&test.ctrl, CSCtrl::FromHandle(test.Bar()));
    EXPECT_EQ(static_cast<unsigned>(IDC_TEST_BAR), test.ctrl.GetID());
    EXPECT_EQ(Range(10, 50) + "pos 20; ", test.Take());
    EXPECT_EQ(10, test.Low());
    EXPECT_EQ(50, test.High());
    EXPECT_EQ(20, test.Pos());
    EXPECT_EQ(25, test.ctrl.GetProgressEx()->GetPercentCompleted());
}

struct SetupCase {
    const char* pszName;
    __int64 low, high, pos;
    int nLow, nHigh, nPos; // of the bar
};

class CSProgressCtrlSetupTable : public testing::TestWithParam<SetupCase> {};

TEST_P(CSProgressCtrlSetupTable, ReachesTheBar) {
    auto& row = GetParam();
    ProgressDialog test;
    test.Take();
    test.ctrl.Setup64(row.low, row.high, row.pos);
    std::string strPos = "pos " + std::to_string(row.nPos) + "; ";
    EXPECT_EQ(Range(row.nLow, row.nHigh) + strPos, test.Take());
    EXPECT_EQ(row.nLow, test.Low());
    EXPECT_EQ(row.nHigh, test.High());
    EXPECT_EQ(row.nPos, test.Pos());

    test.ctrl.SetRange64(row.low, row.high);
    EXPECT_EQ(Range(row.nLow, row.nHigh), test.Take());
    test.ctrl.SetPos64(row.pos);
    EXPECT_EQ(strPos, test.Take());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CSProgressCtrlSetupTable,
    testing::Values(SetupCase{"Percent", 0, 100, 30, 0, 100, 30},
                    SetupCase{"Negative", -50, 50, -20, -50, 50, -20},
                    SetupCase{"AllWithoutDivisor", 0, 65535, 65535, 0, 65535, 65535},
                    SetupCase{"FirstWithDivisor", 0, 65536, 1000, 0, 32768, 500},
                    SetupCase{"Terabyte", 0, 1LL << 40, 1LL << 39, 0, 65534, 32767},
                    SetupCase{"NegativeWithDivisor", -131070, 100, -1001, -65535, 50, -500}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSProgressCtrlBar, SetupIsThatOf64Bits) {
    ProgressDialog test;
    test.Take();
    test.ctrl.Setup(0, 131070, 600);
    EXPECT_EQ(Range(0, 65535) + "pos 300; ", test.Take());
}

TEST(CSProgressCtrlBar, StepsMoveTheBarOncePerDivisor) {
    ProgressDialog test;
    test.ctrl.Setup64(0, 131070, 200);
    test.Take();
    test.ctrl.StepIt();
    EXPECT_EQ("", test.Take());
    test.ctrl.StepIt();
    EXPECT_EQ("step; ", test.Take());
    EXPECT_EQ(101, test.Pos());
}

TEST(CSProgressCtrlBar, StepTakesThePositionThatTheBarHas) {
    ProgressDialog test(0, 10, 0);
    ::SendMessageW(test.Bar(), PBM_SETPOS, 6, 0); // behind the object's back
    test.ctrl.StepIt();
    EXPECT_EQ(7, test.Pos());
    EXPECT_EQ(70, test.ctrl.GetProgressEx()->GetPercentCompleted());
}

TEST(CSProgressCtrlBar, CancelIsTheModels) {
    ProgressDialog test;
    EXPECT_EQ(0, test.ctrl.IsCanceled());
    test.ctrl.Cancel(1);
    EXPECT_EQ(1, test.ctrl.IsCanceled());
    EXPECT_EQ(1, test.ctrl.GetProgressEx()->IsCanceled());
    test.ctrl.GetProgressEx()->Cancel(0);
    EXPECT_EQ(0, test.ctrl.IsCanceled());
}

TEST(CSProgressCtrlBar, PauseColoursTheBarAndCountsInTheModel) {
    ProgressDialog test;
    test.Take();
    test.ctrl.Pause(1);
    EXPECT_EQ("state 3; ", test.Take());
    test.ctrl.Pause(0);
    EXPECT_EQ("state 1; ", test.Take());
}

TEST(CSProgressCtrlBar, ModelWorksTheBarByItself) {
    ProgressDialog test;
    test.Take();
    ProgressEx* pModel = test.ctrl.GetProgressEx();
    pModel->Setup(0, 20, 5);
    EXPECT_EQ(Range(0, 20) + "pos 5; ", test.Take());
    EXPECT_EQ(1, pModel->StepIt());
    EXPECT_EQ("step; ", test.Take());
}

TEST(CSProgressCtrlBar, WithoutWindowNothingHappens) {
    CSProgressCtrl ctrl;
    ctrl.Setup64(0, 131070, 200);
    ctrl.SetPos64(400);
    ctrl.StepIt();
    ctrl.StepIt();
    ctrl.Pause(1);
    ctrl.Pause(0);
    ctrl.DoMarquee(1, 50);
    ctrl.DoMarquee(0, 0);
    ctrl.SetupLines(1, 2, 3, 4);
    ctrl.SetText(0, L"text");
    ctrl.SetTextFmt(3, L"%d", 1);
    ctrl.Cancel(1);
    EXPECT_EQ(1, ctrl.IsCanceled());
}

TEST(CSProgressCtrlBar, OutlivesItsWindow) {
    ProgressDialog test;
    test.SetupLines();
    test.dialog.Destroy();
    test.ctrl.SetPos64(40);
    test.ctrl.StepIt();
    test.ctrl.SetText(1, L"text");
    test.ctrl.Pause(1);
    test.ctrl.DoMarquee(1, 50);
}

TEST(CSProgressCtrlMarquee, StyleStandsWhileTheMessageIsHandled) {
    ProgressDialog test;
    std::vector<LONG_PTR> styles;
    test.tap->answer = [&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == PBM_SETMARQUEE) {
            styles.push_back(::GetWindowLongPtrW(test.Bar(), GWL_STYLE) & PBS_MARQUEE);
        }
        return {};
    };
    test.Take();
    LONG_PTR nStyle = ::GetWindowLongPtrW(test.Bar(), GWL_STYLE);
    EXPECT_EQ(0, nStyle & PBS_MARQUEE);
    test.ctrl.DoMarquee(1, 40);
    EXPECT_EQ("marquee 1 40; ", test.Take());
    EXPECT_EQ(nStyle | PBS_MARQUEE, ::GetWindowLongPtrW(test.Bar(), GWL_STYLE));
    test.ctrl.DoMarquee(0, 0);
    EXPECT_EQ("marquee 0 0; ", test.Take());
    EXPECT_EQ(nStyle, ::GetWindowLongPtrW(test.Bar(), GWL_STYLE));
    EXPECT_EQ(std::vector<LONG_PTR>(2, PBS_MARQUEE), styles);
}

TEST(CSProgressCtrlMarquee, BarComesBackAtItsPosition) {
    ProgressDialog test(0, 100, 30);
    test.ctrl.DoMarquee(1, 40);
    test.ctrl.DoMarquee(0, 0);
    EXPECT_EQ(30, test.Pos());
    test.ctrl.StepIt();
    EXPECT_EQ(31, test.Pos());
}

TEST(CSProgressCtrlMarquee, EndOfOneThatNeverRanIsHarmless) {
    ProgressDialog test(0, 100, 30);
    LONG_PTR nStyle = ::GetWindowLongPtrW(test.Bar(), GWL_STYLE);
    test.ctrl.DoMarquee(0, 0);
    EXPECT_EQ(nStyle, ::GetWindowLongPtrW(test.Bar(), GWL_STYLE));
    EXPECT_EQ(30, test.Pos());
}
} // namespace
