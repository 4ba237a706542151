#include "richtext/engine/golden_texts.h"
#include "richtext/engine/recording_device.h"
#include <gtest/gtest.h>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

/// A run as the table of golden texts has it.
std::wstring FormatRun(const TextRun& run) {
    std::wstring strStyle;
    if (run.font.lfWeight == FW_BOLD) strStyle += L'b';
    if (run.font.lfWeight == FW_HEAVY) strStyle += L'h';
    if (run.font.lfItalic == 1) strStyle += L'i';
    if (run.font.lfUnderline == 1) strStyle += L'u';
    if (run.font.lfStrikeOut == 1) strStyle += L's';
    if (run.font.lfQuality) strStyle += std::to_wstring(run.font.lfQuality);
    if (run.font.lfHeight != -TestFont::kHeight)
        strStyle += L'/' + std::to_wstring(-run.font.lfHeight);
    if (run.crText != kTestText) {
        wchar_t sz[8];
        std::swprintf(sz, std::size(sz), L"#%02X%02X%02X", GetRValue(run.crText),
                      GetGValue(run.crText), GetBValue(run.crText));
        strStyle += sz;
    }
    std::wstring strText = run.strText;
    std::replace(strText.begin(), strText.end(), L' ', L'_');
    return std::to_wstring(run.x) + L',' + std::to_wstring(run.y) +
           (strStyle.empty() ? L"" : L';' + strStyle) + L':' + strText;
}

std::wstring FormatRuns(const std::vector<TextRun>& runs, bool bMark) {
    std::wstring str;
    for (const TextRun& run : runs) str += (str.empty() ? L"" : L" ") + FormatRun(run);
    if (bMark) str += str.empty() ? L"mark" : L" mark";
    return str;
}

class DrawHTMLGolden : public testing::TestWithParam<GoldenText> {
  public:
    static std::string NameOf(const testing::TestParamInfo<GoldenText>& row) {
        return row.param.pszName;
    }

  protected:
    int Draw(DrawMode mode, RECT* prc) {
        const GoldenText& row = GetParam();
        const int nHeight = stage.html.Draw(mode, stage.device, prc, row.pszMarkup, row.nLength,
                                            &stage.links, &stage.tools);
        runs = stage.device.TakeRuns();
        pixels = stage.device.TakePixels();
        return nHeight;
    }
    /// Three pixels or none; anything else is a failure.
    bool HasMark() {
        if (pixels.empty()) return false;
        const RECT& rc = GetParam().rc;
        EXPECT_EQ(3u, pixels.size());
        for (int i = 0; i < 3 && i < static_cast<int>(pixels.size()); ++i) {
            EXPECT_EQ(rc.right - 3 - 2 * i, pixels[i].x);
            EXPECT_EQ(rc.bottom - 1, pixels[i].y);
        }
        return true;
    }
    HtmlStage stage;
    std::vector<TextRun> runs;
    std::vector<POINT> pixels;
};

TEST_P(DrawHTMLGolden, PaintsTheRunsOfTheRules) {
    RECT rc = GetParam().rc;
    Draw(DrawMeasure, &rc);
    EXPECT_EQ(GetParam().nHeight, Draw(DrawPaint, &rc));
    EXPECT_EQ(GetParam().pszRuns, FormatRuns(runs, HasMark()));
}

TEST_P(DrawHTMLGolden, MeasuringPassDiffersInTheLinesBottomOnly) {
    RECT rc = GetParam().rc;
    EXPECT_EQ(GetParam().nHeight, Draw(DrawMeasure, &rc));
    const std::vector<TextRun> measured = runs;
    const bool bMark = HasMark();
    Draw(DrawPaint, &rc);
    EXPECT_EQ(bMark, HasMark());
    ASSERT_EQ(measured.size(), runs.size());
    for (std::size_t i = 0; i < runs.size(); ++i) {
        TextRun run = measured[i];
        EXPECT_LE(run.y, runs[i].y) << "the line only grows while it is measured";
        run.y = runs[i].y;
        EXPECT_EQ(FormatRun(runs[i]), FormatRun(run));
    }
}

TEST_P(DrawHTMLGolden, PaintingAgainGivesTheSame) {
    RECT rc = GetParam().rc;
    for (int i = 0; i < 3; ++i) {
        Draw(DrawMeasure, &rc);
        Draw(DrawPaint, nullptr);
        EXPECT_EQ(GetParam().pszRuns, FormatRuns(runs, HasMark())) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, DrawHTMLGolden, testing::ValuesIn(kGoldenTexts),
                         DrawHTMLGolden::NameOf);
