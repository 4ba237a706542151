#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

/// A device context for the length of a scope. Never without one: where a context can't be had, a
/// new one for the display takes its place, which is deleted at the end.
class TESSALY_API CSDC {
  public:
    /// Wraps hdc, which stays its owner's; a non-zero bSave puts its present state back at the end.
    /// Null: a new context for the display, neither saved nor restored.
    explicit CSDC(HDC hdc = nullptr, int bSave = 0);
    CSDC(const CSDC&) = delete; // may own the context
    CSDC& operator=(const CSDC&) = delete;
    virtual ~CSDC();
    operator HDC() const { return hDC; }

  protected:
    HDC hDC;
    int restoreDC = 0; // non-zero: the destructor restores the state saved last
    int deleteDC = 0;  // non-zero: and then deletes the context
};

/// A window's client area; null is the whole screen. The state that the context had is restored.
// QUIRK: the context is released before its state is restored, and also when it is the display's in
// place of a window's. Test: ClientDC.RestoresAContextThatTheClassOwnsAfterItsRelease
class TESSALY_API ClientDC : public CSDC {
  public:
    explicit ClientDC(HWND hwndShown); ///< Takes the context.
    ~ClientDC() override;

  private:
    HWND hwnd;
};

/// A whole window with its frame. Otherwise as ClientDC.
class TESSALY_API DCWindow : public CSDC {
  public:
    explicit DCWindow(HWND hwndShown); ///< Takes the context.
    ~DCWindow() override;

  private:
    HWND hwnd;
};

/// A memory context like hdc (null: like the screen). At the end what was selected into it is taken
/// out, so that its owner can delete it, and the context is deleted.
class TESSALY_API CompatibleDC : public CSDC {
  public:
    explicit CompatibleDC(HDC hdc); ///< Makes the context.
};

// Owners of drawing objects. What is still selected in a context can't be deleted: declare the
// owner before the CSDC that it is selected into, so that the context goes first.

using OwnedBitmap = OwnedHandleOf<HBITMAP, &::DeleteObject>; ///< Deleted by DeleteObject.
using OwnedBrush = OwnedHandleOf<HBRUSH, &::DeleteObject>;   ///< Deleted by DeleteObject.
using OwnedPen = OwnedHandleOf<HPEN, &::DeleteObject>;       ///< Deleted by DeleteObject.
using OwnedIcon = OwnedHandleOf<HICON, &::DestroyIcon>;      ///< Destroyed by DestroyIcon.
