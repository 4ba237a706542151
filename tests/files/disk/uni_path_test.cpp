#include "files/disk/uni_path.h"
#include "files/read_only.h"
#include "files/shell_ear.h"
#include "files/stream/core_io.h"
#include "support/heap_count.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <type_traits>

static_assert(std::is_polymorphic_v<UniPath>);
static_assert(sizeof(UniPath) == 3 * sizeof(void*));

namespace {
const wchar_t* kNull = nullptr;

/// An object of a kind that this system does not make.
class OtherKind : public UniPath {
  public:
    OtherKind() { nKind = 1; }
    static constexpr auto kText = &OtherKind::pszText;
    static constexpr auto kKind = &OtherKind::nKind;
};

class UniPathTest : public testing::Test {
  protected:
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"A File.txt", "abc");
};

// The text

TEST(UniPath, NewObjectHasNoText) {
    UniPath path;
    EXPECT_EQ(nullptr, path.Path());
    path.Free();
    EXPECT_EQ(nullptr, path.Path());
}

TEST(UniPath, OpensACopyOfAText) {
    std::wstring str = L"C:\\a";
    UniPath path(str.c_str());
    str = L"xxxx";
    EXPECT_STREQ(L"C:\\a", path.Path());
    EXPECT_EQ(1, path.Open(L"D:\\b"));
    EXPECT_STREQ(L"D:\\b", path.Path());
    EXPECT_EQ(1, path.Open(L""));
    EXPECT_STREQ(L"", path.Path());
    path.Free();
    EXPECT_EQ(nullptr, path.Path());
}

TEST(UniPath, OpenOfNullHoldsNoText) {
    UniPath path(L"C:\\a");
    EXPECT_EQ(0, path.Open(kNull));
    EXPECT_EQ(nullptr, path.Path());
    EXPECT_EQ(nullptr, UniPath(kNull).Path());
    EXPECT_EQ(nullptr, UniPath(static_cast<UniPath*>(nullptr)).Path());
}

TEST(UniPath, OpenTakesAPartOfItsOwnText) {
    UniPath path(L"C:\\a\\b");
    EXPECT_EQ(1, path.Open(path.Path() + 5));
    EXPECT_STREQ(L"b", path.Path());
    EXPECT_EQ(1, path.Open(&path));
    EXPECT_STREQ(L"b", path.Path());
}

TEST(UniPath, TextIsCutAt259Characters) {
    for (std::size_t cch : {259u, 260u, 261u, 1000u}) {
        UniPath path(std::wstring(cch, L'x').c_str());
        EXPECT_EQ(std::wstring(259, L'x'), path.Path());
    }
}

TEST(UniPath, HasRoomForAWholePath) {
    UniPath path(L"a");
    std::wmemset(path.Path(), L'x', 259);
    path.Path()[259] = 0;
    EXPECT_EQ(259u, std::wcslen(path.Path()));
}

TEST(UniPath, CopyOfAPointerHasATextOfItsOwn) {
    UniPath first(L"C:\\a");
    UniPath second(&first), third;
    EXPECT_EQ(1, third.Open(&first));
    first.Path()[0] = L'X';
    EXPECT_STREQ(L"C:\\a", second.Path());
    EXPECT_STREQ(L"C:\\a", third.Path());
    UniPath empty;
    EXPECT_EQ(0, third.Open(&empty));
    EXPECT_EQ(nullptr, third.Path());
}

TEST(UniPath, CopyOfAnObjectSharesTheText) {
    UniPath first(L"C:\\a");
    UniPath second(first), third;
    third = first;
    EXPECT_EQ(first.Path(), second.Path());
    EXPECT_EQ(first.Path(), third.Path());
    second.Init(); // only one may free it
    third.Init();
    EXPECT_EQ(nullptr, second.Path());
    EXPECT_STREQ(L"C:\\a", first.Path());
}

