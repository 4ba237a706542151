// One real check: what is asked, shown, scheduled and stored for each of the server's answers.

#include "app/update/update_check.h"

#include "app/identity/product_info.h"
#include "app/shell_start_recorder.h"
#include "app/update/http_test_support.h"
#include "app/update/update_reply.h"
#include "runtime/system/system_facts.h"
#include "support/message_box_driver.h"
#include "support/registry.h"
#include "support/replace_import.h"
#include "support/run_in_child.h"
#include "support/test_window.h"

#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_CreateThread;

namespace {
constexpr const wchar_t* kServer = L"updates.orvanta.example";
constexpr wchar_t kCannotConnect[] =
    L"Cannot connect to the software update server. Please make sure your computer is connected to "
    L"the Internet and then press Retry. If your firewall asks to allow the connection for this "
    L"software, allow it.";
constexpr wchar_t kNoUpdates[] =
    L"No updates are available at this time. You are using the latest version available.";
constexpr wchar_t kError[] = L"An error occurred when checking for updates.\n\n";
constexpr DWORD kLastBefore = 1000, kNextBefore = 2000;
constexpr DWORD kWeekly = 1, kMonthly = 2;

/// As another program computes it: a time and up to an hour more.
DWORD WithJitter(DWORD dwTime) {
    DWORD dwState = dwTime * 214013u + 2531011u;
    return (dwTime + (dwState >> 16 & 0x7FFF) % 3600) & ~1u;
}

/// What a user does with the dialog that tells of an update.
struct UpdateAnswer {
    int bYes = 1;
    int nReminder = -1; // the list's index to choose; -1: the one it has
    int nButton = IDOK;
};
/// The dialog as it was found.
struct SeenUpdate {
    std::wstring strDescription;
    int nReminder = -1;
};

/// Answers that dialog of this process from a thread of its own.
class UpdateDialogDriver {
  public:
    explicit UpdateDialogDriver(UpdateAnswer answerToGive)
        : answer(answerToGive), thread([this] { Run(); }) {}
    ~UpdateDialogDriver() { Finish(); }
    UpdateDialogDriver(const UpdateDialogDriver&) = delete;
    UpdateDialogDriver& operator=(const UpdateDialogDriver&) = delete;
    std::optional<SeenUpdate> Finish() {
        bStop = true;
        if (thread.joinable()) thread.join();
        return seen;
    }

  private:
    static constexpr int kDescription = 1009, kYes = 21536, kNo = 21537, kReminder = 21543;

    static HWND FindDialog() {
        for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", nullptr));) {
            DWORD dwProcess = 0;
            ::GetWindowThreadProcessId(hwnd, &dwProcess);
            if (dwProcess == ::GetCurrentProcessId() && ::IsWindowVisible(hwnd) &&
                ::GetDlgItem(hwnd, kDescription) && ::GetDlgItem(hwnd, kReminder)) {
                return hwnd;
            }
        }
        return nullptr;
    }
    void Run() {
        HWND hwnd = nullptr;
        while (!(hwnd = FindDialog())) {
            if (bStop) return;
            ::Sleep(5);
        }
        wchar_t sz[1024] = L"";
        ::SendDlgItemMessageW(hwnd, kDescription, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(sz));
        seen = {sz, static_cast<int>(::SendDlgItemMessageW(hwnd, kReminder, CB_GETCURSEL, 0, 0))};
        ::SendDlgItemMessageW(hwnd, kYes, BM_SETCHECK, answer.bYes, 0);
        ::SendDlgItemMessageW(hwnd, kNo, BM_SETCHECK, !answer.bYes, 0);
        if (answer.nReminder >= 0) {
            ::SendDlgItemMessageW(hwnd, kReminder, CB_SETCURSEL,
                                  static_cast<WPARAM>(answer.nReminder), 0);
        }
        WaitUntil([&] {
            ::PostMessageW(hwnd, WM_COMMAND, static_cast<WPARAM>(answer.nButton), 0);
            return WaitUntil([&] { return !::IsWindow(hwnd); }, 500);
        });
    }

    UpdateAnswer answer;
    std::optional<SeenUpdate> seen;
    std::atomic<bool> bStop{false};
    std::thread thread; // last: it uses the others
};

