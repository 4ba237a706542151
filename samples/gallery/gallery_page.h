#pragma once
#include "tessaly.h"

/// How a control follows the size of its dialog: which edges move along.
struct SizeRule {
    unsigned int nId;
    int bMoveX, bMoveY; // to the right, down
    int bGrowX, bGrowY; // wider, higher
};

/// For CSDlg::OnResize: the controls of a table follow by so many pixels.
template <int nRules>
void FollowSize(CSDlg& dialog, const SizeRule (&rules)[nRules], int dw, int dh) {
    for (const SizeRule& rule : rules) {
        dialog.MoveResizeCtrl(rule.nId, rule.bMoveX * dw, rule.bMoveY * dh, rule.bGrowX * dw,
                              rule.bGrowY * dh, 0);
    }
    dialog.Redraw(RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

/// A page of the gallery. Belongs to the main dialog, which makes it grow.
class GalleryPage : public CSDlgChild {
  public:
    /// The main dialog has become larger by that much, and its slot with it.
    void Grow(int dw, int dh) {
        ResizeWnd(hWnd, dw, dh);
        OnResize(dw, dh);
    }
};
