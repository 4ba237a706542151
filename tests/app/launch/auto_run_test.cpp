#include "app/launch/auto_run.h"
#include "app/launch/run_file.h"
#include "app/shell_start_recorder.h"
#include "app/stored_home.h"
#include "support/launch_reports.h"
#include "support/program_folder.h"
#include "support/replace_import.h"
#include "support/run_key_away.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

extern "C" FARPROC __imp_GetModuleFileNameW;
extern "C" FARPROC __imp_RegDeleteValueW;
extern "C" FARPROC __imp_RegSetValueExW;

namespace {
using std::wstring;
constexpr const wchar_t* kRunKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kName = L"Tessaly test value";

/// The library lies where no short names can be had.
const wchar_t* pszLongPath = L"";
DWORD WINAPI TellLongPath(HMODULE, LPWSTR psz, DWORD cch) {
    return static_cast<DWORD>(wcslen(wcsncpy(psz, pszLongPath, cch)));
}
struct LongPathCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszInLine;
};
constexpr LongPathCase kLongPaths[] = {
    {"Plain", L"Q:\\none\\a.dll", L"Q:\\none\\a.dll"},
    {"Blank", L"Q:\\no such folder\\a b.dll", L"\"Q:\\no such folder\\a b.dll\""},
    {"Comma", L"Q:\\no,ne\\a.dll", L"\"Q:\\no,ne\\a.dll\""},
    {"CommaInTheName", L"Q:\\none\\a,b.dll", L"\"Q:\\none\\a,b.dll\""},
    {"Both", L"Q:\\no, none\\a.dll", L"\"Q:\\no, none\\a.dll\""},
};

/// This program in short names, as the library's path.
wstring ShortPath() {
    wchar_t sz[MAX_PATH];
    ::GetModuleFileNameW(nullptr, sz, MAX_PATH);
    ::GetShortPathNameW(sz, sz, MAX_PATH);
    return sz;
}

class AutoRun : public testing::TestWithParam<int> {
  protected:
    AutoRun() {
        ::RegCreateKeyExW(Root(), kRunKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hkey, nullptr);
    }
    ~AutoRun() override {
        ::RegDeleteValueW(hkey, kName);
        ::RegCloseKey(hkey);
    }
    static HKEY Root() { return GetParam() ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }
    std::optional<wstring> Read() const {
        wchar_t sz[1024] = L"";
        DWORD cb = sizeof(sz), dwType = REG_NONE;
        if (::RegQueryValueExW(hkey, kName, nullptr, &dwType, reinterpret_cast<BYTE*>(sz), &cb))
            return {};
        EXPECT_EQ(static_cast<DWORD>(REG_SZ), dwType);
        return sz;
    }
    /// 0 or 1 as told, -1 if it is not told.
    int Look(const wchar_t* pszArguments) {
        int bOn = -5;
        int nResult = GetSetAutoRunDll32(0, &bOn, 1, GetParam(), kName, pszArguments);
        return nResult ? bOn : -1;
    }
    HKEY hkey = nullptr;
};

TEST_P(AutoRun, IsSetLookedAtAndDeleted) {
    EXPECT_EQ(0, Look(L"Entry x"));
    int bOn = -5;
    EXPECT_EQ(1, GetSetAutoRunDll32(1, &bOn, 7, GetParam(), kName, L"Entry x"));
    EXPECT_EQ(1, bOn);
    EXPECT_EQ(L"RunDll32.exe " + ShortPath() + L",Entry x", Read());
    EXPECT_EQ(1, Look(L"Entry x"));
    EXPECT_EQ(0, Look(L"Entry X")); // another line
    EXPECT_EQ(1, GetSetAutoRunDll32(1, nullptr, 1, GetParam(), kName, L"Other"));
    EXPECT_EQ(1, Look(L"Other"));
    bOn = -5;
    EXPECT_EQ(1, GetSetAutoRunDll32(1, &bOn, 0, GetParam(), kName, L"Entry x"));
    EXPECT_EQ(0, bOn);
    EXPECT_EQ(std::nullopt, Read());
    EXPECT_EQ(1, GetSetAutoRunDll32(1, nullptr, 0, GetParam(), kName, L"Entry x"));
    EXPECT_EQ(1, GetSetAutoRunDll32(0, nullptr, 1, GetParam(), kName, L"Entry x"));
    EXPECT_EQ(std::nullopt, Read());
}

