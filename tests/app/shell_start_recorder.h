#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <shellapi.h>
#include <functional>
#include <string>
#include <vector>

extern "C" FARPROC __imp_ShellExecuteExW;
extern "C" FARPROC __imp_ShellExecuteW;

/// A copy of a text that may be missing.
struct MaybeText {
    MaybeText(const wchar_t* psz = nullptr) : bThere(psz != nullptr), str(psz ? psz : L"") {}
    bool operator==(const MaybeText&) const = default;
    bool bThere;
    std::wstring str;
};

inline std::ostream& operator<<(std::ostream& out, const MaybeText& text) {
    return out << (text.bThere ? "\"" + std::string(text.str.begin(), text.str.end()) + "\""
                               : "none");
}

/// One call of ShellExecuteExW or, with bEx 0, ShellExecuteW.
struct ShellCall {
    int bEx = 1;
    DWORD cb = 0;
    ULONG nMask = 0;
    HWND hwnd = nullptr;
    MaybeText verb, file, parameters, directory;
    int nShow = -1;
    const void* pidl = nullptr;
    HCURSOR hcur = nullptr; // that showed during the call
    DWORD dwThread = 0;
};

/// Takes what goes to the shell, for the length of a block: nothing is started. Results are what
/// the test says.
class ShellStartRecorder {
  public:
    ShellStartRecorder()
        : replacedEx(__imp_ShellExecuteExW, &TakeEx), replaced(__imp_ShellExecuteW, &Take) {
        calls.clear();
        bSucceed = TRUE;
        nResult = 33;
        hProcess = nullptr;
        dwError = ERROR_SUCCESS;
        fnDuring = nullptr;
    }
    /// What is recorded goes with it: a later test may count blocks.
    ~ShellStartRecorder() {
        std::vector<ShellCall>().swap(calls);
        fnDuring = nullptr;
    }
    ShellStartRecorder(const ShellStartRecorder&) = delete;
    ShellStartRecorder& operator=(const ShellStartRecorder&) = delete;

    /// The one call that there was since the last time.
    ShellCall TakeOne() {
        if (calls.size() != 1) return ShellCall{};
        ShellCall call = calls[0];
        calls.clear();
        return call;
    }
    static inline std::vector<ShellCall> calls;
    static inline BOOL bSucceed = TRUE; // of ShellExecuteExW
    static inline INT_PTR nResult = 33; // of ShellExecuteW
    static inline HANDLE hProcess = nullptr;
    static inline DWORD dwError = ERROR_SUCCESS;
    static inline std::function<void(SHELLEXECUTEINFOW&)> fnDuring; // within ShellExecuteExW

  private:
    static BOOL WINAPI TakeEx(SHELLEXECUTEINFOW* p) {
        calls.push_back({1, p->cbSize, p->fMask, p->hwnd, p->lpVerb, p->lpFile, p->lpParameters,
                         p->lpDirectory, p->nShow, p->lpIDList, ::GetCursor(),
                         ::GetCurrentThreadId()});
        if (fnDuring) fnDuring(*p);
        p->hProcess = hProcess;
        ::SetLastError(dwError);
        return bSucceed;
    }
    static HINSTANCE WINAPI Take(HWND hwnd, LPCWSTR pszVerb, LPCWSTR pszFile, LPCWSTR pszParameters,
                                 LPCWSTR pszDirectory, INT nShow) {
        calls.push_back({0, 0, 0, hwnd, pszVerb, pszFile, pszParameters, pszDirectory, nShow,
                         nullptr, ::GetCursor(), ::GetCurrentThreadId()});
        return reinterpret_cast<HINSTANCE>(nResult);
    }
    ReplaceImport replacedEx, replaced;
};
