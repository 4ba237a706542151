// The program's two switches that check for updates, against a real server: it is reached as any is
// that lies behind the proxy which the platform is set to.

#include "app/instance/single_instance.h"
#include "store/reg_tree.h"
#include "support/http_server.h"
#include "support/launch_reports.h"
#include "support/message_box_driver.h"
#include "support/platform_proxy.h"
#include "support/start_process.h"
#include "support/this_windows.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace {
constexpr DWORD kDeadlineMs = 30000;
constexpr DWORD kTimeoutMs = 10000, kBeyondTimeoutMs = 2000;
/// For the start and the end of the program, and other programs that have the processors.
constexpr DWORD kBusyMs = 4000;
constexpr const wchar_t* kMonitorClass = L"TessalyWnd";
constexpr int kDescription = 1009, kYes = 21536, kNo = 21537;

std::wstring HostPath() {
    std::filesystem::path path = ProgramFolder();
    return (path.parent_path().parent_path() / "bin" / "TSEXE64.exe").wstring();
}

/// TSEXE64.exe, from its start to its end.
class HostRun {
  public:
    explicit HostRun(const std::wstring& strArguments) : dwStart(::GetTickCount()) {
        std::wstring strLine = L"\"" + HostPath() + L"\" " + strArguments;
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        EXPECT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                       nullptr, &si, &pi));
        ::CloseHandle(pi.hThread);
    }
    ~HostRun() {
        if (IsRunning()) ::TerminateProcess(pi.hProcess, 99);
        ::WaitForSingleObject(pi.hProcess, kDeadlineMs);
        ::CloseHandle(pi.hProcess);
    }
    HostRun(const HostRun&) = delete;
    HostRun& operator=(const HostRun&) = delete;

    bool IsRunning() const { return ::WaitForSingleObject(pi.hProcess, 0) == WAIT_TIMEOUT; }
    /// The exit code; nothing if it does not end. nMs is what it took.
    std::optional<DWORD> WaitForEnd() {
        if (::WaitForSingleObject(pi.hProcess, kDeadlineMs) != WAIT_OBJECT_0) return {};
        nMs = ::GetTickCount() - dwStart;
        DWORD dwCode = 0;
        ::GetExitCodeProcess(pi.hProcess, &dwCode);
        return dwCode;
    }
    /// Waits for the end, and fails the test for any window that is to be seen meanwhile.
    std::optional<DWORD> WaitForSilentEnd() {
        while (::WaitForSingleObject(pi.hProcess, 20) == WAIT_TIMEOUT) {
            if (::GetTickCount() - dwStart > kDeadlineMs) return {};
            if (HasVisibleWindow()) {
                ADD_FAILURE() << "it shows something";
                return {};
            }
        }
        return WaitForEnd();
    }
    /// The dialog that tells of an update; null if it does not come.
    HWND WaitForUpdateDialog() const {
        HWND hwndFound = nullptr;
        WaitUntil([&] {
            for (HWND hwnd = nullptr;
                 (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", nullptr));) {
                if (ProcessOf(hwnd) == pi.dwProcessId && ::IsWindowVisible(hwnd) &&
                    ::GetDlgItem(hwnd, kDescription)) {
                    hwndFound = hwnd;
                }
            }
            return hwndFound != nullptr;
        });
        return hwndFound;
    }
    DWORD Id() const { return pi.dwProcessId; }
    DWORD nMs = 0;

  private:
    static DWORD ProcessOf(HWND hwnd) {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &dwProcess);
        return dwProcess;
    }
    bool HasVisibleWindow() const {
        for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, nullptr, nullptr));)
            if (ProcessOf(hwnd) == pi.dwProcessId && ::IsWindowVisible(hwnd)) return true;
        return false;
    }
    PROCESS_INFORMATION pi{};
    DWORD dwStart;
};

/// The product's own time, as another program computes it.
DWORD ProductTime() {
    constexpr unsigned __int64 kTicksPerSecond = 10000000, kUnixEpoch = 11644473600,
                               kOurs = 819936000;
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    unsigned __int64 qw = static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    return static_cast<DWORD>(qw / kTicksPerSecond - kUnixEpoch - kOurs);
}

