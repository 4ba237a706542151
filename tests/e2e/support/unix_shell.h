#pragma once
#include <string>

/// Runs a line in the shell of the system below the test platform and waits until it has succeeded.
/// The line must not hold double quotes. Throws std::runtime_error; also if the line fails.
void RunUnixShell(const std::wstring& strLine);

/// xdotool is there, and TESSALY_MOUSE does not ask for the platform's own input.
bool UsesXdotool();
