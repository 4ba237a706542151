#pragma once
#include "progress/progress.h"
#include "progress/progress_dlg.h"
#include "progress/race_watch.h"
#include "runtime/system/runtime_func.h"
#include "support/gui_objects.h"
#include "support/heap_count.h"
#include "support/message_box_driver.h"
#include "support/replace_import.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>
#include <tlhelp32.h>
#include <winternl.h>
#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_DialogBoxParamW;
extern "C" FARPROC __imp_GetTickCount;
extern "C" FARPROC __imp_MsgWaitForMultipleObjects;

// What the template has.
constexpr int kProgressTemplate = 28000;
constexpr int kLineIds[] = {28003, 28004, 28005, 28006};
constexpr int kBarId = 28007;
constexpr int kFrameId = 28010;
constexpr const wchar_t* kTemplateTitle = L"Processing...";
constexpr const wchar_t* kQuestion = L"Are you sure you want to cancel this operation?";

/// A handle whose dialog can be brought up at any moment.
struct OpenProgress : Progress {
    using Progress::Progress;
    using Progress::StartThread;
};

/// The clock of the program, so many milliseconds ahead of the true one.
class AheadClock {
  public:
    AheadClock() {
        nAhead = 0;
        pfnTrue = replaced.Original<DWORD WINAPI()>();
    }
    void Advance(DWORD nMs) { nAhead += nMs; }

  private:
    static DWORD WINAPI Read() { return (pfnTrue ? pfnTrue() : 0) + nAhead; }
    static inline std::atomic<DWORD> nAhead{0};
    static inline DWORD(WINAPI* pfnTrue)() = nullptr;
    ReplaceImport replaced{__imp_GetTickCount, &Read};
};

/// What a test does around the platform's call that runs a progress dialog, on the dialog's thread.
class DialogRun {
  public:
    DialogRun() {
        pCurrent = this;
        pfnTrue = replaced.Original<Fn>();
    }
    ~DialogRun() { pCurrent = nullptr; }

    std::function<void()> fnBefore; // the dialog's thread runs, there is no window yet
    std::function<void()> fnAfter;  // the dialog has ended
    int nOtherTemplate = 0;         // in place of the one that is asked for
    std::atomic<int> nRuns{0};
    HINSTANCE hinst = nullptr; // as last asked for
    int nTemplate = 0;
    HWND hwndOwner = nullptr;
    DLGPROC pfnProc = nullptr;
    int nPriority = 0;
    INT_PTR nResult = 0;

  private:
    using Fn = INT_PTR WINAPI(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM);
    static INT_PTR WINAPI Run(HINSTANCE hinstRun, LPCWSTR pszName, HWND hwndRunOwner, DLGPROC pfn,
                              LPARAM lParam) {
        DialogRun* p = pCurrent;
        p->hinst = hinstRun;
        p->nTemplate = IS_INTRESOURCE(pszName) ? static_cast<int>(LOWORD(pszName)) : -1;
        p->hwndOwner = hwndRunOwner;
        p->pfnProc = pfn;
        p->nPriority = ::GetThreadPriority(::GetCurrentThread());
        if (p->fnBefore) p->fnBefore();
        if (p->nOtherTemplate) pszName = MAKEINTRESOURCEW(p->nOtherTemplate);
        INT_PTR nEnd = pfnTrue(hinstRun, pszName, hwndRunOwner, pfn, lParam);
        p->nResult = nEnd;
        if (p->fnAfter) p->fnAfter();
        ++p->nRuns;
        return nEnd;
    }
    static inline DialogRun* pCurrent = nullptr;
    static inline Fn* pfnTrue = nullptr;
    ReplaceImport replaced{__imp_DialogBoxParamW, &Run};
};

/// Waits of 5 seconds end after a few milliseconds; counts them.
class ShortWaits {
  public:
    ShortWaits() {
        nWaits = 0;
        pfnTrue = replaced.Original<Fn>();
    }
    int Count() const { return nWaits; }

