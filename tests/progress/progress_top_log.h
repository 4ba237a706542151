#pragma once
#include "progress/progress_window.h"
#include "support/replace_import.h"

#include <windows.h>
#include <mutex>
#include <string>

extern "C" FARPROC __imp_BringWindowToTop;
extern "C" FARPROC __imp_UpdateWindow;
extern "C" FARPROC __imp_GetForegroundWindow;

/// What is asked of the platform for the dialog's place above others, by the worker and by the
/// dialog: "top " and "update ". What is in the foreground is told; asking a display without a
/// window manager would be a lottery.
class TopLog {
  public:
    TopLog(Progress& progress, bool bInFront) {
        hwndSeen = WindowOf(progress);
        hwndFront = bInFront ? hwndSeen : ::GetDesktopWindow();
        Take();
    }
    TopLog(const TopLog&) = delete;
    TopLog& operator=(const TopLog&) = delete;

    /// What was asked since the last call.
    std::string Take() {
        std::lock_guard lock(mutex);
        std::string strTaken;
        strTaken.swap(str);
        return strTaken;
    }

  private:
    static void Add(HWND hwnd, const char* psz) {
        std::lock_guard lock(mutex);
        if (hwnd == hwndSeen) str += psz;
    }
    static BOOL WINAPI Top(HWND hwnd) {
        Add(hwnd, "top ");
        return TRUE;
    }
    static BOOL WINAPI Update(HWND hwnd) {
        Add(hwnd, "update ");
        return TRUE;
    }
    static HWND WINAPI Front() { return hwndFront; }

    static inline HWND hwndSeen, hwndFront;
    static inline std::mutex mutex;
    static inline std::string str;
    ReplaceImport top{__imp_BringWindowToTop, &Top}, update{__imp_UpdateWindow, &Update},
        front{__imp_GetForegroundWindow, &Front};
};
