// What the platform hands out of a file's version may be anything, and it may have no functions for
// that.
#include "files/operations/file_version.h"
#include "files/version_module.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <string>

namespace {
constexpr unsigned __int64 kVersion = 0x0001000200030004;

class FileVersionPlatform : public testing::Test {
  protected:
    unsigned __int64 VersionOf(const std::string& strBytes, VS_FIXEDFILEINFO* pInfo = nullptr) {
        return GetFileVersion(folder.MakeFile(L"a.dll", strBytes).c_str(), pInfo);
    }
    TempFolder folder;
};

TEST_F(FileVersionPlatform, AFolderNamedLikeAModuleHasNone) {
    std::filesystem::create_directory(folder.File(L"user32.dll"));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"user32.dll").c_str(), nullptr));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"kernel32.dll").c_str(), nullptr))
        << "one that is loaded elsewhere";
}

unsigned cbTold;        // what GetFileVersionInfoSizeW says
unsigned cbValue;       // and VerQueryValueW
bool bReads, bHasValue; // the other two succeed
VS_FIXEDFILEINFO toldInfo;

DWORD WINAPI TellSize(LPCWSTR, LPDWORD pdw) {
    if (pdw) *pdw = 0;
    return cbTold;
}
BOOL WINAPI TellBlock(LPCWSTR, DWORD, DWORD cb, LPVOID p) {
    EXPECT_GE(cb, cbTold);
    std::memset(p, 0, cbTold);
    return bReads;
}
BOOL WINAPI TellValue(LPCVOID, LPCWSTR pszWhat, LPVOID* pp, PUINT pcb) {
    EXPECT_STREQ(L"\\", pszWhat);
    if (!bHasValue) return FALSE;
    *pp = &toldInfo;
    if (pcb) *pcb = cbValue;
    return TRUE;
}

class ToldFileVersion : public FileVersionPlatform {
  protected:
    ToldFileVersion() {
        functions.Set("GetFileVersionInfoSizeW", &TellSize);
        functions.Set("GetFileVersionInfoW", &TellBlock);
        functions.Set("VerQueryValueW", &TellValue);
        cbTold = 200;
        cbValue = sizeof(toldInfo);
        bReads = bHasValue = true;
        toldInfo = InfoOfVersion(kVersion);
    }
    ReplaceFunctions functions;
};

TEST_F(ToldFileVersion, AnyStepMayFail) {
    EXPECT_EQ(kVersion, VersionOf("a"));
    cbTold = 0;
    EXPECT_EQ(0u, VersionOf("a"));
    cbTold = 200;
    bReads = false;
    EXPECT_EQ(0u, VersionOf("a"));
    bReads = true;
    bHasValue = false;
    EXPECT_EQ(0u, VersionOf("a"));
    bHasValue = true;
    toldInfo.dwSignature = 0;
    EXPECT_EQ(0u, VersionOf("a"));
}

TEST_F(ToldFileVersion, AValueThatIsTooShortIsNone) {
    for (unsigned cb : {0u, 4u, static_cast<unsigned>(sizeof(toldInfo)) - 1}) {
        cbValue = cb;
        EXPECT_EQ(0u, VersionOf("a")) << cb;
    }
}

TEST_F(ToldFileVersion, AFolderIsNotAsked) {
    EXPECT_EQ(0u, GetFileVersion(folder.Get().c_str(), nullptr));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"missing").c_str(), nullptr));
}

TEST_F(FileVersionPlatform, WithoutThePlatformsFunctionsThereIsNone) {
    HideFunctions hidden{"GetFileVersionInfoSizeW", "GetFileVersionInfoW", "VerQueryValueW"};
    EXPECT_EQ(0u, VersionOf(ModuleOfVersion(kVersion)));
}

} // namespace
