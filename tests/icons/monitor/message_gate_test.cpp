#include "icons/monitor/message_gate.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <cstring>
#include <optional>

extern "C" FARPROC __imp_OpenProcess, __imp_OpenProcessToken, __imp_GetTokenInformation;

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

constexpr DWORD kAllow = 1; // MSGFLT_ALLOW and MSGFLT_ADD of winuser.h

// Levels as winnt.h has them from Vista on.
constexpr DWORD kLow = 0x1000, kMedium = 0x2000, kMediumPlus = 0x2100, kHigh = 0x3000,
                kSystem = 0x4000;
constexpr int kIntegrityLevel = 25; // TokenIntegrityLevel

/// The integrity levels of a machine, as the platform is asked for them: one of this process, one
/// of the process that has the desktop. Without a level the platform refuses to tell it.
class PlayedLevels {
  public:
    PlayedLevels(std::optional<DWORD> own, std::optional<DWORD> shell, bool bShellOpens = true)
        : openProcess(__imp_OpenProcess, &Open), openToken(__imp_OpenProcessToken, &OpenToken),
          readToken(__imp_GetTokenInformation, &Read) {
        ownLevel = own;
        shellLevel = shell;
        bOpens = bShellOpens;
        dwOpened = 0;
        hShell = hOwnToken = hShellToken = nullptr; // handles come again in the next test
    }
    PlayedLevels(const PlayedLevels&) = delete;
    PlayedLevels& operator=(const PlayedLevels&) = delete;
    /// The process that was opened last.
    static DWORD Opened() { return dwOpened; }

  private:
    /// Handles that can be closed, and tell whose they are.
    static HANDLE WINAPI Open(DWORD dwAccess, BOOL, DWORD dwProcess) {
        EXPECT_EQ(0x1000u, dwAccess); // all that the shell of another level grants
        dwOpened = dwProcess;
        if (!bOpens) return nullptr;
        return hShell = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    static BOOL WINAPI OpenToken(HANDLE hProcess, DWORD, HANDLE* phToken) {
        EXPECT_TRUE(hProcess == ::GetCurrentProcess() || hProcess == hShell);
        *phToken = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        (hProcess == ::GetCurrentProcess() ? hOwnToken : hShellToken) = *phToken;
        return TRUE;
    }
    static BOOL WINAPI Read(HANDLE hToken, TOKEN_INFORMATION_CLASS nClass, void* pInfo, DWORD cb,
                            DWORD* pcb) {
        const std::optional<DWORD>& level = hToken == hShellToken ? shellLevel : ownLevel;
        if (nClass != kIntegrityLevel || !level) return FALSE;
        SID sid{SID_REVISION, 1, {{0, 0, 0, 0, 0, 16}}, {*level}};
        *pcb = sizeof(SID_AND_ATTRIBUTES) + sizeof(sid);
        if (cb < *pcb) return FALSE;
        auto* pLabel = static_cast<SID_AND_ATTRIBUTES*>(pInfo);
        pLabel->Sid = pLabel + 1;
        std::memcpy(pLabel->Sid, &sid, sizeof(sid));
        return TRUE;
    }
    static inline std::optional<DWORD> ownLevel, shellLevel;
    static inline bool bOpens;
    static inline DWORD dwOpened;
    static inline HANDLE hShell, hOwnToken, hShellToken;
    ReplaceImport openProcess, openToken, readToken;
};

class MessageGate : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        letIn.clear();
        Share(view, nullptr);
    }
    /// What a monitor window is opened for.
    std::vector<LetInCall> ExpectedFor(HWND hwnd) {
        return {{hwnd, GetTestCompanyMsg(), kAllow},
                {hwnd, WM_COPYDATA, kAllow},
                {hwnd, GetTestTaskbarCreated(), kAllow}};
    }

    TestView view;
};

TEST_F(MessageGate, OpensTheMonitorWindowForTheShellsMessages) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", AsProc(&FilterOfWindow)},
                            {"ChangeWindowMessageFilter", AsProc(&FilterOfProcess)}});
    PlayedLevels levels(kHigh, kMedium);
    RegisterTaskbarCreated();
    FakeFrontEnd frontEnd;
    MyMonitor_Wnd monitor(frontEnd);
    ASSERT_TRUE(monitor.CreateHidden(nullptr));
    EXPECT_EQ(ExpectedFor(monitor), letIn);
    EXPECT_EQ(::GetCurrentProcessId(), levels.Opened()); // the list view's
    monitor.Destroy();
}

