#include "icons/icons_test_support.h"
#include "icons/monitor/message_gate.h"
#include "icons/monitor/monitor_wnd.h"
#include <gtest/gtest.h>

namespace {

struct LetInCall {
    HWND hwnd; // null: for the whole process
    UINT uMsg;
    DWORD dwAction;
    bool operator==(const LetInCall&) const = default;
};

std::vector<LetInCall> letIn;

BOOL WINAPI FilterOfWindow(HWND hwnd, UINT uMsg, DWORD dwAction, void*) {
    letIn.push_back({hwnd, uMsg, dwAction});
    return TRUE;
}

BOOL WINAPI FilterOfProcess(UINT uMsg, DWORD dwAction) {
    letIn.push_back({nullptr, uMsg, dwAction});
    return TRUE;
}

template <class Fn>
FARPROC Erased(Fn* pfn) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfn));
}

constexpr DWORD kAllow = 1; // MSGFLT_ALLOW and MSGFLT_ADD of winuser.h

class MessageGate : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        letIn.clear();
    }
};

TEST_F(MessageGate, OpensTheMonitorWindowForTheShellsMessages) {
    ReplacedFuncs funcs({{"ChangeWindowMessageFilterEx", Erased(&FilterOfWindow)},
                         {"ChangeWindowMessageFilter", Erased(&FilterOfProcess)}});
    RegisterTaskbarCreated();
    MyMonitor_Wnd monitor;
    ASSERT_TRUE(monitor.CreateHidden(nullptr));
    HWND hwnd = monitor;
    EXPECT_EQ((std::vector<LetInCall>{{hwnd, GetTestCompanyMsg(), kAllow},
                                      {hwnd, WM_COPYDATA, kAllow},
                                      {hwnd, GetTestTaskbarCreated(), kAllow}}),
              letIn);
    monitor.Destroy();
}

TEST_F(MessageGate, OpensTheProcessWhereWindowsHaveNoFilter) {
    ReplacedFuncs funcs({{"ChangeWindowMessageFilterEx", nullptr},
                         {"ChangeWindowMessageFilter", Erased(&FilterOfProcess)}});
    TestWindow wnd;
    LetShellMessagesIn(wnd, GetTestTaskbarCreated());
    EXPECT_EQ((std::vector<LetInCall>{{nullptr, GetTestCompanyMsg(), kAllow},
                                      {nullptr, WM_COPYDATA, kAllow},
                                      {nullptr, GetTestTaskbarCreated(), kAllow}}),
              letIn);
}

TEST_F(MessageGate, NeverOpensForTheNullMessage) {
    ReplacedFuncs funcs({{"ChangeWindowMessageFilterEx", Erased(&FilterOfWindow)}});
    TestWindow wnd;
    LetShellMessagesIn(wnd, 0);
    for (const LetInCall& call : letIn) EXPECT_NE(static_cast<UINT>(WM_NULL), call.uMsg);
    EXPECT_EQ(2u, letIn.size());
}

TEST_F(MessageGate, IsNotThereOnOlderSystems) {
    ReplacedFuncs funcs(
        {{"ChangeWindowMessageFilterEx", nullptr}, {"ChangeWindowMessageFilter", nullptr}});
    MyMonitor_Wnd monitor;
    EXPECT_TRUE(monitor.CreateHidden(nullptr));
    EXPECT_TRUE(letIn.empty());
    monitor.Destroy();
}

} // namespace
