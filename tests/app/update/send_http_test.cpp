#include "app/update/http_test_support.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {
std::wstring InCodePage(const std::string& strBytes) {
    std::wstring str(strBytes.size() + 1, L'\0');
    int cch = ::MultiByteToWideChar(CP_ACP, 0, strBytes.data(), static_cast<int>(strBytes.size()),
                                    str.data(), static_cast<int>(str.size()));
    str.resize(static_cast<std::size_t>(cch));
    return str;
}

std::string Digits(std::size_t n) {
    std::string str;
    while (str.size() < n) str += static_cast<char>('0' + str.size() % 10);
    return str;
}

class SendHttpTest : public HttpTest {
  protected:
    std::optional<std::wstring> AnswerTo(const std::string& strObject, unsigned cbMax = 1024) {
        return Ask(L"server", Wide(strObject), cbMax).text;
    }
};

TEST_F(SendHttpTest, AsksThePlatformAsTold) {
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, L"a=1&b=2", 7).text);
    auto opened = internet->TakeOpened();
    ASSERT_EQ(1u, opened.size());
    EXPECT_EQ(L"Mozilla/4.0 (Orvanta Software)", opened[0].strAgent);
    EXPECT_EQ(static_cast<DWORD>(INTERNET_OPEN_TYPE_PRECONFIG), opened[0].nAccess);
    EXPECT_FALSE(opened[0].bProxy);
    EXPECT_EQ(0u, opened[0].dwFlags);
    auto connected = internet->TakeConnected();
    ASSERT_EQ(1u, connected.size());
    EXPECT_EQ(L"server", connected[0].strServer);
    EXPECT_EQ(80, connected[0].nPort);
    EXPECT_FALSE(connected[0].bUser);
    EXPECT_EQ(static_cast<DWORD>(INTERNET_SERVICE_HTTP), connected[0].nService);
    EXPECT_EQ(0u, connected[0].dwFlags);
    EXPECT_EQ(1u, connected[0].nContext);
    auto requested = internet->TakeRequested();
    ASSERT_EQ(1u, requested.size());
    EXPECT_EQ(L"POST", requested[0].strVerb);
    EXPECT_EQ(L"text/4F4B", requested[0].strObject);
    EXPECT_FALSE(requested[0].bVersion);
    EXPECT_FALSE(requested[0].bReferrer);
    EXPECT_EQ(std::vector<std::wstring>{L"*/*"}, requested[0].accept);
    EXPECT_EQ(0x80000A00u, requested[0].dwFlags);
    EXPECT_EQ(1u, requested[0].nContext);
    auto sent = internet->TakeSent();
    ASSERT_EQ(1u, sent.size());
    EXPECT_EQ(L"Content-Type: application/x-www-form-urlencoded", sent[0].strHeaders);
    EXPECT_EQ("a=1&b=2", sent[0].strBody);
}

TEST_F(SendHttpTest, AsksWithoutABodyByGet) {
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, nullptr).text);
    auto requested = internet->TakeRequested();
    ASSERT_EQ(1u, requested.size());
    EXPECT_EQ(L"GET", requested[0].strVerb);
    EXPECT_EQ(0x80000A00u, requested[0].dwFlags);
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ("GET", requests[0].strMethod);
    EXPECT_EQ("", requests[0].strBody);
    EXPECT_FALSE(requests[0].headers.contains("content-type"));
}

TEST_F(SendHttpTest, ReachesTheServerAsAForm) {
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B?x=1", 1024, L"a=1&b=%20").text);
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ("POST", requests[0].strMethod);
    EXPECT_EQ("/text/4F4B?x=1", requests[0].strTarget);
    EXPECT_EQ("a=1&b=%20", requests[0].strBody);
    EXPECT_EQ("application/x-www-form-urlencoded", requests[0].headers["content-type"]);
    EXPECT_EQ("9", requests[0].headers["content-length"]);
    EXPECT_EQ("Mozilla/4.0 (Orvanta Software)", requests[0].headers["user-agent"]);
    EXPECT_EQ("*/*", requests[0].headers["accept"]);
}

TEST_F(SendHttpTest, BodyIsInTheSystemsCodePage) {
    const wchar_t* pszPost = L"a=\x00E4\x00F6";
    char sz[32] = {};
    ::WideCharToMultiByte(CP_ACP, 0, pszPost, -1, sz, 32, nullptr, nullptr);
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, pszPost).text);
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(sz, requests[0].strBody);
}

TEST_F(SendHttpTest, LongBodyArrivesWhole) {
    std::wstring strPost = L"a=" + std::wstring(100000, L'x');
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, strPost.c_str()).text);
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(strPost.size(), requests[0].strBody.size());
}

