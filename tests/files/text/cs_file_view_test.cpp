// CSFile as an object: its views, closing, sizes.
#include "files/disk/uni_path.h"
#include "files/text/cs_file.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <string>

extern "C" FARPROC __imp_UnmapViewOfFile, __imp_CloseHandle, __imp_MapViewOfFile,
    __imp_CreateFileMappingW;

namespace {
std::string Numbered(std::size_t cb) {
    std::string bytes(cb, '\0');
    for (std::size_t i = 0; i < cb; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

std::string strClosed; // V a view, H a handle
using UnmapFunc = BOOL WINAPI(LPCVOID);
using CloseFunc = BOOL WINAPI(HANDLE);
UnmapFunc* pfnUnmap;
CloseFunc* pfnClose;
BOOL WINAPI NoteUnmap(LPCVOID p) {
    strClosed += 'V';
    return pfnUnmap(p);
}
BOOL WINAPI NoteClose(HANDLE h) {
    strClosed += 'H';
    return pfnClose(h);
}

/// Notes what is closed for the length of a block.
class NoteClosing {
  public:
    NoteClosing() {
        pfnUnmap = unmap.Original<UnmapFunc>();
        pfnClose = close.Original<CloseFunc>();
        strClosed.clear();
    }

  private:
    ReplaceImport unmap{__imp_UnmapViewOfFile, &NoteUnmap}, close{__imp_CloseHandle, &NoteClose};
};

struct Mapped {
    DWORD nProtect, nSizeHigh, nSizeLow, nAccess, nOffsetHigh, nOffsetLow;
    SIZE_T cb;
} mapped; // what the first mapping was
int nMapped;
using CreateFunc = HANDLE WINAPI(HANDLE, LPSECURITY_ATTRIBUTES, DWORD, DWORD, DWORD, LPCWSTR);
using MapFunc = LPVOID WINAPI(HANDLE, DWORD, DWORD, DWORD, SIZE_T);
CreateFunc* pfnCreate;
MapFunc* pfnMap;
HANDLE WINAPI NoteCreate(HANDLE h, LPSECURITY_ATTRIBUTES p, DWORD nProtect, DWORD nHigh, DWORD nLow,
                         LPCWSTR psz) {
    if (!nMapped++) mapped = {nProtect, nHigh, nLow, 0, 0, 0, 0};
    return pfnCreate(h, p, nProtect, nHigh, nLow, psz);
}
LPVOID WINAPI NoteMap(HANDLE h, DWORD nAccess, DWORD nHigh, DWORD nLow, SIZE_T cb) {
    if (nMapped == 1) {
        mapped.nAccess = nAccess;
        mapped.nOffsetHigh = nHigh;
        mapped.nOffsetLow = nLow;
        mapped.cb = cb;
    }
    return pfnMap(h, nAccess, nHigh, nLow, cb);
}
} // namespace

TEST(CSFileView, StartsAnywhere) {
    TempFolder folder;
    const std::string bytes = Numbered(200000);
    const std::wstring strPath = folder.MakeFile(L"a.bin", bytes);
    SYSTEM_INFO si{};
    ::GetSystemInfo(&si);
    const DWORD nUnit = si.dwAllocationGranularity;
    for (int bToWrite : {0, 1}) {
        CSFile file(strPath.c_str(), bToWrite);
        ASSERT_TRUE(file.IsReady());
        for (DWORD nOffset : {0ul, 1ul, 100ul, 4096ul, nUnit - 1, nUnit, nUnit + 1, 2 * nUnit + 77,
                              3 * nUnit, 199999ul}) {
            const auto* p = static_cast<const char*>(file.OpenMap(nOffset, 0, 0));
            ASSERT_NE(nullptr, p) << nOffset;
            EXPECT_EQ(0, std::memcmp(p, bytes.data() + nOffset, bytes.size() - nOffset));
            EXPECT_EQ(nOffset % nUnit, reinterpret_cast<std::size_t>(p) % nUnit);
            EXPECT_EQ(nUnit, CSFile::dwAllocationGranularity);
            file.CloseMap();
        }
    }
    EXPECT_EQ(bytes, folder.ReadFile(L"a.bin"));
}

TEST(CSFileView, HasTheSizeThatIsAskedFor) {
    TempFolder folder;
    const std::string bytes = Numbered(100000);
    CSFile file(folder.MakeFile(L"a.bin", bytes).c_str(), 0);
    for (DWORD cb : {1u, 4095u, 4096u, 65536u, 99999u, 100000u}) {
        const auto* p = static_cast<const char*>(file.OpenMap(0, cb, 0));
        ASSERT_NE(nullptr, p) << cb;
        EXPECT_EQ(0, std::memcmp(p, bytes.data(), cb));
        MEMORY_BASIC_INFORMATION info{};
        ASSERT_NE(0u, ::VirtualQuery(p, &info, sizeof(info)));
        EXPECT_EQ((cb + 4095) / 4096 * 4096, info.RegionSize);
        file.CloseMap();
    }
}

TEST(CSFileView, ShowsAPartOfTheFile) {
    TempFolder folder;
    const std::string bytes = Numbered(200000);
    const std::wstring strPath = folder.MakeFile(L"a.bin", bytes);
    for (int bToWrite : {0, 1}) {
        CSFile file(strPath.c_str(), bToWrite);
        for (DWORD nOffset : {1u, 4096u, 65535u, 65536u, 131077u}) {
            for (DWORD cb : {1u, 100u, 60000u}) {
                const auto* p = static_cast<const char*>(file.OpenMap(nOffset, cb, 0));
                ASSERT_NE(nullptr, p) << nOffset << " " << cb;
                EXPECT_EQ(0, std::memcmp(p, bytes.data() + nOffset, cb));
            } // the view that was open is closed first
        }
    }
    EXPECT_EQ(bytes, folder.ReadFile(L"a.bin")); // as large as it was
}

TEST(CSFileView, AsksThePlatformAsTold) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", Numbered(300000));
    ReplaceImport create(__imp_CreateFileMappingW, &NoteCreate), map(__imp_MapViewOfFile, &NoteMap);
    pfnCreate = create.Original<CreateFunc>();
    pfnMap = map.Original<MapFunc>();
    CSFile file(strPath.c_str(), 0);
    nMapped = 0;
    static_cast<void>(file.OpenMap(65536 + 5, 100, 0));
    EXPECT_EQ(static_cast<DWORD>(PAGE_READONLY), mapped.nProtect);
    EXPECT_EQ(static_cast<DWORD>(FILE_MAP_READ), mapped.nAccess);
    EXPECT_EQ(0u, mapped.nSizeHigh);
    EXPECT_EQ(100u, mapped.nSizeLow);
    EXPECT_EQ(0u, mapped.nOffsetHigh);
    EXPECT_EQ(65536u, mapped.nOffsetLow);
    EXPECT_EQ(105u, mapped.cb);
    file.Close();
    CSFile writer(strPath.c_str(), 1);
    nMapped = 0;
    static_cast<void>(writer.OpenMap(5, 0, 0));
    EXPECT_EQ(static_cast<DWORD>(PAGE_READWRITE), mapped.nProtect);
    EXPECT_EQ(static_cast<DWORD>(FILE_MAP_ALL_ACCESS), mapped.nAccess);
    EXPECT_EQ(0u, mapped.nOffsetLow);
    EXPECT_EQ(0u, mapped.cb); // the whole file
    writer.Close();
    CSFile sized(strPath.c_str(), 0);
    nMapped = 0;
    EXPECT_EQ(nullptr, sized.OpenMap(0, 0, 1)); // more than the file has
    EXPECT_EQ(1u, mapped.nSizeHigh);
    EXPECT_EQ(0u, mapped.nSizeLow);
}

TEST(CSFileView, OfAFileForWritingIsWritten) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", std::string(70000, 'a'));
    CSFile file(strPath.c_str(), 1);
    auto* p = static_cast<char*>(file.OpenMap(65537, 0, 0));
    ASSERT_NE(nullptr, p);
    std::memcpy(p, "xyz", 3);
    file.Close();
    EXPECT_EQ(std::string(65537, 'a') + "xyz" + std::string(70000 - 65540, 'a'),
              folder.ReadFile(L"a.bin"));
}

