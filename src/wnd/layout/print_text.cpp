#include "wnd/layout/print_text.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include "wnd/core/wnd_input.h"

#include <objbase.h> // without it commdlg.h leaves PrintDlgExW out
#include <commdlg.h>
#include <algorithm>
#include <cstdint>

namespace {
using OwnedPrinter = OwnedHandleOf<HDC, &::DeleteDC>;

constexpr int kMarginsPerInch = 10;
constexpr int kFarOff = 0x10000000; // pixels: beyond any page, and far from where an int ends

/// What the user chose. Empty without a printer.
struct ChosenPrinter {
    // The platform made all three; we close them.
    OwnedGlobal mode, names;
    OwnedPrinter dc;
};

/// Asks the user. False if nothing is to be printed; what the platform gave is in *pChosen then
/// too.
bool ChoosePrinter(HWND hwnd, PRINTDLGEXW* pAsk, ChosenPrinter* pChosen) {
    static constinit RuntimeFunc<decltype(::PrintDlgExW)> func(L"comdlg32.dll", "PrintDlgExW");
    auto* pfnPrintDlg = func.Get();
    if (!pfnPrintDlg) return false;
    pAsk->lStructSize = sizeof(*pAsk);
    pAsk->hwndOwner = hwnd;
    pAsk->Flags =
        PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS | PD_CURRENTPAGE | PD_HIDEPRINTTOFILE;
    pAsk->nMinPage = 1;
    pAsk->nMaxPage = 1000;
    pAsk->nCopies = 1;
    pAsk->nStartPage = START_PAGE_GENERAL;
    HRESULT hr;
    {
        // The platform disables hwnd alone. An owner counts as a parent: it must wait as well.
        CSWndEnabler disabled(::GetAncestor(hwnd, GA_ROOTOWNER));
        hr = pfnPrintDlg(pAsk);
    }
    pChosen->mode.Reset(pAsk->hDevMode);
    pChosen->names.Reset(pAsk->hDevNames);
    pChosen->dc.Reset(pAsk->hDC);
    return hr == S_OK && pAsk->dwResultAction == PD_RESULT_PRINT;
}

/// A margin in pixels.
int MarginPixels(HDC hdc, int nDotsIndex, int nMargin) {
    std::int64_t nPixels =
        static_cast<std::int64_t>(::GetDeviceCaps(hdc, nDotsIndex)) * nMargin / kMarginsPerInch;
    return static_cast<int>(std::clamp<std::int64_t>(nPixels, -kFarOff, kFarOff));
}

/// The page, with the margins taken off.
RECT TextRect(HDC hdc, const RECT& rcMargins) {
    return {MarginPixels(hdc, LOGPIXELSX, rcMargins.left),
            MarginPixels(hdc, LOGPIXELSY, rcMargins.top),
            ::GetDeviceCaps(hdc, HORZRES) - MarginPixels(hdc, LOGPIXELSX, rcMargins.right),
            ::GetDeviceCaps(hdc, VERTRES) - MarginPixels(hdc, LOGPIXELSY, rcMargins.bottom)};
}

/// The whole document. False as soon as the printer refuses.
bool PrintPage(HDC hdc, LPCWSTR pszDocName, LPCWSTR pszText, int bFixedFont,
               const RECT& rcMargins) {
    ::SelectObject(hdc, ::GetStockObject(bFixedFont ? ANSI_FIXED_FONT : ANSI_VAR_FONT));
    DOCINFOW doc{};
    doc.cbSize = sizeof(doc);
    doc.lpszDocName = pszDocName;
    if (::StartDocW(hdc, &doc) <= 0) return false;
    RECT rc = TextRect(hdc, rcMargins);
    bool bPrinted = ::StartPage(hdc) > 0;
    if (bPrinted) {
        // Not changed without DT_MODIFYSTRING. Its height is no sign of success: that of no text
        // is 0.
        ::DrawTextExW(hdc, const_cast<LPWSTR>(pszText), -1, &rc,
                      DT_WORDBREAK | DT_NOFULLWIDTHCHARBREAK, nullptr);
        bPrinted = ::EndPage(hdc) > 0;
    }
    return ::EndDoc(hdc) > 0 && bPrinted;
}
} // namespace

int PrintText(HWND hwnd, LPCWSTR pszDocName, LPCWSTR pszText, int bFixedFont, int, int nLeft,
              int nTop, int nRight, int nBottom) {
    HeapArray<PRINTDLGEXW> ask(1);
    if (!ask.IsReady()) {
        ::SetLastError(static_cast<DWORD>(E_OUTOFMEMORY));
        return 0;
    }
    ChosenPrinter chosen;
    if (!ChoosePrinter(hwnd, ask.Get(), &chosen) || !chosen.dc) return 0;
    RECT rcMargins{nLeft, nTop, nRight, nBottom};
    return PrintPage(chosen.dc.Get(), pszDocName, pszText ? pszText : L"", bFixedFont, rcMargins);
}