std::set<std::wstring> FilesOfUsers() {
    std::set<std::wstring> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             L"C:\\users", std::filesystem::directory_options::skip_permission_denied)) {
        if (entry.path().wstring().find(L"tessaly_test_") == std::wstring::npos)
            files.insert(entry.path().wstring());
    }
    return files;
}

/// Those that are there now and are none of the ones before.
std::set<std::wstring> NewFilesOfUsers(const std::set<std::wstring>& before) {
    std::set<std::wstring> left;
    for (const std::wstring& str : FilesOfUsers())
        if (!before.contains(str)) left.insert(str);
    return left;
}

class HostUpdateCheck : public testing::Test {
  protected:
    static void SetUpTestSuite() { server = std::make_unique<HttpServer>(); }
    static void TearDownTestSuite() { server.reset(); }
    void SetUp() override {
        if (!server->IsRunning()) GTEST_SKIP() << "no Python with aiohttp here for the server";
        proxy.emplace(server->Port());
        (void)server->TakeRequests();
        dwBegin = ProductTime();
    }
    void TearDown() override {
        EXPECT_EQ(nullptr, ::FindWindowW(kMonitorClass, nullptr)); // nothing else was started
    }
    void Plant(DWORD dwLast, DWORD dwNext) const {
        PutDword(L"LastUpdate", dwLast);
        PutDword(L"NextUpdate", dwNext);
    }
    void PutDword(const wchar_t* pszName, DWORD dw) const {
        const auto* p = reinterpret_cast<const unsigned char*>(&dw);
        setup.Put(pszName, REG_DWORD, RegBytes(p, p + sizeof(dw)));
    }
    DWORD Stored(const wchar_t* pszName) const {
        RegDump dump = setup.Dump();
        auto it = dump.values.find(pszName);
        DWORD dw = 0;
        if (it == dump.values.end() || it->second.bytes.size() != sizeof(dw)) return 0;
        memcpy(&dw, it->second.bytes.data(), sizeof(dw));
        return dw;
    }
    /// The next check is tomorrow, up to an hour later.
    void ExpectTomorrow() const {
        constexpr DWORD kDay = 86400, kHour = 3600;
        DWORD dwNext = Stored(L"NextUpdate");
        EXPECT_LE(dwBegin + kDay - 1, dwNext);
        EXPECT_GE(ProductTime() + kDay + kHour, dwNext);
    }
    void ExpectDone() const {
        ExpectTomorrow();
        EXPECT_LE(dwBegin - 1, Stored(L"LastUpdate"));
        EXPECT_GE(ProductTime(), Stored(L"LastUpdate"));
    }
    static inline std::unique_ptr<HttpServer> server;
    std::optional<PlatformProxy> proxy;
    RegTree setup{HKEY_CURRENT_USER, L"Software\\Orvanta\\Tessaly\\Setup"};
    DWORD dwBegin = 0;
};

TEST_F(HostUpdateCheck, SilentOneAsksThroughThePlatformsProxy) {
    server->Say({"text/4F4B"});
    HostRun run(L"/CHECK4UPDATES");
    EXPECT_EQ(0u, run.WaitForSilentEnd());
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ("POST", requests[0].strMethod);
    std::string strTarget = requests[0].strTarget;
    if (std::size_t n = strTarget.find(":80/"); n != std::string::npos) strTarget.erase(n, 3);
    EXPECT_EQ("http://updates.orvanta.example/updates/index.php", strTarget);
    EXPECT_EQ("updates.orvanta.example", requests[0].headers["host"]);
    EXPECT_EQ("Mozilla/4.0 (Orvanta Software)", requests[0].headers["user-agent"]);
    EXPECT_EQ("application/x-www-form-urlencoded", requests[0].headers["content-type"]);
    EXPECT_NE(std::string::npos, requests[0].strBody.find("&appver=1.1.0.2409&"));
    EXPECT_GE(256u, requests[0].strBody.size());
    ExpectDone();
}

