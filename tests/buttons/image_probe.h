#pragma once
#include "buttons/image_btn.h"
#include "buttons/made_resources.h"
#include "buttons/shown_button.h"

#include <windows.h>
#include <functional>
#include <vector>

/// An image button that lets tests see its fields.
class ProbeImageBtn : public ImageBtn {
  public:
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
    using ImageBtn::ImageBtn;
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
        if (onDrop)
            onDrop();
        else if (hdrop)
            ImageBtn::OnDropFiles(hdrop);
    }

    int nState = -1; // what BM_GETSTATE answers, if not negative
    int nDrops = 0;
    std::function<void()> onDrop;
};
