#include "wnd/draw/cdpi.h"
#include "runtime/system/runtime_func.h"

namespace {
constexpr int kPointsPerInch = 72;
constexpr int kDpi120 = 120, kDpi144 = 144, kDpi192 = 192;
constexpr int kSkinDpiFirst = 97, kSkinDpiLast = 112;
constexpr int kEffectiveDpi = 0; // MDT_EFFECTIVE_DPI (shellscalingapi.h)

using GetDpiForMonitorFunc = HRESULT WINAPI(HMONITOR, int, UINT*, UINT*);
constexpr INT_PTR kSearchedInVain = 1;

constinit CDPI dpiOfProcess;
constinit HWND hwndOfMonitor = nullptr;

INT_PTR FindGetDpiForMonitor() {
    constexpr const wchar_t* kModule = L"Shcore.dll";
    auto* pfn = FindMappedFunc<GetDpiForMonitorFunc>(kModule, "GetDpiForMonitor");
    if (!pfn) pfn = FindMappedFunc<GetDpiForMonitorFunc>(kModule, "GetDPIForMonitor");
    return pfn ? reinterpret_cast<INT_PTR>(pfn) : kSearchedInVain;
}

bool IsSkinDpi(int nDpi) { return nDpi >= kSkinDpiFirst && nDpi <= kSkinDpiLast; }
} // namespace

/// The address of GetDpiForMonitor; 0 until it was looked for. Named, so that a test can begin with
/// a search.
namespace cdpi_detail {
constinit INT_PTR nGetDpiForMonitor = 0;
}
using cdpi_detail::nGetDpiForMonitor;

CDPI* PCDPI() { return &dpiOfProcess; }

int CDPI::GetDPIX() {
    _Init();
    return dpiX;
}

int CDPI::GetDPIY() {
    _Init();
    return dpiY;
}

int CDPI::IsCustom() { return GetDPIX() != kDesignDpi || GetDPIY() != kDesignDpi; }

int CDPI::ScaleX(int x) { return ::MulDiv(x, GetDPIX(), kDesignDpi); }

int CDPI::ScaleY(int y) { return ::MulDiv(y, GetDPIY(), kDesignDpi); }

int CDPI::UnscaleX(int x) { return ::MulDiv(x, kDesignDpi, GetDPIX()); }

int CDPI::UnscaleY(int y) { return ::MulDiv(y, kDesignDpi, GetDPIY()); }

void CDPI::ScaleRect(RECT* prc) {
    *prc = {ScaleX(prc->left), ScaleY(prc->top), ScaleX(prc->right), ScaleY(prc->bottom)};
}

void CDPI::ScaleSize(SIZE* psize) { *psize = {ScaleX(psize->cx), ScaleY(psize->cy)}; }

int CDPI::ScaledScreenWidth() { return _ScaledSystemMetricX(SM_CXSCREEN); }

int CDPI::ScaledScreenHeight() { return _ScaledSystemMetricY(SM_CYSCREEN); }

bool CDPI::IsResolutionAtLeast(int width, int height) {
    return ScaledScreenWidth() >= width && ScaledScreenHeight() >= height;
}

int CDPI::_ScaledSystemMetricX(int nMetric) { return UnscaleX(::GetSystemMetrics(nMetric)); }

int CDPI::_ScaledSystemMetricY(int nMetric) { return UnscaleY(::GetSystemMetrics(nMetric)); }

int CDPI::ShouldAdjustForSkin() { return IsSkinDpi(GetDPIX()) || IsSkinDpi(GetDPIY()); }

int CDPI::GetAdjustedSysIconSize() {
    if (GetDPIX() < kDpi120) return 16;
    return GetDPIX() < kDpi192 ? 24 : 32;
}

int CDPI::GetAdjustedIconSize48_64() { return GetDPIX() < kDpi144 ? 48 : 64; }

int CDPI::PointsToPixels(int points) { return ::MulDiv(points, dpiY, kPointsPerInch); }

int CDPI::PixelsToPoints(int pixels) { return ::MulDiv(pixels, kPointsPerInch, dpiY); }

void CDPI::Invalidate() { isInit = false; }

void CDPI::SetWindow(HWND hwnd) {
    if (hwnd == hwndOfMonitor) return;
    hwndOfMonitor = hwnd;
    dpiOfProcess.Invalidate();
}

long CDPI::MyGetDPIForMonitor(HMONITOR hmonitor, int type, unsigned int* px, unsigned int* py) {
    // A failed search is remembered too.
    if (!nGetDpiForMonitor) nGetDpiForMonitor = FindGetDpiForMonitor();
    if (nGetDpiForMonitor == kSearchedInVain) return E_NOTIMPL;
    return reinterpret_cast<GetDpiForMonitorFunc*>(nGetDpiForMonitor)(hmonitor, type, px, py);
}

bool CDPI::_ReadMonitor(int* px, int* py) {
    unsigned int uX = 0, uY = 0;
    HMONITOR hmonitor = ::MonitorFromWindow(hwndOfMonitor, MONITOR_DEFAULTTONEAREST);
    if (FAILED(MyGetDPIForMonitor(hmonitor, kEffectiveDpi, &uX, &uY))) return false;
    *px = static_cast<int>(uX);
    *py = static_cast<int>(uY);
    return true;
}

void CDPI::_Init() {
    if (isInit) return;
    int nX = dpiX, nY = dpiY;
    if (!_ReadMonitor(&nX, &nY)) {
        if (HDC hdcScreen = ::GetDC(nullptr)) {
            nX = ::GetDeviceCaps(hdcScreen, LOGPIXELSX);
            nY = ::GetDeviceCaps(hdcScreen, LOGPIXELSY);
            ::ReleaseDC(nullptr, hdcScreen);
        }
    }
    // What is divided by is never 0: then it stays as it was.
    if (nX > 0) dpiX = nX;
    if (nY > 0) dpiY = nY;
    isInit = true;
}
