#include "richtext/engine/draw_html_tools.h"

namespace {
constexpr COLORREF kSpareColor = 0x00FF0000;

int StockFontOf(DefaultFont font) {
    switch (font) {
    case FontAnsiVar: return ANSI_VAR_FONT;
    case FontFixed: return ANSI_FIXED_FONT;
    default: return DEFAULT_GUI_FONT;
    }
}
} // namespace

DrawHTMLTools::DrawHTMLTools(DefaultFont font) : defaultFont(font) { Update(); }

DrawHTMLTools::~DrawHTMLTools() { ReleaseFont(); }

/// Fonts of the platform's stock may be deleted: nothing happens to them.
void DrawHTMLTools::ReleaseFont() {
    if (defaultFont != FontCustom && hFont) ::DeleteObject(hFont);
    hFont = nullptr;
}

void DrawHTMLTools::Update() {
    rgbBkg = ::GetSysColor(COLOR_BTNFACE);
    rgbText = ::GetSysColor(COLOR_BTNTEXT);
    rgbLink = ::GetSysColor(COLOR_HOTLIGHT);
    rgbSpare = kSpareColor;
    if (defaultFont == FontCustom) return;
    ReleaseFont();
    hFont = static_cast<HFONT>(::GetStockObject(StockFontOf(defaultFont)));
}

void DrawHTMLTools::SetFixedFont(int bFixed) {
    if (defaultFont == FontCustom) hFont = nullptr; // the caller's font is not ours to delete
    defaultFont = bFixed ? FontFixed : FontGui;
    Update();
}

void DrawHTMLTools::SetCustomFont(HFONT hfont) {
    ReleaseFont();
    hFont = hfont;
    defaultFont = FontCustom;
}
