// Characters and words: what stands at the cursor.

#include "richtext/engine/draw_html.h"

#include <cwchar>
#include <string_view>

namespace {
constexpr wchar_t FoldAscii(wchar_t ch) {
    return ch >= L'A' && ch <= L'Z' ? static_cast<wchar_t>(ch + (L'a' - L'A')) : ch;
}

/// As IsWhiteChar, but inlined: every character of a text passes here.
constexpr bool IsSpace(wchar_t ch) {
    return ch == L' ' || ch == L'\t' || ch == L'\r' || ch == L'\n';
}

/// Characters that may be more than part of a word; all others are copied at once.
class SpecialChars {
  public:
    constexpr SpecialChars() {
        for (wchar_t ch : {L'\0', L'<', L'&', L'\\', L'/', L' ', L'\t', L'\r', L'\n'})
            bIs[ch] = true;
    }
    constexpr bool Has(wchar_t ch) const { return ch < kAscii && bIs[ch]; }

  private:
    static constexpr int kAscii = 128;
    bool bIs[kAscii] = {};
};
constexpr SpecialChars kSpecialChars;

struct Entity {
    const wchar_t* pszName;
    wchar_t ch;
};
constexpr Entity kEntities[] = {
    {DrawHTML::pszAMP, L'&'},
    {DrawHTML::pszLT, L'<'},
    {DrawHTML::pszGT, L'>'},
    {DrawHTML::pszNBSP, L' '},
};
constexpr int kEntityReach = 10; // steps from the "&" in which its ";" must come

/// The character of the entity at the cursor, which moves behind it; 0, and nothing moves, for
/// none.
wchar_t TakeEntity(const wchar_t*& text) {
    const wchar_t* pEnd = text;
    for (int n = 0; n < kEntityReach && *pEnd && *pEnd != L';'; ++n) ++pEnd;
    if (*pEnd != L';') return 0;
    for (const Entity& entity : kEntities) {
        if (DrawHTML::IsNextItem(text, entity.pszName)) return entity.ch;
    }
    return 0;
}
} // namespace

int DrawHTML::IsNextItem(const wchar_t*& text, const wchar_t* item) {
    const wchar_t* p = text;
    for (; *item; ++item, ++p) {
        if (FoldAscii(*p) != FoldAscii(*item)) return 0; // also at the text's terminator
    }
    text = p;
    return 1;
}

const wchar_t* DrawHTML::FindNextItem(const wchar_t* text, const wchar_t* item) {
    if (!*item) return text;
    const wchar_t chFirst = FoldAscii(*item);
    for (; *text; ++text) {
        if (FoldAscii(*text) != chFirst) continue;
        const wchar_t* p = text;
        if (IsNextItem(p, item)) return text;
    }
    return nullptr;
}

int DrawHTML::SkipWhiteSpace(const wchar_t*& text) {
    const wchar_t* pStart = text;
    while (IsSpace(*text)) ++text;
    return text != pStart;
}

int DrawHTML::GetNextWord(wchar_t*& dest, const wchar_t*& text, int firstLT) {
    return CopyWord(dest, nullptr, text, firstLT); // no end is ever reached
}

/// Where the buffer's end is reached the word ends as it would before a blank.
int DrawHTML::CopyWord(wchar_t*& dest, const wchar_t* pchDestEnd, const wchar_t*& text,
                       int firstLT) {
    const wchar_t* const pchStart = dest;
    while (dest != pchDestEnd) {
        const wchar_t ch = *text;
        if (kSpecialChars.Has(ch)) {
            if (ch == 0) break;
            if (ch == L'<') {
                const wchar_t* p = text;
                if (!firstLT && (!bLiteral || IsNextItem(p, pszKet_T))) break;
                firstLT = 0; // text
            } else if (ch == L'&') {
                if (wchar_t chEntity = bLiteral ? L'\0' : TakeEntity(text)) {
                    *dest++ = chEntity;
                    continue;
                }
            } else if (!bNoBreak && (IsSpace(ch) || dest != pchStart)) {
                break; // a path can wrap behind each of its parts
            }
        }
        *dest++ = ch;
        ++text;
    }
    *dest = 0;
    return dest != pchStart;
}

unsigned DrawHTML::GetHTMLTextStripTags(const wchar_t* html, wchar_t* out, int /*size*/) {
    constexpr std::wstring_view kLineEnd = L"\r\n";
    std::size_t n = 0;
    const auto put = [&](std::wstring_view str) {
        if (out) std::wmemcpy(out + n, str.data(), str.size());
        n += str.size();
    };
    while (html && *html) {
        const wchar_t* pEnd = html;
        while (*pEnd && *pEnd != L'<') ++pEnd;
        put({html, pEnd});
        html = pEnd;
        if (!*html) break;
        if (IsNextItem(html, pszBR)) {
            put(kLineEnd);
            continue;
        }
        while (*html && *html != L'>') ++html;
        if (*html) ++html;
    }
    if (out) out[n] = 0;
    return static_cast<unsigned>(n + 1);
}
