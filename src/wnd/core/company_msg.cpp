#include "wnd/core/company_msg.h"
#include <atomic>

namespace {
constexpr const wchar_t* kCompanyMsgName = L"OrvantaMessage";

constinit std::atomic<UINT> nCompanyMsgId{0};
} // namespace

UINT GetMyCompanyMsgId() {
    UINT nId = nCompanyMsgId;
    if (!nId) {
        nId = ::RegisterWindowMessageW(kCompanyMsgName); // any thread gets the same id
        nCompanyMsgId = nId;
    }
    return nId;
}

LRESULT SendMyCompanyMsg(HWND hwnd, WPARAM nCode, LPARAM lValue) {
    UINT nId = GetMyCompanyMsgId();
    return hwnd && nId ? ::SendMessageW(hwnd, nId, nCode, lValue) : 0;
}

int PostMyCompanyMsg(HWND hwnd, WPARAM nCode, LPARAM lValue) {
    UINT nId = GetMyCompanyMsgId();
    return hwnd && nId ? ::PostMessageW(hwnd, nId, nCode, lValue) != 0 : 0;
}