class DoCheck : public HttpTest {
  protected:
    void WarmUp() override {
        GetMyProductInfo().PushAppRootKey(L"HKCU\\Software\\TessalyUpdateTest");
        server->Say({"text/4F4B"});
        (void)CheckSilently();
        GetMyProductInfo().PopAppRootKey();
        TestKey key(L"Software\\TessalyUpdateTest"); // and away with what it wrote
    }
    void SetUp() override {
        HttpTest::SetUp();
        if (!internet) return;
        GetMyProductInfo().PushAppRootKey(L"HKCU\\Software\\TessalyUpdateTest");
        setup.emplace(L"Software\\TessalyUpdateTest\\Setup");
        Plant(kLastBefore, kNextBefore, kMonthly, 0);
    }
    void TearDown() override {
        if (!internet) return;
        setup.reset();
        DeleteRegTree(HKEY_CURRENT_USER, L"Software\\TessalyUpdateTest");
        GetMyProductInfo().PopAppRootKey();
        HttpTest::TearDown();
    }
    void Plant(DWORD dwLast, DWORD dwNext, DWORD dwFrequency, DWORD dwAutoCheck) {
        setup->PutDword(L"LastUpdate", dwLast);
        setup->PutDword(L"NextUpdate", dwNext);
        setup->PutDword(L"RemindFreq", dwFrequency);
        setup->PutDword(L"AutoCheck", dwAutoCheck);
    }
    /// The check, with its time.
    int Check(const wchar_t* pszSwitch, int* pbGet = nullptr, HWND hwnd = nullptr) {
        HCURSOR hcurBefore = ::SetCursor(::LoadCursorW(nullptr, IDC_CROSS));
        dwBegin = GetCurTime();
        int nResult = DoCheckForUpdates(hwnd, pbGet, pszSwitch);
        dwEnd = GetCurTime();
        // (A box under the mouse has set one of its own.)
        EXPECT_NE(::LoadCursorW(nullptr, IDC_WAIT), ::GetCursor());
        ::SetCursor(hcurBefore);
        return nResult;
    }
    int CheckSilently() { return Check(L"/CHECK4UPDATES"); }

    DWORD Stored(const wchar_t* pszName) const {
        RegContent content = setup->Value(pszName);
        EXPECT_EQ(static_cast<DWORD>(REG_DWORD), content.dwType) << pszName;
        DWORD dw = 0;
        if (content.bytes.size() == sizeof(dw)) std::memcpy(&dw, content.bytes.data(), sizeof(dw));
        return dw;
    }
    /// The next check is that many days from a moment of the one that was.
    void ExpectScheduledIn(DWORD nDays) const {
        constexpr DWORD kSecondsOfDay = 86400;
        DWORD dwNext = Stored(L"NextUpdate");
        bool bFound = false;
        for (DWORD dw = dwBegin; dw <= dwEnd; ++dw)
            bFound |= dwNext == WithJitter(dw + nDays * kSecondsOfDay);
        EXPECT_TRUE(bFound) << static_cast<int>(dwNext - dwEnd) << " s from now";
    }
    void ExpectDone(DWORD nDays) const {
        ExpectScheduledIn(nDays);
        DWORD dwLast = Stored(L"LastUpdate");
        EXPECT_LE(dwBegin & ~1u, dwLast);
        EXPECT_GE(dwEnd, dwLast);
        EXPECT_EQ(0u, dwLast & 1);
    }
    void ExpectGivenUp() const {
        ExpectScheduledIn(1);
        EXPECT_EQ(kLastBefore, Stored(L"LastUpdate"));
        EXPECT_EQ(kMonthly, Stored(L"RemindFreq"));
        EXPECT_EQ(0u, Stored(L"AutoCheck"));
        EXPECT_EQ(4u, setup->Values().size());
    }
    static std::string Update(const std::string& strLines) {
        return Answer("text", "[dl]\r\n" + strLines);
    }

    std::optional<TestKey> setup;
    DWORD dwBegin = 0, dwEnd = 0;
};

