#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

class CaptureOutcome : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ASSERT_TRUE(monitor.CreateHidden(nullptr));
        GetDesktopSharedData().hwndMonitor = monitor;
    }
    void TearDown() override {
        monitor.Destroy();
        EngineTest::TearDown();
    }
    void Capture() { OnIconsCaptured(&record, 1); }

    const IconRecord record = RecordOf(0, L"a", {1, 2});
    FakeFrontEnd frontEnd;
    MyMonitor_Wnd monitor{frontEnd};
};

TEST_F(CaptureOutcome, IsToldOnceWhenTheUserAskedForTheCapture) {
    monitor.SetSnapshotAnnounce(1);
    Capture();
    EXPECT_EQ(std::vector<std::wstring>{L"Icons stored"}, frontEnd.outcomes);
    EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
    Capture();
    EXPECT_EQ(1u, frontEnd.outcomes.size());
}

TEST_F(CaptureOutcome, IsSilentWhenNobodyAsked) {
    Capture();
    EXPECT_TRUE(frontEnd.outcomes.empty());
}

TEST_F(CaptureOutcome, ClearsTheFlagBeforeItIsTold) {
    int nFlag = -1;
    frontEnd.fnOutcome = [&] { nFlag = monitor.GetSnapshotAnnounce(); };
    monitor.SetSnapshotAnnounce(1);
    Capture();
    EXPECT_EQ(0, nFlag);
}

class SnapshotOutcome : public testing::Test {
  protected:
    SnapshotKey raw;
    FakeFrontEnd frontEnd;
    std::optional<MyMonitor_Wnd> monitor{std::in_place, frontEnd};

    void Capture(const Layout& layout, int bAnnounce) {
        monitor->SetSnapshotAnnounce(bAnnounce);
        OnIconsCaptured(layout.data(), static_cast<unsigned>(layout.size()));
    }
};

TEST_F(SnapshotOutcome, RequestedCaptureTellsWhetherItWasStored) {
    Capture(MakeLayout(3), 1);
    EXPECT_EQ(0, monitor->GetSnapshotAnnounce());
    Capture(MakeLayout(3), 1);
    EXPECT_EQ(0, monitor->GetSnapshotAnnounce());
    EXPECT_EQ((std::vector<std::wstring>{L"Icons stored",
                                         L"No changes to the icons have been detected."}),
              frontEnd.outcomes);
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(SnapshotOutcome, OtherCapturesAreSilent) {
    Capture(MakeLayout(3), 0);
    Capture(MakeLayout(3), 0);
    EXPECT_TRUE(frontEnd.outcomes.empty());
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(SnapshotOutcome, CaptureWithoutRecordsKeepsTheRequest) {
    monitor->SetSnapshotAnnounce(1);
    OnIconsCaptured(nullptr, 0);
    EXPECT_EQ(1, monitor->GetSnapshotAnnounce());
    EXPECT_TRUE(frontEnd.outcomes.empty());
}

TEST_F(SnapshotOutcome, CaptureIsStoredInSilenceWhileThereIsNoMonitor) {
    monitor->SetSnapshotAnnounce(1);
    monitor.reset();
    Layout layout = MakeLayout(3);
    OnIconsCaptured(layout.data(), 3);
    EXPECT_TRUE(frontEnd.outcomes.empty());
    EXPECT_EQ(1u, raw.Values().size());
}

} // namespace
