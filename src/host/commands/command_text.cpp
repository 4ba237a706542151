#include "host/commands/command_text.h"
#include "runtime/text/text_format.h"

#include <algorithm>

void CommandText::Add(const wchar_t* pszFormat, ...) {
    wchar_t szPiece[kMessageSize];
    va_list args;
    va_start(args, pszFormat);
    int cchPiece = FormatTextV(szPiece, kMessageSize, pszFormat, args);
    va_end(args);
    AddPiece(szPiece, static_cast<std::size_t>(cchPiece));
}

void CommandText::AddPiece(const wchar_t* psz, std::size_t cchPiece) {
    if (!bWhole) return;
    if (cch + cchPiece >= text.GetCount()) {
        constexpr std::size_t kLeastRoom = 1024;
        HeapArray<wchar_t> larger(2 * (cch + cchPiece) + kLeastRoom);
        bWhole = larger.IsReady();
        if (!bWhole) return;
        if (cch) std::copy_n(text.Get(), cch, larger.Get());
        text = std::move(larger);
    }
    std::copy_n(psz, cchPiece, text.Get() + cch); // zeros follow
    cch += cchPiece;
}

void CommandText::NextLine() {
    if (cch) Add(L"\n");
}
