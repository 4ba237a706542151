// The pictures that the buttons show, as they lie in the resources.
#include "resources/resource_ids.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {
constexpr int kFrame = 48, kFrames = 5, kFocus = 4;
constexpr COLORREF kMagenta = RGB(255, 0, 255);

struct StripCase {
    const char* pszName;
    int nId, nBitsPerPixel;
};

class ButtonStrip : public testing::TestWithParam<StripCase> {
  protected:
    void SetUp() override {
        hbm = static_cast<HBITMAP>(::LoadImageW(::GetModuleHandleW(nullptr),
                                                MAKEINTRESOURCEW(GetParam().nId), IMAGE_BITMAP, 0,
                                                0, LR_CREATEDIBSECTION));
        ASSERT_NE(nullptr, hbm);
        ASSERT_EQ(static_cast<int>(sizeof(dib)), ::GetObjectW(hbm, sizeof(dib), &dib));
        ASSERT_EQ(kFrames * kFrame, dib.dsBm.bmWidth);
        ASSERT_EQ(kFrame, dib.dsBm.bmHeight);
        HDC hdc = ::CreateCompatibleDC(nullptr);
        HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
        for (int y = 0; y < kFrame; ++y)
            for (int x = 0; x < kFrames * kFrame; ++x) pixels.push_back(::GetPixel(hdc, x, y));
        ::SelectObject(hdc, hbmBefore);
        ::DeleteDC(hdc);
    }
    void TearDown() override { ::DeleteObject(hbm); }

    COLORREF At(int nFrame, int x, int y) const {
        return pixels[y * kFrames * kFrame + nFrame * kFrame + x];
    }
    bool IsClear(int nFrame, int x, int y) const { return At(nFrame, x, y) == kMagenta; }
    /// Of the pixels of a frame.
    template <class Fn>
    static int Count(Fn&& fnIs) {
        int n = 0;
        for (int y = 0; y < kFrame; ++y)
            for (int x = 0; x < kFrame; ++x) n += fnIs(x, y) ? 1 : 0;
        return n;
    }

    HBITMAP hbm = nullptr;
    DIBSECTION dib{};
    std::vector<COLORREF> pixels; // rows from the top
};

TEST_P(ButtonStrip, HasItsDepth) { EXPECT_EQ(GetParam().nBitsPerPixel, dib.dsBmih.biBitCount); }

TEST_P(ButtonStrip, ShowsEachStateDifferently) {
    for (int i = 0; i < kFrames; ++i) {
        for (int j = i + 1; j < kFrames; ++j) {
            EXPECT_LT(kFrame * kFrame / 4,
                      Count([&](int x, int y) { return At(i, x, y) != At(j, x, y); }))
                << i << " and " << j;
        }
    }
}

TEST_P(ButtonStrip, IsTransparentInTheCorners) {
    for (int i = 0; i < kFrames; ++i) {
        for (int y : {0, kFrame - 1}) {
            EXPECT_TRUE(IsClear(i, 0, y)) << i;
            EXPECT_TRUE(IsClear(i, kFrame - 1, y)) << i;
        }
    }
}

// A smoothed edge would leave pink pixels around the picture.
TEST_P(ButtonStrip, BlendsNothingWithMagenta) {
    constexpr int kPink = 20; // by so much are red and blue above green
    for (COLORREF cr : pixels) {
        if (cr == kMagenta) continue;
        int nRedOrBlue = std::min(GetRValue(cr), GetBValue(cr));
        ASSERT_GT(kPink, nRedOrBlue - GetGValue(cr)) << std::hex << cr;
    }
}

// They are drawn over it.
TEST_P(ButtonStrip, HoverPressedAndDisabledCoverTheNormalFrame) {
    for (int i = 1; i < kFocus; ++i)
        EXPECT_EQ(0, Count([&](int x, int y) { return IsClear(i, x, y) != IsClear(0, x, y); }))
            << i;
}

TEST_P(ButtonStrip, FocusStandsAroundTheOthers) {
    int nSeen = Count([&](int x, int y) { return !IsClear(kFocus, x, y); });
    EXPECT_LT(4 * kFrame, nSeen);
    EXPECT_EQ(nSeen,
              Count([&](int x, int y) { return !IsClear(kFocus, x, y) && IsClear(0, x, y); }));
}

