#include "e2e/support/command_run.h"
#include "e2e/support/child_process.h"
#include "support/message_box_driver.h"
#include "support/program_folder.h"
#include "support/start_process.h"

#include <cstring>
#include <stdexcept>

namespace {
std::wstring ProgramLine(const std::wstring& strArguments) {
    return L"\"" + ProductFolder() + L"\\TSEXE64.exe\" " + strArguments;
}

/// A new file in the folder for temporary ones, gone with the object.
class TempFile {
  public:
    TempFile() {
        static int nCount = 0;
        wchar_t sz[MAX_PATH] = {};
        ::GetTempPathW(MAX_PATH, sz);
        strPath = sz + std::wstring(L"command.") + std::to_wstring(::GetCurrentProcessId()) + L"." +
                  std::to_wstring(++nCount);
    }
    ~TempFile() { ::DeleteFileW(strPath.c_str()); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    const std::wstring& Path() const { return strPath; }

    HANDLE OpenForChild() const {
        SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
        return ::CreateFileW(strPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             &security, CREATE_ALWAYS, 0, nullptr);
    }
    void Write(const std::wstring& str) const {
        HANDLE h = OpenForChild();
        DWORD cb = 0;
        ::WriteFile(h, str.data(), static_cast<DWORD>(str.size() * sizeof(wchar_t)), &cb, nullptr);
        ::CloseHandle(h);
    }
    std::string Read() const {
        HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_EXISTING, 0, nullptr);
        if (h == INVALID_HANDLE_VALUE) return {};
        std::string str(::GetFileSize(h, nullptr), '\0');
        DWORD cb = 0;
        ::ReadFile(h, str.data(), static_cast<DWORD>(str.size()), &cb, nullptr);
        ::CloseHandle(h);
        str.resize(cb);
        return str;
    }

  private:
    std::wstring strPath;
};

/// Starts a program that inherits handles if it is given some.
PROCESS_INFORMATION StartProgram(std::wstring strLine, const std::wstring& strCurrent,
                                 DWORD dwFlags, STARTUPINFOW si = {}) {
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, si.dwFlags != 0, dwFlags,
                            nullptr, strCurrent.c_str(), &si, &pi)) {
        throw std::runtime_error("a program could not be started, error " +
                                 std::to_string(::GetLastError()));
    }
    ::CloseHandle(pi.hThread);
    return pi;
}

/// The probe that runs a command in one of its ways.
class Probe {
  public:
    Probe(const wchar_t* pszWay, const std::wstring& strArguments, DWORD dwFlags) {
        file.Write(ProgramLine(strArguments));
        hProcess = StartProgram(L"\"" + ProgramFolder() + L"command_probe.exe\" " + pszWay +
                                    L" \"" + file.Path() + L"\"",
                                ProductFolder(), dwFlags)
                       .hProcess;
    }
    ~Probe() {
        if (::WaitForSingleObject(hProcess, 0) == WAIT_TIMEOUT) {
            ::TerminateProcess(hProcess, 1);
            ::WaitForSingleObject(hProcess, kTestDeadlineMs);
        }
        ::CloseHandle(hProcess);
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    bool HasEnded(DWORD nMs = 0) const {
        return ::WaitForSingleObject(hProcess, nMs) == WAIT_OBJECT_0;
    }
    DWORD Code() const {
        DWORD dwCode = kNotEnded;
        if (HasEnded()) ::GetExitCodeProcess(hProcess, &dwCode);
        return dwCode;
    }
    std::string Report() const { return file.Read(); }

  private:
    TempFile file;
    HANDLE hProcess = nullptr;
};

/// The process of a box of the program's, whichever has one; 0 if none has.
DWORD ProcessWithBox() {
    HWND hwnd = ::FindWindowW(L"#32770", L"Tessaly");
    DWORD dwProcess = 0;
    if (hwnd && ::IsWindowVisible(hwnd)) ::GetWindowThreadProcessId(hwnd, &dwProcess);
    return dwProcess;
}

std::wstring TextOfClosedBox(DWORD dwProcess) {
    auto box = AnswerMessageBox(dwProcess, IDOK);
    return box ? box->strText : L"";
}
} // namespace

