#include "files/memory_stream.h"
#include "files/path_tables.h"
#include "files/stream/core_file.h"
#include "files/stream/core_io.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

static_assert(std::has_virtual_destructor_v<CoreIOObj> && std::is_abstract_v<CoreIOObj>);
static_assert(std::is_copy_constructible_v<CoreIO> && std::is_copy_assignable_v<CoreIO>);

template <class T>
concept Writable = requires(CoreIO io, T value) {
    io.Write(value);
};
static_assert(Writable<unsigned char> && Writable<unsigned short> && Writable<int> &&
              Writable<unsigned> && Writable<unsigned long>);
static_assert(!Writable<char> && !Writable<signed char> && !Writable<wchar_t> && !Writable<short> &&
              !Writable<bool> && !Writable<long>);

namespace {
using namespace std::string_literals;

/// A CoreIO over a stream that the test sees.
class CoreIOTest : public testing::Test {
  protected:
    MemoryStream& stream = *new MemoryStream;
    CoreIO io{&stream};
};
using CoreIOForward = CoreIOTest;
using CoreIOTyped = CoreIOTest;
using CoreIOStr = CoreIOTest;

// The last result

struct ErrorCase {
    const char* pszName;
    DWORD dwError;
    unsigned long nExpected;
};
class LastHRESULTTest : public testing::TestWithParam<ErrorCase> {};
TEST_P(LastHRESULTTest, ConvertsPositiveErrors) {
    CoreIOObj::SetLastWin32Error(GetParam().dwError);
    EXPECT_EQ(static_cast<long>(GetParam().nExpected), CoreIOObj::GetLastHRESULT());
}
INSTANTIATE_TEST_SUITE_P(Errors, LastHRESULTTest,
                         testing::Values(ErrorCase{"None", 0, 0}, ErrorCase{"One", 1, 0x80070001},
                                         ErrorCase{"AlreadyExists", ERROR_ALREADY_EXISTS,
                                                   0x800700B7},
                                         ErrorCase{"Largest16Bits", 0xFFFF, 0x8007FFFF},
                                         ErrorCase{"LowHalfAlone", 0x10002, 0x80070002},
                                         ErrorCase{"LargestPositive", 0x7FFFFFFF, 0x8007FFFF},
                                         ErrorCase{"SmallestNegative", 0x80000000, 0x80000000},
                                         ErrorCase{"ResultStays", 0x80004005, 0x80004005},
                                         ErrorCase{"AllOnes", 0xFFFFFFFF, 0xFFFFFFFF}),
                         kRowName);

TEST(LastHRESULT, IsStoredAsItIs) {
    for (long l : {0L, 1L, -1L, static_cast<long>(0x80000000)}) {
        CoreIOObj::SetLastHRESULT(l);
        EXPECT_EQ(l, CoreIOObj::GetLastHRESULT());
    }
}

TEST(LastHRESULT, EveryNewStreamClearsIt) {
    CoreIOObj::SetLastHRESULT(5);
    MemoryStream stream;
    EXPECT_EQ(0, CoreIOObj::GetLastHRESULT());
    CoreIOObj::SetLastHRESULT(5);
    CoreIO io(nullptr);
    EXPECT_EQ(0, CoreIOObj::GetLastHRESULT());
    CoreIOObj::SetLastHRESULT(5);
    CoreFile file;
    EXPECT_EQ(0, CoreIOObj::GetLastHRESULT());
}

TEST(LastHRESULT, CopyIsNoNewStream) {
    CoreIO io(nullptr);
    CoreIOObj::SetLastHRESULT(5);
    CoreIO copy(io);
    EXPECT_EQ(5, CoreIOObj::GetLastHRESULT());
}

// The order of the operations, which other modules call by their place

template <class Fn>
std::size_t SlotOf(Fn pfn) {
    // A pointer to a virtual member holds 1 more than the offset of its slot (Itanium C++ ABI).
    std::size_t words[2] = {};
    static_assert(sizeof(pfn) == sizeof(words));
    std::memcpy(words, &pfn, sizeof(words));
    return (words[0] - 1) / sizeof(void*);
}

TEST(CoreIOObj, OperationsStandInTheirOrderBehindTheDestructor) {
#ifdef _MSC_VER
    GTEST_SKIP() << "this compiler's member pointers do not tell";
#else
    constexpr std::size_t kFirst = 2; // the destructor takes two slots
    const std::size_t slots[] = {SlotOf(&CoreIOObj::Close),        SlotOf(&CoreIOObj::IsReady),
                                 SlotOf(&CoreIOObj::IsToWrite),    SlotOf(&CoreIOObj::GetSize64),
                                 SlotOf(&CoreIOObj::SetEndOfFile), SlotOf(&CoreIOObj::MoveTo64),
                                 SlotOf(&CoreIOObj::Flush),        SlotOf(&CoreIOObj::ReadBin),
                                 SlotOf(&CoreIOObj::WriteBin)};
    for (std::size_t i = 0; i < std::size(slots); ++i) EXPECT_EQ(kFirst + i, slots[i]) << i;
#endif
}

// Positions

TEST(CoreIOObj, FilePosIsTheCurrentPosition) {
    MemoryStream stream("abcdef");
    stream.nPos = 4;
    EXPECT_EQ(4, stream.GetFilePos64());
    EXPECT_EQ(4u, stream.nPos);
}

TEST(CoreIOObj, SkipMovesFromTheCurrentPosition) {
    MemoryStream stream("abcdef");
    EXPECT_EQ(5, stream.Skip(5));
    EXPECT_EQ(3, stream.Skip(-2));
    EXPECT_EQ(3, stream.Skip(0));
}

// Forwarding

TEST_F(CoreIOForward, GivesWhatTheInnerStreamGives) {
    stream.str = "0123456789";
    EXPECT_EQ(1, io.IsReady());
    EXPECT_EQ(7, io.IsToWrite());
    EXPECT_EQ(10u, io.GetSize64());
    EXPECT_EQ(6, io.MoveTo64(-4, FILE_END));
    EXPECT_EQ(8, io.MoveTo64(2, FILE_CURRENT));
    EXPECT_EQ(3, io.SetEndOfFile());
    EXPECT_EQ(5, io.Flush());
    EXPECT_TRUE(stream.bCut && stream.bFlushed);
    char sz[3] = {};
    DWORD cbDone = 0;
    EXPECT_EQ(1, io.ReadBin(sz, 2, &cbDone));
    EXPECT_STREQ("89", sz);
    EXPECT_EQ(2u, cbDone);
    EXPECT_EQ(1, io.WriteBin("xyz", 3, &cbDone));
    EXPECT_EQ("0123456789xyz", stream.str);
    EXPECT_EQ(3u, cbDone);
    io.Close();
    EXPECT_EQ(0, io.IsReady());
}

TEST_F(CoreIOForward, FailuresComeThrough) {
    stream.str = "abc";
    stream.cbCapacity = 5;
    char sz[8] = {};
    DWORD cbDone = 9;
    EXPECT_EQ(0, io.ReadBin(sz, 8, &cbDone));
    EXPECT_EQ(3u, cbDone);
    EXPECT_EQ(0, io.WriteBin("defg", 4, &cbDone)); // the disk is full
    EXPECT_EQ(2u, cbDone);
    EXPECT_EQ("abcde", stream.str);
}

TEST(CoreIO, WithoutAnInnerStreamEverythingGivesZero) {
    CoreIO io(nullptr);
    char sz[CoreIO::kShortTextSize] = "old";
    int n = 17;
    io.Close();
    EXPECT_EQ(0, io.IsReady());
    EXPECT_EQ(0, io.IsToWrite());
    EXPECT_EQ(0u, io.GetSize64());
    EXPECT_EQ(0, io.SetEndOfFile());
    EXPECT_EQ(0, io.MoveTo64(1, FILE_BEGIN));
    EXPECT_EQ(0, io.GetFilePos64());
    EXPECT_EQ(0, io.Flush());
    EXPECT_EQ(0, io.ReadBin(sz, 1, nullptr));
    EXPECT_EQ(0, io.WriteBin(sz, 1, nullptr));
    EXPECT_EQ(0, io.Read(n));
    EXPECT_EQ(17, n);
    EXPECT_EQ(0, io.Write(n));
    EXPECT_EQ(0, io.WriteStr("a"));
    EXPECT_EQ(0, io.ReadStr(sz));
    EXPECT_STREQ("", sz);
}

TEST(CoreIO, OwnsItsInnerStream) {
    bool bDeleted = false;
    {
        auto* pInner = new MemoryStream;
        pInner->pbDeleted = &bDeleted;
        CoreIO io(pInner);
        EXPECT_FALSE(bDeleted);
    }
    EXPECT_TRUE(bDeleted);
}

TEST(CoreIO, CopiesShareTheInnerStream) {
    auto* pInner = new MemoryStream("ab");
    CoreIO io(pInner);
    // Only one of the copies may be destroyed: these live in memory that nobody destroys.
    alignas(CoreIO) unsigned char place[2][sizeof(CoreIO)];
    auto* pCopy = new (place[0]) CoreIO(io);
    auto* pAssigned = new (place[1]) CoreIO(nullptr);
    *pAssigned = io;
    unsigned char b = 0;
    EXPECT_EQ(1, pCopy->Read(b));
    EXPECT_EQ('a', b);
    EXPECT_EQ(1, pAssigned->Read(b));
    EXPECT_EQ('b', b);
    EXPECT_EQ(2u, pInner->nPos);
}

TEST(CoreIO, CreateFileObjectOpensTheFile) {
    TempFolder folder;
    {
        std::unique_ptr<CoreIOObj> pObject(
            CoreIO::CreateFileObject(folder.File(L"new").c_str(), 1));
        ASSERT_TRUE(pObject);
        EXPECT_EQ(1, pObject->IsReady());
        EXPECT_EQ(1, pObject->IsToWrite());
        EXPECT_EQ(1, pObject->WriteBin("hello", 5, nullptr));
    }
    EXPECT_EQ("hello", folder.ReadFile(L"new"));
    std::unique_ptr<CoreIOObj> pMissing(
        CoreIO::CreateFileObject(folder.File(L"missing").c_str(), 0));
    ASSERT_TRUE(pMissing);
    EXPECT_EQ(0, pMissing->IsReady());
    EXPECT_EQ(0, pMissing->IsToWrite());
}

// Typed values

TEST_F(CoreIOTyped, WritesTheValuesOwnSizeInMachineOrder) {
    EXPECT_EQ(1, io.Write(static_cast<unsigned char>(0x81)));
    EXPECT_EQ(1, io.Write(static_cast<unsigned short>(0x8283)));
    EXPECT_EQ(1, io.Write(-2));
    EXPECT_EQ(1, io.Write(0x84858687u));
    EXPECT_EQ(1, io.Write(0x88898A8BuL));
    EXPECT_EQ("\x81\x83\x82\xFE\xFF\xFF\xFF\x87\x86\x85\x84\x8B\x8A\x89\x88", stream.str);
    EXPECT_EQ((std::vector<DWORD>{1, 2, 4, 4, 4}), stream.writes);
    EXPECT_EQ(0, stream.nDoneGiven);
}

TEST_F(CoreIOTyped, ReadsTheValuesOwnSizeInMachineOrder) {
    stream.str = "\x81\x83\x82\xFE\xFF\xFF\xFF\x87\x86\x85\x84\x8B\x8A\x89\x88";
    unsigned char b = 0;
    unsigned short w = 0;
    int n = 0;
    unsigned u = 0;
    unsigned long ul = 0;
    EXPECT_TRUE(io.Read(b) && io.Read(w) && io.Read(n) && io.Read(u) && io.Read(ul));
    EXPECT_EQ(0x81, b);
    EXPECT_EQ(0x8283, w);
    EXPECT_EQ(-2, n);
    EXPECT_EQ(0x84858687u, u);
    EXPECT_EQ(0x88898A8BuL, ul);
    EXPECT_EQ((std::vector<DWORD>{1, 2, 4, 4, 4}), stream.reads);
    EXPECT_EQ(0, stream.nDoneGiven);
}

TEST_F(CoreIOTyped, FailuresGiveZero) {
    stream.str = "abc";
    int n = 0;
    EXPECT_EQ(0, io.Read(n));
    stream.cbCapacity = stream.nPos = 3;
    EXPECT_EQ(0, io.Write(1));
    EXPECT_EQ(0, io.Write(static_cast<unsigned char>(1)));
}

TEST_F(CoreIOTyped, EveryFailedWriteLeavesWhatStoodBefore) {
    // Each value in turn meets a disk that is full in front of it or in its middle.
    const std::vector<std::pair<DWORD, std::function<int()>>> steps = {
        {1, [&] { return io.Write(static_cast<unsigned char>(1)); }},
        {2, [&] { return io.Write(static_cast<unsigned short>(2)); }},
        {4, [&] { return io.Write(3); }},
        {4, [&] { return io.Write(4u); }},
        {4, [&] { return io.Write(5uL); }},
        {4, [&] { return io.WriteStr("abc"); }},
        {1, [&] { return io.WriteStr(""); }},
    };
    for (std::size_t cbCapacity = 0; cbCapacity <= 20; ++cbCapacity) {
        stream.str = "before";
        stream.nPos = 6;
        stream.cbCapacity = 6 + cbCapacity;
        std::size_t cb = 0;
        for (const auto& [cbStep, fnWrite] : steps) {
            cb += cbStep;
            EXPECT_EQ(cb <= cbCapacity, fnWrite()) << cbCapacity << ", " << cb;
            if (cb > cbCapacity) break;
        }
        EXPECT_EQ("before", stream.str.substr(0, 6));
        EXPECT_LE(stream.str.size(), stream.cbCapacity);
    }
}

TEST_F(CoreIOTyped, BrokenReadGivesZeroWithEverySize) {
    stream.str = "0123456789";
    unsigned char b = 1;
    unsigned short w = 2;
    int n = 3;
    unsigned u = 4;
    unsigned long ul = 5;
    const std::function<int()> reads[] = {[&] { return io.Read(b); }, [&] { return io.Read(w); },
                                          [&] { return io.Read(n); }, [&] { return io.Read(u); },
                                          [&] { return io.Read(ul); }};
    for (const auto& fnRead : reads) {
        stream.nFailReadAt = static_cast<int>(stream.reads.size());
        EXPECT_EQ(0, fnRead());
    }
    EXPECT_TRUE(b == 1 && w == 2 && n == 3 && u == 4 && ul == 5);
    EXPECT_EQ(0u, stream.nPos);
}

// Short texts

TEST_F(CoreIOStr, IsALengthByteAndTheBytes) {
    EXPECT_EQ(1, io.WriteStr("abc"));
    EXPECT_EQ(1, io.WriteStr(""));
    EXPECT_EQ(1, io.WriteStr("\xFF"));
    EXPECT_EQ("\3abc\0\1\xFF"s, stream.str);
    stream.nPos = 0;
    char sz[CoreIO::kShortTextSize];
    for (const char* pszExpected : {"abc", "", "\xFF"}) {
        std::memset(sz, '?', sizeof(sz));
        EXPECT_EQ(1, io.ReadStr(sz));
        EXPECT_STREQ(pszExpected, sz);
    }
    EXPECT_EQ(0, io.ReadStr(sz));
    EXPECT_STREQ("", sz);
}

struct LengthCase {
    const char* pszName;
    std::size_t cbText;
    std::size_t cbStored;
};
class CoreIOStrLength : public CoreIOTest, public testing::WithParamInterface<LengthCase> {};
TEST_P(CoreIOStrLength, IsCutModulo256) {
    EXPECT_EQ(1, io.WriteStr(std::string(GetParam().cbText, 'x').c_str()));
    EXPECT_EQ(static_cast<char>(GetParam().cbStored) + std::string(GetParam().cbStored, 'x'),
              stream.str);
}
INSTANTIATE_TEST_SUITE_P(
    Lengths, CoreIOStrLength,
    testing::Values(LengthCase{"Below", 254, 254}, LengthCase{"Longest", 255, 255},
                    LengthCase{"OneMore", 256, 0}, LengthCase{"TwoMore", 257, 1},
                    LengthCase{"TwiceLessOne", 511, 255}, LengthCase{"Twice", 512, 0},
                    LengthCase{"BelowTheCount", 32766, 254}, LengthCase{"Count", 32767, 255},
                    LengthCase{"OneMoreThanTheCount", 32768, 255},
                    LengthCase{"FarMore", 40000, 255}),
    kRowName);

TEST_F(CoreIOStr, LongestTextFillsItsBufferExactly) {
    stream.str = "\xFF" + std::string(255, 'y');
    GuardedMemory buffer(CoreIO::kShortTextSize);
    EXPECT_EQ(1, io.ReadStr(static_cast<char*>(buffer.Get())));
    EXPECT_EQ(std::string(255, 'y'), static_cast<char*>(buffer.Get()));
}

TEST_F(CoreIOStr, MeasuresNoMoreThan32767Bytes) {
    GuardedMemory text(32767); // without a terminator
    std::memset(text.Get(), 'z', text.GetSize());
    EXPECT_EQ(1, io.WriteStr(static_cast<char*>(text.Get())));
    EXPECT_EQ("\xFF" + std::string(255, 'z'), stream.str);
}

TEST_F(CoreIOStr, TextThatEndsEarlyGivesZeroAndIsTerminated) {
    stream.str = "\5abc";
    char sz[CoreIO::kShortTextSize];
    std::memset(sz, '?', sizeof(sz));
    EXPECT_EQ(0, io.ReadStr(sz));
    EXPECT_STREQ("abc", sz);
}

TEST_F(CoreIOStr, BrokenReadGivesZeroAndAnEmptyText) {
    stream.str = "\3abc";
    stream.nFailReadAt = 1;
    char sz[CoreIO::kShortTextSize] = "old";
    EXPECT_EQ(0, io.ReadStr(sz));
    EXPECT_STREQ("", sz);
}

TEST_F(CoreIOStr, LengthThatCannotBeReadGivesZeroAndAnEmptyText) {
    stream.str = "\3abc";
    stream.nFailReadAt = 0;
    char sz[CoreIO::kShortTextSize] = "old";
    EXPECT_EQ(0, io.ReadStr(sz));
    EXPECT_STREQ("", sz);
    EXPECT_EQ(1u, stream.reads.size());
}

TEST_F(CoreIOStr, RandomStreamsStayWithinTheBuffer) {
    std::mt19937 random(13);
    GuardedMemory buffer(CoreIO::kShortTextSize);
    auto* psz = static_cast<char*>(buffer.Get());
    for (int i = 0; i < 20000; ++i) {
        stream.str.resize(random() % 300);
        for (char& ch : stream.str) ch = static_cast<char>(random());
        stream.nPos = 0;
        stream.reads.clear();
        stream.nFailReadAt = static_cast<int>(random() % 20) - 1;
        std::memset(psz, '?', buffer.GetSize());
        bool bWhole = stream.nFailReadAt != 0 && !stream.str.empty();
        std::size_t cb = bWhole ? static_cast<unsigned char>(stream.str[0]) : 0;
        bool bFailed = stream.nFailReadAt == 1 && cb;
        std::size_t cbThere = bFailed || !bWhole ? 0 : std::min(cb, stream.str.size() - 1);
        ASSERT_EQ(bWhole && !bFailed && cbThere == cb, io.ReadStr(psz));
        ASSERT_EQ(0, std::memcmp(psz, stream.str.data() + 1, cbThere));
        ASSERT_EQ(0, psz[cbThere]);
    }
}

TEST_F(CoreIOStr, FullDiskGivesZero) {
    stream.cbCapacity = 0;
    EXPECT_EQ(0, io.WriteStr("abc"));
    EXPECT_EQ(0, io.WriteStr(""));
    stream.cbCapacity = 2;
    EXPECT_EQ(0, io.WriteStr("abc"));
}

TEST_F(CoreIOStr, NullTextOrBufferGivesZero) {
    EXPECT_EQ(0, io.WriteStr(nullptr));
    EXPECT_EQ(0, io.ReadStr(nullptr));
    EXPECT_TRUE(stream.str.empty());
}
} // namespace
