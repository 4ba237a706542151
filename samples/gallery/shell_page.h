#pragma once
#include "gallery_page.h"

#include <vector>

/// A small browser over the shell's namespace: where it stands, what is there, and what the chosen
/// object is; makes links and follows them.
class ShellPage : public GalleryPage {
  public:
    ~ShellPage() { ForgetItems(); }

    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnComboSelChanged(unsigned short nId) override;
    __int64 OnNotify(int nId, NMHDR* pHdr) override;
    void OnResize(int dw, int dh) override;

  private:
    void GoTo(const ITEMIDLIST* pidlFolder);
    void ReadItems();
    void ForgetItems();
    void ShowItems();
    void ShowChosen();
    void Choose(int nItem);
    void ChooseLike(const ITEMIDLIST* pidlItem);
    int GetChosen() const;
    void MakeFull(int nItem, PIDL& listOut) const;
    void OpenChosen();
    void LinkToChosen();
    void FollowChosen();

    CoInit com; // before what needs it, so that it goes behind that
    PIDL place; // counted from the desktop
    iShellFolder folder;
    std::vector<ITEMIDLIST*> items; // counted from the folder, owned, in the order of the list
    HICON hicon = nullptr;          // of the chosen one, owned
};
