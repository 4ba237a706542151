// The program itself, as it was built, in folders with and without a good library.
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "icons/agent/desktop_shared_data.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "store/reg_tree.h"
#include "support/run_key_away.h"
#include "support/start_process.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <tlhelp32.h>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {
constexpr DWORD kDeadlineMs = 30000;
using Bytes = std::vector<char>;

std::wstring ThisFolder() {
    wchar_t sz[MAX_PATH];
    ::GetModuleFileNameW(nullptr, sz, MAX_PATH);
    std::wstring str = sz;
    return str.substr(0, str.rfind(L'\\') + 1);
}

std::wstring BinFolder() { return ThisFolder() + L"..\\bin\\"; }

std::string Narrow(const std::wstring& str) { return std::string(str.begin(), str.end()); }

Bytes ReadAll(const std::wstring& strPath) {
    std::ifstream file(Narrow(strPath), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// Puts other bytes of the same length in the place of each occurrence; how many there were.
int Patch(Bytes& bytes, const std::string& strOld, const std::string& strNew) {
    int n = 0;
    for (auto it = bytes.begin();;) {
        it = std::search(it, bytes.end(), strOld.begin(), strOld.end());
        if (it == bytes.end()) return n;
        it = std::copy(strNew.begin(), strNew.end(), it);
        ++n;
    }
}

struct Ended {
    DWORD dwExitCode = ~0u;
    std::wstring strBox;               // the text of the box that it showed
    std::vector<std::wstring> modules; // the paths of what it had mapped then
};

std::vector<std::wstring> ModulesOf(DWORD dwProcess) {
    std::vector<std::wstring> paths;
    HANDLE h = ::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, dwProcess);
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL b = ::Module32FirstW(h, &entry); b; b = ::Module32NextW(h, &entry))
        paths.push_back(entry.szExePath);
    ::CloseHandle(h);
    return paths;
}

struct BoxSearch {
    DWORD dwProcess;
    HWND hwndBox = nullptr;
};

BOOL CALLBACK FindBox(HWND hwnd, LPARAM lParam) {
    auto* p = reinterpret_cast<BoxSearch*>(lParam);
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    wchar_t szClass[16] = L"", szTitle[16] = L"";
    ::GetClassNameW(hwnd, szClass, 16);
    ::GetWindowTextW(hwnd, szTitle, 16);
    if (dwProcess == p->dwProcess && !wcscmp(szClass, L"#32770") && !wcscmp(szTitle, L"Tessaly"))
        p->hwndBox = hwnd;
    return !p->hwndBox;
}

/// Runs the program to its end, with neither a console nor standard handles, so that it shows what
/// it tells in boxes; they are answered with OK. The test's own windows stay alive.
Ended RunHost(const std::wstring& strFolder, const std::wstring& strArguments) {
    Ended ended;
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    si.dwFlags = STARTF_USESTDHANDLES; // none: the test platform hands down the test's own
    PROCESS_INFORMATION pi{};
    std::wstring strLine = L"\"" + strFolder + L"TSEXE64.exe\" " + strArguments;
    if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                            nullptr, nullptr, &si, &pi)) {
        ADD_FAILURE() << "not started: error " << ::GetLastError();
        return ended;
    }
    DWORD dwStart = ::GetTickCount();
    while (::MsgWaitForMultipleObjects(1, &pi.hProcess, FALSE, 20, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        BoxSearch search{pi.dwProcessId};
        ::EnumWindows(&FindBox, reinterpret_cast<LPARAM>(&search));
        if (search.hwndBox) {
            wchar_t szText[1024] = L"";
            ::SendDlgItemMessageW(search.hwndBox, 0xFFFF, WM_GETTEXT, 1024,
                                  reinterpret_cast<LPARAM>(szText));
            // A box that has no text yet is still being made: it is answered next time.
            if (*szText) {
                ended.strBox = szText;
                ended.modules = ModulesOf(pi.dwProcessId);
                ::PostMessageW(search.hwndBox, WM_COMMAND, IDOK, 0);
            }
        }
        if (::GetTickCount() - dwStart > kDeadlineMs) ::TerminateProcess(pi.hProcess, 99);
    }
    ::GetExitCodeProcess(pi.hProcess, &ended.dwExitCode);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    return ended;
}

