#pragma once
#include "buttons/icon_btn.h"
#include "buttons/image_btn.h"
#include "richtext/control/cs_static_html.h"
#include "runtime/base/export.h"
#include "wnd/control/cscombo.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/layout/csdlg_main.h"
#include <windows.h>

/// What the two dialogs about updates have in common: no caption, a title, the answer yes or no, a
/// list of when to be reminded, and a button that goes on.
///
/// It looks for these controls: 21542 title, 21503 the line about the last check (may be missing),
/// 21536 and 21537 yes and no, 21543 the list, 1 goes on, 2 closes.
class TESSALY_API DlgUpdateBase : public CSDlg {
  public:
    /// The numbers by which the dialogs are known (CSDlg::activationTag).
    static constexpr unsigned short kCheckNumber = 109; // DlgCheckForUpdates
    static constexpr unsigned short kGetNumber = 108;   // DlgGetUpdates

    /// nInitial is the index that the list has at first, a Check4UpdatesFreq. Where the template is
    /// and who owns the dialog, for Show; null are this library and nobody.
    explicit DlgUpdateBase(int nInitial, unsigned short nNumber = kCheckNumber,
                           HINSTANCE hinstTemplate = nullptr, HWND hwndOwner = nullptr);

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    /// Reads bYes and nFrequency. Without a selection nFrequency stays.
    int UpdateData() override;
    /// Reads the data and closes with 1.
    __int64 OnOK() override;

    int nFrequency; // in: the initial selection; out: the one of the user, a Check4UpdatesFreq
    int bYes = 0;   // out: 1 for yes

  protected:
    CSIconForDlg dlgIcon;
    CSCloseBtnForDlg closeBtn;
    PopupTitle title;
    ImageBtn proceedBtn;
    CSComboList remindList;
    CSCtrl daysLine;
};

/// Asks whether to check for updates now, and does it on the user's yes while it is still on the
/// screen.
class TESSALY_API DlgCheckForUpdates : public DlgUpdateBase {
  public:
    /// nDays since the last check; for 0 the line about it is hidden. *pbGetUpdate, which may be
    /// null, becomes 1 if the user then chose to get an update.
    DlgCheckForUpdates(int nInitial, unsigned nDays, int* pbGetUpdate,
                       HINSTANCE hinstTemplate = nullptr, HWND hwndOwner = nullptr);

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateData() override;
    __int64 OnOK() override;
    /// Runs the dialog. IDOK, or IDCANCEL, which counts as no answer; 0 or -1 if it can't be shown.
    int Show();

    int bAutoCheck = 0; // out: the user wants no more questions

  protected:
    unsigned nDaysSince;
    int* pbResult; // borrowed; may be null
};

/// Says that there is an update and asks whether to get it. The description is rich text; a click
/// on its link "<a>" opens the page with more information; with the keyboard it is reached behind
/// the other controls.
class TESSALY_API DlgGetUpdates : public DlgUpdateBase {
  public:
    /// Both texts are borrowed and must live as long as the dialog; either may be null. The address
    /// is opened as it is.
    DlgGetUpdates(int nInitial, const wchar_t* pszDescr, const wchar_t* pszMoreInfo,
                  HINSTANCE hinstTemplate = nullptr, HWND hwndOwner = nullptr);

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    void OnButtonClicked(unsigned short nId) override;
    /// As DlgCheckForUpdates::Show.
    int Show();

  protected:
    bool HasMoreInfo() const { return pszUrlMoreInfo && *pszUrlMoreInfo; }

    CSStaticHTML description;
    const wchar_t* pszDescription; // borrowed
    const wchar_t* pszUrlMoreInfo; // borrowed

  private:
    bool HasLink() const;
};
