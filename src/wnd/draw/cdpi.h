#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// The screen's dots per inch, and lengths converted between its pixels and the design size of 96
/// dots per inch. Reads the values at the first question, for the monitor of the window that was
/// set, and keeps them until it is told to forget them.
class TESSALY_API CDPI {
  public:
    static constexpr int kDesignDpi = 96; // USER_DEFAULT_SCREEN_DPI (winuser.h, from Vista on)

    constexpr CDPI() noexcept = default;

    int GetDPIX(); ///< The dots per inch across.
    int GetDPIY(); ///< The dots per inch down.
    /// 1 if either value is not 96.
    int IsCustom();
    // From the design size to pixels and back, rounded to the nearest; -1 for what is too much for
    // 32 bits, as MulDiv has it.
    int ScaleX(int x);           ///< Returns a length across in pixels.
    int ScaleY(int y);           ///< Returns a length down in pixels.
    int UnscaleX(int x);         ///< Returns a length across in design units.
    int UnscaleY(int y);         ///< Returns a length down in design units.
    void ScaleRect(RECT* prc);   ///< Converts in place, to pixels.
    void ScaleSize(SIZE* psize); ///< Converts in place, to pixels.
    /// Returns the primary screen's width in design units.
    int ScaledScreenWidth();
    int ScaledScreenHeight(); ///< Returns the primary screen's height in design units.
    /// Whether the primary screen has that size, in design units.
    bool IsResolutionAtLeast(int width, int height);
    /// 1 if either value lies from 97 to 112 inclusive.
    int ShouldAdjustForSkin();
    /// The size of a small system icon: 16 below 120 dots per inch across, 24 below 192, else 32.
    int GetAdjustedSysIconSize();
    /// 48 below 144 dots per inch across, else 64.
    int GetAdjustedIconSize48_64();
    // Points of a font, 72 to the inch, by the dots per inch down.
    // QUIRK: these two don't read the values, so that they work with 96 before the first question.
    // Test: CDPI.PointsAreOf96DotsBeforeTheFirstQuestion
    int PointsToPixels(int points); ///< Returns a font's height in pixels.
    int PixelsToPoints(int pixels); ///< Returns a font's height in points.
    /// The next question reads the values anew.
    void Invalidate();

    /// The window whose monitor counts, null for the primary monitor; another one than before has
    /// PCDPI() read the values anew.
    static void SetWindow(HWND hwnd);
    /// The platform's GetDpiForMonitor; E_NOTIMPL where no loaded module has it. It is looked for
    /// once, and "Shcore.dll" is never loaded for it.
    static long MyGetDPIForMonitor(HMONITOR hmonitor, int type, unsigned int* px, unsigned int* py);

  private:
    void _Init();
    int _ScaledSystemMetricX(int nMetric);
    int _ScaledSystemMetricY(int nMetric);
    static bool _ReadMonitor(int* px, int* py);

    bool isInit = false; // the two values are current
    int dpiX = kDesignDpi;
    int dpiY = kDesignDpi;
};

/// The one object of the process. It has no lock: two threads at worst both read the same values.
TESSALY_API CDPI* PCDPI();
