#include "files/disk/path_spelling.h"
#include "files/fake_drives.h"
#include "files/path_support.h"
#include "files/short_names.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace {
const wchar_t* kNull = nullptr;

std::wstring Mix(const std::wstring& strPath, int nExpected = 1) {
    PathBuffer out(L"before", 600);
    EXPECT_EQ(nExpected, MakeMixPath(out, 600, strPath.c_str()));
    return out.Str();
}
std::wstring Level(const std::wstring& strPath) {
    std::wstring strName = strPath.substr(strPath.find_last_of(L'\\') + 1);
    std::wstring strAlt = AltNameOf(strPath);
    return L"|" + strName + (strAlt.empty() ? L"" : L">" + strAlt);
}

class MakeMixPathTest : public testing::Test {
  protected:
    MakeMixPathTest() {
        std::filesystem::create_directory(strFolder);
        folder.MakeFile(L"A Long Folder\\short.txt", "");
        // "C:\users\..." level by level
        strBase = folder.Get().substr(0, 2);
        for (std::size_t n = folder.Get().find(L'\\', 3);; n = folder.Get().find(L'\\', n + 1)) {
            strBase += Level(folder.Get().substr(0, n));
            if (n == std::wstring::npos) break;
        }
    }
    TempFolder folder;
    std::wstring strFolder = folder.File(L"A Long Folder");
    std::wstring strBase; // the mix path of folder
};

// Making

TEST_F(MakeMixPathTest, HoldsLongAndShortNamesOfEachLevel) {
    ASSERT_FALSE(AltNameOf(strFolder).empty());
    EXPECT_EQ(strBase, Mix(folder.Get()));
    EXPECT_EQ(strBase + Level(strFolder), Mix(strFolder));
    std::wstring strExpected = strBase + Level(strFolder) + L"|short.txt";
    EXPECT_EQ(strExpected, Mix(strFolder + L"\\short.txt"));
    // however it is written
    std::wstring strAlt = folder.Get() + L"/" + AltNameOf(strFolder) + L"//SHORT.TXT";
    strAlt[0] = L'c';
    EXPECT_EQ(strExpected, Mix(strAlt));
    EXPECT_EQ(strBase + Level(strFolder), Mix(strFolder + L"\\"));
}

TEST_F(MakeMixPathTest, RootIsOneLevel) {
    EXPECT_EQ(L"C:", Mix(L"c:\\"));
    EXPECT_EQ(L"C:", Mix(L"C:"));
    EXPECT_EQ(L"Q:", Mix(L"q:/"));
    EXPECT_EQ(L"\\\\server\\share", Mix(L"\\\\server\\share"));
    EXPECT_EQ(L"\\\\server\\share", Mix(L"\\\\server\\share\\"));
    EXPECT_EQ(L"\\\\server", Mix(L"\\\\server"));
}

TEST_F(MakeMixPathTest, ConnectedDriveHasTheConnectionsNameToo) {
    FakeDrives drives;
    drives.Connect(L"X:", L"\\\\Server\\Share");
    EXPECT_EQ(L"X:>\\\\Server\\Share", Mix(L"x:\\"));
    drives.types[L'C'] = DRIVE_REMOTE; // remote, but with no name
    EXPECT_EQ(L"C:", Mix(L"C:\\"));
    drives.connections.push_back({L"C:", L"\\\\s\\c\\"});
    EXPECT_EQ(L"C:>\\\\s\\c" + strBase.substr(2), Mix(folder.Get()));
    drives.types[L'C'] = DRIVE_FIXED; // with a name, but not remote
    EXPECT_EQ(strBase, Mix(folder.Get()));
}

TEST_F(MakeMixPathTest, LevelThatIsMissingMakesItEmpty) {
    EXPECT_EQ(L"", Mix(folder.Get() + L"\\missing", 0));
    EXPECT_EQ(L"", Mix(folder.Get() + L"\\missing\\x", 0));
    EXPECT_EQ(L"", Mix(strFolder + L"\\short.txt\\x", 0));
    EXPECT_EQ(L"", Mix(L"q:\\x", 0));
    EXPECT_EQ(L"", Mix(L"\\\\server\\share\\x", 0));
}

