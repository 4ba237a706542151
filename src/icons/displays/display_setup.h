#pragma once
#include "runtime/base/digest.h"
#include <windows.h>

/// The name of a set-up and its digest: the MD5 of its text (16-bit units, without a terminator) in
/// 32 upper-case hexadecimal digits.
constexpr unsigned kSetupNameLength = 2 * kMd5Size;
struct SetupName {
    wchar_t sz[kSetupNameLength + 1] = {}; // empty: no set-up
    bool IsEmpty() const { return !*sz; }
};
/// Whether both name the same set-up; an empty name is the same as no other.
bool operator==(const SetupName& a, const SetupName& b);

/// Desktops of more displays are no set-up.
constexpr unsigned kMaxDisplays = 32;
constexpr unsigned kDisplayTextSize = 58; // of one display, with a blank before it
constexpr unsigned kSetupTextSize = kMaxDisplays * kDisplayTextSize + 1;

/// One display as the desktop sees it.
struct Display {
    RECT rc; // on the virtual screen, in true pixels
    unsigned nDpi;
    bool bPrimary;
};

/// The displays as the desktop sees them at one moment. Displays that show the same are one.
class DisplaySetup {
  public:
    /// Asks the platform, in the place of what was held. False, with no displays, if there are
    /// none, more than kMaxDisplays, or if the platform does not tell one of them.
    bool Read();
    /// Whether a display shows that point of the virtual screen.
    bool Contains(long long x, long long y) const;
    /// "1920x1080+0+0@96 1280x1024+1920+0@96": size, place and dots per inch; the primary one
    /// first, the others by place, from the left and then from the top. Empty without displays.
    void FormatText(wchar_t (&szText)[kSetupTextSize]) const;
    /// Empty without displays.
    SetupName GetName() const;

  private:
    static BOOL CALLBACK AddDisplay(HMONITOR hmonitor, HDC, RECT*, LPARAM lParam);
    bool Add(const Display& display);

    Display displays[kMaxDisplays] = {};
    unsigned nDisplays = 0;
};

/// What names a text as that of a set-up.
SetupName MakeSetupName(const wchar_t* pszText);
/// The name of the set-up that stands now; empty if it can't be told.
SetupName ReadSetupName();

/// While it lives, the platform tells the calling thread true pixels and each display's own scale,
/// as the desktop's windows have them: for a program that does not look at scales by itself it puts
/// them on its own. Nothing on systems that know no thread by itself.
class TruePixels {
  public:
    TruePixels();
    ~TruePixels();
    TruePixels(const TruePixels&) = delete; // the former state goes back once
    TruePixels& operator=(const TruePixels&) = delete;

  private:
    void* pFormer = nullptr; // the thread's former context; null: nothing was changed
};
