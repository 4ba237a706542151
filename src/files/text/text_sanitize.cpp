#include "files/text/cs_file.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <cstddef>

namespace {
constexpr std::size_t kSanitizeBlock =
    64; // characters; a loop of so many is done by wide registers

/// Whether one of the characters may need to be replaced: cheaper to ask than IsPrintableChar, and
/// wrong about two that are rare. No branches: a loop of a fixed length is then done by wide
/// registers.
template <class Char>
bool AnySuspect(const Char* p) {
    Char nAny = 0;
    for (std::size_t i = 0; i < kSanitizeBlock; ++i) {
        const Char ch = p[i];
        nAny |= static_cast<Char>((ch < 32) & (ch != '\t') & (ch != '\n') & (ch != '\r')) |
                static_cast<Char>(ch == 127);
    }
    return nAny != 0;
}

template <class Char>
void ReplaceControls(Char* p, std::size_t n, Char chReplacement) {
    for (std::size_t i = 0; i < n; ++i) {
        if (!IsPrintableChar(p[i])) p[i] = chReplacement;
    }
}

/// Whole texts of files come here, of which hardly any has something to replace. Unsigned is
/// Char's unsigned form.
template <class Unsigned, class Char>
void SanitizeText(Char* p, std::size_t n, Char chReplacement) {
    if (!p) return;
    for (; n >= kSanitizeBlock; n -= kSanitizeBlock, p += kSanitizeBlock) {
        if (AnySuspect(reinterpret_cast<const Unsigned*>(p))) {
            ReplaceControls(p, kSanitizeBlock, chReplacement);
        }
    }
    ReplaceControls(p, n, chReplacement);
}
} // namespace

void CSFile::Sanitize(wchar_t* pszText, unsigned nCount, wchar_t chReplacement) {
    SanitizeText<wchar_t>(pszText, nCount, chReplacement);
}

void CSFile::Sanitize(char* pszText, unsigned nCount, char chReplacement) {
    SanitizeText<unsigned char>(pszText, nCount, chReplacement);
}
