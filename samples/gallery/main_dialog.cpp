#include "main_dialog.h"
#include "gallery_page.h"

namespace {
constexpr SizeRule kRules[] = {
    {IDC_PAGES, 0, 0, 0, 1},
    {IDC_PAGE_SLOT, 0, 0, 1, 1},
    {IDCANCEL, 1, 1, 0, 0},
};
} // namespace

MainDialog::MainDialog(HINSTANCE hinst) : CSDlgMain(hinst, IDI_GALLERY) {
    // The template is the smallest size. Without a placement the dialog keeps its place by itself.
    EnableResizing(kDlgResizeWidth | kDlgResizeHeight, nullptr);
}

int MainDialog::UpdateControls() {
    for (const Page& row : pages) {
        SendDlgItemMsg(IDC_PAGES, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row.pszName));
    }
    SendDlgItemMsg(IDC_PAGES, LB_SETCURSEL, 0, 0);
    ShowPage(0);
    return CSDlgMain::UpdateControls();
}

// A list box tells its choice by the same code as a combo box.
void MainDialog::OnComboSelChanged(unsigned short nId) {
    if (nId == IDC_PAGES) ShowPage(static_cast<int>(SendDlgItemMsg(nId, LB_GETCURSEL, 0, 0)));
}

// Pages are created when they are first shown: a late one catches up with the main dialog's size.
void MainDialog::ShowPage(int nPage) {
    if (nPage < 0) return;
    GalleryPage& page = pages[nPage].page;
    if (&page == pShown) return;
    if (!page.IsReady()) {
        if (!page.Init(this, IDC_PAGE_SLOT, pages[nPage].nTemplateId, hResources, 0)) return;
        // The keyboard goes through the windows in their order: the page behind its slot, before
        // the button.
        SetWndZOrder(page, GetDlgItem(IDC_PAGE_SLOT), 0);
    }
    page.Show(1);
    if (pShown) pShown->Show(0);
    pShown = &page;
}

// Those that are hidden grow too.
void MainDialog::OnResize(int dw, int dh) {
    FollowSize(*this, kRules, dw, dh);
    for (const Page& row : pages) {
        if (row.page.IsReady()) row.page.Grow(dw, dh);
    }
}

LPCWSTR MainDialog::GetHtmlPage(unsigned int nId) {
    for (const Page& row : pages) {
        if (static_cast<unsigned>(row.nTemplateId) == nId) return row.pszHelp;
    }
    return L"gallery.htm";
}

// Enter in a page's edit shall not close the program.
__int64 MainDialog::OnOK() { return 0; }

__int64 MainDialog::OnAbout() {
    Msg(hWnd, MB_OK | MB_ICONINFORMATION,
        L"What the dialogs of the library can do, page by page.\n\n"
        L"The sources are in samples/gallery.");
    return 0;
}
