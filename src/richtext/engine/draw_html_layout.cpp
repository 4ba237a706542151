// Lines: where words go, and how they are drawn.

#include "richtext/engine/draw_html.h"
#include "runtime/base/ownership.h"
#include "wnd/draw/draw_util.h"

#include <algorithm>
#include <climits>
#include <cwchar>
#include <iterator>

namespace {
constexpr int kMargin = 2;                // pixels at the right that stay free
constexpr int kLineGap = 1;               // pixels between lines
constexpr int kLineSize = 264;            // characters of a line part, with the terminator
constexpr int kWordLimit = kLineSize - 2; // of which the words leave one for a blank
constexpr const wchar_t* kHeightProbe = L"Hg";

/// Far enough from the ends of the numbers for all that is added to a place in the rectangle.
void ClampRect(RECT& rc) {
    constexpr LONG kFar = INT_MAX / 4;
    for (LONG* pEdge : {&rc.left, &rc.top, &rc.right, &rc.bottom}) {
        *pEdge = std::clamp(*pEdge, -kFar, kFar);
    }
}

SIZE MeasureText(HDC hdc, const wchar_t* psz, int cch) {
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, psz, cch, &size);
    return size;
}
} // namespace

/// The words of the current line that are not drawn yet, and their size.
struct DrawHTML::LineBuffer {
    wchar_t sz[kLineSize];
    int n = 0;
    SIZE size{};

    void Measure(HDC hdc) { size = MeasureText(hdc, sz, n); }
    void Append(wchar_t ch) {
        sz[n++] = ch;
        sz[n] = 0;
    }
};

DrawHTML::DrawHTML(unsigned linkCmdID) : idLinkCmd(linkCmdID) {}

DrawHTML::DrawHTML(const DrawHTML& other) : idLinkCmd(other.idLinkCmd) { CopyState(other); }

DrawHTML& DrawHTML::operator=(const DrawHTML& other) {
    if (this != &other) CopyState(other);
    return *this;
}

DrawHTML::~DrawHTML() {
    ResetDrawingState();
    DeleteKeptFonts();
}

/// All but the lock, and what is owned: outside Draw no tag is open.
void DrawHTML::CopyState(const DrawHTML& other) {
    bNoBreak = other.bNoBreak;
    bCenter = other.bCenter;
    bLiteral = other.bLiteral;
    rcLayout = other.rcLayout;
    nLineHeight = other.nLineHeight;
    xPen = other.xPen;
    yPen = other.yPen;
    idLinkCmd = other.idLinkCmd;
    pCurrentLink = nullptr;
    nDepth = 0;
    bPainting = other.bPainting;
    std::copy(std::begin(other.rgLineHeight), std::end(other.rgLineHeight),
              std::begin(rgLineHeight));
    iLine = other.iLine;
}

void DrawHTML::OnPaint(HWND hwnd, CSDC& dc, const wchar_t* text, unsigned length, int erase,
                       DrawHTMLLinks* links, DrawHTMLTools* tools, int focused) {
    ::GetClientRect(hwnd, &rcLayout);
    const int cx = rcLayout.right - rcLayout.left, cy = rcLayout.bottom - rcLayout.top;
    if (erase) PaintRect(dc, &rcLayout, tools->GetBkgColor());
    if (focused) DrawRect(dc, rcLayout.left, rcLayout.top, cx, cy, tools->GetTextColor(), PS_DOT);
    if (!text || !*text) return;
    std::fill(std::begin(rgLineHeight), std::end(rgLineHeight), static_cast<unsigned char>(0));
    CompatibleDC measuring(dc);
    Draw(DrawMeasure, measuring, nullptr, text, length, links, tools);
    Draw(DrawPaint, dc, nullptr, text, length, links, tools);
}