// The program's manifest names every Windows, so that none tells it of an older one.
TEST_F(HostUpdateCheck, TellsTheWindowsThatItRunsOn) {
    server->Say({"text/4F4B"});
    HostRun run(L"/CHECK4UPDATES");
    EXPECT_EQ(0u, run.WaitForSilentEnd());
    auto requests = server->TakeRequests();
    ASSERT_EQ(1u, requests.size());
    const OSVERSIONINFOEXW info = ThisWindows();
    std::string strExpected = "&winver=" + std::to_string(info.dwMajorVersion) + "." +
                              std::to_string(info.dwMinorVersion) + ".0." +
                              std::to_string(info.dwBuildNumber) + "&winlang=";
    strExpected += IsThisWindowsAtLeast(6, 0) ? "en-US" : "English";
    strExpected += "&winsp=" + std::to_string(info.wServicePackMajor) + ".0&";
    EXPECT_NE(std::string::npos, requests[0].strBody.find(strExpected)) << requests[0].strBody;
}

TEST_F(HostUpdateCheck, SilentOneIsSilentWhateverTheServerSays) {
    for (const char* pszReply : {"text/4F4B", "text/6572726F72", "text/", "close", "short/4F",
                                 "size/1048576", "status/500/", "auth/4E", "raw/0D0A"}) {
        server->Say({pszReply});
        HostRun run(L"/check4updates");
        EXPECT_EQ(0u, run.WaitForSilentEnd()) << pszReply;
        ExpectTomorrow();
    }
    proxy->SetPort(server->RefusedPort());
    setup.Delete();
    HostRun run(L"/CHECK4UPDATES");
    EXPECT_EQ(0u, run.WaitForSilentEnd());
    ExpectTomorrow();
    EXPECT_EQ(0u, Stored(L"LastUpdate"));
}

TEST_F(HostUpdateCheck, PersonIsToldTheAnswer) {
    server->Say({"text/", Answer("text", "error no disk"), "text/4F4B"});
    HostRun run(L"Check4Updates");
    auto first = AnswerMessageBox(run.Id(), IDRETRY);
    ASSERT_TRUE(first);
    EXPECT_EQ(L"Tessaly", first->strTitle);
    EXPECT_EQ(0u, first->strText.find(L"Cannot connect to the software update server."));
    auto second = AnswerMessageBox(run.Id(), IDRETRY);
    ASSERT_TRUE(second);
    EXPECT_EQ(L"An error occurred when checking for updates.\n\nno disk", second->strText);
    auto third = AnswerMessageBox(run.Id(), IDOK);
    ASSERT_TRUE(third);
    EXPECT_EQ(L"No updates are available at this time. You are using the latest version available.",
              third->strText);
    EXPECT_EQ(0u, run.WaitForEnd());
    EXPECT_EQ(3u, server->TakeRequests().size());
    ExpectDone();
}

TEST_F(HostUpdateCheck, PersonMayGiveUp) {
    Plant(1000, 2000);
    proxy->SetPort(server->RefusedPort());
    HostRun run(L"check4updates");
    ASSERT_TRUE(AnswerMessageBox(run.Id(), IDCANCEL));
    EXPECT_EQ(0u, run.WaitForEnd());
    ExpectTomorrow();
    EXPECT_EQ(1000u, Stored(L"LastUpdate"));
}

