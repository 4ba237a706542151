#pragma once
#include "richtext/engine/draw_html.h"
#include "support/replace_import.h"
#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

// Where the imports' addresses lie.
extern "C" FARPROC __imp_TextOutW;
extern "C" FARPROC __imp_GetTextExtentPoint32W;
extern "C" FARPROC __imp_MoveToEx;
extern "C" FARPROC __imp_LineTo;

/// A piece of text as it was drawn.
struct TextRun {
    int x, y;
    std::wstring strText;
    LOGFONTW font; // of the font that was selected
    COLORREF crText;

    int GetRight() const;
    int GetBottom() const { return y + std::abs(font.lfHeight); }
};

/// How wide a character is in the measure in use.
using CharWidth = int (*)(wchar_t ch);
inline int TenPixels(wchar_t) { return 10; }
constexpr int kWidest = 14;
/// From 3 pixels for an i to 14 for a W, as in a font for reading.
inline int Proportional(wchar_t ch) {
    switch (ch) {
    case L'i':
    case L'l':
    case L'j':
    case L'.':
    case L',': return 3;
    case L' ': return 4;
    case L'm':
    case L'w':
    case L'M':
    case L'W': return kWidest;
    default: return ch >= L'A' && ch <= L'Z' ? 9 : 7;
    }
}

/// A memory context of the calling thread whose texts are measured with made-up widths, and
/// recorded instead of drawn: a text is as high as its font's lfHeight, and as wide as its
/// characters together. Fonts and colours are the context's own, the platform's real ones.
class RecordingDevice {
  public:
    explicit RecordingDevice(CharWidth fnWidthUsed = &TenPixels)
        : fnWidth(fnWidthUsed), hdc(::CreateCompatibleDC(nullptr)),
          textOut(__imp_TextOutW, &OnTextOut), extent(__imp_GetTextExtentPoint32W, &OnExtent),
          moveTo(__imp_MoveToEx, &OnMoveTo), lineTo(__imp_LineTo, &OnLineTo) {
        pCurrent = this;
    }
    ~RecordingDevice() {
        pCurrent = nullptr;
        ::DeleteDC(hdc);
    }
    RecordingDevice(const RecordingDevice&) = delete;
    RecordingDevice& operator=(const RecordingDevice&) = delete;

    operator HDC() const { return hdc; }
    /// What was recorded since the last time.
    std::vector<TextRun> TakeRuns() { return std::exchange(runs, {}); }
    std::vector<POINT> TakePixels() { return std::exchange(pixels, {}); }
    int GetExtentCalls() const { return nExtentCalls; }

    static int WidthOf(std::wstring_view str) {
        int cx = 0;
        for (wchar_t ch : str) cx += pCurrent->fnWidth(ch);
        return cx;
    }

  private:
    static LOGFONTW FontOf(HDC hdcAsked) {
        LOGFONTW lf{};
        ::GetObjectW(::GetCurrentObject(hdcAsked, OBJ_FONT), sizeof(lf), &lf);
        return lf;
    }
    static BOOL WINAPI OnTextOut(HDC hdcUsed, int x, int y, LPCWSTR psz, int cch) {
        const auto n = static_cast<std::size_t>(cch);
        pCurrent->runs.push_back(
            {x, y, std::wstring(psz, n), FontOf(hdcUsed), ::GetTextColor(hdcUsed)});
        return TRUE;
    }
    static BOOL WINAPI OnExtent(HDC hdcUsed, LPCWSTR psz, int cch, LPSIZE pSize) {
        ++pCurrent->nExtentCalls;
        pSize->cx = WidthOf({psz, static_cast<std::size_t>(cch)});
        pSize->cy = std::abs(FontOf(hdcUsed).lfHeight);
        return TRUE;
    }
    static BOOL WINAPI OnMoveTo(HDC, int x, int y, LPPOINT) {
        pCurrent->ptPen = {x, y};
        return TRUE;
    }
    /// A line to the left of one pixel is that pixel; any other length is recorded as (-1, -1).
    static BOOL WINAPI OnLineTo(HDC, int x, int y) {
        const POINT pt = pCurrent->ptPen;
        const bool bOnePixel = pt.x - x == 1 && pt.y == y;
        pCurrent->pixels.push_back(bOnePixel ? pt : POINT{-1, -1});
        return TRUE;
    }

    static inline RecordingDevice* pCurrent = nullptr;
    CharWidth fnWidth;
    HDC hdc;
    POINT ptPen{};
    std::vector<TextRun> runs;
    std::vector<POINT> pixels;
    int nExtentCalls = 0;
    ReplaceImport textOut, extent, moveTo, lineTo;
};

inline int TextRun::GetRight() const { return x + RecordingDevice::WidthOf(strText); }

/// A font that lives as long as the object; 20 pixels high, upright and of normal weight unless
/// fnChange makes it another one.
class TestFont {
  public:
    static constexpr int kHeight = 20;

    explicit TestFont(int nHeight = -kHeight) {
        LOGFONTW lf{};
        lf.lfHeight = nHeight;
        lf.lfWeight = FW_NORMAL;
        lf.lfCharSet = DEFAULT_CHARSET;
        hfont = ::CreateFontIndirectW(&lf);
    }
    ~TestFont() { ::DeleteObject(hfont); }
    TestFont(const TestFont&) = delete;
    TestFont& operator=(const TestFont&) = delete;
    operator HFONT() const { return hfont; }

  private:
    HFONT hfont;
};

constexpr COLORREF kTestText = RGB(1, 2, 3);
constexpr COLORREF kTestLink = RGB(0, 0, 255);

/// Rich text on a recording device: black-ish letters 20 pixels high, blue links, link ids from 100
/// on.
struct HtmlStage {
    explicit HtmlStage(CharWidth fnWidth = &TenPixels, int nFontHeight = -TestFont::kHeight)
        : device(fnWidth), font(nFontHeight) {
        tools.SetCustomFont(font);
        tools.SetTextColor(kTestText);
        tools.SetLinkColor(kTestLink);
    }
    int Draw(DrawMode mode, const std::wstring& str, RECT* prc) {
        return html.Draw(mode, device, prc, str.c_str(), static_cast<unsigned>(str.size()), &links,
                         &tools);
    }
    /// Both passes; the runs of the second.
    std::vector<TextRun> Paint(const std::wstring& str, RECT rc) {
        Draw(DrawMeasure, str, &rc);
        device.TakeRuns();
        device.TakePixels();
        Draw(DrawPaint, str, &rc);
        return device.TakeRuns();
    }

    RecordingDevice device;
    TestFont font;
    DrawHTMLTools tools{FontGui};
    DrawHTMLLinks links;
    DrawHTML html{kFirstLink};

    static constexpr unsigned kFirstLink = 100;
};

/// A rectangle that is high enough for any text of a test, and so wide that nothing wraps unless it
/// is told how wide.
inline RECT TallRect(int cx = 402) { return {10, 5, 10 + cx, 100'005}; }

inline std::wstring JoinRuns(const std::vector<TextRun>& runs) {
    std::wstring str;
    for (const TextRun& run : runs) str += run.strText;
    return str;
}
