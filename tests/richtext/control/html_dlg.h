#pragma once
// A dialog with rich texts, and what the tests of them look with.
#include "richtext/control/control_ids.h"
#include "richtext/control/cs_static_html.h"
#include "support/input.h"
#include "support/rect.h"
#include "support/replace_import.h"
#include "support/wait_until.h"
#include "wnd/dialog/csdlg.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

extern "C" FARPROC __imp_InvalidateRect;
extern "C" FARPROC __imp_TextOutW;

/// Shows the parts of a control that only derived classes see.
class ProbeHtml : public CSStaticHTML {
  public:
    using CSStaticHTML::bFocused;
    using CSStaticHTML::bHover;
    using CSStaticHTML::bNotify;
    using CSStaticHTML::bTransparent;
    using CSStaticHTML::drawHTML;
    using CSStaticHTML::links;
    using CSStaticHTML::nHTMLLength;
    using CSStaticHTML::pszHTML;
    using CSStaticHTML::tools;
    using CSStaticHTML::UpdateText;
    using CSWnd::hWnd;

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        ++messages[uMsg & 0xFFFF];
        return CSStaticHTML::OnWndMessage(uMsg, wParam, lParam);
    }
    void OnDropFiles(HDROP) override { ++nDrops; }

    std::wstring Text() {
        std::vector<wchar_t> text(GetHTMLTextLength() + 1);
        GetHTMLText(text.data(), static_cast<int>(text.size()));
        return text.data();
    }
    std::wstring WindowText() {
        wchar_t sz[512] = {};
        GetText(sz, 512);
        return sz;
    }
    void Paint() { ::RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); }
    /// The rectangles of a link, in client pixels.
    std::vector<RECT> LinkRects(unsigned iLink = 0) {
        std::vector<RECT> rects;
        for (POS pos = links.GetHeadPos(); pos;) {
            auto* pArea = static_cast<DrawHTMLLinkArea*>(links.GetNext(pos));
            if (iLink-- != 0) continue;
            for (POS posRect = pArea->GetHeadPos(); posRect;) {
                rects.push_back(*static_cast<RECT*>(pArea->GetNext(posRect)));
            }
        }
        return rects;
    }
    LRESULT Press(int x, int y, UINT uMsg = WM_LBUTTONDOWN) {
        return ::SendMessageW(hWnd, uMsg, MK_LBUTTON, MAKELPARAM(x, y));
    }
    LRESULT HitTest(int x, int y) {
        POINT pt{x, y};
        ::ClientToScreen(hWnd, &pt);
        return ::SendMessageW(hWnd, WM_NCHITTEST, 0, MAKELPARAM(pt.x, pt.y));
    }
    POINT ToScreen(int x, int y) const {
        POINT pt{x, y};
        ::ClientToScreen(hWnd, &pt);
        return pt;
    }

    std::vector<int> messages = std::vector<int>(0x10000);
    int nDrops = 0;
};

inline POINT Middle(const RECT& rc) { return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2}; }

class HtmlDlg : public CSDlg {
  public:
    using CSWnd::hWnd;
    struct Command {
        int nId, nCode;
        HWND hwnd;
    };

