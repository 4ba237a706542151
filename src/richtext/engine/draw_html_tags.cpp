// Tags: what they change, and how it is undone.

#include "richtext/engine/draw_html.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>

namespace {
constexpr COLORREF kNoColor = 0xFFFFFFFF; // the tag changed none

struct TagPair {
    const wchar_t* pszOpening;
    const wchar_t* pszClosing;
};

using H = DrawHTML;
constexpr TagPair kFontTags[] = {
    // FontChange, from 1
    {H::pszBra_B, H::pszKet_B},     {H::pszBra_I, H::pszKet_I},
    {H::pszBra_U, H::pszKet_U},     {H::pszBra_H, H::pszKet_H},
    {H::pszBra_BIG, H::pszKet_BIB}, {H::pszBra_SMALL, H::pszKet_SMALL},
    {H::pszBra_A, H::pszKet_A},     {H::pszBra_A1, H::pszKet_A1},
    {H::pszBra_A2, H::pszKet_A2},   {H::pszBra_A3, H::pszKet_A3},
    {H::pszBra_A4, H::pszKet_A4},   {H::pszBra_A5, H::pszKet_A5},
    {H::pszBra_A6, H::pszKet_A6},   {H::pszBra_A7, H::pszKet_A7},
    {H::pszBra_A8, H::pszKet_A8},   {H::pszBra_A9, H::pszKet_A9},
    {H::pszBra_AA, H::pszKet_AA},   {H::pszBra_CT, H::pszKet_CT},
    {H::pszBra_D, H::pszKet_D},
};

struct ColorTag {
    TagPair tag;
    COLORREF rgb;
};
constexpr ColorTag kColorTags[] = {
    // ColorChange, from 1
    {{H::pszBra_RED, H::pszKet_RED}, RGB(128, 0, 0)},
    {{H::pszBra_GREEN, H::pszKet_GREEN}, RGB(0, 128, 0)},
    {{H::pszBra_BLUE, H::pszKet_BLUE}, RGB(0, 0, 128)},
    {{H::pszBra_GREY, H::pszKet_GREY}, RGB(128, 128, 128)},
    {{H::pszBra_LTRED, H::pszKet_LTRED}, RGB(192, 0, 0)},
    {{H::pszBra_LTGREEN, H::pszKet_LTGREEN}, RGB(0, 192, 0)},
    {{H::pszBra_LTBLUE, H::pszKet_LTBLUE}, RGB(0, 0, 192)},
    {{H::pszBra_LTGREY, H::pszKet_LTGREY}, RGB(192, 192, 192)},
    {{H::pszBra_DKRED, H::pszKet_DKRED}, RGB(64, 0, 0)},
    {{H::pszBra_DKGREEN, H::pszKet_DKGREEN}, RGB(0, 64, 0)},
    {{H::pszBra_DKBLUE, H::pszKet_DKBLUE}, RGB(0, 0, 64)},
    {{H::pszBra_DKGREY, H::pszKet_DKGREY}, RGB(64, 64, 64)},
};

/// Changes the magnitude of the font's height and keeps its sign, which says what is measured. A
/// height of 0 would be the platform's default: it stays above.
void GrowFont(LOGFONTW& lf, int n) {
    const LONG nGrown = std::max<LONG>(std::abs(lf.lfHeight) + n, 1);
    lf.lfHeight = lf.lfHeight < 0 ? -nGrown : nGrown;
}
} // namespace

/// An open tag: what its closing has to bring back.
struct DrawHTML::OpenTagRec {
    const wchar_t* pszClosingTag;
    HFONT hPrevFont;  // null: the tag changed no font
    COLORREF rgbPrev; // kNoColor: the tag changed no colour
};

/// Where the next closing tag of a kind stands, for all places from pFrom up to there.
struct DrawHTML::SpanEnd {
    const wchar_t* item;
    const wchar_t* pFrom;
    const wchar_t* pFound; // null: nowhere behind pFrom
};

