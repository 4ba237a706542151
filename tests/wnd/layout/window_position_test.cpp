#include "runtime/base/current_product.h"
#include "support/registry.h"
#include "support/replace_import.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"
#include "wnd/layout/wnd_place.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <climits>

extern "C" FARPROC __imp_RegSetValueExW;

namespace {
constexpr const wchar_t* kKey = L"Software\\TessalyTests\\WindowPosition";
const wchar_t* pszRoot = nullptr;

using SetValue = LSTATUS WINAPI(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD);
SetValue* pfnSetValue = nullptr;
int nWrites = 0;
LSTATUS WINAPI CountedSetValue(HKEY hkey, LPCWSTR psz, DWORD dw, DWORD dwType, const BYTE* p,
                               DWORD cb) {
    ++nWrites;
    return pfnSetValue(hkey, psz, dw, dwType, p, cb);
}

RegContent Dword(int n) {
    const auto* p = reinterpret_cast<const unsigned char*>(&n);
    return {REG_DWORD, RegBytes(p, p + sizeof(n))};
}

/// The product's settings lie in a key of the test's, and there is a hidden window of 201 by 101
/// pixels at (300, 200).
struct WindowPosition : testing::Test {
    WindowPosition() {
        CurrentProduct product = productBefore;
        product.pfnGetRootKey = [] { return pszRoot; };
        SetCurrentProduct(product);
        strRoot = key.Path();
        pszRoot = strRoot.c_str();
        nWrites = 0;
        pfnSetValue = replaced.Original<SetValue>();
        hwnd = ::CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"box", WS_POPUP, 300, 200, 201, 101,
                                 nullptr, nullptr, nullptr, nullptr);
    }
    ~WindowPosition() override {
        ::DestroyWindow(hwnd);
        SetCurrentProduct(productBefore);
    }
    void Plant(int nLeft, int nTop, const std::wstring& strPrefix = L"") {
        key.PutDword(strPrefix + L"posLeft", static_cast<DWORD>(nLeft));
        key.PutDword(strPrefix + L"posTop", static_cast<DWORD>(nTop));
    }
    void ExpectAt(int x, int y) {
        EXPECT_EQ(x, WindowRect(hwnd).left);
        EXPECT_EQ(y, WindowRect(hwnd).top);
        EXPECT_EQ(201, Width(WindowRect(hwnd)));
        EXPECT_EQ(101, Height(WindowRect(hwnd)));
    }

    CurrentProduct productBefore = GetCurrentProduct();
    TestKey key{kKey};
    std::wstring strRoot;
    ReplaceImport replaced{__imp_RegSetValueExW, &CountedSetValue};
    HWND hwnd = nullptr;
    const int cxScreen = ::GetSystemMetrics(SM_CXSCREEN);
    const int cyScreen = ::GetSystemMetrics(SM_CYSCREEN);
};

TEST_F(WindowPosition, StoresLeftAndTopBehindThePrefix) {
    WndStorePosition(hwnd, L"Main");
    EXPECT_EQ(Dword(300), key.Value(L"MainposLeft"));
    EXPECT_EQ(Dword(200), key.Value(L"MainposTop"));
    EXPECT_EQ(2u, key.Values().size());
}

TEST_F(WindowPosition, StoresUnderPlainNamesWithoutAPrefix) {
    PlaceWindow(hwnd, {-40, -7, 161, 94});
    WndStorePosition(hwnd, L"");
    EXPECT_EQ(Dword(-40), key.Value(L"posLeft"));
    EXPECT_EQ(Dword(-7), key.Value(L"posTop"));
}

TEST_F(WindowPosition, MakesTheKey) {
    key.Delete();
    WndStorePosition(hwnd, L"");
    key.Create();
    EXPECT_EQ(Dword(300), key.Value(L"posLeft"));
}

TEST_F(WindowPosition, WritesOnlyWhatChanged) {
    WndStorePosition(hwnd, L"");
    nWrites = 0;
    WndStorePosition(hwnd, L"");
    EXPECT_EQ(0, nWrites);
    PlaceWindow(hwnd, {300, 201, 501, 302});
    WndStorePosition(hwnd, L"");
    EXPECT_EQ(1, nWrites);
    EXPECT_EQ(Dword(201), key.Value(L"posTop"));
}

TEST_F(WindowPosition, ComesBackWhereItWas) {
    WndStorePosition(hwnd, L"x");
    PlaceWindow(hwnd, {10, 20, 211, 121});
    RecordedPositions recorded;
    WndRestorePosition(hwnd, L"x");
    ExpectAt(300, 200);
    EXPECT_EQ(std::vector<UINT>{SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE},
              recorded.FlagsOf(hwnd));
    EXPECT_FALSE(IsShown(hwnd));
}

TEST_F(WindowPosition, PrefixesAreToldApart) {
    Plant(10, 20, L"a");
    Plant(30, 40, L"b");
    WndRestorePosition(hwnd, L"b");
    ExpectAt(30, 40);
    WndRestorePosition(hwnd, L"a");
    ExpectAt(10, 20);
    WndRestorePosition(hwnd, L"c");
    ExpectAt(10, 20);
}

TEST_F(WindowPosition, HalfOfItMayLieBeyondThreeSides) {
    constexpr int hw = 100, hh = 50; // of 201 by 101
    struct Row {
        int nLeft, nTop, x, y;
    };
    const Row rows[] = {
        {0, 0, 0, 0},
        {cxScreen - hw, cyScreen - hh, cxScreen - hw, cyScreen - hh},
        {cxScreen - hw + 1, 10, cxScreen - hw, 10},
        {10, cyScreen - hh + 1, 10, cyScreen - hh},
        {100000, 10, cxScreen - hw, 10},
        {10, 100000, 10, cyScreen - hh},
        {-hw, 10, -hw, 10},
        {-hw - 1, 10, -hw, 10},
        {-100000, 10, -hw, 10},
        {10, -1, 10, 0},
        {10, -hh, 10, 0},
        {10, -100000, 10, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.nLeft << ' ' << row.nTop);
        Plant(row.nLeft, row.nTop);
        WndRestorePosition(hwnd, L"");
        ExpectAt(row.x, row.y);
    }
}

