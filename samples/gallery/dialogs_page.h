#pragma once
#include "gallery_page.h"
#include "note_dialog.h"

/// The ways in which a dialog runs, comes up, and moves its controls.
class DialogsPage : public GalleryPage, public NoteListener {
  public:
    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void RunModal();
    void OpenModeless();
    void RunOwnLoop();
    void RunSizable();
    void OnNoteClosed(const NoteDialog& note, int nResult) override;
    /// As the radio buttons say.
    int GetChosenAlign();
};
