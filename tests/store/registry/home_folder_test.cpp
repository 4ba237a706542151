#include "store/reg_tree.h"
#include "store/registry/home_folder.h"

#include <gtest/gtest.h>

namespace {
constexpr const wchar_t* kProduct = L"TessalyHomeTest";

class HomeFolder : public testing::Test {
  protected:
    RegTree maker{HKEY_LOCAL_MACHINE, L"Software\\Orvanta"};
    RegTree former{HKEY_LOCAL_MACHINE, L"Software\\Quenby"};
    std::wstring strSetup = std::wstring(kProduct) + L"\\Setup";

    static int Process(int nOp, std::wstring strText) {
        strText.resize(MAX_PATH);
        return ProcessHomeFolder(static_cast<RegKey::Op>(nOp), kProduct, strText.data(), MAX_PATH);
    }
    static std::wstring Get() {
        wchar_t sz[MAX_PATH];
        std::fill(std::begin(sz), std::end(sz), L'#');
        int nResult = GetHomeFolder(kProduct, sz);
        EXPECT_EQ(*sz != 0, nResult != 0);
        return sz;
    }
};

TEST_F(HomeFolder, NoneGivesZeroAndAnEmptyTextAndCreatesNothing) {
    EXPECT_EQ(L"", Get());
    EXPECT_EQ(0, Process(RegKey::OpTest, L"C:\\App"));
    EXPECT_EQ(0, Process(RegKey::OpTestAbsent, L""));
    EXPECT_FALSE(maker.Exists());
    EXPECT_FALSE(former.Exists());
}

TEST_F(HomeFolder, IsSetTestedReadAndDeleted) {
    EXPECT_EQ(1, Process(RegKey::OpSet, L"C:\\App"));
    RegDump expected;
    expected.subkeys[kProduct].subkeys[L"Setup"].values[L"Home"] = StrContent(L"C:\\App");
    EXPECT_EQ(expected, maker.Dump());
    EXPECT_EQ(L"C:\\App", Get());
    EXPECT_EQ(1, Process(RegKey::OpTest, L"C:\\App"));
    EXPECT_EQ(0, Process(RegKey::OpTest, L"c:\\app"));
    EXPECT_EQ(1, Process(RegKey::OpTestNoCase, L"c:\\app"));
    EXPECT_EQ(0, Process(RegKey::OpTestAbsent, L""));
    EXPECT_EQ(1, Process(RegKey::OpDelete, L""));
    expected.subkeys[kProduct].subkeys[L"Setup"].values.clear();
    EXPECT_EQ(expected, maker.Dump());
    EXPECT_EQ(1, Process(RegKey::OpTestAbsent, L""));
    EXPECT_FALSE(former.Exists());
}

TEST_F(HomeFolder, DeletionMakesTheKeyToo) {
    EXPECT_EQ(1, Process(RegKey::OpDelete, L""));
    EXPECT_TRUE(maker.Dump().subkeys[kProduct].subkeys.count(L"Setup"));
}

TEST_F(HomeFolder, SetAlwaysDoesNotOpenForWriting) {
    EXPECT_EQ(0, Process(RegKey::OpSetAlways, L"C:\\App"));
    EXPECT_FALSE(maker.Exists());
    maker.Create(strSetup);
    EXPECT_EQ(0, Process(RegKey::OpSetAlways, L"C:\\App"));
    EXPECT_EQ(L"", Get());
}

TEST_F(HomeFolder, IsReadFromTheFormerRootIfThereIsNoKeyInThePresentOne) {
    former.PutStr(L"Home", L"C:\\Old", strSetup);
    RegDump before = former.Dump();
    EXPECT_EQ(L"C:\\Old", Get());
    EXPECT_EQ(1, Process(RegKey::OpTest, L"C:\\Old"));
    EXPECT_EQ(before, former.Dump());
    EXPECT_FALSE(maker.Exists());
    maker.Create(strSetup);
    EXPECT_EQ(L"", Get()); // the present key rules, also without the value
}

TEST_F(HomeFolder, WritingMovesTheFormerSettingsFirst) {
    former.PutStr(L"Home", L"C:\\Old", strSetup);
    former.PutStr(L"Language", L"EN", strSetup);
    EXPECT_EQ(1, Process(RegKey::OpSet, L"C:\\New"));
    RegDump expected;
    auto& setup = expected.subkeys[kProduct].subkeys[L"Setup"];
    setup.values[L"Home"] = StrContent(L"C:\\New");
    setup.values[L"Language"] = StrContent(L"EN");
    EXPECT_EQ(expected, maker.Dump());
    EXPECT_FALSE(former.Exists());
}

TEST_F(HomeFolder, DeletionMovesTheFormerSettingsFirst) {
    former.PutStr(L"Home", L"C:\\Old", strSetup);
    former.PutStr(L"Language", L"EN", strSetup);
    EXPECT_EQ(1, Process(RegKey::OpDelete, L""));
    RegDump expected;
    expected.subkeys[kProduct].subkeys[L"Setup"].values[L"Language"] = StrContent(L"EN");
    EXPECT_EQ(expected, maker.Dump());
    EXPECT_FALSE(former.Exists());
}

TEST_F(HomeFolder, WritingNeverFallsBackToTheFormerRoot) {
    maker.Create(kProduct); // taken over, so that nothing is moved
    ASSERT_TRUE(maker.PlantDeadLink(strSetup));
    former.PutStr(L"Home", L"C:\\Old", strSetup);
    RegDump before = former.Dump();
    EXPECT_EQ(0, Process(RegKey::OpSet, L"C:\\Old"));
    EXPECT_EQ(0, Process(RegKey::OpDelete, L""));
    EXPECT_EQ(before, former.Dump());
    EXPECT_EQ(L"C:\\Old", Get());
}

TEST_F(HomeFolder, LongestThatIsReadHas259Characters) {
    std::wstring strLongest(259, L'x');
    maker.PutStr(L"Home", strLongest, strSetup);
    EXPECT_EQ(strLongest, Get());
    maker.PutStr(L"Home", strLongest + L"x", strSetup);
    EXPECT_EQ(L"", Get());
}

TEST_F(HomeFolder, NoProductOrBufferGivesZero) {
    wchar_t sz[MAX_PATH] = L"text";
    EXPECT_EQ(0, GetHomeFolder(nullptr, sz));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, GetHomeFolder(kProduct, nullptr));
    EXPECT_EQ(0, ProcessHomeFolder(RegKey::OpSet, nullptr, sz, MAX_PATH));
    EXPECT_EQ(0, ProcessHomeFolder(RegKey::OpGet, kProduct, nullptr, 0));
    EXPECT_FALSE(maker.Exists());
}

