#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <vector>

extern "C" FARPROC __imp_SetWindowPos;

/// Writes down the calls of SetWindowPos of this program, which do what they always do, for the
/// length of a block.
class RecordedPositions {
  public:
    struct Call {
        HWND hwnd, hwndAfter;
        int x, y, cx, cy;
        UINT uFlags;
    };

    RecordedPositions() : replaced(__imp_SetWindowPos, &Record) {
        pfnOriginal = replaced.Original<SetPos>();
        list.clear();
    }
    RecordedPositions(const RecordedPositions&) = delete;
    RecordedPositions& operator=(const RecordedPositions&) = delete;

    const std::vector<Call>& Calls() const { return list; }
    void Forget() { list.clear(); }
    /// The flags of the calls on a window, in their order.
    std::vector<UINT> FlagsOf(HWND hwnd) const {
        std::vector<UINT> found;
        for (const Call& call : list)
            if (call.hwnd == hwnd) found.push_back(call.uFlags);
        return found;
    }

  private:
    using SetPos = BOOL WINAPI(HWND, HWND, int, int, int, int, UINT);
    static BOOL WINAPI Record(HWND hwnd, HWND hwndAfter, int x, int y, int cx, int cy, UINT u) {
        list.push_back({hwnd, hwndAfter, x, y, cx, cy, u});
        return pfnOriginal(hwnd, hwndAfter, x, y, cx, cy, u);
    }

    static inline SetPos* pfnOriginal = nullptr;
    static inline std::vector<Call> list;
    ReplaceImport replaced;
};
