#include "wnd/draw/csicon.h"
#include "wnd/draw/icon_bitmap.h"
#include "wnd/draw/resource_id.h"

namespace {
constexpr SIZE kPlainSmall{16, 16}, kPlainLarge{32, 32};

SIZE GetIconSize(int isSmall, int systemSize) {
    if (!systemSize) return isSmall ? kPlainSmall : kPlainLarge;
    return {::GetSystemMetrics(isSmall ? SM_CXSMICON : SM_CXICON),
            ::GetSystemMetrics(isSmall ? SM_CYSMICON : SM_CYICON)};
}
} // namespace

void CSIcon::Load(int iconId, int isSmall, int systemSize) {
    ResourceRef ref = ResolveResourceId(iconId, nullptr, DefaultModule::kApplication);
    SIZE size = GetIconSize(isSmall, systemSize);
    HANDLE hLoaded = ::LoadImageW(ref.hinst, ref.pszName, IMAGE_ICON, size.cx, size.cy, 0);
    hIcon.Reset(static_cast<HICON>(hLoaded));
    width = size.cx;
    height = size.cy;
}

int CSIcon::GetSize(int& cx, int& cy) const {
    cx = width;
    cy = height;
    return IsReady();
}

HBITMAP CSIcon::IconToMenuBitmap(HICON hicon) { return hicon ? MakeIconBitmap(hicon) : nullptr; }

long CSIcon::Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult) {
    return MakeBitmap32(hdc, psize, ppBits, phResult);
}

void CSIcon::InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                            unsigned short nBitCount) {
    FillBitmapInfo(pInfo, cbInfo, cx, cy, nBitCount);
}
