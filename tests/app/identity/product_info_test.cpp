#include "app/identity/product_info.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/core/company_msg.h"
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <tuple>
#include <vector>

namespace {
constexpr const wchar_t* kStartRoot = L"HKCU\\SOFTWARE\\Orvanta\\Tessaly";

/// Puts the root of the library's start back.
class ProductInfoTest : public testing::Test {
  protected:
    ~ProductInfoTest() override {
        product.PopAppRootKey();
        product.SetAppRootKey(kStartRoot);
    }
    MyProductInfo& product = GetMyProductInfo();
};

/// A product of another maker's choice, for what this product's values do not show.
class OtherProduct : public MyProductInfo {
  public:
    const wchar_t* GetName() override { return L"Other"; }
    const wchar_t* GetNickName() override { return L"Oth"; }
    int IsNameRegTM() override { return 1; }
    const wchar_t* GetLanguage() override { return pszLanguage; }
    const wchar_t* pszLanguage = L"de";
};
} // namespace

TEST(MyProductInfo, Texts) {
    MyProductInfo& product = GetMyProductInfo();
    const struct {
        const char* pszName;
        const wchar_t* pszExpected;
        const wchar_t* psz;
    } rows[] = {
        {"GetStoreID", L"tessaly", product.GetStoreID()},
        {"GetName", L"Tessaly", product.GetName()},
        {"GetNickName", L"Tessaly", product.GetNickName()},
        {"GetDisplayName", L"Tessaly", product.GetDisplayName()},
        {"GetVersionStr", L"1.1", product.GetVersionStr()},
        {"GetVersionStrLong 0", L"Version 1.1", product.GetVersionStrLong(0)},
        {"GetVersionStrLong 1", L"Version <b>1.1</b>", product.GetVersionStrLong(1)},
        {"GetVersionStrLong 2", L"Version <b>1.1</b>", product.GetVersionStrLong(2)},
        {"GetLanguage", L"en", product.GetLanguage()},
        {"GetRevisionStr", L"2409", product.GetRevisionStr()},
        {"GetEditionShort", L"x64", product.GetEditionShort()},
        {"GetEdition", L"x64 Edition", product.GetEdition()},
        {"GetForOS", L"for Windows\u00AE 10, 7, Vista, XP (64-bit)", product.GetForOS()},
        {"GetCopyrightYear", L"2017", product.GetCopyrightYear()},
        {"GetHelpFile", L"Tessaly.chm", product.GetHelpFile()},
        {"GetAutoUpdateFile", L"TSEXE64.exe", product.GetAutoUpdateFile()},
        {"GetOEMStr", L"", product.GetOEMStr()},
        {"GetMsgTitle", L"Tessaly", product.GetMsgTitle()},
    };
    for (const auto& row : rows) EXPECT_STREQ(row.pszExpected, row.psz) << row.pszName;
}

TEST(MyProductInfo, Numbers) {
    MyProductInfo& product = GetMyProductInfo();
    EXPECT_EQ(16738, product.GetID());
    EXPECT_EQ(0x4162, product.GetID());
    EXPECT_EQ(0, product.IsNameRegTM());
    EXPECT_EQ(2409u, product.GetRevisionNum());
    EXPECT_EQ(0x0001000100000969u, product.GetVersionQWORD());
    EXPECT_EQ(-101, static_cast<int>(product.GetIconID()));
    EXPECT_EQ(GetLibraryInstance(), product.GetIconInstance());
    EXPECT_EQ(::GetModuleHandleW(nullptr), GetLibraryInstance());
}

TEST(MyProductInfo, VersionNumber) { EXPECT_EQ(0x010A0969u, GetMyProductInfo().GetVersionNum()); }

TEST(MyProductInfo, VersionWithRevisionHasTheSameBufferEachTime) {
    const wchar_t* psz = GetMyProductInfo().GetVersionStrRev(0);
    EXPECT_STREQ(L"1.1 (rev. 2409)", psz);
    EXPECT_EQ(psz, GetMyProductInfo().GetVersionStrRev(1));
    EXPECT_STREQ(L"1.1 (rev. 2409)", psz);
}

