// Starting programs through the shell's process, and the start with Windows.

#include "e2e/engine_test_support.h"
#include "support/launch_reports.h"
#include "support/start_process.h"
#include "support/this_windows.h"

#include <winternl.h>
#include <algorithm>
#include <thread>

namespace {
constexpr DWORD kProbeExitCode = 77;
constexpr wchar_t kRunKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";

std::wstring Probe() { return FolderBeside(L"tests") + L"\\launch_probe.exe"; }

/// The library's functions by their exported names.
class LaunchLibrary {
  public:
    using Run = int(HWND, const wchar_t*, const wchar_t*, const wchar_t*, HANDLE*, DWORD*, int);

    LaunchLibrary() : hmod(::LoadLibraryW((ProductFolder() + L"\\TSDLL64.dll").c_str())) {}
    ~LaunchLibrary() { ::FreeLibrary(hmod); }
    LaunchLibrary(const LaunchLibrary&) = delete;
    LaunchLibrary& operator=(const LaunchLibrary&) = delete;

    template <class Fn>
    Fn* Find(const char* pszName) const {
        return reinterpret_cast<Fn*>(reinterpret_cast<void*>(::GetProcAddress(hmod, pszName)));
    }
    Run* RunNonElevated() const { return Find<Run>("_Z14RunNonElevatedP6HWND__PKwS2_S2_PPvPmi"); }
    Run* RunElevated() const { return Find<Run>("_Z11RunElevatedP6HWND__PKwS2_S2_PPvPmi"); }

    /// The second shared section holds nothing but zeros.
    bool IsSectionClear() const {
        auto* pBase = reinterpret_cast<BYTE*>(hmod);
        auto* pHeaders = reinterpret_cast<IMAGE_NT_HEADERS*>(
            pBase + reinterpret_cast<IMAGE_DOS_HEADER*>(pBase)->e_lfanew);
        IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(pHeaders);
        for (int n = 0; n < pHeaders->FileHeader.NumberOfSections; ++n, ++pSection) {
            if (strncmp(reinterpret_cast<char*>(pSection->Name), "ve_share", 8)) continue;
            const BYTE* p = pBase + pSection->VirtualAddress;
            return std::all_of(p, p + pSection->Misc.VirtualSize, [](BYTE b) { return b == 0; });
        }
        return false;
    }

  private:
    HMODULE hmod;
};

class Launch : public EngineTest {
  protected:
    /// Has it started in the one way or the other, and looks at what came of it.
    void ExpectStartedBy(DWORD dwShell, LaunchLibrary::Run* pfn, int bForce) {
        ASSERT_NE(nullptr, pfn);
        HANDLE hProcess = nullptr;
        DWORD dwError = 99;
        ASSERT_EQ(1, pfn(nullptr, Probe().c_str(), L"/a \"b c\"", ProductFolder().c_str(),
                         &hProcess, &dwError, bForce));
        EXPECT_EQ(0u, dwError);
        auto report = reports.Take();
        ASSERT_TRUE(report);
        EXPECT_EQ(dwShell, report->dwParent);
        EXPECT_EQ(L"\"" + Probe() + L"\" /a \"b c\"", report->strLine);
        EXPECT_EQ(ProductFolder(), report->strFolder);
        EXPECT_EQ(SW_SHOWNORMAL, report->nShow);
        EXPECT_EQ(report->dwProcess, ::GetProcessId(hProcess));
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hProcess, kTestDeadlineMs));
        DWORD dwExitCode = 0;
        ::GetExitCodeProcess(hProcess, &dwExitCode);
        EXPECT_EQ(kProbeExitCode, dwExitCode);
        ::CloseHandle(hProcess);
        EXPECT_TRUE(library.IsSectionClear());
    }
    LaunchReports reports;
    LaunchLibrary library;
};

TEST_F(Launch, ShellsProcessStartsWhatIsHandedOver) {
    StartPlain(3);
    for (int n = 0; n < 3; ++n) ExpectStartedBy(desktop->ProcessId(), library.RunNonElevated(), 1);
    ExpectStartedBy(desktop->ProcessId(), library.RunElevated(), 1);
    EXPECT_TRUE(desktop->IsRunning());
    desktop->Move(0, {77, 88}); // and goes on as before
}

// Before Vista there is nothing to hand over for.
TEST_F(Launch, ElevatedProcessHandsOverWithoutBeingTold) {
    StartPlain(1);
    const DWORD dwStarter =
        IsThisWindowsAtLeast(6, 0) ? desktop->ProcessId() : ::GetCurrentProcessId();
    ExpectStartedBy(dwStarter, library.RunNonElevated(), 0);
    // The other way round it asks for itself.
    ExpectStartedBy(::GetCurrentProcessId(), library.RunElevated(), 0);
}

TEST_F(Launch, FailureOverThereGivesZero) {
    StartPlain(1);
    std::optional<SeenMessageBox> box;
    std::thread answer([&] { box = AnswerMessageBox(desktop->ProcessId(), IDOK); });
    HANDLE hProcess = &box;
    EXPECT_EQ(0, library.RunNonElevated()(nullptr, L"C:\\no such file.exe", nullptr, nullptr,
                                          &hProcess, nullptr, 1));
    answer.join();
    EXPECT_TRUE(box); // the shell's own
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_TRUE(library.IsSectionClear());
    ExpectStartedBy(desktop->ProcessId(), library.RunNonElevated(), 1);
}