/// A folder of its own with the program; what the test puts beside it is the library.
class HostFolder : public testing::Test {
  protected:
    void SetUp() override {
        wchar_t sz[MAX_PATH];
        ::GetTempPathW(MAX_PATH, sz);
        strFolder = sz + std::wstring(L"tessaly_host\\");
        ::CreateDirectoryW(strFolder.c_str(), nullptr);
        ASSERT_TRUE(::CopyFileW((BinFolder() + L"TSEXE64.exe").c_str(),
                                (strFolder + L"TSEXE64.exe").c_str(), FALSE));
    }
    void TearDown() override {
        ::DeleteFileW((strFolder + L"TSDLL64.dll").c_str());
        ::DeleteFileW((strFolder + L"TSEXE64.exe").c_str());
        ::RemoveDirectoryW(strFolder.c_str());
    }
    void PutLibrary(const Bytes& bytes) {
        std::ofstream file(Narrow(strFolder + L"TSDLL64.dll"), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    Bytes RealLibrary() { return ReadAll(BinFolder() + L"TSDLL64.dll"); }
    /// The program says that, names the file, and ends with 3; of a command that is to be quiet,
    /// with nothing but that.
    void ExpectRefusal(const wchar_t* pszWhy) {
        for (const wchar_t* pszArguments : {L"/exit /quiet", L"/quiet /autostart:off"}) {
            Ended ended = RunHost(strFolder, pszArguments);
            EXPECT_EQ(3u, ended.dwExitCode) << pszArguments;
            EXPECT_EQ(L"", ended.strBox);
        }
        for (const wchar_t* pszArguments : {L"", L"/quiet", L"/exit", L"/bogus"}) {
            Ended ended = RunHost(strFolder, pszArguments);
            EXPECT_EQ(3u, ended.dwExitCode) << pszArguments;
            EXPECT_EQ(L"Tessaly cannot start without its library.\n\n" + std::wstring(pszWhy) +
                          L"\n" + strFolder + L"TSDLL64.dll",
                      ended.strBox);
        }
    }
    std::wstring strFolder;
};

TEST_F(HostFolder, MissingLibraryIsTold) { ExpectRefusal(L"The file is missing."); }

TEST_F(HostFolder, FileThatIsNoLibraryIsTold) {
    PutLibrary({'h', 'e', 'l', 'l', 'o'});
    ExpectRefusal(L"The file cannot be loaded.");
    PutLibrary({});
    EXPECT_EQ(3u, RunHost(strFolder, L"").dwExitCode);
}

TEST_F(HostFolder, LibraryOfAnotherVersionIsTold) {
    Bytes bytes = RealLibrary();
    // The product version in the fixed part of the version resource.
    ASSERT_EQ(1, Patch(bytes, std::string("\x01\0\x01\0\x69\x09\0\0\x01\0\x01\0\x69\x09\0\0", 16),
                       std::string("\x01\0\x01\0\x69\x09\0\0\x01\0\x01\0\x68\x09\0\0", 16)));
    PutLibrary(bytes);
    ExpectRefusal(L"The file is not of version 1.1.0.2409.");
}

TEST_F(HostFolder, LibraryWithoutAVersionIsTold) {
    Bytes bytes = RealLibrary();
    // The signature of the version resource's fixed part and its layout's number: code that looks
    // for the signature has it, too.
    ASSERT_EQ(1, Patch(bytes, std::string("\xBD\x04\xEF\xFE\0\0\1\0", 8),
                       std::string("\xBD\x04\xEF\xFF\0\0\1\0", 8)));
    PutLibrary(bytes);
    EXPECT_EQ(3u, RunHost(strFolder, L"").dwExitCode);
}

TEST_F(HostFolder, LibraryWithoutAFunctionIsTold) {
    for (std::string strName :
         {"DoMonitor", "_Z16PostMyCompanyMsg", "_Z3MsgP6HWND__", "_Z16GetMyProductInfov",
          "_ZN16SingleInstanceXP15IsFirst", "_Z18GetSetAutoRunDll32", "_Z18SetRestoreOnChange"}) {
        Bytes bytes = RealLibrary();
        std::string strOther = strName;
        strOther.back() = '~';
        ASSERT_LE(1, Patch(bytes, strName, strOther)) << strName;
        PutLibrary(bytes);
        Ended ended = RunHost(strFolder, L"/exit");
        EXPECT_EQ(3u, ended.dwExitCode) << strName;
        EXPECT_NE(std::wstring::npos, ended.strBox.find(L"The file is not Tessaly's library."));
    }
}

TEST_F(HostFolder, GoodLibraryBesideIsTaken) {
    PutLibrary(RealLibrary());
    Ended ended = RunHost(strFolder, L"/exit");
    EXPECT_EQ(0u, ended.dwExitCode);
    EXPECT_EQ(L"", ended.strBox);
}

std::wstring LowerCase(std::wstring str) {
    ::CharLowerW(str.data());
    return str;
}

/// The libraries that a file imports, but those that Windows keeps mapped for all programs: for
/// these the loader never looks beside a program.
std::vector<std::wstring> SearchedImports(const std::wstring& strPath) {
    static const std::wstring kKnown[] = {L"advapi32.dll", L"gdi32.dll", L"kernel32.dll",
                                          L"msvcrt.dll",   L"ole32.dll", L"shell32.dll",
                                          L"shlwapi.dll",  L"user32.dll"};
    std::vector<std::wstring> names;
    HMODULE hmod = ::LoadLibraryExW(strPath.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    if (!hmod) return names;
    auto* pBase = reinterpret_cast<const char*>(hmod);
    auto* pDos = reinterpret_cast<const IMAGE_DOS_HEADER*>(pBase);
    auto* pNt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(pBase + pDos->e_lfanew);
    DWORD nAt = pNt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* p = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(pBase + nAt); p->Name; ++p) {
        std::string str = pBase + p->Name;
        std::wstring strName = LowerCase(std::wstring(str.begin(), str.end()));
        if (std::find(std::begin(kKnown), std::end(kKnown), strName) == std::end(kKnown))
            names.push_back(strName);
    }
    ::FreeLibrary(hmod);
    return names;
}

/// A library that does nothing: another one, without what it imports and without its entry point.
Bytes MakeInert(Bytes bytes) {
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS64 nt;
    memcpy(&dos, bytes.data(), sizeof(dos));
    memcpy(&nt, bytes.data() + dos.e_lfanew, sizeof(nt));
    nt.OptionalHeader.AddressOfEntryPoint = 0;
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT] = {};
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT] = {};
    memcpy(bytes.data() + dos.e_lfanew, &nt, sizeof(nt));
    return bytes;
}

