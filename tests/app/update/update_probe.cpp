// The update check in another process, or with settings that are forced, as they cannot be undone:
// update_probe.exe ROOT COMMAND... with the settings below HKCU\Software\ROOT. What would be
// started is not. A line for each command that tells something; a dialog's line is its window.
#include "app/fake_clock.h"
#include "app/identity/product_info.h"
#include "app/shell_start_recorder.h"
#include "app/start/library_start.h"
#include "app/update/dlg_update.h"
#include "app/update/update_check.h"
#include "app/update/update_state.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace {
UpdateState state;
std::optional<FakeClock> now;

void Print(int nResult) {
    std::printf("%d %lu %lu %lu %lu\n", nResult, state.dwLastUpdate, state.dwNextUpdate,
                state.dwFrequency, state.dwAutoCheck);
}

DWORD WINAPI CloseAtEndOfInput(void* pWindow) {
    while (std::getchar() != EOF) {
    }
    ::PostMessageW(static_cast<HWND>(pWindow), WM_COMMAND, IDCANCEL, 0);
    return 0;
}

/// Tells its window, and is closed when the input ends.
template <class Dlg>
struct TellingDlg : Dlg {
    using Dlg::Dlg;
    void OnInitDone() override {
        Dlg::OnInitDone();
        std::printf("%llu\n",
                    static_cast<unsigned long long>(reinterpret_cast<UINT_PTR>(this->hWnd)));
        std::fflush(stdout);
        ::CloseHandle(::CreateThread(nullptr, 0, &CloseAtEndOfInput, this->hWnd, 0, nullptr));
    }
};

void Check() {
    ShellStartRecorder shell;
    int nResult = CheckForUpdates(nullptr);
    std::printf("%d %d\n", nResult, static_cast<int>(shell.calls.size()));
}

void Get() {
    int bAuto = -1;
    Check4UpdatesFreq frequency = kCheckUnchanged;
    GetCheck4UpdatesSettings(&bAuto, &frequency);
    std::printf("%d %u\n", bAuto, static_cast<unsigned>(frequency));
}

void Run(const std::wstring& strCommand) {
    const std::size_t nEqual = strCommand.find(L'=');
    const std::wstring strName = strCommand.substr(0, nEqual);
    const wchar_t* pszValue = nEqual == std::wstring::npos ? L"" : strCommand.c_str() + nEqual + 1;
    wchar_t* pszRest = nullptr;
    const DWORD dwValue = std::wcstoul(pszValue, &pszRest, 10);
    if (strName == L"clock") now.emplace(dwValue);
    if (strName == L"enforce") EnforceCheckForUpdates(dwValue);
    if (strName == L"new") state = UpdateState();
    if (strName == L"tell") Print(0);
    if (strName == L"read") Print(state.Read());
    if (strName == L"write") Print(state.Write());
    if (strName == L"last") state.dwLastUpdate = dwValue;
    if (strName == L"next") state.dwNextUpdate = dwValue;
    if (strName == L"setup") state.SetupNextUpdate();
    if (strName == L"get") Get();
    if (strName == L"set") // "auto,frequency"
        SetCheck4UpdatesSettings(
            static_cast<int>(dwValue),
            static_cast<Check4UpdatesFreq>(std::wcstoul(pszRest + 1, nullptr, 10)));
    if (strName == L"reset") ResetCheck4Updates();
    if (strName == L"check") Check();
    if (strName == L"network") std::printf("%d\n", ::GetModuleHandleW(L"wininet.dll") != nullptr);
    if (strName == L"ask") TellingDlg<DlgCheckForUpdates>(1, 3u, nullptr).Show();
    if (strName == L"offer") TellingDlg<DlgGetUpdates>(1, L"Version 2", nullptr).Show();
}
} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 2) return 2;
    LibraryStart(::GetModuleHandleW(nullptr));
    GetMyProductInfo().SetAppRootKey((std::wstring(L"HKCU\\Software\\") + argv[1]).c_str());
    for (int n = 2; n < argc; ++n) Run(argv[n]);
    std::fflush(stdout);
    now.reset();
    LibraryStop();
    return 0;
}