TEST_F(HomeFolder, LongProductNamesFindNothing) {
    for (unsigned n : {127u, 128u, 255u, 256u, 257u, 5000u}) {
        std::wstring strName(n, L'x');
        wchar_t sz[MAX_PATH];
        EXPECT_EQ(0, GetHomeFolder(strName.c_str(), sz)) << n;
        EXPECT_EQ(0, Restricted(strName.c_str(), L"x")) << n;
    }
    wchar_t sz[] = L"C:\\App";
    EXPECT_EQ(1, ProcessHomeFolder(RegKey::OpSet, std::wstring(127, L'x').c_str(), sz, 7));
    EXPECT_EQ(0, ProcessHomeFolder(RegKey::OpSet, std::wstring(128, L'x').c_str(), sz, 7));
}

/// A product's name of that length in levels of keys, none of which is too long.
std::wstring LevelsOfLength(std::size_t cch) {
    std::wstring str(cch, L'x');
    for (std::size_t n = 50; n + 1 < cch; n += 50) str[n] = L'\\';
    return str;
}

TEST_F(HomeFolder, PathOfWhichAPartWouldBeOpenedIsNone) {
    wchar_t sz[MAX_PATH] = L"C:\\App";
    std::wstring strLongest = LevelsOfLength(228), strCut = LevelsOfLength(229); // 256 and 257
    EXPECT_EQ(1, ProcessHomeFolder(RegKey::OpSet, strLongest.c_str(), sz, MAX_PATH));
    EXPECT_EQ(1, GetHomeFolder(strLongest.c_str(), sz));
    RegDump before = maker.Dump();
    EXPECT_EQ(0, ProcessHomeFolder(RegKey::OpSet, strCut.c_str(), sz, MAX_PATH));
    EXPECT_EQ(before, maker.Dump());
    maker.PutStr(L"Home", L"C:\\App", strCut + L"\\Setu");
    EXPECT_EQ(0, GetHomeFolder(strCut.c_str(), sz));
}

