#include "wnd/draw/csimage_list.h"
#include "runtime/messages/res_str.h"
#include "wnd/draw/bitmaps.h"
#include "wnd/draw/csdc.h"

namespace {
HANDLE LoadFrom(int nId, HINSTANCE hinst, UINT uType, int cx, int cy) {
    ResourceRef ref = ResolveResourceId(nId, hinst, DefaultModule::kLibrary);
    return ::LoadImageW(ref.hinst, ref.pszName, uType, cx, cy, 0);
}
} // namespace

CSImageList::~CSImageList() { Destroy(); }

int CSImageList::Create(int width, int height, unsigned int flags, int initial, int grow) {
    return Attach(::ImageList_Create(width, height, flags, initial, grow));
}

int CSImageList::CreateFromBitmap(int width, int height, int initial, int grow, int bitmapId,
                                  HINSTANCE hinst, unsigned long maskColor) {
    if (!Create(width, height, ILC_MASK | ILC_COLOR32, initial, grow)) return -1;
    return AddFromBitmap(bitmapId, hinst, maskColor);
}

int CSImageList::Destroy() {
    if (!hList) return 1;
    if (bDestroyed) return 0;
    bDestroyed = 1;
    return ::ImageList_Destroy(hList) != FALSE;
}

int CSImageList::Attach(HIMAGELIST hListTaken) {
    if (hListTaken != hList) Destroy(); // the same one again lives on
    hList = hListTaken;
    bDestroyed = 0;
    return IsReady();
}

int CSImageList::Detach() {
    int bHad = IsReady();
    hList = nullptr;
    bDestroyed = 0;
    return bHad;
}

int CSImageList::AddIcon(HICON hicon) { return ReplaceIcon(-1, hicon); }

int CSImageList::AddIcon(int iconId, HINSTANCE hinst) { return ReplaceIcon(-1, iconId, hinst); }

int CSImageList::AddMasked(HBITMAP hbm, unsigned long maskColor) {
    return ::ImageList_AddMasked(GetLiveList(), hbm, maskColor);
}

int CSImageList::AddFromBitmap(int bitmapId, HINSTANCE hinst, unsigned long maskColor) {
    OwnedBitmap bitmap(static_cast<HBITMAP>(LoadFrom(bitmapId, hinst, IMAGE_BITMAP, 0, 0)));
    if (!bitmap) return -1;
    SIZE size = ::GetBitmapSize(bitmap.Get());
    bitmapWidth = size.cx;
    bitmapHeight = size.cy;
    return AddMasked(bitmap.Get(), maskColor);
}

int CSImageList::ReplaceIcon(int index, HICON hicon) {
    return ::ImageList_ReplaceIcon(GetLiveList(), index, hicon);
}

int CSImageList::ReplaceIcon(int index, int iconId, HINSTANCE hinst) {
    unsigned long dwSize = GetIconSize(); // an icon of another size would be stretched
    OwnedIcon icon(
        static_cast<HICON>(LoadFrom(iconId, hinst, IMAGE_ICON, LOWORD(dwSize), HIWORD(dwSize))));
    return icon ? ReplaceIcon(index, icon.Get()) : -1;
}

int CSImageList::SetIconSize(int width, int height) {
    return ::ImageList_SetIconSize(GetLiveList(), width, height) != FALSE;
}

unsigned long CSImageList::GetIconSize() {
    int cx = 0, cy = 0;
    ::ImageList_GetIconSize(GetLiveList(), &cx, &cy);
    return static_cast<unsigned long>(MAKELONG(cx, cy));
}

int CSImageList::Draw(int index, HDC hdc, int x, int y, unsigned int style) {
    return ::ImageList_Draw(GetLiveList(), index, hdc, x, y, style) != FALSE;
}

int CSImageList::SetOverlayImage(int index, int overlay) {
    return ::ImageList_SetOverlayImage(GetLiveList(), index, overlay) != FALSE;
}