TEST_F(MakeMixPathTest, PathWithoutARootIsEmpty) {
    for (const wchar_t* psz : {L"", L"x", L"C:x", L"\\", L"\\windows", L"1:\\", L"\\\\"}) {
        EXPECT_EQ(L"", Mix(psz, 0));
    }
    PathBuffer out(L"before");
    EXPECT_EQ(0, MakeMixPath(out, MAX_PATH, nullptr));
    EXPECT_EQ(L"", out.Str());
    EXPECT_EQ(0, MakeMixPath(nullptr, MAX_PATH, L"C:\\"));
}

TEST_F(MakeMixPathTest, HasToFit) {
    std::wstring strExpected = Mix(strFolder);
    PathBuffer exact(L"before", strExpected.size() + 1);
    EXPECT_EQ(1,
              MakeMixPath(exact, static_cast<unsigned>(strExpected.size() + 1), strFolder.c_str()));
    EXPECT_EQ(strExpected, exact.Str());
    for (std::size_t cch = strExpected.size(); cch > 0; --cch) {
        PathBuffer small(L"", cch);
        ASSERT_EQ(0, MakeMixPath(small, static_cast<unsigned>(cch), strFolder.c_str()));
        ASSERT_EQ(L"", small.Str());
    }
    exact.Set(L"abc");
    EXPECT_EQ(0, MakeMixPath(exact, 0, strFolder.c_str()));
    EXPECT_EQ(L"abc", exact.Str());
}

TEST_F(MakeMixPathTest, LongestPath) {
    LongestFile file(folder.Get());
    std::wstring strMix = Mix(file.Path(0));
    EXPECT_EQ(1, IsMixPath(strMix.c_str(), file.Path(0).c_str()));
    EXPECT_EQ(L"", Mix(file.Path(1), 0)); // 260 characters
    EXPECT_EQ(L"", Mix(file.Path(0) + L"\\", 0));
}

TEST_F(MakeMixPathTest, NamesBeyondAscii) {
    for (const wchar_t* psz : {L"\u00C4 Long Name", L"\U0001F600 long name", L"%TEMP% long"}) {
        std::wstring strOdd = folder.MakeFile(psz, ""), strMix = Mix(strOdd);
        EXPECT_EQ(strBase + Level(strOdd), strMix);
        EXPECT_EQ(1, IsMixPath(strMix.c_str(), strOdd.c_str()));
        std::wstring strOther = strOdd;
        strOther.back() = L'x';
        EXPECT_EQ(0, IsMixPath(strMix.c_str(), strOther.c_str()));
    }
    std::wstring strMix = Mix(folder.MakeFile(L"\u00C4", ""));
    EXPECT_EQ(0, IsMixPath(strMix.c_str(), folder.File(L"\u00E4").c_str())); // case counts
}

TEST_F(MakeMixPathTest, OutputMayBeThePath) {
    PathBuffer path(strFolder, 600);
    EXPECT_EQ(1, MakeMixPath(path, 600, path));
    EXPECT_EQ(strBase + Level(strFolder), path.Str());
}

TEST_F(MakeMixPathTest, EverySpellingOfThePathIsRecognised) {
    std::wstring strMix = Mix(strFolder + L"\\short.txt");
    std::wstring strAlt = folder.Get() + L"\\" + AltNameOf(strFolder);
    wchar_t szShort[MAX_PATH];
    ::GetShortPathNameW(strFolder.c_str(), szShort, MAX_PATH);
    for (const std::wstring& str : {strFolder, strAlt, std::wstring(szShort)}) {
        EXPECT_EQ(1, IsMixPath(strMix.c_str(), (str + L"\\short.txt").c_str()));
        EXPECT_EQ(1, IsUnderMixPath(strMix.c_str(), (str + L"\\short.txt").c_str()));
        EXPECT_EQ(0, IsMixPath(strMix.c_str(), str.c_str()));
        EXPECT_EQ(0, IsUnderMixPath(strMix.c_str(), str.c_str()));
        EXPECT_EQ(1, IsUnderMixPath(Mix(strFolder).c_str(), (str + L"\\any\\thing").c_str()));
    }
}

