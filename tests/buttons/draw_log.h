#pragma once
#include "buttons/icon_probe.h"
#include "support/replace_import.h"

#include <windows.h>
#include <cstdio>
#include <string>
#include <vector>

extern "C" FARPROC __imp_DrawTextW;
extern "C" FARPROC __imp_RoundRect;
extern "C" FARPROC __imp_MoveToEx;
extern "C" FARPROC __imp_LineTo;
extern "C" FARPROC __imp_DrawIconEx;
extern "C" FARPROC __imp_DrawFrameControl;
extern "C" FARPROC __imp_GetTextExtentPoint32W;

inline std::string Format(const char* pszFormat, auto... args) {
    char sz[300];
    std::snprintf(sz, sizeof(sz), pszFormat, args...);
    return sz;
}
inline std::string RectText(const RECT& rc) {
    return Format("(%ld,%ld)-(%ld,%ld)", rc.left, rc.top, rc.right, rc.bottom);
}
inline std::string Narrow(const std::wstring& str) { return std::string(str.begin(), str.end()); }

/// The drawing calls of an icon button, a line each, with what was selected into the context. The
/// platform still runs them. One at a time.
class DrawLog {
  public:
    /// Texts are 6 by 13 pixels a character without the first "&", for rectangles that are worked
    /// out by hand; otherwise as the platform measures.
    bool bFixedText = false;
    HICON hicon = nullptr, hiconHover = nullptr;

    DrawLog()
        : text(__imp_DrawTextW, &Text), round(__imp_RoundRect, &Round), move(__imp_MoveToEx, &Move),
          line(__imp_LineTo, &Line), icon(__imp_DrawIconEx, &Icon),
          frame(__imp_DrawFrameControl, &Frame), measure(__imp_GetTextExtentPoint32W, &Measure) {
        pNow = this;
    }
    ~DrawLog() { pNow = nullptr; }

    std::vector<std::string> Take() {
        std::vector<std::string> taken;
        taken.swap(lines);
        return taken;
    }
    /// What texts were measured.
    std::vector<std::wstring> measured;

    static int CountShown(const wchar_t* psz) {
        std::wstring str = psz;
        return static_cast<int>(str.size()) - (str.find(L'&') != std::wstring::npos);
    }

  private:
    static std::string FontOf(HDC hdc) {
        HGDIOBJ h = ::GetCurrentObject(hdc, OBJ_FONT);
        if (h == ProbeIconBtn::hFontLink) return "link";
        if (h == ProbeIconBtn::hFontText) return "text";
        return "other";
    }
    static std::string PenOf(HDC hdc) {
        HGDIOBJ h = ::GetCurrentObject(hdc, OBJ_PEN);
        for (const NamedPen& pen : kPens)
            if (*pen.ppen == h) return pen.pszName;
        return "other";
    }
    static std::string BrushOf(HDC hdc) {
        return ::GetCurrentObject(hdc, OBJ_BRUSH) == ::GetStockObject(NULL_BRUSH) ? "" : " filled";
    }

    static int WINAPI Text(HDC hdc, LPCWSTR psz, int cch, LPRECT prc, UINT uFormat) {
        RECT rc = *prc;
        int nResult = 0;
        if (pNow->bFixedText && uFormat & DT_CALCRECT) {
            prc->right = prc->left + 6 * CountShown(psz);
            prc->bottom = prc->top + 13;
        } else {
            nResult = pNow->text.Original<decltype(::DrawTextW)>()(hdc, psz, cch, prc, uFormat);
        }
        std::string strText = Narrow(cch < 0 ? psz : std::wstring(psz, cch));
        if (uFormat & DT_CALCRECT) {
            pNow->lines.push_back(
                Format("rect '%s' %s %x", strText.c_str(), RectText(rc).c_str(), uFormat));
        } else {
            pNow->lines.push_back(
                Format("text '%s' %s %x color %06lx on %06lx%s font %s", strText.c_str(),
                       RectText(rc).c_str(), uFormat, ::GetTextColor(hdc), ::GetBkColor(hdc),
                       ::GetBkMode(hdc) == OPAQUE ? "" : " transparent", FontOf(hdc).c_str()));
        }
        return nResult;
    }
    static BOOL WINAPI Round(HDC hdc, int left, int top, int right, int bottom, int cx, int cy) {
        RECT rc{left, top, right, bottom};
        pNow->lines.push_back(Format("round %s by %d,%d %s%s", RectText(rc).c_str(), cx, cy,
                                     PenOf(hdc).c_str(), BrushOf(hdc).c_str()));
        return pNow->round.Original<decltype(::RoundRect)>()(hdc, left, top, right, bottom, cx, cy);
    }
    static BOOL WINAPI Move(HDC hdc, int x, int y, LPPOINT ppt) {
        pNow->ptFrom = {x, y};
        return pNow->move.Original<decltype(::MoveToEx)>()(hdc, x, y, ppt);
    }
    static BOOL WINAPI Line(HDC hdc, int x, int y) {
        RECT rc{pNow->ptFrom.x, pNow->ptFrom.y, x, y};
        pNow->lines.push_back(Format("line %s %s", RectText(rc).c_str(), PenOf(hdc).c_str()));
        return pNow->line.Original<decltype(::LineTo)>()(hdc, x, y);
    }
    static BOOL WINAPI Icon(HDC hdc, int x, int y, HICON h, int cx, int cy, UINT nStep, HBRUSH hbr,
                            UINT uFlags) {
        const char* pszIcon = h == pNow->hicon        ? "normal"
                              : h == pNow->hiconHover ? "hover"
                                                      : "other";
        pNow->lines.push_back(Format("icon %s (%d,%d) %dx%d %u %s %x", pszIcon, x, y, cx, cy, nStep,
                                     hbr == ProbeIconBtn::hbrBkg ? "bkg" : "other", uFlags));
        return pNow->icon.Original<decltype(::DrawIconEx)>()(hdc, x, y, h, cx, cy, nStep, hbr,
                                                             uFlags);
    }
    static BOOL WINAPI Frame(HDC hdc, LPRECT prc, UINT uType, UINT uState) {
        pNow->lines.push_back(Format("face %s %u %x", RectText(*prc).c_str(), uType, uState));
        return pNow->frame.Original<decltype(::DrawFrameControl)>()(hdc, prc, uType, uState);
    }
    static BOOL WINAPI Measure(HDC hdc, LPCWSTR psz, int cch, LPSIZE psize) {
        pNow->measured.push_back(std::wstring(psz, cch));
        if (pNow->bFixedText) {
            *psize = {6 * cch, 13};
            return TRUE;
        }
        return pNow->measure.Original<decltype(::GetTextExtentPoint32W)>()(hdc, psz, cch, psize);
    }

    static inline DrawLog* pNow = nullptr;
    std::vector<std::string> lines;
    POINT ptFrom{};
    ReplaceImport text, round, move, line, icon, frame, measure;
};
