#include "icons/menu_test_support.h"
#include "icons/tray/restore_menu.h"
#include "support/heap_count.h"
#include "support/replace_import.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>

extern "C" FARPROC __imp_GetDateFormatW;

namespace {
using DateFormatFunc = int WINAPI(LCID, DWORD, const SYSTEMTIME*, LPCWSTR, LPWSTR, int);
DateFormatFunc* pfnPlatformsDate = nullptr;

/// Leaves the buffer alone when the date does not fit, as not every platform does.
int WINAPI WholeDatesOnly(LCID lcid, DWORD dwFlags, const SYSTEMTIME* pst, LPCWSTR pszFormat,
                          LPWSTR psz, int cch) {
    if (pfnPlatformsDate(lcid, dwFlags, pst, pszFormat, nullptr, 0) > cch) return 0;
    return pfnPlatformsDate(lcid, dwFlags, pst, pszFormat, psz, cch);
}

struct RestoreMenu : testing::Test {
    RestoreMenu() { menu.CreatePopup(); }
    ~RestoreMenu() override { FreeRestoreMenuData(menu); }
    int Build() {
        FreeRestoreMenuData(menu);
        menu.DeleteAll();
        return BuildRestoreMenu(menu, 1000);
    }
    /// The time stamps of the items, in their order.
    std::vector<unsigned __int64> Stamps() {
        std::vector<unsigned __int64> stamps;
        for (unsigned n = 0; n < static_cast<unsigned>(menu.GetCount()); ++n) {
            auto* p = reinterpret_cast<const unsigned __int64*>(menu.GetItemDataByPos(n));
            stamps.push_back(p ? *p : 0);
        }
        return stamps;
    }
    void Mark(const std::wstring& strName) { key.PutStr(L"", strName); }

    TestDate today{2017, 11, 3};
    SnapshotKey key;
    CSMenu menu;
    const Layout layout = MakeLayout(2);
};
} // namespace

TEST_F(RestoreMenu, EmptyStoreAndMissingKeyGiveNoItems) {
    EXPECT_EQ(0, Build());
    EXPECT_EQ(0, menu.GetCount());
    key.Delete();
    EXPECT_EQ(0, Build());
    EXPECT_EQ(0, menu.GetCount());
    key.Create(); // reading has not made it
    EXPECT_TRUE(key.Values().empty());
}

TEST_F(RestoreMenu, OneSnapshotIsOneItem) {
    key.Plant(StampOf(2017, 11, 2, 9, 8, 7), layout);
    EXPECT_EQ(1, Build());
    auto items = ItemsOf(menu);
    ASSERT_EQ(1u, items.size());
    EXPECT_EQ(1000u, items[0].nId);
    EXPECT_EQ(std::vector<unsigned __int64>{StampOf(2017, 11, 2, 9, 8, 7)}, Stamps());
}

TEST_F(RestoreMenu, SnapshotsComeNewestFirstWithIdsWithoutAGap) {
    std::vector<int> days;
    for (int n = 1; n <= 26; ++n) days.push_back(n);
    std::shuffle(days.begin(), days.end(), std::mt19937(7));
    for (size_t nCount : {25u, 26u}) {
        key.Delete();
        key.Create();
        std::vector<unsigned __int64> expected;
        for (size_t n = 0; n < nCount; ++n) expected.push_back(StampOf(2017, 10, days[n]));
        for (unsigned __int64 qw : expected) key.Plant(qw, layout);
        std::sort(expected.rbegin(), expected.rend());
        EXPECT_EQ(static_cast<int>(nCount), Build());
        EXPECT_EQ(expected, Stamps());
        auto items = ItemsOf(menu);
        for (unsigned n = 0; n < items.size(); ++n) EXPECT_EQ(1000 + n, items[n].nId);
    }
}

