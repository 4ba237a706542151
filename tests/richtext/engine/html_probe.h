#pragma once
#include "richtext/engine/draw_html.h"
#include <string>

/// Opens what of DrawHTML only its derived classes may use.
class HtmlProbe : public DrawHTML {
  public:
    HtmlProbe() : DrawHTML(0) {}

    using DrawHTML::bCenter;
    using DrawHTML::bLiteral;
    using DrawHTML::bNoBreak;
    using DrawHTML::iLine;
    using DrawHTML::nLineHeight;
    using DrawHTML::pCurrentLink;
    using DrawHTML::rcLayout;
    using DrawHTML::rgLineHeight;
    using DrawHTML::SkipWhiteSpace;
    using DrawHTML::xPen;
    using DrawHTML::yPen;

    int NextWord(wchar_t*& dest, const wchar_t*& psz) { return GetNextWord(dest, psz, 0); }
    struct Word {
        std::wstring strWord;
        std::wstring strRest;
        int nResult;
    };
    /// The word at the start of a text, in a buffer that has room for all of it.
    Word TakeWord(const wchar_t* psz, int firstLT = 0) {
        std::wstring strBuffer(std::wcslen(psz) + 1, L'#');
        wchar_t* dest = strBuffer.data();
        const int nResult = GetNextWord(dest, psz, firstLT);
        return {std::wstring(strBuffer.data(), dest), psz,
                *dest == 0 ? nResult : -1}; // -1: not terminated
    }
    /// All words of a text, each behind a | and with the blanks before it left out.
    std::wstring AllWords(const wchar_t* psz) {
        std::wstring str;
        for (;;) {
            SkipWhiteSpace(psz);
            Word word = TakeWord(psz);
            if (!word.nResult) return str;
            str += L'|' + word.strWord;
            psz += std::wcslen(psz) - word.strRest.size();
        }
    }
};