TEST(MyProductInfo, LongTitleIsCutToTheBuffer) {
    wchar_t sz[64];
    GetMyProductInfo().MakeTitleLong(sz, 64);
    EXPECT_STREQ(L"Tessaly x64 Edition 1.1", sz);
    wchar_t szShort[8];
    GetMyProductInfo().MakeTitleLong(szShort, 8);
    EXPECT_STREQ(L"Tessaly", szShort);
    GetMyProductInfo().MakeTitleLong(szShort, 1);
    EXPECT_STREQ(L"", szShort);
    szShort[0] = L'q';
    GetMyProductInfo().MakeTitleLong(szShort, 0);
    GetMyProductInfo().MakeTitleLong(szShort, -1);
    EXPECT_EQ(L'q', szShort[0]);
}

TEST_F(ProductInfoTest, LibraryStartSetsTheRoot) {
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
}

TEST_F(ProductInfoTest, EmptyOwnRootIsMadeFromTheNames) {
    product.SetAppRootKey(L"");
    EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Tessaly\\Tessaly", product.GetAppRootKey());
    product.SetAppRootKey(nullptr);
    EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Tessaly\\Tessaly", product.GetAppRootKey());
    OtherProduct other;
    EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Other\\Oth", other.GetAppRootKey());
}

TEST_F(ProductInfoTest, OwnRootIsCutToItsField) {
    for (std::size_t n : {254u, 255u, 256u, 1000u}) {
        product.SetAppRootKey(std::wstring(n, L'k').c_str());
        EXPECT_EQ(std::min<std::size_t>(n, 255), std::wcslen(product.GetAppRootKey()));
    }
}

TEST_F(ProductInfoTest, OwnRootCanBeSetFromItself) {
    product.SetAppRootKey(product.GetAppRootKey());
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
    product.SetAppRootKey(product.GetAppRootKey() + 5);
    EXPECT_STREQ(kStartRoot + 5, product.GetAppRootKey());
}

TEST_F(ProductInfoTest, RootTextIsNoFormat) {
    product.SetAppRootKey(L"HKCU\\100%s");
    EXPECT_STREQ(L"HKCU\\100%s", product.GetAppRootKey());
}

TEST_F(ProductInfoTest, PushedRootGoesFirstUntilItIsPopped) {
    std::wstring strLong(2000, L'p');
    product.PushAppRootKey(strLong.c_str());
    EXPECT_EQ(strLong, product.GetAppRootKey());
    product.PopAppRootKey();
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
    product.PopAppRootKey();
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
}

TEST_F(ProductInfoTest, PushOfNoneClears) {
    for (const wchar_t* pszNone : {static_cast<const wchar_t*>(nullptr), L""}) {
        product.PushAppRootKey(L"HKCU\\one");
        product.PushAppRootKey(pszNone);
        EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
    }
}

TEST_F(ProductInfoTest, TwoPushesAndOnePopLeaveNoPushedRoot) {
    product.PushAppRootKey(L"HKCU\\one");
    product.PushAppRootKey(L"HKCU\\two");
    EXPECT_STREQ(L"HKCU\\two", product.GetAppRootKey());
    product.PopAppRootKey();
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
}

TEST_F(ProductInfoTest, PushOfThePushedRootKeepsIt) {
    product.PushAppRootKey(L"HKCU\\one");
    product.PushAppRootKey(product.GetAppRootKey());
    EXPECT_STREQ(L"HKCU\\one", product.GetAppRootKey());
}

TEST_F(ProductInfoTest, ConvertResourceIdResolvesSignAndModule) {
    HINSTANCE hinstOther = reinterpret_cast<HINSTANCE>(0x4711);
    HINSTANCE hinstApp = reinterpret_cast<HINSTANCE>(0x4712);
    HINSTANCE hinstLibrary = GetLibraryInstance();
    AppInstance app(hinstApp, nullptr);
    const struct {
        int nId;
        HINSTANCE hinst;
        int nIdAfter;
        HINSTANCE hinstAfter;
    } rows[] = {
        {0, nullptr, 0, nullptr},
        {0, hinstOther, 0, hinstOther},
        {5, nullptr, 5, hinstApp},
        {-5, nullptr, 5, hinstLibrary},
        {5, hinstOther, 5, hinstOther},
        {-5, hinstOther, 5, hinstOther},
        {INT_MAX, nullptr, INT_MAX, hinstApp},
        {-INT_MAX, nullptr, INT_MAX, hinstLibrary},
        {INT_MIN, nullptr, INT_MIN, hinstLibrary},
    };
    for (const auto& row : rows) {
        int nId = row.nId;
        HINSTANCE hinst = row.hinst;
        product.ConvertResourceId(nId, hinst);
        EXPECT_EQ(row.nIdAfter, nId) << row.nId;
        EXPECT_EQ(row.hinstAfter, hinst) << row.nId;
    }
}

