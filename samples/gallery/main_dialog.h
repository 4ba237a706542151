#pragma once
#include "buttons_page.h"
#include "dialogs_page.h"
#include "edits_page.h"
#include "progress_page.h"
#include "resource_ids.h"
#include "rich_text_page.h"
#include "texts_page.h"
#include "updates_page.h"
#include "tessaly.h"

/// The main window: a list of pages and the chosen one beside it. Can be resized, and comes back
/// where it was.
class MainDialog : public CSDlgMain {
  public:
    explicit MainDialog(HINSTANCE hinst);

    int UpdateControls() override;
    void OnComboSelChanged(unsigned short nId) override;
    void OnResize(int dw, int dh) override;
    /// The help page of every dialog of this program: a dialog that names none asks here.
    LPCWSTR GetHtmlPage(unsigned int nId) override;
    __int64 OnOK() override;
    __int64 OnAbout() override;

  private:
    void ShowPage(int nPage);

    DialogsPage dialogsPage;
    EditsPage editsPage;
    TextsPage textsPage;
    RichTextPage richTextPage;
    ButtonsPage buttonsPage;
    ProgressPage progressPage;
    UpdatesPage updatesPage;
    struct Page {
        GalleryPage& page;
        int nTemplateId;
        const wchar_t* pszName;
        const wchar_t* pszHelp;
    };
    // Add a row for a new page.
    const Page pages[7] = {
        {dialogsPage, IDD_DIALOGS, L"Dialogs", L"dialogs.htm"},
        {editsPage, IDD_EDITS, L"Edits and combos", L"edits.htm"},
        {textsPage, IDD_TEXTS, L"Texts", L"texts.htm"},
        {richTextPage, IDD_RICH_TEXT, L"Rich text", L"richtext.htm"},
        {buttonsPage, IDD_BUTTONS, L"Buttons", L"buttons.htm"},
        {progressPage, IDD_PROGRESS, L"Progress", L"progress.htm"},
        {updatesPage, IDD_UPDATES, L"Updates", L"updates.htm"},
    };
    GalleryPage* pShown = nullptr;
};
