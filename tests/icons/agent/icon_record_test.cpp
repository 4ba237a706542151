#include "icons/agent/icon_record.h"
#include "icons/icons_test_support.h"
#include "runtime/base/digest.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <cstring>
#include <string>

namespace {
unsigned __int64 KeyOfBytes(const std::wstring& str) {
    unsigned char digest[kMd5Size];
    CalcMD5(digest, str.data(), str.size() * 2);
    unsigned __int64 qw = 0;
    for (int i = 7; i >= 0; --i) qw = qw << 8 | digest[i];
    return qw;
}

TEST(MakeNameKey, EmptyTextIsTheDigestOfNothing) {
    EXPECT_EQ(0x04B2008FD98C1DD4u, MakeNameKey(L"", 0));
}

TEST(MakeNameKey, IsTheFirstEightDigestBytesLowestFirst) {
    EXPECT_EQ(KeyOfBytes(L"Recycle Bin"), MakeNameKey(L"Recycle Bin", 11));
}

TEST(MakeNameKey, LengthOfZeroMeasuresTheText) {
    EXPECT_EQ(MakeNameKey(L"Recycle Bin", 11), MakeNameKey(L"Recycle Bin", 0));
}

TEST(MakeNameKey, TakesExactlyTheUnitsTold) {
    EXPECT_EQ(MakeNameKey(L"Recycle", 7), MakeNameKey(L"Recycle Bin", 7));
    EXPECT_EQ(KeyOfBytes(std::wstring(L"a\0b", 3)), MakeNameKey(L"a\0b", 3));
}

TEST(MakeNameKey, FoldsAndNormalisesNothing) {
    EXPECT_NE(MakeNameKey(L"text", 0), MakeNameKey(L"Text", 0));
    EXPECT_NE(MakeNameKey(L"\u00E4", 0), MakeNameKey(L"a\u0308", 0));
}

TEST(MakeNameKey, SurrogatePairsAreTwoUnits) {
    EXPECT_EQ(KeyOfBytes(L"\xD83D\xDE00"), MakeNameKey(L"\xD83D\xDE00", 2));
}

TEST(MakeNameKey, ReadsNothingBehindTheText) {
    for (std::size_t cch : {0u, 1u, 259u, 260u, 1000u}) {
        std::wstring str(cch, L'n');
        GuardedText text(str);
        EXPECT_EQ(KeyOfBytes(str), MakeNameKey(text.Get(), 0)) << cch;
        EXPECT_EQ(KeyOfBytes(str), MakeNameKey(text.Get(), static_cast<unsigned>(cch))) << cch;
    }
}

// Beside the platform's own digest

constexpr unsigned long long kKeyOfNothing = 0x04B2008FD98C1DD4; // MD5 of zero bytes

TEST(NameKey, OfEmptyTextIsTheDigestOfNothing) { EXPECT_EQ(kKeyOfNothing, MakeNameKey(L"", 0)); }

TEST(NameKey, OfNoTextIsThatOfTheEmptyOneWhateverTheLength) {
    EXPECT_EQ(kKeyOfNothing, MakeNameKey(nullptr, 0));
    EXPECT_EQ(kKeyOfNothing, MakeNameKey(nullptr, 5));
}

TEST(NameKey, MeasuresATextOfLengthZero) {
    EXPECT_EQ(KeyOf(L"Documents"), MakeNameKey(L"Documents", 0));
    EXPECT_EQ(KeyOf(L"Documents"), MakeNameKey(L"Documents", 9));
}

TEST(NameKey, TakesExactlyTheGivenLength) {
    EXPECT_EQ(KeyOf(L"Doc"), MakeNameKey(L"Documents", 3));
    EXPECT_EQ(KeyOf(std::wstring_view(L"a\0b", 3)), MakeNameKey(L"a\0b", 3));
}

TEST(NameKey, FoldsNothing) {
    EXPECT_NE(MakeNameKey(L"readme", 0), MakeNameKey(L"README", 0));
    EXPECT_NE(MakeNameKey(L"\u00E9", 0), MakeNameKey(L"e\u0301", 0));
}

} // namespace
