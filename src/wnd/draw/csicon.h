#pragma once
#include "runtime/base/export.h"
#include "wnd/draw/csdc.h"
#include <windows.h>

/// An icon of one size, destroyed with the object.
class TESSALY_API CSIcon {
  public:
    CSIcon() = default;
    CSIcon(const CSIcon&) = delete; // owns the icon
    CSIcon& operator=(const CSIcon&) = delete;

    /// Loads an icon resource in place of the one held. A negative id is the library's resource, a
    /// positive one that of the current AppInstance's module (the library's if there is none).
    /// Small or large: with systemSize as the system's metrics have it, otherwise 16 by 16 or 32 by
    /// 32 pixels. If there is no such icon, none is held; the size is stored all the same.
    void Load(int iconId, int isSmall, int systemSize);
    /// Whether an icon is held.
    int IsReady() const { return static_cast<bool>(hIcon); }
    /// The size in pixels that was last loaded, 0 by 0 before. Returns IsReady.
    int GetSize(int& cx, int& cy) const;
    operator HICON() const { return hIcon.Get(); }

    /// The icon as a top-down section of premultiplied pixels with alpha, such as menu items can
    /// show without a black background. The caller owns it. Null before Windows Vista, without the
    /// platform's imaging component, for null and what is no icon, and when out of memory. A thread
    /// without COM gets it for the length of the call.
    [[nodiscard]] static HBITMAP IconToMenuBitmap(HICON hicon);
    /// A bottom-up section of 32 bits a pixel: MakeBitmap32 in wnd/draw/bitmaps.h, with its
    /// results.
    static long Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult);
    /// The header of a bitmap: FillBitmapInfo in wnd/draw/bitmaps.h.
    static void InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                               unsigned short nBitCount);

  private:
    OwnedIcon hIcon;
    int width = 0;
    int height = 0;
};