TEST_F(ProductInfoTest, IsSameVersionStartsAtTheFirstDigit) {
    const struct {
        const wchar_t* psz;
        int bSame;
    } rows[] = {{L"1.1", 1},   {L"v1.1", 1}, {L"Version 1.1", 1}, {L"1.10", 0}, {L"1.1 ", 0},
                {L"2v1.1", 0}, {L"", 0},     {L"none", 0},        {L"1", 0},    {nullptr, 0}};
    for (const auto& row : rows) EXPECT_EQ(row.bSame, product.IsSameVersion(row.psz));
}

TEST_F(ProductInfoTest, LanguageAndTradeMark) {
    OtherProduct other;
    EXPECT_EQ(1, product.IsLangEN());
    EXPECT_EQ(0, other.IsLangEN());
    other.pszLanguage = L"en-GB";
    EXPECT_EQ(0, other.IsLangEN());
    EXPECT_STREQ(L"[TM]", product.GetRegTM());
    EXPECT_STREQ(L"\u00AE", other.GetRegTM());
    EXPECT_STREQ(L"Oth", other.GetMsgTitle());
}

namespace {
using Received = std::vector<std::tuple<WPARAM, LPARAM>>;

TestWindow::Handler NoteCompanyMsg(Received& received) {
    return [&received](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != GetMyCompanyMsgId()) return std::nullopt;
        received.emplace_back(wParam, lParam);
        return 0x8374B3;
    };
}
} // namespace

TEST_F(ProductInfoTest, SendsPostsAndBroadcastsTheCompanyMessage) {
    Received received;
    TestWindow window(NoteCompanyMsg(received));
    EXPECT_EQ(0x8374B3, product.SendMyMessage(window, 3, 77));
    EXPECT_EQ(1, product.PostMyMessage(window, 121, 108));
    EXPECT_EQ(1u, received.size());
    ASSERT_TRUE(PumpUntil([&] { return received.size() == 2; }));
    EXPECT_EQ(1, product.BroadcastMyMessage(99, -1));
    ASSERT_TRUE(PumpUntil([&] { return received.size() == 3; }));
    EXPECT_EQ((Received{{3, 77}, {121, 108}, {99, -1}}), received);
    EXPECT_EQ(0, product.SendMyMessage(nullptr, 3, 77));
    EXPECT_EQ(0, product.PostMyMessage(nullptr, 3, 77));
}

TEST_F(ProductInfoTest, ShutDownBroadcastsBothCodesWithTheProductId) {
    Received received;
    TestWindow window(NoteCompanyMsg(received));
    HCURSOR hcurBefore = ::SetCursor(::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_CROSS)));
    DWORD nStart = ::GetTickCount();
    product.ShutDownMyModules(window, nullptr, 0);
    EXPECT_LT(::GetTickCount() - nStart, 900u);
    EXPECT_EQ((Received{{1, 16738}, {16, 16738}}), received);
    EXPECT_EQ(::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_CROSS)), ::GetCursor());
    ::SetCursor(hcurBefore);
}

namespace {
ProgressEx* pStepped;
int nSteps;
int CountStep(ProgressEx* pProgress) {
    pStepped = pProgress;
    return ++nSteps;
}
} // namespace

TEST_F(ProductInfoTest, ShutDownStepsTheProgressOncePerSecond) {
    auto* pProgress = reinterpret_cast<ProgressEx*>(0x1000);
    ProductInfo::pfnStepProgress = CountStep;
    nSteps = 0;
    DWORD nStart = ::GetTickCount();
    product.ShutDownMyModules(nullptr, pProgress, 1);
    EXPECT_GE(::GetTickCount() - nStart, 950u);
    EXPECT_EQ(1, nSteps);
    EXPECT_EQ(pProgress, pStepped);
    product.ShutDownMyModules(nullptr, nullptr, 1);
    EXPECT_EQ(1, nSteps);
    ProductInfo::pfnStepProgress = nullptr;
    product.ShutDownMyModules(nullptr, pProgress, 1);
    EXPECT_EQ(1, nSteps);
}
