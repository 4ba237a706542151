#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include <gtest/gtest.h>

namespace {

using FrontEnd = EngineTest;

TEST_F(FrontEnd, IsTheOneThatWasSetLast) {
    EXPECT_EQ(nullptr, GetMonitorFrontEnd());
    {
        FakeFrontEnd frontEnd;
        EXPECT_EQ(&frontEnd, GetMonitorFrontEnd());
    }
    EXPECT_EQ(nullptr, GetMonitorFrontEnd());
}

class CaptureOutcome : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(monitor.CreateHidden(nullptr));
        desktopSharedData.hwndMonitor = monitor;
    }
    void TearDown() override {
        monitor.Destroy();
        EngineTest::TearDown();
    }
    MyMonitor_Wnd monitor;
};

TEST_F(CaptureOutcome, IsToldOnceWhenTheUserAskedForTheCapture) {
    FakeFrontEnd frontEnd;
    monitor.SetSnapshotAnnounce(1);
    ReportCaptureOutcome(L"Icons stored");
    EXPECT_EQ(std::vector<std::wstring>{L"Icons stored"}, frontEnd.outcomes);
    EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
    ReportCaptureOutcome(L"Icons stored");
    EXPECT_EQ(1u, frontEnd.outcomes.size());
}

TEST_F(CaptureOutcome, IsSilentWhenNobodyAsked) {
    FakeFrontEnd frontEnd;
    ReportCaptureOutcome(L"Icons stored");
    EXPECT_TRUE(frontEnd.outcomes.empty());
}

TEST_F(CaptureOutcome, ClearsTheFlagBeforeItIsTold) {
    struct Observer : FakeFrontEnd {
        void OnCaptureOutcome(const wchar_t*) override {
            nFlag = MyMonitor_Wnd::GetCurrent()->GetSnapshotAnnounce();
        }
        int nFlag = -1;
    } frontEnd;
    monitor.SetSnapshotAnnounce(1);
    ReportCaptureOutcome(L"x");
    EXPECT_EQ(0, frontEnd.nFlag);
}

TEST_F(CaptureOutcome, WithoutAFrontEndOnlyClearsTheFlag) {
    monitor.SetSnapshotAnnounce(1);
    ReportCaptureOutcome(L"x");
    EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
}

TEST_F(FrontEnd, HearsNoOutcomeWhileThereIsNoMonitor) {
    FakeFrontEnd frontEnd;
    ReportCaptureOutcome(L"x");
    EXPECT_TRUE(frontEnd.outcomes.empty());
}

} // namespace