std::string ToUtf8(const std::wstring& str) {
    auto cch = static_cast<int>(str.size());
    int cb = ::WideCharToMultiByte(CP_UTF8, 0, str.data(), cch, nullptr, 0, nullptr, nullptr);
    std::string strOut(static_cast<size_t>(cb), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, str.data(), cch, strOut.data(), cb, nullptr, nullptr);
    return strOut;
}

struct CommandProcess::Files {
    TempFile out, err;
};

CommandProcess::CommandProcess() : files(std::make_unique<Files>()) {}

CommandProcess::~CommandProcess() {
    Kill();
    if (hProcess) ::CloseHandle(hProcess);
}

void CommandProcess::Start(const std::wstring& strArguments, Redirected redirected,
                           const std::wstring& strCurrent) {
    STARTUPINFOW si{};
    si.dwFlags = STARTF_USESTDHANDLES;
    if (redirected != Redirected::Error) si.hStdOutput = files->out.OpenForChild();
    if (redirected != Redirected::Out) si.hStdError = files->err.OpenForChild();
    PROCESS_INFORMATION pi =
        StartProgram(ProgramLine(strArguments), strCurrent.empty() ? ProductFolder() : strCurrent,
                     DETACHED_PROCESS, si);
    hProcess = pi.hProcess;
    dwId = pi.dwProcessId;
    if (si.hStdOutput) ::CloseHandle(si.hStdOutput);
    if (si.hStdError) ::CloseHandle(si.hStdError);
}

bool CommandProcess::IsRunning() const {
    return hProcess && ::WaitForSingleObject(hProcess, 0) == WAIT_TIMEOUT;
}

void CommandProcess::Kill() {
    if (!IsRunning()) return;
    ::TerminateProcess(hProcess, 1);
    ::WaitForSingleObject(hProcess, kTestDeadlineMs);
}

CommandEnd CommandProcess::Wait(DWORD nMs) {
    CommandEnd end;
    WaitUntil(
        [&] {
            if (FindMessageBox(dwId)) end.strBox = TextOfClosedBox(dwId);
            return !IsRunning();
        },
        nMs);
    if (!IsRunning()) ::GetExitCodeProcess(hProcess, &end.dwCode);
    end.strOut = files->out.Read();
    end.strErr = files->err.Read();
    return end;
}

CommandEnd RunCommand(const std::wstring& strArguments, Redirected redirected,
                      const std::wstring& strCurrent) {
    CommandProcess process;
    process.Start(strArguments, redirected, strCurrent);
    return process.Wait();
}

CommandEnd RunOnConsole(const std::wstring& strArguments, ConsoleUse use) {
    Probe probe(use == ConsoleUse::Shared ? L"shared" : L"attached", strArguments,
                CREATE_NO_WINDOW);
    CommandEnd end;
    WaitUntil(
        [&] {
            if (DWORD dwProcess = ProcessWithBox()) end.strBox = TextOfClosedBox(dwProcess);
            return probe.HasEnded();
        },
        kCommandDeadlineMs);
    end.dwCode = probe.Code();
    if (probe.HasEnded()) end.strOut = probe.Report();
    return end;
}

CommandBoxes RunWithBoxes(const std::wstring& strArguments, int nButton) {
    Probe probe(L"alone", strArguments, DETACHED_PROCESS);
    CommandBoxes result;
    WaitUntil(
        [&] {
            if (DWORD dwProcess = ProcessWithBox()) {
                if (auto box = AnswerMessageBox(dwProcess, nButton)) {
                    result.boxes.push_back(
                        {box->strTitle, box->strText, box->bHasIcon, box->buttons});
                }
            }
            return probe.HasEnded();
        },
        kCommandDeadlineMs);
    result.dwCode = probe.Code();
    return result;
}
