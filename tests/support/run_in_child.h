#pragma once
#include <windows.h>
#include <string>

/// Runs one test of this program in a process of its own, for what would end or damage this one.
/// The test's name begins with DISABLED_, so that it runs only when it is asked for; strName is
/// without that. Gives the process's exit code: 0 if the test passed, 1 if it failed, anything else
/// if the process was ended; or the error if there is none. Waits for two minutes at most.
DWORD RunInChild(const std::string& strSuite, const std::string& strName);