TEST_F(Launch, CallsFromSeveralThreadsAllArrive) {
    constexpr int kThreads = 4;
    StartPlain(1);
    std::vector<std::thread> threads;
    std::vector<int> results(kThreads);
    for (int n = 0; n < kThreads; ++n) {
        threads.emplace_back([&, n] {
            results[n] = library.RunNonElevated()(nullptr, Probe().c_str(),
                                                  (L"/call" + std::to_wstring(n)).c_str(), nullptr,
                                                  nullptr, nullptr, 1);
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<std::wstring> lines, expected;
    for (int n = 0; n < kThreads; ++n) {
        EXPECT_EQ(1, results[n]);
        auto report = reports.Take();
        ASSERT_TRUE(report) << n;
        EXPECT_EQ(desktop->ProcessId(), report->dwParent);
        lines.push_back(report->strLine);
        expected.push_back(L"\"" + Probe() + L"\" /call" + std::to_wstring(n));
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(expected, lines);
}

// The start with Windows.

/// A value at an address in another process.
template <class T>
T ReadAt(HANDLE hProcess, const void* pAddress) {
    T value{};
    ::ReadProcessMemory(hProcess, pAddress, &value, sizeof(value), nullptr);
    return value;
}

/// As the process itself has it.
std::wstring CommandLineOf(DWORD dwProcess) {
    using Query = NTSTATUS NTAPI(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);
    auto* pfn = reinterpret_cast<Query*>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION info{};
    HANDLE hProcess = ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, dwProcess);
    pfn(hProcess, ProcessBasicInformation, &info, sizeof(info), nullptr);
    auto peb = ReadAt<PEB>(hProcess, info.PebBaseAddress);
    auto parameters = ReadAt<RTL_USER_PROCESS_PARAMETERS>(hProcess, peb.ProcessParameters);
    std::wstring str(parameters.CommandLine.Length / sizeof(wchar_t), L' ');
    ::ReadProcessMemory(hProcess, parameters.CommandLine.Buffer, str.data(),
                        parameters.CommandLine.Length, nullptr);
    ::CloseHandle(hProcess);
    return str;
}

class AutoStart : public EngineTest {
  protected:
    void TearDown() override {
        RunHost(L"/AUTOSTART:OFF");
        RunHost(L"/EXIT");
        EngineTest::TearDown();
    }
    static DWORD RunHost(const std::wstring& strArguments) {
        ChildProcess host;
        host.Start(ProductFolder() + L"\\TSEXE64.exe", strArguments);
        return host.WaitForEnd().value_or(99);
    }
    static std::wstring RegisteredLine() {
        wchar_t sz[512] = L"";
        DWORD cb = sizeof(sz);
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, kRunKey, 0, KEY_READ, &hkey)) return L"";
        ::RegQueryValueExW(hkey, L"Tessaly", nullptr, nullptr, reinterpret_cast<BYTE*>(sz), &cb);
        ::RegCloseKey(hkey);
        return sz;
    }
    /// As the system does it when the user logs on; returns when the program has ended.
    static bool RunLine(std::wstring strLine) {
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        PROCESS_INFORMATION pi{};
        if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                L"C:\\", &si, &pi)) {
            return false;
        }
        DWORD dwWait = ::WaitForSingleObject(pi.hProcess, kTestDeadlineMs);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
        return dwWait == WAIT_OBJECT_0;
    }
    static DWORD MonitorProcessId() {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(::FindWindowW(kMonitorClass, nullptr), &dwProcess);
        return dwProcess;
    }
    bool WaitUntilWatched() {
        return WaitUntil([&] { return MonitorProcessId() && desktop->IsFullyAttached(); });
    }
};

TEST_F(AutoStart, RegisteredLineStartsTheProgramQuietly) {
    StartPlain(3);
    ASSERT_EQ(0u, RunHost(L"/AUTOSTART:ON"));
    EXPECT_EQ(0u, MonitorProcessId());
    std::wstring strLine = RegisteredLine();
    ASSERT_TRUE(RunLine(strLine)) << std::string(strLine.begin(), strLine.end());
    ASSERT_TRUE(WaitUntilWatched());
    DWORD dwMonitor = MonitorProcessId();
    std::wstring strMonitor = CommandLineOf(dwMonitor);
    EXPECT_TRUE(strMonitor.ends_with(L"\\TSEXE64.exe\" /QUIET"))
        << "it is: " << std::string(strMonitor.begin(), strMonitor.end());
    EXPECT_TRUE(WaitUntil([&] { return store.Count() == 1; })); // it works
    ASSERT_TRUE(RunLine(strLine));                              // the first one stays alone
    EXPECT_TRUE(HoldsFor([&] { return MonitorProcessId() == dwMonitor; }, 300));
    EXPECT_EQ(0u, RunHost(L"/EXIT"));
    EXPECT_EQ(0u, MonitorProcessId());
    EXPECT_EQ(0u, RunHost(L"/AUTOSTART /QUIET"));
    EXPECT_EQ(0u, RunHost(L"/AUTOSTART:OFF"));
    EXPECT_EQ(L"", RegisteredLine());
    EXPECT_EQ(4u, RunHost(L"/AUTOSTART /QUIET"));
}

TEST_F(AutoStart, RunDll32CallsTheLibrarysFunctions) {
    StartPlain(1);
    LaunchLibrary library;
    auto* pfn = library.Find<int(const wchar_t*)>("_Z8RunDll32PKw");
    ASSERT_NE(nullptr, pfn);
    EXPECT_EQ(1, pfn(L"StartMonitor"));
    EXPECT_TRUE(WaitUntilWatched());
    EXPECT_EQ(0u, RunHost(L"/EXIT"));
}
} // namespace