TEST(CSFileView, GrowsAFileForWriting) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    CSFile file(strPath.c_str(), 1);
    auto* p = static_cast<char*>(file.OpenMap(0, 5000, 0));
    ASSERT_NE(nullptr, p);
    p[4999] = 'z';
    file.Close();
    EXPECT_EQ("abc" + std::string(4996, '\0') + "z", folder.ReadFile(L"a.bin"));
}

TEST(CSFileView, ThatCannotBeGivesNullAndLeavesNoMapping) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    CSFile file(strPath.c_str(), 0);
    EXPECT_EQ(nullptr, file.OpenMap(0, 4, 0));       // longer than the file
    EXPECT_EQ(nullptr, file.OpenMap(0x10000, 0, 0)); // behind its end
    NoteClosing closing;
    EXPECT_EQ(nullptr, file.OpenMap(0x10000, 0, 0));
    EXPECT_EQ("H", strClosed); // the mapping
    file.CloseMap();
    EXPECT_EQ("H", strClosed); // nothing is open
    const void* p = file.OpenMap(1, 0, 0);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(0, std::memcmp(p, "bc", 2));
    file.Close();
    EXPECT_EQ(nullptr, file.OpenMap(0, 0, 0));
    CSFile none, empty(folder.MakeFile(L"empty", "").c_str(), 0);
    EXPECT_EQ(nullptr, none.OpenMap(0, 0, 0));
    EXPECT_EQ(nullptr, empty.OpenMap(0, 0, 0));
    none.CloseMap();
    none.Close();
}

