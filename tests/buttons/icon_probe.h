#pragma once
#include "buttons/icon_btn.h"
#include "buttons/made_resources.h"
#include "buttons/shown_button.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

/// An icon button that lets tests see its fields and those of all icon buttons.
class ProbeIconBtn : public IconBtn {
  public:
    using IconBtn::bHover;
    using IconBtn::DoSetFontProperties;
    using IconBtn::DrawFocus;
    using IconBtn::DrawLink;
    using IconBtn::dwCheck;
    using IconBtn::dwFlags;
    using IconBtn::hFontThis;
    using IconBtn::hIcon;
    using IconBtn::hIconHover;
    using IconBtn::IconBtn;
    using IconBtn::sizeIconHover;
    using IconBtn::sizeIconNormal;
    using IconBtn::xPos;
    using IconBtn::yPos;

    using IconBtn::dwCommonFlags;
    using IconBtn::dwRefCount;
    using IconBtn::dxCommon;
    using IconBtn::dyCommon;
    using IconBtn::hbr;
    using IconBtn::hbrBkg;
    using IconBtn::hCursorHand;
    using IconBtn::hFontLink;
    using IconBtn::hFontText;
    using IconBtn::penBkg;
    using IconBtn::penFocusBkg;
    using IconBtn::penFocusLink;
    using IconBtn::penFocusText;
    using IconBtn::penGrayDashed;
    using IconBtn::penGrayDotted;
    using IconBtn::penHoverDashed;
    using IconBtn::penHoverDotted;
    using IconBtn::penHoverSolid;
    using IconBtn::penLinkDashed;
    using IconBtn::penLinkDotted;
    using IconBtn::penLinkSolid;
    using IconBtn::rgbBk;
    using IconBtn::rgbGray;
    using IconBtn::rgbHover;
    using IconBtn::rgbLink;
    using IconBtn::rgbText;
    using IconBtn::sizeGap;
    using IconBtn::sizeIcon;

    void OnDropFiles(HDROP hdrop) override {
        ++nDrops;
        if (onDrop)
            onDrop();
        else if (hdrop)
            IconBtn::OnDropFiles(hdrop);
    }
    void DrawButton(HDC hdc, RECT* prc, unsigned state) override {
        if (onDrawButton)
            onDrawButton(hdc, prc, state);
        else
            IconBtn::DrawButton(hdc, prc, state);
    }

    int nDrops = 0;
    std::function<void()> onDrop;
    std::function<void(HDC, RECT*, unsigned)> onDrawButton;
};

constexpr int kCommonValue = 65535;

struct NamedPen {
    const char* pszName;
    HPEN* ppen;
};
inline const NamedPen kPens[] = {
    {"hoverDotted", &ProbeIconBtn::penHoverDotted},
    {"hoverDashed", &ProbeIconBtn::penHoverDashed},
    {"hoverSolid", &ProbeIconBtn::penHoverSolid},
    {"linkDotted", &ProbeIconBtn::penLinkDotted},
    {"linkDashed", &ProbeIconBtn::penLinkDashed},
    {"linkSolid", &ProbeIconBtn::penLinkSolid},
    {"grayDotted", &ProbeIconBtn::penGrayDotted},
    {"grayDashed", &ProbeIconBtn::penGrayDashed},
    {"bkg", &ProbeIconBtn::penBkg},
    {"focusText", &ProbeIconBtn::penFocusText},
    {"focusLink", &ProbeIconBtn::penFocusLink},
    {"focusBkg", &ProbeIconBtn::penFocusBkg},
};
constexpr int kSharedObjects = static_cast<int>(std::size(kPens)) + 3; // and the brushes

/// As it is before anybody has called Initialize, for the length of a test; then again as the
/// library's start leaves it.
class NothingShared {
  public:
    NothingShared() {
        EXPECT_EQ(1, ProbeIconBtn::dwRefCount) << "the library's own reference";
        IconBtn::Uninitialize();
        ResetFonts();
    }
    ~NothingShared() {
        EXPECT_EQ(0, ProbeIconBtn::dwRefCount);
        ResetFonts();
        IconBtn::ReserveCommon(kIconCenterVertically | kIconLink, 2, 0);
    }
    NothingShared(const NothingShared&) = delete;
    NothingShared& operator=(const NothingShared&) = delete;

  private:
    static void ResetFonts() { // of the stock the deletion does nothing
        ::DeleteObject(ProbeIconBtn::hFontText);
        ::DeleteObject(ProbeIconBtn::hFontLink);
        ProbeIconBtn::hFontText = ProbeIconBtn::hFontLink = nullptr;
    }
};
