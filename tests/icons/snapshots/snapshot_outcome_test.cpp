#include "icons/monitor/front_end.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/snapshot_store.h"

#include <gtest/gtest.h>

namespace {
class OutcomeRecorder : public MonitorFrontEnd {
  public:
    OutcomeRecorder() { SetMonitorFrontEnd(this); }
    ~OutcomeRecorder() override { SetMonitorFrontEnd(nullptr); }
    void OnMonitorStart() override {}
    void OnRoundStart(MyMonitor_Wnd&, int) override {}
    void OnMenuRequest(MyMonitor_Wnd&) override {}
    void OnCaptureOutcome(const wchar_t* pszText) override { texts.push_back(pszText); }
    void OnMonitorClose() override {}
    void OnRoundEnd() override {}

    std::vector<std::wstring> texts;
};

class SnapshotOutcome : public testing::Test {
  protected:
    SnapshotKey raw;
    MyMonitor_Wnd monitor;
    OutcomeRecorder recorder;

    void Capture(const Layout& layout, int bAnnounce) {
        monitor.SetSnapshotAnnounce(bAnnounce);
        OnIconsCaptured(layout.data(), static_cast<unsigned>(layout.size()));
    }
};

TEST_F(SnapshotOutcome, RequestedCaptureTellsWhetherItWasStored) {
    Capture(MakeLayout(3), 1);
    EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
    Capture(MakeLayout(3), 1);
    EXPECT_EQ(0, monitor.GetSnapshotAnnounce());
    EXPECT_EQ((std::vector<std::wstring>{L"Icons stored",
                                         L"No changes to the icons have been detected."}),
              recorder.texts);
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(SnapshotOutcome, OtherCapturesAreSilent) {
    Capture(MakeLayout(3), 0);
    Capture(MakeLayout(3), 0);
    EXPECT_TRUE(recorder.texts.empty());
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(SnapshotOutcome, CaptureWithoutRecordsKeepsTheRequest) {
    monitor.SetSnapshotAnnounce(1);
    OnIconsCaptured(nullptr, 0);
    EXPECT_EQ(1, monitor.GetSnapshotAnnounce());
    EXPECT_TRUE(recorder.texts.empty());
}
} // namespace