TEST_P(AutoRun, WrapperWrites) {
    int bOn = -5;
    EXPECT_EQ(1, AutoRunDll32(&bOn, 1, GetParam(), kName, L"Entry"));
    EXPECT_EQ(1, bOn);
    EXPECT_EQ(1, Look(L"Entry"));
    EXPECT_EQ(1, AutoRunDll32(&bOn, 0, GetParam(), kName, L"Entry"));
    EXPECT_EQ(0, bOn);
    EXPECT_EQ(0, Look(L"Entry"));
}

TEST_P(AutoRun, UserAndMachineAreKeptApart) {
    AutoRunDll32(nullptr, 1, GetParam(), kName, L"Entry");
    int bOn = -5;
    int nResult = GetSetAutoRunDll32(0, &bOn, 0, !GetParam(), kName, L"Entry");
    EXPECT_NE(1, nResult ? bOn : 0);
}

TEST_P(AutoRun, LineHasItsLimit) {
    std::size_t nRoom = 259 - wcslen(L"RunDll32.exe ,") - ShortPath().size();
    wstring strFits(nRoom, L'x');
    EXPECT_EQ(1, AutoRunDll32(nullptr, 1, GetParam(), kName, strFits.c_str()));
    EXPECT_EQ(259u, Read()->size());
    EXPECT_EQ(1, Look(strFits.c_str()));
    int bOn = -5;
    EXPECT_EQ(0, AutoRunDll32(&bOn, 1, GetParam(), kName, (strFits + L"y").c_str()));
    EXPECT_EQ(0, AutoRunDll32(&bOn, 0, GetParam(), kName, wstring(5000, L'x').c_str()));
    EXPECT_EQ(-5, bOn);
    EXPECT_EQ(259u, Read()->size());
    EXPECT_EQ(1, AutoRunDll32(nullptr, 1, GetParam(), kName, nullptr));
    EXPECT_EQ(L"RunDll32.exe " + ShortPath() + L",", Read());
}

TEST_P(AutoRun, LongPathStaysTogether) {
    ReplaceImport replaced(__imp_GetModuleFileNameW, &TellLongPath);
    for (const LongPathCase& row : kLongPaths) {
        pszLongPath = row.pszPath;
        EXPECT_EQ(1, AutoRunDll32(nullptr, 1, GetParam(), kName, L"Entry")) << row.pszName;
        EXPECT_EQ(wstring(L"RunDll32.exe ") + row.pszInLine + L",Entry", Read()) << row.pszName;
        EXPECT_EQ(1, Look(L"Entry")) << row.pszName;
    }
}

LSTATUS WINAPI RefuseSet(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD) {
    return ERROR_ACCESS_DENIED;
}
LSTATUS WINAPI RefuseDelete(HKEY, LPCWSTR) { return ERROR_ACCESS_DENIED; }

TEST_P(AutoRun, RefusalGivesZero) {
    int bOn = -5;
    {
        ReplaceImport replaced(__imp_RegSetValueExW, &RefuseSet);
        EXPECT_EQ(0, AutoRunDll32(&bOn, 1, GetParam(), kName, L"Entry"));
    }
    EXPECT_EQ(1, AutoRunDll32(nullptr, 1, GetParam(), kName, L"Entry"));
    {
        ReplaceImport replaced(__imp_RegDeleteValueW, &RefuseDelete);
        EXPECT_EQ(0, AutoRunDll32(&bOn, 0, GetParam(), kName, L"Entry"));
    }
    EXPECT_EQ(-5, bOn);
    EXPECT_EQ(1, Look(L"Entry"));
}

class AutoRunWithoutKey : public testing::TestWithParam<int> {
  protected:
    RunKeyAway run{GetParam()};
    int bOn = -5;
};

