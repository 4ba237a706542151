#include "e2e/support/unix_shell.h"
#include "support/wait_until.h"

#include <cstdlib>
#include <stdexcept>

namespace {
void StartUnixShell(const std::wstring& strLine) {
    std::wstring strAll = L"sh -c \"" + strLine + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    // Its handles are not closed: for a Unix program the platform writes numbers there that may by
    // now be the handles of something else.
    PROCESS_INFORMATION info{};
    if (!::CreateProcessW(L"Z:\\bin\\sh", strAll.data(), nullptr, nullptr, FALSE, 0, nullptr,
                          nullptr, &startup, &info)) {
        throw std::runtime_error("no Unix shell, error " + std::to_string(::GetLastError()));
    }
}
} // namespace

void RunUnixShell(const std::wstring& strLine) {
    // There is no usable handle to wait for: the line's last part makes a file.
    static int nCount = 0;
    std::wstring strDone =
        L"done." + std::to_wstring(::GetCurrentProcessId()) + L"." + std::to_wstring(++nCount);
    StartUnixShell(strLine + L" && : > $WINEPREFIX/drive_c/" + strDone);
    std::wstring strPath = L"C:\\" + strDone;
    if (!WaitUntil([&] { return ::DeleteFileW(strPath.c_str()) != 0; })) {
        throw std::runtime_error("a Unix command did not succeed");
    }
}

bool UsesXdotool() {
    const char* pszWanted = getenv("TESSALY_MOUSE");
    if (pszWanted && std::string(pszWanted) == "sendinput") return false;
    return ::GetFileAttributesW(L"Z:\\usr\\bin\\xdotool") != INVALID_FILE_ATTRIBUTES;
}
