// Characters and words: what stands at the cursor.

#include "richtext/engine/draw_html.h"

#include <cwchar>

namespace {
constexpr wchar_t FoldAscii(wchar_t ch) {
    return ch >= L'A' && ch <= L'Z' ? static_cast<wchar_t>(ch + (L'a' - L'A')) : ch;
}

/// As IsWhiteChar, but inlined: every character of a text passes here.
constexpr bool IsSpace(wchar_t ch) {
    return ch == L' ' || ch == L'\t' || ch == L'\r' || ch == L'\n';
}

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

// The caller has set pchWordLimit. Where that is reached the word ends as it would before a blank.
int DrawHTML::GetNextWord(wchar_t*& dest, const wchar_t*& text, int firstLT) {
    const wchar_t* const pchStart = dest;
    for (; *text && dest < pchWordLimit; ++text) {
        const wchar_t ch = *text;
        if (ch == L'<') {
            const wchar_t* p = text;
            if (firstLT) {
                firstLT = 0; // text
            } else if (!bLiteral || IsNextItem(p, pszKet_T)) {
                break;
            }
        } else if (ch == L'&' && !bLiteral) {
            if (wchar_t chEntity = TakeEntity(text)) {
                *dest++ = chEntity;
                --text; // the loop moves on
                continue;
            }
        } else if (!bNoBreak) {
            if (IsSpace(ch)) break;
            // A path can wrap behind each of its parts.
            if ((ch == L'\\' || ch == L'/') && dest != pchStart) break;
        }
        *dest++ = ch;
    }
    *dest = 0;
    return dest != pchStart;
}

unsigned DrawHTML::GetHTMLTextStripTags(const wchar_t* html, wchar_t* out, int /*size*/) {
    unsigned n = 0;
    const auto put = [&](wchar_t ch) {
        if (out) out[n] = ch;
        ++n;
    };
    while (html && *html) {
        if (*html != L'<') {
            put(*html++);
            continue;
        }
        if (IsNextItem(html, pszBR)) {
            put(L'\r');
            put(L'\n');
            continue;
        }
        while (*html && *html != L'>') ++html;
        if (*html) ++html;
    }
    if (out) out[n] = 0;
    return n + 1;
}
