#include "app/start/library_start.h"
#include "runtime/system/wts_api32.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

extern "C" FARPROC __imp_WTSEnumerateSessionsW, __imp_WTSFreeMemory;

namespace {
// A terminal server of the tests: what is asked and freed is noted.
struct FakeServer {
    BOOL bAnswers = TRUE;
    DWORD dwValue = 0;
    DWORD cb = sizeof(DWORD);
    bool bNullBuffer = false;
    DWORD dwSession = 0;
    int nInfoClass = -1;
    int nFreed = 0;
    DWORD dwLoggedOff = 0;
    BOOL bWait = -1;
} server;

BOOL WINAPI FakeQuery(HANDLE, DWORD dwSession, WTS_INFO_CLASS nInfoClass, LPWSTR* pp, DWORD* pcb) {
    server.dwSession = dwSession;
    server.nInfoClass = nInfoClass;
    *pp = server.bNullBuffer ? nullptr : reinterpret_cast<LPWSTR>(&server.dwValue);
    *pcb = server.cb;
    return server.bAnswers;
}
void WINAPI FakeFree(void*) { ++server.nFreed; }
BOOL WINAPI FakeLogoff(HANDLE, DWORD dwSession, BOOL bWait) {
    server.dwLoggedOff = dwSession;
    server.bWait = bWait;
    return TRUE;
}
/// That server in the place of the platform's.
struct FakeFunctions : ReplaceFunctions {
    FakeFunctions()
        : ReplaceFunctions({{"WTSQuerySessionInformationW", AsProc(&FakeQuery)},
                            {"WTSFreeMemory", AsProc(&FakeFree)},
                            {"WTSLogoffSession", AsProc(&FakeLogoff)}}) {}
};

class WtsApi32Test : public testing::Test {
  protected:
    void SetUp() override { server = {}; }
};

TEST_F(WtsApi32Test, QueriesTheSessionsIdAndState) {
    WtsApi32 api;
    FakeFunctions fake;
    server.dwValue = 7;
    EXPECT_EQ(7u, WtsApi32::GetSessionID(3));
    EXPECT_EQ(3u, server.dwSession);
    EXPECT_EQ(4, server.nInfoClass);
    EXPECT_EQ(1, server.nFreed);
    server.dwValue = WTSDisconnected;
    EXPECT_EQ(4, WtsApi32::GetSessionConnectState(5));
    EXPECT_EQ(8, server.nInfoClass);
    EXPECT_EQ(2, server.nFreed);
}

TEST_F(WtsApi32Test, GivesTheDefaultsWhenThePlatformDoesNotTell) {
    WtsApi32 api;
    FakeFunctions fake;
    server.bAnswers = FALSE;
    EXPECT_EQ(0xFFFFFFFFu, WtsApi32::GetSessionID(0));
    EXPECT_EQ(9, WtsApi32::GetSessionConnectState(0));
    EXPECT_EQ(0, server.nFreed);
    server.bAnswers = TRUE;
    server.cb = 3; // shorter than the number
    EXPECT_EQ(0xFFFFFFFFu, WtsApi32::GetSessionID(0));
    EXPECT_EQ(9, WtsApi32::GetSessionConnectState(0));
    EXPECT_EQ(2, server.nFreed);
    server.bNullBuffer = true;
    EXPECT_EQ(0xFFFFFFFFu, WtsApi32::GetSessionID(0));
}

TEST_F(WtsApi32Test, LogsOffOnThisMachine) {
    WtsApi32 api;
    FakeFunctions fake;
    EXPECT_EQ(1, WtsApi32::LogoffSession(12, 1));
    EXPECT_EQ(12u, server.dwLoggedOff);
    EXPECT_EQ(1, server.bWait);
    EXPECT_EQ(1, WtsApi32::LogoffSession(13, 0));
    EXPECT_EQ(0, server.bWait);
}

void ExpectNothingIsFound() {
    HANDLE hToken = nullptr;
    LPWSTR psz = nullptr;
    DWORD cb = 0;
    EXPECT_EQ(0, WtsApi32::WTSRegisterSessionNotification(::GetDesktopWindow(), 0));
    EXPECT_EQ(0, WtsApi32::WTSUnRegisterSessionNotification(::GetDesktopWindow()));
    EXPECT_EQ(0, WtsApi32::WTSQuerySessionInformationW(nullptr, 0, WTSUserName, &psz, &cb));
    EXPECT_EQ(0, WtsApi32::WTSLogoffSession(nullptr, 0, 0));
    EXPECT_EQ(0, WtsApi32::WTSQueryUserToken(0, &hToken));
    EXPECT_EQ(0u, WtsApi32::WTSGetActiveConsoleSessionId());
    WtsApi32::WTSFreeMemory(nullptr);
    EXPECT_EQ(0xFFFFFFFFu, WtsApi32::GetSessionID(0));
    EXPECT_EQ(9, WtsApi32::GetSessionConnectState(0));
    EXPECT_EQ(0, WtsApi32::LogoffSession(0, 0));
}

TEST_F(WtsApi32Test, WithoutTheFunctionsEverythingIsZero) {
    WtsApi32 api;
    HideFunctions hide{"WTSRegisterSessionNotification",
                       "WTSUnRegisterSessionNotification",
                       "WTSQuerySessionInformationW",
                       "WTSFreeMemory",
                       "WTSLogoffSession",
                       "WTSQueryUserToken",
                       "WTSGetActiveConsoleSessionId"};
    ExpectNothingIsFound();
}

TEST_F(WtsApi32Test, WithoutAnObjectEverythingIsZero) {
    LibraryStop(); // takes the library's own away
    { WtsApi32 api; }
    ExpectNothingIsFound();
    LibraryStart(::GetModuleHandleW(nullptr));
}

TEST_F(WtsApi32Test, RealFunctionsAreFoundWhileAnObjectLives) {
    WtsApi32 first;
    { WtsApi32 second; }
    EXPECT_EQ(1, WtsApi32::WTSRegisterSessionNotification(::GetDesktopWindow(), 0));
    LPWSTR psz = nullptr;
    DWORD cb = 0;
    EXPECT_EQ(1, WtsApi32::WTSQuerySessionInformationW(nullptr, WTS_CURRENT_SESSION, WTSUserName,
                                                       &psz, &cb));
    ASSERT_NE(nullptr, psz);
    WtsApi32::WTSFreeMemory(psz);
    DWORD dwOwn = 0;
    ASSERT_TRUE(::ProcessIdToSessionId(::GetCurrentProcessId(), &dwOwn));
    EXPECT_EQ(dwOwn, WtsApi32::WTSGetActiveConsoleSessionId());
}

std::vector<WTS_SESSION_INFOW> enumerated;
BOOL bEnumerates;
BOOL WINAPI FakeEnumerate(HANDLE, DWORD, DWORD, PWTS_SESSION_INFOW* pp, DWORD* pn) {
    if (!bEnumerates) return FALSE;
    *pp = enumerated.data();
    *pn = static_cast<DWORD>(enumerated.size());
    return TRUE;
}

TEST_F(WtsApi32Test, CountsAndSearchesTheSessionsWithoutAnObject) {
    ReplaceImport listed(__imp_WTSEnumerateSessionsW, &FakeEnumerate);
    ReplaceImport freed(__imp_WTSFreeMemory, &FakeFree);
    wchar_t szName[] = L"";
    enumerated = {{7, szName, WTSActive},
                  {8, szName, WTSDisconnected},
                  {9, szName, WTSActive},
                  {10, szName, WTSListen}};
    bEnumerates = TRUE;
    EXPECT_EQ(4u, WtsApi32::GetSessionCount());
    EXPECT_EQ(1, server.nFreed);
    EXPECT_EQ(2u, WtsApi32::GetActiveSessionID()); // the place, not the session's id
    EXPECT_EQ(2, server.nFreed);
    enumerated.pop_back();
    enumerated.pop_back();
    EXPECT_EQ(2u, WtsApi32::GetSessionCount());
    EXPECT_EQ(0u, WtsApi32::GetActiveSessionID());
    bEnumerates = FALSE;
    EXPECT_EQ(0u, WtsApi32::GetSessionCount());
    EXPECT_EQ(0xFFFFFFFFu, WtsApi32::GetActiveSessionID());
    EXPECT_EQ(4, server.nFreed);
}

TEST_F(WtsApi32Test, CountsAndSearchesTheRealSessions) {
    WtsApi32 api;
    DWORD nCount = WtsApi32::GetSessionCount();
    DWORD nActive = WtsApi32::GetActiveSessionID();
    EXPECT_TRUE(nActive < nCount || nActive == 0xFFFFFFFF) << nActive << " of " << nCount;
}

TEST(WtsApi32, ActiveSessionIsThePlaceOfTheLastActiveOne) {
    auto Find = [](std::vector<WTS_CONNECTSTATE_CLASS> states) {
        std::vector<WTS_SESSION_INFOW> sessions;
        for (auto state : states)
            sessions.push_back({static_cast<DWORD>(100 + sessions.size()), nullptr, state});
        return WtsApi32::FindActiveSession(sessions);
    };
    EXPECT_EQ(0xFFFFFFFFu, Find({}));
    EXPECT_EQ(0xFFFFFFFFu, Find({WTSDisconnected, WTSListen}));
    EXPECT_EQ(0u, Find({WTSActive}));
    EXPECT_EQ(2u, Find({WTSActive, WTSListen, WTSActive, WTSDisconnected}));
}
} // namespace