TEST_F(HostFolder, SystemLibrariesBesideAreNotTaken) {
    PutLibrary(RealLibrary());
    std::vector<std::wstring> names = SearchedImports(BinFolder() + L"TSDLL64.dll");
    ASSERT_NE(names.end(), std::find(names.begin(), names.end(), L"wtsapi32.dll"));
    // The test platform takes its own code for what is found, if it is not told otherwise.
    RegTree native(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\TSEXE64.exe");
    for (const std::wstring& strName : names) {
        std::ofstream file(Narrow(strFolder + strName), std::ios::binary);
        Bytes bytes = MakeInert(RealLibrary());
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        native.PutStr(strName.substr(0, strName.find(L'.')), L"native,builtin", L"DllOverrides");
    }
    Ended ended = RunHost(strFolder, L"/bogus");
    EXPECT_EQ(2u, ended.dwExitCode); // the library could be mapped
    std::vector<std::wstring> beside;
    for (const std::wstring& strPath : ended.modules) {
        if (LowerCase(strPath).starts_with(LowerCase(strFolder))) beside.push_back(strPath);
    }
    std::sort(beside.begin(), beside.end());
    EXPECT_EQ((std::vector{strFolder + L"TSDLL64.dll", strFolder + L"TSEXE64.exe"}), beside);
    for (const std::wstring& strName : names) ::DeleteFileW((strFolder + strName).c_str());
}

TEST(Host, UnknownSwitchIsToldWithWhatIsKnown) {
    Ended ended = RunHost(BinFolder(), L"/exit \"/no such\"");
    EXPECT_EQ(2u, ended.dwExitCode);
    EXPECT_EQ(0u, ended.strBox.find(L"\"/no such\" is not a switch of this program."));
    EXPECT_NE(std::wstring::npos, ended.strBox.find(L"/QUIET\t"));
    EXPECT_NE(std::wstring::npos, ended.strBox.find(L"/EXIT\t"));
    EXPECT_NE(std::wstring::npos, ended.strBox.find(L"/AUTOSTART:ON\t"));
    EXPECT_NE(std::wstring::npos, ended.strBox.find(L"/AUTOSTART:OFF\t"));
    EXPECT_NE(std::wstring::npos, ended.strBox.find(L"/AUTOSTART\t"));
    EXPECT_EQ(2u, RunHost(BinFolder(), std::wstring(2000, L'x')).dwExitCode);
}

/// A window of the monitor's class, with that procedure, for the length of a block.
class FakeMonitor {
  public:
    explicit FakeMonitor(WNDPROC pfnProc) {
        WNDCLASSW wc{};
        wc.lpfnWndProc = pfnProc;
        wc.lpszClassName = kMonitorClass;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        ::RegisterClassW(&wc);
        hwnd = ::CreateWindowExW(0, wc.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                 wc.hInstance, nullptr);
    }
    ~FakeMonitor() {
        ::DestroyWindow(hwnd);
        ::UnregisterClassW(kMonitorClass, ::GetModuleHandleW(nullptr));
    }
    FakeMonitor(const FakeMonitor&) = delete;
    FakeMonitor& operator=(const FakeMonitor&) = delete;

  private:
    HWND hwnd;
};

void ExpectSilentSecondStarts() {
    for (const wchar_t* pszArguments : {L"", L"/quiet", L"-QUIET"}) {
        Ended ended = RunHost(BinFolder(), pszArguments);
        EXPECT_EQ(0u, ended.dwExitCode);
        EXPECT_EQ(L"", ended.strBox);
    }
}

TEST(Host, SecondStartLeavesTheFirstAlone) {
    SingleInstanceXP first;
    ASSERT_EQ(1, first.IsFirstInstance(0, GetMyProductInfo().GetName()));
    FakeMonitor window(&::DefWindowProcW);
    ExpectSilentSecondStarts();
}

TEST(Host, SecondStartLeavesAFirstAloneThatHasNoWindowYet) {
    SingleInstanceXP first;
    ASSERT_EQ(1, first.IsFirstInstance(0, GetMyProductInfo().GetName()));
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    std::wstring strLine = L"\"" + BinFolder() + L"TSEXE64.exe\"";
    ASSERT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE,
                                   CREATE_SUSPENDED, nullptr, nullptr, &si, &pi));
    ExpectSilentSecondStarts();
    ::TerminateProcess(pi.hProcess, 0);
    ::WaitForSingleObject(pi.hProcess, kDeadlineMs);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
}

