#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Which base font a text is drawn with.
enum DefaultFont {
    FontGui = 0,     // the platform's DEFAULT_GUI_FONT
    FontAnsiVar = 1, // ANSI_VAR_FONT
    FontFixed = 2,   // ANSI_FIXED_FONT
    FontCustom = 3   // a font of the caller's
};

/// The colours (0x00BBGGRR) and the base font of one rich text. Copies share the font: only one of
/// them may live on.
class TESSALY_API DrawHTMLTools {
  public:
    explicit DrawHTMLTools(DefaultFont font);      ///< The system's colours and that font.
    DrawHTMLTools(const DrawHTMLTools&) = default; // shares the font
    DrawHTMLTools& operator=(const DrawHTMLTools&) = default; // what was held is not released
    ~DrawHTMLTools();

    /// Takes the system's colours, and the platform's font unless it is the caller's: also after a
    /// change of the system's settings.
    void Update();
    /// The fixed font of the platform, or that of dialogs.
    void SetFixedFont(int bFixed);
    /// The font stays the caller's and lives longer than its use here.
    void SetCustomFont(HFONT hfont);

    COLORREF GetTextColor() const { return rgbText; }  ///< The colour of plain text.
    void SetTextColor(COLORREF rgb) { rgbText = rgb; } ///< Of plain text.
    COLORREF GetLinkColor() const { return rgbLink; }  ///< The colour of links.
    void SetLinkColor(COLORREF rgb) { rgbLink = rgb; } ///< Of links.
    COLORREF GetBkgColor() const { return rgbBkg; }    ///< The colour behind the text.
    void SetBkgColor(COLORREF rgb) { rgbBkg = rgb; }   ///< Behind the text.
    HFONT GetFont() const { return hFont; }            ///< The base font, which stays whose it is.

  private:
    void ReleaseFont();

    DefaultFont defaultFont;
    COLORREF rgbBkg = 0;
    COLORREF rgbText = 0;
    COLORREF rgbLink = 0;
    COLORREF rgbSpare = 0; // read by nothing
    HFONT hFont = nullptr;
};
