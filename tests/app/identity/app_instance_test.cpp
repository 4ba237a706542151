#include "app/identity/product_info.h"
#include "runtime/base/current_product.h"
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {
constexpr const wchar_t* kStartRoot = L"HKCU\\SOFTWARE\\Orvanta\\Tessaly";
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
