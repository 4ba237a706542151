#pragma once
#include "buttons/draw_log.h"
#include "buttons/icon_probe.h"
#include "resources/resource_ids.h"
#include "support/memory_picture.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <algorithm>
#include <string>
#include <vector>

using Btn = ProbeIconBtn;
using Lines = std::vector<std::string>;

/// Values that do not depend on the system's, for the length of a test.
class KnownColors {
  public:
    KnownColors() {
        for (int i : {0, 1}) {
            Btn::rgbBk[i] = i ? 0xB1B1B1 : 0xB0B0B0;
            Btn::rgbText[i] = i ? 0x111111 : 0x101010;
        }
        Btn::rgbGray = 0x777777;
        LOGFONTW lf{};
        lf.lfHeight = -11;
        lf.lfQuality = NONANTIALIASED_QUALITY;
        wcscpy(lf.lfFaceName, L"Tahoma");
        Btn::hFontText = ::CreateFontIndirectW(&lf);
        lf.lfHeight = -16;
        Btn::hFontLink = ::CreateFontIndirectW(&lf);
    }
    ~KnownColors() {
        ::DeleteObject(Btn::hFontText);
        ::DeleteObject(Btn::hFontLink);
        Btn::hFontText = before.hfontText;
        Btn::hFontLink = before.hfontLink;
        std::copy_n(before.rgbBk, 2, Btn::rgbBk);
        std::copy_n(before.rgbText, 2, Btn::rgbText);
        Btn::rgbGray = before.rgbGray;
    }

  private:
    struct {
        COLORREF rgbBk[2] = {Btn::rgbBk[0], Btn::rgbBk[1]};
        COLORREF rgbText[2] = {Btn::rgbText[0], Btn::rgbText[1]};
        COLORREF rgbGray = Btn::rgbGray;
        HFONT hfontText = Btn::hFontText, hfontLink = Btn::hFontLink;
    } before;
};

/// How a button is made and what is said of it at a drawing.
struct Look {
    unsigned long dwFlags = 3;
    const wchar_t* pszText = L"&Open";
    bool bIcon = false, bHoverIcon = false;
    bool bSelected = false, bFocused = false, bDisabled = false, bChecked = false, bHover = false;
    int x = 7, y = 9;

    UINT ItemState() const {
        return (bSelected ? ODS_SELECTED : 0u) | (bDisabled ? ODS_DISABLED : 0u) |
               (bFocused ? ODS_FOCUS : 0u);
    }
    std::string Name() const {
        return Format("flags %lu '%s' icon %d %d selected %d focused %d disabled %d checked %d "
                      "hover %d",
                      dwFlags, Narrow(pszText).c_str(), bIcon, bHoverIcon, bSelected, bFocused,
                      bDisabled, bChecked, bHover);
    }
};

constexpr RECT kItem{5, 4, 105, 45}; // 100 by 41

struct IconBtnDraw : testing::Test {
    /// Draws a button of that look.
    void Draw(const Look& look, HDC hdc, DrawLog* pLog, const RECT& rc = kItem,
              HFONT hfontThis = nullptr) {
        ProbeIconBtn button(look.bIcon ? static_cast<unsigned>(-IDI_DLG_CLOSE) : 0,
                            look.bHoverIcon ? static_cast<unsigned>(-IDI_DLG_CLOSE_HOVER) : 0,
                            look.dwFlags, look.x, look.y);
        ::SetWindowTextW(window, look.pszText);
        ASSERT_EQ(1, button.Subclass(window));
        button.bHover = look.bHover;
        button.dwCheck = look.bChecked;
        button.hFontThis = hfontThis;
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_BUTTON;
        item.itemState = look.ItemState();
        item.hwndItem = window;
        item.hDC = hdc;
        item.rcItem = rc;
        if (pLog) {
            pLog->hicon = button.hIcon;
            pLog->hiconHover = button.hIconHover;
        }
        button.OnDrawItem(&item);
        button.hFontThis = nullptr;
        button.Unsubclass();
    }
    /// The calls, with texts of 6 by 13 pixels a character.
    Lines Calls(const Look& look, const RECT& rc = kItem) {
        MemoryPicture picture(120, 60, Btn::rgbBk[0]);
        DrawLog log;
        log.bFixedText = true;
        Draw(look, picture, &log, rc);
        return log.Take();
    }

    ProbeIconBtn first{0, 0, 3, 0, 0}; // keeps what is shared
    KnownColors known;
    ShownButton window;
};

/// What a text without its first "&" takes.
inline SIZE MeasureText(HDC hdc, HFONT hfont, std::wstring str) {
    if (auto n = str.find(L'&'); n != std::wstring::npos) str.erase(n, 1);
    HGDIOBJ hBefore = ::SelectObject(hdc, hfont);
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, str.c_str(), static_cast<int>(str.size()), &size);
    ::SelectObject(hdc, hBefore);
    return size;
}
