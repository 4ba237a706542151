#pragma once
#include "app/update/left_behind.h"
#include "app/update/loopback_wininet.h"
#include "app/update/send_http.h"
#include "runtime/text/str_copy.h"
#include "support/heap_count.h"
#include "support/http_server.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

/// What a call may take longer than it says because other programs have the processors.
constexpr DWORD kBusyMs = 1000;
/// And what it says: at most so much beyond its time-out.
constexpr DWORD kBeyondTimeoutMs = 2000;

/// A text of the library's heap as one of the test's; nothing for null.
inline std::optional<std::wstring> TakeText(wchar_t* psz) {
    if (!psz) return {};
    std::wstring str = psz;
    StrRealloc(psz, nullptr);
    return str;
}

/// An answer of SendHttp, and how long it took.
struct HttpAnswer {
    std::optional<std::wstring> text;
    DWORD nMs = 0;
};

inline HttpAnswer Ask(const std::wstring& strServer, const std::wstring& strObject,
                      unsigned cbMax = 1024, const wchar_t* pszPost = L"a=1",
                      unsigned nSeconds = 8) {
    DWORD dwStart = ::GetTickCount();
    HttpAnswer answer;
    answer.text =
        TakeText(SendHttp(strServer.c_str(), strObject.c_str(), cbMax, pszPost, nSeconds));
    answer.nMs = ::GetTickCount() - dwStart;
    EXPECT_GE(nSeconds * 1000 + kBeyondTimeoutMs + kBusyMs, answer.nMs);
    return answer;
}

inline std::wstring Wide(const std::string& str) { return {str.begin(), str.end()}; }

/// A server on the loopback address, one for all tests of a suite, and the platform's HTTP client
/// on the way to it. At the end of each test nothing may be left of what it did.
class HttpTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { server = std::make_unique<HttpServer>(); }
    static void TearDownTestSuite() { server.reset(); }
    void SetUp() override {
        if (!server->IsRunning()) GTEST_SKIP() << "no Python with aiohttp here for the server";
        internet.emplace(*server);
        WarmUp();
        ClearRecords();
        nThreads = CountThreads();
        nBlocks = CountLiveBlocks();
    }
    void TearDown() override {
        if (!internet) return;
        LoopbackWinInet::Release();
        if (bLasting) server->HangUp();
        // (Of the threads, the platform's own for idle connections, there since the set-up, may
        // have gone.)
        auto IsClean = [&] {
            if (CountThreads() > nThreads || LoopbackWinInet::CountOpen()) return false;
            ClearRecords();
            return HasFailure() || CountLiveBlocks() == nBlocks;
        };
        // (A connection that nobody took is tried again after longer and longer pauses, and the
        // platform's thread for idle ones stays for half a minute.)
        EXPECT_TRUE(WaitUntil(IsClean, 6 * kTestDeadlineMs))
            << CountThreads() << " threads of " << nThreads << ", " << LoopbackWinInet::CountOpen()
            << " open handles, " << CountLiveBlocks() - nBlocks << " blocks";
        EXPECT_EQ(0, LoopbackWinInet::CountBadCloses());
        internet.reset();
    }
    /// What is made at the first use, and kept.
    virtual void WarmUp() { (void)Ask(L"server", L"text/4F4B"); }
    /// What they hold would count as left.
    void ClearRecords() {
        internet->Clear();
        (void)server->TakeRequests();
    }

    static inline std::unique_ptr<HttpServer> server;
    std::optional<LoopbackWinInet> internet;
    int bLasting = 0; // the server may still talk: the test platform lets nobody close it the mouth

  private:
    int nThreads = 0;
    long nBlocks = 0;
};
