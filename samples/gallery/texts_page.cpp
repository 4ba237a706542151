#include "texts_page.h"
#include "resource_ids.h"

#include <commctrl.h>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_HELP_GROUP, 0, 0, 1, 0}, {IDC_HELP_TEXT, 0, 0, 1, 0},  {IDHELP, 1, 0, 0, 0},
    {IDC_HELP_PAGE, 0, 0, 1, 0},  {IDC_TIP_GROUP, 0, 0, 1, 0},  {IDC_FIT_GROUP, 0, 0, 1, 0},
    {IDC_FITTED, 0, 0, 1, 0},     {IDC_TIME_GROUP, 0, 0, 1, 0}, {IDC_TIME_LONG, 0, 0, 1, 0},
    {IDC_TIME_SHORT, 0, 0, 1, 0},
};
constexpr const wchar_t* kLongPath =
    L"C:\\Users\\Anna\\Documents\\Holiday in the mountains\\Pictures of the second week\\"
    L"Snow leopard at dawn.jpg";
constexpr unsigned kMostSeconds = 99999;
constexpr unsigned long kCountDown = 1; // a code of this page for DelayAction
constexpr DWORD kSecondMs = 1000, kWorkMs = 600;
} // namespace

__int64 TextsPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    hwndTip = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP,
                                CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, hWnd,
                                nullptr, hResources, nullptr);
    AddTip(IDC_TIP_TEXT);
    AddTip(IDC_TIP_STRING);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

// The tooltip asks this page for the text, by GetTootTip, each time that it comes up.
void TextsPage::AddTip(unsigned int nId) {
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = hWnd;
    tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(nId));
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    ::SendMessageW(hwndTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

int TextsPage::UpdateControls() {
    SetDlgItemTextFmtCtrl(IDC_HELP_PAGE, L"nothing yet");
    SetSpinRange(IDC_SECONDS_SPIN, 0, kMostSeconds);
    SetDlgItemInt(IDC_SECONDS, 3725, 0);
    ShowFittedText();
    ShowTimeRemaining();
    return GalleryPage::UpdateControls();
}

__int64 TextsPage::OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) {
    if (nId == IDC_SECONDS && nCode == EN_CHANGE && WereControlsUpdated()) ShowTimeRemaining();
    return GalleryPage::OnCommand(nId, nCode, hwndCtl);
}

void TextsPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_WORK: Work(); break;
    case IDC_COUNT_DOWN: DelayAction(kCountDown, kSecondMs); break;
    }
    GalleryPage::OnButtonClicked(nId);
}

// The wait cursor stands as long as the object lives.
void TextsPage::Work() {
    CSWaitCursor wait;
    ::Sleep(kWorkMs); // something that takes its time
}

// One second of the countdown has passed.
void TextsPage::OnDelayedAction(unsigned long dwCode) {
    GalleryPage::OnDelayedAction(dwCode); // nothing waits any more
    if (dwCode != kCountDown) return;
    unsigned nSeconds = GetDlgItemInt(IDC_SECONDS, nullptr, 0);
    if (nSeconds) SetDlgItemInt(IDC_SECONDS, nSeconds - 1, 0);
    if (nSeconds > 1) DelayAction(kCountDown, kSecondMs);
}

// F1 and the Help button ask the windows above this page for the name of its help; the main dialog
// answers (MainDialog::GetHtmlPage). This program comes without a help file: the user is told, and
// then this is called.
void TextsPage::OnHtmlHelpError(LPCWSTR pszPage) { SetDlgItemTextFmtCtrl(IDC_HELP_PAGE, pszPage); }

// The tools are windows, and known by their handles: a text that is made when it is needed...
int TextsPage::GetTootTip(unsigned int nId, wchar_t* pszText, unsigned int cch) {
    if (::LongToHandle(nId) != GetDlgItem(IDC_TIP_TEXT)) return 0;
    RECT rc{};
    ::GetClientRect(hWnd, &rc);
    *pszText = L'\0';
    StrAppendTextFmt(pszText, cch, L"This page is %d pixels wide.", rc.right);
    return 1;
}

// ...or a string of a module, which is asked for first.
int TextsPage::GetTootTip(unsigned int nId, HINSTANCE& hinst, unsigned short& nStringId) {
    if (::LongToHandle(nId) != GetDlgItem(IDC_TIP_STRING)) return 0;
    hinst = hResources;
    nStringId = IDS_TIP;
    return 1;
}

// A piece of the middle gives way to dots. How much is estimated from the whole text's width: one
// wide character of room is left for that.
void TextsPage::ShowFittedText() {
    HWND hwndText = GetDlgItem(IDC_FITTED);
    RECT rc{};
    ::GetClientRect(hwndText, &rc);
    int nFull = GetWndTextWidth(hwndText, kLongPath);
    int nRoom = rc.right - GetWndTextWidth(hwndText, L"W");
    SetDlgItemTextW(IDC_FITTED, FitText(kLongPath, nFull, nRoom));
}

void TextsPage::ShowTimeRemaining() {
    unsigned nSeconds = GetDlgItemInt(IDC_SECONDS, nullptr, 0);
    wchar_t szText[64];
    GetTextRemaining(nSeconds, szText, 64, 1);
    SetDlgItemTextFmtCtrl(IDC_TIME_LONG, szText);
    GetTextRemaining(nSeconds, szText, 64, 0);
    SetDlgItemTextFmtCtrl(IDC_TIME_SHORT, szText);
}

// Called once before UpdateControls if the page comes late.
void TextsPage::OnResize(int dw, int dh) {
    FollowSize(*this, kRules, dw, dh);
    ShowFittedText();
}
