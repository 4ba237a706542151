#include "runtime/text/str_copy.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>

namespace {
/// A text built from all of the two-pass functions.
void Build(wchar_t*& pszDest, unsigned& cch) {
    const wchar_t* pszMoving = L"cd";
    CopyStr(pszDest, L"ab", cch);
    CharAdd(pszDest, L'=', cch);
    StrCopy(pszDest, pszMoving, cch);
    CopyStr(pszDest, L"", cch);
    CopyStrZ(pszDest, L"e", cch);
    CopyStrZ(pszDest, L"", cch);
}

TEST(TwoPassCopy, MeasuresWhatItThenWrites) {
    wchar_t* pszDest = nullptr;
    unsigned cch = 0;
    Build(pszDest, cch);
    EXPECT_EQ(nullptr, pszDest);
    ASSERT_EQ(8u, cch);

    GuardedArea area(64);
    auto* pszStart = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
    pszDest = pszStart;
    unsigned cchWritten = 0;
    Build(pszDest, cchWritten);
    EXPECT_EQ(cch, cchWritten);
    EXPECT_EQ(pszStart + cch, pszDest);
    EXPECT_EQ(std::wstring(L"ab=cde\0\0", 8), std::wstring(pszStart, 8));
}

TEST(TwoPassCopy, CountsOnFromTheCounter) {
    wchar_t* pszDest = nullptr;
    unsigned cch = 100;
    CopyStr(pszDest, L"abc", cch);
    EXPECT_EQ(103u, cch);
}

TEST(CopyStr, WritesNoTerminator) {
    wchar_t sz[] = L"12345";
    wchar_t* pszDest = sz;
    unsigned cch = 0;
    CopyStr(pszDest, L"ab", cch);
    EXPECT_STREQ(L"ab345", sz);
    EXPECT_EQ(sz + 2, pszDest);
}

TEST(CopyStrZ, CountsTheTerminatorAndMovesBehindIt) {
    wchar_t sz[] = L"12345";
    wchar_t* pszDest = sz;
    unsigned cch = 0;
    CopyStrZ(pszDest, L"ab", cch);
    EXPECT_STREQ(L"ab", sz);
    EXPECT_EQ(3u, cch);
    EXPECT_EQ(sz + 3, pszDest);
    EXPECT_STREQ(L"45", pszDest);
}

TEST(StrCopy, MovesTheSourceToItsTerminatorInBothPasses) {
    GuardedText text(L"abc");
    const wchar_t* pszSource = text.Get();
    wchar_t* pszDest = nullptr;
    unsigned cch = 0;
    StrCopy(pszDest, pszSource, cch);
    EXPECT_EQ(text.Get() + 3, pszSource);
    EXPECT_EQ(3u, cch);
    StrCopy(pszDest, pszSource, cch); // nothing more there
    EXPECT_EQ(text.Get() + 3, pszSource);
    EXPECT_EQ(3u, cch);
}

TEST(StrCopy, NullSourceCountsAsEmpty) {
    wchar_t sz[] = L"12";
    wchar_t* pszDest = sz;
    const wchar_t* pszSource = nullptr;
    unsigned cch = 0;
    StrCopy(pszDest, pszSource, cch);
    CopyStr(pszDest, nullptr, cch);
    EXPECT_EQ(0u, cch);
    EXPECT_STREQ(L"12", sz);
    CopyStrZ(pszDest, nullptr, cch);
    EXPECT_EQ(1u, cch);
    EXPECT_STREQ(L"", sz);
}

TEST(CharAdd, StoresAndMovesOnOrIgnoresNull) {
    wchar_t sz[] = L"12";
    wchar_t* psz = sz;
    CharAdd(psz, L'a');
    EXPECT_STREQ(L"a2", sz);
    EXPECT_EQ(sz + 1, psz);
    psz = nullptr;
    CharAdd(psz, L'a');
    EXPECT_EQ(nullptr, psz);
}

TEST(CharCopy, TellsTheTerminatorAndCopiesIt) {
    wchar_t sz[] = L"123";
    wchar_t* pszDest = sz;
    const wchar_t* pszSource = L"a";
    EXPECT_EQ(1, CharCopy(pszDest, pszSource));
    EXPECT_STREQ(L"a23", sz);
    EXPECT_EQ(0, CharCopy(pszDest, pszSource));
    EXPECT_STREQ(L"a", sz);
    EXPECT_EQ(sz + 2, pszDest);
}

TEST(CharCopy, NullOnEitherSideMovesNothing) {
    wchar_t sz[] = L"1";
    wchar_t* pszDest = nullptr;
    const wchar_t* pszSource = sz;
    EXPECT_EQ(0, CharCopy(pszDest, pszSource));
    EXPECT_EQ(sz, pszSource);
    pszDest = sz;
    pszSource = nullptr;
    EXPECT_EQ(0, CharCopy(pszDest, pszSource));
    EXPECT_EQ(sz, pszDest);
    EXPECT_STREQ(L"1", sz);
}

template <class Char>
void CheckSteps(Char* pStart) {
    Char* psz = pStart;
    EXPECT_EQ(pStart + 1, IncPsz(psz));
    EXPECT_EQ(pStart + 1, psz);
    EXPECT_EQ(pStart + 1, PszInc(psz));
    EXPECT_EQ(pStart + 2, psz);
    EXPECT_EQ(pStart + 1, DecPsz(pStart, psz));
    EXPECT_EQ(pStart, DecPsz(pStart, psz));
    EXPECT_EQ(pStart, DecPsz(pStart, psz));     // stands at the start
    EXPECT_EQ(pStart, DecPsz(pStart + 1, psz)); // and before it
    EXPECT_EQ(pStart, psz);
    psz = nullptr;
    EXPECT_EQ(nullptr, IncPsz(psz));
    EXPECT_EQ(nullptr, PszInc(psz));
    EXPECT_EQ(nullptr, DecPsz(nullptr, psz));
    EXPECT_EQ(nullptr, psz);
}

TEST(PointerSteps, MoveByOneCharacterAndStopAtTheStart) {
    wchar_t sz[] = L"abc";
    CheckSteps<wchar_t>(sz);
    CheckSteps<const wchar_t>(sz);
}

TEST(CharAt, GivesTheCharacterOrZero) {
    EXPECT_EQ(L'a', CharAt(L"ab"));
    EXPECT_EQ(0, CharAt(L""));
    EXPECT_EQ(0, CharAt(nullptr));
}
} // namespace
