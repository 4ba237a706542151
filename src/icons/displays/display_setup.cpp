#include "icons/displays/display_setup.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/encoding.h"
#include "runtime/text/text_format.h"

#include <cwchar>
#include <iterator>

namespace {
constexpr unsigned kUnscaledDpi = 96; // USER_DEFAULT_SCREEN_DPI (winuser.h from Vista on)
constexpr int kEffectiveDpi = 0;      // MDT_EFFECTIVE_DPI (shellscalingapi.h)
// DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE (windef.h from Windows 10 1607 on).
constexpr LONG_PTR kPerMonitorAware = -3;

using SetThreadContextFunc = void* WINAPI(void* pContext);

SetThreadContextFunc* FindSetThreadContext() {
    static constinit RuntimeFunc<SetThreadContextFunc> func(L"user32.dll",
                                                            "SetThreadDpiAwarenessContext");
    return func.Get();
}

/// The screen's; what every display has on a system that knows no scales by display.
unsigned ReadSystemDpi() {
    HDC hdc = ::GetDC(nullptr);
    if (!hdc) return kUnscaledDpi;
    ScopeExit release([&] { ::ReleaseDC(nullptr, hdc); });
    return static_cast<unsigned>(::GetDeviceCaps(hdc, LOGPIXELSX));
}

unsigned ReadDpi(HMONITOR hmonitor) {
    // Loaded if need be: the answer must not hang on what else the process has mapped.
    static constinit RuntimeFunc<HRESULT WINAPI(HMONITOR, int, UINT*, UINT*)> func(
        L"Shcore.dll", "GetDpiForMonitor");
    UINT nX = 0, nY = 0;
    auto* pfn = func.Get();
    if (pfn && SUCCEEDED(pfn(hmonitor, kEffectiveDpi, &nX, &nY)) && nX) return nX;
    return ReadSystemDpi();
}

bool IsBefore(const Display& a, const Display& b) {
    if (a.bPrimary != b.bPrimary) return a.bPrimary;
    return a.rc.left != b.rc.left ? a.rc.left < b.rc.left : a.rc.top < b.rc.top;
}
} // namespace

bool operator==(const SetupName& a, const SetupName& b) {
    return !a.IsEmpty() && std::wcscmp(a.sz, b.sz) == 0;
}

TruePixels::TruePixels() {
    if (auto* pfn = FindSetThreadContext())
        pFormer = pfn(reinterpret_cast<void*>(kPerMonitorAware));
}

TruePixels::~TruePixels() {
    if (!pFormer) return;
    if (auto* pfn = FindSetThreadContext()) pfn(pFormer);
}

BOOL CALLBACK DisplaySetup::AddDisplay(HMONITOR hmonitor, HDC, RECT*, LPARAM lParam) {
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    // A display that goes in this moment leaves a set-up that never was.
    if (!::GetMonitorInfoW(hmonitor, &info)) return FALSE;
    auto* pSetup = reinterpret_cast<DisplaySetup*>(lParam);
    return pSetup->Add(
        {info.rcMonitor, ReadDpi(hmonitor), (info.dwFlags & MONITORINFOF_PRIMARY) != 0});
}

/// False if there is no room. Kept in order: the platform's own may be another after a restart.
bool DisplaySetup::Add(const Display& display) {
    for (unsigned i = 0; i < nDisplays; ++i) {
        if (::EqualRect(&displays[i].rc, &display.rc)) return true;
    }
    if (nDisplays >= std::size(displays)) return false;
    unsigned nAt = nDisplays++;
    for (; nAt && IsBefore(display, displays[nAt - 1]); --nAt) displays[nAt] = displays[nAt - 1];
    displays[nAt] = display;
    return true;
}

bool DisplaySetup::Read() {
    nDisplays = 0;
    TruePixels pixels;
    bool bAll =
        ::EnumDisplayMonitors(nullptr, nullptr, &AddDisplay, reinterpret_cast<LPARAM>(this)) != 0;
    if (!bAll) nDisplays = 0;
    return nDisplays != 0;
}

bool DisplaySetup::Contains(long long x, long long y) const {
    for (unsigned i = 0; i < nDisplays; ++i) {
        const RECT& rc = displays[i].rc;
        if (x >= rc.left && x < rc.right && y >= rc.top && y < rc.bottom) return true;
    }
    return false;
}

void DisplaySetup::FormatText(wchar_t (&szText)[kSetupTextSize]) const {
    szText[0] = 0;
    int cch = 0;
    for (unsigned i = 0; i < nDisplays; ++i) {
        const RECT& rc = displays[i].rc;
        cch +=
            ::FormatText(szText + cch, kSetupTextSize - static_cast<std::size_t>(cch),
                         L"%s%dx%d%+d%+d@%u", i ? L" " : L"", static_cast<int>(rc.right - rc.left),
                         static_cast<int>(rc.bottom - rc.top), static_cast<int>(rc.left),
                         static_cast<int>(rc.top), displays[i].nDpi);
    }
}

SetupName DisplaySetup::GetName() const {
    wchar_t szText[kSetupTextSize];
    FormatText(szText);
    return *szText ? MakeSetupName(szText) : SetupName();
}

SetupName MakeSetupName(const wchar_t* pszText) {
    unsigned char digest[kMd5Size];
    CalcMD5(digest, pszText, std::wcslen(pszText) * sizeof(wchar_t));
    SetupName name;
    BinToHex(name.sz, std::size(name.sz), digest, kMd5Size);
    return name;
}

SetupName ReadSetupName() {
    DisplaySetup setup;
    return setup.Read() ? setup.GetName() : SetupName();
}
