// What capture and restore of 999 icons cost in the shell beside the bare list-view messages, and
// what the hook costs beside one that does nothing. `bench_engine`; starts a second process of
// itself that owns the list view.

#include "../measure.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/agent/icon_record.h"
#include "list_view_owner.h"
#include "support/replace_import.h"

#include <commctrl.h>
#include <cstdlib>
#include <string>

extern "C" FARPROC __imp_CallNextHookEx; // where the import's address lies

namespace {
constexpr UINT kMsgCapture = kMsgOwnWork;         // CaptureIcons of all items
constexpr UINT kMsgRestore = kMsgOwnWork + 1;     // RestoreFrom with records of all items
constexpr UINT kMsgBareRestore = kMsgOwnWork + 2; // the list-view messages of it

std::vector<IconRecord> CaptureAll(HWND hwndList) {
    std::vector<IconRecord> records(kIcons);
    CaptureIcons(hwndList, records.data(), kIcons);
    return records;
}

LRESULT DoOwnWork(HWND hwndList, UINT uMsg, WPARAM, LPARAM) {
    static std::vector<IconRecord> records = CaptureAll(hwndList), scratch = records;
    switch (uMsg) {
    case kMsgCapture:
        return Microseconds([hwndList] { CaptureIcons(hwndList, scratch.data(), kIcons); });
    case kMsgRestore:
        return TimeRestore(hwndList, [hwndList] {
            COPYDATASTRUCT data{kIcons, static_cast<DWORD>(kIcons * sizeof(IconRecord)),
                                records.data()};
            RestoreFrom(hwndList, data);
        });
    case kMsgBareRestore: return TimeRestore(hwndList, [hwndList] { RestoreBare(hwndList); });
    }
    return 0;
}

/// A turn that the owner itself measures, in seconds.
double TurnInOwner(HWND hwnd, UINT uMsg) {
    LRESULT nMicroseconds = ::SendMessageW(hwnd, uMsg, 0, 0);
    if (nMicroseconds < 0) {
        std::puts("the restore did not put the icons back");
        std::exit(1);
    }
    return static_cast<double>(nMicroseconds) / 1e6;
}

/// Reads the list from this process, item by item, through memory allocated in the owner's.
void ReadFromOutside(HWND hwndList, HANDLE hProcess) {
    struct Remote {
        LVITEMW item;
        POINT pt;
        wchar_t szText[260];
    };
    auto* pRemote = static_cast<Remote*>(
        ::VirtualAllocEx(hProcess, nullptr, sizeof(Remote), MEM_COMMIT, PAGE_READWRITE));
    std::vector<IconRecord> out(kIcons);
    for (int i = 0; i < kIcons; ++i) {
        Remote local{};
        local.item.mask = LVIF_TEXT;
        local.item.iItem = i;
        local.item.pszText = pRemote->szText;
        local.item.cchTextMax = 260;
        ::WriteProcessMemory(hProcess, pRemote, &local.item, sizeof(local.item), nullptr);
        ::SendMessageW(hwndList, LVM_GETITEMPOSITION, i, reinterpret_cast<LPARAM>(&pRemote->pt));
        ::SendMessageW(hwndList, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&pRemote->item));
        ::ReadProcessMemory(hProcess, pRemote, &local, sizeof(local), nullptr);
        out[i] = {static_cast<unsigned>(i), local.pt, static_cast<unsigned>(wcslen(local.szText)),
                  MakeNameKey(local.szText, 0)};
    }
    ::VirtualFreeEx(hProcess, pRemote, 0, MEM_RELEASE);
}

LRESULT CALLBACK EmptyHook(int nCode, WPARAM wParam, LPARAM lParam) {
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

/// Stands for the platform's function, which costs far more than either procedure.
LRESULT CALLBACK NoNextHook(HHOOK, int, WPARAM, LPARAM) { return 0; }

/// Sends messages of this thread through its queue, with that hook on it.
void PumpThrough(HOOKPROC pfnHook) {
    HHOOK hhook = ::SetWindowsHookExW(WH_GETMESSAGE, pfnHook, nullptr, ::GetCurrentThreadId());
    MSG msg;
    for (int i = 0; i < 500; ++i) {
        ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
        ::GetMessageW(&msg, nullptr, 0, 0);
    }
    ::UnhookWindowsHookEx(hhook);
}

constexpr int kCalls = 10'000;

/// The procedure called directly, without the queue.
void CallMany(HOOKPROC pfnHook) {
    MSG msg{};
    msg.message = WM_MOUSEMOVE;
    for (int i = 0; i < kCalls; ++i) pfnHook(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg));
}

Comparison CompareCalls() {
    return Compare(
        41, [] { CallMany(&DesktopHookProc); }, [] { CallMany(&EmptyHook); });
}

/// What a foreign message costs in the procedure itself, where a ratio to next to nothing says
/// nothing.
bool ReportProcedureAlone() {
    ReplaceImport replaced(__imp_CallNextHookEx, &NoNextHook);
    constexpr double kLimitNs = 20;
    Comparison c = CompareCalls();
    double dOurs = c.dFirst / kCalls * 1e9, dEmpty = c.dSecond / kCalls * 1e9;
    bool bOk = dOurs - dEmpty <= kLimitNs;
    std::printf("%-58s %8.2f ns / %8.2f ns (at most %.0f ns more) spread %2.0f%% %s\n",
                "hook's procedure alone / empty one, without the next hook", dOurs, dEmpty,
                kLimitNs, c.dSpread * 100, bOk ? "ok" : "MISSED");
    return bOk;
}

bool MeasureCapture() {
    HANDLE hProcess = nullptr;
    HWND hwnd = StartOwner(hProcess);
    if (!hwnd) {
        std::puts("the process that owns the list view did not start");
        return false;
    }
    HWND hwndList = ListOf(hwnd);
    // On one processor an icon's two messages take 670 ns; the one block of MD5 that its name needs
    // takes 80, and no order of its steps makes it shorter.
    bool bOk = Report("capture of 999 icons / bare messages",
                      CompareTimed(
                          41, [&] { return TurnInOwner(hwnd, kMsgCapture); },
                          [&] { return TurnInOwner(hwnd, kMsgBareRead); }),
                      1.20, true);
    bOk &= Report("restore of 999 icons / bare messages",
                  CompareTimed(
                      41, [&] { return TurnInOwner(hwnd, kMsgRestore); },
                      [&] { return TurnInOwner(hwnd, kMsgBareRestore); }),
                  1.20, true);
    bOk &= Report("reading from outside / capture in the owner's process",
                  CompareTimed(
                      15, [&] { return Seconds([&] { ReadFromOutside(hwndList, hProcess); }); },
                      [&] { return TurnInOwner(hwnd, kMsgCapture); }),
                  8, false);
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    ::WaitForSingleObject(hProcess, 5000);
    return bOk;
}
} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--owner") return RunOwner(&DoOwnWork);
    bool bOk = MeasureCapture();
    GetDesktopSharedData().nCompanyMsg = ::RegisterWindowMessageW(L"OrvantaMessage");
    bOk &= Report("foreign message through the hook / through an empty hook",
                  Compare(
                      41, [] { PumpThrough(&DesktopHookProc); }, [] { PumpThrough(&EmptyHook); }),
                  1.05, true);
    bOk &= Report("10,000 calls of the hook / of an empty hook", CompareCalls(), 1.05, true);
    bOk &= ReportProcedureAlone();
    return bOk ? 0 : 1;
}