TEST_P(AutoRunWithoutKey, LookGivesZeroAndMakesNone) {
    EXPECT_EQ(0, GetSetAutoRunDll32(0, &bOn, 1, GetParam(), kName, L"Entry"));
    EXPECT_EQ(-5, bOn);
    EXPECT_FALSE(run.IsThere());
}

TEST_P(AutoRunWithoutKey, WriteMakesIt) {
    EXPECT_EQ(1, AutoRunDll32(&bOn, 1, GetParam(), kName, L"Entry"));
    EXPECT_EQ(1, bOn);
    EXPECT_TRUE(run.IsThere());
}

TEST_P(AutoRunWithoutKey, WriteThatCannotMakeItGivesZero) {
    ASSERT_TRUE(run.Block());
    EXPECT_EQ(0, AutoRunDll32(&bOn, 1, GetParam(), kName, L"Entry"));
    EXPECT_EQ(0, AutoRunDll32(&bOn, 0, GetParam(), kName, L"Entry"));
    EXPECT_EQ(-5, bOn);
}

std::string NameOfRoot(const testing::TestParamInfo<int>& row) {
    return row.param ? "CurrentUser" : "Machine";
}
INSTANTIATE_TEST_SUITE_P(Roots, AutoRunWithoutKey, testing::Values(1, 0), NameOfRoot);
INSTANTIATE_TEST_SUITE_P(Roots, AutoRun, testing::Values(1, 0), NameOfRoot);

TEST(RunDll32, TellsTheLibraryAndTheArguments) {
    ShellStartRecorder shell;
    wchar_t szSystem[MAX_PATH];
    ::GetSystemDirectoryW(szSystem, MAX_PATH);
    EXPECT_EQ(1, RunDll32(L"Entry a \"b c\""));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ((szSystem + wstring(L"\\RunDll32.exe")).c_str(), call.file);
    EXPECT_EQ((ShortPath() + L",Entry a \"b c\"").c_str(), call.parameters);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(::LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)), call.hcur);
    EXPECT_EQ(1, RunDll32(nullptr));
    EXPECT_EQ((ShortPath() + L",").c_str(), shell.TakeOne().parameters);
}

TEST(RunDll32, ArgumentsHaveTheirLimit) {
    ShellStartRecorder shell;
    std::size_t nRoom = 1023 - 1 - ShortPath().size();
    EXPECT_EQ(1, RunDll32(wstring(nRoom, L'x').c_str()));
    EXPECT_EQ(1023u, shell.TakeOne().parameters.str.size());
    EXPECT_EQ(0, RunDll32(wstring(nRoom + 1, L'x').c_str()));
    EXPECT_TRUE(shell.calls.empty());
}

TEST(RunDll32, LongPathStaysTogether) {
    ShellStartRecorder shell;
    ReplaceImport replaced(__imp_GetModuleFileNameW, &TellLongPath);
    for (const LongPathCase& row : kLongPaths) {
        pszLongPath = row.pszPath;
        EXPECT_EQ(1, RunDll32(L"Entry"));
        EXPECT_EQ((row.pszInLine + wstring(L",Entry")).c_str(), shell.TakeOne().parameters)
            << row.pszName;
    }
}

TEST(StartMonitor, StartsTheProgramBesideTheLibraryWithoutItsBalloon) {
    StoredHome home; // is not where it lies
    ShellStartRecorder shell;
    for (int nShow : {SW_SHOWDEFAULT, SW_HIDE}) { // its arguments have no meaning
        StartMonitor(::GetDesktopWindow(), nullptr, nShow == SW_HIDE ? "/EXIT" : nullptr, nShow);
        ShellCall call = shell.TakeOne();
        EXPECT_EQ((ProgramFolder() + L"TSEXE64.exe").c_str(), call.file);
        EXPECT_EQ(L"/QUIET", call.parameters);
        EXPECT_EQ(nullptr, call.verb);
        EXPECT_EQ(nullptr, call.directory);
        EXPECT_EQ(::GetDesktopWindow(), call.hwnd);
        EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
        EXPECT_EQ(0u, call.nMask);
    }
}

TEST(StartMonitor, IsWhatTheEntryNames) { EXPECT_STREQ(L"StartMonitor", kStartMonitorEntry); }
} // namespace
