#pragma once
#include "richtext/engine/draw_html_links.h"
#include "richtext/engine/draw_html_tools.h"
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include "runtime/threads/crit_sec.h"
#include "wnd/draw/csdc.h"
#include <windows.h>

/// What a pass of DrawHTML::Draw is for.
enum DrawMode {
    DrawMeasure = 0, // finds the height of every line
    DrawPaint = 1    // draws with these heights
};

/// Draws text with tags that look like HTML and are none: they carry no attributes, there is no
/// tree, and what is no tag is printed. Tags and entities are met in any case:
///
/// - fonts: B I U, H (heading), BIG, SMALL, D (struck out), AA and CT (smoothing)
/// - links: A, A1 to A9, whose commands are the link command id and up to 9 more
/// - colours: RED GREEN BLUE GREY, with LT or DK before them lighter or darker
/// - BR and BRHALF (line breaks), CENTER, NOBR, T (literal text); &amp; &lt; &gt; &nbsp;
///
/// A closing tag undoes the innermost open one, whichever that is. Nothing is kept of a text but
/// the heights of its lines: a line stands on one bottom edge, whose place only the measuring pass
/// knows. Opening tags beyond kMaxNesting are printed.
class TESSALY_API DrawHTML {
  public:
    /// The literals, in any case in a text: pszBra_X opens, pszKet_X closes.
    ///@{
    static constexpr const wchar_t* pszBra_B = L"<B>";
    static constexpr const wchar_t* pszKet_B = L"</B>";
    static constexpr const wchar_t* pszBra_I = L"<I>";
    static constexpr const wchar_t* pszKet_I = L"</I>";
    static constexpr const wchar_t* pszBra_U = L"<U>";
    static constexpr const wchar_t* pszKet_U = L"</U>";
    static constexpr const wchar_t* pszBra_H = L"<H>";
    static constexpr const wchar_t* pszKet_H = L"</H>";
    static constexpr const wchar_t* pszBra_BIG = L"<BIG>";
    static constexpr const wchar_t* pszKet_BIB = L"</BIG>";
    static constexpr const wchar_t* pszBra_SMALL = L"<SMALL>";
    static constexpr const wchar_t* pszKet_SMALL = L"</SMALL>";
    static constexpr const wchar_t* pszBra_A = L"<A>";
    static constexpr const wchar_t* pszKet_A = L"</A>";
    static constexpr const wchar_t* pszBra_A1 = L"<A1>";
    static constexpr const wchar_t* pszKet_A1 = L"</A1>";
    static constexpr const wchar_t* pszBra_A2 = L"<A2>";
    static constexpr const wchar_t* pszKet_A2 = L"</A2>";
    static constexpr const wchar_t* pszBra_A3 = L"<A3>";
    static constexpr const wchar_t* pszKet_A3 = L"</A3>";
    static constexpr const wchar_t* pszBra_A4 = L"<A4>";
    static constexpr const wchar_t* pszKet_A4 = L"</A4>";
    static constexpr const wchar_t* pszBra_A5 = L"<A5>";
    static constexpr const wchar_t* pszKet_A5 = L"</A5>";
    static constexpr const wchar_t* pszBra_A6 = L"<A6>";
    static constexpr const wchar_t* pszKet_A6 = L"</A6>";
    static constexpr const wchar_t* pszBra_A7 = L"<A7>";
    static constexpr const wchar_t* pszKet_A7 = L"</A7>";
    static constexpr const wchar_t* pszBra_A8 = L"<A8>";
    static constexpr const wchar_t* pszKet_A8 = L"</A8>";
    static constexpr const wchar_t* pszBra_A9 = L"<A9>";
    static constexpr const wchar_t* pszKet_A9 = L"</A9>";
    static constexpr const wchar_t* pszBra_AA = L"<AA>";
    static constexpr const wchar_t* pszKet_AA = L"</AA>";
    static constexpr const wchar_t* pszBra_CT = L"<CT>";
    static constexpr const wchar_t* pszKet_CT = L"</CT>";
    static constexpr const wchar_t* pszBra_D = L"<D>";
    static constexpr const wchar_t* pszKet_D = L"</D>";
    static constexpr const wchar_t* pszBra_RED = L"<RED>";
    static constexpr const wchar_t* pszKet_RED = L"</RED>";
    static constexpr const wchar_t* pszBra_GREEN = L"<GREEN>";
    static constexpr const wchar_t* pszKet_GREEN = L"</GREEN>";
    static constexpr const wchar_t* pszBra_BLUE = L"<BLUE>";
    static constexpr const wchar_t* pszKet_BLUE = L"</BLUE>";
    static constexpr const wchar_t* pszBra_GREY = L"<GREY>";
    static constexpr const wchar_t* pszKet_GREY = L"</GREY>";
    static constexpr const wchar_t* pszBra_LTRED = L"<LTRED>";
    static constexpr const wchar_t* pszKet_LTRED = L"</LTRED>";
    static constexpr const wchar_t* pszBra_LTGREEN = L"<LTGREEN>";
    static constexpr const wchar_t* pszKet_LTGREEN = L"</LTGREEN>";
    static constexpr const wchar_t* pszBra_LTBLUE = L"<LTBLUE>";
    static constexpr const wchar_t* pszKet_LTBLUE = L"</LTBLUE>";
    static constexpr const wchar_t* pszBra_LTGREY = L"<LTGREY>";
    static constexpr const wchar_t* pszKet_LTGREY = L"</LTGREY>";
    static constexpr const wchar_t* pszBra_DKRED = L"<DKRED>";
    static constexpr const wchar_t* pszKet_DKRED = L"</DKRED>";
    static constexpr const wchar_t* pszBra_DKGREEN = L"<DKGREEN>";
    static constexpr const wchar_t* pszKet_DKGREEN = L"</DKGREEN>";
    // QUIRK: without its bracket this tag is never met, and its text comes out with the literal.
    // Test: DrawHTMLTags.DarkBlueIsNoTag
    static constexpr const wchar_t* pszBra_DKBLUE = L"DKBLUE>";
    static constexpr const wchar_t* pszKet_DKBLUE = L"</DKBLUE>";
    static constexpr const wchar_t* pszBra_DKGREY = L"<DKGREY>";
    static constexpr const wchar_t* pszKet_DKGREY = L"</DKGREY>";
    static constexpr const wchar_t* pszBra_NOBR = L"<NOBR>";
    static constexpr const wchar_t* pszKet_NOBR = L"</NOBR>";
    static constexpr const wchar_t* pszBra_CENTER = L"<CENTER>";
    static constexpr const wchar_t* pszKet_CENTER = L"</CENTER>";
    static constexpr const wchar_t* pszBra_T = L"<T>";
    static constexpr const wchar_t* pszKet_T = L"</T>";
    static constexpr const wchar_t* pszBR = L"<BR>";
    static constexpr const wchar_t* pszBRHALF = L"<BRHALF>";
    static constexpr const wchar_t* pszAMP = L"&amp;";
    static constexpr const wchar_t* pszLT = L"&lt;";
    static constexpr const wchar_t* pszGT = L"&gt;";
    static constexpr const wchar_t* pszNBSP = L"&nbsp;";
    ///@}

