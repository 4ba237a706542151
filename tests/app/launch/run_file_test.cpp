#include "app/fake_windows.h"
#include "app/launch/run_file.h"
#include "app/shell_start_recorder.h"
#include "app/stored_home.h"
#include "shell/namespace/pidl.h"
#include "support/launch_reports.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/this_windows.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <shellapi.h>
#include <string>

extern "C" FARPROC __imp_GetModuleFileNameW;

namespace {
constexpr DWORD kProbeExitCode = 77;

HCURSOR WaitCursor() { return ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)); }

/// Where the program lies, without a final separator, and its path.
std::wstring OwnFolder() {
    std::wstring str = ProgramFolder();
    str.pop_back();
    return str;
}

std::wstring OwnPath() {
    wchar_t sz[MAX_PATH];
    ::GetModuleFileNameW(nullptr, sz, MAX_PATH);
    return sz;
}

// What each function asks of the shell.

class RunRecorded : public testing::Test {
  protected:
    RunRecorded() { ::SetCursor(hcurBefore); }
    void ExpectCursorBack() { EXPECT_EQ(hcurBefore, ::GetCursor()); }
    HCURSOR hcurBefore = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));
    ShellStartRecorder shell;
};

TEST_F(RunRecorded, RunFilePassesAllOn) {
    EXPECT_EQ(1, RunFile(L"f", L"p", L"d", L"v"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(1, call.bEx);
    EXPECT_EQ(112u, call.cb);
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(L"f", call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"d", call.directory);
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
}

TEST_F(RunRecorded, EmptyDirectoryCountsAsNone) {
    RunFile(L"f", L"", L"", L"");
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(L"", call.parameters);
    EXPECT_EQ(L"", call.verb);
    RunFile(nullptr, nullptr, nullptr, nullptr);
    call = shell.TakeOne();
    EXPECT_EQ(nullptr, call.file);
    EXPECT_EQ(nullptr, call.parameters);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(nullptr, call.verb);
}

TEST_F(RunRecorded, ResultIsTheShells) {
    shell.bSucceed = FALSE;
    shell.dwError = ERROR_FILE_NOT_FOUND;
    shell.hProcess = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(0x1234));
    EXPECT_EQ(0, RunFile(L"f", nullptr, nullptr, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    ExpectCursorBack();
    HANDLE hProcess = shell.hProcess;
    EXPECT_EQ(0, RunFileEx(L"f", nullptr, nullptr, nullptr, 0, &hProcess, SW_HIDE));
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_EQ(nullptr, StartProcess(L"f", nullptr, nullptr));
}

TEST_F(RunRecorded, OwnerIsTheLastPopupOfTheActiveWindow) {
    HWND hwndBefore = ::GetActiveWindow();
    RunFile(L"f", nullptr, nullptr, nullptr);
    EXPECT_EQ(hwndBefore ? ::GetLastActivePopup(hwndBefore) : nullptr, shell.TakeOne().hwnd);
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ::SetActiveWindow(window.Get());
    RunFile(L"f", nullptr, nullptr, nullptr);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
    HWND hwndPopup = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9,
                                       window.Get(), nullptr, nullptr, nullptr);
    ::SetActiveWindow(hwndPopup);
    ASSERT_EQ(hwndPopup, ::GetLastActivePopup(window.Get()));
    RunPidlEx(window.Get(), nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(hwndPopup, shell.TakeOne().hwnd);
    RunPidl(window.Get(), nullptr, nullptr, nullptr);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd); // as it is
    ::DestroyWindow(hwndPopup);
}

TEST_F(RunRecorded, RunFileExTakesMaskShowStateAndHandle) {
    shell.hProcess = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(0x1234));
    HANDLE hProcess = nullptr;
    EXPECT_EQ(1, RunFileEx(L"f", L"p", L"d", L"v", SEE_MASK_FLAG_NO_UI, &hProcess, SW_HIDE));
    EXPECT_EQ(shell.hProcess, hProcess);
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(static_cast<ULONG>(SEE_MASK_FLAG_NO_UI | SEE_MASK_NOCLOSEPROCESS), call.nMask);
    EXPECT_EQ(SW_HIDE, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    EXPECT_EQ(1,
              RunFileEx(L"f", L"p", L"d", L"v", SEE_MASK_FLAG_NO_UI, nullptr, SW_SHOWMINNOACTIVE));
    call = shell.TakeOne();
    EXPECT_EQ(static_cast<ULONG>(SEE_MASK_FLAG_NO_UI), call.nMask);
    EXPECT_EQ(SW_SHOWMINNOACTIVE, call.nShow);
}

TEST_F(RunRecorded, StartProcessGivesTheHandle) {
    shell.hProcess = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(0x1234));
    EXPECT_EQ(shell.hProcess, StartProcess(L"f", L"p", L"d"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(64u, call.nMask);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"d", call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
}

TEST_F(RunRecorded, PidlsGoAsListsWithoutTheWaitCursor) {
    ITEMIDLIST pidl{};
    EXPECT_EQ(1, RunPidl(nullptr, &pidl, L"d", L"v"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(12u, call.nMask);
    EXPECT_EQ(&pidl, call.pidl);
    EXPECT_EQ(nullptr, call.hwnd);
    EXPECT_EQ(nullptr, call.file);
    EXPECT_EQ(nullptr, call.parameters);
    EXPECT_EQ(L"d", call.directory);
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(SW_SHOW, call.nShow);
    EXPECT_EQ(hcurBefore, call.hcur);
    HANDLE hProcess = nullptr;
    EXPECT_EQ(1, RunPidlEx(nullptr, &pidl, L"", L"p", nullptr, &hProcess));
    call = shell.TakeOne();
    EXPECT_EQ(12u + 64u, call.nMask);
    EXPECT_EQ(&pidl, call.pidl);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(hcurBefore, call.hcur);
    RunPidlEx(nullptr, &pidl, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(12u, shell.TakeOne().nMask);
}

TEST_F(RunRecorded, SatelliteFilesLieBesideTheLibrary) {
    StoredHome home; // is not where they lie
    EXPECT_EQ(1, RunSatelliteFile(nullptr, L"a b.exe", L"p", L"v"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ((ProgramFolder() + L"a b.exe").c_str(), call.file);
    EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
    TestWindow window;
    RunSatelliteFile(window.Get(), L"x", nullptr, nullptr);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
}

TEST_F(RunRecorded, SatellitePathsAreNeverCut) {
    std::size_t nRoom = MAX_PATH - 1 - ProgramFolder().size();
    EXPECT_EQ(1, RunSatelliteFile(nullptr, std::wstring(nRoom, L'x').c_str(), nullptr, nullptr));
    EXPECT_EQ(MAX_PATH - 1u, shell.TakeOne().file.str.size());
    EXPECT_EQ(0,
              RunSatelliteFile(nullptr, std::wstring(nRoom + 1, L'x').c_str(), nullptr, nullptr));
    EXPECT_EQ(0, RunSatelliteFile(nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(RunRecorded, LocalFilesLieInTheHomeFolder) {
    StoredHome home;
    EXPECT_EQ(1, RunLocalFile(nullptr, L"a b.exe", L"p", L"v"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(home.File(L"a b.exe").c_str(), call.file);
    EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
    TestWindow window;
    RunLocalFile(window.Get(), L"x", nullptr, nullptr);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
    EXPECT_EQ(0, RunLocalFile(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, RunLocalFile(nullptr, std::wstring(MAX_PATH, L'x').c_str(), nullptr, nullptr));
    EXPECT_TRUE(shell.calls.empty());
}

DWORD WINAPI CutModuleName(HMODULE, LPWSTR psz, DWORD cch) {
    std::fill(psz, psz + cch, L'x');
    return cch;
}
DWORD WINAPI NoModuleName(HMODULE, LPWSTR, DWORD) { return 0; }

TEST_F(RunRecorded, ProgramWithAPathTooLongIsNotStarted) {
    for (auto* pfn : {&CutModuleName, &NoModuleName}) {
        ReplaceImport replaced(__imp_GetModuleFileNameW, pfn);
        HANDLE hProcess = &replaced;
        EXPECT_EQ(0, RunMyself(L""));
        EXPECT_EQ(0, RunMyselfElevated(nullptr, L"", &hProcess));
        EXPECT_EQ(nullptr, hProcess);
        EXPECT_EQ(0, RunSatelliteFile(nullptr, L"x", nullptr, nullptr));
        EXPECT_EQ(0, RunDll32(L"x"));
    }
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(RunRecorded, RunMyselfOpensTheProgramInItsFolder) {
    EXPECT_EQ(1, RunMyself(L"p q"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(0, call.bEx);
    EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
    EXPECT_EQ(L"open", call.verb);
    EXPECT_EQ(OwnPath().c_str(), call.file);
    EXPECT_EQ(L"p q", call.parameters);
    EXPECT_EQ(OwnFolder().c_str(), call.directory);
    EXPECT_EQ(SW_SHOW, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
    for (INT_PTR n : {0, 2, 31, 32}) {
        shell.nResult = n;
        EXPECT_EQ(0, RunMyself(nullptr)) << n;
    }
}

TEST_F(RunRecorded, RunMyselfElevatedAsksForIt) {
    HANDLE hProcess = nullptr;
    TestWindow window;
    EXPECT_EQ(1, RunMyselfElevated(window.Get(), L"p", &hProcess));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(1, call.bEx);
    EXPECT_EQ(window.Get(), call.hwnd);
    EXPECT_EQ(ElevatingVerb() ? ElevatingVerb() : L"open", call.verb);
    EXPECT_EQ(OwnPath().c_str(), call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(OwnFolder().c_str(), call.directory);
    EXPECT_EQ(SW_SHOW, call.nShow);
    EXPECT_EQ(0x4000u + 64u, call.nMask);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
    EXPECT_EQ(1, RunMyselfElevated(nullptr, nullptr, nullptr));
    call = shell.TakeOne();
    EXPECT_EQ(0x4000u, call.nMask);
    EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
}

TEST_F(RunRecorded, RunMyselfElevatedAsksNoAdministratorBeforeVista) {
    for (DWORD dwMinor : {0, 1, 2}) {
        FakeWindows windows(5, dwMinor);
        {
            HideFunctions hidden({"IsUserAnAdmin"});
            RunMyselfElevated(nullptr, nullptr, nullptr);
            EXPECT_EQ(L"open", shell.TakeOne().verb);
        }
        for (BOOL bAdmin : {TRUE, FALSE}) {
            FakeAdmin admin(bAdmin);
            RunMyselfElevated(nullptr, nullptr, nullptr);
            EXPECT_EQ(bAdmin ? L"open" : L"runas", shell.TakeOne().verb);
        }
    }
    FakeWindows windows(6, 0);
    RunMyselfElevated(nullptr, nullptr, nullptr);
    EXPECT_EQ(L"runas", shell.TakeOne().verb);
}

TEST_F(RunRecorded, RunAsAsksForProgmanWithoutAWindow) {
    TestWindow window;
    EXPECT_EQ(1, RunAs(window.Get(), L"f", L"p", L"", nullptr));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(window.Get(), call.hwnd);
    EXPECT_EQ(L"runas", call.verb);
    EXPECT_EQ(L"f", call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(WaitCursor(), call.hcur);
    ExpectCursorBack();
    HANDLE hProcess = nullptr;
    RunAs(nullptr, L"f", nullptr, L"d", &hProcess);
    call = shell.TakeOne();
    EXPECT_EQ(::FindWindowW(L"Progman", nullptr), call.hwnd);
    EXPECT_EQ(64u, call.nMask);
    EXPECT_EQ(L"d", call.directory);
}

// Real programs.

class RunReal : public testing::Test {
  protected:
    LaunchReports reports;
    TempFolder folder;
};

TEST_F(RunReal, RunFileStartsAProgramInAFolder) {
    ASSERT_EQ(1, RunFile(ProbePath().c_str(), L"/a \"b c\"", folder.Get().c_str(), nullptr));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(L"\"" + ProbePath() + L"\" /a \"b c\"", report->strLine);
    EXPECT_EQ(folder.Get(), report->strFolder);
    EXPECT_EQ(SW_SHOWNORMAL, report->nShow);
    EXPECT_EQ(::GetCurrentProcessId(), report->dwParent);
}

TEST_F(RunReal, RunFileOpensADocumentByItsVerbs) {
    ClassKey type(L".tessalyprobe", L"TessalyProbe");
    ClassKey open(L"TessalyProbe\\shell\\open\\command",
                  (L"\"" + ProbePath() + L"\" /opened \"%1\"").c_str());
    ClassKey weigh(L"TessalyProbe\\shell\\weigh\\command",
                   (L"\"" + ProbePath() + L"\" /weighed \"%1\"").c_str());
    std::wstring strFile = folder.MakeFile(L"a b.tessalyprobe", "");
    ASSERT_EQ(1, RunFile(strFile.c_str(), nullptr, L"", nullptr));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(L"\"" + ProbePath() + L"\" /opened \"" + strFile + L"\"", report->strLine);
    ASSERT_EQ(1, RunFile(strFile.c_str(), nullptr, nullptr, L"weigh"));
    report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(L"\"" + ProbePath() + L"\" /weighed \"" + strFile + L"\"", report->strLine);
}

TEST_F(RunReal, RunFileExHandsTheShowStateOn) {
    for (int nShow : {SW_SHOWMINIMIZED, SW_SHOWMAXIMIZED, SW_HIDE}) {
        ASSERT_EQ(1, RunFileEx(ProbePath().c_str(), nullptr, nullptr, nullptr, 0, nullptr, nShow));
        auto report = reports.Take();
        ASSERT_TRUE(report);
        EXPECT_EQ(nShow, report->nShow);
    }
}

TEST_F(RunReal, MissingFileIsNotStarted) {
    HANDLE hProcess = &reports;
    EXPECT_EQ(0, RunFileEx(folder.File(L"none.exe").c_str(), nullptr, nullptr, nullptr,
                           SEE_MASK_FLAG_NO_UI, &hProcess, SW_SHOWNORMAL));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_EQ(nullptr, hProcess);
}

TEST_F(RunReal, StartProcessGivesAHandleToTheProgram) {
    HANDLE hProcess = StartProcess(ProbePath().c_str(), L"/x", folder.Get().c_str());
    ASSERT_NE(nullptr, hProcess);
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->dwProcess, ::GetProcessId(hProcess));
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(hProcess, kTestDeadlineMs));
    DWORD dwExitCode = 0;
    ::GetExitCodeProcess(hProcess, &dwExitCode);
    EXPECT_EQ(kProbeExitCode, dwExitCode);
    ::CloseHandle(hProcess);
}

TEST_F(RunReal, PidlsAreStarted) {
    ITEMIDLIST* pidl = GetPidlOf(ProbePath().c_str());
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(1, RunPidl(nullptr, pidl, folder.Get().c_str(), nullptr));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(0, _wcsicmp(ProbePath().c_str(), report->strProgram.c_str()));
    EXPECT_EQ(folder.Get(), report->strFolder);
    HANDLE hProcess = nullptr;
    EXPECT_EQ(1, RunPidlEx(nullptr, pidl, nullptr, L"/with arguments", nullptr, &hProcess));
    report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->strLine.ends_with(L"/with arguments")) << report->strLine.size();
    EXPECT_EQ(report->dwProcess, ::GetProcessId(hProcess));
    ::CloseHandle(hProcess);
    ShellFree(pidl);
}

TEST_F(RunReal, SatelliteIsStarted) {
    ASSERT_EQ(1, RunSatelliteFile(nullptr, L"launch_probe.exe", L"/satellite", L"open"));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(L"\"" + ProbePath() + L"\" /satellite", report->strLine);
}

TEST_F(RunReal, LocalFileIsStarted) {
    // Without a stored home it is the folder of this program.
    ASSERT_EQ(1, RunLocalFile(nullptr, L"launch_probe.exe", L"/local", nullptr));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->strLine.ends_with(L"launch_probe.exe\" /local")) << report->strLine.size();
}

TEST_F(RunReal, ProgramStartsItselfOnceMore) {
    for (const wchar_t* psz : {L"/myself", L"/elevated"}) {
        ASSERT_EQ(1, RunFile(ProbePath().c_str(), (std::wstring(psz) + L" \"a b\" c").c_str(),
                             folder.Get().c_str(), nullptr));
        auto report = reports.Take();
        ASSERT_TRUE(report) << psz;
        EXPECT_EQ(L"\"" + ProbePath() + L"\" \"a b\" c", report->strLine);
        EXPECT_EQ(OwnFolder(), report->strFolder); // its own, not its starter's
    }
}

TEST_F(RunReal, RunAsStartsWithoutAPromptWhereTheUserIsElevated) {
    HANDLE hProcess = nullptr;
    ASSERT_EQ(1, RunAs(nullptr, ProbePath().c_str(), L"/x", folder.Get().c_str(), &hProcess));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(L"\"" + ProbePath() + L"\" /x", report->strLine);
    EXPECT_EQ(report->dwProcess, ::GetProcessId(hProcess));
    ::CloseHandle(hProcess);
}
} // namespace