TEST_F(DoCheck, AsksTheMakersServer) {
    server->Say({"text/4F4B"});
    EXPECT_EQ(1, CheckSilently());
    auto connected = internet->TakeConnected();
    ASSERT_EQ(1u, connected.size());
    EXPECT_EQ(kServer, connected[0].strServer);
    EXPECT_EQ(80, connected[0].nPort);
    for (const auto& [nOption, dwValue] : internet->TakeOptions()) EXPECT_EQ(10000u, dwValue);
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ("POST", requests[0].strMethod);
    EXPECT_EQ("/updates/index.php", requests[0].strTarget);
    wchar_t szBody[kRequestSize];
    MakeUpdateRequest(szBody);
    EXPECT_EQ(szBody, Wide(requests[0].strBody));
    EXPECT_EQ(0u, requests[0].strBody.find("app="));
}

std::vector<HCURSOR> cursors;
FARPROC pfnCreateThread;

HANDLE WINAPI NoteCursor(LPSECURITY_ATTRIBUTES pSecurity, SIZE_T cbStack,
                         LPTHREAD_START_ROUTINE pfnThread, LPVOID p, DWORD dwFlags, LPDWORD pdw) {
    cursors.push_back(::GetCursor());
    return FuncOfType<decltype(::CreateThread)>(pfnCreateThread)(pSecurity, cbStack, pfnThread, p,
                                                                 dwFlags, pdw);
}

TEST_F(DoCheck, WaitCursorShowsWhileTheServerIsAsked) {
    server->Say({"text/4F4B"});
    pfnCreateThread = __imp_CreateThread;
    {
        ReplaceImport replaced(__imp_CreateThread, &NoteCursor);
        EXPECT_EQ(1, CheckSilently());
    }
    EXPECT_EQ(std::vector<HCURSOR>{::LoadCursorW(nullptr, IDC_WAIT)}, std::exchange(cursors, {}));
}

TEST_F(DoCheck, AnyOtherSwitchDoesNothing) {
    for (const wchar_t* psz : {L"", L"check4updates", L"CHECK4UPDATES", L"-CHECK4UPDATES",
                               L"/CHECK4UPDATES ", L"/CHECK4UPDATE", L"x"}) {
        int bGet = 7;
        EXPECT_EQ(0, Check(psz, &bGet)) << psz;
        EXPECT_EQ(7, bGet);
    }
    EXPECT_TRUE(server->TakeRequests().empty());
    EXPECT_EQ(kNextBefore, Stored(L"NextUpdate"));
}

TEST_F(DoCheck, SwitchMayBeInAnyCase) {
    server->Say({"text/4F4B"});
    EXPECT_EQ(1, Check(L"/check4Updates"));
    EXPECT_EQ(1u, server->TakeRequests().size());
    ExpectDone(30);
}

// Silently: no box may come, or the test would sit in it.

TEST_F(DoCheck, SilentlyNothingNewIsDone) {
    using namespace std::string_literals;
    for (const std::string& strReply :
         {"text/4F4B"s, "text/6F6B"s, "text/4F6B"s, "text/6F4B"s, Answer("text", "\xEF\xBB\xBFOK"),
          Answer("text", "\xFF\xFEO\0k\0"s), "chunked/4F4B"s, "until-close/4F4B"s,
          "pieces/100/4F4B"s, "short/4F4B"s, "status/500/4F4B"s, "cookie/4F4B"s,
          Answer("redirect/302", "/text/4F4B")}) {
        Plant(kLastBefore, kNextBefore, kMonthly, 0);
        server->Say({strReply});
        int bGet = 7;
        EXPECT_EQ(1, Check(L"/CHECK4UPDATES", &bGet)) << strReply;
        EXPECT_EQ(7, bGet);
        ExpectDone(30);
        EXPECT_EQ(kMonthly, Stored(L"RemindFreq"));
        EXPECT_EQ(0u, Stored(L"AutoCheck"));
        EXPECT_EQ(4u, setup->Values().size()) << strReply;
    }
}

