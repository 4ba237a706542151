#pragma once
#include "files/path_support.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cwchar>
#include <initializer_list>

/// What a function makes of a text.
struct ChangeRow {
    const wchar_t* pszText;
    const wchar_t* pszResult;
};

/// Each row in place: in a buffer with just the room it needs before a page that may not be
/// touched, and in one right behind such a page. A null text does nothing.
template <class Change>
void ExpectChanges(std::initializer_list<ChangeRow> rows, Change&& change) {
    FrontGuardedPath front;
    for (const ChangeRow& row : rows) {
        PathBuffer text(row.pszText,
                        std::max(std::wcslen(row.pszText), std::wcslen(row.pszResult)) + 1);
        for (wchar_t* psz : {static_cast<wchar_t*>(text), front.Put(row.pszText)}) {
            change(psz);
            EXPECT_STREQ(row.pszResult, psz) << row.pszText;
        }
    }
    change(nullptr);
}

/// Each row from another text and in place. A null output does nothing.
template <class Copy>
void ExpectCopies(std::initializer_list<ChangeRow> rows, Copy&& copy) {
    for (const ChangeRow& row : rows) {
        GuardedText in(row.pszText);
        PathBuffer out(L"before");
        copy(out, in.Get());
        EXPECT_STREQ(row.pszResult, out) << row.pszText;
    }
    ExpectChanges(rows, [&](wchar_t* psz) { copy(psz, psz); });
    copy(nullptr, L"a");
}
