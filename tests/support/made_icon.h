#pragma once
#include "support/dib_section.h"
#include <windows.h>
#include <vector>

/// A pixel as it lies in memory, 0xAARRGGBB.
using Pixel = unsigned;

/// An icon of 32 bits a pixel from its rows, topmost first, with straight alpha. Destroyed with the
/// object.
class MadeIcon {
  public:
    MadeIcon(int cx, int cy, const std::vector<Pixel>& pixels) {
        void* pBits = nullptr;
        ICONINFO icon{};
        icon.fIcon = TRUE;
        icon.hbmColor = MakeDibSection(cx, cy, &pBits);
        if (pBits) memcpy(pBits, pixels.data(), pixels.size() * sizeof(Pixel));
        std::vector<unsigned char> mask(static_cast<size_t>((cx + 15) / 16 * 2 * cy)); // all opaque
        icon.hbmMask = ::CreateBitmap(cx, cy, 1, 1, mask.data());
        hicon = ::CreateIconIndirect(&icon);
        ::DeleteObject(icon.hbmColor);
        ::DeleteObject(icon.hbmMask);
    }
    ~MadeIcon() { ::DestroyIcon(hicon); }
    MadeIcon(const MadeIcon&) = delete;
    MadeIcon& operator=(const MadeIcon&) = delete;

    HICON Get() const { return hicon; }

  private:
    HICON hicon = nullptr;
};

/// The pixels of a section of 32 bits a pixel as they lie in memory; empty for anything else.
inline std::vector<Pixel> PixelsOf(HBITMAP hbm) {
    DIBSECTION section{};
    if (::GetObjectW(hbm, sizeof(section), &section) != sizeof(section)) return {};
    if (section.dsBm.bmBitsPixel != 32 || !section.dsBm.bmBits) return {};
    const auto* p = static_cast<const Pixel*>(section.dsBm.bmBits);
    return std::vector<Pixel>(p, p + section.dsBm.bmWidth * section.dsBm.bmHeight);
}