TEST_F(SendHttpTest, SetsTheTimeoutsThatDiffer) {
    using Options = std::vector<std::pair<DWORD, DWORD>>;
    internet->TellOption(INTERNET_OPTION_CONNECT_TIMEOUT, 60000);
    internet->TellOption(INTERNET_OPTION_RECEIVE_TIMEOUT, 30000);
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, L"a=1", 7).text);
    EXPECT_EQ((Options{{2, 7000}, {6, 7000}}), internet->TakeOptions());
    internet->TellOption(INTERNET_OPTION_CONNECT_TIMEOUT, 7000);
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, L"a=1", 7).text);
    EXPECT_EQ((Options{{6, 7000}}), internet->TakeOptions());
    internet->TellOption(INTERNET_OPTION_RECEIVE_TIMEOUT, 7000);
    EXPECT_EQ(L"OK", Ask(L"server", L"text/4F4B", 1024, L"a=1", 7).text);
    EXPECT_EQ(Options{}, internet->TakeOptions());
}

TEST_F(SendHttpTest, GoesOnWhenATimeoutCannotBeSet) {
    internet->Fail({"InternetQueryOptionW", "InternetSetOptionW"});
    EXPECT_EQ(L"OK", AnswerTo("text/4F4B"));
}

struct TextCase {
    const char* pszName;
    std::string strBytes;
    std::optional<std::wstring> expected;
};

TEST_F(SendHttpTest, DecodesByTheFirstBytes) {
    using namespace std::string_literals;
    const TextCase rows[] = {
        {"nothing", "", {}},
        {"one byte", "O", L"O"},
        {"plain", "OK", L"OK"},
        {"code page", "\xE4\x80\xFC", InCodePage("\xE4\x80\xFC")},
        {"UTF-8", "\xEF\xBB\xBF\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", L"\x00E4\x20AC\xD83D\xDE00"},
        {"UTF-8 and no text", "\xEF\xBB\xBF", L""},
        {"part of the mark of UTF-8", "\xEF\xBB", InCodePage("\xEF\xBB")},
        {"other than the mark of UTF-8", "\xEF\xBB\xBEx", InCodePage("\xEF\xBB\xBEx")},
        {"UTF-16", "\xFF\xFEO\0K\0\xAC\x20"s, L"OK\x20AC"},
        {"UTF-16 and no text", "\xFF\xFE", L""},
        {"UTF-16 and half a character", "\xFF\xFEO\0K"s, L"O"},
        {"part of the mark of UTF-16", "\xFF", InCodePage("\xFF")},
        {"UTF-16 the other way round", "\xFE\xFF\0O"s, InCodePage("\xFE\xFF")},
        {"zero inside", "O\0K"s, L"O"},
        {"zero in front", "\0OK"s, L""},
    };
    for (const TextCase& row : rows) {
        EXPECT_EQ(row.expected, AnswerTo(Answer("text", row.strBytes))) << row.pszName;
        // Byte by byte, or nearly: the first read has only part of the mark.
        EXPECT_EQ(row.expected, AnswerTo(Answer("pieces/20", row.strBytes))) << row.pszName;
    }
}

TEST_F(SendHttpTest, ReadsAtMostTheMaximum) {
    for (unsigned cbMax : {1u, 2u, 1023u, 1024u, 1025u, 100000u}) {
        for (int nMore : {-1, 0, 1}) {
            std::size_t cb = cbMax + static_cast<unsigned>(nMore);
            std::string strExpected = Digits(std::min<std::size_t>(cb, cbMax));
            auto text = AnswerTo("size/" + std::to_string(cb), cbMax);
            EXPECT_EQ(cb ? std::optional(Wide(strExpected)) : std::nullopt, text)
                << cbMax << " of " << cb;
        }
    }
    EXPECT_EQ(std::nullopt, AnswerTo("size/5", 0));
}

TEST_F(SendHttpTest, EndsAtTheMaximumOfAHugeAnswer) {
    EXPECT_EQ(Wide(Digits(1024)), AnswerTo("size/10485760"));
    EXPECT_EQ(std::wstring(1024, L'a'), AnswerTo("endless"));
    // All 1,024 bytes are the text, and nothing lies behind them.
    EXPECT_EQ(511u, AnswerTo(Answer("text", "\xFF\xFE" + std::string(2000, 'a')))->size());
    EXPECT_EQ(1021u, AnswerTo(Answer("text", "\xEF\xBB\xBF" + std::string(2000, 'a')))->size());
}

TEST_F(SendHttpTest, TakesTheBodyInWhateverWayItComes) {
    EXPECT_EQ(L"OKOKO", AnswerTo(Answer("chunked", "OKOKO")));
    EXPECT_EQ(Wide(Digits(1024)), AnswerTo(Answer("chunked", Digits(2000))));
    EXPECT_EQ(L"OK", AnswerTo("until-close/4F4B"));
    EXPECT_EQ(L"OK", AnswerTo("pieces/300/4F4B"));
    EXPECT_EQ(L"OK", AnswerTo("late/300/4F4B"));
    EXPECT_EQ(L"OK", AnswerTo("cacheable/4F4B"));
}