  private:
    using Fn = DWORD WINAPI(DWORD, const HANDLE*, BOOL, DWORD, DWORD);
    static DWORD WINAPI Wait(DWORD n, const HANDLE* p, BOOL bAll, DWORD nMs, DWORD dwMask) {
        constexpr DWORD kShortMs = 20;
        if (nMs == 5000) {
            ++nWaits;
            nMs = kShortMs;
        }
        return pfnTrue(n, p, bAll, nMs, dwMask);
    }
    static inline std::atomic<int> nWaits{0};
    static inline Fn* pfnTrue = nullptr;
    ReplaceImport replaced{__imp_MsgWaitForMultipleObjects, &Wait};
};

/// A message that a window of the dialog got from outside its own queue.
struct SeenMessage {
    int nId; // the control's; 0 for the dialog
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    std::wstring strText; // of WM_SETTEXT

    bool operator==(const SeenMessage& other) const {
        return nId == other.nId && uMsg == other.uMsg && wParam == other.wParam &&
               (uMsg == WM_SETTEXT ? strText == other.strText : lParam == other.lParam);
    }
};

inline void PrintTo(const SeenMessage& m, std::ostream* p) {
    *p << "{" << m.nId << ", msg " << m.uMsg << ", " << m.wParam << ", " << m.lParam << ", \""
       << std::string(m.strText.begin(), m.strText.end()) << "\"}";
}

/// Records texts, and what the bar is told, of the dialogs that run meanwhile.
class MessageLog {
  public:
    explicit MessageLog(DialogRun& run) {
        pCurrent = this;
        run.fnBefore = [] {
            hHook =
                ::SetWindowsHookExW(WH_CALLWNDPROC, &OnMessage, nullptr, ::GetCurrentThreadId());
        };
        run.fnAfter = [] { ::UnhookWindowsHookEx(hHook); };
    }
    ~MessageLog() { pCurrent = nullptr; }

    std::vector<SeenMessage> Get() {
        std::lock_guard lock(mutex);
        return seen;
    }
    void Clear() {
        std::lock_guard lock(mutex);
        seen.clear();
    }

  private:
    static bool IsOfInterest(UINT uMsg) {
        return uMsg == WM_SETTEXT || (uMsg >= PBM_SETRANGE && uMsg <= PBM_SETRANGE32);
    }
    static LRESULT CALLBACK OnMessage(int nCode, WPARAM wParam, LPARAM lParam) {
        auto* p = reinterpret_cast<const CWPSTRUCT*>(lParam);
        if (nCode >= 0 && pCurrent && IsOfInterest(p->message)) {
            bool bChild = (::GetWindowLongW(p->hwnd, GWL_STYLE) & WS_CHILD) != 0;
            int nId = bChild ? ::GetDlgCtrlID(p->hwnd) : 0;
            if (p->message == WM_SETTEXT || nId == kBarId) {
                SeenMessage m{nId, p->message, p->wParam, p->lParam, L""};
                if (m.uMsg == WM_SETTEXT && m.lParam)
                    m.strText = reinterpret_cast<const wchar_t*>(m.lParam);
                std::lock_guard lock(pCurrent->mutex);
                pCurrent->seen.push_back(m);
            }
        }
        return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
    }
    static inline MessageLog* pCurrent = nullptr;
    static inline HHOOK hHook = nullptr;
    std::mutex mutex;
    std::vector<SeenMessage> seen;
};

inline std::wstring TextOf(HWND hwnd) {
    wchar_t sz[1100] = L"";
    ::SendMessageW(hwnd, WM_GETTEXT, std::size(sz), reinterpret_cast<LPARAM>(sz));
    return sz;
}
inline std::wstring LineOf(HWND hwndDlg, int nLine) {
    return TextOf(::GetDlgItem(hwndDlg, kLineIds[nLine]));
}
inline int BarPos(HWND hwndDlg) {
    return static_cast<int>(::SendDlgItemMessageW(hwndDlg, kBarId, PBM_GETPOS, 0, 0));
}
inline int BarEnd(HWND hwndDlg, bool bLow) {
    return static_cast<int>(::SendDlgItemMessageW(hwndDlg, kBarId, PBM_GETRANGE, bLow, 0));
}
inline int StyleOf(HWND hwnd) { return ::GetWindowLongW(hwnd, GWL_STYLE); }
/// Of itself, whatever its dialog is.
inline bool IsShown(HWND hwnd) { return (StyleOf(hwnd) & WS_VISIBLE) != 0; }

