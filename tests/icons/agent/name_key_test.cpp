#include "icons/agent/icon_record.h"
#include "icons/icons_test_support.h"
#include <gtest/gtest.h>

namespace {

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