TEST_F(WindowPosition, TheFurthestNumbersAreKeptOnTheScreen) {
    Plant(INT_MAX, INT_MAX);
    WndRestorePosition(hwnd, L"");
    ExpectAt(cxScreen - 100, cyScreen - 50);
    Plant(INT_MIN, INT_MIN);
    WndRestorePosition(hwnd, L"");
    ExpectAt(-100, 0);
}

TEST_F(WindowPosition, WindowLargerThanTheScreenComesBack) {
    ::SetWindowPos(hwnd, nullptr, 0, 0, 3000, 2000, SWP_NOZORDER | SWP_NOACTIVATE);
    const RECT rc = WindowRect(hwnd);
    Plant(5000, 5000);
    WndRestorePosition(hwnd, L"");
    EXPECT_EQ(cxScreen - Width(rc) / 2, WindowRect(hwnd).left);
    // What is above the screen's top comes down to it after all.
    EXPECT_EQ(std::max(0, cyScreen - Height(rc) / 2), WindowRect(hwnd).top);
}

TEST_F(WindowPosition, AMissingValueIsWhereTheWindowStands) {
    key.PutDword(L"posTop", 77);
    WndRestorePosition(hwnd, L"");
    ExpectAt(300, 77);
    PlaceWindow(hwnd, {5000, 100, 5201, 201});
    WndRestorePosition(hwnd, L"nothing");
    ExpectAt(cxScreen - 100, 100);
}

TEST_F(WindowPosition, WithoutAKeyTheWindowStays) {
    PlaceWindow(hwnd, {5000, -100, 5201, 1});
    key.Delete();
    RecordedPositions recorded;
    WndRestorePosition(hwnd, L"");
    EXPECT_TRUE(recorded.Calls().empty());
    ExpectAt(5000, -100);
    key.Create();
}

TEST_F(WindowPosition, AKeyThatCantBeOpenedIsNothing) {
    for (const wchar_t* psz : {L"", L"nonsense", L"HKXX\\Software\\TessalyTests"}) {
        pszRoot = psz;
        WndStorePosition(hwnd, L"");
        WndRestorePosition(hwnd, L"");
        ExpectAt(300, 200);
    }
    EXPECT_EQ(0, nWrites);
    ASSERT_TRUE(key.PlantUndeletable(L"dead"));
    strRoot = key.Path(L"dead");
    pszRoot = strRoot.c_str();
    nWrites = 0; // planting is a write too
    WndStorePosition(hwnd, L"");
    WndRestorePosition(hwnd, L"");
    ExpectAt(300, 200);
    EXPECT_EQ(0, nWrites);
}

TEST_F(WindowPosition, ValuesOfOtherTypesAreTheirFirstBytesOrNothing) {
    key.PutDword(L"posTop", 40);
    key.Put(L"posLeft", REG_SZ, BytesOf(L"some text"));
    WndRestorePosition(hwnd, L"");
    ExpectAt(300, 40); // too long for a number
    key.Put(L"posLeft", REG_BINARY, {50});
    WndRestorePosition(hwnd, L"");
    ExpectAt(50, 40);
    key.Put(L"posLeft", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    WndRestorePosition(hwnd, L"");
    ExpectAt(50, 40);
    key.Put(L"posLeft", REG_BINARY, RegBytes(4000, 0xFF));
    WndRestorePosition(hwnd, L"");
    ExpectAt(50, 40);
    key.Put(L"posLeft", REG_BINARY, {0xFE, 0xFF, 0xFF, 0xFF});
    WndRestorePosition(hwnd, L"");
    ExpectAt(-2, 40);
}

TEST_F(WindowPosition, DamagedValuesAreWrittenAnew) {
    key.Put(L"posLeft", REG_SZ, BytesOf(L"some text"));
    WndStorePosition(hwnd, L"");
    EXPECT_EQ(Dword(300), key.Value(L"posLeft"));
}

TEST_F(WindowPosition, ALongPrefixIsCut) {
    const std::wstring strFits(254 - 7, L'p'), strLong(1000, L'q');
    WndStorePosition(hwnd, strFits.c_str());
    EXPECT_TRUE(key.HasValue(strFits + L"posLeft"));
    EXPECT_TRUE(key.HasValue(strFits + L"posTop"));
    WndStorePosition(hwnd, strLong.c_str());
    auto values = key.Values();
    ASSERT_EQ(3u, values.size()) << "both names are the same now";
    for (const auto& [strName, content] : values) {
        EXPECT_GE(255u, strName.size());
        EXPECT_TRUE(strName[0] == L'p' || strName == std::wstring(strName.size(), L'q'));
    }
    WndRestorePosition(hwnd, strLong.c_str());
    ExpectAt(200, 200);
}

TEST_F(WindowPosition, PercentSignsInThePrefixStay) {
    WndStorePosition(hwnd, L"%s%d%n");
    EXPECT_TRUE(key.HasValue(L"%s%d%nposLeft"));
}

TEST_F(WindowPosition, WhatIsNoWindowIsNotStored) {
    for (HWND hwndNone : {HWND{}, DeadWindow()}) {
        WndRestorePosition(hwndNone, L"");
        WndStorePosition(hwndNone, L"");
    }
    EXPECT_TRUE(key.Values().empty());
}
} // namespace
