#pragma once
#include "runtime/base/export.h"
#include "wnd/control/csctrl.h"
#include "wnd/draw/csimage_list.h"
#include <windows.h>

/// Flags of an ImageBtn. Without one of the first two the image stands at the top, or at the left.
enum ImageBtnFlag : unsigned long {
    kImageCenterVertically = 1,   // in the button's height
    kImageCenterHorizontally = 2, // in the button's width
    kImageNoFocusFrame = 8,       // in bitmap mode
};

/// A description of an ImageBtn, so that a table of buttons can be written down. Made as an
/// ImageBtnBmp or an ImageBtnIcon.
class TESSALY_API ImageBtnDescriptor {
  public:
    ImageBtnDescriptor(const ImageBtnDescriptor&) = default;            // owns nothing
    ImageBtnDescriptor& operator=(const ImageBtnDescriptor&) = default; // copies the whole record

    int idBitmap = 0;              // or 0
    unsigned short wStateMap = 0;  // of a strip, see ImageBtn::kAllFrames
    int idIcon[5] = {};            // normal, hover, pressed, disabled, focus
    HINSTANCE hInstance = nullptr; // the module with the resources
    int cxImage = 0, cyImage = 0;  // pixels of one image
    unsigned long dwFlags = 0;     // ImageBtnFlag

  protected:
    ImageBtnDescriptor() = default;
    /// Fills the icon form.
    void Init(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
              int idDisabled, int idFocus, unsigned long flags);
};

/// A button with a strip of images: ImageBtn::LoadBmp's arguments.
class TESSALY_API ImageBtnBmp : public ImageBtnDescriptor {
  public:
    /// Fills the description.
    ImageBtnBmp(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
                unsigned long flags);
};

/// A button with an icon for each state: ImageBtn::LoadIconW's arguments.
class TESSALY_API ImageBtnIcon : public ImageBtnDescriptor {
  public:
    /// Fills the description.
    ImageBtnIcon(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
                 int idDisabled, int idFocus, unsigned long flags);
};

/// A push button that is all picture. In bitmap mode a strip has a frame for each state, drawn one
/// over the other; in icon mode each state is an icon of its own. It shows the hand cursor, keeps a
/// checked state, and passes the mouse's movements on to its dialog.
///
/// Resource ids: a negative one is the library's, whatever module is named, and so is a positive
/// one without a module: name the program's. Of five icons the first one's sign counts. What can't
/// be loaded is not drawn.
class TESSALY_API ImageBtn : public CSCtrl {
  public:
    /// The frames of a strip in the order normal, hover, pressed, disabled, focus. A state map has
    /// three bits for each, from the lowest: its place from 1, or 0 for none.
    static constexpr unsigned short kAllFrames = 054321;

    ImageBtn() = default;
    /// Loads a strip (LoadBmp).
    ImageBtn(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
             unsigned long flags);
    /// Loads icons (LoadIconW).
    ImageBtn(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
             int idDisabled, int idFocus, unsigned long flags);
    explicit ImageBtn(const ImageBtnDescriptor& button); ///< Loads what it describes.

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    void OnInit() override;
    void OnDrawItem(DRAWITEMSTRUCT* pItem) override;

    /// A strip of images of cx by cy pixels, in which magenta (0xFF00FF) is transparent. A map of 0
    /// is kAllFrames; frames beyond the strip are none.
    void LoadBmp(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
                 unsigned long flags);
    /// Icons of that size; id 0 is none.
    void LoadIconW(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
                   int idDisabled, int idFocus, unsigned long flags);
    /// A checked button looks pressed.
    void Check(int bOn);
    int IsChecked() const { return bChecked; } ///< Whether it is checked.

  protected:
    int bIconMode = 0;
    int bChecked = 0;
    int bHover = 0;
    int cxImage = 0, cyImage = 0; // pixels
    // The images' indices; -1: none.
    int iNormal = -1, iHover = -1, iPressed = -1, iDisabled = -1, iFocus = -1;
    unsigned long dwFlags = 0; // ImageBtnFlag
    CSImageList imageList;

    static HCURSOR hCursorHand; // loaded at first use, shared with the system

  private:
    struct Look;

    void BeginLoad(int cx, int cy, int bIcons);
    int AddState(int idIcon, HINSTANCE hinst);
    void OnMouseMove(WPARAM wParam, LPARAM lParam);
    void EndHover();
    int ChooseIcon(const Look& look) const;
    void DrawFrames(const Look& look, HDC hdc, int x, int y);
    void DrawLayer(int index, HDC hdc, int x, int y);
};
