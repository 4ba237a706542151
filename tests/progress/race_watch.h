#pragma once
#include <windows.h>
#include <string>

/// The stacks of all other threads of this program, a line for each call.
std::string TellStacks();

/// Ends the program, with the stacks of its threads on the error output, unless the object goes in
/// time: of a test that hangs nothing else would be known.
class HangWatch {
  public:
    explicit HangWatch(DWORD nSeconds);
    ~HangWatch();
    HangWatch(const HangWatch&) = delete;
    HangWatch& operator=(const HangWatch&) = delete;

  private:
    static DWORD WINAPI Watch(void* pWatch);
    DWORD nMs;
    HANDLE hOver;
    HANDLE hThread;
};