TEST_F(SendHttpTest, StatusDoesNotMatter) {
    EXPECT_EQ(L"no such page", AnswerTo(Answer("status/404", "no such page")));
    EXPECT_EQ(L"broken", AnswerTo(Answer("status/500", "broken")));
    EXPECT_EQ(std::nullopt, AnswerTo("status/404/"));
    EXPECT_EQ(std::nullopt, AnswerTo("status/204/"));
    EXPECT_EQ(L"who", AnswerTo(Answer("auth", "who")));
}

TEST_F(SendHttpTest, FollowsARedirection) {
    EXPECT_EQ(L"OK", AnswerTo(Answer("redirect/302", "/text/4F4B")));
    EXPECT_EQ(L"OK", AnswerTo(Answer("redirect/301", "/text/4F4B")));
    EXPECT_EQ(L"OK", AnswerTo(Answer("redirect/307", "/text/4F4B")));
    auto requests = server->TakeRequests();
    ASSERT_EQ(6u, requests.size());
    EXPECT_EQ("/text/4F4B", requests[1].strTarget);
}

TEST_F(SendHttpTest, PartOfAnAnswerIsAnAnswer) {
    EXPECT_EQ(L"OK", AnswerTo("short/4F4B"));
    EXPECT_EQ(L"OK", AnswerTo("reset/4F4B"));
    EXPECT_EQ(std::nullopt, AnswerTo("short/"));
    EXPECT_EQ(std::nullopt, AnswerTo("reset/"));
}

TEST_F(SendHttpTest, NoAnswerGivesNull) {
    EXPECT_EQ(std::nullopt, AnswerTo("close"));
    EXPECT_EQ(std::nullopt, AnswerTo(Answer("raw", "\r\n")));
    EXPECT_EQ(std::nullopt, Ask(L"refused", L"text/4F4B").text);
    EXPECT_EQ(std::nullopt, Ask(L"", L"text/4F4B").text);
    EXPECT_EQ(nullptr, SendHttp(nullptr, L"text/4F4B", 1024, nullptr, 1));
}

TEST_F(SendHttpTest, IsAskedAnewEachTime) {
    EXPECT_EQ(L"OK", AnswerTo("cacheable/4F4B"));
    EXPECT_EQ(L"OK", AnswerTo("cacheable/4F4B"));
    EXPECT_EQ(L"OK", Ask(L"server", L"cacheable/4F4B", 1024, nullptr).text);
    EXPECT_EQ(L"OK", Ask(L"server", L"cacheable/4F4B", 1024, nullptr).text);
    EXPECT_EQ(4u, server->TakeRequests().size());
}

TEST_F(SendHttpTest, FailureAtAnyStepGivesNullAndClosesWhatIsOpen) {
    for (const char* pszName : {"InternetOpenW", "InternetConnectW", "HttpOpenRequestW",
                                "HttpSendRequestW", "InternetReadFile"}) {
        internet->Fail({pszName});
        EXPECT_EQ(std::nullopt, AnswerTo("text/4F4B")) << pszName;
        EXPECT_EQ(0, LoopbackWinInet::CountOpen()) << pszName;
    }
    internet->Fail({});
    EXPECT_EQ(L"OK", AnswerTo("text/4F4B"));
}

TEST_F(SendHttpTest, PlatformWithoutAFunctionGivesNull) {
    for (const char* pszName :
         {"InternetOpenW", "InternetConnectW", "HttpOpenRequestW", "HttpSendRequestW",
          "InternetQueryDataAvailable", "InternetReadFile", "InternetCloseHandle"}) {
        internet.emplace(*server);
        internet->Hide(pszName);
        EXPECT_EQ(std::nullopt, AnswerTo("text/4F4B")) << pszName;
    }
}

TEST_F(SendHttpTest, LackOfMemoryGivesNull) {
    // Each block of the calling thread in turn, until there are no more.
    int nNulls = 0;
    for (int n = 1; n <= 12; ++n) {
        FailBlock(n);
        wchar_t* psz = SendHttp(L"server", L"text/4F4B", 1024, L"a=1", 8);
        FailBlock(0);
        nNulls += !psz;
        auto text = TakeText(psz);
        EXPECT_TRUE(!text || *text == L"OK");
        EXPECT_EQ(0, LoopbackWinInet::CountOpen()) << n;
    }
    EXPECT_LE(1, nNulls);
}

TEST_F(SendHttpTest, LeavesNoHandlesAndNoThreads) {
    auto Round = [&] {
        for (const char* psz : {"text/4F4B", "text/", "size/10485760", "chunked/4F4B", "short/4F4B",
                                "reset/4F4B", "close", "endless", "status/404/4E"}) {
            (void)AnswerTo(psz);
        }
        (void)Ask(L"refused", L"text/4F4B");
    };
    Round();
    int nHandles = CountHandles(), nBefore = CountThreads();
    for (int n = 0; n < 4; ++n) Round();
    // (The platform's idle connections, and its thread for them, come and go.)
    EXPECT_GE(nHandles + 3, CountHandles());
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() <= nBefore + 1; }));
}
} // namespace
