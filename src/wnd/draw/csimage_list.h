#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <commctrl.h>

/// An image list, destroyed with the object. Where an id names a resource, a negative one is the
/// library's whatever module is named, and a null module is the library.
class TESSALY_API CSImageList {
  public:
    CSImageList() = default;
    CSImageList(const CSImageList&) = delete; // owns the list
    CSImageList& operator=(const CSImageList&) = delete;
    ~CSImageList();

    /// A list for images of that size, with ILC_ flags. 1 on success; without it there is none. A
    /// list held before is destroyed.
    int Create(int width, int height, unsigned int flags, int initial, int grow);
    /// A list with mask and 32-bit colour, filled as by AddFromBitmap. The first image's index, -1
    /// on failure; where only the bitmap is missing, the list is there and empty.
    int CreateFromBitmap(int width, int height, int initial, int grow, int bitmapId,
                         HINSTANCE hinst, unsigned long maskColor);
    /// Destroys the list. 1 on success and without a list; 0 for one that is destroyed already.
    // QUIRK: the handle stays in the object; all but operator HIMAGELIST and IsReady then do as
    // without a list. Test: CSImageList.DestroyKeepsTheHandle
    int Destroy();
    /// Takes the list, destroying one held before. Returns whether it is non-null.
    int Attach(HIMAGELIST hListTaken);
    /// Forgets the list without destroying it. Returns whether there was one.
    int Detach();
    operator HIMAGELIST() const { return hList; }
    /// Whether the object has a handle.
    int IsReady() const { return hList != nullptr; }

    // The results of adding and replacing are the image's index, -1 on failure.
    int AddIcon(HICON hicon);                 ///< Adds an icon's image.
    int AddIcon(int iconId, HINSTANCE hinst); ///< Loads an icon and adds it.
    /// Adds the bitmap's images. Pixels of the mask's colour are transparent. The bitmap is copied;
    /// its width is a multiple of the images'.
    int AddMasked(HBITMAP hbm, unsigned long maskColor);
    /// Loads the bitmap, whose size GetBitmapSize tells from then on, and adds it masked.
    int AddFromBitmap(int bitmapId, HINSTANCE hinst, unsigned long maskColor);
    /// Replaces an image; an index of -1 adds the icon.
    int ReplaceIcon(int index, HICON hicon);
    /// Loads the icon at the list's icon size.
    int ReplaceIcon(int index, int iconId, HINSTANCE hinst);

    /// Removes all images. 1 on success.
    int SetIconSize(int width, int height);
    /// Width in the low word, height in the high word.
    unsigned long GetIconSize();
    /// Draws an image, with ILD_ style. 1 on success.
    int Draw(int index, HDC hdc, int x, int y, unsigned int style);
    /// Makes the image the overlay of that number, from 1 on. 1 on success.
    int SetOverlayImage(int index, int overlay);
    /// The size of the bitmap that AddFromBitmap loaded last; -1 by -1 before.
    SIZE GetBitmapSize() const { return {bitmapWidth, bitmapHeight}; }

  private:
    HIMAGELIST GetLiveList() const { return bDestroyed ? nullptr : hList; }

    int bitmapWidth = -1;
    int bitmapHeight = -1;
    HIMAGELIST hList = nullptr;
    int bDestroyed = 0; // the handle in hList is only kept
};