namespace {
constexpr std::size_t kSpanKinds = std::size(kFontTags) + std::size(kColorTags) + 1; // and CENTER
} // namespace

bool DrawHTML::PushTag(const wchar_t* pszClosingTag, HFONT hPrevFont, COLORREF rgbPrev) {
    auto* pRec = new (std::nothrow) OpenTagRec{pszClosingTag, hPrevFont, rgbPrev};
    if (pRec && listOpenTags.AddTail(pRec)) return true;
    delete pRec;
    return false;
}

/// The end of a tag's span: its closing tag, wherever in the text, or the end of the span around
/// it. A search through the whole text for each of many tags without an end would take for ever,
/// so what was found is remembered.
const wchar_t* DrawHTML::FindSpanEnd(const wchar_t* text, const wchar_t* item, const wchar_t* end) {
    SpanEnd* pKnown = pSpanEnds;
    while (pKnown->item && pKnown->item != item) ++pKnown;
    const bool bKnown =
        pKnown->item && pKnown->pFrom <= text && (!pKnown->pFound || text <= pKnown->pFound);
    if (!bKnown) *pKnown = {item, text, FindNextItem(text, item)};
    return pKnown->pFound ? pKnown->pFound : end;
}

/// If the span ended with its closing tag, that one is done with. Otherwise its record stays open.
void DrawHTML::CloseSpan(HDC hdc, const wchar_t*& text, const wchar_t* item) {
    if (IsNextItem(text, item)) ProcessClosingTag(hdc, item);
}

// QUIRK: it is always the innermost open tag that ends, not the one of that name.
// Test: DrawHTMLTags.ClosingTagUndoesTheInnermostOpenOne
void DrawHTML::ProcessClosingTag(HDC hdc, const wchar_t* /*tag*/) {
    auto* pRec =
        listOpenTags.IsEmpty() ? nullptr : static_cast<OpenTagRec*>(listOpenTags.RemoveTail());
    if (!pRec) return; // nothing is open
    if (pRec->rgbPrev != kNoColor) ::SetTextColor(hdc, pRec->rgbPrev);
    if (pRec->hPrevFont) ::DeleteObject(::SelectObject(hdc, pRec->hPrevFont));
    delete pRec;
}

void DrawHTML::ResetDrawingState() {
    while (!listOpenTags.IsEmpty()) delete static_cast<OpenTagRec*>(listOpenTags.RemoveTail());
}

/// The fonts of tags that were never closed stay selected behind Draw, as they are part of what it
/// leaves: they can go when the next one has selected its own.
void DrawHTML::KeepFontsOfOpenTags(HDC hdc) {
    auto hfont = static_cast<HFONT>(::GetCurrentObject(hdc, OBJ_FONT));
    for (POS pos = listOpenTags.GetTailPos(); pos;) {
        auto* pRec = static_cast<OpenTagRec*>(listOpenTags.GetPrev(pos));
        if (!pRec->hPrevFont) continue;
        listKeptFonts.AddTail(hfont); // the tag's own; the font before it is the next tag's
        hfont = pRec->hPrevFont;
    }
}

/// One that can't be deleted yet, as another context still has it, is asked again the next time.
void DrawHTML::DeleteKeptFonts() {
    for (POS pos = listKeptFonts.GetHeadPos(); pos;) {
        if (::DeleteObject(listKeptFonts.GetAt(pos))) {
            listKeptFonts.RemoveAt(pos);
        } else {
            listKeptFonts.GetNext(pos);
        }
    }
}

void DrawHTML::ProcessText(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                           DrawHTMLTools* tools) {
    ++nDepth;
    if (nDepth == 1) {
        SpanEnd spanEnds[kSpanKinds + 1] = {}; // the last one stays empty
        pSpanEnds = spanEnds;
        ProcessSpan(hdc, text, end, links, tools);
        pSpanEnds = nullptr;
    } else {
        ProcessSpan(hdc, text, end, links, tools);
    }
    --nDepth;
    if (nDepth == 0 && text < end) DrawOverflowMark(hdc);
}

