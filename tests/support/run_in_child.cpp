#include "support/run_in_child.h"
#include "support/start_process.h"

DWORD RunInChild(const std::string& strSuite, const std::string& strName) {
    constexpr DWORD kChildMs = 120000;
    // The one test belongs to no piece of the program's tests.
    ::SetEnvironmentVariableW(L"GTEST_TOTAL_SHARDS", nullptr);
    ::SetEnvironmentVariableW(L"GTEST_SHARD_INDEX", nullptr);
    wchar_t szProgram[MAX_PATH];
    ::GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    std::string strTest = strSuite + ".DISABLED_" + strName;
    std::wstring strLine = std::wstring(L"\"") + szProgram +
                           L"\" --gtest_brief=1 --gtest_also_run_disabled_tests --gtest_filter=" +
                           std::wstring(strTest.begin(), strTest.end());
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process{};
    if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0ul, nullptr, nullptr,
                            &start, &process)) {
        return ::GetLastError();
    }
    ::CloseHandle(process.hThread);
    DWORD dwCode = STILL_ACTIVE;
    if (::WaitForSingleObject(process.hProcess, kChildMs) != WAIT_OBJECT_0) {
        ::TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    }
    ::GetExitCodeProcess(process.hProcess, &dwCode);
    ::CloseHandle(process.hProcess);
    return dwCode;
}