INSTANTIATE_TEST_SUITE_P(Pictures, ButtonStrip,
                         testing::Values(StripCase{"Continue", IDB_BUTTON_STRIP_1, 24},
                                         StripCase{"Restore", IDB_BUTTON_STRIP_2, 24},
                                         StripCase{"Web", IDB_BUTTON_STRIP_3, 8}),
                         [](const auto& row) { return std::string(row.param.pszName); });

#pragma pack(push, 2)
struct IconGroup { // what RT_GROUP_ICON begins with
    WORD wReserved, wType, wCount;
};
struct IconGroupEntry {
    BYTE cx, cy, nColors, nReserved;
    WORD wPlanes, wBitCount;
    DWORD cbImage;
    WORD wId;
};
#pragma pack(pop)

const BYTE* FindBytes(int nId, LPCWSTR pszType) {
    HRSRC hrsrc = ::FindResourceW(nullptr, MAKEINTRESOURCEW(nId), pszType);
    return hrsrc ? static_cast<const BYTE*>(::LockResource(::LoadResource(nullptr, hrsrc)))
                 : nullptr;
}

struct IconImage {
    BITMAPINFOHEADER header;
    std::vector<DWORD> pixels; // 0xAARRGGBB
};

std::vector<IconImage> ReadIcon(int nId) {
    std::vector<IconImage> images;
    const BYTE* pGroup = FindBytes(nId, RT_GROUP_ICON);
    if (!pGroup) return images;
    IconGroup group;
    std::memcpy(&group, pGroup, sizeof(group));
    for (int i = 0; i < group.wCount; ++i) {
        IconGroupEntry entry;
        std::memcpy(&entry, pGroup + sizeof(group) + i * sizeof(entry), sizeof(entry));
        const BYTE* pImage = FindBytes(entry.wId, RT_ICON);
        if (!pImage) continue;
        IconImage image{};
        std::memcpy(&image.header, pImage, sizeof(image.header));
        if (image.header.biSize == sizeof(image.header) && image.header.biBitCount == 32) {
            image.pixels.resize(entry.cx * entry.cy);
            std::memcpy(image.pixels.data(), pImage + sizeof(image.header),
                        image.pixels.size() * sizeof(DWORD));
        }
        images.push_back(image);
    }
    return images;
}

struct IconCase {
    const char* pszName;
    int nId, nIdHover;
};
class CaptionIcon : public testing::TestWithParam<IconCase> {};

// At 96, 120, 144 and 192 dots per inch; Windows XP reads no PNG in an icon.
TEST_P(CaptionIcon, HasTheSizesOfASmallIconWithAlpha) {
    for (int nId : {GetParam().nId, GetParam().nIdHover}) {
        std::vector<long> sizes;
        for (const IconImage& image : ReadIcon(nId)) {
            sizes.push_back(image.header.biWidth);
            EXPECT_EQ(2 * image.header.biWidth, image.header.biHeight) << "picture and mask";
            ASSERT_FALSE(image.pixels.empty()) << "not of 32 bits per pixel";
            auto AlphaAt = [&](long x, long y) {
                return image.pixels[y * image.header.biWidth + x] >> 24;
            };
            long nMiddle = image.header.biWidth / 2;
            EXPECT_GT(0x80u, AlphaAt(0, 0)) << "round corners";
            EXPECT_EQ(0xFFu, AlphaAt(nMiddle, nMiddle));
            EXPECT_TRUE(std::any_of(image.pixels.begin(), image.pixels.end(), [](DWORD dw) {
                return dw >> 24 != 0 && dw >> 24 != 0xFF;
            })) << "smooth edges";
        }
        EXPECT_EQ((std::vector<long>{16, 20, 24, 32}), sizes) << nId;
    }
}

TEST_P(CaptionIcon, LooksDifferentUnderTheMouse) {
    std::vector<IconImage> normal = ReadIcon(GetParam().nId), hover = ReadIcon(GetParam().nIdHover);
    ASSERT_EQ(normal.size(), hover.size());
    for (size_t i = 0; i < normal.size(); ++i) EXPECT_NE(normal[i].pixels, hover[i].pixels) << i;
}

INSTANTIATE_TEST_SUITE_P(Pictures, CaptionIcon,
                         testing::Values(IconCase{"Close", IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER},
                                         IconCase{"Minimize", IDI_DLG_MINIMIZE,
                                                  IDI_DLG_MINIMIZE_HOVER}),
                         [](const auto& row) { return std::string(row.param.pszName); });
} // namespace