void DrawHTML::ProcessSpan(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                           DrawHTMLTools* tools) {
    while (text < end) {
        if (!WriteText(hdc, text, end, links, 0)) break;
        // In literal text only its end is a tag; a full line may have ended a word at another.
        const wchar_t* p = text;
        if (*text == L'<' && (!bLiteral || IsNextItem(p, pszKet_T))) {
            ProcessTag(hdc, text, end, links, tools);
        }
    }
}

// The order of the tests is part of the language.
int DrawHTML::ProcessTag(HDC hdc, const wchar_t*& text, const wchar_t* end, DrawHTMLLinks* links,
                         DrawHTMLTools* tools) {
    if (IsNextItem(text, pszBR)) {
        NextLine(hdc, 0);
        return 1;
    }
    if (IsNextItem(text, pszBRHALF)) {
        NextLine(hdc, 1);
        return 1;
    }
    if (IsNextItem(text, pszBra_T)) {
        bLiteral = 1;
        return 1;
    }
    // QUIRK: outside literal mode it vanishes, and what stands behind it is still tested here,
    // although it may be no bracket. Test: DrawHTMLTags.StrayEndOfLiteralTextVanishes
    if (IsNextItem(text, pszKet_T) && bLiteral) {
        bLiteral = 0;
        return 1;
    }
    const bool bMayNest = nDepth < kMaxNesting && listOpenTags.GetCount() < kMaxOpenTags;
    for (int n = 0; bMayNest && n < static_cast<int>(std::size(kFontTags)); ++n) {
        if (!IsNextItem(text, kFontTags[n].pszOpening)) continue;
        ProcessFontChange(static_cast<FontChange>(n + 1), hdc, text, end, links, tools);
        return 1;
    }
    for (const TagPair& tag : kFontTags) {
        if (!IsNextItem(text, tag.pszClosing)) continue;
        ProcessClosingTag(hdc, tag.pszClosing);
        return 1;
    }
    for (int n = 0; bMayNest && n < static_cast<int>(std::size(kColorTags)); ++n) {
        if (!IsNextItem(text, kColorTags[n].tag.pszOpening)) continue;
        ProcessColorChange(static_cast<ColorChange>(n + 1), hdc, text, end, links, tools);
        return 1;
    }
    for (const ColorTag& color : kColorTags) {
        if (!IsNextItem(text, color.tag.pszClosing)) continue;
        ProcessClosingTag(hdc, color.tag.pszClosing);
        return 1;
    }
    if (IsNextItem(text, pszBra_NOBR)) {
        bNoBreak = 1;
    } else if (IsNextItem(text, pszKet_NOBR)) {
        bNoBreak = 0;
    } else if (bMayNest && IsNextItem(text, pszBra_CENTER)) {
        ProcessCenter(hdc, text, end, links, tools);
    } else {
        WriteText(hdc, text, text + 1, links, 1); // no tag: printed
    }
    return 1;
}

