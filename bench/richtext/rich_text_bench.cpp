// What painting rich text costs beside the same calls of the platform done barely, how fast the
// scanner is alone, and that the time grows as the text does. `bench_richtext`.

#include "../measure.h"
#include "richtext/engine/html_probe.h"
#include "richtext/engine/model_gdi.h"
#include "support/replace_import.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {
constexpr int kWidth = 500;

/// A paragraph as texts of dialogs are: words, some tags, a link.
constexpr const wchar_t* kParagraph =
    L"<H>Desktop icons</H><BR>The <b>positions</b> of all icons are kept &amp; brought back "
    L"whenever the screen changes. See <A>the web page</A> for <I>all of the settings</I>, or "
    L"look into C:\\Program Files\\Tessaly\\readme.txt. <dkgrey>Nothing is sent anywhere</dkgrey> "
    L"unless you ask for it; what is stored lies in the registry and can be deleted at any "
    L"time.<BR><BRHALF>";

std::wstring RepeatTo(const wchar_t* psz, std::size_t nUnits) {
    std::wstring str;
    while (str.size() < nUnits) str += psz;
    return str;
}

/// A memory context with a picture of its own, as wide as the text and as high as most windows.
class Canvas {
  public:
    Canvas() : hdc(::CreateCompatibleDC(nullptr)) {
        HDC hdcScreen = ::GetDC(nullptr);
        hbm = ::CreateCompatibleBitmap(hdcScreen, kWidth, 800);
        ::ReleaseDC(nullptr, hdcScreen);
        hbmBefore = ::SelectObject(hdc, hbm);
    }
    ~Canvas() {
        ::SelectObject(hdc, hbmBefore);
        ::DeleteObject(hbm);
        ::DeleteDC(hdc);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    operator HDC() const { return hdc; }

  private:
    HDC hdc;
    HBITMAP hbm = nullptr;
    HGDIOBJ hbmBefore = nullptr;
};

/// A text, drawn in both passes.
class Painter {
  public:
    void Paint(const std::wstring& str) {
        RECT rc = {10, 0, kWidth, 0x10000000};
        const auto nLength = static_cast<unsigned>(str.size());
        html.Draw(DrawMeasure, measuring, &rc, str.c_str(), nLength, &links, &tools);
        html.Draw(DrawPaint, canvas, nullptr, str.c_str(), nLength, &links, &tools);
    }
    Canvas measuring, canvas;
    HtmlProbe html;
    DrawHTMLLinks links;
    DrawHTMLTools tools{FontGui};
};

/// The platform's calls of a paint, written down while they are made, to be made once more without
/// what lies between them.
class CallRecorder {
  public:
    CallRecorder()
        : replaced{{__imp_TextOutW, &OnTextOut},
                   {__imp_GetTextExtentPoint32W, &OnExtent},
                   {__imp_CreateFontIndirectW, &OnCreateFont},
                   {__imp_DeleteObject, &OnDelete},
                   {__imp_SelectObject, &OnSelect},
                   {__imp_GetCurrentObject, &OnCurrent},
                   {__imp_GetObjectW, &OnGetObject},
                   {__imp_SetTextColor, &OnSetColor},
                   {__imp_GetTextColor, &OnGetColor}} {
        pCurrent = this;
        calls.reserve(100'000);
    }
    ~CallRecorder() { pCurrent = nullptr; }
    CallRecorder(const CallRecorder&) = delete;
    CallRecorder& operator=(const CallRecorder&) = delete;

    enum Kind { Text, Extent, Create, Delete, Select, Current, Object, SetColor, GetColor };
    struct Call {
        Kind kind;
        HDC hdc;
        int x, y;
        std::wstring str;
        LOGFONTW lf;
        int nFont; // which of the fonts that were made; -1: the font at the beginning
        COLORREF cr;
    };
    std::vector<Call> TakeCalls() { return std::move(calls); }

  private:
    template <class Fn>
    static Fn* Real(int n) {
        return pCurrent->replaced[n].Original<Fn>();
    }
    static Call& Add(Kind kind, HDC hdc) {
        pCurrent->calls.push_back({kind, hdc, 0, 0, {}, {}, -1, 0});
        return pCurrent->calls.back();
    }
    static int NumberOf(HGDIOBJ h) {
        auto& fonts = pCurrent->fonts;
        for (int n = static_cast<int>(fonts.size()) - 1; n >= 0; --n)
            if (fonts[n] == h) return n;
        return -1;
    }
    static BOOL WINAPI OnTextOut(HDC hdc, int x, int y, LPCWSTR psz, int cch) {
        Call& call = Add(Text, hdc);
        call.x = x;
        call.y = y;
        call.str.assign(psz, cch);
        return Real<decltype(::TextOutW)>(0)(hdc, x, y, psz, cch);
    }
    static BOOL WINAPI OnExtent(HDC hdc, LPCWSTR psz, int cch, LPSIZE pSize) {
        Add(Extent, hdc).str.assign(psz, cch);
        return Real<decltype(::GetTextExtentPoint32W)>(1)(hdc, psz, cch, pSize);
    }
    static HFONT WINAPI OnCreateFont(const LOGFONTW* plf) {
        Add(Create, nullptr).lf = *plf;
        HFONT hfont = Real<decltype(::CreateFontIndirectW)>(2)(plf);
        pCurrent->fonts.push_back(hfont);
        return hfont;
    }
    static BOOL WINAPI OnDelete(HGDIOBJ h) {
        Add(Delete, nullptr).nFont = NumberOf(h);
        return Real<decltype(::DeleteObject)>(3)(h);
    }
    static HGDIOBJ WINAPI OnSelect(HDC hdc, HGDIOBJ h) {
        Add(Select, hdc).nFont = NumberOf(h);
        return Real<decltype(::SelectObject)>(4)(hdc, h);
    }
    static HGDIOBJ WINAPI OnCurrent(HDC hdc, UINT nType) {
        Add(Current, hdc);
        return Real<decltype(::GetCurrentObject)>(5)(hdc, nType);
    }
    static int WINAPI OnGetObject(HANDLE h, int cb, LPVOID p) {
        Add(Object, nullptr).nFont = NumberOf(h);
        return Real<decltype(::GetObjectW)>(6)(h, cb, p);
    }
    static COLORREF WINAPI OnSetColor(HDC hdc, COLORREF cr) {
        Add(SetColor, hdc).cr = cr;
        return Real<decltype(::SetTextColor)>(7)(hdc, cr);
    }
    static COLORREF WINAPI OnGetColor(HDC hdc) {
        Add(GetColor, hdc);
        return Real<decltype(::GetTextColor)>(8)(hdc);
    }

    static inline CallRecorder* pCurrent = nullptr;
    std::vector<Call> calls;
    std::vector<HGDIOBJ> fonts;
    ReplaceImport replaced[9];
};

void MakeCalls(const std::vector<CallRecorder::Call>& calls, HGDIOBJ hfontBase,
               std::vector<HGDIOBJ>& fonts) {
    using R = CallRecorder;
    fonts.clear();
    const auto fontOf = [&](int n) { return n < 0 ? hfontBase : fonts[n]; };
    SIZE size;
    LOGFONTW lf;
    for (const R::Call& call : calls) {
        const int cch = static_cast<int>(call.str.size());
        switch (call.kind) {
        case R::Text: ::TextOutW(call.hdc, call.x, call.y, call.str.data(), cch); break;
        case R::Extent: ::GetTextExtentPoint32W(call.hdc, call.str.data(), cch, &size); break;
        case R::Create: fonts.push_back(::CreateFontIndirectW(&call.lf)); break;
        case R::Delete: ::DeleteObject(fontOf(call.nFont)); break;
        case R::Select: ::SelectObject(call.hdc, fontOf(call.nFont)); break;
        case R::Current: ::GetCurrentObject(call.hdc, OBJ_FONT); break;
        case R::Object: ::GetObjectW(fontOf(call.nFont), sizeof(lf), &lf); break;
        case R::SetColor: ::SetTextColor(call.hdc, call.cr); break;
        case R::GetColor: ::GetTextColor(call.hdc); break;
        }
    }
}

/// A paint in which the platform's calls cost next to nothing.
double OwnSeconds(const std::wstring& str) {
    ModelGdi gdi;
    Painter painter;
    painter.tools.SetCustomFont(gdi.GetBaseFont());
    return Seconds([&] { painter.Paint(str); });
}

/// Both in turn, each by its fastest turns: they take milliseconds, and what the machine does
/// besides takes more.
template <class First, class Second>
Comparison CompareFastest(int nTurns, First&& first, Second&& second) {
    std::vector<double> timesFirst, timesSecond;
    for (int i = 0; i < nTurns; ++i) {
        timesFirst.push_back(Seconds(first));
        timesSecond.push_back(Seconds(second));
    }
    for (auto* pTimes : {&timesFirst, &timesSecond}) {
        std::sort(pTimes->begin(), pTimes->end());
        pTimes->resize(nTurns / 80);
    }
    return CompareTimes(timesFirst, timesSecond);
}

bool MeasurePaint(const char* pszWhat, const std::wstring& str) {
    Painter painter;
    painter.Paint(str);
    std::vector<CallRecorder::Call> calls;
    {
        CallRecorder recorder;
        painter.Paint(str);
        calls = recorder.TakeCalls();
    }
    std::vector<HGDIOBJ> fonts;
    const auto makeCalls = [&] { MakeCalls(calls, painter.tools.GetFont(), fonts); };
    std::string strWhat = std::string("paint of ") + pszWhat + " / the same calls barely";
    bool bOk = Report(strWhat.c_str(),
                      CompareFastest(
                          400, [&] { painter.Paint(str); }, makeCalls),
                      1.15, true);
    strWhat = std::string("its own work on ") + pszWhat + " / these calls";
    bOk &= Report(strWhat.c_str(),
                  CompareTimed(
                      41, [&] { return OwnSeconds(str); }, [&] { return Seconds(makeCalls); }),
                  0.15, true);
    return bOk;
}

bool ReportSpeed(const char* pszWhat, std::size_t cb, double dLimit,
                 const std::function<void()>& fn) {
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) times.push_back(Seconds(fn));
    std::sort(times.begin(), times.end());
    const double dSpeed = static_cast<double>(cb) / times[times.size() / 2] / 1e6;
    const bool bOk = dSpeed >= dLimit;
    std::printf("%-58s %8.0f MB/s (at least %.0f) %s\n", pszWhat, dSpeed, dLimit,
                bOk ? "ok" : "MISSED");
    return bOk;
}

/// Words as they stand in a text, into a buffer that is emptied at each line.
void ScanWords(HtmlProbe& html, const wchar_t* psz) {
    wchar_t szLine[1024];
    wchar_t* dest = szLine;
    for (html.SkipWhiteSpace(psz); html.NextWord(dest, psz); html.SkipWhiteSpace(psz))
        if (dest > szLine + 200) dest = szLine;
}

bool MeasureScanner() {
    const std::wstring str = RepeatTo(
        L"Plain text of words as people write them, without a single tag in it. ", 4 << 20);
    const std::size_t cb = str.size() * sizeof(wchar_t);
    HtmlProbe html;
    bool bOk = ReportSpeed("words of plain text", cb, 200, [&] { ScanWords(html, str.c_str()); });
    const wchar_t* volatile pFound = nullptr;
    bOk &= ReportSpeed("search for a closing tag in plain text", cb, 200,
                       [&] { pFound = DrawHTML::FindNextItem(str.c_str(), DrawHTML::pszKet_B); });
    bOk &= ReportSpeed("plain text without its tags", cb, 200, [&] {
        std::vector<wchar_t> out(str.size() + 1);
        DrawHTML::GetHTMLTextStripTags(str.c_str(), out.data(), static_cast<int>(out.size()));
    });
    return bOk;
}

BOOL WINAPI NoText(HDC, int, int, LPCWSTR, int) { return TRUE; }
BOOL WINAPI SixPixelsEach(HDC, LPCWSTR, int cch, LPSIZE pSize) {
    *pSize = {6 * cch, 13};
    return TRUE;
}

/// Three sizes of one text, without what the platform needs for measuring and drawing it.
bool MeasureGrowth(const char* pszWhat, const wchar_t* pszPiece) {
    ReplaceImport textOut(__imp_TextOutW, &NoText);
    ReplaceImport extent(__imp_GetTextExtentPoint32W, &SixPixelsEach);
    constexpr std::size_t kSmall = 5 << 10; // 10 KB
    const std::wstring strSmall = RepeatTo(pszPiece, kSmall);
    bool bOk = true;
    for (int nTimes : {10, 100}) {
        const std::wstring strLarge = RepeatTo(pszPiece, nTimes * kSmall);
        Painter painter;
        const std::string strWhat =
            std::string(pszWhat) + ": " + std::to_string(10 * nTimes) + " KB / as often 10 KB";
        bOk &= Report(strWhat.c_str(),
                      Compare(
                          nTimes == 10 ? 41 : 11, [&] { painter.Paint(strLarge); },
                          [&] {
                              for (int i = 0; i < nTimes; ++i) painter.Paint(strSmall);
                          }),
                      1.25, true);
    }
    return bOk;
}
} // namespace

int main() {
    bool bOk = MeasurePaint("10 KB of mark-up", RepeatTo(kParagraph, 5 << 10));
    bOk &= MeasurePaint("10 KB of words", RepeatTo(L"some plain words, ", 5 << 10));
    bOk &= MeasureScanner();
    bOk &= MeasureGrowth("mark-up", kParagraph);
    bOk &= MeasureGrowth("tags that are never closed", L"<B>bold <RED>red <A>link <CENTER>x ");
    return bOk ? 0 : 1;
}
