#pragma once
#include "files/path_support.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cwchar>
#include <string>

/// Has each row of a table be a test under the row's own name.
inline constexpr auto kRowName = [](const auto& row) { return std::string(row.param.pszName); };

/// What a function makes of a text.
struct ChangeCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszResult;
};

/// Rows of texts and what they become.
class ChangeTest : public testing::TestWithParam<ChangeCase> {
  protected:
    /// The row in place: in a buffer with just the room it needs before a page that may not be
    /// touched, and in one right behind such a page. A null text does nothing.
    template <class Change>
    static void ExpectChange(Change&& change) {
        FrontGuardedPath front;
        auto [pszName, pszText, pszResult] = GetParam();
        PathBuffer text(pszText, std::max(std::wcslen(pszText), std::wcslen(pszResult)) + 1);
        for (wchar_t* psz : {static_cast<wchar_t*>(text), front.Put(pszText)}) {
            change(psz);
            EXPECT_STREQ(pszResult, psz);
        }
        change(nullptr);
    }

    /// The row from another text and in place. A null output does nothing.
    template <class Copy>
    static void ExpectCopy(Copy&& copy) {
        GuardedText in(GetParam().pszText);
        PathBuffer out(L"before");
        copy(out, in.Get());
        EXPECT_STREQ(GetParam().pszResult, out);
        ExpectChange([&](wchar_t* psz) { copy(psz, psz); });
        copy(nullptr, L"a");
    }
};
