#pragma once
#include "tessaly.h"

class NoteDialog;

/// Is told when a modeless note is closed.
class NoteListener {
  public:
    virtual void OnNoteClosed(const NoteDialog& note, int nResult) = 0;

  protected:
    ~NoteListener() = default;
};

/// Asks for a name. The same class runs in every way that a dialog can run in.
class NoteDialog : public CSDlg {
  public:
    /// The title is borrowed; without a listener only the result of the call tells.
    explicit NoteDialog(LPCWSTR pszHow, NoteListener* pTold = nullptr)
        : pszTitle(pszHow), pListener(pTold) {}

    int UpdateControls() override;
    int UpdateData() override;
    void OnButtonClicked(unsigned short nId) override;
    void DoClose(int nResult) override;

    LPCWSTR GetTitle() const { return pszTitle; }
    /// What was entered, once the dialog was closed by OK.
    LPCWSTR GetName() const { return szName; }

  private:
    LPCWSTR pszTitle;
    NoteListener* pListener;
    wchar_t szName[64] = L"";
};