int DrawHTML::Draw(DrawMode mode, HDC hdc, RECT* rect, const wchar_t* text, unsigned length,
                   DrawHTMLLinks* links, DrawHTMLTools* tools) {
    CritSecLock lock(csLock);
    iLine = 0;
    nDepth = 0;
    if (links) links->Reset();
    // QUIRK: bNoBreak stays as the last text left it, also one that never said </NOBR>.
    // Test: DrawHTMLTags.NoBreakLeftOpenHoldsForLaterPasses
    bLiteral = 0;
    bPainting = mode == DrawPaint;
    if (rect) rcLayout = *rect;
    ClampRect(rcLayout);
    ::SetBkMode(hdc, TRANSPARENT);
    ::SetTextColor(hdc, tools->GetTextColor());
    ::SelectObject(hdc, tools->GetFont());
    DeleteKeptFonts();
    xPen = rcLayout.left;
    yPen = rcLayout.top;
    nLineHeight = 0;
    const wchar_t* cursor = text ? text : L"";
    const wchar_t* const end =
        cursor + ::wcsnlen(cursor, text ? length : 0); // a length may be too great
    SkipWhiteSpace(cursor);
    UpdateLineHeight(hdc);
    ProcessText(hdc, cursor, end, links, tools);
    KeepFontsOfOpenTags(hdc);
    ResetDrawingState();
    return yPen - rcLayout.top + nLineHeight;
}

int DrawHTML::IsLinkArea(DrawHTMLLinks* links, int x, int y) {
    return FindLinkArea(links, x, y) != nullptr;
}

unsigned DrawHTML::GetLinkAreaID(DrawHTMLLinks* links, int x, int y) {
    DrawHTMLLinkArea* pArea = FindLinkArea(links, x, y);
    return pArea ? pArea->GetLinkID() : 0;
}

DrawHTMLLinkArea* DrawHTML::FindLinkArea(DrawHTMLLinks* links, int x, int y) {
    return links ? links->Find(x, y) : nullptr;
}

/// A line is at least as high as every font that was selected on it.
void DrawHTML::UpdateLineHeight(HDC hdc) {
    if (bPainting) {
        nLineHeight = rgLineHeight[iLine];
        return;
    }
    SetHeight(MeasureText(hdc, kHeightProbe, static_cast<int>(std::wcslen(kHeightProbe))).cy);
}

/// For a text of that height on the line.
void DrawHTML::SetHeight(int cy) {
    if (bPainting) {
        nLineHeight = rgLineHeight[iLine] ? rgLineHeight[iLine] : cy;
        return;
    }
    if (cy > nLineHeight) nLineHeight = cy;
    // QUIRK: a height of 256 and more is kept as its low byte.
    // Test: DrawHTMLLayout.LineHeightIsKeptModulo256
    rgLineHeight[iLine] = static_cast<unsigned char>(nLineHeight);
}

// QUIRK: a link is told of no new line here, only where its words wrap: with a <BR> in it it may
// end to the left of where it began, and is hit nowhere. Test:
// DrawHTMLLinkQueries.LinkWithABreakMayBeHitNowhere
void DrawHTML::NextLine(HDC hdc, int half) {
    if (!bPainting) rgLineHeight[iLine] = static_cast<unsigned char>(nLineHeight);
    xPen = rcLayout.left;
    const int dy = (half ? nLineHeight / 2 : nLineHeight) + kLineGap;
    yPen += dy;
    if (iLine < std::size(rgLineHeight) - 1) ++iLine;
    nLineHeight = 0;
    UpdateLineHeight(hdc);
}

/// Writes words up to the next tag or end. 0: there is no room for more.
int DrawHTML::WriteText(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks*,
                        int firstLT) {
    if (yPen > rcLayout.bottom) return 0;
    const int limit = rcLayout.right - kMargin;
    LineBuffer line;
    line.sz[0] = 0;
    if (SkipWhiteSpace(text)) line.Append(L' '); // blanks are one, also behind a tag
    const wchar_t* wordStart = text;
    while (true) {
        const int nBefore = line.n;
        wchar_t* dest = line.sz + line.n;
        if (line.n >= kWordLimit) break; // goes on in a buffer of its own, on the same line
        if (!CopyWord(dest, line.sz + kWordLimit, text, firstLT)) break;
        firstLT = 0;
        line.n = static_cast<int>(dest - line.sz);
        line.Measure(hdc);
        const int cy = line.size.cy;
        const bool bCut = line.size.cx > limit - rcLayout.left && CutToFit(hdc, line, text);
        SetHeight(cy);
        if (!bCut && xPen + line.size.cx > limit) { // the newest word goes to the next line
            text = wordStart;
            line.n = nBefore;
            line.sz[line.n] = 0;
            if (!BreakLine(hdc, line)) return 0;
        } else if (bCut && !BreakLine(hdc, line)) {
            return 0;
        }
        const bool bSkipped = SkipWhiteSpace(text);
        if (bSkipped || !*text) line.Append(L' ');
        wordStart = text;
        if (text >= end || yPen >= rcLayout.bottom) break;
    }
    FlushLine(hdc, line);
    return text < end && yPen < rcLayout.bottom;
}

