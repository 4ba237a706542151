#include "dialogs_page.h"
#include "layout_dialogs.h"
#include "memory_dialog.h"
#include "resource_ids.h"

#include <memory>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_RUN_GROUP, 0, 0, 1, 0},    {IDC_RESULT, 0, 0, 1, 0},       {IDC_ALIGN_GROUP, 0, 0, 1, 0},
    {IDC_LAYOUT_GROUP, 0, 0, 1, 0}, {IDC_SIZABLE_TEXT, 0, 0, 1, 0}, {IDC_FOLD_TEXT, 0, 0, 1, 0},
};
} // namespace

int DialogsPage::UpdateControls() {
    CheckRadioButton(IDC_CENTERED, IDC_AT_MOUSE, IDC_CENTERED);
    SetDlgItemTextFmtCtrl(IDC_RESULT, L"none yet");
    return GalleryPage::UpdateControls();
}

void DialogsPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_MODAL: RunModal(); break;
    case IDC_MODELESS: OpenModeless(); break;
    case IDC_OWN_LOOP: RunOwnLoop(); break;
    case IDC_FROM_MEMORY: MemoryDialog::Open(hWnd); break;
    case IDC_SIZABLE: RunSizable(); break;
    case IDC_FOLD: FoldDialog().Modal(IDD_FOLD, hResources, hWnd); break;
    }
    GalleryPage::OnButtonClicked(nId); // to the main dialog
}

// The call returns when the dialog is closed; the rest of the program is disabled meanwhile.
void DialogsPage::RunModal() {
    NoteDialog note(L"Modal");
    note.alignMode = GetChosenAlign();
    __int64 nResult = note.Modal(IDD_NOTE, hResources, hWnd);
    OnNoteClosed(note, static_cast<int>(nResult));
}

// The call returns at once. The object lives on the heap and deletes itself with its window; it
// lets this page know when it is closed.
void DialogsPage::OpenModeless() {
    auto pNote = std::make_unique<NoteDialog>(L"Modeless", this);
    pNote->alignMode = GetChosenAlign();
    if (pNote->Modeless(IDD_NOTE, hResources, hWnd, 1)) pNote.release()->autoDelete = 1;
}

// The call returns when the dialog is closed, as a modal one's; but its loop can be given messages
// to look at first (CSWnd::PreTranslateMessage), and the owner need not be disabled.
void DialogsPage::RunOwnLoop() {
    NoteDialog note(L"Own loop");
    note.alignMode = GetChosenAlign();
    int nResult = note.ModelessWithLoop(1, IDD_NOTE, hResources, hWnd, nullptr);
    OnNoteClosed(note, nResult);
}

// With a loop of its own too, as not every Windows lets a modal dialog come up maximised.
void DialogsPage::RunSizable() {
    SizableDialog dialog;
    dialog.ModelessWithLoop(1, IDD_SIZABLE, hResources, hWnd, nullptr);
}

// The text of the control in the template is the format, again and again.
void DialogsPage::OnNoteClosed(const NoteDialog& note, int nResult) {
    wchar_t szText[128] = L"";
    StrAppendTextFmt(szText, 128, L"%s: ", note.GetTitle());
    if (nResult == IDOK)
        StrAppendTextFmt(szText, 128, L"OK, \"%s\"", note.GetName());
    else
        StrAppendTextFmt(szText, 128, L"canceled");
    SetDlgItemTextFmtCtrl(IDC_RESULT, szText);
}

int DialogsPage::GetChosenAlign() {
    return GetCheckedRadioButton(IDC_CENTERED, IDC_AT_MOUSE) - IDC_CENTERED + kDlgCentered;
}

void DialogsPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
