#include "progress/race_watch.h"

#include <windows.h>
#include <dbghelp.h>
#include <tlhelp32.h>
#include <cstdio>
#include <vector>

namespace {
/// What is used of dbghelp.dll, loaded when it is needed.
struct SymbolHelp {
    HMODULE hmod = ::LoadLibraryW(L"dbghelp.dll");
    template <class Fn>
    Fn* Get(const char* pszName) const {
        return reinterpret_cast<Fn*>(reinterpret_cast<void*>(::GetProcAddress(hmod, pszName)));
    }
    decltype(::SymSetOptions)* pfnOptions = Get<decltype(::SymSetOptions)>("SymSetOptions");
    decltype(::SymInitialize)* pfnInitialize = Get<decltype(::SymInitialize)>("SymInitialize");
    decltype(::StackWalk64)* pfnWalk = Get<decltype(::StackWalk64)>("StackWalk64");
    decltype(::SymFunctionTableAccess64)* pfnTable =
        Get<decltype(::SymFunctionTableAccess64)>("SymFunctionTableAccess64");
    decltype(::SymGetModuleBase64)* pfnBase =
        Get<decltype(::SymGetModuleBase64)>("SymGetModuleBase64");
    decltype(::SymFromAddr)* pfnName = Get<decltype(::SymFromAddr)>("SymFromAddr");
    bool IsReady() const {
        return pfnOptions && pfnInitialize && pfnWalk && pfnTable && pfnBase && pfnName;
    }
};

std::string NameOf(const SymbolHelp& help, DWORD64 qwAddress) {
    constexpr ULONG kLongest = 200;
    alignas(SYMBOL_INFO) char ab[sizeof(SYMBOL_INFO) + kLongest] = {};
    auto* pSymbol = reinterpret_cast<SYMBOL_INFO*>(ab);
    pSymbol->SizeOfStruct = sizeof(SYMBOL_INFO);
    pSymbol->MaxNameLen = kLongest;
    DWORD64 qwOffset = 0;
    char szFile[MAX_PATH] = "?";
    auto qwBase = help.pfnBase(::GetCurrentProcess(), qwAddress);
    ::GetModuleFileNameA(reinterpret_cast<HMODULE>(qwBase), szFile, MAX_PATH);
    const char* pszFile = strrchr(szFile, '\\');
    char szLine[600];
    bool bNamed = help.pfnName(::GetCurrentProcess(), qwAddress, &qwOffset, pSymbol) != 0;
    snprintf(szLine, sizeof(szLine), "    %s+0x%llx %s\n", pszFile ? pszFile + 1 : szFile,
             qwAddress - qwBase, bNamed ? pSymbol->Name : "");
    return szLine;
}

/// Addresses first: names need locks that a suspended thread may hold.
std::vector<DWORD64> AddressesOf(const SymbolHelp& help, HANDLE hThread) {
    constexpr size_t kDeepest = 60;
    std::vector<DWORD64> addresses;
    addresses.reserve(kDeepest);
    CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    if (::SuspendThread(hThread) == static_cast<DWORD>(-1)) return addresses;
    if (::GetThreadContext(hThread, &context)) {
        STACKFRAME64 frame{};
        frame.AddrPC = {context.Rip, 0, AddrModeFlat};
        frame.AddrStack = {context.Rsp, 0, AddrModeFlat};
        frame.AddrFrame = {context.Rbp, 0, AddrModeFlat};
        while (addresses.size() < kDeepest &&
               help.pfnWalk(IMAGE_FILE_MACHINE_AMD64, ::GetCurrentProcess(), hThread, &frame,
                            &context, nullptr, help.pfnTable, help.pfnBase, nullptr) &&
               frame.AddrPC.Offset) {
            addresses.push_back(frame.AddrPC.Offset);
        }
    }
    ::ResumeThread(hThread);
    return addresses;
}
} // namespace

std::string TellStacks() {
    const SymbolHelp help;
    if (!help.IsReady()) return "no dbghelp.dll\n";
    help.pfnOptions(SYMOPT_DEFERRED_LOADS | SYMOPT_UNDNAME);
    help.pfnInitialize(::GetCurrentProcess(), nullptr, TRUE);
    std::string str;
    HANDLE hThreads = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL b = ::Thread32First(hThreads, &entry); b; b = ::Thread32Next(hThreads, &entry)) {
        if (entry.th32OwnerProcessID != ::GetCurrentProcessId() ||
            entry.th32ThreadID == ::GetCurrentThreadId())
            continue;
        str += "thread " + std::to_string(entry.th32ThreadID) + "\n";
        HANDLE hThread = ::OpenThread(THREAD_ALL_ACCESS, FALSE, entry.th32ThreadID);
        if (!hThread) continue;
        for (DWORD64 qw : AddressesOf(help, hThread)) str += NameOf(help, qw);
        ::CloseHandle(hThread);
    }
    ::CloseHandle(hThreads);
    return str;
}

HangWatch::HangWatch(DWORD nSeconds)
    : nMs(nSeconds * 1000), hOver(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      hThread(::CreateThread(nullptr, 0, &Watch, this, 0, nullptr)) {}

HangWatch::~HangWatch() {
    ::SetEvent(hOver);
    ::WaitForSingleObject(hThread, INFINITE);
    ::CloseHandle(hThread);
    ::CloseHandle(hOver);
}

namespace {
/// On a thread of its own: a suspended one may hold what is needed here.
DWORD WINAPI PrintStacks(void*) {
    fprintf(stderr, "%s", TellStacks().c_str());
    fflush(stderr);
    return 0;
}
} // namespace

DWORD WINAPI HangWatch::Watch(void* pWatch) {
    constexpr DWORD kPrintMs = 20000;
    auto* p = static_cast<HangWatch*>(pWatch);
    if (::WaitForSingleObject(p->hOver, p->nMs) != WAIT_TIMEOUT) return 0;
    fprintf(stderr, "A test hangs.\n");
    fflush(stderr);
    HANDLE hPrinter = ::CreateThread(nullptr, 0, &PrintStacks, nullptr, 0, nullptr);
    ::WaitForSingleObject(hPrinter, kPrintMs);
    ::TerminateProcess(::GetCurrentProcess(), 3);
    return 0;
}
