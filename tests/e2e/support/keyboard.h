#pragma once
#include <vector>

/// The keyboard, through the platform's own input: keys reach whichever window is in front, also on
/// a display that gives its focus to none, where those of xdotool get lost while a hidden window is
/// in front.
namespace keyboard {
enum class Key { Up, Down, Left, Right, Return, Escape };

/// Presses and lets go one key after another. Throws std::runtime_error.
void Press(const std::vector<Key>& keys);
} // namespace keyboard