TEST(CSFileView, IsClosedBeforeItsMappingAndTheFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    CSFile file(strPath.c_str(), 1);
    ASSERT_NE(nullptr, file.OpenMap(0, 0, 0));
    NoteClosing closing;
    file.Close();
    EXPECT_EQ("VHH", strClosed);
    EXPECT_FALSE(file.IsReady());
    file.Close();
    EXPECT_EQ("VHH", strClosed);
    EXPECT_TRUE(::DeleteFileW(strPath.c_str())); // nobody has it open
}

TEST(CSFileView, CloseMapLeavesTheFileOpen) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    CSFile file(strPath.c_str(), 1);
    ASSERT_NE(nullptr, file.OpenMap(0, 0, 0));
    {
        NoteClosing closing;
        file.CloseMap();
        EXPECT_EQ("VH", strClosed);
    }
    EXPECT_TRUE(file.IsReady());
    file.MoveTo64(1, FILE_BEGIN);
    EXPECT_EQ(1, file.SetEndOfFile()); // refused while there is a view
    file.Close();
    EXPECT_EQ("a", folder.ReadFile(L"a.bin"));
}

TEST(CSFileView, TheDestructorClosesTheFileAlone) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    NoteClosing closing;
    { CSFile file(strPath.c_str(), 0); }
    EXPECT_EQ("H", strClosed);
}

TEST(CSFileObject, OpensLikeACoreFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    CSFile file(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_TRUE(file.IsReady());
    EXPECT_FALSE(file.IsToWrite());
    EXPECT_EQ(3u, file.GetSize64());
    CoreFile& base = file;
    EXPECT_EQ(3u, base.GetSize64());
    CSFile missing(folder.File(L"missing").c_str(), 0);
    EXPECT_FALSE(missing.IsReady());
    EXPECT_EQ(static_cast<long>(0x80070002), CSFile::GetLastHRESULT());
    EXPECT_EQ(0u, missing.GetSize64());
    CSFile made(folder.File(L"made").c_str(), 1);
    EXPECT_TRUE(made.IsReady() && made.IsToWrite());
    EXPECT_EQ(0, CSFile::GetLastHRESULT());
}

TEST(CSFileObject, SizeIsThatOfTheWholeFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    UniPath path(strPath.c_str()), none;
    EXPECT_EQ(3u, CSFile::GetSize64(&path));
    EXPECT_EQ(0u, CSFile::GetSize64(&none));
    EXPECT_EQ(0u, CSFile::GetSize64(static_cast<const UniPath*>(nullptr)));
    CSFile file(strPath.c_str(), 1);
    file.MoveTo64((5ll << 32) + 7, FILE_BEGIN);
    ASSERT_EQ(1, file.SetEndOfFile());
    EXPECT_EQ((5ull << 32) + 7, file.GetSize64());
    EXPECT_EQ((5ull << 32) + 7, CSFile::GetSize64(&path));
    EXPECT_EQ((5ull << 32) + 7, CSFile::GetSize64(strPath.c_str()));
}

TEST(CSFileObject, SizeOfAnotherKindOfPathIsZero) {
    struct OtherPath : UniPath {
        explicit OtherPath(const wchar_t* psz) : UniPath(psz) { nKind = 1; }
    };
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "abc");
    OtherPath path(strPath.c_str());
    EXPECT_EQ(0u, CSFile::GetSize64(&path));
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(&path));
    EXPECT_EQ(nullptr, CSFile::ReadText(&path, nullptr, nullptr, L'?'));
}