TEST_F(DoCheck, SilentlyAnythingElseIsTriedAgainTomorrow) {
    using namespace std::string_literals;
    for (const std::string& strReply : {"text/"s,
                                        "text/4F"s,
                                        Answer("text", "OKAY"),
                                        Answer("text", "OK\r\n"),
                                        Answer("text", " OK"),
                                        Answer("text", "error"),
                                        Answer("text", "ERROR no disk"),
                                        Answer("text", "[dl"),
                                        Answer("text", "<html>not here</html>"),
                                        "size/1024"s,
                                        "size/1025"s,
                                        "size/10485760"s,
                                        "endless"s,
                                        "close"s,
                                        "short/"s,
                                        "short/4F"s,
                                        "raw/0d0a0d0a"s,
                                        "status/404/"s,
                                        "status/204/"s,
                                        "auth/4E"s,
                                        Answer("text", "\xEF\xBB\xBF"),
                                        Answer("text", "\0\0\0"s)}) {
        Plant(kLastBefore, kNextBefore, kMonthly, 0);
        server->Say({strReply});
        int bGet = 7;
        EXPECT_EQ(1, Check(L"/CHECK4UPDATES", &bGet)) << strReply;
        EXPECT_EQ(7, bGet);
        ExpectGivenUp();
        if (HasFailure()) FAIL() << strReply;
    }
    internet->SetName(kServer, L"refused");
    Plant(kLastBefore, kNextBefore, kMonthly, 0);
    EXPECT_EQ(1, CheckSilently());
    ExpectGivenUp();
}

TEST_F(DoCheck, FrequencyDecidesWhenTheNextIs) {
    server->Say({"text/4F4B"});
    const std::pair<DWORD, DWORD> rows[] = {{0, 1}, {1, 7}, {2, 30}, {3, 3650}, {4, 3650}};
    for (auto [dwFrequency, nDays] : rows) {
        Plant(kLastBefore, kNextBefore, dwFrequency, 1);
        EXPECT_EQ(1, CheckSilently());
        ExpectDone(nDays);
        EXPECT_EQ(dwFrequency, Stored(L"RemindFreq"));
        EXPECT_EQ(1u, Stored(L"AutoCheck"));
    }
}

TEST_F(DoCheck, FirstCheckOfAllMakesTheKey) {
    server->Say({"text/4F4B"});
    setup->Delete();
    EXPECT_EQ(1, CheckSilently());
    setup->Create(); // opens what is there
    ExpectDone(7);
    EXPECT_EQ(kWeekly, Stored(L"RemindFreq"));
    EXPECT_EQ(1u, Stored(L"AutoCheck"));
}

TEST_F(DoCheck, FailedFirstCheckNamesNoLastOne) {
    server->Say({"close"});
    setup->Delete();
    setup->Create();
    EXPECT_EQ(1, CheckSilently());
    ExpectScheduledIn(1);
    EXPECT_FALSE(setup->HasValue(L"LastUpdate"));
}

// With a user

TEST_F(DoCheck, NothingNewIsTold) {
    server->Say({"text/6F6B"});
    MessageBoxDriver boxes({IDOK});
    EXPECT_EQ(1, Check(nullptr));
    auto seen = boxes.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(kNoUpdates, seen[0].strText);
    EXPECT_EQ((std::vector<int>{IDOK}), seen[0].buttons);
    EXPECT_TRUE(seen[0].bHasIcon);
    ExpectDone(30);
}

TEST_F(DoCheck, OwnerOwnsTheBox) {
    server->Say({"text/6F6B"});
    TestWindow window;
    ::ShowWindow(window, SW_SHOW);
    MessageBoxDriver boxes({IDOK});
    EXPECT_EQ(1, Check(nullptr, nullptr, window));
    auto seen = boxes.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(static_cast<HWND>(window), seen[0].hwndOwner);
}

TEST_F(DoCheck, NoAnswerCanBeTriedAgain) {
    server->Say({"text/", "status/500/", "text/4F4B"});
    MessageBoxDriver boxes({IDRETRY, IDRETRY, IDOK});
    int bGet = 7;
    EXPECT_EQ(1, Check(nullptr, &bGet));
    auto seen = boxes.Finish();
    ASSERT_EQ(3u, seen.size());
    EXPECT_EQ(kCannotConnect, seen[0].strText);
    EXPECT_EQ((std::vector<int>{IDRETRY, IDCANCEL}), seen[0].buttons);
    EXPECT_TRUE(seen[0].bHasIcon);
    EXPECT_EQ(kCannotConnect, seen[1].strText);
    EXPECT_EQ(kNoUpdates, seen[2].strText);
    EXPECT_EQ(3u, server->TakeRequests().size());
    EXPECT_EQ(7, bGet);
    ExpectDone(30);
}

