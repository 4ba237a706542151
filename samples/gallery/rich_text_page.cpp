#include "rich_text_page.h"
#include "resource_ids.h"

#include <initializer_list>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_TAGS_GROUP, 0, 0, 1, 0},   {IDC_TAGS, 0, 0, 1, 0},   {IDC_LINKS_GROUP, 0, 0, 1, 0},
    {IDC_LINK_PRESSED, 0, 0, 1, 0}, {IDC_NARROW, 1, 0, 0, 0}, {IDC_LIVE_GROUP, 0, 0, 1, 1},
    {IDC_MARKUP, 0, 0, 0, 1},       {IDC_DRAWN, 0, 0, 1, 1},
};

// Every tag, but for DKBLUE, which is met only at its end. A break is a line, BRHALF goes half a
// line further down. Only the last piece of a CENTER stands in the middle: it is for a short line
// in one font.
constexpr const wchar_t* kTags =
    L"<h>Heading</h> <big>big</big>, plain and <small>small</small> &nbsp;"
    L"<b>bold</b> <i>italic</i> <u>underlined</u> <d>struck out</d> "
    L"<aa>antialiased</aa> <ct>ClearType</ct><br><brhalf>"
    L"<red>red</red> <ltred>light</ltred> <dkred>dark</dkred>, "
    L"<green>green</green> <ltgreen>light</ltgreen> <dkgreen>dark</dkgreen>, "
    L"<blue>blue</blue> <ltblue>light</ltblue>, "
    L"<grey>grey</grey> <ltgrey>light</ltgrey> <dkgrey>dark</dkgrey><br>"
    L"<nobr>Blanks   are   kept.</nobr> <t><b>No tags here</b></t>, "
    L"and &lt;, &gt;, &amp;, a&nbsp;b by name.<br><brhalf>"
    L"<center>In the middle</center><br>"
    L"Links: <a>A</a> <a1>A1</a1> <a2>A2</a2> <a3>A3</a3> <a4>A4</a4> <a5>A5</a5> <a6>A6</a6> "
    L"<a7>A7</a7> <a8>A8</a8> <a9>A9</a9>";

constexpr const wchar_t* kWrapped = L"<a>A link that is longer than its line goes on in the next "
                                    L"one, and can be pressed there.</a>";

constexpr const wchar_t* kNarrow =
    L"Where the text does not fit, three points at the end of the last line <b>say that there is "
    L"more</b> to read.";

// Line ends are blanks.
constexpr const wchar_t* kMarkup = L"<b>Type</b> here,<br>\r\n"
                                   L"see it <ltred>there</ltred>,<br>\r\n"
                                   L"with a <a1>link</a1> in it.";
constexpr COLORREF kLinkColour = RGB(0, 0, 187); // as icon buttons have it, not the system's
constexpr int kMaxMarkup = 1024;                 // with the terminator

// A control's id is the command of its link <a>; the nine behind it are those of <a1> to <a9>.
struct Source {
    unsigned int nId;
    const wchar_t* pszName;
};
constexpr unsigned int kLinksOfOne = 10;
constexpr Source kSources[] = {
    {IDC_TAGS, L"IDC_TAGS"},
    {IDC_WRAPPED, L"IDC_WRAPPED"},
    {IDC_DRAWN, L"IDC_DRAWN"},
};
} // namespace

// In the template these are statics with SS_NOTIFY: without that style they let the mouse through.
// WS_TABSTOP brings the keyboard to those that have a link.
__int64 RichTextPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    tags.Init(this, IDC_TAGS, nullptr, 0);
    wrapped.Init(this, IDC_WRAPPED, nullptr, 0);
    narrow.Init(this, IDC_NARROW, nullptr, 0);
    drawn.Init(this, IDC_DRAWN, nullptr, 0);
    for (CSStaticHTML* pText : {&tags, &wrapped, &drawn}) pText->SetLinkColor(kLinkColour);
    return GalleryPage::OnInitDialog(wParam, lParam);
}

// A text of the template would be drawn without being asked for; these are too long for it.
int RichTextPage::UpdateControls() {
    tags.SetHTMLText(kTags);
    wrapped.SetHTMLText(kWrapped);
    narrow.SetHTMLText(kNarrow);
    SendDlgItemMsg(IDC_MARKUP, EM_SETLIMITTEXT, kMaxMarkup - 1, 0);
    SetDlgItemTextW(IDC_MARKUP, kMarkup);
    ShowMarkup();
    SetDlgItemTextFmtCtrl(IDC_LINK_PRESSED, L"none yet");
    return GalleryPage::UpdateControls();
}

__int64 RichTextPage::OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) {
    if (nId == IDC_MARKUP && nCode == EN_CHANGE) ShowMarkup();
    return GalleryPage::OnCommand(nId, nCode, hwndCtl);
}

// A link comes as a button does, whether by mouse or by Space or Return; these two stand for the
// control's own id.
void RichTextPage::OnButtonClicked(unsigned short nId) {
    ShowPressed(nId);
    GalleryPage::OnButtonClicked(nId);
}

void RichTextPage::ShowPressed(unsigned int nId) {
    for (const Source& source : kSources) {
        if (nId < source.nId || nId >= source.nId + kLinksOfOne) continue;
        wchar_t szText[64] = L"";
        StrAppendTextFmt(szText, 64, L"%s + %u (press %d)", source.pszName, nId - source.nId,
                         ++nPresses);
        SetDlgItemTextFmtCtrl(IDC_LINK_PRESSED, szText);
    }
}

void RichTextPage::ShowMarkup() {
    wchar_t szMarkup[kMaxMarkup];
    GetDlgItemTextW(IDC_MARKUP, szMarkup, kMaxMarkup);
    drawn.SetHTMLText(szMarkup);
}

// Texts are laid out anew when they are painted.
void RichTextPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
