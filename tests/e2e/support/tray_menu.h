#pragma once
#include "e2e/support/keyboard.h"
#include "e2e/support/mouse.h"
#include <windows.h>
#include <vector>

/// The product's icon in the notification area and the menu that a click on it opens, in the hands
/// of a person. Operations throw std::runtime_error when what they wait for does not come.
class TrayMenu {
  public:
    explicit TrayMenu(DWORD dwProcessOfMonitor) : dwProcess(dwProcessOfMonitor) {}

    /// The middle of the icon, which must be the only one in the notification area.
    static POINT Icon();
    /// Waits for a balloon above the notification area; false if none comes.
    static bool WaitForBalloon();

    /// Clicks on the icon and waits for the menu.
    void Open(mouse::Button button = mouse::Button::Left) const;
    /// Presses the keys and waits until as many popups are open.
    void Press(const std::vector<keyboard::Key>& keys, int nOpenAfter) const;
    /// Clicks on the first or the last row and waits until the menu has gone.
    void ClickFirst() const;
    void ClickLast() const;
    /// How many popups of the menu are to be seen: 0, 1, or 2 with the sub-menu.
    int CountOpen() const;

  private:
    RECT Place() const;
    void Click(POINT pt) const;
    void WaitForOpen(int nCount) const;

    DWORD dwProcess;
};