TEST_F(DoCheck, NoAnswerCanBeGivenUp) {
    internet->SetName(kServer, L"refused");
    MessageBoxDriver boxes({IDCANCEL});
    EXPECT_EQ(1, Check(nullptr));
    auto seen = boxes.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(kCannotConnect, seen[0].strText);
    ExpectGivenUp();
}

TEST_F(DoCheck, ErrorIsToldWithItsDetail) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"error no disk", L"no disk"},
        {"ERROR    no disk", L"no disk"},
        {"Error: 12", L": 12"},
        {"error %s %n %d 100%", L"%s %n %d 100%"},
        {"error", L""},
        {"OKAY", L""},
        {"<html><b>404</b></html>", L""},
        {"error <b>x</b>", L"<b>x</b>"},
    };
    for (const auto& [strReply, strDetail] : rows) {
        Plant(kLastBefore, kNextBefore, kMonthly, 0);
        server->Say({Answer("text", strReply)});
        MessageBoxDriver boxes({IDCANCEL});
        EXPECT_EQ(1, Check(nullptr));
        auto seen = boxes.Finish();
        ASSERT_EQ(1u, seen.size()) << strReply;
        EXPECT_EQ(kError + strDetail, seen[0].strText) << strReply;
        EXPECT_EQ((std::vector<int>{IDRETRY, IDCANCEL}), seen[0].buttons);
        ExpectGivenUp();
    }
}

TEST_F(DoCheck, LongErrorIsBounded) {
    server->Say({Answer("text", "error " + std::string(5000, 'x'))});
    MessageBoxDriver boxes({IDCANCEL});
    EXPECT_EQ(1, Check(nullptr));
    auto seen = boxes.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(0u, seen[0].strText.find(std::wstring(kError) + L"xxxx"));
    EXPECT_GE(1024u, seen[0].strText.size());
}

TEST_F(DoCheck, ErrorCanBeTriedAgain) {
    server->Say({Answer("text", "error 1"), Answer("text", "error 2"), "text/4F4B"});
    MessageBoxDriver boxes({IDRETRY, IDRETRY, IDOK});
    EXPECT_EQ(1, Check(nullptr));
    auto seen = boxes.Finish();
    ASSERT_EQ(3u, seen.size());
    EXPECT_EQ(std::wstring(kError) + L"2", seen[1].strText);
    EXPECT_EQ(kNoUpdates, seen[2].strText);
    ExpectDone(30);
}

// Updates, of which a user is told in a silent check too

struct UpdateCase {
    const char* pszName;
    std::string strLines;
    std::wstring strOpened; // for yes; empty: nothing
};

