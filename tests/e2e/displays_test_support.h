#pragma once
#include "e2e/engine_test_support.h"
#include "e2e/support/displays.h"
#include "e2e/support/layout_reader.h"
#include "e2e/support/message_recorder.h"
#include "e2e/support/tray_thread.h"

#include <optional>

constexpr WPARAM kCodeDisplaysSwitch = 376; // to the monitor: the switch may have changed

constexpr SIZE kHome{1024, 768}, kLarge{1280, 1024}, kMiddle{1152, 864};
/// So long no display may change before anything is put back; and how late that may be in a test.
constexpr DWORD kSettleMs = 2000;
/// A little less: clocks differ by a tick or two.
constexpr DWORD kNotYetMs = kSettleMs - 200;
/// After that time without a change nothing is to come any more.
constexpr DWORD kSettledMs = kSettleMs + 700;

/// The text of a set-up with one display.
std::wstring TextOf(SIZE size);

/// The engine on a plain desktop, and displays that change.
class DisplaysTest : public EngineTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs the host with these switches; its exit code.
    static DWORD RunHost(const std::wstring& strArguments);
    /// A desktop and a monitor that puts icons back when displays change; returns when the present
    /// set-up is known.
    void StartSwitchedOn(int nIcons);
    /// The same with a second set-up that is known, the large display, in which the icons lie
    /// otherwise: home and large are the two layouts. What happens then is recorded.
    void StartWithTwoKnown(int nIcons);
    /// The layout of the set-up is stored and that of the desktop as it is now.
    bool IsKnownAsItIs(const std::wstring& strDisplays);

    /// The icons that lie on the desktop, each moved so far.
    std::vector<StoredIcon> Shifted(int dx, int dy);
    /// Moves them on the desktop, and nobody is told.
    void ShiftIcons(int dx, int dy);
    /// Each icon of the layout lies where that has it. (Icons of one name: any of them.)
    bool LieAs(const std::vector<StoredIcon>& layout);
    /// They come to lie so by a restore, and not before the displays have settled. What is recorded
    /// tells when that was: a busy machine makes no difference.
    testing::AssertionResult ComeAfterSettling(const std::vector<StoredIcon>& layout);
    /// Nothing on the desktop moves until well after the settling, and nothing is sent to it.
    testing::AssertionResult StayAfterSettling();

    /// From now on, what the monitor and the desktop say to each other is recorded.
    void Record();
    int CountCapturesAsked() const; // of whichever window of the shell's thread
    int CountRestores() const;
    /// From the last change that the monitor was told of to the last restore since then.
    std::optional<DWORD> ChangeToRestore() const;
    /// The balloons about displays since the tray is there.
    int CountBalloons();

    Displays display;
    LayoutReader layouts;
    std::vector<StoredIcon> home, large;
    std::unique_ptr<MessageRecorder> recorder;
    std::unique_ptr<TrayThread> tray; // a test that looks at balloons makes it first
};
