#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <string>

extern "C" FARPROC __imp_InvalidateRect;
extern "C" FARPROC __imp_TrackMouseEvent;
extern "C" FARPROC __imp_SetCursor;
extern "C" FARPROC __imp_LoadCursorW;

/// What is asked of the platform for a window, as long as the object lives: "erase " and "repaint "
/// for an invalidation of all of it with and without erasing, "track " for the mouse's leaving,
/// "hand " and "cursor " for the current cursor, "load " for loading the hand. One at a time.
class CallLog {
  public:
    explicit CallLog(HWND hwndSeen)
        : hwnd(hwndSeen), invalidate(__imp_InvalidateRect, &Invalidate),
          track(__imp_TrackMouseEvent, &Track), cursor(__imp_SetCursor, &Set),
          load(__imp_LoadCursorW, &Load) {
        pNow = this;
    }
    ~CallLog() { pNow = nullptr; }

    /// What was written down since the last call.
    std::string Take() {
        std::string strTaken;
        strTaken.swap(str);
        return strTaken;
    }

  private:
    static BOOL WINAPI Invalidate(HWND hwndMsg, const RECT* prc, BOOL bErase) {
        if (!hwndMsg) pNow->str += "everything! ";
        if (hwndMsg == pNow->hwnd) pNow->str += prc ? "part " : bErase ? "erase " : "repaint ";
        return pNow->invalidate.Original<decltype(::InvalidateRect)>()(hwndMsg, prc, bErase);
    }
    static BOOL WINAPI Track(TRACKMOUSEEVENT* pTrack) {
        pNow->str += pTrack->hwndTrack == pNow->hwnd && pTrack->dwFlags == TME_LEAVE
                         ? "track "
                         : "track something else ";
        return pNow->track.Original<decltype(::TrackMouseEvent)>()(pTrack);
    }
    static HCURSOR WINAPI Set(HCURSOR hcur) {
        auto* pfnLoad = pNow->load.Original<decltype(::LoadCursorW)>();
        pNow->str += hcur == pfnLoad(nullptr, IDC_HAND) ? "hand " : "cursor ";
        return pNow->cursor.Original<decltype(::SetCursor)>()(hcur);
    }
    static HCURSOR WINAPI Load(HINSTANCE hinst, LPCWSTR pszName) {
        if (!hinst && pszName == IDC_HAND) pNow->str += "load ";
        return pNow->load.Original<decltype(::LoadCursorW)>()(hinst, pszName);
    }

    static inline CallLog* pNow = nullptr;
    HWND hwnd;
    std::string str;
    ReplaceImport invalidate, track, cursor, load;
};
