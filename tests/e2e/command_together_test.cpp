// Commands beside each other, beside a starting monitor, beside others' objects, and from scripts.

#include "e2e/command_test_support.h"
#include "support/start_process.h"
#include "support/temp_folder.h"
#include "support/window_thread.h"

#include <memory>

namespace {
constexpr DWORD kWaitOfACommandMs = 15000;

/// A command that is at work for as long as the shell does nothing, and the mutex that it has.
class CommandTogether : public CommandTest {
  protected:
    void TearDown() override {
        if (hMutex) ::CloseHandle(hMutex);
        CommandTest::TearDown();
    }
    /// Returns when the command has the mutex.
    void StartAtWork(CommandProcess& process, DWORD nShellHangsMs) {
        std::set<std::wstring> before = SessionMutexes();
        desktop->Hang(nShellHangsMs);
        process.Start(L"/REMEMBER");
        std::wstring strMutex;
        ASSERT_TRUE(WaitUntil([&] {
            for (const std::wstring& str : SessionMutexes()) {
                if (!before.contains(str) && str.find(L"Tessaly") != std::wstring::npos)
                    strMutex = str;
            }
            return !strMutex.empty();
        })) << "no mutex is there while a command works";
        hMutex = ::OpenMutexW(MUTEX_ALL_ACCESS, FALSE, (L"Local\\" + strMutex).c_str());
        ASSERT_NE(nullptr, hMutex);
        ASSERT_TRUE(WaitUntil([&] {
            if (::WaitForSingleObject(hMutex, 0) != WAIT_OBJECT_0) return true;
            ::ReleaseMutex(hMutex); // made, and not taken yet
            return false;
        }));
    }
    HANDLE hMutex = nullptr;
};

TEST_F(CommandTogether, SecondOneWaitsForTheFirst) {
    Begin(false);
    std::wstring strOld = Plant(100);
    CommandProcess first, second;
    StartAtWork(first, 3000);
    second.Start(L"/DELETE:1"); // which has nothing to do with the shell
    EXPECT_TRUE(HoldsFor([&] { return second.IsRunning(); }, 700));
    EXPECT_EQ("Icons stored\r\n", first.Wait().strOut);
    EXPECT_EQ(DWORD{kCodeDone}, second.Wait().dwCode);
    EXPECT_EQ(std::set<std::wstring>{strOld}, Names()); // the newest is what the first stored
    EXPECT_TRUE(LeftNothing());
}

TEST_F(CommandTogether, OneThatWasKilledIsNotWaitedFor) {
    Begin(false);
    Plant(100);
    CommandProcess killed;
    StartAtWork(killed, 30000);
    killed.Kill(); // the mutex is abandoned, and stays with the test's handle
    DWORD dwStart = ::GetTickCount();
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_GT(kWaitOfACommandMs, ::GetTickCount() - dwStart);
    EXPECT_EQ(0, store.Count());
    desktop->Kill();
}

TEST_F(CommandTogether, MutexOfAnotherProgramEndsCommandsAndOnlyDelaysAStart) {
    Begin(false);
    std::wstring strOld = Plant(100);
    CommandProcess first;
    StartAtWork(first, 500);
    ASSERT_EQ(DWORD{kCodeDone}, first.Wait().dwCode);
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hMutex, kTestDeadlineMs)); // the test has it now
    auto before = AllValues(store);
    DWORD dwStart = ::GetTickCount();
    CommandProcess refused;
    refused.Start(L"/DELETE:1");
    monitor.Start();
    CommandEnd end = refused.Wait();
    EXPECT_EQ(DWORD{kCodeBusy}, end.dwCode);
    EXPECT_LE(kWaitOfACommandMs - 500, ::GetTickCount() - dwStart);
    EXPECT_NE("", end.strErr);
    for (const auto& [strName, value] : before) EXPECT_TRUE(Names().contains(strName));
    EXPECT_TRUE(monitor.WaitUntilOn(*desktop));
    ::ReleaseMutex(hMutex);
    EXPECT_TRUE(StillCaptures());
    EXPECT_TRUE(Names().contains(strOld));
}