TEST_F(RestoreMenu, IdsStartWhereToldAndItemsAreAppended) {
    key.Plant(StampOf(2017, 11, 2), layout);
    key.Plant(StampOf(2017, 11, 1), layout);
    menu.AppendItem(5, L"before");
    EXPECT_EQ(2, BuildRestoreMenu(menu, 300));
    auto items = ItemsOf(menu);
    ASSERT_EQ(3u, items.size());
    EXPECT_EQ(300u, items[1].nId);
    EXPECT_EQ(301u, items[2].nId);
}

TEST_F(RestoreMenu, LabelIsTodayOrTheLongDateAndTheTimeInTheUsersFormat) {
    key.Plant(StampOf(2017, 11, 3, 0, 0, 1), layout);
    key.Plant(StampOf(2017, 11, 2, 23, 59, 59), layout);
    key.Plant(StampOf(2016, 11, 3, 13, 5, 0), layout);
    SYSTEMTIME stToday{2017, 11, 5, 3, 0, 0, 1, 0}, stYesterday{2017, 11, 4, 2, 23, 59, 59, 0},
        stYearAgo{2016, 11, 4, 3, 13, 5, 0, 0};
    LocaleEntry longDate(LOCALE_SLONGDATE, L"dd. MMM yyyy");
    for (const wchar_t* pszTime : {L"h:mm:ss tt", L"HH.mm.ss"}) {
        LocaleEntry time(LOCALE_STIMEFORMAT, pszTime);
        ASSERT_EQ(3, Build());
        EXPECT_EQ((std::vector<std::wstring>{
                      L"Today at " + TimeText(stToday),
                      DateText(stYesterday, DATE_LONGDATE) + L" " + TimeText(stYesterday),
                      DateText(stYearAgo, DATE_LONGDATE) + L" " + TimeText(stYearAgo)}),
                  TextsOf(menu));
    }
    today.Set(2017, 11, 2); // another day, and another one is today's
    Build();
    EXPECT_EQ(L"Today at " + TimeText(stYesterday), TextsOf(menu)[1]);
    EXPECT_EQ(DateText(stToday, DATE_LONGDATE) + L" " + TimeText(stToday), TextsOf(menu)[0]);
}

