#include "app/about/about.h"
#include "support/message_box_driver.h"
#include "support/replace_import.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <cwchar>
#include <string>

extern "C" FARPROC __imp_lstrcpynW;
extern "C" FARPROC __imp_MessageBoxW;

namespace {
/// Put together here, so that the program's file has the plain text only if the library has it.
std::wstring Notice() {
    std::wstring str = L"Tessaly\n\n";
    return str + L"Copyright (c) 2017 Orvanta. All rights reserved.";
}

std::wstring Negated(std::wstring str) {
    for (wchar_t& ch : str) ch = static_cast<wchar_t>(-ch);
    return str;
}

/// Looks on at what is done with the stored notice.
class NoticeWatch {
  public:
    NoticeWatch() : copying(__imp_lstrcpynW, &Copy), showing(__imp_MessageBoxW, &Show) {
        pStored = nullptr;
        cchCopied = nShown = 0;
        strCopied.clear();
        strShown.clear();
        bNegatedWhileShown = false;
    }
    static bool IsNegated() { return pStored && pStored == Negated(Notice()); }
    static inline const wchar_t* pStored;
    static inline int cchCopied, nShown;
    static inline std::wstring strCopied, strShown;
    static inline bool bNegatedWhileShown;
    static inline UINT nFlags;
    static inline HWND hwndOwner;

  private:
    static LPWSTR WINAPI Copy(LPWSTR pszTo, LPCWSTR pszFrom, int cch) {
        pStored = pszFrom;
        strCopied = pszFrom;
        cchCopied = cch;
        std::wcsncpy(pszTo, pszFrom, static_cast<size_t>(cch));
        return pszTo;
    }
    static int WINAPI Show(HWND hwnd, LPCWSTR pszText, LPCWSTR, UINT nBoxFlags) {
        ++nShown;
        hwndOwner = hwnd;
        strShown = pszText;
        nFlags = nBoxFlags;
        bNegatedWhileShown = IsNegated();
        return IDOK;
    }
    ReplaceImport copying, showing;
};
} // namespace

TEST(ShowCopyright, ShowsTheNoticeOverTheWindow) {
    TestWindow owner({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    MessageBoxDriver driver({IDOK});
    ShowCopyright(owner);
    auto seen = driver.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(Notice(), seen[0].strText);
    EXPECT_EQ(owner, seen[0].hwndOwner);
    EXPECT_EQ((std::vector<int>{IDOK}), seen[0].buttons);
    EXPECT_EQ(1, seen[0].bHasIcon);
}

TEST(ShowCopyright, NoticeIsStoredNegatedBeforeAndAfter) {
    NoticeWatch watch;
    for (int n = 0; n < 2; ++n) { // the second time tells what the first left
        ShowCopyright(nullptr);
        EXPECT_EQ(Notice(), watch.strCopied);
        EXPECT_EQ(256, watch.cchCopied);
        EXPECT_TRUE(watch.bNegatedWhileShown);
        EXPECT_TRUE(watch.IsNegated());
        EXPECT_EQ(Notice(), watch.strShown);
        EXPECT_EQ(MB_ICONINFORMATION | MB_SETFOREGROUND, watch.nFlags);
    }
    EXPECT_EQ(2, watch.nShown);
}

TEST(ShowCopyright, ProgramsFileHoldsTheNoticeNegatedAlone) {
    wchar_t szFile[MAX_PATH];
    ::GetModuleFileNameW(nullptr, szFile, MAX_PATH);
    std::ifstream file(std::filesystem::path(szFile), std::ios::binary);
    const std::string strFile((std::istreambuf_iterator<char>(file)), {});
    auto Has = [&](const std::wstring& str) {
        return strFile.find(reinterpret_cast<const char*>(str.data()), 0,
                            str.size() * sizeof(wchar_t)) != std::string::npos;
    };
    EXPECT_TRUE(Has(Negated(Notice())));
    EXPECT_FALSE(Has(Notice()));
}