TEST_F(MessageGate, OpensTheProcessWhereWindowsHaveNoFilter) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", nullptr},
                            {"ChangeWindowMessageFilter", AsProc(&FilterOfProcess)}});
    PlayedLevels levels(kHigh, kMedium);
    TestWindow wnd;
    LetShellMessagesIn(wnd, GetTestTaskbarCreated());
    EXPECT_EQ(ExpectedFor(nullptr), letIn);
}

TEST_F(MessageGate, NeverOpensForTheNullMessage) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", AsProc(&FilterOfWindow)}});
    PlayedLevels levels(kHigh, kMedium);
    TestWindow wnd;
    LetShellMessagesIn(wnd, 0);
    for (const LetInCall& call : letIn) EXPECT_NE(static_cast<UINT>(WM_NULL), call.uMsg);
    EXPECT_EQ(2u, letIn.size());
}

TEST_F(MessageGate, IsNotThereOnOlderSystems) {
    HideFunctions hidden{"ChangeWindowMessageFilterEx", "ChangeWindowMessageFilter"};
    PlayedLevels levels(kHigh, kMedium);
    FakeFrontEnd frontEnd;
    MyMonitor_Wnd monitor(frontEnd);
    EXPECT_TRUE(monitor.CreateHidden(nullptr));
    EXPECT_TRUE(letIn.empty());
    monitor.Destroy();
}

struct LevelCase {
    const char* pszName;
    std::optional<DWORD> own, shell;
    bool bShellOpens, bOpen;
};

class MessageGateLevels : public MessageGate, public testing::WithParamInterface<LevelCase> {};

TEST_P(MessageGateLevels, OpenItOnlyBelowTheMonitor) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", AsProc(&FilterOfWindow)},
                            {"ChangeWindowMessageFilter", AsProc(&FilterOfProcess)}});
    const LevelCase& row = GetParam();
    PlayedLevels levels(row.own, row.shell, row.bShellOpens);
    TestWindow wnd;
    LetShellMessagesIn(wnd, GetTestTaskbarCreated());
    EXPECT_EQ(row.bOpen ? ExpectedFor(wnd) : std::vector<LetInCall>{}, letIn);
}