TEST_F(CommandTogether, StartOfAMonitorWaitsForACommand) {
    Begin(false);
    CommandProcess first;
    StartAtWork(first, 2500);
    monitor.Start();
    EXPECT_TRUE(HoldsFor([] { return !::FindWindowW(kMonitorClass, nullptr); }, 1000));
    CommandEnd end = first.Wait();
    EXPECT_EQ(DWORD{kCodeDone}, end.dwCode) << end.All();
    EXPECT_EQ("Icons stored\r\n", end.strOut);
    EXPECT_TRUE(monitor.WaitUntilOn(*desktop));
    EXPECT_TRUE(StillCaptures());
}

TEST_F(CommandTest, ExitEndsOneThatWorksWithoutAMonitor) {
    Begin(false, 300); // which takes a while
    CommandProcess command, exit;
    command.Start(L"/REMEMBER");
    ASSERT_TRUE(WaitUntil([] { return ::FindWindowW(kMonitorClass, nullptr) != nullptr; }));
    {
        SuspendedProcess suspended(command.Id());
        exit.Start(L"/EXIT /QUIET");
        EXPECT_TRUE(HoldsFor([&] { return exit.IsRunning(); }, 1500));
    }
    EXPECT_EQ(DWORD{kCodeDone}, exit.Wait().dwCode);
    EXPECT_FALSE(command.IsRunning());
    CommandEnd end = command.Wait(); // what was done is told as done
    EXPECT_EQ(DWORD{store.Count() ? kCodeDone : kCodeNoShell}, end.dwCode) << end.All();
    FlushShell();
    EXPECT_TRUE(LeftNothing());
}

TEST_F(CommandTest, BesideAStartingMonitorIsDone) {
    Begin(false);
    for (const wchar_t* psz : {L"/REMEMBER", L"/RESTORE", L"/DELETE:1"}) {
        monitor.Start();
        Expect(kCodeDone, psz);
        ASSERT_TRUE(monitor.WaitUntilOn(*desktop));
        EXPECT_TRUE(StillCaptures());
        ASSERT_TRUE(monitor.Exit());
        EXPECT_TRUE(LeftNothing());
    }
}

TEST_F(CommandTest, MarkWithoutAWindowIsWaitedFor) {
    std::wstring strName = Plant(100);
    TakenMark mark;
    DWORD dwStart = ::GetTickCount();
    Expect(kCodeBusy, L"/DELETE:1");
    EXPECT_LE(kWaitOfACommandMs - 500, ::GetTickCount() - dwStart);
    EXPECT_EQ(std::set<std::wstring>{strName}, Names());
}

/// A window of the monitor's class that knows no command, as an older monitor's.
class OlderMonitor {
  public:
    OlderMonitor() {
        thread.Run([this] {
            WNDCLASSW wc{};
            wc.lpfnWndProc = ::DefWindowProcW;
            wc.hInstance = ::GetModuleHandleW(nullptr);
            wc.lpszClassName = kMonitorClass;
            ::RegisterClassW(&wc);
            hwnd = ::CreateWindowExW(0, kMonitorClass, kMonitorClass, WS_POPUP, 0, 0, 0, 0, nullptr,
                                     nullptr, wc.hInstance, nullptr);
        });
    }
    ~OlderMonitor() {
        thread.Run([this] {
            ::DestroyWindow(hwnd);
            ::UnregisterClassW(kMonitorClass, ::GetModuleHandleW(nullptr));
        });
    }
    OlderMonitor(const OlderMonitor&) = delete;
    OlderMonitor& operator=(const OlderMonitor&) = delete;

  private:
    TakenMark mark;
    HWND hwnd = nullptr;
    WindowThread thread;
};

TEST_F(CommandTest, MonitorThatKnowsNoCommandsIsToldToBeRestarted) {
    TempFolder folder;
    std::wstring strNew = NameBeforeNow(50);
    std::wstring strFile =
        folder.MakeFile(L"in.txt", FileText({SectionText(strNew, MadeIcons(2))}));
    Plant(100);
    StartPlain(3);
    auto before = AllValues(store);
    auto icons = ExpectedIcons();
    OlderMonitor older;
    for (const std::wstring& str :
         {std::wstring(L"/REMEMBER"), std::wstring(L"/RESTORE"), std::wstring(L"/DELETE:1"),
          std::wstring(L"/DELETEALL"), L"\"/IMPORT:" + strFile + L"\""}) {
        CommandEnd end = Expect(kCodeNoShell, str);
        EXPECT_TRUE(end.Tells(std::string("start"))) << end.All();
    }
    EXPECT_EQ(before, AllValues(store));
    EXPECT_EQ(icons, ExpectedIcons());
    EXPECT_EQ(1u, Lines(Expect(kCodeDone, L"/LIST").strOut).size());
    Expect(kCodeDone, L"\"/EXPORT:" + folder.File(L"out.txt") + L"\"");
}

