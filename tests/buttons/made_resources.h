#pragma once
#include "support/made_icon.h"
#include "support/replace_import.h"

#include <windows.h>
#include <cstring>
#include <functional>
#include <vector>

extern "C" FARPROC __imp_LoadImageW;

/// Bitmaps and icons of the test's in the place of resources, and what was asked for.
class MadeResources {
  public:
    struct Asked {
        HINSTANCE hinst;
        int nId;
        UINT uType;
        int cx, cy;
        UINT uFlags;
    };

    MadeResources() : load(__imp_LoadImageW, &Load) { pNow = this; }
    ~MadeResources() { pNow = nullptr; }

    /// What gives a resource with that id; the platform's own where it gives null.
    std::function<HANDLE(const Asked&)> fnMake;
    std::vector<Asked> asked;

  private:
    static HANDLE WINAPI Load(HINSTANCE hinst, LPCWSTR pszName, UINT uType, int cx, int cy,
                              UINT uFlags) {
        Asked one{hinst, static_cast<int>(reinterpret_cast<ULONG_PTR>(pszName)), uType, cx, cy,
                  uFlags};
        pNow->asked.push_back(one);
        HANDLE hMade = pNow->fnMake ? pNow->fnMake(one) : nullptr;
        return hMade ? hMade
                     : pNow->load.Original<decltype(::LoadImageW)>()(hinst, pszName, uType, cx, cy,
                                                                     uFlags);
    }

    static inline MadeResources* pNow = nullptr;
    ReplaceImport load;
};

/// A strip of 32 bits a pixel from its rows, topmost first.
inline HBITMAP MakeStrip(int cx, int cy, const std::vector<Pixel>& pixels) {
    void* pBits = nullptr;
    HBITMAP hbm = MakeDibSection(cx, cy, &pBits);
    if (pBits) memcpy(pBits, pixels.data(), pixels.size() * sizeof(Pixel));
    return hbm;
}
