#include "e2e/support/message_recorder.h"
#include "support/program_folder.h"

#include <algorithm>
#include <stdexcept>

namespace {
template <class Fn>
Fn Find(HMODULE hmod, const char* pszName) {
    return reinterpret_cast<Fn>(reinterpret_cast<void*>(::GetProcAddress(hmod, pszName)));
}
} // namespace

MessageRecorder::MessageRecorder() {
    hmod = ::LoadLibraryW((ProgramFolder() + L"message_recorder.dll").c_str());
    if (hmod) {
        pfnPosted = Find<HOOKPROC>(hmod, "OnPosted");
        pfnSent = Find<HOOKPROC>(hmod, "OnSent");
        if (auto* pfn = Find<MessageRecords* (*)()>(hmod, "GetMessageRecords")) pRecords = pfn();
    }
    if (!pfnPosted || !pfnSent || !pRecords) throw std::runtime_error("no recorder of messages");
    *pRecords = {};
}

MessageRecorder::~MessageRecorder() {
    for (HHOOK hhook : hooks) ::UnhookWindowsHookEx(hhook);
    std::fill_n(pRecords->watched, MessageRecords::kMaxThreads, MessageRecords::Watched{});
    ::FreeLibrary(hmod);
}

void MessageRecorder::Watch(HWND hwnd, bool bEverything) {
    DWORD dwThread = ::GetWindowThreadProcessId(hwnd, nullptr);
    for (MessageRecords::Watched& watched : pRecords->watched) {
        if (watched.dwThread) continue;
        for (auto [nHook, pfn] : {std::pair(WH_GETMESSAGE, pfnPosted), {WH_CALLWNDPROC, pfnSent}}) {
            HHOOK hhook = dwThread ? ::SetWindowsHookExW(nHook, pfn, hmod, dwThread) : nullptr;
            if (!hhook) throw std::runtime_error("a thread's messages can't be recorded");
            hooks.push_back(hhook);
        }
        watched = {dwThread, bEverything};
        return;
    }
    throw std::runtime_error("so many threads can't be recorded");
}

std::vector<MessageRecord> MessageRecorder::All() const {
    LONG nCount = std::min(pRecords->nCount, MessageRecords::kMax);
    return {pRecords->records, pRecords->records + nCount};
}

int MessageRecorder::Count(HWND hwnd, UINT uMsg) const {
    auto records = All();
    return static_cast<int>(std::count_if(records.begin(), records.end(), [&](const auto& record) {
        return record.hwnd == hwnd && record.uMsg == uMsg;
    }));
}

int MessageRecorder::Count(HWND hwnd, UINT uMsg, WPARAM wParam) const {
    auto records = All();
    return static_cast<int>(std::count_if(records.begin(), records.end(), [&](const auto& record) {
        return record.hwnd == hwnd && record.uMsg == uMsg && record.wParam == wParam;
    }));
}

void MessageRecorder::Forget() { pRecords->nCount = 0; }