TEST_F(DoCheck, YesOpensTheAddress) {
    using namespace std::string_literals;
    const std::string strGet = "urldownload=http://a.example/get?x=1&y=%20z\r\n";
    const std::string strMore = "urlmoreinfo=https://a.example/more\r\n";
    const std::wstring strOpensGet = L"http://a.example/get?x=1&y=%20z";
    const std::wstring strOpensMore = L"https://a.example/more";
    const UpdateCase rows[] = {
        {"both", "version=1.2\r\n" + strGet + strMore, strOpensGet},
        {"download alone", strGet, strOpensGet},
        {"more alone", strMore, strOpensMore},
        {"empty download", "urldownload=\r\n" + strMore, strOpensMore},
        {"neither", "version=1.2\r\n", L""},
        {"nothing at all", "", L""},
        {"doubled", strGet + "urldownload=http://a.example/last\r\n", L"http://a.example/last"},
        {"script", "urldownload=javascript:alert(1)\r\n" + strMore, strOpensMore},
        {"program", "urldownload=c:\\windows\\notepad.exe\r\n", L""},
        {"file", "urldownload=file:///c:/windows/notepad.exe\r\n", L""},
        {"share", "urldownload=\\\\a.example\\x\r\n" + strMore, strOpensMore},
        {"another scheme", "urldownload=ftp://a.example/x\r\n", L""},
        {"quote", "urldownload=http://a.example/\" /x\r\n" + strMore, strOpensMore},
        {"blank", "urldownload=http://a.example/a b\r\n" + strMore, strOpensMore},
        {"not plain", "urldownload=http://a.example/\xE4\r\n" + strMore, strOpensMore},
        {"too long", "urldownload=http://a/" + std::string(300, 'x') + "\r\n" + strMore,
         strOpensMore},
        {"both bad", "urldownload=x:y\r\nurlmoreinfo=notepad.exe\r\n", L""},
    };
    for (const UpdateCase& row : rows) {
        Plant(kLastBefore, kNextBefore, kMonthly, 0);
        server->Say({Update(row.strLines)});
        ShellStartRecorder shell;
        UpdateDialogDriver dialog({});
        int bGet = 7;
        EXPECT_EQ(1, Check(L"/CHECK4UPDATES", &bGet)) << row.pszName;
        ASSERT_TRUE(dialog.Finish()) << row.pszName;
        EXPECT_EQ(1, bGet) << row.pszName;
        if (row.strOpened.empty()) {
            EXPECT_TRUE(shell.calls.empty()) << row.pszName;
        } else {
            ASSERT_FALSE(shell.calls.empty()) << row.pszName;
            EXPECT_EQ(row.strOpened.c_str(), shell.calls[0].file) << row.pszName;
        }
        std::vector<ShellCall>().swap(shell.calls);
        ExpectDone(30);
    }
}

TEST_F(DoCheck, NoAndCancelOpenNothing) {
    server->Say({Update("urldownload=http://a.example/\r\n")});
    for (UpdateAnswer answer : {UpdateAnswer{0, -1, IDOK}, UpdateAnswer{1, -1, IDCANCEL},
                                UpdateAnswer{0, -1, IDCANCEL}}) {
        for (const wchar_t* psz : {static_cast<const wchar_t*>(nullptr), L"/CHECK4UPDATES"}) {
            Plant(kLastBefore, kNextBefore, kMonthly, 0);
            ShellStartRecorder shell;
            UpdateDialogDriver dialog(answer);
            int bGet = 7;
            EXPECT_EQ(1, Check(psz, &bGet));
            auto seen = dialog.Finish();
            ASSERT_TRUE(seen);
            EXPECT_EQ(static_cast<int>(kMonthly), seen->nReminder);
            EXPECT_EQ(7, bGet);
            EXPECT_TRUE(shell.calls.empty());
            ExpectDone(30);
        }
    }
}

TEST_F(DoCheck, ReminderBecomesTheFrequency) {
    server->Say({Update("version=2\r\n")});
    const std::pair<int, DWORD> rows[] = {{0, 1}, {1, 7}, {2, 30}, {3, 3650}};
    for (auto [nReminder, nDays] : rows) {
        for (int bYes : {0, 1}) {
            Plant(kLastBefore, kNextBefore, nReminder == 2 ? 0 : kMonthly, 0);
            UpdateDialogDriver dialog({bYes, nReminder, IDOK});
            EXPECT_EQ(1, CheckSilently());
            ASSERT_TRUE(dialog.Finish());
            ExpectDone(nDays);
            EXPECT_EQ(static_cast<DWORD>(nReminder), Stored(L"RemindFreq"));
            EXPECT_EQ(0u, Stored(L"AutoCheck"));
        }
    }
}