TEST(RestrictedTest, ReadsTheNumberOfThatName) {
    RegTree product(HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyHomeTest");
    EXPECT_EQ(0, Restricted(kProduct, L"Menu"));
    EXPECT_FALSE(product.Exists());
    product.Put(L"Menu", REG_DWORD, {1, 0, 0, 0}, L"Setup\\Restrictions");
    product.Put(L"All", REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}, L"Setup\\Restrictions");
    product.Put(L"", REG_DWORD, {1, 0, 0, 0}, L"Setup\\Restrictions");
    EXPECT_EQ(1, Restricted(kProduct, L"Menu"));
    EXPECT_EQ(-1, Restricted(kProduct, L"All"));
    EXPECT_EQ(0, Restricted(kProduct, L"Other"));
    EXPECT_EQ(0, Restricted(kProduct, nullptr));
    EXPECT_EQ(0, Restricted(nullptr, L"Menu"));
}

TEST(RestrictedTest, PathOfWhichAPartWouldBeOpenedIsNone) {
    RegTree maker(HKEY_CURRENT_USER, L"Software\\Orvanta");
    std::wstring strLongest = LevelsOfLength(214); // 255
    maker.Put(L"Menu", REG_DWORD, {1, 0, 0, 0}, strLongest + L"\\Setup\\Restrictions");
    EXPECT_EQ(1, Restricted(strLongest.c_str(), L"Menu"));
    for (std::size_t cch : {215u, 216u}) {
        std::wstring strCut = LevelsOfLength(cch);
        maker.Put(L"Menu", REG_DWORD, {1, 0, 0, 0}, strCut + L"\\Setup\\Restriction");
        maker.Put(L"Menu", REG_DWORD, {1, 0, 0, 0}, strCut + L"\\Setup\\Restrictions");
        EXPECT_EQ(0, Restricted(strCut.c_str(), L"Menu")) << cch;
    }
}

TEST(RestrictedTest, MachineIsNotAsked) {
    RegTree maker(HKEY_LOCAL_MACHINE, L"Software\\Orvanta");
    maker.Put(L"Menu", REG_DWORD, {1, 0, 0, 0}, L"TessalyHomeTest\\Setup\\Restrictions");
    EXPECT_EQ(0, Restricted(kProduct, L"Menu"));
}

TEST(IsPowerUserTest, TriesTheKeyAndLeavesNoValue) {
    RegTree maker(HKEY_LOCAL_MACHINE, L"Software\\Orvanta");
    EXPECT_EQ(1, IsPowerUser());
    EXPECT_EQ(RegDump(), maker.Dump());
    EXPECT_TRUE(maker.Exists());
    maker.Put(L"Temp", REG_DWORD, {0, 0, 0, 0});
    maker.PutStr(L"Other", L"text");
    EXPECT_EQ(1, IsPowerUser());
    EXPECT_EQ(1u, maker.Dump().values.size());
    EXPECT_EQ(StrContent(L"text"), maker.Dump().values[L"Other"]);
}
} // namespace
