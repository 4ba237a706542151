#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// A font for large captions, made from the platform's ANSI_VAR_FONT, and given to items of a
/// dialog. It lives as long as this object, which therefore outlives the items.
class TESSALY_API LargeStaticTextCtl {
  public:
    LargeStaticTextCtl() { Setup(2, 2, FW_BOLD, nullptr); }
    /// Setup with these.
    LargeStaticTextCtl(int multiplier, int add, long weight, const wchar_t* faceName) {
        Setup(multiplier, add, weight, faceName);
    }
    ~LargeStaticTextCtl();
    LargeStaticTextCtl(const LargeStaticTextCtl&) = delete; // owns the font
    LargeStaticTextCtl& operator=(const LargeStaticTextCtl&) = delete;

    /// Multiplies the height (0 and 1: not), adds to it, and takes a weight (400: the stock font's)
    /// and a face (null: the stock font's, which also serves if there is no such face). The name is
    /// borrowed and not read later.
    void Setup(int multiplier, int add, long weight, const wchar_t* faceName);
    /// Gives the font to the dialog's item.
    void Init(HWND hwndDlg, unsigned int nId);

  protected:
    HFONT hFont = nullptr; // owned
    int nMultiplier = 0;
    int nAdd = 0;
    long lWeight = 0;
    const wchar_t* pszFaceName = nullptr;
};

/// The title of a page: twice as large, bold, in the face "Segoe".
class TESSALY_API LargePageTitle : public LargeStaticTextCtl {
  public:
    LargePageTitle();
};
