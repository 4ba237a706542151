#pragma once
#include "gallery_page.h"

/// An edit that can keep its selection when the keyboard comes back to it: the dialog selects all
/// of an edit's text then, which is too much for a text that one works on.
class KeepingEdit : public CSEdit {
  public:
    void Keep(int bOn);
    int OnCommand(unsigned short nCode, __int64* pqwResult) override;

  private:
    int bKeep = 0;
};

/// What control objects add to edits and combo boxes.
class EditsPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override;
    void OnButtonClicked(unsigned short nId) override;
    void OnComboSelChanged(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void ShowBalloon();
    void ShowTypedText();
    void MoveChosen(int bUp);
    void EnableMoves();

    KeepingEdit softEdit;
    CSComboList colourList;
    CSEdit dropPathEdit, dropFolderEdit;
    CSCombo typedCombo;
    CSComboBase list;
};
