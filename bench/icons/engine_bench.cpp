// What the engine's work on 999 icons costs beside the bare list-view messages, and what the hook
// costs beside one that does nothing. `bench_engine`; starts a second process of itself that owns
// the list view.

#include "../measure.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/agent/icon_record.h"
#include "list_view_owner.h"

#include <commctrl.h>
#include <string>

namespace {
HWND StartOwner(HANDLE& hProcess) {
    wchar_t szPath[MAX_PATH];
    ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    std::wstring strCommand = L"\"" + std::wstring(szPath) + L"\" --owner";
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    if (!::CreateProcessW(szPath, strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &si, &pi)) {
        return nullptr;
    }
    ::CloseHandle(pi.hThread);
    hProcess = pi.hProcess;
    for (int i = 0; i < 500; ++i) {
        HWND hwnd = ::FindWindowW(kOwnerClass, nullptr);
        if (hwnd && ::IsWindowVisible(hwnd)) return hwnd;
        ::Sleep(20);
    }
    return nullptr;
}

/// Medians of what the owner itself measured, in turn.
Comparison CompareInOwner(HWND hwnd, int nTurns, UINT uFirst, UINT uSecond) {
    auto turnOf = [hwnd](UINT uMsg) {
        return static_cast<double>(::SendMessageW(hwnd, uMsg, 0, 0)) / 1e6;
    };
    return CompareTimed(
        nTurns, [&] { return turnOf(uFirst); }, [&] { return turnOf(uSecond); });
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

/// The two procedures themselves, without the queue, which costs far more than either.
void CallMany(HOOKPROC pfnHook) {
    MSG msg{};
    msg.message = WM_MOUSEMOVE;
    for (int i = 0; i < 10'000; ++i) pfnHook(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg));
}
} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--owner") return RunOwner();
    HANDLE hProcess = nullptr;
    HWND hwnd = StartOwner(hProcess);
    if (!hwnd) {
        std::puts("the process that owns the list view did not start");
        return 2;
    }
    HWND hwndList = ::GetWindow(hwnd, GW_CHILD);
    bool bOk = true;
    bOk &= Report("capture of 999 icons / bare messages",
                  CompareInOwner(hwnd, 41, kMsgCapture, kMsgBareRead), 1.15, true);
    bOk &= Report("restore of 999 icons / capture and bare moves",
                  CompareInOwner(hwnd, 41, kMsgRestore, kMsgBareRestore), 1.25, true);
    bOk &= Report("reading from outside / capture in the owner's process",
                  {Compare(
                       5, [&] { ReadFromOutside(hwndList, hProcess); }, [] {})
                       .dFirst,
                   CompareInOwner(hwnd, 21, kMsgCapture, kMsgCapture).dFirst, 0},
                  8, false);
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    ::WaitForSingleObject(hProcess, 5000);

    GetDesktopSharedData().nCompanyMsg = ::RegisterWindowMessageW(L"OrvantaMessage");
    bOk &= Report("foreign message through the hook / through an empty hook",
                  Compare(
                      41, [] { PumpThrough(&DesktopHookProc); }, [] { PumpThrough(&EmptyHook); }),
                  1.05, true);
    Comparison bare = Compare(
        41, [] { CallMany(&DesktopHookProc); }, [] { CallMany(&EmptyHook); });
    bOk &= Report("10,000 calls of the hook / of an empty hook", bare, 1.05, true);
    return bOk ? 0 : 1;
}