// Recognising

struct MatchCase {
    const char* pszName;
    const wchar_t* pszMixPath;
    const wchar_t* pszPath;
    int nIs, nUnder;
};
class MixMatchTest : public testing::TestWithParam<MatchCase> {};

TEST_P(MixMatchTest, Result) {
    GuardedText mix(GetParam().pszMixPath), path(GetParam().pszPath);
    EXPECT_EQ(GetParam().nIs, IsMixPath(mix.Get(), path.Get()));
    EXPECT_EQ(GetParam().nUnder, IsUnderMixPath(mix.Get(), path.Get()));
}
constexpr const wchar_t* kMix = L"C:>\\\\srv\\c|Program Files>PROGRA~1|App";
INSTANTIATE_TEST_SUITE_P(
    Paths, MixMatchTest,
    testing::Values(MatchCase{"LongNames", kMix, L"C:\\Program Files\\App", 1, 1},
                    MatchCase{"ShortName", kMix, L"C:\\PROGRA~1\\App", 1, 1},
                    MatchCase{"NetworkName", kMix, L"\\\\srv\\c\\PROGRA~1\\App", 1, 1},
                    MatchCase{"Slashes", kMix, L"C:/Program Files/App", 1, 1},
                    MatchCase{"SeparatorAtTheEnd", kMix, L"C:\\PROGRA~1\\App\\", 1, 1},
                    MatchCase{"TwoSeparators", kMix, L"C:\\\\PROGRA~1//App", 1, 1},
                    MatchCase{"CaseOfTheDrive", kMix, L"c:\\PROGRA~1\\App", 0, 0},
                    MatchCase{"CaseOfAName", kMix, L"C:\\progra~1\\App", 0, 0},
                    MatchCase{"NetworkNameWithSlashes", kMix, L"//srv/c/PROGRA~1/App", 0, 0},
                    MatchCase{"Below", kMix, L"C:\\PROGRA~1\\App\\x", 0, 1},
                    MatchCase{"DeepBelow", kMix, L"C:\\PROGRA~1\\App\\x\\y", 0, 1},
                    MatchCase{"Above", kMix, L"C:\\PROGRA~1", 0, 0},
                    MatchCase{"AboveWithASeparator", kMix, L"C:\\PROGRA~1\\", 0, 0},
                    MatchCase{"Root", kMix, L"C:\\", 0, 0},
                    MatchCase{"LongerName", kMix, L"C:\\PROGRA~1\\App2", 0, 0},
                    MatchCase{"ShorterName", kMix, L"C:\\PROGRA~1\\Ap", 0, 0},
                    MatchCase{"DriveOnly", L"C:", L"C:\\", 1, 1},
                    MatchCase{"DriveWithoutSeparator", L"C:", L"C:", 1, 1},
                    MatchCase{"DriveAndName", L"C:", L"C:x", 0, 0},
                    MatchCase{"OneSpellingBeginsAnother", L"C:|ab>abc|d", L"C:\\abc\\d", 1, 1},
                    MatchCase{"OneSpellingBeginsAnotherTurned", L"C:|abc>ab|d", L"C:\\ab\\d", 1, 1},
                    MatchCase{"SpellingOfAnotherLevel", L"C:|a>b|c", L"C:\\c", 0, 0},
                    MatchCase{"EmptyPath", kMix, L"", 0, 0}, MatchCase{"BothEmpty", L"", L"", 1, 1},
                    MatchCase{"EmptySpelling", L">C:|a", L"C:\\a", 1, 1},
                    MatchCase{"SpellingsMarkInThePath", L"C:|a>b", L"C:\\a>b", 0, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(IsMixPath, NullTextsGiveZero) {
    EXPECT_EQ(0, IsMixPath(kNull, L"C:"));
    EXPECT_EQ(0, IsMixPath(L"C:", kNull));
    EXPECT_EQ(0, IsUnderMixPath(kNull, L"C:"));
    EXPECT_EQ(0, IsUnderMixPath(L"", kNull));
}

TEST(IsUnderMixPath, EveryPathLiesUnderTheEmptyMixPath) {
    EXPECT_EQ(1, IsUnderMixPath(L"", L"C:\\x"));
    EXPECT_EQ(0, IsMixPath(L"", L"C:\\x"));
}

/// What the two functions say, told another way: the path's levels against each level's spellings.
struct Reference {
    static std::vector<std::wstring> Split(const std::wstring& str, wchar_t ch) {
        std::vector<std::wstring> parts(1);
        for (wchar_t c : str) {
            if (c == ch) {
                parts.emplace_back();
            } else {
                parts.back() += c;
            }
        }
        return parts;
    }
    static std::pair<int, int> Match(const std::wstring& strMix, std::wstring strPath) {
        auto levels = Split(strMix, L'|');
        if (levels.back().empty()) levels.pop_back(); // nothing behind the last mark
        for (const std::wstring& strLevel : levels) {
            bool bFound = false;
            for (const std::wstring& str : Split(strLevel, L'>')) {
                if (!strPath.starts_with(str)) continue;
                std::wstring strRest = strPath.substr(str.size());
                if (!strRest.empty() && strRest[0] != L'\\' && strRest[0] != L'/') continue;
                strPath =
                    strRest.substr(std::min(strRest.find_first_not_of(L"\\/"), strRest.size()));
                bFound = true;
                break;
            }
            if (!bFound) return {0, 0};
        }
        return {strPath.empty(), 1};
    }
};

TEST(IsMixPath, RandomTexts) {
    std::mt19937 random(104);
    constexpr std::wstring_view kMixPieces[] = {L"|",  L"|", L">",  L"a",
                                                L"ab", L"A", L"C:", L"\\\\s"};
    constexpr std::wstring_view kPathPieces[] = {L"\\", L"\\", L"/",     L"a", L"ab",
                                                 L"A",  L"C:", L"\\\\s", L">", L"|"};
    auto make = [&](auto& pieces) {
        std::wstring str;
        for (auto n = random() % 8; n > 0; --n) str += pieces[random() % std::size(pieces)];
        return str;
    };
    GuardedArea mixArea(100), pathArea(100);
    int nMatches = 0;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strMix = make(kMixPieces), strPath = make(kPathPieces);
        const wchar_t *pszMix = mixArea.Put(strMix), *pszPath = pathArea.Put(strPath);
        auto [nIs, nUnder] = Reference::Match(strMix, strPath);
        ASSERT_EQ(nIs, IsMixPath(pszMix, pszPath))
            << testing::PrintToString(strMix) << testing::PrintToString(strPath);
        ASSERT_EQ(nUnder, IsUnderMixPath(pszMix, pszPath))
            << testing::PrintToString(strMix) << testing::PrintToString(strPath);
        nMatches += nUnder;
    }
    EXPECT_GT(nMatches, kRandomInputs / 100);
}

TEST_F(MakeMixPathTest, RandomPaths) {
    RandomPaths random(105);
    GuardedArea in(300 * sizeof(wchar_t));
    for (int i = 0; i < 3000; ++i) {
        std::wstring str = random.Next();
        if (random.Below(2) == 0) str = folder.Get() + L"\\" + str;
        std::size_t cch = 1 + random.Below(300);
        GuardedMemory out(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(out.Get());
        std::memset(psz, 0xEE, cch * sizeof(wchar_t));
        int nResult = MakeMixPath(psz, static_cast<unsigned>(cch), in.Put(str));
        ASSERT_EQ(nResult, *psz != 0);
        ASSERT_LT(std::wcslen(psz), cch);
    }
}
} // namespace
