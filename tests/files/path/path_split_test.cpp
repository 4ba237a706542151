#include "files/path/path_split.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <cctype>

namespace {
constexpr std::size_t kNone = std::wstring::npos;

struct FindRow {
    const wchar_t* pszPath;
    std::size_t nAt; // kNone: null
};

/// Each row through both overloads.
template <class ForConst, class ForText>
void ExpectFinds(std::initializer_list<FindRow> rows, ForConst find, ForText findIn) {
    for (const FindRow& row : rows) {
        const wchar_t* pFound = find(row.pszPath);
        EXPECT_EQ(row.nAt == kNone ? nullptr : row.pszPath + row.nAt, pFound) << row.pszPath;
        std::wstring str = row.pszPath;
        wchar_t* pFoundIn = findIn(str.data());
        EXPECT_EQ(row.nAt == kNone ? nullptr : str.data() + row.nAt, pFoundIn) << row.pszPath;
        EXPECT_EQ(row.pszPath, str);
    }
    EXPECT_EQ(nullptr, find(nullptr));
    EXPECT_EQ(nullptr, findIn(nullptr));
}

using FindConst = const wchar_t* (*)(const wchar_t*);
using FindIn = wchar_t* (*)(wchar_t*);

TEST(LocateFileName, StandsBehindTheLastSeparatorOrColon) {
    ExpectFinds({{L"", 0},
                 {L"a", 0},
                 {L"\\", 1},
                 {L"C:", 2},
                 {L"C:a", 2},
                 {L"C:\\a\\", 5},
                 {L"C:\\a", 3},
                 {L"C:/a\\b/c.d", 7},
                 {L"\\\\server\\share", 9},
                 {L"file:stream", 5},
                 {L"a.b", 0}},
                static_cast<FindConst>(LocateFileName), static_cast<FindIn>(LocateFileName));
}

TEST(LocateFileExt, IsTheLastDotOfTheNamePart) {
    ExpectFinds({{L"", kNone},
                 {L"a", kNone},
                 {L".", 0},
                 {L"a.b.c", 3},
                 {L"C:\\a.b\\c", kNone},
                 {L"C:\\a.b/c", kNone},
                 {L"a.b:c", kNone},
                 {L"C:\\a.b\\c.", 8},
                 {L"C:.x", 2},
                 {L"a.b\\", kNone}},
                static_cast<FindConst>(LocateFileExt), static_cast<FindIn>(LocateFileExt));
}

TEST(FindNameExt, StandsBehindTheLastSeparatorAndNotBehindAColon) {
    ExpectFinds({{L"", kNone},
                 {L"a", 0},
                 {L"C:", 0},
                 {L"C:a.b", 0},
                 {L"C:\\", kNone},
                 {L"C:\\a\\", kNone},
                 {L"C:\\a/b.c", 5},
                 {L"\\a:b", 1}},
                static_cast<FindConst>(FindNameExt), static_cast<FindIn>(FindNameExt));
}

TEST(FindDotExt, IsTheLastDotOfTheWholeText) {
    ExpectFinds({{L"", kNone}, {L"abc", kNone}, {L"a.b\\c", 1}, {L"a.b.c", 3}, {L"a.", 1}},
                static_cast<FindConst>(FindDotExt), static_cast<FindIn>(FindDotExt));
}

TEST(FindLastSeparator, IsTheLastOfEitherKind) {
    ExpectFinds({{L"", kNone}, {L"C:a", kNone}, {L"\\", 0}, {L"a\\b/c", 3}, {L"a/b\\", 3}},
                static_cast<FindConst>(FindLastSeparator), static_cast<FindIn>(FindLastSeparator));
}

TEST(FindLastPathComponent, CutsATrailingSeparatorFirst) {
    const struct {
        const wchar_t* pszPath;
        const wchar_t* pszCut;
        std::size_t nAt;
    } rows[] = {{L"", L"", 0},
                {L"\\", L"", 0},
                {L"a/", L"a", 0},
                {L"C:\\", L"C:", 2},
                {L"C:\\a\\b", L"C:\\a\\b", 5},
                {L"C:\\a\\b\\", L"C:\\a\\b", 5},
                {L"a\\\\", L"a\\", 2}};
    for (const auto& row : rows) {
        std::wstring str = row.pszPath;
        wchar_t* pFound = FindLastPathComponent(str.data());
        EXPECT_STREQ(row.pszCut, str.c_str()) << row.pszPath;
        EXPECT_EQ(row.nAt, static_cast<std::size_t>(pFound - str.data())) << row.pszPath;
    }
    EXPECT_EQ(nullptr, FindLastPathComponent(nullptr));
}

TEST(StripFileName, CutsBehindTheLastSeparatorOrColon) {
    ExpectChanges({{L"", L""},
                   {L"a", L""},
                   {L"C:", L"C:"},
                   {L"C:a", L"C:"},
                   {L"C:\\a", L"C:\\"},
                   {L"C:\\a\\", L"C:\\a\\"},
                   {L"a/b", L"a/"}},
                  StripFileName);
}

TEST(StripFileNameAndBackslash, KeepsTheSeparatorBehindAColon) {
    ExpectChanges({{L"", L""},
                   {L"\\", L""},
                   {L"a", L""},
                   {L"\\a", L""},
                   {L"C:", L"C:"},
                   {L"C:a", L"C:"},
                   {L"C:\\", L"C:\\"},
                   {L"C:\\a", L"C:\\"},
                   {L"C:/a", L"C:/"},
                   {L"C:\\a\\", L"C:\\a"},
                   {L"C:\\a\\b", L"C:\\a"},
                   {L"C:\\\\a", L"C:\\"},
                   {L"\\\\s\\x", L"\\\\s"}},
                  StripFileNameAndBackslash);
}

TEST(StripFileExt, CutsAtTheLastDotOfTheName) {
    ExpectChanges({{L"", L""},
                   {L"a.b.c", L"a.b"},
                   {L"a.b\\c", L"a.b\\c"},
                   {L".x", L""},
                   {L"C:.x", L"C:"},
                   {L"a.", L"a"}},
                  StripFileExt);
}

TEST(DirFromPath, IsTheFolderWithoutATrailingSeparator) {
    ExpectCopies({{L"", L""},
                  {L"a", L""},
                  {L"\\", L""},
                  {L"C:", L"C:"},
                  {L"C:\\a", L"C:\\"},
                  {L"C:a", L"C:"},
                  {L"C:\\a\\b", L"C:\\a"},
                  {L"C:\\a\\", L"C:\\a"},
                  {L"C:/a/b", L"C:/a"},
                  {L"a\\\\b", L"a\\\\"},
                  {L"\\\\s\\x", L"\\\\s"}},
                 DirFromPath);
}

TEST(GetParentFolder, CutsAtTheLastSeparator) {
    ExpectCopies({{L"", L""},
                  {L"a", L"a"},
                  {L"\\", L""},
                  {L"C:", L"C:"},
                  {L"C:a", L"C:a"},
                  {L"C:\\a", L"C:\\"},
                  {L"C:\\", L"C:\\"},
                  {L"\\a", L""},
                  {L"C:\\a\\b", L"C:\\a"},
                  {L"C:\\a\\", L"C:\\a"},
                  {L"C:/a/b", L"C:/a"},
                  {L"\\\\s\\x", L"\\\\s"}},
                 GetParentFolder);
}

TEST(SplitCopies, NullGivesAnEmptyText) {
    for (auto copy : {DirFromPath, GetParentFolder}) {
        PathBuffer out(L"before");
        copy(out, nullptr);
        EXPECT_STREQ(L"", out);
    }
}

TEST(SplitCopies, CutWhatReaches260Characters) {
    PathBuffer out;
    for (std::size_t cch : {259u, 260u, 261u, 1000u}) {
        std::wstring str(cch, L'n');
        GetParentFolder(out, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        ParsePath(nullptr, out, nullptr, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        str[0] = L'.';
        ParsePath(nullptr, nullptr, out, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        str += L"\\name";
        ParsePath(out, nullptr, nullptr, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        DirFromPath(out, str.c_str());
        EXPECT_STREQ(L"", out); // the separator is beyond the cut: all is a name
    }
}

struct ParseRow {
    const wchar_t* pszPath;
    const wchar_t* pszFolder;
    const wchar_t* pszName;
    const wchar_t* pszExt;
};

TEST(ParsePath, GivesThreeParts) {
    const ParseRow rows[] = {
        {L"", L"", L"", L""},
        {L"a", L"", L"a", L""},
        {L"a.b.c", L"", L"a.b", L".c"},
        {L"C:\\a.txt", L"C:\\", L"a", L".txt"},
        {L"C:/a.txt", L"C:/", L"a", L".txt"},
        {L"C:\\d\\a.txt", L"C:\\d", L"a", L".txt"},
        {L"C:\\d\\", L"C:\\d", L"", L""},
        {L"C:a.b", L"", L"C:a", L".b"},
        {L"\\a", L"", L"a", L""},
        {L"\\\\server\\share", L"\\\\server", L"share", L""},
        {L"\\\\server\\share\\a.b", L"\\\\server\\share", L"a", L".b"},
        {L"C:\\d.e\\a", L"C:\\d.e", L"a", L".e\\a"}, // the "." is a folder's
    };
    PathBuffer folder, name, ext;
    for (const ParseRow& row : rows) {
        EXPECT_EQ(1, ParsePath(folder, name, ext, row.pszPath));
        EXPECT_STREQ(row.pszFolder, folder) << row.pszPath;
        EXPECT_STREQ(row.pszName, name) << row.pszPath;
        EXPECT_STREQ(row.pszExt, ext) << row.pszPath;
        folder.Set(row.pszPath);
        EXPECT_EQ(1, ParsePath(folder, nullptr, nullptr, folder));
        EXPECT_STREQ(row.pszFolder, folder) << row.pszPath;
    }
    EXPECT_EQ(1, ParsePath(folder, name, ext, nullptr));
    EXPECT_STREQ(L"", folder);
    EXPECT_STREQ(L"", name);
    EXPECT_STREQ(L"", ext);
}

TEST(ParsePath, LongNameBehindAFoldersDotIsCut) {
    PathBuffer name, ext;
    std::wstring str = L"d.e\\" + std::wstring(300, L'n');
    EXPECT_EQ(1, ParsePath(nullptr, name, ext, str.c_str()));
    EXPECT_EQ(std::wstring(259, L'n'), name.Str());
    EXPECT_EQ(str.substr(1, 259), ext.Str());
}

TEST(ParsePath, NameKeepsItsExtensionUnlessThatIsAskedFor) {
    PathBuffer name, ext;
    EXPECT_EQ(1, ParsePath(nullptr, name, nullptr, L"C:\\d\\a.txt"));
    EXPECT_STREQ(L"a.txt", name);
    EXPECT_EQ(1, ParsePath(nullptr, name, ext, L"C:\\d\\a.txt"));
    EXPECT_STREQ(L"a", name);
    EXPECT_EQ(1, ParsePath(nullptr, nullptr, nullptr, L"C:\\d\\a.txt"));
}

struct RootRow {
    const wchar_t* pszPath;
    const wchar_t* pszRoot;    // GetRootPath; empty: 0
    const wchar_t* pszExtract; // ExtractRootPath; empty: 0
};

TEST(RootPaths, OfFullPathsOnly) {
    const RootRow rows[] = {
        {L"", L"", L""},
        {L"a", L"", L""},
        {L"C:", L"", L""},
        {L"C:a\\b", L"", L""},
        {L"1:\\a", L"", L""},
        {L"C:\\", L"C:\\", L"C:"},
        {L"c:/a/b", L"c:\\", L"c:"},
        {L"\\", L"", L""},
        {L"\\a\\b", L"", L""},
        {L"\\\\", L"", L""},
        {L"\\\\\\x", L"", L""},
        {L"\\\\server", L"", L"\\\\server"},
        {L"\\\\server\\", L"", L"\\\\server"},
        {L"\\\\server\\\\x", L"", L"\\\\server"},
        {L"\\\\server\\share", L"\\\\server\\share\\", L"\\\\server"},
        {L"\\\\server\\share\\a\\b", L"\\\\server\\share\\", L"\\\\server"},
        {L"//server/share/a", L"\\\\server\\share\\", L"\\\\server"},
    };
    PathBuffer out;
    for (const RootRow& row : rows) {
        EXPECT_EQ(*row.pszRoot != 0, GetRootPath(out, row.pszPath)) << row.pszPath;
        EXPECT_STREQ(row.pszRoot, out) << row.pszPath;
        EXPECT_EQ(*row.pszExtract != 0, ExtractRootPath(out, row.pszPath)) << row.pszPath;
        EXPECT_STREQ(row.pszExtract, out) << row.pszPath;
        out.Set(row.pszPath);
        GetRootPath(out, out);
        EXPECT_STREQ(row.pszRoot, out) << row.pszPath;
        out.Set(row.pszPath);
        ExtractRootPath(out, out);
        EXPECT_STREQ(row.pszExtract, out) << row.pszPath;
    }
    out.Set(L"x");
    EXPECT_EQ(0, GetRootPath(out, nullptr));
    EXPECT_STREQ(L"", out);
    out.Set(L"x");
    EXPECT_EQ(0, ExtractRootPath(out, nullptr));
    EXPECT_STREQ(L"", out);
}

TEST(RootPaths, ThatDoNotFitAreNone) {
    PathBuffer out;
    std::wstring str = L"\\\\" + std::wstring(100, L's') + L"\\" + std::wstring(155, L'n'); // 258
    EXPECT_EQ(1, GetRootPath(out, str.c_str()));
    EXPECT_EQ(str + L"\\", out.Str());
    str += L'n';
    EXPECT_EQ(0, GetRootPath(out, str.c_str()));
    EXPECT_STREQ(L"", out);
    str = L"\\\\" + std::wstring(257, L's');
    EXPECT_EQ(1, ExtractRootPath(out, str.c_str()));
    EXPECT_EQ(str, out.Str());
    str += L's';
    EXPECT_EQ(0, ExtractRootPath(out, str.c_str()));
    EXPECT_STREQ(L"", out);
}

// Random texts against a second telling of the rules

std::size_t NameAt(const std::wstring& str) { return str.find_last_of(L"\\/:") + 1; }

std::wstring CutAt(const std::wstring& str, std::size_t n) {
    bool bRoot = n > 0 && str[n - 1] == L':';
    return str.substr(0, bRoot ? n + 1 : n);
}

std::wstring WithoutEnd(std::wstring str) {
    if (str.empty() || !IsSep(str.back())) return str;
    std::wstring strRest = str.substr(0, str.size() - 1);
    bool bStays = !strRest.empty() && (IsSep(strRest.back()) || strRest.back() == L':');
    return bStays ? str : strRest;
}

void ExpectFound(const std::wstring& str, std::size_t nAt, const wchar_t* pszStart,
                 const wchar_t* pFound) {
    ASSERT_EQ(nAt == kNone ? nullptr : pszStart + nAt, pFound) << str;
}

TEST(SplitRandom, PointersLieWhereTheRulesSay) {
    RandomPaths paths(811);
    GuardedArea area(2 * 1024);
    for (int i = 0; i < kRandomInputs && !testing::Test::HasFatalFailure(); ++i) {
        std::wstring str = paths.Next();
        const wchar_t* psz = area.Put(str);
        std::size_t nName = NameAt(str), nSep = str.find_last_of(L"\\/"), nDot = str.rfind(L'.');
        ExpectFound(str, nName, psz, LocateFileName(psz));
        ExpectFound(str, nDot != kNone && nDot >= nName ? nDot : kNone, psz, LocateFileExt(psz));
        ExpectFound(str, nDot, psz, FindDotExt(psz));
        ExpectFound(str, nSep, psz, FindLastSeparator(psz));
        ExpectFound(str, nSep + 1 < str.size() ? nSep + 1 : kNone, psz, FindNameExt(psz));
    }
}

TEST(SplitRandom, CutsLeaveWhatTheRulesSay) {
    RandomPaths paths(812);
    GuardedArea area(2 * 1024);
    FrontGuardedPath front;
    for (int i = 0; i < kRandomInputs && !testing::Test::HasFatalFailure(); ++i) {
        std::wstring str = paths.Next();
        std::size_t nName = NameAt(str), nDot = str.rfind(L'.');
        wchar_t* psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileName(psz);
        ASSERT_EQ(str.substr(0, nName), psz);
        psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileNameAndBackslash(psz);
        bool bSep = nName > 0 && IsSep(str[nName - 1]);
        ASSERT_EQ(bSep ? CutAt(str, nName - 1) : str.substr(0, nName), psz) << str;
        psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileExt(psz);
        ASSERT_EQ(nDot != kNone && nDot >= nName ? str.substr(0, nDot) : str, psz);
        psz = i % 2 ? area.Put(str) : front.Put(str);
        std::wstring strCut = str;
        if (!str.empty() && IsSep(str.back())) strCut.pop_back();
        ASSERT_EQ(psz + NameAt(strCut), FindLastPathComponent(psz));
        ASSERT_EQ(strCut, psz);
    }
}

TEST(SplitRandom, CopiesHoldWhatTheRulesSay) {
    RandomPaths paths(813);
    GuardedArea area(2 * 1024);
    PathBuffer folder, name, ext;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        const wchar_t* psz = area.Put(str);
        std::wstring strCut = str.substr(0, 259);
        DirFromPath(folder, psz);
        ASSERT_EQ(WithoutEnd(strCut.substr(0, NameAt(strCut))), folder.Str());
        GetParentFolder(folder, psz);
        std::size_t nSep = strCut.find_last_of(L"\\/");
        ASSERT_EQ(nSep == kNone ? strCut : CutAt(strCut, nSep), folder.Str());

        ASSERT_EQ(1, ParsePath(folder, name, ext, psz));
        std::size_t nName = str.find_last_of(L"\\/") + 1, nDot = str.rfind(L'.');
        std::wstring strFolder = str.substr(0, nName).substr(0, 259);
        bool bRoot = nName == 3 && str[1] == L':' && std::isalpha(str[0]);
        if (nName && nName < 260 && !bRoot) strFolder.pop_back();
        ASSERT_EQ(strFolder, folder.Str()) << str;
        ASSERT_EQ(nDot == kNone ? L"" : str.substr(nDot).substr(0, 259), ext.Str());
        std::size_t cchName = nDot != kNone && nDot >= nName ? nDot - nName : 259;
        ASSERT_EQ(str.substr(nName, cchName).substr(0, 259), name.Str()) << str;
    }
}

/// The names between the separators of "\\server\share\rest".
std::wstring NameFrom(const std::wstring& str, std::size_t n) {
    return n < str.size() ? str.substr(n, str.find_first_of(L"\\/", n) - n) : L"";
}

TEST(SplitRandom, RootsAreWhatTheRulesSay) {
    RandomPaths paths(814);
    GuardedArea area(2 * 1024);
    PathBuffer root, extract;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 2) str = L"\\\\" + str;
        const wchar_t* psz = area.Put(str);
        std::wstring strRoot, strExtract;
        if (str.size() >= 3 && str[0] < 128 && std::isalpha(str[0]) && str[1] == L':' &&
            IsSep(str[2])) {
            strRoot = str.substr(0, 2) + L"\\";
            strExtract = str.substr(0, 2);
        } else if (str.size() >= 3 && IsSep(str[0]) && IsSep(str[1])) {
            std::wstring strServer = NameFrom(str, 2);
            std::wstring strShare = NameFrom(str, 3 + strServer.size());
            if (!strServer.empty()) strExtract = L"\\\\" + strServer;
            if (!strServer.empty() && !strShare.empty()) {
                strRoot = strExtract + L"\\" + strShare + L"\\";
            }
        }
        if (strRoot.size() >= 260) strRoot.clear();
        if (strExtract.size() >= 260) strExtract.clear();
        ASSERT_EQ(!strRoot.empty(), GetRootPath(root, psz)) << str;
        ASSERT_EQ(strRoot, root.Str());
        ASSERT_EQ(!strExtract.empty(), ExtractRootPath(extract, psz)) << str;
        ASSERT_EQ(strExtract, extract.Str());
    }
}
} // namespace
