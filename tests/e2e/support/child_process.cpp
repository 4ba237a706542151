#include "e2e/support/child_process.h"
#include "support/program_folder.h"
#include "support/start_process.h"

#include <stdexcept>

std::wstring FolderBeside(const std::wstring& strName) {
    std::wstring str = ProgramFolder();
    str.pop_back();
    return str.substr(0, str.rfind(L'\\') + 1) + strName;
}

std::wstring ProductFolder() { return FolderBeside(L"bin"); }

ChildProcess::~ChildProcess() { Kill(); }

void ChildProcess::Start(const std::wstring& strPath, const std::wstring& strArguments,
                         const std::wstring& strCurrent) {
    // What the child says of a crash belongs into the test's own log.
    HANDLE hLog = ::GetStdHandle(STD_ERROR_HANDLE);
    ::SetHandleInformation(hLog, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    Run(strPath, strArguments, strCurrent, hLog, 0);
}

void ChildProcess::StartForBoxes(const std::wstring& strPath, const std::wstring& strArguments) {
    Run(strPath, strArguments, {}, nullptr, DETACHED_PROCESS);
}

void ChildProcess::Run(const std::wstring& strPath, const std::wstring& strArguments,
                       const std::wstring& strCurrent, HANDLE hOutput, DWORD dwFlags) {
    if (IsRunning()) throw std::runtime_error("the program runs already");
    Close();
    std::wstring strLine = L"\"" + strPath + L"\" " + strArguments;
    std::wstring strFolder =
        strCurrent.empty() ? strPath.substr(0, strPath.rfind(L'\\')) : strCurrent;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = hOutput;
    PROCESS_INFORMATION info{};
    if (!StartProcessSurely(strPath.c_str(), strLine.data(), nullptr, nullptr, TRUE, dwFlags,
                            nullptr, strFolder.c_str(), &startup, &info)) {
        throw std::runtime_error("a program could not be started, error " +
                                 std::to_string(::GetLastError()));
    }
    ::CloseHandle(info.hThread);
    hProcess = info.hProcess;
    dwId = info.dwProcessId;
}

bool ChildProcess::IsRunning() const {
    return hProcess && ::WaitForSingleObject(hProcess, 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> ChildProcess::WaitForEnd(DWORD nMs) const {
    if (!hProcess || ::WaitForSingleObject(hProcess, nMs) != WAIT_OBJECT_0) return std::nullopt;
    DWORD dwCode = 0;
    ::GetExitCodeProcess(hProcess, &dwCode);
    return dwCode;
}

void ChildProcess::WaitUntilIdle(DWORD nMs) {
    if (hProcess) ::WaitForInputIdle(hProcess, nMs);
}

void ChildProcess::Kill() {
    if (IsRunning()) {
        ::TerminateProcess(hProcess, 1);
        ::WaitForSingleObject(hProcess, kTestDeadlineMs);
    }
    Close();
}

void ChildProcess::LetGo() { Close(); }

void ChildProcess::Close() {
    if (hProcess) ::CloseHandle(hProcess);
    hProcess = nullptr;
    dwId = 0;
}