/// The progress dialogs of this process that are there, shown or not.
inline int CountProgressDialogs() {
    int n = 0;
    for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", nullptr));) {
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwnd, &dwProcess);
        if (dwProcess == ::GetCurrentProcessId() && ::GetDlgItem(hwnd, kBarId)) ++n;
    }
    return n;
}

inline HWND FocusOf(HWND hwndDlg) {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(hwndDlg, nullptr), &info);
    return info.hwndFocus;
}

/// As a click of the mouse.
inline void PressCancel(HWND hwndDlg) {
    ::PostMessageW(::GetDlgItem(hwndDlg, IDCANCEL), BM_CLICK, 0, 0);
}

inline HWND FindQuestion() { return FindMessageBox(::GetCurrentProcessId(), L"Tessaly"); }

/// Answers the next question, while this thread's windows go on living; true when it has gone.
inline bool AnswerQuestion(int nButton) {
    constexpr DWORD kPressAgainMs = 500; // a box that is still coming up may lose the first press
    HWND hwndBox = nullptr;
    if (!PumpUntil([&] { return (hwndBox = FindQuestion()) != nullptr; })) return false;
    return PumpUntil([&] {
        ::PostMessageW(hwndBox, WM_COMMAND, static_cast<WPARAM>(nButton), 0);
        return PumpUntil([&] { return !::IsWindow(hwndBox); }, kPressAgainMs);
    });
}

inline std::vector<DWORD> ThreadIds() {
    HANDLE h = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    std::vector<DWORD> ids;
    for (BOOL b = ::Thread32First(h, &entry); b; b = ::Thread32Next(h, &entry)) {
        if (entry.th32OwnerProcessID == ::GetCurrentProcessId()) ids.push_back(entry.th32ThreadID);
    }
    ::CloseHandle(h);
    return ids;
}
inline int CountThreads() { return static_cast<int>(ThreadIds().size()); }

/// The handles of this process. (GetProcessHandleCount answers 0 on the test platform.)
inline int CountHandles() {
    struct Entry {
        USHORT uProcess, uCreator;
        UCHAR uType, uFlags;
        USHORT uHandle;
        void* pObject;
        ULONG dwAccess;
    };
    constexpr auto kHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    std::vector<unsigned char> buffer(1 << 18);
    ULONG cb = 0;
    static auto* pfnQuery = FindModuleFunc<decltype(::NtQuerySystemInformation)>(
        ::GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    while (pfnQuery(kHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &cb) <
           0) {
        if (buffer.size() > (1u << 26)) return -1;
        buffer.resize(buffer.size() * 2);
    }
    auto nCount = *reinterpret_cast<const ULONG*>(buffer.data());
    auto* p = reinterpret_cast<const Entry*>(buffer.data() + sizeof(void*));
    return static_cast<int>(std::count_if(p, p + nCount, [](const Entry& entry) {
        return entry.uProcess == static_cast<USHORT>(::GetCurrentProcessId());
    }));
}

/// What a test may leave behind: nothing of these.
struct Belongings {
    int nThreads = CountThreads();
    int nHandles = CountHandles();
    int nGdi = CountGdiObjects();
    int nUser = CountUserObjects();
    int nDialogs = CountProgressDialogs();
    long nBlocks = CountLiveBlocks();

    bool operator<=(const Belongings& other) const {
        return nThreads <= other.nThreads && nHandles <= other.nHandles && nGdi <= other.nGdi &&
               nUser <= other.nUser && nDialogs <= other.nDialogs;
    }
};
inline std::ostream& operator<<(std::ostream& out, const Belongings& b) {
    return out << b.nThreads << " threads, " << b.nHandles << " handles, " << b.nGdi
               << " GDI objects, " << b.nUser << " user objects, " << b.nDialogs << " dialogs";
}
/// True when no more is there than before. Threads that have returned take a moment to go.
inline bool NothingIsLeft(const Belongings& before) {
    return WaitUntil([&] { return Belongings() <= before; });
}

/// Each dialog of a test comes up as the first one of its process.
class ProgressDialogTest : public testing::Test {
  protected:
    void SetUp() override { ProgressDlg::wpResizing = MyWindowPlacement(); }
    /// Makes the platform load what it needs once, before anything is counted.
    static void WarmUp() { Progress progress; }
    void TearDown() override { EXPECT_EQ(CountProgressDialogs(), 0); }

  private:
    HangWatch watch{60};
};
