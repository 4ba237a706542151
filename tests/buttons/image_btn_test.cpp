// What an image button is made of: its fields, its descriptions, and how its images are loaded.
#include "buttons/call_log.h"
#include "buttons/image_probe.h"
#include "resources/resource_ids.h"
#include "support/gui_objects.h"
#include "support/test_resource_ids.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {
constexpr int kNoResource = 31999;
using Indices = std::vector<int>;

HINSTANCE Program() { return ::GetModuleHandleW(nullptr); }
HINSTANCE Other() { return ::GetModuleHandleW(L"user32.dll"); } // has none of these resources

TEST(ImageBtn, StartsWithoutImages) {
    ProbeImageBtn button;
    EXPECT_EQ(-1, button.iNormal);
    EXPECT_EQ(0, button.IsChecked());
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ(0, button.bIconMode);
    EXPECT_EQ(0, button.imageList.IsReady());
    EXPECT_NE(0, button.IsCtrl());
    EXPECT_NE(0, button.IsKindOf(L"CSCtrl"));
}

// Descriptions

TEST(ImageBtnDescriptor, ABitmapsHoldsWhatItWasGiven) {
    ImageBtnBmp d(48, 47, Other(), IDB_BUTTON_STRIP_1, 021, 11);
    EXPECT_EQ(IDB_BUTTON_STRIP_1, d.idBitmap);
    EXPECT_EQ(021, d.wStateMap);
    EXPECT_EQ(Other(), d.hInstance);
    EXPECT_EQ(48, d.cxImage);
    EXPECT_EQ(47, d.cyImage);
    EXPECT_EQ(11u, d.dwFlags);
}

TEST(ImageBtnDescriptor, AnIconsHoldsWhatItWasGiven) {
    ImageBtnIcon d(16, 32, Other(), -1, 2, 3, 4, 5, 3);
    EXPECT_EQ(0, d.idBitmap);
    EXPECT_EQ((Indices{-1, 2, 3, 4, 5}), Indices(d.idIcon, d.idIcon + 5));
    EXPECT_EQ(Other(), d.hInstance);
    EXPECT_EQ(16, d.cxImage);
    EXPECT_EQ(32, d.cyImage);
    EXPECT_EQ(3u, d.dwFlags);
}

TEST(ImageBtnDescriptor, IsARecordOfTheMembersInTheirOrder) {
    struct Layout {
        int idBitmap;
        unsigned short wStateMap;
        int idIcon[5];
        HINSTANCE hInstance;
        int cxImage, cyImage;
        unsigned long dwFlags;
    };
    static_assert(sizeof(Layout) == sizeof(ImageBtnDescriptor));
    static_assert(sizeof(ImageBtnBmp) == sizeof(ImageBtnDescriptor));
    static_assert(sizeof(ImageBtnIcon) == sizeof(ImageBtnDescriptor));
    static_assert(std::is_trivially_copyable_v<ImageBtnDescriptor>);
    static_assert(!std::is_default_constructible_v<ImageBtnDescriptor>);
    Layout layout{};
    ImageBtnBmp d(48, 47, Other(), 7, 021, 11);
    memcpy(&layout, static_cast<const void*>(&d), sizeof(layout));
    EXPECT_EQ(7, layout.idBitmap);
    EXPECT_EQ(021, layout.wStateMap);
    EXPECT_EQ(Other(), layout.hInstance);
    EXPECT_EQ(48, layout.cxImage);
    EXPECT_EQ(47, layout.cyImage);
    EXPECT_EQ(11u, layout.dwFlags);
}

TEST(ImageBtnDescriptor, AssignmentCopiesTheWholeRecord) {
    ImageBtnBmp bitmap(48, 47, Other(), 7, 021, 11);
    ImageBtnDescriptor d = ImageBtnIcon(16, 32, nullptr, 1, 2, 3, 4, 5, 3);
    d = bitmap;
    EXPECT_EQ(0, memcmp(&d.idBitmap, &bitmap.idBitmap, sizeof(int)));
    EXPECT_EQ(021, d.wStateMap);
    EXPECT_EQ((Indices{0, 0, 0, 0, 0}), Indices(d.idIcon, d.idIcon + 5));
    EXPECT_EQ(Other(), d.hInstance);
    EXPECT_EQ(48, d.cxImage);
    EXPECT_EQ(47, d.cyImage);
    EXPECT_EQ(11u, d.dwFlags);
}

