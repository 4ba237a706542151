#pragma once
#include "support/replace_import.h"
#include <windows.h>
#include <cstdlib>
#include <vector>

extern "C" {
// Where the imports' addresses lie.
extern FARPROC __imp_TextOutW, __imp_GetTextExtentPoint32W, __imp_MoveToEx, __imp_LineTo;
extern FARPROC __imp_CreateFontIndirectW, __imp_DeleteObject, __imp_SelectObject;
extern FARPROC __imp_GetCurrentObject, __imp_GetObjectW, __imp_SetTextColor, __imp_GetTextColor;
extern FARPROC __imp_SetBkMode;
}

/// The platform's drawing as far as rich text uses it, as a model in memory with one context: far
/// quicker than the real one, it knows how many fonts there are and notices a font that is used
/// after its end. Texts are as wide as their number of characters says, and drawn nowhere.
class ModelGdi {
  public:
    ModelGdi()
        : replaced{{__imp_TextOutW, &OnTextOut},
                   {__imp_GetTextExtentPoint32W, &OnExtent},
                   {__imp_MoveToEx, &OnMoveTo},
                   {__imp_LineTo, &OnLineTo},
                   {__imp_CreateFontIndirectW, &OnCreateFont},
                   {__imp_DeleteObject, &OnDelete},
                   {__imp_SelectObject, &OnSelect},
                   {__imp_GetCurrentObject, &OnCurrent},
                   {__imp_GetObjectW, &OnGetObject},
                   {__imp_SetTextColor, &OnSetTextColor},
                   {__imp_GetTextColor, &OnGetTextColor},
                   {__imp_SetBkMode, &OnSetBkMode}} {
        pCurrent = this;
        LOGFONTW lf{};
        lf.lfHeight = -20;
        hfontBase = OnCreateFont(&lf);
        hfontSelected = hfontBase;
    }
    ~ModelGdi() { pCurrent = nullptr; }
    ModelGdi(const ModelGdi&) = delete;
    ModelGdi& operator=(const ModelGdi&) = delete;

    HDC GetDC() const { return reinterpret_cast<HDC>(1); }
    HFONT GetBaseFont() const { return hfontBase; }
    /// Fonts that were made and are not deleted, without the base font.
    int GetLiveFonts() const { return nLive - 1; }
    /// Uses of fonts that are none.
    int GetFaults() const { return nFaults; }
    /// Told of each text: its place, its characters.
    void (*fnOnText)(int x, int y, const wchar_t* psz, int cch) = nullptr;

    long nTexts = 0, nExtents = 0;
    unsigned long long qwUnits = 0; // in these texts

  private:
    struct Font {
        LOGFONTW lf;
        bool bAlive;
    };
    static constexpr std::size_t kFirst = 0x1000;

    Font* Find(HGDIOBJ h) {
        const std::size_t n = reinterpret_cast<std::size_t>(h) - kFirst;
        if (n < fonts.size() && fonts[n].bAlive) return &fonts[n];
        ++nFaults;
        return &fonts[0];
    }
    static HFONT WINAPI OnCreateFont(const LOGFONTW* plf) {
        ModelGdi& g = *pCurrent;
        ++g.nLive;
        if (g.free.empty()) {
            g.fonts.push_back({*plf, true});
            return reinterpret_cast<HFONT>(kFirst + g.fonts.size() - 1);
        }
        const std::size_t n = g.free.back();
        g.free.pop_back();
        g.fonts[n] = {*plf, true};
        return reinterpret_cast<HFONT>(kFirst + n);
    }
    static BOOL WINAPI OnDelete(HGDIOBJ h) {
        ModelGdi& g = *pCurrent;
        Font* pFont = g.Find(h);
        if (h == g.hfontBase || h == g.hfontSelected) ++g.nFaults;
        if (pFont == &g.fonts[0]) return FALSE;
        pFont->bAlive = false;
        --g.nLive;
        g.free.push_back(static_cast<std::size_t>(pFont - g.fonts.data()));
        return TRUE;
    }
    static HGDIOBJ WINAPI OnSelect(HDC, HGDIOBJ h) {
        pCurrent->Find(h);
        return std::exchange(pCurrent->hfontSelected, h);
    }
    static HGDIOBJ WINAPI OnCurrent(HDC, UINT) { return pCurrent->hfontSelected; }
    static int WINAPI OnGetObject(HANDLE h, int cb, LPVOID p) {
        if (cb != static_cast<int>(sizeof(LOGFONTW))) ++pCurrent->nFaults;
        *static_cast<LOGFONTW*>(p) = pCurrent->Find(h)->lf;
        return cb;
    }
    static COLORREF WINAPI OnSetTextColor(HDC, COLORREF cr) {
        return std::exchange(pCurrent->crText, cr);
    }
    static COLORREF WINAPI OnGetTextColor(HDC) { return pCurrent->crText; }
    static int WINAPI OnSetBkMode(HDC, int) { return TRANSPARENT; }
    static BOOL WINAPI OnTextOut(HDC, int x, int y, LPCWSTR psz, int cch) {
        ++pCurrent->nTexts;
        pCurrent->qwUnits += static_cast<unsigned>(cch);
        if (pCurrent->fnOnText) pCurrent->fnOnText(x, y, psz, cch);
        return TRUE;
    }
    static BOOL WINAPI OnExtent(HDC, LPCWSTR, int cch, LPSIZE pSize) {
        ++pCurrent->nExtents;
        *pSize = {10 * cch, std::abs(pCurrent->Find(pCurrent->hfontSelected)->lf.lfHeight)};
        return TRUE;
    }
    static BOOL WINAPI OnMoveTo(HDC, int, int, LPPOINT) { return TRUE; }
    static BOOL WINAPI OnLineTo(HDC, int, int) { return TRUE; }

    static inline ModelGdi* pCurrent = nullptr;
    std::vector<Font> fonts;
    std::vector<std::size_t> free;
    HFONT hfontBase = nullptr;
    HGDIOBJ hfontSelected = nullptr;
    COLORREF crText = 0;
    int nLive = 0, nFaults = 0;
    ReplaceImport replaced[12];
};