TEST(Host, MarkThatAnotherProgramHasIsTold) {
    const std::wstring strMark = L"Local\\Orvanta_App_Tessaly";
    using Maker = HANDLE (*)(const wchar_t*);
    // Its like, and what no mark can be made beside.
    for (Maker pfnMake :
         {Maker([](const wchar_t* psz) { return ::CreateEventW(nullptr, FALSE, FALSE, psz); }),
          Maker([](const wchar_t* psz) { return ::CreateMutexW(nullptr, FALSE, psz); })}) {
        HANDLE h = pfnMake(strMark.c_str());
        ASSERT_NE(nullptr, h);
        for (const wchar_t* pszArguments : {L"", L"/quiet"}) {
            Ended ended = RunHost(BinFolder(), pszArguments);
            EXPECT_EQ(6u, ended.dwExitCode);
            EXPECT_EQ(0u, ended.strBox.find(L"Tessaly does not start: "));
            EXPECT_NE(std::wstring::npos, ended.strBox.find(L"Another program"));
        }
        ::CloseHandle(h);
    }
}

TEST(Host, ExitWithNothingRunningIsDone) {
    EXPECT_EQ(0u, RunHost(BinFolder(), L"/EXIT").dwExitCode);
}

TEST(Host, ExitClosesTheRunningOneAndWaitsForItsProcess) {
    HANDLE hRead = nullptr, hWrite = nullptr;
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
    ASSERT_TRUE(::CreatePipe(&hRead, &hWrite, &security, 0));
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdOutput = hWrite;
    PROCESS_INFORMATION pi{};
    std::wstring strLine = L"\"" + ThisFolder() + L"closing_probe.exe\"";
    ASSERT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &si, &pi));
    ::CloseHandle(hWrite);
    char ch = 0;
    DWORD cb = 0;
    EXPECT_TRUE(::ReadFile(hRead, &ch, 1, &cb, nullptr)); // its window stands now
    Ended ended = RunHost(BinFolder(), L"-exit");
    EXPECT_EQ(0u, ended.dwExitCode);
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, 0)); // gone already
    ::TerminateProcess(pi.hProcess, 1);
    ::CloseHandle(hRead);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
}

