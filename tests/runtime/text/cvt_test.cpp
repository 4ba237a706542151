#include "runtime/text/encoding.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>

namespace {
std::wstring Text(std::size_t n) {
    std::wstring str(n, L'x');
    if (n) str.back() = L'z';
    return str;
}

TEST(CVT, SizeIs260IfNotTold) {
    EXPECT_EQ(260u, CVT().GetSize());
    EXPECT_EQ(12u, CVT(12).GetSize());
}

TEST(CVT, WideTextBecomesNarrow) {
    CVT cvt;
    EXPECT_STREQ("Desktop", cvt.T_A(L"Desktop"));
    EXPECT_STREQ("", cvt.T_A(L""));
}

TEST(CVT, NullTextCountsAsEmpty) {
    CVT cvt;
    cvt.T_A(L"before");
    EXPECT_STREQ("", cvt.T_A(static_cast<const wchar_t*>(nullptr)));
}

TEST(CVT, NarrowTextMayHaveAllCharactersOfTheSize) {
    CVT cvt(8);
    EXPECT_STREQ("xxxxxxxz", cvt.T_A(Text(8).c_str()));
}

TEST(CVT, LongerTextIsCutAndTerminated) {
    CVT cvt(8);
    EXPECT_STREQ("xxxxxxxx", cvt.T_A(Text(9).c_str()));
    EXPECT_STREQ("xxxxxxxx", cvt.T_A(Text(5000).c_str()));
}

TEST(CVT, ReadsNoFurtherThanTheTerminator) {
    CVT cvt(50);
    GuardedText text(L"end");
    EXPECT_STREQ("end", cvt.T_A(text.Get()));
}

TEST(CVT, ChangedNarrowTextComesBackWide) {
    CVT cvt;
    char* psz = cvt.T_A(L"in");
    strcpy(psz, "changed by a narrow function");
    wchar_t szOut[260];
    cvt.A_T(szOut);
    EXPECT_STREQ(L"changed by a narrow function", szOut);
}

TEST(CVT, WidePlaceHoldsTheSizeAndStartsEmpty) {
    CVT cvt(16);
    wchar_t* psz = cvt.A_T();
    EXPECT_STREQ(L"", psz);
    wcscpy(psz, Text(16).c_str());
    EXPECT_EQ(psz, cvt.A_T());
    EXPECT_EQ(Text(16), psz);
}

TEST(CVT, WideTextInThePlaceComesOutNarrow) {
    CVT cvt;
    wcscpy(cvt.A_T(), L"made by a wide function");
    char szOut[260];
    cvt.T_A(szOut);
    EXPECT_STREQ("made by a wide function", szOut);
}

TEST(CVT, PlaceIsLargeEnoughAfterTheOtherDirectionWasUsed) {
    CVT cvt(400);
    cvt.T_A(L"first");
    wcscpy(cvt.A_T(), Text(400).c_str());
    EXPECT_EQ(Text(400), cvt.A_T());
}

TEST(CVT, OutputsHaveTheSizeWithTheTerminator) {
    CVT cvt(8);
    wcscpy(cvt.A_T(), Text(8).c_str());
    GuardedMemory narrow(8);
    cvt.T_A(static_cast<char*>(narrow.Get()));
    EXPECT_STREQ("xxxxxxx", static_cast<char*>(narrow.Get()));

    CVT back(8);
    back.T_A(Text(8).c_str());
    GuardedMemory wide(8 * sizeof(wchar_t));
    back.A_T(static_cast<wchar_t*>(wide.Get()));
    EXPECT_STREQ(L"xxxxxxx", static_cast<wchar_t*>(wide.Get()));
}

TEST(CVT, OutputsAreEmptyBeforeAnythingWasPutIn) {
    CVT cvt(4);
    char szNarrow[4] = "abc";
    wchar_t szWide[4] = L"abc";
    cvt.T_A(szNarrow);
    cvt.A_T(szWide);
    EXPECT_STREQ("", szNarrow);
    EXPECT_STREQ(L"", szWide);
}

TEST(CVT, SizeOfZeroHasRoomForNothing) {
    CVT cvt(0);
    EXPECT_STREQ("", cvt.T_A(L"text"));
    char ch = 'z';
    cvt.T_A(&ch);
    EXPECT_EQ('z', ch);
}

TEST(CVT, WideTextPassesThrough) {
    const wchar_t* psz = L"same";
    EXPECT_EQ(psz, CVT::T_W(psz));
}

TEST(CVT, AccentsOfTheSystemCodePageSurviveTheRoundTrip) {
    const wchar_t* pszText = L"B\u00FCro";
    if (::GetACP() != 1252 && ::GetACP() != CP_UTF8) GTEST_SKIP() << "code page without u umlaut";
    CVT cvt;
    cvt.T_A(pszText);
    wchar_t szOut[260];
    cvt.A_T(szOut);
    EXPECT_STREQ(pszText, szOut);
}
} // namespace