INSTANTIATE_TEST_SUITE_P(
    Levels, MessageGateLevels,
    testing::Values(LevelCase{"BothMedium", kMedium, kMedium, true, false},
                    LevelCase{"BothHigh", kHigh, kHigh, true, false},
                    LevelCase{"MonitorHigh", kHigh, kMedium, true, true},
                    LevelCase{"MonitorSystem", kSystem, kMedium, true, true},
                    LevelCase{"MonitorAlittleHigher", kMediumPlus, kMedium, true, true},
                    LevelCase{"MonitorLow", kLow, kMedium, true, false},
                    LevelCase{"ShellHigh", kMedium, kHigh, true, false},
                    LevelCase{"ShellLow", kMedium, kLow, true, true},
                    LevelCase{"ShellRefusesToMedium", kMedium, kMedium, false, false},
                    LevelCase{"ShellRefusesToHigh", kHigh, kMedium, false, true},
                    LevelCase{"ShellsTokenTellsNothingToHigh", kHigh, {}, true, true},
                    LevelCase{"ShellsTokenTellsNothingToMedium", kMedium, {}, true, false},
                    LevelCase{"NoLevelsAsBeforeVista", {}, {}, true, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(MessageGate, StaysShutToAShellThatHasGoneForAnUnprivilegedMonitor) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", AsProc(&FilterOfWindow)}});
    GetDesktopSharedData().hwndListView = nullptr;
    PlayedLevels levels(kMedium, kMedium);
    TestWindow wnd;
    LetShellMessagesIn(wnd, GetTestTaskbarCreated());
    EXPECT_TRUE(letIn.empty());
    EXPECT_EQ(0u, levels.Opened());
}

TEST_F(MessageGate, StaysShutWhereTheRealShellIsOfTheSameLevel) {
    ReplaceFunctions funcs({{"ChangeWindowMessageFilterEx", AsProc(&FilterOfWindow)}});
    TestWindow wnd; // the desktop's windows are this process's own
    LetShellMessagesIn(wnd, GetTestTaskbarCreated());
    EXPECT_TRUE(letIn.empty());
}

TEST_F(MessageGate, TellsWindowsOfAHigherLevel) {
    struct {
        std::optional<DWORD> own, other;
        bool bOpens, bHigher;
    } const kLevels[] = {{kMedium, kHigh, true, true},  {kMedium, kMedium, true, false},
                         {kHigh, kMedium, true, false}, {kMedium, kHigh, false, false},
                         {{}, kHigh, true, false},      {kMedium, {}, true, false}};
    TestWindow wnd;
    for (const auto& row : kLevels) {
        PlayedLevels levels(row.own, row.other, row.bOpens);
        EXPECT_EQ(row.bHigher, IsOfHigherLevel(wnd));
    }
    EXPECT_FALSE(IsOfHigherLevel(nullptr));
}
/// Users of a machine, as the platform is asked for them: this process's and another one's.
class PlayedUsers {
  public:
    PlayedUsers(std::optional<DWORD> own, std::optional<DWORD> other, DWORD dwAccessGranted)
        : openProcess(__imp_OpenProcess, &Open), openToken(__imp_OpenProcessToken, &OpenToken),
          readToken(__imp_GetTokenInformation, &Read) {
        ownUser = own;
        otherUser = other;
        dwGranted = dwAccessGranted;
        hOther = hOtherToken = nullptr;
    }

  private:
    static HANDLE WINAPI Open(DWORD dwAccess, BOOL, DWORD) {
        if (dwAccess != dwGranted) return nullptr;
        return hOther = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    static BOOL WINAPI OpenToken(HANDLE hProcess, DWORD, HANDLE* phToken) {
        *phToken = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        if (hProcess == hOther) hOtherToken = *phToken;
        return TRUE;
    }
    static BOOL WINAPI Read(HANDLE hToken, TOKEN_INFORMATION_CLASS nClass, void* pInfo, DWORD cb,
                            DWORD* pcb) {
        const std::optional<DWORD>& user = hToken == hOtherToken ? otherUser : ownUser;
        if (nClass != TokenUser || !user) return FALSE;
        SID sid{SID_REVISION, 1, {{0, 0, 0, 0, 0, 5}}, {*user}};
        *pcb = sizeof(SID_AND_ATTRIBUTES) + sizeof(sid);
        if (cb < *pcb) return FALSE;
        auto* pUser = static_cast<SID_AND_ATTRIBUTES*>(pInfo);
        pUser->Sid = pUser + 1;
        std::memcpy(pUser->Sid, &sid, sizeof(sid));
        return TRUE;
    }
    static inline std::optional<DWORD> ownUser, otherUser;
    static inline DWORD dwGranted;
    static inline HANDLE hOther, hOtherToken;
    ReplaceImport openProcess, openToken, readToken;
};

TEST_F(MessageGate, TellsWindowsOfTheSameUser) {
    constexpr DWORD kLimited = 0x1000, kNothing = 0;
    struct {
        std::optional<DWORD> own, other;
        DWORD dwGranted;
        bool bSame;
    } const kUsers[] = {{1000, 1000, kLimited, true},
                        {1000, 1001, kLimited, false},
                        {1000, 1000, PROCESS_QUERY_INFORMATION, true}, // before Vista
                        {1000, 1001, PROCESS_QUERY_INFORMATION, false},
                        {1000, 1000, kNothing, false},
                        {1000, {}, kLimited, false},
                        {{}, 1000, kLimited, false}};
    TestWindow wnd;
    for (const auto& row : kUsers) {
        PlayedUsers users(row.own, row.other, row.dwGranted);
        EXPECT_EQ(row.bSame, IsOfSameUser(wnd));
    }
    EXPECT_TRUE(IsOfSameUser(wnd)); // this process's own
    EXPECT_FALSE(IsOfSameUser(nullptr));
}
} // namespace