TEST(UniPath, GivesBackTheTextThatItHolds) {
    long nBefore = CountLiveBlocks();
    {
        UniPath path(L"C:\\a"), other(&path);
        EXPECT_EQ(nBefore + 2, CountLiveBlocks());
        EXPECT_EQ(1, path.Open(L"C:\\b"));
        EXPECT_EQ(1, path.Open(&other));
        EXPECT_EQ(nBefore + 2, CountLiveBlocks());
        EXPECT_EQ(0, path.Open(kNull));
        EXPECT_EQ(nBefore + 1, CountLiveBlocks());
        other.Free();
        other.Free();
        EXPECT_EQ(nBefore, CountLiveBlocks());
        EXPECT_EQ(1, path.Open(L"C:\\c"));
    }
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(UniPath, GivesItsNameAndItself) {
    UniPath path(L"C:\\folder\\file.txt");
    wchar_t sz[32];
    EXPECT_EQ(1, path.GetFileName(sz, 32));
    EXPECT_STREQ(L"file.txt", sz);
    EXPECT_EQ(1, path.GetDisplayPath(sz, 32));
    EXPECT_STREQ(L"C:\\folder\\file.txt", sz);
    EXPECT_EQ(1, path.GetFileName(sz, 5));
    EXPECT_STREQ(L"file", sz);
    EXPECT_EQ(1, path.GetDisplayPath(sz, 1));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(1, path.Open(L"C:\\folder\\"));
    EXPECT_EQ(1, path.GetFileName(sz, 32));
    EXPECT_STREQ(L"", sz);
}

TEST(UniPath, ParentFolder) {
    UniPath path(L"C:\\a\\b");
    EXPECT_EQ(1, path.MakeParentFolder());
    EXPECT_STREQ(L"C:\\a", path.Path());
    EXPECT_EQ(1, path.MakeParentFolder());
    EXPECT_STREQ(L"C:\\", path.Path());
}

TEST(UniPath, SameTextsButForCase) {
    UniPath path(L"C:\\a\\\u00E4");
    auto same = [&](const wchar_t* psz) {
        UniPath other(psz);
        int n = path.IsSameAs(&other);
        EXPECT_EQ(n, other.IsSameAs(&path));
        return n;
    };
    EXPECT_EQ(1, same(L"c:\\A\\\u00C4"));
    EXPECT_EQ(0, same(L"c:\\A\\\u00C4\\"));
    EXPECT_EQ(0, same(L"c:/a/\u00E4"));
    EXPECT_EQ(0, same(L"C:\\a\\a"));
    EXPECT_EQ(0, same(L"C:\\a\\"));
    EXPECT_EQ(0, same(L""));
    EXPECT_EQ(0, same(kNull));
    EXPECT_EQ(0, path.IsSameAs(nullptr));
    EXPECT_EQ(1, path.IsSameAs(&path));
    UniPath empty1(L""), empty2(L"");
    EXPECT_EQ(1, empty1.IsSameAs(&empty2));
}

// The file

TEST_F(UniPathTest, AsksTheFileSystem) {
    UniPath file(strFile.c_str()), dir(folder.Get().c_str());
    UniPath missing(folder.File(L"missing").c_str());
    EXPECT_EQ(1, file.FileExists());
    EXPECT_EQ(0, file.IsContainer());
    EXPECT_EQ(0, dir.FileExists());
    EXPECT_EQ(1, dir.IsContainer());
    EXPECT_EQ(0, missing.FileExists());
    EXPECT_EQ(0, missing.IsContainer());
    EXPECT_EQ(0, missing.IsReadOnly());
    EXPECT_EQ(0, missing.IsFileInUse());
}

TEST_F(UniPathTest, ReadOnlyIsTheAttribute) {
    UniPath file(strFile.c_str());
    EXPECT_EQ(0, file.IsReadOnly());
    ReadOnlyFile readOnly(strFile);
    EXPECT_EQ(1, file.IsReadOnly());
}

TEST_F(UniPathTest, InUseWhileSomebodyHasItOpen) {
    UniPath file(strFile.c_str());
    EXPECT_EQ(0, file.IsFileInUse());
    HANDLE h = ::CreateFileW(strFile.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(1, file.IsFileInUse());
    ::CloseHandle(h);
    EXPECT_EQ(0, file.IsFileInUse());
}

TEST_F(UniPathTest, TellsTheShell) {
    ShellEar ear(folder.Get());
    UniPath file(strFile.c_str());
    file.SHChangeNotify(SHCNE_CREATE);
    EXPECT_EQ((std::vector<std::wstring>{L"create A File.txt"}), ear.Hear(1));
    UniPath().SHChangeNotify(SHCNE_CREATE);
}

// No text, and other kinds

void ExpectNothing(UniPath& path, UniPath& other) {
    wchar_t sz[8] = L"before";
    EXPECT_EQ(nullptr, path.Path());
    EXPECT_EQ(0, path.GetFileName(sz, 8));
    EXPECT_STREQ(L"", sz);
    std::wcscpy(sz, L"before");
    EXPECT_EQ(0, path.GetDisplayPath(sz, 8));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, path.IsContainer());
    EXPECT_EQ(0, path.FileExists());
    EXPECT_EQ(0, path.IsFileInUse());
    EXPECT_EQ(0, path.IsReadOnly());
    EXPECT_EQ(0, path.IsSameAs(&other));
    EXPECT_EQ(0, path.IsSameAs(&path));
    EXPECT_EQ(0, other.IsSameAs(&path));
    EXPECT_EQ(0, path.MakeParentFolder());
    path.SHChangeNotify(SHCNE_CREATE);
}

TEST_F(UniPathTest, WithoutATextNothingIsDone) {
    UniPath path, other(strFile.c_str());
    ExpectNothing(path, other);
}

TEST_F(UniPathTest, OtherKindsDoNothing) {
    OtherKind path;
    UniPath other(strFile.c_str());
    EXPECT_EQ(0, path.Open(L"C:\\a"));
    EXPECT_EQ(0, path.Open(&other));
    ExpectNothing(path, other);
    UniPath copy(&path);
    EXPECT_EQ(nullptr, copy.Path());
    // What stands in the pointer then is not touched.
    wchar_t sz[] = L"not mine";
    path.*OtherKind::kText = sz;
    path.Init();
    path.Free();
    EXPECT_EQ(sz, path.*OtherKind::kText);
    ExpectNothing(path, other);
}

// Streams

TEST_F(UniPathTest, StreamIsOpenedFromIt) {
    UniPath file(strFile.c_str());
    {
        CoreIO io(&file, 0);
        EXPECT_EQ(1, io.IsReady());
        EXPECT_EQ(0, io.IsToWrite());
        EXPECT_EQ(3u, io.GetSize64());
    }
    UniPath fresh(folder.File(L"new").c_str());
    {
        CoreIO io(&fresh, 1);
        EXPECT_EQ(1, io.IsReady());
        EXPECT_EQ(1, io.IsToWrite());
        EXPECT_EQ(1, io.Write(static_cast<unsigned char>('x')));
    }
    EXPECT_EQ("x", folder.ReadFile(L"new"));
}

TEST_F(UniPathTest, StreamOfAMissingFileIsNotReady) {
    UniPath missing(folder.File(L"missing").c_str()), none;
    for (UniPath* p : {&missing, &none, static_cast<UniPath*>(nullptr)}) {
        CoreIO io(p, 0);
        EXPECT_EQ(0, io.IsReady());
        EXPECT_EQ(0u, io.GetSize64());
    }
    CoreIO writer(&none, 1);
    EXPECT_EQ(0, writer.IsReady());
}
} // namespace
