// Walks and texts over a namespace of the tests', in which all can happen that the real one does
// not do at will.

#include "shell/namespace/made_namespace.h"
#include "shell/namespace/pidl.h"

#include <gtest/gtest.h>

extern "C" FARPROC __imp_SHGetPathFromIDListW;
extern "C" FARPROC __imp_SHGetSpecialFolderLocation;

namespace {
const Bytes kEmpty = ListBytes({});

int CompareLists(const std::vector<std::wstring>& a, const std::vector<std::wstring>& b) {
    Bytes bytesA = TextList(a), bytesB = TextList(b);
    GuardedBytes guardedA(bytesA), guardedB(bytesB);
    int n = PIDL::CompareAbs(guardedA.List(), guardedB.List());
    PIDL list(guardedA.List());
    EXPECT_EQ(n, list.CompareAbs(guardedB.List()));
    return n;
}

TEST(PidlCompare, NullAndEmptyLists) {
    MadeNamespace space;
    GuardedBytes empty(kEmpty), one(TextList({L"a"}));
    EXPECT_EQ(0, PIDL::CompareAbs(nullptr, nullptr));
    EXPECT_EQ(-2, PIDL::CompareAbs(nullptr, empty.List()));
    EXPECT_EQ(2, PIDL::CompareAbs(empty.List(), nullptr));
    EXPECT_EQ(-2, PIDL::CompareAbs(nullptr, one.List()));
    EXPECT_EQ(2, PIDL::CompareAbs(one.List(), nullptr));
    EXPECT_EQ(0, PIDL::CompareAbs(empty.List(), empty.List()));
    EXPECT_EQ(-2, PIDL::CompareAbs(empty.List(), one.List()));
    EXPECT_EQ(2, PIDL::CompareAbs(one.List(), empty.List()));
    PIDL none;
    EXPECT_EQ(0, none.CompareAbs(nullptr));
    EXPECT_EQ(-2, none.CompareAbs(one.List()));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlCompare, PrefixesAndDifferences) {
    MadeNamespace space;
    EXPECT_EQ(0, CompareLists({L"a", L"b", L"c"}, {L"a", L"b", L"c"}));
    EXPECT_EQ(-2, CompareLists({L"a", L"b"}, {L"a", L"b", L"c"}));
    EXPECT_EQ(2, CompareLists({L"a", L"b", L"c"}, {L"a"}));
    EXPECT_EQ(-1, CompareLists({L"a", L"b", L"c"}, {L"a", L"c"}));
    EXPECT_EQ(1, CompareLists({L"b"}, {L"a", L"c", L"d"}));
    EXPECT_EQ(0, CompareLists({L"Ab", L"c"}, {L"aB", L"C"})); // by names, without case
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlCompare, FolderDecidesOverOtherNames) {
    MadeNamespace space;
    space.compare = [](const std::wstring& a, const std::wstring& b) {
        return MAKE_HRESULT(0, 0, static_cast<USHORT>(a[0] - b[0])); // by the first letter
    };
    EXPECT_EQ(0, CompareLists({L"x1", L"y"}, {L"x22", L"y"}));
    EXPECT_EQ(-1, CompareLists({L"x1", L"y"}, {L"x22", L"z"}));
    EXPECT_EQ(1, CompareLists({L"z"}, {L"a"}));
    space.compare = [](auto&, auto&) { return MAKE_HRESULT(0, 0, 0x8000); };
    EXPECT_EQ(-1, CompareLists({L"x"}, {L"y"}));
    space.compare = [](auto&, auto&) { return MAKE_HRESULT(0, 0, 0x7FFF); };
    EXPECT_EQ(1, CompareLists({L"x"}, {L"y"}));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlCompare, EachStepIsInTheFolderOfTheOneBefore) {
    MadeNamespace space;
    space.compare = [](auto& a, auto& b) {
        return MAKE_HRESULT(0, 0, static_cast<USHORT>(a[0] - b[0]));
    };
    EXPECT_EQ(1, PIDL::CompareAbs(AsList(TextList({L"a1", L"b1", L"d"})),
                                  AsList(TextList({L"a2", L"b2", L"c"}))));
    std::vector<std::wstring> compared;
    for (const auto& str : space.log) {
        if (str.starts_with(L"compare")) compared.push_back(str);
    }
    EXPECT_EQ((std::vector<std::wstring>{L"compare / a1 a2", L"compare /a1/ b1 b2",
                                         L"compare /a1/b1/ d c"}),
              compared);
}

TEST(PidlCompare, FailureIsNoDifference) {
    MadeNamespace space;
    space.compare = [](auto&, auto&) { return E_FAIL; };
    EXPECT_EQ(0, CompareLists({L"a"}, {L"b"}));
    EXPECT_EQ(0, CompareLists({L"same", L"a", L"x"}, {L"same", L"b"}));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlCompare, ItemThatIsNoFolderKeepsTheFolder) {
    MadeNamespace space;
    space.noFolders = {L"file"};
    EXPECT_EQ(-1, CompareLists({L"a", L"file", L"b"}, {L"a", L"file", L"c"}));
    EXPECT_EQ(2, space.Count(L"compare /a/ b c"));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlCompare, WithoutADesktopNothingIsCompared) {
    MadeNamespace space;
    space.bNoDesktop = true;
    EXPECT_EQ(0, CompareLists({L"a"}, {L"b"}));
    EXPECT_EQ(0, CompareLists({L"a"}, {L"b", L"c"}));
    EXPECT_EQ(-2, CompareLists({}, {L"b", L"c"}));
}

TEST(PidlChild, GivesThePlaceBehindTheParent) {
    MadeNamespace space;
    PIDL list(AsList(TextList({L"a", L"bb", L"ccc"})));
    auto child = [&](const std::vector<std::wstring>& names) -> int {
        ITEMIDLIST* pidl = list.GetChildOf(AsList(TextList(names)));
        if (!pidl) return -1;
        return int(reinterpret_cast<BYTE*>(pidl) -
                   reinterpret_cast<BYTE*>(static_cast<ITEMIDLIST*>(list)));
    };
    EXPECT_EQ(0, child({}));
    EXPECT_EQ(6, child({L"a"}));
    EXPECT_EQ(6, child({L"A"}));
    EXPECT_EQ(14, child({L"a", L"bb"}));
    EXPECT_EQ(-1, child({L"a", L"bb", L"ccc"}));
    EXPECT_EQ(-1, child({L"a", L"bb", L"ccc", L"d"}));
    EXPECT_EQ(-1, child({L"b"}));
    EXPECT_EQ(-1, child({L"a", L"x"}));
    EXPECT_EQ(static_cast<ITEMIDLIST*>(list), list.GetChildOf(nullptr));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlChild, NothingHasNoRest) {
    MadeNamespace space;
    PIDL none, empty;
    empty.Reset();
    EXPECT_EQ(nullptr, none.GetChildOf(nullptr));
    EXPECT_EQ(nullptr, none.GetChildOf(AsList(kEmpty)));
    EXPECT_EQ(nullptr, empty.GetChildOf(nullptr));
    EXPECT_EQ(nullptr, empty.GetChildOf(AsList(kEmpty)));
    EXPECT_EQ(nullptr, empty.GetChildOf(AsList(TextList({L"a"}))));
}

TEST(PidlChild, FailedComparisonIsNoChild) {
    MadeNamespace space;
    space.compare = [](auto&, auto&) { return E_FAIL; };
    PIDL list(AsList(TextList({L"a", L"b"})));
    EXPECT_EQ(nullptr, list.GetChildOf(AsList(TextList({L"x"}))));
    // By the folder's rules, not by names or bytes.
    space.compare = [](auto&, auto&) { return S_OK; };
    ITEMIDLIST* pidl = list.GetChildOf(AsList(TextList({L"another"})));
    EXPECT_EQ(PIDL::GetNext(list), pidl);
    EXPECT_EQ(0, space.nFolders);
}

std::wstring PathOf(const std::vector<std::wstring>& names, unsigned cchOut = 1000) {
    Bytes bytes = TextList(names);
    GuardedBytes list(bytes);
    GuardedMemory text(cchOut * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(text.Get());
    std::memset(psz, 0x55, text.GetSize());
    int n = PIDL::GetDisplayPath(list.List(), psz, cchOut);
    std::wstring str(psz, std::wcslen(psz));
    EXPECT_EQ(str.empty() ? 0 : str[0], n);
    PIDL object(list.List());
    EXPECT_EQ(n, object.GetDisplayPath(psz, cchOut));
    EXPECT_EQ(str, psz);
    return str;
}

TEST(PidlDisplayPath, JoinsTheNamesInTheirFolders) {
    MadeNamespace space;
    EXPECT_EQ(L"a", PathOf({L"a"}));
    space.log.clear();
    EXPECT_EQ(L"a \u00BB b c \u00BB d", PathOf({L"a", L"b c", L"d"}));
    EXPECT_EQ(2, space.Count(L"name1 /a/b c/d"));
    EXPECT_EQ(0, space.Count(L"name0 /a"));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlDisplayPath, RecordsAttributesBeforeItGoesOn) {
    MadeNamespace space;
    wchar_t sz[100];
    PIDL::GetDisplayPath(AsList(TextList({L"a", L"b"})), sz, 100);
    auto it = std::find(space.log.begin(), space.log.end(), L"name1 /a");
    ASSERT_NE(space.log.end(), it);
    EXPECT_LE(1, space.Count(L"attributes /a"));
    auto bind = std::find(space.log.begin(), space.log.end(), L"bind /a");
    ASSERT_NE(space.log.end(), bind);
    EXPECT_TRUE(std::find(it, bind, L"attributes /a") != bind);
}

TEST(PidlDisplayPath, OfNullAndOfTheDesktop) {
    MadeNamespace space;
    wchar_t sz[100] = L"before";
    EXPECT_EQ(0, PIDL::GetDisplayPath(nullptr, sz, 100));
    EXPECT_STREQ(L"", sz);
    PIDL none;
    std::wcscpy(sz, L"before");
    EXPECT_EQ(0, none.GetDisplayPath(sz, 100));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(L"Desk", PathOf({}));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlDisplayPath, EveryKindOfName) {
    MadeNamespace space;
    space.nNameKind = STRRET_CSTR;
    EXPECT_EQ(L"a \u00BB bc", PathOf({L"a", L"bc"}));
    // The text that stands in the item, behind its count: here of single bytes.
    space.nNameKind = STRRET_OFFSET;
    space.nNameOffset = 2;
    Bytes list = ListBytes({{'o', 'n', 'e', 0}, {'t', 'w', 'o', 0}});
    GuardedBytes guarded(list);
    wchar_t sz[100];
    EXPECT_EQ('o', PIDL::GetDisplayPath(guarded.List(), sz, 100));
    EXPECT_STREQ(L"one \u00BB two", sz);
    space.nNameKind = 77; // an unknown one is no name, and is left out
    EXPECT_EQ(L"", PathOf({L"a", L"bc"}));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlDisplayPath, OffsetOutsideTheItemIsNoName) {
    MadeNamespace space;
    space.nNameKind = STRRET_OFFSET;
    Bytes list = ListBytes({{'o', 'n', 'e'}}); // and no end of the text
    GuardedBytes guarded(list);
    for (UINT nOffset : {2u, 4u, 5u, 6u, 100u, 70000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        space.nNameOffset = nOffset;
        wchar_t sz[300];
        PIDL::GetDisplayPath(guarded.List(), sz, 300);
        EXPECT_LE(std::wcslen(sz), 3u) << nOffset;
    }
}

TEST(PidlDisplayPath, TracesOfWipedFilesAreLeftOut) {
    MadeNamespace space;
    const std::wstring strWiped = L"\u5555\uAAAA\uAAAA\u5555";
    EXPECT_EQ(L"a \u00BB b", PathOf({L"a", strWiped, L"b"}));
    EXPECT_EQ(L"b", PathOf({strWiped, L"b"}));
    EXPECT_EQ(L"a", PathOf({L"a", strWiped}));
    EXPECT_EQ(L"", PathOf({strWiped}));
    EXPECT_EQ(L"a \u00BB \u5555b", PathOf({L"a", L"\u5555b"}));
    EXPECT_EQ(L"a \u00BB b", PathOf({L"a", L"", L"b"}));
}

TEST(PidlDisplayPath, FailureEndsItWithWhatStands) {
    MadeNamespace space;
    space.nameless = {L"x"};
    EXPECT_EQ(L"a", PathOf({L"a", L"x", L"b"}));
    EXPECT_EQ(L"", PathOf({L"x", L"b"}));
    space.bNoDesktop = true;
    EXPECT_EQ(L"", PathOf({L"a", L"b"}));
    EXPECT_EQ(L"", PathOf({}));
}

TEST(PidlDisplayPath, ItemThatIsNoFolderKeepsTheFolder) {
    MadeNamespace space;
    space.noFolders = {L"file"};
    EXPECT_EQ(L"a \u00BB file \u00BB b", PathOf({L"a", L"file", L"b"}));
    EXPECT_EQ(2, space.Count(L"name1 /a/b"));
}

TEST(PidlDisplayPath, IsCutToTheBuffer) {
    MadeNamespace space;
    const std::wstring strAll = L"abc \u00BB def";
    for (unsigned cch = 1; cch <= 11; ++cch) {
        EXPECT_EQ(strAll.substr(0, cch - 1), PathOf({L"abc", L"def"}, cch)) << cch;
    }
    PIDL list(AsList(TextList({L"abc"})));
    wchar_t sz[] = L"untouched";
    list.GetDisplayPath(sz, 0);
    list.GetDisplayFileName(sz, 0);
    PIDL::GetDisplayPath(nullptr, sz, 0);
    EXPECT_STREQ(L"untouched", sz);
}

TEST(PidlDisplayPath, NameHasAtMost260Characters) {
    MadeNamespace space;
    const std::wstring strLong(300, L'x');
    std::wstring str = PathOf({strLong, L"b"});
    ASSERT_GE(str.size(), 4u);
    EXPECT_EQ(L" \u00BB b", str.substr(str.size() - 4));
    EXPECT_GE(str.size() - 4, 259u);
    EXPECT_LE(str.size() - 4, 260u);
    std::vector<std::wstring> names(10, std::wstring(200, L'y'));
    EXPECT_EQ(10u * 200 + 9 * 3, PathOf(names, 3000).size());
    EXPECT_EQ(999u, PathOf(names, 1000).size());
}

std::wstring FileNameOf(const std::vector<std::wstring>& names, unsigned cchOut = 300) {
    Bytes bytes = TextList(names);
    GuardedBytes list(bytes);
    GuardedMemory text(cchOut * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(text.Get());
    std::memset(psz, 0x55, text.GetSize());
    int n = PIDL::GetDisplayFileName(list.List(), psz, cchOut);
    std::wstring str(psz, std::wcslen(psz));
    EXPECT_EQ(str.empty() ? 0 : str[0], n);
    PIDL object(list.List());
    EXPECT_EQ(n, object.GetDisplayFileName(psz, cchOut));
    EXPECT_EQ(str, psz);
    EXPECT_EQ(bytes, BytesAt(object, bytes.size())); // is as it was
    return str;
}

TEST(PidlDisplayFileName, IsTheLastItemsInItsFolder) {
    MadeNamespace space;
    EXPECT_EQ(L"a", FileNameOf({L"a"}));
    EXPECT_EQ(2, space.Count(L"name1 /a"));
    EXPECT_EQ(L"ccc", FileNameOf({L"a", L"b", L"ccc"}));
    EXPECT_EQ(2, space.Count(L"name1 /a/b/ccc"));
    EXPECT_EQ(L"cc", FileNameOf({L"a", L"b", L"ccc"}, 3));
    EXPECT_EQ(L"", FileNameOf({L"a", L"b", L"ccc"}, 1));
    EXPECT_EQ(0, space.nFolders);
}

TEST(PidlDisplayFileName, OfNullAndOfTheDesktop) {
    MadeNamespace space;
    wchar_t sz[100] = L"before";
    EXPECT_EQ(0, PIDL::GetDisplayFileName(nullptr, sz, 100));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(L"Desk in folder", FileNameOf({}));
    EXPECT_EQ(2, space.Count(L"name1 /"));
    space.nameless = {L"x"};
    EXPECT_EQ(L"", FileNameOf({L"a", L"x"}));
    space.bNoDesktop = true;
    EXPECT_EQ(L"", FileNameOf({L"a"}));
    EXPECT_EQ(L"", FileNameOf({}));
    EXPECT_EQ(0, space.nFolders);
}

/// Answers for lists of text items: the names joined with backslashes, unless the first one says
/// that there is no path.
BOOL WINAPI PathOfTexts(const ITEMIDLIST* pidl, wchar_t* pszPath) {
    *pszPath = 0;
    std::wstring str;
    for (; pidl->mkid.cb; pidl = PIDL::GetNext(pidl)) {
        std::wstring strName = MadeNamespace::NameOf(pidl);
        if (strName == L"computer") continue;
        if (strName == L"nowhere") return FALSE;
        str += (str.empty() || str.back() == L'\\' ? L"" : L"\\") + strName;
    }
    if (str.empty()) return FALSE;
    std::wcscpy(pszPath, str.c_str());
    return TRUE;
}

Bytes RootOf(const std::vector<std::wstring>& names) {
    ReplaceImport replaced(__imp_SHGetPathFromIDListW, &PathOfTexts);
    PIDL list(AsList(TextList(names)));
    list.MakeRoot();
    return BytesAt(list, list.GetSizeTotal());
}

TEST(PidlMakeRoot, CutsToTheDrive) {
    EXPECT_EQ(TextList({L"computer", L"C:\\"}), RootOf({L"computer", L"C:\\", L"a", L"b"}));
    EXPECT_EQ(TextList({L"computer", L"C:\\"}), RootOf({L"computer", L"C:\\", L"a"}));
    EXPECT_EQ(TextList({L"computer", L"C:\\"}), RootOf({L"computer", L"C:\\"}));
}

TEST(PidlMakeRoot, CutsToTheServer) {
    EXPECT_EQ(TextList({L"computer", L"\\\\server"}),
              RootOf({L"computer", L"\\\\server", L"share", L"a"}));
    EXPECT_EQ(TextList({L"computer", L"\\\\server"}),
              RootOf({L"computer", L"\\\\server", L"share"}));
    EXPECT_EQ(TextList({L"computer", L"\\\\server"}), RootOf({L"computer", L"\\\\server"}));
}

TEST(PidlMakeRoot, WithoutAPathIsTheEmptyList) {
    EXPECT_EQ(kEmpty, RootOf({L"computer"}));
    EXPECT_EQ(kEmpty, RootOf({L"nowhere", L"C:\\"}));
    EXPECT_EQ(kEmpty, RootOf({L"computer", L"C:\\", L"a", L"nowhere"}));
    // Nothing on the way is a root.
    EXPECT_EQ(kEmpty, RootOf({L"computer", L"plain", L"a"}));
}

TEST(PidlMakeRoot, NothingStays) {
    ReplaceImport replaced(__imp_SHGetPathFromIDListW, &PathOfTexts);
    PIDL none, empty;
    none.MakeRoot();
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(none));
    empty.Reset();
    ITEMIDLIST* pidl = empty;
    empty.MakeRoot();
    EXPECT_EQ(pidl, static_cast<ITEMIDLIST*>(empty));
    EXPECT_EQ(kEmpty, BytesAt(empty, 2));
    PIDL::MakeRoot(nullptr);
}

int nAskedCsidl = -1;
HWND hwndAsked = nullptr;
std::vector<std::wstring> specialNames;
HRESULT WINAPI GiveSpecial(HWND hwnd, int nCsidl, LPITEMIDLIST* ppidl) {
    nAskedCsidl = nCsidl;
    hwndAsked = hwnd;
    *ppidl = nullptr;
    if (specialNames.empty()) return E_FAIL;
    Bytes bytes = TextList(specialNames);
    *ppidl = PIDL::Alloc(static_cast<DWORD>(bytes.size()));
    PIDL::Copy(*ppidl, AsList(bytes), static_cast<DWORD>(bytes.size()));
    return S_OK;
}

TEST(PidlSpecial, AttachAsksWithoutAnOwner) {
    ReplaceImport replaced(__imp_SHGetSpecialFolderLocation, &GiveSpecial);
    specialNames = {L"special"};
    hwndAsked = reinterpret_cast<HWND>(1);
    PIDL list;
    EXPECT_EQ(1, list.Attach(CSIDL_FONTS));
    EXPECT_EQ(CSIDL_FONTS, nAskedCsidl);
    EXPECT_EQ(nullptr, hwndAsked);
    EXPECT_EQ(TextList({L"special"}), BytesAt(list, list.GetSizeTotal()));
    PIDL::Free(list);
    specialNames.clear();
    EXPECT_EQ(0, list.Attach(CSIDL_FONTS));
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
}

TEST(PidlSpecial, FoldersAreToldByComparison) {
    MadeNamespace space;
    ReplaceImport replaced(__imp_SHGetSpecialFolderLocation, &GiveSpecial);
    specialNames = {L"Inter", L"Net"};
    PIDL list(AsList(TextList({L"inter", L"net"}))), other(AsList(TextList({L"inter"})));
    EXPECT_EQ(1, list.IsIE(nullptr));
    EXPECT_EQ(1, nAskedCsidl);
    EXPECT_EQ(0, other.IsIE(nullptr));
    EXPECT_EQ(1, list.IsSpecialFolder(nullptr, CSIDL_RECENT));
    EXPECT_EQ(CSIDL_RECENT, nAskedCsidl);
    EXPECT_EQ(0, other.IsSpecialFolder(nullptr, CSIDL_RECENT));
    specialNames.clear();
    EXPECT_EQ(0, list.IsSpecialFolder(nullptr, CSIDL_RECENT));
    PIDL none;
    EXPECT_EQ(0, none.IsSpecialFolder(nullptr, CSIDL_RECENT));
    EXPECT_EQ(0, none.IsIE(nullptr));
    EXPECT_EQ(0, space.nFolders);
}
} // namespace
