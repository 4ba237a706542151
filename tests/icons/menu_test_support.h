#pragma once
#include "icons/snapshot_test_support.h"
#include "icons/tray/recommendations.h"
#include "support/replace_import.h"
#include "wnd/menu/csmenu.h"

#include <ctime>
#include <string>
#include <vector>

// What the tests of the tray menu and of the day counter share.

extern "C" FARPROC __imp_GetLocalTime;

/// Today's date as a test sets it, for the life of the object.
class TestDate {
  public:
    TestDate(int nYear, int nMonth, int nDay) { Set(nYear, nMonth, nDay); }
    TestDate(const TestDate&) = delete;
    TestDate& operator=(const TestDate&) = delete;
    void Set(int nYear, int nMonth, int nDay) {
        st = {};
        st.wYear = static_cast<WORD>(nYear);
        st.wMonth = static_cast<WORD>(nMonth);
        st.wDay = static_cast<WORD>(nDay);
        st.wHour = 12;
    }
    static const SYSTEMTIME& Get() { return st; }

  private:
    static void WINAPI Read(SYSTEMTIME* pst) { *pst = st; }
    static inline SYSTEMTIME st;
    ReplaceImport clock{__imp_GetLocalTime, &Read};
};

/// An entry of the user's locale, put back at the end.
class LocaleEntry {
  public:
    LocaleEntry(LCTYPE nEntry, const wchar_t* pszValue) : n(nEntry) {
        ::GetLocaleInfoW(LOCALE_USER_DEFAULT, n, szBefore, 128);
        bSet = ::SetLocaleInfoW(LOCALE_USER_DEFAULT, n, pszValue) != 0;
    }
    ~LocaleEntry() { ::SetLocaleInfoW(LOCALE_USER_DEFAULT, n, szBefore); }
    LocaleEntry(const LocaleEntry&) = delete;
    LocaleEntry& operator=(const LocaleEntry&) = delete;
    bool IsSet() const { return bSet; }

  private:
    LCTYPE n;
    wchar_t szBefore[128] = {};
    bool bSet = false;
};

inline std::wstring DateText(const SYSTEMTIME& st, DWORD dwFlags) {
    wchar_t sz[256] = {};
    ::GetDateFormatW(LOCALE_USER_DEFAULT, dwFlags, &st, nullptr, sz, 256);
    return sz;
}
inline std::wstring TimeText(const SYSTEMTIME& st) {
    wchar_t sz[256] = {};
    ::GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &st, nullptr, sz, 256);
    return sz;
}

/// The time stamp of a moment of the user's clock.
inline unsigned __int64 StampOf(int nYear, int nMonth, int nDay, int nHour = 12, int nMinute = 0,
                                int nSecond = 0) {
    SYSTEMTIME st{};
    st.wYear = static_cast<WORD>(nYear);
    st.wMonth = static_cast<WORD>(nMonth);
    st.wDay = static_cast<WORD>(nDay);
    st.wHour = static_cast<WORD>(nHour);
    st.wMinute = static_cast<WORD>(nMinute);
    st.wSecond = static_cast<WORD>(nSecond);
    FILETIME ftLocal{}, ft{};
    ::SystemTimeToFileTime(&st, &ftLocal);
    ::LocalFileTimeToFileTime(&ftLocal, &ft);
    return static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
}

struct SeenItem {
    std::wstring strText; // "-" for a separator
    UINT nId = 0;
    UINT nState = 0; // MFS_ flags
    HMENU hmenuSub = nullptr;
    HBITMAP hbm = nullptr;
};

/// What a menu of this process holds, read with the platform's calls.
inline std::vector<SeenItem> ItemsOf(HMENU hmenu) {
    std::vector<SeenItem> items;
    for (int n = 0; n < ::GetMenuItemCount(hmenu); ++n) {
        wchar_t szText[300] = {};
        MENUITEMINFOW info{};
        info.cbSize = sizeof(info);
        info.fMask =
            MIIM_FTYPE | MIIM_STRING | MIIM_ID | MIIM_STATE | MIIM_SUBMENU | MIIM_CHECKMARKS;
        info.dwTypeData = szText;
        info.cch = 300;
        ::GetMenuItemInfoW(hmenu, static_cast<UINT>(n), TRUE, &info);
        items.push_back({info.fType & MFT_SEPARATOR ? L"-" : szText, info.wID, info.fState,
                         info.hSubMenu, info.hbmpUnchecked});
    }
    return items;
}

/// The texts alone, the default item in asterisks, greyed ones in brackets.
inline std::vector<std::wstring> TextsOf(HMENU hmenu) {
    std::vector<std::wstring> texts;
    for (const SeenItem& item : ItemsOf(hmenu)) {
        std::wstring str = item.strText;
        if (item.nState & MFS_DEFAULT) str = L"*" + str + L"*";
        // (A separator is grey on some platforms and not on others.)
        if (item.nState & MFS_GRAYED && str != L"-") str = L"(" + str + L")";
        texts.push_back(str);
    }
    return texts;
}

/// The recommendations of the tray menu in their turn, the one that comes next first: one turn of
/// them.
inline std::vector<const Recommendation*> RecommendationsOfTheMenu() {
    std::vector<const Recommendation*> entries;
    for (int n = 0; n < kRecommendations; ++n) {
        CSMenu menu;
        menu.CreatePopup();
        AddRecommendationRows(menu);
        entries.push_back(GetRecommendation());
    }
    return entries;
}
