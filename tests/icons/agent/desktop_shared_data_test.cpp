#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <wtsapi32.h>
#include <cstring>
#include <functional>
#include <utility>

extern "C" FARPROC __imp_ProcessIdToSessionId, __imp_WTSEnumerateSessionsW;

namespace {

// The machine: which session this process is in, and which there are.
DWORD dwPlayedSession;
bool bSessionTold;
int nSessionAsked;
std::vector<WTS_SESSION_INFOW> sessionsThere;
bool bListRefused;
std::function<void()> fnAtList; // once

BOOL WINAPI TellSession(DWORD dwProcess, DWORD* pdwSession) {
    EXPECT_EQ(::GetCurrentProcessId(), dwProcess);
    ++nSessionAsked;
    if (bSessionTold) *pdwSession = dwPlayedSession;
    return bSessionTold;
}

BOOL WINAPI ListSessions(HANDLE, DWORD, DWORD, WTS_SESSION_INFOW** ppSessions, DWORD* pnSessions) {
    if (bListRefused) return FALSE;
    if (auto fn = std::exchange(fnAtList, nullptr)) fn();
    *ppSessions = sessionsThere.data();
    *pnSessions = static_cast<DWORD>(sessionsThere.size());
    return TRUE;
}

void WINAPI FreeNothing(void*) {}

/// A process of that session that has mapped the library.
class ProcessIn {
  public:
    ProcessIn(DWORD dwOwnSession, SessionTable& table) : dwSession(dwOwnSession), words(table) {}
    bool Claim() {
        dwPlayedSession = dwSession;
        return words.Claim();
    }
    DesktopSharedData& Get() {
        dwPlayedSession = dwSession;
        return words.Get();
    }

  private:
    DWORD dwSession;
    SessionWords words;
};

class SessionWordsTest : public testing::Test {
  protected:
    void SetUp() override {
        bSessionTold = true;
        bListRefused = false;
        sessionsThere.clear();
        fnAtList = nullptr;
        functions.Set("WTSFreeMemory", &FreeNothing);
    }
    /// Sessions 1 and on, each with a monitor that has said where it is.
    void FillTable() {
        for (DWORD n = 1; n <= kSessionPlaces; ++n) {
            ProcessIn monitor(n, table);
            ASSERT_TRUE(monitor.Claim());
            monitor.Get().hwndMonitor = WindowOf(n);
            ListSession(n);
        }
        ListSession(kLateSession);
    }
    static void ListSession(DWORD dwSession) {
        WTS_SESSION_INFOW info{};
        info.SessionId = dwSession;
        sessionsThere.push_back(info);
    }
    static void EndSession(DWORD dwSession) {
        std::erase_if(sessionsThere, [dwSession](const WTS_SESSION_INFOW& info) {
            return info.SessionId == dwSession;
        });
    }
    static HWND WindowOf(ULONG_PTR n) { return reinterpret_cast<HWND>(n * 16); }
    void ExpectNoPlace(ProcessIn& process) {
        SessionTable before;
        std::memcpy(&before, &table, sizeof(table));
        EXPECT_FALSE(process.Claim());
        process.Get().hwndMonitor = WindowOf(999); // seen by nobody
        EXPECT_EQ(0, std::memcmp(&before, &table, sizeof(table)));
    }

