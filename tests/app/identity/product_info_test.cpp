#include "app/identity/product_info.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <atomic>
#include <climits>
#include <memory>
#include <string>
#include <thread>
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

struct TextCase {
    const char* pszName;
    const wchar_t* pszExpected;
    const wchar_t* (*pfnGet)(MyProductInfo& product);
};
class MyProductInfoTexts : public testing::TestWithParam<TextCase> {};
TEST_P(MyProductInfoTexts, AreThose) {
    EXPECT_STREQ(GetParam().pszExpected, GetParam().pfnGet(GetMyProductInfo()));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, MyProductInfoTexts,
    testing::Values(
        TextCase{"GetStoreID", L"tessaly",
                 [](MyProductInfo& product) { return product.GetStoreID(); }},
        TextCase{"GetName", L"Tessaly", [](MyProductInfo& product) { return product.GetName(); }},
        TextCase{"GetNickName", L"Tessaly",
                 [](MyProductInfo& product) { return product.GetNickName(); }},
        TextCase{"GetDisplayName", L"Tessaly",
                 [](MyProductInfo& product) { return product.GetDisplayName(); }},
        TextCase{"GetVersionStr", L"1.1",
                 [](MyProductInfo& product) { return product.GetVersionStr(); }},
        TextCase{"GetVersionStrLongWith0", L"Version 1.1",
                 [](MyProductInfo& product) { return product.GetVersionStrLong(0); }},
        TextCase{"GetVersionStrLongWith1", L"Version <b>1.1</b>",
                 [](MyProductInfo& product) { return product.GetVersionStrLong(1); }},
        TextCase{"GetVersionStrLongWith2", L"Version <b>1.1</b>",
                 [](MyProductInfo& product) { return product.GetVersionStrLong(2); }},
        TextCase{"GetLanguage", L"en",
                 [](MyProductInfo& product) { return product.GetLanguage(); }},
        TextCase{"GetRevisionStr", L"2409",
                 [](MyProductInfo& product) { return product.GetRevisionStr(); }},
        TextCase{"GetEditionShort", L"x64",
                 [](MyProductInfo& product) { return product.GetEditionShort(); }},
        TextCase{"GetEdition", L"x64 Edition",
                 [](MyProductInfo& product) { return product.GetEdition(); }},
        TextCase{"GetForOS", L"for Windows\u00AE 10, 7, Vista, XP (64-bit)",
                 [](MyProductInfo& product) { return product.GetForOS(); }},
        TextCase{"GetCopyrightYear", L"2017",
                 [](MyProductInfo& product) { return product.GetCopyrightYear(); }},
        TextCase{"GetHelpFile", L"Tessaly.chm",
                 [](MyProductInfo& product) { return product.GetHelpFile(); }},
        TextCase{"GetAutoUpdateFile", L"TSEXE64.exe",
                 [](MyProductInfo& product) { return product.GetAutoUpdateFile(); }},
        TextCase{"GetOEMStr", L"", [](MyProductInfo& product) { return product.GetOEMStr(); }},
        TextCase{"GetMsgTitle", L"Tessaly",
                 [](MyProductInfo& product) { return product.GetMsgTitle(); }}),
    [](const auto& row) { return std::string(row.param.pszName); });

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