TEST(ImageBtnDescriptor, InitFillsTheIconForm) {
    struct Filled : ImageBtnDescriptor {
        Filled() { Init(16, 17, Other(), 1, 2, 3, 4, 5, 9); }
    } d;
    EXPECT_EQ(0, d.idBitmap);
    EXPECT_EQ((Indices{1, 2, 3, 4, 5}), Indices(d.idIcon, d.idIcon + 5));
    EXPECT_EQ(16, d.cxImage);
    EXPECT_EQ(17, d.cyImage);
    EXPECT_EQ(Other(), d.hInstance);
    EXPECT_EQ(9u, d.dwFlags);
}

TEST(ImageBtnDescriptor, MakesAButtonOfABitmapBeforeOneOfIcons) {
    ImageBtnBmp bitmap(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
    bitmap.idIcon[0] = -IDI_DLG_CLOSE;
    ProbeImageBtn button(bitmap);
    EXPECT_EQ(0, button.bIconMode);
    EXPECT_EQ((Indices{0, 1, 2, 3, 4}), button.Indices());
    EXPECT_EQ(5, button.CountImages());
    EXPECT_EQ(48, button.cxImage);
    EXPECT_EQ(3u, button.dwFlags);
}

TEST(ImageBtnDescriptor, MakesAButtonOfIcons) {
    ProbeImageBtn button(ImageBtnIcon(16, 16, nullptr, -IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER, 0, 0,
                                      IDI_DLG_MINIMIZE, 1));
    EXPECT_EQ(1, button.bIconMode);
    EXPECT_EQ((Indices{0, 1, -1, -1, 2}), button.Indices());
    EXPECT_EQ(3, button.CountImages());
    EXPECT_EQ(1u, button.dwFlags);
}

TEST(ImageBtnDescriptor, WithoutABitmapAndAFirstIconLoadsNothing) {
    ProbeImageBtn button(ImageBtnIcon(16, 16, nullptr, 0, IDI_DLG_CLOSE, 0, 0, 0, 1));
    EXPECT_EQ(0, button.imageList.IsReady());
    EXPECT_EQ(-1, button.iNormal);
}

// A strip

struct StripFile {
    const char* pszName;
    int nId;
};
class ImageBtnStrip : public testing::TestWithParam<StripFile> {};

TEST_P(ImageBtnStrip, HasFiveFrames) {
    ProbeImageBtn button(48, 48, nullptr, -GetParam().nId, 0, 3);
    EXPECT_EQ((Indices{0, 1, 2, 3, 4}), button.Indices());
    EXPECT_EQ(5, button.CountImages());
    SIZE size = button.imageList.GetBitmapSize();
    EXPECT_EQ(240, size.cx);
    EXPECT_EQ(48, size.cy);
    EXPECT_EQ(static_cast<unsigned long>(MAKELONG(48, 48)), button.imageList.GetIconSize());
}

INSTANTIATE_TEST_SUITE_P(Strips, ImageBtnStrip,
                         testing::Values(StripFile{"First", IDB_BUTTON_STRIP_1},
                                         StripFile{"Second", IDB_BUTTON_STRIP_2},
                                         StripFile{"Third", IDB_BUTTON_STRIP_3}),
                         [](const auto& row) { return std::string(row.param.pszName); });

struct MapCase {
    const char* pszName;
    unsigned short wMap;
    int cxStrip; // of frames of 48 pixels
    Indices indices;
};
void PrintTo(const MapCase& row, std::ostream* pOut) { *pOut << row.pszName; }
class ImageBtnStateMap : public testing::TestWithParam<MapCase> {};

TEST_P(ImageBtnStateMap, GivesEachStateItsFrame) {
    MadeResources made;
    int cx = GetParam().cxStrip;
    made.fnMake = [cx](const auto&) {
        return MakeStrip(cx, 48, std::vector<Pixel>(static_cast<size_t>(cx * 48), 0xFF00FF00));
    };
    ProbeImageBtn button;
    button.LoadBmp(48, 48, nullptr, 7, GetParam().wMap, 3);
    EXPECT_EQ(GetParam().indices, button.Indices());
}

INSTANTIATE_TEST_SUITE_P(
    Maps, ImageBtnStateMap,
    testing::Values(MapCase{"DefaultOfFiveFrames", 0, 240, {0, 1, 2, 3, 4}},
                    MapCase{"DefaultOfTwoFrames", 0, 96, {0, 1, -1, -1, -1}},
                    MapCase{"DefaultOfThreeFrames", 0, 144, {0, 1, 2, -1, -1}},
                    MapCase{"DefaultOfOneFrame", 0, 48, {0, -1, -1, -1, -1}},
                    MapCase{"DefaultWrittenOut", 22737, 240, {0, 1, 2, 3, 4}},
                    MapCase{"NormalAndHoverOfFive", 021, 240, {0, 1, -1, -1, -1}},
                    MapCase{"NormalAndHoverOfTwo", 021, 96, {0, 1, -1, -1, -1}},
                    MapCase{"Backwards", 012345, 240, {4, 3, 2, 1, 0}},
                    MapCase{"AllTheSame", 011111, 240, {0, 0, 0, 0, 0}},
                    MapCase{"NormalIsNotTested", 000007, 96, {6, -1, -1, -1, -1}},
                    MapCase{"OthersBeyondTheEnd", 077771, 240, {0, -1, -1, -1, -1}},
                    MapCase{"LastOneAllowed", 055551, 240, {0, 4, 4, 4, 4}},
                    MapCase{"WithoutNormal", 054320, 240, {-1, 1, 2, 3, 4}},
                    MapCase{"SixteenthBitIsNothing", 0x8000 | 054321, 240, {0, 1, 2, 3, 4}},
                    MapCase{"PartOfAFrameIsNone", 0, 95, {0, -1, -1, -1, -1}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ImageBtnLoad, TheBitmapComesFromTheModuleThatIsPassed) {
    MadeResources made;
    ProbeImageBtn button;
    button.LoadBmp(48, 48, Other(), IDB_BUTTON_STRIP_1, 0, 3);
    ASSERT_EQ(1u, made.asked.size());
    EXPECT_EQ(Other(), made.asked[0].hinst);
    EXPECT_EQ(IDB_BUTTON_STRIP_1, made.asked[0].nId);
    EXPECT_EQ(static_cast<UINT>(IMAGE_BITMAP), made.asked[0].uType);
    EXPECT_EQ(0, button.CountImages()) << "that one has none";
}

TEST(ImageBtnLoad, ANegativeBitmapIsTheLibrarysWhateverModuleIsPassed) {
    MadeResources made;
    ProbeImageBtn button(48, 48, Other(), -IDB_BUTTON_STRIP_1, 0, 3);
    ASSERT_EQ(1u, made.asked.size());
    EXPECT_EQ(Program(), made.asked[0].hinst);
    EXPECT_EQ(IDB_BUTTON_STRIP_1, made.asked[0].nId);
    EXPECT_EQ(5, button.CountImages());
}

TEST(ImageBtnLoad, OfAMissingBitmapTheMapStaysAndThereAreNoImages) {
    ProbeImageBtn button(48, 48, nullptr, kNoResource, 0, 3);
    EXPECT_EQ(1, button.imageList.IsReady());
    EXPECT_EQ(0, button.CountImages());
    EXPECT_EQ((Indices{0, 1, 2, 3, 4}), button.Indices());
    EXPECT_EQ(3u, button.dwFlags);
}

TEST(ImageBtnLoad, ClearsCheckAndHover) {
    ProbeImageBtn button;
    button.bChecked = button.bHover = 1;
    button.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_2, 0, 3);
    EXPECT_EQ(0, button.bChecked);
    EXPECT_EQ(0, button.bHover);
    button.bChecked = button.bHover = 1;
    button.LoadIconW(16, 16, nullptr, -IDI_DLG_CLOSE, 0, 0, 0, 0, 1);
    EXPECT_EQ(0, button.bChecked);
    EXPECT_EQ(0, button.bHover);
}

TEST(ImageBtnLoad, CanBeDoneAnew) {
    ProbeImageBtn button(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 021, 3);
    button.LoadIconW(16, 20, nullptr, -IDI_DLG_CLOSE, 0, IDI_DLG_CLOSE_HOVER, 0, 0, 9);
    EXPECT_EQ(1, button.bIconMode);
    EXPECT_EQ((Indices{0, -1, 1, -1, -1}), button.Indices());
    EXPECT_EQ(2, button.CountImages());
    EXPECT_EQ(16, button.cxImage);
    EXPECT_EQ(20, button.cyImage);
    EXPECT_EQ(9u, button.dwFlags);
    button.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 021, 3);
    EXPECT_EQ(0, button.bIconMode);
    EXPECT_EQ((Indices{0, 1, -1, -1, -1}), button.Indices());
    EXPECT_EQ(5, button.CountImages());
}

TEST(ImageBtnLoad, ASizeOfNothingIsHarmless) {
    ProbeImageBtn button(0, 0, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
    EXPECT_EQ(0, button.cxImage);
    button.LoadIconW(0, 0, nullptr, -IDI_DLG_CLOSE, 0, 0, 0, 0, 3);
    button.Check(1);
    EXPECT_EQ(1, button.IsChecked());
}

// Icons

struct IconsCase {
    const char* pszName;
    int ids[5];
    Indices indices;
};
void PrintTo(const IconsCase& row, std::ostream* pOut) { *pOut << row.pszName; }
class ImageBtnIcons : public testing::TestWithParam<IconsCase> {};

TEST_P(ImageBtnIcons, GetTheNextFreeIndex) {
    const int* n = GetParam().ids;
    ProbeImageBtn button(16, 16, Program(), n[0], n[1], n[2], n[3], n[4], 3);
    EXPECT_EQ(1, button.bIconMode);
    EXPECT_EQ(GetParam().indices, button.Indices());
    int nHighest = *std::max_element(GetParam().indices.begin(), GetParam().indices.end());
    EXPECT_EQ(nHighest + 1, button.CountImages());
}

INSTANTIATE_TEST_SUITE_P(
    Ids, ImageBtnIcons,
    testing::Values(IconsCase{"All",
                              {IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER, IDI_DLG_MINIMIZE,
                               IDI_DLG_MINIMIZE_HOVER, IDI_TEST},
                              {0, 1, 2, 3, 4}},
                    IconsCase{"NormalAlone", {IDI_TEST, 0, 0, 0, 0}, {0, -1, -1, -1, -1}},
                    IconsCase{"WithoutHover",
                              {IDI_TEST, 0, IDI_DLG_CLOSE, 0, IDI_DLG_MINIMIZE},
                              {0, -1, 1, -1, 2}},
                    IconsCase{"FocusAlone", {IDI_TEST, 0, 0, 0, IDI_DLG_CLOSE}, {0, -1, -1, -1, 1}},
                    IconsCase{"SameIconTwice", {IDI_TEST, IDI_TEST, 0, 0, 0}, {0, 1, -1, -1, -1}}),
    [](const auto& row) { return std::string(row.param.pszName); });

struct SignCase {
    const char* pszName;
    int ids[5];
    bool bLibrary;
};
void PrintTo(const SignCase& row, std::ostream* pOut) { *pOut << row.pszName; }
class ImageBtnIconSign : public testing::TestWithParam<SignCase> {};

TEST_P(ImageBtnIconSign, TheFirstDecidesForAll) {
    MadeResources made;
    const int* n = GetParam().ids;
    ProbeImageBtn button(20, 24, Other(), n[0], n[1], n[2], n[3], n[4], 3);
    ASSERT_EQ(5u, made.asked.size());
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(GetParam().bLibrary ? Program() : Other(), made.asked[i].hinst) << i;
        EXPECT_EQ(std::abs(n[i]), made.asked[i].nId) << i;
        EXPECT_EQ(static_cast<UINT>(IMAGE_ICON), made.asked[i].uType);
        EXPECT_EQ(20, made.asked[i].cx);
        EXPECT_EQ(24, made.asked[i].cy);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Signs, ImageBtnIconSign,
    testing::Values(SignCase{"AllPositive", {101, 102, 103, 104, 105}, false},
                    SignCase{"AllNegative", {-101, -102, -103, -104, -105}, true},
                    SignCase{"OnlyTheFirstNegative", {-101, 102, 103, 104, 105}, true},
                    SignCase{"OnlyTheOthersNegative", {101, -102, -103, -104, -105}, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ImageBtnLoad, AMissingIconIsNone) {
    ProbeImageBtn button(16, 16, Program(), IDI_TEST, kNoResource, IDI_DLG_CLOSE, 0, 0, 3);
    EXPECT_EQ((Indices{0, -1, 1, -1, -1}), button.Indices());
    EXPECT_EQ(2, button.CountImages());
}

// Life

TEST(ImageBtn, ChecksWithoutAWindowAndTouchesNoOther) {
    ProbeImageBtn button;
    CallLog log(nullptr);
    button.Check(1);
    EXPECT_EQ("", log.Take());
    EXPECT_EQ(1, button.IsChecked());
    button.Check(0);
    EXPECT_EQ(0, button.IsChecked());
    button.Check(7);
    EXPECT_EQ(7, button.IsChecked()) << "stored as it comes";
}

TEST(ImageBtn, OneHundredLeaveNoDrawingObjects) {
    auto MakeAndForget = [] {
        ProbeImageBtn strip(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
        ProbeImageBtn icons(16, 16, nullptr, -IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER, 0, 0, 0, 3);
        ProbeImageBtn twice(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
        twice.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_2, 0, 3);
    };
    MakeAndForget(); // what the platform keeps for itself
    int nBefore = CountGdiObjects();
    ASSERT_LT(0, nBefore);
    for (int i = 0; i < 100; ++i) MakeAndForget();
    EXPECT_EQ(nBefore, CountGdiObjects());
}
} // namespace
