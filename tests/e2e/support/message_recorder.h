#pragma once
#include "e2e/support/message_record.h"
#include <windows.h>
#include <string>
#include <vector>

/// Writes down what messages a thread of another program gets, posted ones when they are taken and
/// sent ones when they arrive. One at a time; the hooks go with the object.
class MessageRecorder {
  public:
    MessageRecorder();
    ~MessageRecorder();
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    /// Begins with the thread of that window, for each message of the thread.
    void WatchEverything(HWND hwnd) { Watch(hwnd, true); }
    /// The same, but only for WM_COPYDATA, WM_DISPLAYCHANGE and registered messages.
    void WatchEngine(HWND hwnd) { Watch(hwnd, false); }

    /// All that has been written down so far, in its order.
    std::vector<MessageRecord> All() const;
    /// How many of these came to that window.
    int Count(HWND hwnd, UINT uMsg) const;
    int Count(HWND hwnd, UINT uMsg, WPARAM wParam) const;
    void Forget();

  private:
    void Watch(HWND hwnd, bool bEverything);
    HMODULE hmod = nullptr;
    MessageRecords* pRecords = nullptr;
    HOOKPROC pfnPosted = nullptr, pfnSent = nullptr;
    std::vector<HHOOK> hooks;
};