    /// How deep tags may nest.
    static constexpr int kMaxNesting = 256;
    /// How many may be open: crossed ones stay so without nesting, each with its font.
    static constexpr int kMaxOpenTags = 1024;

    explicit DrawHTML(unsigned linkCmdID); ///< Links are commands from that id on.
    /// A copy has a lock of its own.
    DrawHTML(const DrawHTML& other);
    /// Takes the other's state; the lock stays its own.
    DrawHTML& operator=(const DrawHTML& other);
    virtual ~DrawHTML();

    /// One pass over the text, up to its terminator or length characters; a null rect keeps that of
    /// the call before. The links are made anew. Returns the height of the text in pixels, which a
    /// measuring pass in a tall rectangle tells beforehand. Leaves the context's font, text colour
    /// and background mode as they came to be.
    int Draw(DrawMode mode, HDC hdc, RECT* rect, const wchar_t* text, unsigned length,
             DrawHTMLLinks* links, DrawHTMLTools* tools);
    /// Paints the window's client area: the background if erase is set, a dotted frame if focused
    /// is, and the text.
    void OnPaint(HWND hwnd, CSDC& dc, const wchar_t* text, unsigned length, int erase,
                 DrawHTMLLinks* links, DrawHTMLTools* tools, int focused);

    /// Links are commands from that id on.
    void SetLinkCmdID(unsigned linkCmdID) { idLinkCmd = linkCmdID; }
    // The link at a point relative to the layout's top left corner.
    int IsLinkArea(DrawHTMLLinks* links, int x, int y);         ///< 1 if there is one.
    unsigned GetLinkAreaID(DrawHTMLLinks* links, int x, int y); ///< Its id; 0 for none.
    /// Its area; null for none.
    DrawHTMLLinkArea* FindLinkArea(DrawHTMLLinks* links, int x, int y);

