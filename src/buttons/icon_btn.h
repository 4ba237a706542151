#pragma once
#include "runtime/base/export.h"
#include "wnd/control/csctrl.h"
#include <windows.h>

/// Flags of an IconBtn. What is not centred stands at the button's own place.
enum IconBtnFlag : unsigned long {
    kIconCenterVertically = 1,   // in the button's height
    kIconCenterHorizontally = 2, // in the button's width
    kIconLink = 4,               // the look of a hyperlink, without a face
};

/// A button with a small icon and a text, as a push button or as a hyperlink with a colour under
/// the mouse. All such buttons share their colours, pens, brushes and fonts, which live as long as
/// there is one of them.
///
/// Icon ids as in runtime/messages/res_str.h; 0 is none. An icon that can't be had is just not
/// drawn.
class TESSALY_API IconBtn : public CSCtrl {
  public:
    /// In the place of flags or of x: what all buttons have in common.
    static constexpr int kCommon = 65535;

    /// The icon, the one under the mouse, IconBtnFlag bits, and where the content goes that is not
    /// centred. Where kCommon stands, they are the common ones.
    // QUIRK: without an Initialize before it the first button's flags and place become the common
    // ones. Test: IconBtn.FirstButtonSetsTheTone
    IconBtn(unsigned icon, unsigned hoverIcon, unsigned long flags, int x, int y);
    ~IconBtn() override;

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    void OnInit() override;
    void OnDrawItem(DRAWITEMSTRUCT* pItem) override;
    /// The face of a plain button; state has DFCS_ bits.
    virtual void DrawButton(HDC hdc, RECT* prc, unsigned state);
    /// The icon; null also for a null object.
    operator HICON() const;

    /// Takes a reference on what the buttons share. The first one makes it, and sets the common
    /// flags and place. Each has its Uninitialize; the last one frees pens and brushes.
    static void Initialize(unsigned long flags, int dx, int dy);
    static void Uninitialize(); ///< Gives the reference back.
    /// Initialize without making anything yet, as it is not allowed to at the library's start: the
    /// first button does.
    static void ReserveCommon(unsigned long flags, int dx, int dy);
    /// 0x00BBGGRR, of a link and of a pressed one. Pens that were made before keep their colour.
    static void SetLinkColor(COLORREF rgb) { rgbLink[0] = rgb; }
    static void SetActiveLinkColor(COLORREF rgb) { rgbLink[1] = rgb; } ///< of a pressed one
    // Derive a font: addHeight makes it larger, weight (FW_, 0: as it is), italic and strikeOut set
    // what is not zero, faceName may be null. The first two change the fonts of all plain buttons,
    // or of all links, the last one that of this button.
    /// Derives the font of all plain buttons.
    static void SetTextFontProperties(int addHeight, long weight, int italic, int strikeOut,
                                      const wchar_t* faceName);
    /// Derives the font of all links.
    static void SetLinkFontProperties(int addHeight, long weight, int italic, int strikeOut,
                                      const wchar_t* faceName);
    /// Derives the font of this button alone.
    void SetThisFontProperties(int addHeight, long weight, int italic, int strikeOut,
                               const wchar_t* faceName);

  protected:
    static void DoSetFontProperties(HFONT& target, HFONT& source, int addHeight, long weight,
                                    int italic, int strikeOut, const wchar_t* faceName);
    // With the pen that is selected: a rounded frame, and an underline.
    void DrawFocus(HDC hdc, RECT& rc);
    void DrawLink(HDC hdc, RECT& rc);

    HICON hIcon = nullptr; // owned
    SIZE sizeIconNormal{};
    HICON hIconHover = nullptr; // owned
    SIZE sizeIconHover{};
    int xPos, yPos;               // where the content goes when it is not centred
    unsigned __int64 dwCheck = 0; // bit 0
    unsigned long dwFlags;
    int bHover = 0;
    HFONT hFontThis = nullptr; // owned

    // What the buttons share; pairs are for a button that is up, and for a pressed one.
    static long dwRefCount;
    static unsigned long dwCommonFlags;
    static int dxCommon, dyCommon;
    static COLORREF rgbBk[2];
    static HBRUSH hbr[2];
    static COLORREF rgbHover, rgbGray, rgbText[2], rgbLink[2];
    static HFONT hFontText, hFontLink;
    static SIZE sizeIcon, sizeGap;
    static HCURSOR hCursorHand;
    static HPEN penHoverDotted, penHoverDashed, penHoverSolid;
    static HPEN penLinkDotted, penLinkDashed, penLinkSolid;
    static HPEN penGrayDotted, penGrayDashed;
    static HPEN penBkg, penFocusText, penFocusLink, penFocusBkg;
    static HBRUSH hbrBkg;

  private:
    struct Look;

    static bool CountReference(unsigned long flags, int dx, int dy);
    static void MakeShared();
    static void MakeFonts();
    static HICON LoadSmallIcon(unsigned icon, SIZE& size);
    bool IsLink() const { return (dwFlags & kIconLink) != 0; }
    void SetHover(int bOn);
    void Repaint(int bErase);
    SIZE MeasureContent(HDC hdc, const wchar_t* pszText, bool bText) const;
    RECT PlaceContent(const RECT& rcItem, SIZE size, bool bShifted) const;
    void DrawLabel(HDC hdc, const Look& look, RECT& rc);
};

/// The close button of a dialog that draws its own caption.
class TESSALY_API CSCloseBtnForDlg : public IconBtn {
  public:
    CSCloseBtnForDlg();
};
/// The minimise button of such a dialog.
class TESSALY_API CSMinimizeBtnForDlg : public IconBtn {
  public:
    CSMinimizeBtnForDlg();
};