TEST_F(RestoreMenu, PercentSignsOfTheLocaleAreNoFormats) {
    LocaleEntry longDate(LOCALE_SLONGDATE, L"'%s %n 'yyyy");
    if (!longDate.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
    key.Plant(StampOf(2016, 11, 3, 13, 5, 0), layout);
    ASSERT_EQ(1, Build());
    EXPECT_EQ(0u, TextsOf(menu)[0].find(L"%s %n 2016 "));
}

TEST_F(RestoreMenu, LongDateThatDoesNotFitIsLeftOut) {
    key.Plant(StampOf(2016, 11, 3, 13, 5, 0), layout);
    SYSTEMTIME st{2016, 11, 4, 3, 13, 5, 0, 0};
    {
        LocaleEntry longDate(LOCALE_SLONGDATE, L"'31 characters with the year 'yy");
        if (!longDate.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
        ASSERT_EQ(1, Build());
        EXPECT_EQ(L"31 characters with the year 16 " + TimeText(st), TextsOf(menu)[0]);
    }
    LocaleEntry longDate(LOCALE_SLONGDATE, L"'Thirty-two and more characters: 'yyyy");
    ASSERT_EQ(1, Build());
    std::wstring str = TextsOf(menu)[0];
    EXPECT_LT(str.size(), 32 + 1 + TimeText(st).size());
    EXPECT_EQ(L" " + TimeText(st), str.substr(str.size() - TimeText(st).size() - 1));
}

TEST_F(RestoreMenu, LongDateThatDoesNotFitIsNeverTodays) {
    key.Plant(StampOf(2017, 11, 3, 9, 8, 7), layout);
    key.Plant(StampOf(2016, 11, 3, 9, 8, 7), layout);
    // One that today's buffer still holds, and one for which that is too small as well.
    for (const wchar_t* pszFormat :
         {L"'Thirty-two and more characters: 'yyyy",
          L"'Sixty-four and more characters, as nobody would write a date: 'yyyy"}) {
        LocaleEntry longDate(LOCALE_SLONGDATE, pszFormat);
        if (!longDate.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
        ASSERT_EQ(2, Build());
        for (const std::wstring& str : TextsOf(menu)) {
            EXPECT_EQ(std::wstring::npos, str.find(L"Today"));
            EXPECT_NE(std::wstring::npos, str.find(L' ' + TimeText({2017, 11, 5, 3, 9, 8, 7, 0})));
        }
        ReplaceImport replaced(__imp_GetDateFormatW, &WholeDatesOnly);
        pfnPlatformsDate = replaced.Original<DateFormatFunc>();
        ASSERT_EQ(2, Build());
        for (const std::wstring& str : TextsOf(menu))
            EXPECT_EQ(L' ' + TimeText({2017, 11, 5, 3, 9, 8, 7, 0}), str);
    }
}

TEST_F(RestoreMenu, DatesThatAreWrittenTheSameAreTodays) {
    // The texts are compared: a locale that tells no day has the whole month as today.
    key.Plant(StampOf(2017, 11, 30), layout);
    key.Plant(StampOf(2017, 11, 3), layout);
    key.Plant(StampOf(2017, 10, 31), layout);
    LocaleEntry longDate(LOCALE_SLONGDATE, L"MMMM yyyy");
    if (!longDate.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
    ASSERT_EQ(3, Build());
    auto texts = TextsOf(menu);
    EXPECT_EQ(0u, texts[0].find(L"Today at "));
    EXPECT_EQ(0u, texts[1].find(L"Today at "));
    EXPECT_EQ(0u, texts[2].find(DateText({2017, 10, 2, 31, 0, 0, 0, 0}, DATE_LONGDATE) + L" "));
}

TEST_F(RestoreMenu, TimeThatDoesNotFitLeavesTheRestOfTheLabel) {
    key.Plant(StampOf(2017, 11, 3, 9, 8, 7), layout);
    LocaleEntry time(LOCALE_STIMEFORMAT, L"'thirty-two and more characters: 'HH:mm:ss");
    if (!time.IsSet()) GTEST_SKIP() << "the user's locale can't be changed here";
    ASSERT_EQ(1, Build());
    std::wstring str = TextsOf(menu)[0];
    EXPECT_EQ(0u, str.find(L"Today at "));
    EXPECT_LT(str.size(), std::wstring(L"Today at ").size() + 32);
}

TEST_F(RestoreMenu, SnapshotRestoredLastIsTheDefaultItem) {
    for (int n = 1; n <= 3; ++n) key.Plant(StampOf(2017, 10, n), layout);
    Build();
    EXPECT_EQ(0xFFFFFFFF, menu.GetDefaultID(0));
    Mark(NameOf(StampOf(2017, 10, 2)));
    Build();
    EXPECT_EQ(1001u, menu.GetDefaultID(0));
    // Aged out while it is marked: nothing is bold.
    Mark(NameOf(StampOf(2017, 9, 1)));
    EXPECT_EQ(3, Build());
    EXPECT_EQ(0xFFFFFFFF, menu.GetDefaultID(0));
}

const unsigned __int64 kMarked = StampOf(2017, 10, 2);
const std::wstring kMark = NameOf(kMarked);

struct MarkCase {
    const char* pszName;
    DWORD dwType;
    RegBytes bytes;
    bool bMarks;
};
struct RestoreMenuMark : RestoreMenu, testing::WithParamInterface<MarkCase> {};

TEST_P(RestoreMenuMark, IsReadUpToItsSizeAndADamagedOneMarksNothing) {
    key.Plant(kMarked, layout);
    key.Plant(StampOf(2017, 10, 1), layout);
    key.Put(L"", GetParam().dwType, GetParam().bytes);
    EXPECT_EQ(2, Build());
    EXPECT_EQ(GetParam().bMarks ? 1000u : 0xFFFFFFFF, menu.GetDefaultID(0));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RestoreMenuMark,
    testing::Values(
        MarkCase{"Whole", REG_SZ, BytesOf(kMark), true},
        MarkCase{"WithoutItsEnd", REG_SZ, BytesOf(kMark, false), true},
        MarkCase{"OfAnotherType", REG_BINARY, BytesOf(kMark), true},
        MarkCase{"FilledUpTo40Bytes", REG_SZ, BytesOf(kMark + L'\0' + L"xy", true), true},
        MarkCase{"Of41Bytes", REG_BINARY, RegBytes(41, 0), false},
        MarkCase{"Of42Bytes", REG_SZ, BytesOf(kMark + L'\0' + L"xyz", true), false},
        MarkCase{"Of40BytesOfDigits", REG_SZ, BytesOf(std::wstring(20, L'0'), false), false},
        MarkCase{"OneDigitShort", REG_SZ, BytesOf(kMark.substr(1)), false},
        MarkCase{"Empty", REG_SZ, {}, false},
        MarkCase{"HalfACharacter", REG_BINARY, {0x30}, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(RestoreMenu, ListGoesByTheNamesAloneAlsoOfDamagedValues) {
    key.Plant(StampOf(2017, 10, 2), layout);
    key.Put(NameOf(StampOf(2017, 10, 3)), REG_BINARY, {1, 2, 3}); // no snapshot's size
    key.PutStr(NameOf(StampOf(2017, 10, 4)), L"text");
    key.Put(NameOf(StampOf(2017, 10, 5)), REG_NONE, {});
    key.PutStr(L"01D3", L"too short a name");
    key.PutStr(NameOf(StampOf(2017, 10, 6)) + L"0", L"too long a name");
    key.PutStr(L"0000000000000000", L"stands for no time");
    EXPECT_EQ(4, Build());
    EXPECT_EQ((std::vector<unsigned __int64>{StampOf(2017, 10, 5), StampOf(2017, 10, 4),
                                             StampOf(2017, 10, 3), StampOf(2017, 10, 2)}),
              Stamps());
}

TEST_F(RestoreMenu, TimeStampThatIsNoDateTakesNoId) {
    key.Plant(StampOf(2017, 10, 2), layout);
    key.Plant(StampOf(2017, 10, 1), layout);
    for (unsigned __int64 qw : {0xFFFFFFFFFFFFFFFFull, 0x8000000000000000ull})
        key.Plant(qw, layout);
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(2, Build());
    EXPECT_EQ(nBefore + 2, CountLiveBlocks()); // theirs were given back
    auto items = ItemsOf(menu);
    ASSERT_EQ(2u, items.size());
    EXPECT_EQ(1000u, items[0].nId);
    EXPECT_EQ(1001u, items[1].nId);
    // With nothing else there is nothing.
    key.Delete();
    key.Create();
    key.Plant(0xFFFFFFFFFFFFFFFF, layout);
    EXPECT_EQ(0, Build());
    EXPECT_EQ(0, menu.GetCount());
}

TEST_F(RestoreMenu, WithoutAMenuAllTimeStampsAreGivenBack) {
    for (int n = 1; n <= 3; ++n) key.Plant(StampOf(2017, 10, n), layout);
    CSMenu none;
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(0, BuildRestoreMenu(none, 1000));
    EXPECT_EQ(nBefore, CountLiveBlocks());
    FreeRestoreMenuData(none);
}

TEST_F(RestoreMenu, FreeingGivesBackEachTimeStampOnceAndClearsTheData) {
    for (int n = 1; n <= 25; ++n) key.Plant(StampOf(2017, 10, n), layout);
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(25, Build());
    EXPECT_EQ(nBefore + 25, CountLiveBlocks());
    FreeRestoreMenuData(menu);
    EXPECT_EQ(nBefore, CountLiveBlocks());
    for (unsigned n = 0; n < 25; ++n) EXPECT_EQ(0u, menu.GetItemDataByPos(n));
    FreeRestoreMenuData(menu);
    EXPECT_EQ(nBefore, CountLiveBlocks());
}