class CommandsAtOnce : public CommandBoth {};
INSTANTIATE_COMMAND_BOTH(CommandsAtOnce);

TEST_P(CommandsAtOnce, EachDeletesOneOfItsOwn) {
    constexpr int kCommands = 6;
    Begin();
    std::set<std::wstring> oldest;
    for (int n = 0; n < kCommands + 3; ++n) {
        std::wstring strName = Plant(static_cast<uint64_t>(100 + n));
        if (n >= kCommands) oldest.insert(strName);
    }
    std::vector<std::unique_ptr<CommandProcess>> processes;
    for (int n = 0; n < kCommands; ++n) {
        processes.push_back(std::make_unique<CommandProcess>());
        processes.back()->Start(L"/DELETE:1");
    }
    std::set<std::string> told;
    for (auto& process : processes) {
        CommandEnd end = process->Wait();
        EXPECT_EQ(DWORD{kCodeDone}, end.dwCode) << end.All();
        told.insert(end.strOut);
    }
    EXPECT_EQ(size_t{kCommands}, told.size()); // of another snapshot each
    EXPECT_EQ(oldest, Names());
}

TEST_P(CommandsAtOnce, OneStoresAndTheOthersFindNoChanges) {
    Begin();
    std::vector<std::unique_ptr<CommandProcess>> processes;
    for (int n = 0; n < 5; ++n) {
        processes.push_back(std::make_unique<CommandProcess>());
        processes.back()->Start(L"/REMEMBER");
    }
    int nStored = 0, nSame = 0;
    for (auto& process : processes) {
        CommandEnd end = process->Wait();
        EXPECT_EQ(DWORD{kCodeDone}, end.dwCode) << end.All();
        nStored += end.strOut == "Icons stored\r\n";
        nSame += end.strOut == "No changes to the icons have been detected.\r\n";
    }
    EXPECT_EQ(1, nStored);
    EXPECT_EQ(4, nSame);
    EXPECT_EQ(1, store.Count());
}

TEST_P(CommandsAtOnce, ScriptOfFiftyCallsInARowIsDone) {
    constexpr int kRounds = 10; // of five calls
    TempFolder folder;
    Begin();
    std::string strProgram = "\"" + ToUtf8(ProductFolder()) + "\\TSEXE64.exe\" ";
    std::string strScript = "@echo off\r\ncd /d \"" + ToUtf8(folder.Get()) + "\"\r\n";
    for (int n = 0; n < kRounds; ++n) {
        for (const char* psz :
             {"/REMEMBER", "/LIST", "/EXPORT:all.txt", "/RESTORE:1", "/DELETE:1"}) {
            strScript += strProgram + psz + " >>out.txt 2>>err.txt\r\n";
            strScript += "if errorlevel 1 echo failed>>err.txt\r\n";
        }
    }
    strScript += strProgram + "/DELETE:1 >>out.txt 2>>last.txt\r\nexit %errorlevel%\r\n";
    std::wstring strLine = L"cmd.exe /c \"" + folder.MakeFile(L"fifty.bat", strScript) + L"\"";
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    ASSERT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE,
                                   CREATE_NO_WINDOW, nullptr, nullptr, &si, &pi));
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, 60000));
    DWORD dwCode = kNotEnded;
    ::GetExitCodeProcess(pi.hProcess, &dwCode);
    ::TerminateProcess(pi.hProcess, 1);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, dwCode);
    EXPECT_EQ("", folder.ReadFile(L"err.txt"));
    std::vector<std::string> lines = Lines(folder.ReadFile(L"out.txt"));
    ASSERT_EQ(size_t{5 * kRounds}, lines.size());
    for (size_t n = 0; n < lines.size(); n += 5) {
        EXPECT_EQ("Icons stored", lines[n]);
        EXPECT_TRUE(lines[n + 1].starts_with("1\t")) << lines[n + 1];
        EXPECT_TRUE(lines[n + 2].starts_with("1 snapshot")) << lines[n + 2];
        EXPECT_TRUE(lines[n + 3].starts_with("The icons are back as they were at "));
        EXPECT_TRUE(lines[n + 4].starts_with("The snapshot of "));
    }
    EXPECT_EQ(0, store.Count());
}
} // namespace
