// Servers and networks that take their time, or take it away.

#include "app/update/http_test_support.h"

#include <thread>
#include <vector>

namespace {
struct SlowCase {
    std::wstring strServer;
    std::wstring strObject;
    unsigned nSeconds;
    int nMostCharacters; // of the answer; 0: null, otherwise at least one
};

class SendHttpSlow : public HttpTest {
  protected:
    /// All at the same time, each on a thread of its own.
    static void RunTogether(const std::vector<SlowCase>& rows) {
        std::vector<std::thread> threads;
        for (const SlowCase& row : rows) {
            threads.emplace_back([&row] {
                HttpAnswer answer = Ask(row.strServer, row.strObject, 1024, L"a=1", row.nSeconds);
                std::string strName(row.strServer.begin(), row.strServer.end());
                strName += " " + std::string(row.strObject.begin(), row.strObject.end());
                if (!row.nMostCharacters) {
                    EXPECT_EQ(std::nullopt, answer.text) << strName;
                } else if (answer.text) {
                    EXPECT_LE(1u, answer.text->size()) << strName;
                    EXPECT_GE(static_cast<unsigned>(row.nMostCharacters), answer.text->size())
                        << strName;
                } else {
                    ADD_FAILURE() << "null for " << strName;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
    }
};

TEST_F(SendHttpSlow, EndsInTimeWhateverTheServerDoes) {
    bLasting = 1;
    RunTogether({
        {L"server", L"silent", 1, 0},
        {L"server", L"late/9000/4F4B", 1, 0},
        {L"server", L"drip-headers/100", 1, 0},
        {L"server", L"drip-headers/1000", 2, 0},
        {L"server", L"drip-body/100", 1, 35},
        {L"server", L"drip-body/1000", 2, 5},
        {L"server", L"pieces/9000/4F4B", 1, 1},
        {L"full", L"text/4F4B", 1, 0},
        {L"no-such-name.invalid", L"text/4F4B", 1, 0},
    });
}

// Each by itself: beside other requests the test platform's client overwrites its own heap here.

TEST_F(SendHttpSlow, EndsInTimeAtARedirectionWithoutEnd) {
    bLasting = 1;
    RunTogether({{L"server", L"loop", 1, 0}});
}

TEST_F(SendHttpSlow, EndsInTimeAtHeadersWithoutEnd) {
    bLasting = 1;
    RunTogether({{L"server", L"endless-headers", 1, 0}});
}

TEST_F(SendHttpSlow, EndsInTimeWhereThePlatformHangs) {
    // Nothing that is closed wakes these, as nothing wakes a name's resolution.
    RunTogether({
        {L"InternetConnectW", L"text/4F4B", 1, 0},
        {L"server", L"text/4F4B?HttpOpenRequestW", 1, 0},
        {L"server", L"text/4F4B?HttpSendRequestW", 1, 0},
        {L"server", L"text/4F4B?InternetReadFile", 1, 0},
    });
    // Once the platform lets them, what is left of the calls ends and clears up: see TearDown.
}

TEST_F(SendHttpSlow, GoodAnswersComeThroughBesideBadOnes) {
    bLasting = 1;
    std::vector<SlowCase> rows(6, {L"server", L"drip-body/100", 1, 35});
    std::vector<std::thread> threads;
    for (int n = 0; n < 6; ++n) {
        threads.emplace_back([n] {
            std::string strText = "answer " + std::to_string(n);
            EXPECT_EQ(Wide(strText), Ask(L"server", Wide(Answer("pieces/200", strText))).text);
        });
    }
    RunTogether(rows);
    for (std::thread& thread : threads) thread.join();
}

TEST_F(SendHttpSlow, LeavesNoHandles) {
    auto Round = [] {
        LoopbackWinInet::Hold();
        RunTogether({{L"server", L"silent", 1, 0},
                     {L"server", L"drip-headers/100", 1, 0},
                     {L"server", L"drip-body/100", 1, 35},
                     {L"server", L"text/4F4B?HttpSendRequestW", 1, 0}});
        LoopbackWinInet::Release();
        server->HangUp();
        EXPECT_TRUE(WaitUntil([&] { return LoopbackWinInet::CountOpen() == 0; }));
    };
    Round();
    int nHandles = CountHandles();
    Round();
    EXPECT_TRUE(WaitUntil([&] { return CountHandles() <= nHandles + 2; }))
        << CountHandles() << " of " << nHandles;
}
} // namespace
