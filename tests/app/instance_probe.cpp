// A program of which one is enough: instance_probe.exe GLOBAL NAME [ID]. Prints 1 if it is the
// first of that name, else 0, and keeps the mark until its input ends. With ID the first has a
// minimised window that answers for it, and prints the handle; the second asks for that window, and
// prints the one it found.
#include "app/instance/single_instance.h"

#include <cstdio>
#include <cstdlib>

namespace {
unsigned nInstanceId;

LRESULT CALLBACK MainProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (LRESULT nDone = OnActivatePreviousInstance(nInstanceId, hwnd, uMsg, wParam, lParam))
        return nDone;
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

HWND MakeMainWindow() {
    WNDCLASSW wc{};
    wc.lpfnWndProc = &MainProc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = L"InstanceProbe";
    ::RegisterClassW(&wc);
    return ::CreateWindowExW(0, wc.lpszClassName, L"probe",
                             WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_MINIMIZE, 50, 50, 200, 100,
                             nullptr, nullptr, wc.hInstance, nullptr);
}

DWORD WINAPI WaitForEndOfInput(void* pMainThread) {
    while (std::getchar() != EOF) {
    }
    ::PostThreadMessageW(*static_cast<DWORD*>(pMainThread), WM_QUIT, 0, 0);
    return 0;
}
} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 3 && argc != 4) return 2;
    DWORD nThread = ::GetCurrentThreadId();
    MSG msg;
    ::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE); // makes the queue
    SingleInstanceXP instance;
    int bFirst = instance.IsFirstInstance(_wtoi(argv[1]), argv[2]);
    HWND hwnd = nullptr;
    if (argc == 4) {
        nInstanceId = static_cast<unsigned>(wcstoul(argv[3], nullptr, 10));
        hwnd = bFirst ? MakeMainWindow() : ActivatePreviousInstance(nInstanceId);
    }
    std::printf("%d %llu\n", bFirst,
                static_cast<unsigned long long>(reinterpret_cast<UINT_PTR>(hwnd)));
    std::fflush(stdout);
    ::CloseHandle(::CreateThread(nullptr, 0, &WaitForEndOfInput, &nThread, 0, nullptr));
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}
