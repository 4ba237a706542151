#pragma once
#include "buttons/image_btn.h"
#include "support/made_icon.h"
#include "support/replace_import.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <functional>
#include <vector>

extern "C" FARPROC __imp_LoadImageW;

/// An image button that lets tests see its fields.
class ProbeImageBtn : public ImageBtn {
  public:
    using ImageBtn::ImageBtn;
    using ImageBtn::bChecked;
    using ImageBtn::bHover;
    using ImageBtn::bIconMode;
    using ImageBtn::cxImage;
    using ImageBtn::cyImage;
    using ImageBtn::dwFlags;
    using ImageBtn::hCursorHand;
    using ImageBtn::iDisabled;
    using ImageBtn::iFocus;
    using ImageBtn::iHover;
    using ImageBtn::imageList;
    using ImageBtn::iNormal;
    using ImageBtn::iPressed;

    std::vector<int> Indices() const { return {iNormal, iHover, iPressed, iDisabled, iFocus}; }
    int CountImages() const { return imageList ? ::ImageList_GetImageCount(imageList) : -1; }

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        if (uMsg == BM_GETSTATE && nState >= 0) return nState;
        return ImageBtn::OnWndMessage(uMsg, wParam, lParam);
    }
    void OnDropFiles(HDROP hdrop) override {
        ++nDrops;
        if (onDrop) onDrop();
        else if (hdrop) ImageBtn::OnDropFiles(hdrop);
    }

    int nState = -1; // what BM_GETSTATE answers, if not negative
    int nDrops = 0;
    std::function<void()> onDrop;
};

/// A push button, shown, in a window of its own.
class ShownButton {
  public:
    explicit ShownButton(const wchar_t* pszText = L"")
        : parent({}, nullptr, WS_POPUP | WS_VISIBLE),
          hwnd(::CreateWindowExW(0, L"BUTTON", pszText, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10,
                                 80, 60, parent, nullptr, nullptr, nullptr)) {}
    operator HWND() const { return hwnd; }
    HWND GetParent() const { return parent; }

  private:
    TestWindow parent;
    HWND hwnd;
};

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
