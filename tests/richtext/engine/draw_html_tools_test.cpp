#include "richtext/engine/draw_html_tools.h"
#include "support/replace_import.h"
#include <gtest/gtest.h>

extern "C" FARPROC __imp_GetSysColor;

struct StockCase {
    DefaultFont font;
    int nStock;
};
constexpr StockCase kStockFonts[] = {
    {FontGui, DEFAULT_GUI_FONT}, {FontAnsiVar, ANSI_VAR_FONT}, {FontFixed, ANSI_FIXED_FONT}};

class CustomFont {
  public:
    CustomFont() : hfont(::CreateFontW(-17, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, L"")) {}
    ~CustomFont() { ::DeleteObject(hfont); }
    operator HFONT() const { return hfont; }
    bool IsAlive() const { return ::GetObjectType(hfont) == OBJ_FONT; }

  private:
    HFONT hfont;
};

DWORD WINAPI SysColorByIndex(int nIndex) { return 0x10000u + nIndex; }

TEST(DrawHTMLToolsClass, EachKindHasItsStockFont) {
    EXPECT_EQ(0, FontGui);
    EXPECT_EQ(1, FontAnsiVar);
    EXPECT_EQ(2, FontFixed);
    EXPECT_EQ(3, FontCustom);
    for (const StockCase& row : kStockFonts) {
        DrawHTMLTools tools(row.font);
        EXPECT_EQ(::GetStockObject(row.nStock), HGDIOBJ(tools.GetFont()));
    }
    DrawHTMLTools custom(FontCustom);
    EXPECT_EQ(nullptr, custom.GetFont());
}

TEST(DrawHTMLToolsClass, StockFontsLiveOn) {
    for (const StockCase& row : kStockFonts) {
        for (int i = 0; i < 3; ++i) {
            DrawHTMLTools tools(row.font);
            tools.Update();
        }
        EXPECT_EQ(DWORD(OBJ_FONT), ::GetObjectType(::GetStockObject(row.nStock)));
    }
}

TEST(DrawHTMLToolsClass, ColorsAreTheSystems) {
    DrawHTMLTools tools(FontGui);
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), tools.GetBkgColor());
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), tools.GetTextColor());
    EXPECT_EQ(::GetSysColor(COLOR_HOTLIGHT), tools.GetLinkColor());
}

TEST(DrawHTMLToolsClass, UpdateTakesTheSystemsColorsAgain) {
    for (DefaultFont font : {FontGui, FontCustom}) {
        DrawHTMLTools tools(font);
        tools.SetBkgColor(1);
        tools.SetTextColor(2);
        tools.SetLinkColor(3);
        ReplaceImport colors(__imp_GetSysColor, &SysColorByIndex);
        tools.Update();
        EXPECT_EQ(0x10000u + COLOR_BTNFACE, tools.GetBkgColor());
        EXPECT_EQ(0x10000u + COLOR_BTNTEXT, tools.GetTextColor());
        EXPECT_EQ(0x10000u + COLOR_HOTLIGHT, tools.GetLinkColor());
    }
}

TEST(DrawHTMLToolsClass, ColorsAreWhatWasSet) {
    DrawHTMLTools tools(FontFixed);
    tools.SetBkgColor(0x010203);
    tools.SetTextColor(0x040506);
    tools.SetLinkColor(0x070809);
    EXPECT_EQ(0x010203u, tools.GetBkgColor());
    EXPECT_EQ(0x040506u, tools.GetTextColor());
    EXPECT_EQ(0x070809u, tools.GetLinkColor());
    EXPECT_EQ(::GetStockObject(ANSI_FIXED_FONT), HGDIOBJ(tools.GetFont()));
}

TEST(DrawHTMLToolsClass, SetFixedFontChangesBetweenTwoKinds) {
    DrawHTMLTools tools(FontAnsiVar);
    tools.SetTextColor(5);
    tools.SetFixedFont(1);
    EXPECT_EQ(::GetStockObject(ANSI_FIXED_FONT), HGDIOBJ(tools.GetFont()));
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), tools.GetTextColor()) << "updates the colours too";
    tools.SetFixedFont(0);
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), HGDIOBJ(tools.GetFont()));
    tools.SetFixedFont(-3);
    EXPECT_EQ(::GetStockObject(ANSI_FIXED_FONT), HGDIOBJ(tools.GetFont()));
}

TEST(DrawHTMLToolsClass, CustomFontStaysTheCallers) {
    CustomFont font, other;
    {
        DrawHTMLTools tools(FontGui);
        tools.SetCustomFont(font);
        EXPECT_EQ(HFONT(font), tools.GetFont());
        tools.Update();
        EXPECT_EQ(HFONT(font), tools.GetFont());
        tools.SetCustomFont(other);
        EXPECT_TRUE(font.IsAlive());
        EXPECT_EQ(HFONT(other), tools.GetFont());
        tools.SetCustomFont(nullptr);
        EXPECT_TRUE(other.IsAlive());
        EXPECT_EQ(nullptr, tools.GetFont());
        tools.SetCustomFont(font);
    }
    EXPECT_TRUE(font.IsAlive());
}

TEST(DrawHTMLToolsClass, CustomFontSurvivesSetFixedFont) {
    CustomFont font;
    for (int bFixed : {0, 1}) {
        DrawHTMLTools tools(FontGui);
        tools.SetCustomFont(font);
        tools.SetFixedFont(bFixed);
        EXPECT_TRUE(font.IsAlive());
        EXPECT_EQ(::GetStockObject(bFixed ? ANSI_FIXED_FONT : DEFAULT_GUI_FONT),
                  HGDIOBJ(tools.GetFont()));
    }
    EXPECT_TRUE(font.IsAlive());
}

TEST(DrawHTMLToolsClass, SetCustomFontKeepsTheColors) {
    CustomFont font;
    DrawHTMLTools tools(FontGui);
    tools.SetTextColor(5);
    tools.SetCustomFont(font);
    EXPECT_EQ(5u, tools.GetTextColor());
}

TEST(DrawHTMLToolsClass, CopyHasTheSameFontAndColors) {
    CustomFont font;
    DrawHTMLTools tools(FontGui);
    tools.SetCustomFont(font);
    tools.SetLinkColor(9);
    DrawHTMLTools copy(tools);
    EXPECT_EQ(HFONT(font), copy.GetFont());
    EXPECT_EQ(9u, copy.GetLinkColor());
    DrawHTMLTools assigned(FontFixed);
    assigned = tools;
    EXPECT_EQ(HFONT(font), assigned.GetFont());
    assigned.Update();
    EXPECT_EQ(HFONT(font), assigned.GetFont()) << "it is the caller's there as well";
}