/// Cuts a text that fits on no line, behind a word if there is one. Whether anything was cut.
// QUIRK: the cursor goes back by one for each character; where blanks or an entity were longer in
// the source, it resumes a little late. Test: DrawHTMLLayout.CutBehindAnEntityResumesLate
bool DrawHTML::CutToFit(HDC hdc, LineBuffer& line, const wchar_t*& text) {
    const int limit = rcLayout.right - kMargin;
    const int nWhole = line.n;
    while (line.n > 0 && xPen + line.size.cx > limit) {
        line.sz[--line.n] = 0;
        --text;
        line.Measure(hdc);
    }
    if (line.n == nWhole) return false;
    int nBlank = line.n - 1;
    const auto isBlank = [&](int n) {
        const wchar_t* p = line.sz + n;
        return SkipWhiteSpace(p) != 0;
    };
    while (nBlank > 0 && !isBlank(nBlank)) --nBlank;
    int nLast = nBlank;
    while (nLast > 0 && isBlank(nLast)) --nLast;
    if (nBlank > 0 && nLast > 0) {
        text -= line.n - (nLast + 1);
        line.n = nLast + 1;
        line.sz[line.n] = 0;
    }
    return true;
}

/// Draws what there is and goes on to a new line. False: that has no room.
bool DrawHTML::BreakLine(HDC hdc, LineBuffer& line) {
    if (pCurrentLink) {
        pCurrentLink->EndRect(rcLayout.right - rcLayout.left, yPen - rcLayout.top + nLineHeight);
    }
    const bool bNothingFits = line.n == 0 && xPen == rcLayout.left;
    DrawLine(hdc, line, false);
    line.n = 0;
    line.sz[0] = 0;
    NextLine(hdc, 0);
    if (bNothingFits) SkipEqualLines();
    if (pCurrentLink) pCurrentLink->StartRect(0, yPen - rcLayout.top);
    return yPen + nLineHeight < rcLayout.bottom;
}

/// Where not one character fits, line after line stays empty down to the bottom, which may be far
/// away: those that share the last entry of the table are passed at once.
void DrawHTML::SkipEqualLines() {
    const int dy = nLineHeight + kLineGap;
    const int nLines = (rcLayout.bottom - nLineHeight - yPen) / dy;
    if (iLine == std::size(rgLineHeight) - 1 && nLines > 0) yPen += nLines * dy;
}

void DrawHTML::FlushLine(HDC hdc, const LineBuffer& line) {
    if (line.n == 0) return;
    if (bPainting) nLineHeight = rgLineHeight[iLine];
    xPen += DrawLine(hdc, line, true);
}

/// Draws the words on the line's bottom edge; with bFlush they are the last of a run, and centred
/// where that is asked for. Returns the width of what is drawn then.
// QUIRK: only at the very left of the context a leading blank goes, and what is no capital letter
// stands one pixel in. Test: DrawHTMLLayout.SmallLetterAtTheLeftEdgeStandsOnePixelIn
int DrawHTML::DrawLine(HDC hdc, const LineBuffer& line, bool bFlush) {
    const wchar_t* psz = line.sz;
    int cch = line.n;
    int x = xPen;
    if (xPen == 0 && cch) {
        if (*psz == L' ') {
            ++psz;
            --cch;
        }
        if (*psz < L'A' || *psz > L'Z') x = 1;
    }
    if (cch == 0) return 0;
    const SIZE size = bFlush ? MeasureText(hdc, psz, cch) : line.size;
    // QUIRK: each run alone, by the right edge and not by the width.
    // Test: DrawHTMLLayout.CentringGoesByTheRightEdge
    if (bFlush && bCenter) x += (rcLayout.right - size.cx - kMargin) / 2;
    ::TextOutW(hdc, x, yPen + nLineHeight - size.cy, psz, cch);
    return size.cx;
}

/// Three pixels in the bottom right corner: there is more text than room.
void DrawHTML::DrawOverflowMark(HDC hdc) {
    const int y = rcLayout.bottom - 1;
    for (int dx : {3, 5, 7}) {
        ::MoveToEx(hdc, rcLayout.right - dx, y, nullptr);
        ::LineTo(hdc, rcLayout.right - dx - 1, y);
    }
}