    static constexpr DWORD kLateSession = 1000;
    SessionTable table{};
    ReplaceImport session{__imp_ProcessIdToSessionId, &TellSession};
    ReplaceImport list{__imp_WTSEnumerateSessionsW, &ListSessions};
    ReplaceFunctions functions;
};

TEST_F(SessionWordsTest, TwoSessionsHaveWordsOfTheirOwn) {
    ProcessIn firstMonitor(1, table), secondMonitor(2, table);
    ProcessIn firstShell(1, table), secondShell(2, table);
    ASSERT_TRUE(firstMonitor.Claim());
    firstMonitor.Get() = {0xC001, WindowOf(1), nullptr, WindowOf(2), WindowOf(3)};
    ASSERT_TRUE(secondMonitor.Claim());
    EXPECT_EQ(nullptr, secondMonitor.Get().hwndMonitor);
    secondMonitor.Get() = {0xC002, WindowOf(4), nullptr, WindowOf(5), WindowOf(6)};
    EXPECT_EQ(0xC001u, firstShell.Get().nCompanyMsg);
    EXPECT_EQ(WindowOf(1), firstShell.Get().hwndListView);
    EXPECT_EQ(WindowOf(3), firstShell.Get().hwndMonitor);
    EXPECT_EQ(WindowOf(6), secondShell.Get().hwndMonitor);
    EXPECT_EQ(&firstMonitor.Get(), &firstShell.Get());
    EXPECT_EQ(&secondMonitor.Get(), &secondShell.Get());
}

TEST_F(SessionWordsTest, SessionZeroIsOneLikeOthers) {
    ProcessIn monitor(0, table), shell(0, table), other(1, table);
    ASSERT_TRUE(monitor.Claim());
    ASSERT_TRUE(other.Claim());
    EXPECT_EQ(&monitor.Get(), &shell.Get());
    EXPECT_NE(&monitor.Get(), &other.Get());
}

TEST_F(SessionWordsTest, WordsOfTheFirstSessionBeginTheTable) {
    ProcessIn monitor(7, table);
    ASSERT_TRUE(monitor.Claim());
    EXPECT_EQ(static_cast<void*>(&table), static_cast<void*>(&monitor.Get()));
}

TEST_F(SessionWordsTest, ShellFindsNoWordsBeforeAMonitorHasClaimedThem) {
    ProcessIn other(2, table), shell(1, table), monitor(1, table);
    ASSERT_TRUE(other.Claim());
    other.Get().nCompanyMsg = 0xC002;
    EXPECT_EQ(0u, shell.Get().nCompanyMsg);
    ASSERT_TRUE(monitor.Claim());
    monitor.Get().nCompanyMsg = 0xC001;
    EXPECT_EQ(0xC001u, shell.Get().nCompanyMsg);
}

TEST_F(SessionWordsTest, WordsWrittenBeforeTheClaimMoveAlong) {
    ProcessIn monitor(1, table), shell(1, table);
    monitor.Get().hwndView = WindowOf(8);
    ASSERT_TRUE(monitor.Claim());
    EXPECT_EQ(WindowOf(8), shell.Get().hwndView);
}

TEST_F(SessionWordsTest, MonitorAfterOneThatWasKilledFindsItsWords) {
    {
        ProcessIn killed(1, table);
        ASSERT_TRUE(killed.Claim());
        killed.Get().hwndMonitor = WindowOf(3);
    }
    ProcessIn next(1, table);
    ASSERT_TRUE(next.Claim());
    EXPECT_EQ(WindowOf(3), next.Get().hwndMonitor); // what is stale is the monitor's to judge
    EXPECT_EQ(static_cast<void*>(&table), static_cast<void*>(&next.Get()));
}

TEST_F(SessionWordsTest, PlaceIsLookedForOnce) {
    ProcessIn monitor(1, table), shell(1, table);
    ASSERT_TRUE(monitor.Claim());
    shell.Get();
    nSessionAsked = 0;
    for (int n = 0; n < 100; ++n) {
        shell.Get();
        EXPECT_TRUE(monitor.Claim());
    }
    EXPECT_EQ(0, nSessionAsked);
}

TEST_F(SessionWordsTest, FullTableHasNoPlaceForOneMore) {
    FillTable();
    ProcessIn late(kLateSession, table);
    ExpectNoPlace(late);
}

TEST_F(SessionWordsTest, FullTableStillServesTheSessionsInIt) {
    FillTable();
    for (DWORD n = 1; n <= kSessionPlaces; ++n) {
        ProcessIn monitor(n, table);
        EXPECT_TRUE(monitor.Claim());
        EXPECT_EQ(WindowOf(n), monitor.Get().hwndMonitor);
    }
}

TEST_F(SessionWordsTest, PlaceOfAnEndedSessionIsTakenAgain) {
    FillTable();
    EndSession(7);
    ProcessIn late(kLateSession, table), lateShell(kLateSession, table), seventh(7, table);
    ASSERT_TRUE(late.Claim());
    EXPECT_EQ(nullptr, late.Get().hwndMonitor); // nothing of the former session's
    late.Get().hwndMonitor = WindowOf(500);
    EXPECT_EQ(WindowOf(500), lateShell.Get().hwndMonitor);
    EXPECT_EQ(nullptr, seventh.Get().hwndMonitor);
    for (DWORD n = 1; n <= kSessionPlaces; ++n) {
        if (n == 7) continue;
        ProcessIn shell(n, table);
        EXPECT_EQ(WindowOf(n), shell.Get().hwndMonitor);
    }
}

TEST_F(SessionWordsTest, PlaceThatAProcessOfTheSessionHasJustTakenOverIsShared) {
    FillTable();
    EndSession(7);
    EndSession(9);
    ProcessIn late(kLateSession, table), faster(kLateSession, table);
    fnAtList = [&] {
        ASSERT_TRUE(faster.Claim());
        faster.Get().hwndMonitor = WindowOf(500);
    };
    ASSERT_TRUE(late.Claim());
    EXPECT_EQ(&faster.Get(), &late.Get());
    EXPECT_EQ(WindowOf(500), late.Get().hwndMonitor);
}

TEST_F(SessionWordsTest, PlaceOfASessionThatLivesIsNotTakenWhileThereAreFreeOnes) {
    ProcessIn first(1, table), second(2, table);
    ASSERT_TRUE(first.Claim());
    first.Get().hwndMonitor = WindowOf(1);
    ListSession(2); // the first one's is not listed
    ASSERT_TRUE(second.Claim());
    EXPECT_EQ(WindowOf(1), first.Get().hwndMonitor);
    EXPECT_NE(&first.Get(), &second.Get());
}

TEST_F(SessionWordsTest, NoPlaceIsTakenWhereTheSessionsAreNotTold) {
    FillTable();
    ProcessIn late(kLateSession, table);
    bListRefused = true;
    ExpectNoPlace(late);
    bListRefused = false;
    sessionsThere.clear();
    ExpectNoPlace(late);
    ListSession(1); // not all of them: the one that asks is missing
    ExpectNoPlace(late);
}

TEST_F(SessionWordsTest, ProcessOfAnUnknownSessionKeepsItsWordsForItself) {
    ProcessIn monitor(1, table);
    bSessionTold = false;
    ExpectNoPlace(monitor);
    EXPECT_EQ(WindowOf(999), monitor.Get().hwndMonitor);
}

TEST_F(SessionWordsTest, TwoThatClaimAtOnceShareOnePlace) {
    dwPlayedSession = 5;
    for (int n = 0; n < 200; ++n) {
        table = {};
        SessionWords one(table), two(table);
        std::thread other([&] { two.Claim(); });
        one.Claim();
        other.join();
        ASSERT_EQ(&one.Get(), &two.Get());
    }
}

TEST(SessionWordsOfThisProcess, AreClaimedWhereThePlatformTellsTheSession) {
    EXPECT_TRUE(ClaimDesktopSharedData());
    EXPECT_EQ(&GetDesktopSharedData(), &GetDesktopSharedData());
}

} // namespace
