#pragma once
#include <windows.h>
#include <functional>

/// The mouse in the hand of a person: xdotool on the test platform's display, or the platform's own
/// input where there is none (or where TESSALY_MOUSE is "sendinput"). Points are in screen
/// coordinates. Each operation returns after the last movement has been made; what it causes may
/// still be under way. Throws std::runtime_error.
namespace mouse {
enum class Button { Left, Right };

void MoveTo(POINT pt);
void Click(POINT pt, Button button = Button::Left);
/// Presses the button at one point, goes in steps to the other, lets go there and then moves a
/// little, as a hand does. onDown is called while the button is down and nothing has moved yet,
/// onHalfway when half of the way is done.
void Drag(POINT ptFrom, POINT ptTo, Button button = Button::Left,
          const std::function<void()>& onDown = nullptr,
          const std::function<void()>& onHalfway = nullptr);
} // namespace mouse
