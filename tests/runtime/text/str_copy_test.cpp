#include "runtime/text/str_copy.h"
#include "support/guard_page.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdint>
#include <string>

namespace {
// Building texts, and steps over text

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

// Texts on the heap, and blocks of memory

struct AllocatedText {
    wchar_t* psz = nullptr;
    unsigned cch = 0;
    ~AllocatedText() { StrAllocCopy(psz, cch, nullptr, 0); }
};

TEST(StrAllocCopy, TakesAFreshCopyAndItsLength) {
    AllocatedText text;
    std::wstring str = L"abc";
    StrAllocCopy(text.psz, text.cch, str.c_str(), 0);
    str = L"xyz";
    EXPECT_STREQ(L"abc", text.psz);
    EXPECT_EQ(3u, text.cch);
    StrAllocCopy(text.psz, text.cch, L"longer text", 1);
    EXPECT_STREQ(L"longer text", text.psz);
    EXPECT_EQ(11u, text.cch);
}

TEST(StrAllocCopy, NoNewTextLeavesNull) {
    AllocatedText text;
    StrAllocCopy(text.psz, text.cch, nullptr, 1);
    EXPECT_EQ(nullptr, text.psz);
    StrAllocCopy(text.psz, text.cch, L"abc", 1);
    StrAllocCopy(text.psz, text.cch, nullptr, 1);
    EXPECT_EQ(nullptr, text.psz);
    EXPECT_EQ(0u, text.cch);
}

TEST(StrAllocCopy, EmptyNewTextIsAnEmptyCopy) {
    AllocatedText text;
    StrAllocCopy(text.psz, text.cch, L"", 1);
    ASSERT_NE(nullptr, text.psz);
    EXPECT_STREQ(L"", text.psz);
    EXPECT_EQ(0u, text.cch);
}

TEST(StrAllocCopy, NewTextMayLieInTheOldOne) {
    for (int bWipe : {0, 1}) {
        AllocatedText text;
        StrAllocCopy(text.psz, text.cch, L"abcdef", 0);
        StrAllocCopy(text.psz, text.cch, text.psz + 2, bWipe);
        EXPECT_STREQ(L"cdef", text.psz);
        EXPECT_EQ(4u, text.cch);
    }
}

/// Where the "secret" of a text that was given up still stands, as a number of its characters; the
/// text's terminator is changed before, so that it can be told too.
std::size_t LeftBehind(const std::wstring& strSecret, int bWipe) {
    std::wstring strLeft(strSecret.size() + 1, L'\0'); // now: it must not get the freed place
    wchar_t* psz = nullptr;
    unsigned cch = 0;
    StrAllocCopy(psz, cch, strSecret.c_str(), 0);
    psz[cch] = strSecret.back();
    auto nPlace = reinterpret_cast<std::uintptr_t>(psz); // behind it nothing is ours any more
    StrAllocCopy(psz, cch, nullptr, bWipe);
    ::ReadProcessMemory(::GetCurrentProcess(), reinterpret_cast<const void*>(nPlace),
                        strLeft.data(), strLeft.size() * sizeof(wchar_t), nullptr);
    return static_cast<std::size_t>(std::count(strLeft.begin(), strLeft.end(), strSecret.back()));
}

TEST(StrAllocCopy, WipedTextIsNotLeftBehindInMemory) {
    const std::wstring strSecret(5000, L'\x5EC2');
    if (LeftBehind(strSecret, 0) < strSecret.size() / 2) {
        GTEST_SKIP() << "the heap here overwrites what it frees";
    }
    EXPECT_EQ(0u, LeftBehind(strSecret, 1));
}

TEST(StrRealloc, ReplacesTheTextAndTakesEmptyForNone) {
    wchar_t* psz = nullptr;
    StrRealloc(psz, L"abc");
    EXPECT_STREQ(L"abc", psz);
    StrRealloc(psz, psz + 1);
    EXPECT_STREQ(L"bc", psz);
    StrRealloc(psz, L"");
    EXPECT_EQ(nullptr, psz);
    StrRealloc(psz, L"x");
    EXPECT_STREQ(L"x", psz);
    StrRealloc(psz, nullptr);
    EXPECT_EQ(nullptr, psz);
}

TEST(StrErase, WritesThatManyZeros) {
    GuardedArea area(64);
    wchar_t* psz = area.Put(L"abcd");
    StrErase(psz, 0);
    EXPECT_STREQ(L"abcd", psz);
    StrErase(psz, 1);
    EXPECT_EQ(0, psz[0]);
    EXPECT_EQ(L'b', psz[1]);
    StrErase(psz, 3);
    EXPECT_EQ(0, psz[2]);
    EXPECT_EQ(L'd', psz[3]);
    StrErase(psz, 5);
    EXPECT_EQ(0, psz[3]);
    StrErase(nullptr, 5);
}

TEST(IsMemSetTo, OneOnlyIfEveryByteIsThatOne) {
    GuardedMemory memory(5);
    auto* p = static_cast<unsigned char*>(memory.Get());
    memset(p, 0xFF, 5);
    EXPECT_EQ(1, IsMemSetTo(p, 0xFF, 5));
    EXPECT_EQ(0, IsMemSetTo(p, 0, 5));
    p[4] = 0xFE;
    EXPECT_EQ(0, IsMemSetTo(p, 0xFF, 5));
    EXPECT_EQ(1, IsMemSetTo(p, 0xFF, 4));
    EXPECT_EQ(1, IsMemSetTo(p + 4, 0xFE, 1));
    EXPECT_EQ(0, IsMemSetTo(p, 0xFF, 0));
    EXPECT_EQ(0, IsMemSetTo(nullptr, 0, 5));
}
} // namespace
