#pragma once
#include <windows.h>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

/// Puts the cursor there and waits until it stays: movements that are still on their way would put
/// it back.
void PutCursor(POINT pt);

/// The hands of a person while the test's thread sits in an open popup menu: real keys and mouse
/// clicks through the platform's input, from a thread of its own. Made on the thread that is to
/// show the menu; starts with fnSteps as soon as that has a popup open and takes input for it;
/// closes what is still open a while after fnSteps has ended.
///
///     MenuDriver driver(hwndOwner, [](MenuDriver& hands) { hands.Press(VK_DOWN, VK_RETURN); });
///     EXPECT_EQ(7, menu.Track(hwndOwner, pt));
///     EXPECT_TRUE(driver.Finish());
class MenuDriver {
  public:
    using Steps = std::function<void(MenuDriver&)>;

    MenuDriver(HWND hwndMenuOwner, Steps fnSteps);
    ~MenuDriver();
    MenuDriver(const MenuDriver&) = delete;
    MenuDriver& operator=(const MenuDriver&) = delete;

    /// After the call that shows the menu: waits for the end of fnSteps. True if a menu came and
    /// fnSteps closed it.
    bool Finish();

    // For fnSteps.

    template <class... Keys>
    void Press(Keys... keys) {
        (PressKey(static_cast<WORD>(keys)), ...);
    }
    void Click(POINT pt, bool bRight = false);
    /// The middle of an item as it stands on the screen; the menu must be open.
    POINT PlaceOf(HMENU hmenu, unsigned nPos) const;
    /// How many popups of this process are open.
    static int CountPopups();
    /// The rectangle of the popup that was opened first.
    static RECT FirstPopup();

  private:
    bool IsMenuReady() const;
    void Run();
    void PressKey(WORD wKey);

    HWND hwndOwner;
    DWORD dwMenuThread;
    Steps fn;
    std::atomic<bool> bStop{false};
    std::atomic<bool> bDone{false};
    std::thread thread;
};
