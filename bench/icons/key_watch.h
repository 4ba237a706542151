#pragma once
#include "support/wait_until.h"

#include <windows.h>
#include <stdexcept>
#include <string>

/// Waits for changes of a registry key's values, below HKEY_CURRENT_USER, without asking again and
/// again. The key is made if it is not there.
class KeyWatch {
  public:
    explicit KeyWatch(const wchar_t* pszPath)
        : hEvent(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
        if (::RegCreateKeyExW(HKEY_CURRENT_USER, pszPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &hkey, nullptr) != ERROR_SUCCESS) {
            throw std::runtime_error("the registry key cannot be made");
        }
        Arm();
    }
    ~KeyWatch() {
        ::RegCloseKey(hkey);
        ::CloseHandle(hEvent);
    }
    KeyWatch(const KeyWatch&) = delete;
    KeyWatch& operator=(const KeyWatch&) = delete;

    HKEY Key() const { return hkey; }
    /// Forgets what has changed so far.
    void Forget() {
        while (::WaitForSingleObject(hEvent, 0) == WAIT_OBJECT_0) Arm();
    }
    /// Returns at the next change that has not been waited for; throws at the deadline.
    void Wait() {
        if (::WaitForSingleObject(hEvent, kTestDeadlineMs) != WAIT_OBJECT_0) {
            throw std::runtime_error("nothing was written to the registry");
        }
        Arm();
    }

  private:
    void Arm() { ::RegNotifyChangeKeyValue(hkey, FALSE, REG_NOTIFY_CHANGE_LAST_SET, hEvent, TRUE); }
    HKEY hkey = nullptr;
    HANDLE hEvent;
};