    HtmlDlg() = default;
    ~HtmlDlg() override {
        if (IsReady()) ::DestroyWindow(hWnd);
    }
    /// Brings the dialog up, with its first painting done.
    bool Show(int nTemplate = IDD_HTML) {
        ParkMouse();
        if (!Modeless(nTemplate, ::GetModuleHandleW(nullptr), nullptr, 1)) return false;
        ::SetWindowPos(hWnd, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        ::SetForegroundWindow(hWnd);
        Pump();
        ::UpdateWindow(hWnd);
        commands.clear(); // what coming up brought: the focus, and whatever was told of it
        return true;
    }
    /// Away from where dialogs come up: over a link it would be a hover that no test asked for.
    static void ParkMouse() {
        constexpr POINT kPark{1000, 10};
        INPUT input = MouseInput(0, kPark);
        ::SendInput(1, &input, sizeof(input));
        PumpUntil([] {
            POINT pt{};
            return ::GetCursorPos(&pt) && pt.x > 900;
        });
    }
    /// Dispatches what is there.
    void Pump() {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) Dispatch(msg);
    }
    /// PumpUntil, with the dialog's keyboard.
    template <class Fn>
    bool PumpKeysUntil(Fn fnDone) {
        for (DWORD nStart = ::GetTickCount(); ::GetTickCount() - nStart < kTestDeadlineMs;) {
            Pump();
            if (fnDone()) return true;
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
        }
        return false;
    }
    /// The commands of one code that came, as ids.
    std::vector<int> Ids(int nCode = 0) const {
        std::vector<int> ids;
        for (const Command& command : commands) {
            if (command.nCode == nCode) ids.push_back(command.nId);
        }
        return ids;
    }

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
        __int64 qw = CSDlg::OnInitDialog(wParam, lParam);
        EnableFullDrag(0);
        if (onInit) onInit(*this);
        return qw;
    }
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override {
        commands.push_back({nId, nCode, hwndCtl});
        if (onCommand) onCommand(*this, nId, nCode);
        return bCloses ? CSDlg::OnCommand(nId, nCode, hwndCtl) : 1;
    }
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        if (uMsg == WM_LBUTTONDOWN) presses.push_back(lParam);
        if (uMsg == WM_ERASEBKGND && onErase) {
            onErase(reinterpret_cast<HDC>(wParam));
            return 1;
        }
        return CSDlg::OnWndMessage(uMsg, wParam, lParam);
    }

    ProbeHtml html, other;
    std::function<void(HtmlDlg&)> onInit;
    std::function<void(HtmlDlg&, int, int)> onCommand;
    std::function<void(HDC)> onErase;
    std::vector<Command> commands;
    std::vector<LPARAM> presses; // that the dialog got itself
    bool bCloses = false;        // whether commands do what they usually do

  private:
    void Dispatch(MSG& msg) {
        if (IsReady() && ::IsDialogMessageW(hWnd, &msg)) return;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
};

/// The dialog with its control of that id as html.
struct ShownHtml {
    explicit ShownHtml(int nId, int nTemplate = IDD_HTML, DWORD dwMyStyle = 0) {
        dlg.onInit = [=](HtmlDlg& d) { d.html.Init(&d, nId, nullptr, dwMyStyle); };
        EXPECT_TRUE(dlg.Show(nTemplate));
    }
    HtmlDlg dlg;
    ProbeHtml& html = dlg.html;
};

/// Calls of InvalidateRect by the program, in the length of a block.
class InvalidateRecord {
  public:
    struct Call {
        HWND hwnd;
        bool bWhole;
        BOOL bErase;
    };
    InvalidateRecord() : replaced(__imp_InvalidateRect, &Record) {
        calls.clear();
        pfn = replaced.Original<decltype(::InvalidateRect)>();
    }
    const std::vector<Call>& Calls() const { return calls; }
    /// One call, for the whole of that window; whether it erases as told.
    bool IsOne(HWND hwnd, BOOL bErase) const {
        return calls.size() == 1 && calls[0].hwnd == hwnd && calls[0].bWhole &&
               !calls[0].bErase == !bErase;
    }

  private:
    static BOOL WINAPI Record(HWND hwnd, const RECT* prc, BOOL bErase) {
        calls.push_back({hwnd, prc == nullptr, bErase});
        return pfn(hwnd, prc, bErase);
    }
    static inline std::vector<Call> calls;
    static inline decltype(&::InvalidateRect) pfn = nullptr;
    ReplaceImport replaced;
};

/// What is drawn on windows by TextOutW in the length of a block.
class TextRecord {
  public:
    struct Run {
        std::wstring text;
        int x, y, cy;
        LONG lWeight;
        COLORREF cr;
    };
    TextRecord() : replaced(__imp_TextOutW, &Record) {
        runs.clear();
        pfn = replaced.Original<decltype(::TextOutW)>();
    }
    const std::vector<Run>& Runs() const { return runs; }
    std::wstring Text() const {
        std::wstring str;
        for (const Run& run : runs) str += run.text;
        return str;
    }
    int Bottom() const {
        int y = 0;
        for (const Run& run : runs) y = std::max(y, run.y + run.cy);
        return y;
    }

  private:
    static BOOL WINAPI Record(HDC hdc, int x, int y, LPCWSTR psz, int cch) {
        if (::GetObjectType(hdc) != OBJ_DC) return pfn(hdc, x, y, psz, cch); // while measuring
        SIZE size{};
        ::GetTextExtentPoint32W(hdc, psz, cch, &size);
        LOGFONTW lf{};
        ::GetObjectW(::GetCurrentObject(hdc, OBJ_FONT), sizeof(lf), &lf);
        runs.push_back({std::wstring(psz, cch), x, y, static_cast<int>(size.cy), lf.lfWeight,
                        ::GetTextColor(hdc)});
        return pfn(hdc, x, y, psz, cch);
    }
    static inline std::vector<Run> runs;
    static inline decltype(&::TextOutW) pfn = nullptr;
    ReplaceImport replaced;
};
