#pragma once

/// Whether this program runs once more: another process of this user's session has its file name,
/// or a monitor has its window.
[[nodiscard]] bool IsRunningElsewhere();
