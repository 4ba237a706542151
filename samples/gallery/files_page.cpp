#include "files_page.h"
#include "resource_ids.h"

#include <commctrl.h>
#include <string>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_TEXT_GROUP, 0, 0, 1, 0},  {IDC_TEXT_PATH, 0, 0, 1, 0},   {IDC_TEXT_OPEN, 1, 0, 0, 0},
    {IDC_TEXT_SAVE, 1, 0, 0, 0},   {IDC_TEXT_FORMAT, 0, 0, 1, 0}, {IDC_TEXT_APPEND, 1, 0, 0, 0},
    {IDC_TEXT_RESULT, 1, 0, 0, 0}, {IDC_TEXT_TOLD, 0, 0, 1, 0},   {IDC_TEXT_BODY, 0, 0, 1, 0},
};

struct Format {
    CSFileTextFmt fmt;
    const wchar_t* pszName;
};
constexpr Format kFormats[] = {
    // those that a text can be written in
    {fmtAnsi, L"ANSI"},      {fmtAnsiLf, L"ANSI, LF alone"},
    {fmtUtf8, L"UTF-8"},     {fmtUtf8Lf, L"UTF-8, LF alone"},
    {fmtUnicode, L"UTF-16"}, {fmtUnicodeBE, L"UTF-16, big-endian"},
};
constexpr wchar_t kNotPrintable = L'\x25A1'; // a box in the place of a control character

const wchar_t* NameOf(CSFileTextFmt fmt) {
    for (const Format& row : kFormats) {
        if (row.fmt == fmt) return row.pszName;
    }
    return fmt == fmtBinary ? L"no text" : L"unknown";
}

std::wstring TextOf(CSDlg& dialog, int nId) {
    std::wstring str(static_cast<size_t>(dialog.GetDlgItemTextLength(nId)), L'\0');
    dialog.GetDlgItemTextW(nId, str.data(), static_cast<int>(str.size() + 1));
    return str;
}
} // namespace

__int64 FilesPage::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    pathEdit.Init(this, IDC_TEXT_PATH, nullptr, kDropAnyPath);
    formatList.Init(this, IDC_TEXT_FORMAT, nullptr, 0);
    work.OnInitDialog();
    return GalleryPage::OnInitDialog(wParam, lParam);
}

int FilesPage::UpdateControls() {
    for (const Format& row : kFormats) formatList.AddItem(row.pszName, row.fmt);
    formatList.SelectItem(fmtUtf8);
    wchar_t szPath[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szPath);
    StrAppendTextFmt(szPath, MAX_PATH, L"gallery.txt");
    pathEdit.SetText(szPath);
    SetDlgItemTextW(IDC_TEXT_BODY, L"A first line\r\nand a second one.\r\n");
    SetDlgItemTextFmtCtrl(IDC_TEXT_TOLD, L"not saved yet");
    work.UpdateControls();
    return GalleryPage::UpdateControls();
}

__int64 FilesPage::OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) {
    work.OnCommand(nId, nCode);
    return GalleryPage::OnCommand(nId, nCode, hwndCtl);
}

void FilesPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_TEXT_OPEN: OpenText(); break;
    case IDC_TEXT_SAVE: SaveText(); break;
    case IDC_TEXT_APPEND: AppendText(); break;
    }
    work.OnButtonClicked(nId);
    GalleryPage::OnButtonClicked(nId);
}

// The text always comes with CR LF at the end of its lines, as an edit needs it.
void FilesPage::OpenText() {
    CSFileTextFmt fmt = fmtUnknown; // to be told by the file's start
    unsigned cch = 0;
    wchar_t* pszText =
        CSFile::ReadText(TextOf(*this, IDC_TEXT_PATH).c_str(), &cch, &fmt, kNotPrintable);
    SetDlgItemTextFmtCtrl(IDC_TEXT_TOLD, NameOf(fmt));
    if (pszText) SetDlgItemTextW(IDC_TEXT_BODY, pszText);
    if (fmt >= fmtAnsi && fmt < fmtBinary) formatList.SelectItem(fmt);
    wchar_t szDone[32] = L"";
    StrAppendTextFmt(szDone, 32, L"%u characters", cch ? cch - 1 : 0);
    ShowResult(pszText != nullptr, szDone);
    FreeDllBuf(pszText);
}

void FilesPage::SaveText() {
    auto fmt = static_cast<CSFileTextFmt>(formatList.GetSelectedItem());
    int bDone = CSFile::WriteText(TextOf(*this, IDC_TEXT_PATH).c_str(),
                                  TextOf(*this, IDC_TEXT_BODY).c_str(), fmt, 1);
    if (bDone) SetDlgItemTextFmtCtrl(IDC_TEXT_TOLD, NameOf(fmt));
    ShowResult(bDone, L"Saved");
}

// Goes into the file in the file's own encoding, whatever the list says.
void FilesPage::AppendText() {
    ShowResult(CSFile::AppendText(TextOf(*this, IDC_TEXT_PATH).c_str(),
                                  TextOf(*this, IDC_TEXT_BODY).c_str(), 1),
               L"Appended");
}

void FilesPage::ShowResult(int bDone, const wchar_t* pszDone) {
    SetDlgItemTextW(IDC_TEXT_RESULT, bDone ? pszDone : L"Not possible");
}

void FilesPage::OnResize(int dw, int dh) {
    FollowSize(*this, kRules, dw, dh);
    work.OnResize(dw, dh);
}