enum class Module { None, Other, Application, Library };
struct ResourceIdCase {
    const char* pszName;
    int nId;
    Module module;
    int nIdAfter;
    Module moduleAfter;
};
struct ConvertedResourceId : ProductInfoTest, testing::WithParamInterface<ResourceIdCase> {
    static HINSTANCE HandleOf(Module module) {
        switch (module) {
        case Module::Other: return reinterpret_cast<HINSTANCE>(0x4711);
        case Module::Application: return reinterpret_cast<HINSTANCE>(0x4712);
        case Module::Library: return GetLibraryInstance();
        case Module::None: break;
        }
        return nullptr;
    }
};
TEST_P(ConvertedResourceId, GoesBySignAndModule) {
    AppInstance app(HandleOf(Module::Application), nullptr);
    int nId = GetParam().nId;
    HINSTANCE hinst = HandleOf(GetParam().module);
    product.ConvertResourceId(nId, hinst);
    EXPECT_EQ(GetParam().nIdAfter, nId);
    EXPECT_EQ(HandleOf(GetParam().moduleAfter), hinst);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, ConvertedResourceId,
    testing::Values(ResourceIdCase{"None", 0, Module::None, 0, Module::None},
                    ResourceIdCase{"NoneWithModule", 0, Module::Other, 0, Module::Other},
                    ResourceIdCase{"Positive", 5, Module::None, 5, Module::Application},
                    ResourceIdCase{"Negative", -5, Module::None, 5, Module::Library},
                    ResourceIdCase{"PositiveWithModule", 5, Module::Other, 5, Module::Other},
                    ResourceIdCase{"NegativeWithModule", -5, Module::Other, 5, Module::Other},
                    ResourceIdCase{"Greatest", INT_MAX, Module::None, INT_MAX, Module::Application},
                    ResourceIdCase{"NegativeOfIt", -INT_MAX, Module::None, INT_MAX,
                                   Module::Library},
                    ResourceIdCase{"Least", INT_MIN, Module::None, INT_MIN, Module::Library}),
    [](const auto& row) { return std::string(row.param.pszName); });