TEST_F(DoCheck, DescriptionIsShownWhateverItsEncoding) {
    using namespace std::string_literals;
    std::string strUtf16 = "\xFF\xFE";
    for (wchar_t ch : std::wstring(L"[DL]\r\ndescr=<b>\x20AC</b> \x0416\r\n")) {
        strUtf16 += static_cast<char>(ch & 0xFF);
        strUtf16 += static_cast<char>(ch >> 8);
    }
    const std::string strUtf8 = "\xEF\xBB\xBF[dL]\r\ndescr=<b>\xE2\x82\xAC</b> \xD0\x96\r\n";
    for (const std::string& strReply : {strUtf8, strUtf16}) {
        server->Say({Answer("text", strReply)});
        UpdateDialogDriver dialog({0, -1, IDOK});
        EXPECT_EQ(1, CheckSilently());
        auto seen = dialog.Finish();
        ASSERT_TRUE(seen);
        EXPECT_EQ(L"<b>\x20AC</b> \x0416", seen->strDescription);
    }
    server->Say({Update("descr=" + std::string(700, 'd') + "\r\n")});
    UpdateDialogDriver dialog({0, -1, IDOK});
    EXPECT_EQ(1, CheckSilently());
    auto seen = dialog.Finish();
    ASSERT_TRUE(seen);
    EXPECT_EQ(std::wstring(259, L'd'), seen->strDescription);
}

TEST_F(DoCheck, ErrorAndThenAnUpdate) {
    server->Say({"text/", Answer("text", "error x"), Update("urldownload=http://a.example/\r\n")});
    ShellStartRecorder shell;
    MessageBoxDriver boxes({IDRETRY, IDRETRY});
    UpdateDialogDriver dialog({});
    EXPECT_EQ(1, Check(nullptr));
    EXPECT_EQ(2u, boxes.Finish().size());
    EXPECT_TRUE(dialog.Finish());
    EXPECT_FALSE(shell.calls.empty());
    std::vector<ShellCall>().swap(shell.calls);
    ExpectDone(30);
}

// From a command line

TEST_F(DoCheck, CommandLineTakesTheTwoSwitchesInAnyCase) {
    server->Say({"text/4F4B"});
    for (const wchar_t* psz : {L"/CHECK4UPDATES", L"/check4updates", L"/Check4Updates"}) {
        EXPECT_EQ(1, DoCheckForUpdatesCmdln(psz, 0)) << psz;
        EXPECT_EQ(1u, server->TakeRequests().size());
    }
    for (const wchar_t* psz : {L"check4updates", L"CHECK4UPDATES"}) {
        MessageBoxDriver boxes({IDOK});
        EXPECT_EQ(1, DoCheckForUpdatesCmdln(psz, 0)) << psz;
        EXPECT_EQ(1u, boxes.Finish().size());
        EXPECT_EQ(1u, server->TakeRequests().size());
    }
    for (const wchar_t* psz :
         {static_cast<const wchar_t*>(nullptr), L"", L"-check4updates", L"//CHECK4UPDATES",
          L"check4update", L"check4updates ", L" /CHECK4UPDATES", L"/CHECK4UPDATES:1", L"/EXIT"}) {
        EXPECT_EQ(0, DoCheckForUpdatesCmdln(psz, 0));
    }
    EXPECT_TRUE(server->TakeRequests().empty());
}

// In a process of its own: what is forced stays so for its life.
using DoCheckInChild = DoCheck;

TEST_F(DoCheckInChild, DISABLED_ForcedCheckIsDailyAndLeavesTheUsersSettings) {
    server->Say({"text/4F4B"});
    Plant(kLastBefore, kNextBefore, kMonthly, 0);
    dwBegin = GetCurTime();
    EXPECT_EQ(1, DoCheckForUpdatesCmdln(L"/CHECK4UPDATES", 1));
    dwEnd = GetCurTime();
    ExpectDone(1);
    EXPECT_EQ(kMonthly, Stored(L"RemindFreq"));
    EXPECT_EQ(0u, Stored(L"AutoCheck"));
    setup->Delete();
    setup->Create();
    server->Say({"close"});
    EXPECT_EQ(1, DoCheckForUpdatesCmdln(L"/CHECK4UPDATES", 1));
    EXPECT_EQ(1u, setup->Values().size());
    EXPECT_TRUE(setup->HasValue(L"NextUpdate"));
}

TEST(DoCheckDeathTest, ForcedCheckIsDailyAndLeavesTheUsersSettings) {
    if (!HttpServer().IsRunning()) GTEST_SKIP() << "no Python with aiohttp here for the server";
    EXPECT_EQ(0u, RunInChild("DoCheckInChild", "ForcedCheckIsDailyAndLeavesTheUsersSettings"));
}
} // namespace