TEST_F(HostUpdateCheck, UpdateIsToldAndItsPageOpened) {
    LaunchReports reports;
    const std::wstring strHandler = L"\"" + ProbePath() + L"\" \"%1\"";
    ClassKey http(L"http\\shell\\open\\command", strHandler.c_str());
    server->Say({Answer("text", "[dl]\r\nversion=1.2\r\ndescr=<b>New</b>\r\n"
                                "urldownload=http://a.example/get?x=1\r\n")});
    for (const wchar_t* psz : {L"/CHECK4UPDATES", L"check4updates"}) {
        for (int bYes : {0, 1}) {
            HostRun run(psz);
            HWND hwnd = run.WaitForUpdateDialog();
            ASSERT_NE(nullptr, hwnd);
            wchar_t sz[64] = L"";
            ::SendDlgItemMessageW(hwnd, kDescription, WM_GETTEXT, 64, reinterpret_cast<LPARAM>(sz));
            EXPECT_STREQ(L"<b>New</b>", sz);
            ::SendDlgItemMessageW(hwnd, kYes, BM_SETCHECK, bYes, 0);
            ::SendDlgItemMessageW(hwnd, kNo, BM_SETCHECK, !bYes, 0);
            WaitUntil([&] {
                ::PostMessageW(hwnd, WM_COMMAND, IDOK, 0);
                return WaitUntil([&] { return !::IsWindow(hwnd); }, 500);
            });
            if (bYes) {
                auto report = reports.Take();
                ASSERT_TRUE(report);
                EXPECT_NE(std::wstring::npos, report->strLine.find(L"http://a.example/get?x=1"));
            }
            EXPECT_EQ(0u, run.WaitForEnd());
            EXPECT_TRUE(reports.IsEmpty());
            EXPECT_LE(dwBegin - 1, Stored(L"LastUpdate"));
        }
    }
}

TEST_F(HostUpdateCheck, BothWorkBesideTheRunningOne) {
    SingleInstanceXP running;
    ASSERT_EQ(1, running.IsFirstInstance(0, L"Tessaly"));
    server->Say({"text/4F4B"});
    HostRun silent(L"/CHECK4UPDATES");
    EXPECT_EQ(0u, silent.WaitForSilentEnd());
    HostRun person(L"check4updates");
    EXPECT_TRUE(AnswerMessageBox(person.Id(), IDOK));
    EXPECT_EQ(0u, person.WaitForEnd());
    EXPECT_EQ(2u, server->TakeRequests().size());
}

TEST_F(HostUpdateCheck, EndsInTimeWhateverTheServerDoes) {
    server->Say({"text/4F4B"});
    HostRun(L"/CHECK4UPDATES").WaitForEnd(); // the platform makes its folders
    (void)server->TakeRequests();
    auto filesBefore = FilesOfUsers();
    Plant(1000, 2000);
    server->Say({"silent", "drip-body/1000", "drip-headers/1000"});
    HostRun runs[] = {HostRun(L"/CHECK4UPDATES"), HostRun(L"/CHECK4UPDATES"),
                      HostRun(L"/CHECK4UPDATES")};
    for (HostRun& run : runs) {
        EXPECT_EQ(0u, run.WaitForSilentEnd());
        EXPECT_GE(kTimeoutMs + kBeyondTimeoutMs + kBusyMs, run.nMs);
    }
    EXPECT_EQ(3u, server->TakeRequests().size());
    ExpectTomorrow();
    EXPECT_EQ(1000u, Stored(L"LastUpdate"));
    EXPECT_EQ(std::set<std::wstring>{}, NewFilesOfUsers(filesBefore));
}

// But for cookies: what the server wants kept, the platform keeps.
TEST_F(HostUpdateCheck, LeavesItsScheduleAndNothingElse) {
    server->Say({"text/4F4B"});
    HostRun(L"/CHECK4UPDATES").WaitForEnd(); // the platform makes its folders
    (void)server->TakeRequests();
    setup.Delete();
    RegDump userBefore = RegTree::DumpOf(HKEY_CURRENT_USER, L"Software");
    auto filesBefore = FilesOfUsers();
    for (const char* pszReply :
         {"cacheable/4F4B", "text/4F4B", "size/2000000", "short/4F4B", "status/404/4E"}) {
        server->Say({pszReply});
        HostRun run(L"/CHECK4UPDATES");
        EXPECT_EQ(0u, run.WaitForSilentEnd());
    }
    EXPECT_EQ(5u, server->TakeRequests().size());
    std::set<std::wstring> names;
    for (const auto& [strName, content] : setup.Dump().values) names.insert(strName);
    EXPECT_EQ((std::set<std::wstring>{L"LastUpdate", L"NextUpdate"}), names);
    setup.Delete();
    EXPECT_EQ(userBefore, RegTree::DumpOf(HKEY_CURRENT_USER, L"Software"));
    EXPECT_EQ(std::set<std::wstring>{}, NewFilesOfUsers(filesBefore));
}
} // namespace