struct VersionCase {
    const char* pszName;
    const wchar_t* psz;
    int bSame;
};
class IsSameVersion : public testing::TestWithParam<VersionCase> {};
TEST_P(IsSameVersion, StartsAtTheFirstDigit) {
    EXPECT_EQ(GetParam().bSame, GetMyProductInfo().IsSameVersion(GetParam().psz));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, IsSameVersion,
    testing::Values(VersionCase{"Itself", L"1.1", 1}, VersionCase{"BehindALetter", L"v1.1", 1},
                    VersionCase{"BehindAWord", L"Version 1.1", 1},
                    VersionCase{"LongerNumber", L"1.10", 0}, VersionCase{"BlankBehind", L"1.1 ", 0},
                    VersionCase{"NumberBefore", L"2v1.1", 0}, VersionCase{"Empty", L"", 0},
                    VersionCase{"NoDigit", L"none", 0}, VersionCase{"Beginning", L"1", 0},
                    VersionCase{"Null", nullptr, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

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

namespace {
HINSTANCE Instance(UINT_PTR n) { return reinterpret_cast<HINSTANCE>(n); }
} // namespace

TEST(AppInstance, NoneIsTheLibrary) {
    ASSERT_EQ(nullptr, ProductInfo::pCurrentApp.load());
    EXPECT_EQ(GetLibraryInstance(), GetMyProductInfo().GetAppInstance());
    EXPECT_STREQ(L"Tessaly", GetMyProductInfo().GetComponent());
}

TEST(AppInstance, GivesItsModuleComponentAndRootWhileItLives) {
    ProductInfo& product = GetMyProductInfo();
    {
        AppInstance app(Instance(0x10), L"Part");
        EXPECT_EQ(&app, ProductInfo::pCurrentApp.load());
        EXPECT_EQ(Instance(0x10), product.GetAppInstance());
        EXPECT_STREQ(L"Part", product.GetComponent());
        EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Tessaly\\Part", product.GetAppRootKey());
        EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Tessaly\\Part", app.GetAppRootKey());
    }
    EXPECT_EQ(nullptr, ProductInfo::pCurrentApp.load());
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
    EXPECT_EQ(GetLibraryInstance(), product.GetAppInstance());
}

TEST(AppInstance, WithoutAComponentKeepsRootAndNameOfTheProduct) {
    AppInstance app(Instance(0x10), nullptr);
    EXPECT_EQ(nullptr, app.GetAppRootKey());
    EXPECT_STREQ(kStartRoot, GetMyProductInfo().GetAppRootKey());
    EXPECT_STREQ(L"Tessaly", GetMyProductInfo().GetComponent());
    EXPECT_EQ(Instance(0x10), GetMyProductInfo().GetAppInstance());
}

TEST(AppInstance, NewestIsCurrentInWhateverOrderTheyGo) {
    auto pFirst = std::make_unique<AppInstance>(Instance(1), L"a");
    auto pSecond = std::make_unique<AppInstance>(Instance(2), L"b");
    auto pThird = std::make_unique<AppInstance>(Instance(3), L"c");
    EXPECT_EQ(pThird.get(), ProductInfo::pCurrentApp.load());
    pSecond.reset();
    EXPECT_EQ(pThird.get(), ProductInfo::pCurrentApp.load());
    pThird.reset();
    EXPECT_EQ(pFirst.get(), ProductInfo::pCurrentApp.load());
    pFirst.reset();
    EXPECT_EQ(nullptr, ProductInfo::pCurrentApp.load());
}

TEST(AppInstance, ProductsRootIsSetInTheCurrentOneIfThatHasARoot) {
    ProductInfo& product = GetMyProductInfo();
    {
        AppInstance app(Instance(1), L"a");
        product.SetAppRootKey(L"HKCU\\of the app");
        EXPECT_STREQ(L"HKCU\\of the app", app.GetAppRootKey());
    }
    EXPECT_STREQ(kStartRoot, product.GetAppRootKey());
    {
        AppInstance app(Instance(1), nullptr);
        product.SetAppRootKey(L"HKCU\\of the product");
        EXPECT_EQ(nullptr, app.GetAppRootKey());
    }
    EXPECT_STREQ(L"HKCU\\of the product", product.GetAppRootKey());
    product.SetAppRootKey(kStartRoot);
}

TEST(AppInstance, RootCanBeReplacedAndEmptied) {
    AppInstance app(Instance(1), L"a");
    std::wstring strLong(3000, L'r');
    app.SetAppRootKey(strLong.c_str());
    EXPECT_EQ(strLong, app.GetAppRootKey());
    app.SetAppRootKey(app.GetAppRootKey());
    EXPECT_EQ(strLong, app.GetAppRootKey());
    app.SetAppRootKey(L"");
    EXPECT_EQ(nullptr, app.GetAppRootKey());
    EXPECT_STREQ(kStartRoot, GetMyProductInfo().GetAppRootKey());
    app.SetAppRootKey(nullptr);
    EXPECT_EQ(nullptr, app.GetAppRootKey());
}

TEST(AppInstance, PushedRootGoesBeforeItAndIsDroppedWithIt) {
    {
        AppInstance app(Instance(1), L"a");
        GetMyProductInfo().PushAppRootKey(L"HKCU\\pushed");
        EXPECT_STREQ(L"HKCU\\pushed", GetMyProductInfo().GetAppRootKey());
    }
    EXPECT_STREQ(kStartRoot, GetMyProductInfo().GetAppRootKey());
}

TEST(AppInstance, RootOfALongComponentIsCutTo264Characters) {
    std::wstring strComponent(1000, L'c');
    AppInstance app(Instance(1), strComponent.c_str());
    EXPECT_EQ(264, ::lstrlenW(app.GetAppRootKey()));
}

TEST(AppInstance, EmptyComponentIsAComponent) {
    AppInstance app(Instance(1), L"");
    EXPECT_STREQ(L"HKCU\\Software\\Orvanta\\Tessaly\\", app.GetAppRootKey());
    EXPECT_STREQ(L"", GetMyProductInfo().GetComponent());
}

TEST(AppInstance, ThreadsComeAndGoAtOnce) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < 200; ++n) AppInstance app(Instance(7), nullptr);
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(nullptr, ProductInfo::pCurrentApp.load());
}
