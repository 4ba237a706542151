#include "host/commands/output.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/msg.h"

#include <windows.h>
#include <algorithm>
#include <cstddef>

namespace {
/// That of the program that started this one, while the object lives. It may be this one's already:
/// that is no failure, and stays as it is.
class ParentConsole {
  public:
    ParentConsole() : bAttached(::AttachConsole(ATTACH_PARENT_PROCESS) != 0) {}
    ~ParentConsole() {
        if (bAttached) ::FreeConsole();
    }
    ParentConsole(const ParentConsole&) = delete;
    ParentConsole& operator=(const ParentConsole&) = delete;

  private:
    bool bAttached;
};

/// A standard handle as it is before a console is attached, which puts its own in the place of
/// those that a command interpreter has handed down. It stands there again afterwards, for the next
/// text.
class StandardHandle {
  public:
    explicit StandardHandle(DWORD nWhich)
        : nStandard(nWhich), h(::GetStdHandle(nWhich)), dwType(::GetFileType(h)) {}
    ~StandardHandle() { ::SetStdHandle(nStandard, h); }
    StandardHandle(const StandardHandle&) = delete;
    StandardHandle& operator=(const StandardHandle&) = delete;

    /// The handle if it leads anywhere but to a console; null otherwise. A console's own is known
    /// as such only while this process is attached to it.
    HANDLE FindRedirected() const {
        if (!h || h == INVALID_HANDLE_VALUE) return nullptr;
        if (dwType == FILE_TYPE_DISK || dwType == FILE_TYPE_PIPE) return h;
        DWORD dwMode = 0;
        return dwType == FILE_TYPE_CHAR && !::GetConsoleMode(h, &dwMode) ? h : nullptr;
    }

  private:
    DWORD nStandard;
    HANDLE h; // the process's
    DWORD dwType;
};

/// The text with CR LF line ends, the last line's too, and a terminator. Not ready without memory.
HeapArray<wchar_t> MakeLines(const wchar_t* pszText) {
    auto cch = static_cast<std::size_t>(::lstrlenW(pszText));
    auto nBreaks = static_cast<std::size_t>(std::count(pszText, pszText + cch, L'\n'));
    constexpr std::size_t cchLastEnd = 3; // with the terminator
    HeapArray<wchar_t> lines(cch + nBreaks + cchLastEnd);
    if (!lines.IsReady()) return lines;
    wchar_t* pEnd = lines.Get();
    for (const wchar_t* p = pszText; *p; ++p) {
        if (*p == L'\n') *pEnd++ = L'\r';
        *pEnd++ = *p;
    }
    *pEnd++ = L'\r';
    *pEnd = L'\n';
    return lines;
}

void WriteUtf8(HANDLE h, const wchar_t* pszLines) {
    int cb = ::WideCharToMultiByte(CP_UTF8, 0, pszLines, -1, nullptr, 0, nullptr, nullptr);
    HeapArray<char> bytes(cb > 0 ? static_cast<std::size_t>(cb) : 0);
    if (!bytes.IsReady()) return;
    ::WideCharToMultiByte(CP_UTF8, 0, pszLines, -1, bytes.Get(), cb, nullptr, nullptr);
    auto cbLeft = static_cast<DWORD>(cb - 1); // without the terminator
    for (const char* p = bytes.Get(); cbLeft;) {
        DWORD cbDone = 0;
        if (!::WriteFile(h, p, cbLeft, &cbDone, nullptr) || !cbDone) return; // nobody reads on
        p += cbDone;
        cbLeft -= cbDone;
    }
}

/// False if there is no console, or it can't be written to.
bool WriteToConsole(const wchar_t* pszLines) {
    HANDLE hOpened =
        ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (hOpened == INVALID_HANDLE_VALUE) return false;
    OwnedHandle console(hOpened);
    constexpr DWORD kMaxPiece = 8000; // older consoles take 64 KB at once
    auto cchLeft = static_cast<DWORD>(::lstrlenW(pszLines));
    while (cchLeft) {
        DWORD cchDone = 0;
        if (!::WriteConsoleW(console.Get(), pszLines, std::min(cchLeft, kMaxPiece), &cchDone,
                             nullptr) ||
            !cchDone)
            return false;
        pszLines += cchDone;
        cchLeft -= cchDone;
    }
    return true;
}

/// False if there is neither a redirection nor a console.
bool WriteOut(const wchar_t* pszText, bool bFailed) {
    HeapArray<wchar_t> lines = MakeLines(pszText);
    if (!lines.IsReady()) return false;
    StandardHandle output(STD_OUTPUT_HANDLE), error(STD_ERROR_HANDLE);
    ParentConsole console; // behind them: it goes before they are put back
    HANDLE h = bFailed ? error.FindRedirected() : nullptr;
    if (!h) h = output.FindRedirected();
    if (h) {
        WriteUtf8(h, lines.Get());
        return true;
    }
    return WriteToConsole(lines.Get());
}
} // namespace

void TellUser(const wchar_t* pszText, bool bFailed, bool bWarning) {
    if (WriteOut(pszText, bFailed)) return;
    Msg(nullptr, bWarning ? MB_ICONWARNING : MB_ICONINFORMATION, pszText);
}
