// What asking for updates costs when none is due, as it mostly is, beside the bare calls that it
// takes to know that. `bench_update`.

#include "../measure.h"
#include "app/identity/product_info.h"
#include "app/start/library_start.h"
#include "app/update/update_check.h"
#include "app/update/update_state.h"

#include <windows.h>
#include <string>

namespace {
constexpr int kTurns = 101;
constexpr int kCalls = 50; // in a turn
constexpr double kLimit = 1.3;
constexpr const wchar_t* kRoot = L"Software\\Tessaly update bench";
constexpr const wchar_t* kSetup = L"Software\\Tessaly update bench\\Setup";
constexpr const wchar_t* kSteps[] = {L"Software", L"Tessaly update bench", L"Setup"};
constexpr const wchar_t* kValues[] = {L"LastUpdate", L"NextUpdate", L"RemindFreq", L"AutoCheck"};

void Store(const wchar_t* pszName, DWORD dwValue) {
    HKEY hkey = nullptr;
    ::RegCreateKeyExW(HKEY_CURRENT_USER, kSetup, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &hkey,
                      nullptr);
    ::RegSetValueExW(hkey, pszName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dwValue),
                     sizeof(dwValue));
    ::RegCloseKey(hkey);
}

/// The event, the look at the dialogs, the values.
bool AskBarely() {
    HANDLE h = ::CreateEventW(nullptr, FALSE, FALSE, kCheckEventName);
    const bool bFirst = h && ::GetLastError() != ERROR_ALREADY_EXISTS;
    const bool bDialog =
        ::FindWindowExW(nullptr, nullptr, reinterpret_cast<LPCWSTR>(WC_DIALOG), nullptr);
    HKEY hkey = HKEY_CURRENT_USER;
    DWORD values[4] = {};
    bool bRead = true;
    for (const wchar_t* pszStep : kSteps) { // as a path of the registry is walked
        HKEY hkeyParent = hkey;
        bRead &= ::RegOpenKeyExW(hkeyParent, pszStep, 0, KEY_READ, &hkey) == ERROR_SUCCESS;
        ::RegCloseKey(hkeyParent);
    }
    for (int n = 0; n < 4; ++n) {
        DWORD dwType = 0, cb = sizeof(DWORD);
        bRead &= ::RegQueryValueExW(hkey, kValues[n], nullptr, &dwType,
                                    reinterpret_cast<BYTE*>(&values[n]), &cb) == ERROR_SUCCESS;
    }
    ::RegCloseKey(hkey);
    SYSTEMTIME st;
    FILETIME ft;
    ::GetSystemTime(&st);
    ::SystemTimeToFileTime(&st, &ft);
    ::CloseHandle(h);
    return bFirst && !bDialog && bRead && values[1] > ft.dwHighDateTime / 2;
}
} // namespace

int main() {
    LibraryStart(::GetModuleHandleW(nullptr));
    GetMyProductInfo().PushAppRootKey((std::wstring(L"HKCU\\") + kRoot).c_str());
    for (const wchar_t* pszName : kValues) Store(pszName, 1);
    Store(L"NextUpdate", 0xFFFFFFF0);
    int nResults = 0;
    bool bBare = true;
    auto ours = [&] {
        for (int n = 0; n < kCalls; ++n) nResults += CheckForUpdates(nullptr);
    };
    auto bare = [&] {
        for (int n = 0; n < kCalls; ++n) bBare &= AskBarely();
    };
    Comparison c = Compare(kTurns, ours, bare);
    ::RegDeleteKeyW(HKEY_CURRENT_USER, kSetup);
    ::RegDeleteKeyW(HKEY_CURRENT_USER, kRoot);
    GetMyProductInfo().PopAppRootKey();
    if (nResults || !bBare) {
        std::puts("the check was not the usual one");
        return 2;
    }
    bool bOk = Report("50 calls of CheckForUpdates, none due / bare calls", c, kLimit, true);
    LibraryStop();
    return bOk ? 0 : 1;
}
