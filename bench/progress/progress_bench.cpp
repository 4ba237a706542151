// What telling one's progress costs the work: below a step of the bar, before the dialog is due,
// and with the dialog up; and how long the dialog takes from when it is due to its first paint.
// `bench_progress`.

#include "../measure.h"
#include "app/start/library_start.h"
#include "progress/progress.h"
#include "progress/progress_ex.h"
#include "resources/resource_ids.h"
#include "runtime/base/digest.h"
#include "runtime/base/ownership.h"
#include "support/replace_import.h"
#include "support/wait_until.h"

#include <commctrl.h>
#include <atomic>
#include <cstdlib>

extern "C" FARPROC __imp_DialogBoxParamW;

namespace {
void Check(bool bTrue, const char* pszWhat) {
    if (bTrue) return;
    std::printf("%s\n", pszWhat);
    std::exit(1);
}

/// Whatever lies there may have changed: what was read before must be read anew.
template <class T>
T* Hidden(T* p) {
    asm volatile("" : "+r"(p) : : "memory");
    return p;
}

// Below the divisor.

struct NoBar : ProgressEx {
    void DoStepIt() override {}
    void DoSetPos(int) override {}
    void DoSetRange(int, int) override {}
    int ProcessAllMessages() override { return 1; }
};

bool MeasureModelStep() {
    constexpr int kTurns = 21, kCalls = 10'000'000;
    constexpr double kLimitNs = 3;
    NoBar bar;
    bar.SetRange64(0, 0x7FFFFFFFFFFFFFFF);
    volatile int nCount = 0;
    int nMoved = 0;
    auto Step = [&] {
        for (int i = 0; i < kCalls; ++i) nMoved += Hidden(&bar)->StepIt();
    };
    auto Increment = [&] {
        for (int i = 0; i < kCalls; ++i) nCount = nCount + 1;
    };
    Comparison times = Compare(kTurns, Step, Increment);
    Check(nMoved == 0, "the bar moved");
    double dNs = times.dFirst / kCalls * 1e9;
    bool bOk = dNs <= kLimitNs;
    std::printf("%-58s %8.3f ns / %8.3f ns (at most %.2f ns a call) spread %2.0f%% %s\n",
                "ProgressEx::StepIt below the divisor / volatile increment", dNs,
                times.dSecond / kCalls * 1e9, kLimitNs, times.dSpread * 100, bOk ? "ok" : "MISSED");
    return bOk;
}

// Before the dialog is due.

bool MeasureWaitingStep() {
    constexpr int kTurns = 21, kCalls = 2'000'000;
    constexpr DWORD kNeverMs = 0x40000000;
    Progress progress(nullptr, kNeverMs, 0, 4, 1);
    volatile __int64 qnCount = 0;
    volatile DWORD dwLast = 0;
    auto Step = [&] {
        for (int i = 0; i < kCalls; ++i) Hidden(&progress)->StepIt();
    };
    auto Barely = [&] {
        for (int i = 0; i < kCalls; ++i) {
            dwLast = ::GetTickCount();
            qnCount = qnCount + 1;
        }
    };
    bool bOk = Report("2,000,000 x Progress::StepIt while waiting / GetTickCount and ++",
                      Compare(kTurns, Step, Barely), 1.3, true);
    Check(progress.GetDlgHWND() == nullptr, "the dialog came up");
    return bOk;
}

// With the dialog. A step of the work is a file that is opened, read and digested. Of the ten
// million steps so many are taken that the bar moves some hundred times, in pieces with and without
// that take turns; a piece is a move of the bar.

constexpr int kJobSteps = 10'000'000;

class Job {
  public:
    explicit Job(DWORD cbFile) : block(cbFile, 'x') {
        wchar_t szFolder[MAX_PATH];
        Check(::GetTempPathW(MAX_PATH, szFolder) != 0 &&
                  ::GetTempFileNameW(szFolder, L"prg", 0, szPath) != 0,
              "no place for a file");
        DWORD cb = 0;
        OwnedHandle file(
            ::CreateFileW(szPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        Check(::WriteFile(file.Get(), block.data(), cbFile, &cb, nullptr) && cb == cbFile,
              "the file could not be written");
    }
    ~Job() { ::DeleteFileW(szPath); }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    void Step() {
        DWORD cb = 0;
        OwnedHandle file(::CreateFileW(szPath, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
        Check(::ReadFile(file.Get(), block.data(), static_cast<DWORD>(block.size()), &cb, nullptr),
              "the file could not be read");
        SHA1_Calc(digest, block.data(), cb);
    }

  private:
    std::vector<char> block;
    unsigned char digest[kSha1Size] = {};
    wchar_t szPath[MAX_PATH];
};

Comparison CompareShownStep(DWORD cbFile) {
    constexpr int kTurns = 400, kPiece = 153; // a move of the bar in each
    Job job(cbFile);
    Progress progress;
    Check(progress.GetDlgHWND() != nullptr, "no dialog came up");
    progress.SetRange(0, kJobSteps);
    auto With = [&] {
        for (int i = 0; i < kPiece; ++i) {
            job.Step();
            progress.StepIt();
        }
    };
    auto Without = [&] {
        for (int i = 0; i < kPiece; ++i) job.Step();
    };
    Comparison times = Compare(kTurns, With, Without);
    int nMoved = static_cast<int>(
        ::SendDlgItemMessageW(progress.GetDlgHWND(), IDC_PROGRESS_BAR, PBM_GETPOS, 0, 0));
    Check(nMoved == kTurns + 1, "the bar is not where it should be");
    return times;
}

bool MeasureShownStep() {
    return Report("job of 10,000,000 files of 4 KB with a dialog / without", CompareShownStep(4096),
                  1.02, true);
}

// The first paint, looked for on the dialog's own thread: painting is either taken from the queue
// or sent.

std::atomic<__int64> qnPainted; // of the performance counter

__int64 Now() {
    LARGE_INTEGER li;
    ::QueryPerformanceCounter(&li);
    return li.QuadPart;
}

void SeePaint(UINT uMsg) {
    __int64 qnNone = 0;
    if (uMsg == WM_PAINT) qnPainted.compare_exchange_strong(qnNone, Now());
}

LRESULT CALLBACK SeePosted(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode >= 0) SeePaint(reinterpret_cast<const MSG*>(lParam)->message);
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

LRESULT CALLBACK SeeSent(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode >= 0) SeePaint(reinterpret_cast<const CWPSTRUCT*>(lParam)->message);
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

INT_PTR WINAPI RunWatched(HINSTANCE hinst, LPCWSTR pszTemplate, HWND hwndOwner, DLGPROC pfnProc,
                          LPARAM lParam);

struct PaintWatch {
    ReplaceImport replaced{__imp_DialogBoxParamW, &RunWatched};
};
PaintWatch* pWatch = nullptr;

INT_PTR WINAPI RunWatched(HINSTANCE hinst, LPCWSTR pszTemplate, HWND hwndOwner, DLGPROC pfnProc,
                          LPARAM lParam) {
    DWORD dwThread = ::GetCurrentThreadId();
    HHOOK hhookPosted = ::SetWindowsHookExW(WH_GETMESSAGE, &SeePosted, nullptr, dwThread);
    HHOOK hhookSent = ::SetWindowsHookExW(WH_CALLWNDPROC, &SeeSent, nullptr, dwThread);
    auto* pfn = pWatch->replaced.Original<decltype(::DialogBoxParamW)>();
    INT_PTR nResult = pfn(hinst, pszTemplate, hwndOwner, pfnProc, lParam);
    ::UnhookWindowsHookEx(hhookPosted);
    ::UnhookWindowsHookEx(hhookSent);
    return nResult;
}

void MeasureFirstPaint() {
    constexpr int kTurns = 21;
    PaintWatch watch;
    pWatch = &watch;
    std::vector<double> timesPaint, timesCall;
    LARGE_INTEGER liPerSecond;
    ::QueryPerformanceFrequency(&liPerSecond);
    auto Ms = [&](__int64 qn) {
        return static_cast<double>(qn) * 1e3 / static_cast<double>(liPerSecond.QuadPart);
    };
    for (int i = 0; i <= kTurns; ++i) {
        DWORD dwStart = ::GetTickCount();
        Progress progress(nullptr, 1, 0, 4, 1);
        progress.SetRange(0, 100);
        // The count goes on in strides; from its second one on the dialog is due.
        Check(WaitUntil([&] { return ::GetTickCount() - dwStart > 1; }), "the clock stands still");
        qnPainted = 0;
        __int64 qnDue = Now();
        progress.StepIt();
        __int64 qnBack = Now();
        Check(WaitUntil([] { return qnPainted != 0; }), "the dialog was not painted");
        if (i == 0) continue;
        timesPaint.push_back(Ms(qnPainted - qnDue));
        timesCall.push_back(Ms(qnBack - qnDue));
    }
    std::sort(timesPaint.begin(), timesPaint.end());
    std::sort(timesCall.begin(), timesCall.end());
    std::printf("%-58s %8.3f ms, %.3f ms to the call's return (not limited)\n",
                "from the call that is due to the dialog's first paint", timesPaint[kTurns / 2],
                timesCall[kTurns / 2]);
}
} // namespace

int main() {
    LibraryStart(::GetModuleHandleW(nullptr));
    bool bOk = MeasureModelStep();
    bOk &= MeasureWaitingStep();
    bOk &= MeasureShownStep();
    MeasureFirstPaint();
    LibraryStop();
    return bOk ? 0 : 1;
}