    /// 1 if the literal stands at the cursor, in any case, which then moves behind it.
    static int IsNextItem(const wchar_t*& text, const wchar_t* item);
    /// The first place from text on where the literal stands, in any case; null for none.
    static const wchar_t* FindNextItem(const wchar_t* text, const wchar_t* item);
    /// The text without tags, with <BR> as a line end; entities stay. Returns the characters with
    /// the terminator. out may be null, to learn that; otherwise it has room for so many.
    static unsigned GetHTMLTextStripTags(const wchar_t* html, wchar_t* out, int size);

  protected:
    enum FontChange {
        FontBold = 1,
        FontItalic,
        FontUnderline,
        FontHeading,
        FontBig,
        FontSmall,
        FontLink,
        FontLink1,
        FontLink2,
        FontLink3,
        FontLink4,
        FontLink5,
        FontLink6,
        FontLink7,
        FontLink8,
        FontLink9,
        FontAntialiased,
        FontClearType,
        FontStrikeOut,
    };
    enum ColorChange {
        ColorRed = 1,
        ColorGreen,
        ColorBlue,
        ColorGrey,
        ColorLtRed,
        ColorLtGreen,
        ColorLtBlue,
        ColorLtGrey,
        ColorDkRed,
        ColorDkGreen,
        ColorDkBlue,
        ColorDkGrey,
    };

    void ProcessText(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                     DrawHTMLTools* tools);
    int ProcessTag(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                   DrawHTMLTools* tools);
    void ProcessFontChange(FontChange change, HDC hdc, const wchar_t*& text, const wchar_t* end,
                           DrawHTMLLinks* links, DrawHTMLTools* tools);
    void ProcessColorChange(ColorChange change, HDC hdc, const wchar_t*& text, const wchar_t* end,
                            DrawHTMLLinks* links, DrawHTMLTools* tools);
    void ProcessCenter(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                       DrawHTMLTools* tools);
    void ProcessClosingTag(HDC hdc, const wchar_t* tag);
    void NextLine(HDC hdc, int half);
    void UpdateLineHeight(HDC hdc);
    int WriteText(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                  int firstLT);
    int GetNextWord(wchar_t*& dest, const wchar_t*& text, int firstLT);
    int SkipWhiteSpace(const wchar_t*& text);
    void ResetDrawingState();

    int bNoBreak = 0;
    int bCenter = 0;
    int bLiteral = 0;
    RECT rcLayout{};
    int nLineHeight = 0;
    int xPen = 0, yPen = 0; // pixels of the context
    unsigned idLinkCmd;
    DrawHTMLLinkArea* pCurrentLink = nullptr; // the link being built
    int nDepth = 0;                           // of ProcessText
    CSList listOpenTags;                      // of OpenTagRec, owned, the innermost at the tail
    int bPainting = 0;
    unsigned char rgLineHeight[256] = {}; // by the measuring pass; 0: not known
    unsigned iLine = 0;                   // the last one serves all lines from there on
    CritSec csLock;                       // held by Draw

  private:
    struct OpenTagRec;
    struct LineBuffer;
    struct SpanEnd;

    void CopyState(const DrawHTML& other);
    void ProcessSpan(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                     DrawHTMLTools* tools);
    bool PushTag(const wchar_t* pszClosingTag, HFONT hPrevFont, COLORREF rgbPrev);
    const wchar_t* FindSpanEnd(const wchar_t* text, const wchar_t* item, const wchar_t* end);
    void CloseSpan(HDC hdc, const wchar_t*& text, const wchar_t* item);
    void CloseLink(DrawHTMLLinkArea* pArea, DrawHTMLLinks* links, const wchar_t* pszBegin,
                   const wchar_t* pszEnd);
    int CopyWord(wchar_t*& dest, const wchar_t* pchDestEnd, const wchar_t*& text, int firstLT);
    void SetHeight(int cy);
    bool CutToFit(HDC hdc, LineBuffer& line, const wchar_t*& text);
    int DrawLine(HDC hdc, const LineBuffer& line, bool bFlush);
    void SkipEqualLines();
    bool BreakLine(HDC hdc, LineBuffer& line);
    void FlushLine(HDC hdc, const LineBuffer& line);
    void DrawOverflowMark(HDC hdc);
    void KeepFontsOfOpenTags(HDC hdc);
    void DeleteKeptFonts();

    CSList listKeptFonts;         // of HFONT: of tags that were never closed, still selected
    SpanEnd* pSpanEnds = nullptr; // during Draw: where closing tags were found
};