/// The value that starts the program with Windows; what stood there before comes back.
class AutoStartValue : public testing::Test {
  protected:
    AutoStartValue() { strBefore = Read(); }
    ~AutoStartValue() override { Write(strBefore); }
    static std::wstring Read() {
        wchar_t sz[512] = L"";
        DWORD cb = sizeof(sz);
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, kRunKey, 0, KEY_READ, &hkey)) return L"";
        ::RegQueryValueExW(hkey, L"Tessaly", nullptr, nullptr, reinterpret_cast<BYTE*>(sz), &cb);
        ::RegCloseKey(hkey);
        return sz;
    }
    /// The empty text deletes.
    static void Write(const std::wstring& str) {
        HKEY hkey = nullptr;
        ::RegCreateKeyExW(HKEY_CURRENT_USER, kRunKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hkey,
                          nullptr);
        if (str.empty())
            ::RegDeleteValueW(hkey, L"Tessaly");
        else
            ::RegSetValueExW(hkey, L"Tessaly", 0, REG_SZ,
                             reinterpret_cast<const BYTE*>(str.c_str()),
                             static_cast<DWORD>((str.size() + 1) * sizeof(wchar_t)));
        ::RegCloseKey(hkey);
    }
    static void Expect(const wchar_t* pszArguments, DWORD dwExitCode, const wchar_t* pszBox) {
        Ended ended = RunHost(BinFolder(), pszArguments);
        EXPECT_EQ(dwExitCode, ended.dwExitCode) << pszArguments;
        EXPECT_EQ(pszBox, ended.strBox);
        EXPECT_EQ(nullptr, ::FindWindowW(kMonitorClass, nullptr)); // nothing else was started
    }
    static constexpr const wchar_t* kRunKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    std::wstring strBefore;
};

TEST_F(AutoStartValue, IsSetToldAndDeleted) {
    constexpr const wchar_t *kOn = L"Tessaly starts with Windows.",
                            *kOff = L"Tessaly does not start with Windows.";
    Expect(L"/AUTOSTART:OFF", 0, L"");
    EXPECT_EQ(L"", Read());
    Expect(L"/AUTOSTART", 4, kOff);
    Expect(L"/autostart /quiet", 4, L"");
    Expect(L"/AUTOSTART:ON", 0, L"");
    std::wstring strLine = Read();
    EXPECT_EQ(0u, strLine.find(L"RunDll32.exe "));
    EXPECT_TRUE(strLine.ends_with(L",StartMonitor")) << strLine.size();
    Expect(L"/AUTOSTART", 0, kOn);
    Expect(L"-quiet -autostart", 0, L"");
    Expect(L"/autostart:on", 0, L""); // again
    EXPECT_EQ(strLine, Read());
    Expect(L"/exit /autostart", 0, kOn);
    Expect(L"-AutoStart=Off", 0, L"");
    EXPECT_EQ(L"", Read());
    Expect(L"/exit /autostart /quiet", 4, L"");
}

TEST_F(AutoStartValue, LineOfAnotherPlaceIsNotThisProgram) {
    Write(L"RunDll32.exe C:\\elsewhere\\TSDLL64.dll,StartMonitor");
    Expect(L"/autostart /quiet", 4, L"");
    Expect(L"/autostart:on", 0, L"");
    Expect(L"/autostart /quiet", 0, L"");
}