void DrawHTML::ProcessFontChange(FontChange change, HDC hdc, const wchar_t*& text,
                                 const wchar_t* end, DrawHTMLLinks* links, DrawHTMLTools* tools) {
    const wchar_t* pszClosing = kFontTags[change - 1].pszClosing;
    auto hPrevFont = static_cast<HFONT>(::GetCurrentObject(hdc, OBJ_FONT));
    LOGFONTW lf{};
    ::GetObjectW(hPrevFont, sizeof(lf), &lf);
    const COLORREF rgbPrev = ::GetTextColor(hdc);
    COLORREF rgb = rgbPrev;
    const bool bLink = change >= FontLink && change <= FontLink9;
    switch (change) {
    case FontBold: lf.lfWeight = FW_BOLD; break;
    case FontItalic: lf.lfItalic = TRUE; break;
    case FontUnderline: lf.lfUnderline = TRUE; break;
    case FontHeading:
        lf.lfWeight = FW_HEAVY;
        GrowFont(lf, 4);
        break;
    case FontBig: GrowFont(lf, 2); break;
    case FontSmall: GrowFont(lf, -2); break;
    case FontAntialiased: lf.lfQuality = ANTIALIASED_QUALITY; break;
    case FontClearType: lf.lfQuality = CLEARTYPE_QUALITY; break;
    case FontStrikeOut: lf.lfStrikeOut = TRUE; break;
    default: // the links
        rgb = tools->GetLinkColor();
        lf.lfUnderline = TRUE;
        break;
    }
    const wchar_t* pSpanEnd = FindSpanEnd(text, pszClosing, end);
    HFONT hfont = ::CreateFontIndirectW(&lf);
    // Without a font of its own the tag has none to give back either.
    if (!PushTag(pszClosing, hfont ? hPrevFont : nullptr, rgb != rgbPrev ? rgbPrev : kNoColor)) {
        if (hfont) ::DeleteObject(hfont);
        return;
    }
    if (hfont) ::SelectObject(hdc, hfont);
    UpdateLineHeight(hdc);
    if (rgb != rgbPrev) ::SetTextColor(hdc, rgb);

    const wchar_t* const pszBegin = text;
    DrawHTMLLinkArea* pArea = nullptr;
    if (bLink) {
        pArea = new (std::nothrow) DrawHTMLLinkArea(idLinkCmd + (change - FontLink));
        pCurrentLink = pArea;
        if (pArea) pArea->StartRect(xPen - rcLayout.left, yPen - rcLayout.top);
    }
    ProcessText(hdc, text, pSpanEnd, links, tools);
    if (pArea) CloseLink(pArea, links, pszBegin, pSpanEnd);
    CloseSpan(hdc, text, pszClosing);
}

/// A link within the link has taken its place: then this one has nothing to close, and goes.
void DrawHTML::CloseLink(DrawHTMLLinkArea* pArea, DrawHTMLLinks* links, const wchar_t* pszBegin,
                         const wchar_t* pszEnd) {
    const bool bCurrent = pCurrentLink == pArea;
    if (bCurrent) {
        pArea->EndRect(xPen - rcLayout.left, yPen - rcLayout.top + nLineHeight);
        pArea->AddText(pszBegin, pszEnd);
        pCurrentLink = nullptr;
    }
    if (!bCurrent || !links || !links->AddTail(pArea)) delete pArea;
}

void DrawHTML::ProcessColorChange(ColorChange change, HDC hdc, const wchar_t*& text,
                                  const wchar_t* end, DrawHTMLLinks* links, DrawHTMLTools* tools) {
    const ColorTag& color = kColorTags[change - 1];
    const wchar_t* pSpanEnd = FindSpanEnd(text, color.tag.pszClosing, end);
    const COLORREF rgbPrev = ::SetTextColor(hdc, color.rgb);
    if (!PushTag(color.tag.pszClosing, nullptr, rgbPrev)) {
        ::SetTextColor(hdc, rgbPrev);
        return;
    }
    ProcessText(hdc, text, pSpanEnd, links, tools);
    ::SetTextColor(hdc, rgbPrev); // also if the closing tag is never met
    CloseSpan(hdc, text, color.tag.pszClosing);
}

void DrawHTML::ProcessCenter(HDC hdc, const wchar_t*& text, const wchar_t* end,
                             DrawHTMLLinks* links, DrawHTMLTools* tools) {
    const wchar_t* pSpanEnd = FindSpanEnd(text, pszKet_CENTER, end);
    bCenter = 1;
    if (PushTag(pszKet_CENTER, nullptr, kNoColor)) {
        ProcessText(hdc, text, pSpanEnd, links, tools);
        CloseSpan(hdc, text, pszKet_CENTER);
    }
    // QUIRK: also within another such span, which ends with the inner one.
    // Test: DrawHTMLTags.NestedCenterEndsTheOuterOne
    bCenter = 0;
}