TEST_F(AutoStartValue, RefusalIsTold) {
    RunKeyAway run(1);
    ASSERT_TRUE(run.Block());
    for (const wchar_t* psz : {L"/autostart:on", L"/autostart:off", L"/exit /autostart:on"})
        Expect(psz, 5, ResStr(-IDS_REGISTRY_NOT_WRITTEN));
    for (const wchar_t* psz : {L"/autostart:on /quiet", L"/quiet /autostart:off"})
        Expect(psz, 5, L"");
    Expect(L"/autostart", 4, L"Tessaly does not start with Windows.");
}

// The displays

void ExpectDisplays(const wchar_t* pszArguments, DWORD dwExitCode, const wchar_t* pszBox) {
    Ended ended = RunHost(BinFolder(), pszArguments);
    EXPECT_EQ(dwExitCode, ended.dwExitCode) << pszArguments;
    EXPECT_EQ(pszBox, ended.strBox);
    EXPECT_EQ(nullptr, ::FindWindowW(kMonitorClass, nullptr)); // nothing else was started
}
const std::wstring kDisplaysKey = L"Software\\Orvanta\\Tessaly\\Displays";
constexpr const wchar_t *kDisplaysOn = L"Tessaly puts the icons back when the displays change.",
                        *kDisplaysOff =
                            L"Tessaly does not put the icons back when the displays change.";

TEST(HostDisplays, AreTurnedOnAndOffAndTold) {
    RegTree key(HKEY_CURRENT_USER, kDisplaysKey);
    ExpectDisplays(L"/DISPLAYS", 4, kDisplaysOff);
    EXPECT_FALSE(key.Exists());
    ExpectDisplays(L"/DISPLAYS:ON", 0, L"");
    EXPECT_EQ((RegContent{REG_DWORD, {1, 0, 0, 0}}), key.Dump().values[L"RestoreOnChange"]);
    ExpectDisplays(L"-displays", 0, kDisplaysOn);
    ExpectDisplays(L"/displays /quiet", 0, L"");
    key.Create(L"0123");
    ExpectDisplays(L"/exit -Displays=Off", 0, L"");
    EXPECT_EQ((RegContent{REG_DWORD, {0, 0, 0, 0}}), key.Dump().values[L"RestoreOnChange"]);
    EXPECT_EQ(1u, key.Dump().subkeys.size()); // the layouts stay
    ExpectDisplays(L"/quiet /displays", 4, L"");
}

TEST(HostDisplays, RefusalIsTold) {
    RegTree key(HKEY_CURRENT_USER, kDisplaysKey);
    ASSERT_TRUE(PlantDeadLink(HKEY_CURRENT_USER, kDisplaysKey));
    ExpectDisplays(L"/displays:on", 5, ResStr(-IDS_REGISTRY_NOT_WRITTEN));
    ExpectDisplays(L"/displays:off /quiet", 5, L"");
    ExpectDisplays(L"/displays", 4, kDisplaysOff);
}

int nAsked = 0;
LPARAM lAskedFor = 0;
LRESULT CALLBACK DeafProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == GetMyCompanyMsgId() && wParam == 1) {
        ++nAsked;
        lAskedFor = lParam;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

TEST(Host, ExitTellsWhenTheRunningOneStays) {
    nAsked = 0;
    FakeMonitor window(&DeafProc);
    DWORD dwStart = ::GetTickCount();
    Ended ended = RunHost(BinFolder(), L"/exit");
    EXPECT_GE(::GetTickCount() - dwStart, 14000u);
    EXPECT_EQ(1u, ended.dwExitCode);
    EXPECT_EQ(L"Tessaly is still running: it was asked to close and did not in time.",
              ended.strBox);
    EXPECT_EQ(1, nAsked);
    EXPECT_EQ(GetMyProductInfo().GetID(), lAskedFor);
}

TEST(Host, ExitWithQuietTellsByItsCodeAlone) {
    FakeMonitor window(&DeafProc);
    Ended ended = RunHost(BinFolder(), L"/exit /quiet");
    EXPECT_EQ(1u, ended.dwExitCode);
    EXPECT_EQ(L"", ended.strBox);
}
} // namespace
