#include "store/reg_tree.h"
#include "runtime/system/elevation.h"
#include "store/registry/reg_key.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_DeleteFileW;
extern "C" FARPROC __imp_RegSaveKeyW;
extern "C" FARPROC __imp_SetFileAttributesW;

namespace {
class RegKeyHive : public testing::Test {
  protected:
    RegTree raw{HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyHiveTest"};
    RegKey key{L"HKCU\\Software\\Orvanta\\TessalyHiveTest", 1};
    TempFolder folder;
    std::wstring strFile = folder.File(L"hive");

    void SetUp() override {
        if (!EnablePrivilege(SE_BACKUP_NAME, 1) || !EnablePrivilege(SE_RESTORE_NAME, 1))
            GTEST_SKIP() << "this user may not back the registry up";
        raw.PutStr(L"v", L"text");
        raw.PutStr(L"", L"default", L"sub");
        raw.Put(L"b", REG_BINARY, {1, 2, 3}, L"sub\\deep");
    }
    void TearDown() override {
        ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
        EnablePrivilege(SE_BACKUP_NAME, 0);
        EnablePrivilege(SE_RESTORE_NAME, 0);
        RegKey::lError = 0;
    }
    DWORD Attributes() const { return ::GetFileAttributesW(strFile.c_str()); }
};

TEST_F(RegKeyHive, KeyIsSavedLoadedAndUnloaded) {
    EXPECT_EQ(1, key.Save(strFile.c_str()));
    EXPECT_EQ(0, RegKey::lError);
    EXPECT_EQ(static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE), Attributes());
    ASSERT_EQ(1, RegKey::LoadKey(HKEY_USERS, L"TessalyHive", strFile.c_str()));
    EXPECT_EQ(raw.Dump(), RegTree::DumpOf(HKEY_USERS, L"TessalyHive"));
    EXPECT_EQ(1, RegKey::UnLoadKey(HKEY_USERS, L"TessalyHive"));
    EXPECT_FALSE(RegTree::Exists(HKEY_USERS, L"TessalyHive"));
}

TEST_F(RegKeyHive, FileThatIsThereIsReplacedAndGivesItsAttributes) {
    for (DWORD dw : {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE,
                     FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_HIDDEN}) {
        folder.MakeFile(L"hive", "no hive");
        ASSERT_TRUE(::SetFileAttributesW(strFile.c_str(), dw));
        DWORD dwBefore = Attributes();
        EXPECT_EQ(1, key.Save(strFile.c_str()));
        EXPECT_EQ(dwBefore, Attributes());
        ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
        EXPECT_EQ(std::string::npos, folder.ReadFile(L"hive").find("no hive"));
        ASSERT_EQ(1, RegKey::LoadKey(HKEY_USERS, L"TessalyHive", strFile.c_str()));
        EXPECT_EQ(1, RegKey::UnLoadKey(HKEY_USERS, L"TessalyHive"));
        ::DeleteFileW(strFile.c_str());
    }
}

// Only the look at these tells a file that is replaced from one that is written over.
ReplaceImport* pReplacedDelete = nullptr;
std::vector<std::pair<std::wstring, DWORD>> deleted; // files, and what attributes they had
BOOL WINAPI NoteDelete(LPCWSTR pszFile) {
    deleted.push_back({pszFile, ::GetFileAttributesW(pszFile)});
    return pReplacedDelete->Original<decltype(NoteDelete)>()(pszFile);
}

TEST_F(RegKeyHive, OldFileIsMadePlainAndDeletedFirst) {
    folder.MakeFile(L"hive", "no hive");
    ASSERT_TRUE(::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_READONLY));
    {
        ReplaceImport replaced(__imp_DeleteFileW, &NoteDelete);
        pReplacedDelete = &replaced;
        deleted.clear();
        EXPECT_EQ(1, key.Save(strFile.c_str()));
        ASSERT_EQ(1u, deleted.size());
        EXPECT_EQ(strFile, deleted[0].first);
        EXPECT_EQ(0u, deleted[0].second & FILE_ATTRIBUTE_READONLY);
        deleted.clear();
        EXPECT_EQ(1, key.Save(folder.File(L"new").c_str()));
        EXPECT_TRUE(deleted.empty());
    }
    EXPECT_TRUE(Attributes() & FILE_ATTRIBUTE_READONLY);
}

ReplaceImport* pReplacedAttributes = nullptr;
std::vector<DWORD> attributesSet;
BOOL WINAPI NoteAttributes(LPCWSTR pszFile, DWORD dwAttributes) {
    attributesSet.push_back(dwAttributes);
    return pReplacedAttributes->Original<decltype(NoteAttributes)>()(pszFile, dwAttributes);
}

TEST_F(RegKeyHive, NewFileIsMarkedForTheArchive) {
    ReplaceImport replaced(__imp_SetFileAttributesW, &NoteAttributes);
    pReplacedAttributes = &replaced;
    attributesSet.clear();
    EXPECT_EQ(1, key.Save(strFile.c_str()));
    EXPECT_EQ((std::vector<DWORD>{32}), attributesSet);
}

TEST_F(RegKeyHive, FileInUseStaysAsItIs) {
    folder.MakeFile(L"hive", "no hive");
    ASSERT_TRUE(::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_HIDDEN));
    DWORD dwBefore = Attributes();
    HANDLE hFile = ::CreateFileW(strFile.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                 OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, hFile);
    EXPECT_EQ(0, key.Save(strFile.c_str()));
    EXPECT_NE(0, RegKey::lError);
    EXPECT_EQ(dwBefore, Attributes());
    ::CloseHandle(hFile);
    EXPECT_EQ("no hive", folder.ReadFile(L"hive"));
}

LSTATUS WINAPI NoteSecurity(HKEY, LPCWSTR, SECURITY_ATTRIBUTES* pSecurity) {
    return pSecurity ? static_cast<LSTATUS>(pSecurity->nLength) : ERROR_SUCCESS;
}

TEST_F(RegKeyHive, SecurityAndStatusGoAlong) {
    ReplaceImport replaced(__imp_RegSaveKeyW, &NoteSecurity);
    SECURITY_ATTRIBUTES security{12345, nullptr, FALSE};
    EXPECT_EQ(0, RegKey::SaveKey(key.GetHandle(), strFile.c_str(), &security));
    EXPECT_EQ(12345, RegKey::lError);
    EXPECT_EQ(1, key.Save(strFile.c_str())); // without
    EXPECT_EQ(0, RegKey::lError);
}

TEST_F(RegKeyHive, PlainAttributesStayPlain) {
    folder.MakeFile(L"hive", "no hive");
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
    DWORD dwBefore = Attributes();
    EXPECT_EQ(1, key.Save(strFile.c_str()));
    EXPECT_EQ(dwBefore, Attributes());
}

TEST_F(RegKeyHive, FailureKeepsThePlatformsStatus) {
    EXPECT_EQ(0, RegKey().Save(strFile.c_str()));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegKey::lError);
    EXPECT_EQ(0, key.Save(folder.File(L"none\\hive").c_str()));
    EXPECT_NE(0, RegKey::lError);
    EXPECT_EQ(1, key.Save(strFile.c_str()));
    EXPECT_EQ(0, RegKey::lError);
}

TEST_F(RegKeyHive, NoFileNameGivesZero) {
    EXPECT_EQ(0, key.Save(nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegKey::lError);
    EXPECT_EQ(0, key.Save(L""));
    EXPECT_EQ(0, RegKey::LoadKey(HKEY_USERS, L"TessalyHive", folder.File(L"none").c_str()));
}

TEST_F(RegKeyHive, FolderInTheWayStays) {
    ASSERT_TRUE(::CreateDirectoryW(strFile.c_str(), nullptr));
    DWORD dwBefore = Attributes();
    EXPECT_EQ(0, key.Save(strFile.c_str()));
    EXPECT_NE(0, RegKey::lError);
    EXPECT_EQ(dwBefore, Attributes());
}

TEST_F(RegKeyHive, MissingKeyIsNotUnloaded) {
    EXPECT_EQ(0, RegKey::UnLoadKey(HKEY_USERS, L"TessalyNoHive"));
}

TEST(RegKeyHiveRights, SavingNeedsThePrivilege) {
    RegTree raw(HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyHiveTest");
    RegKey key(L"HKCU\\Software\\Orvanta\\TessalyHiveTest", 1);
    TempFolder folder;
    EnablePrivilege(SE_BACKUP_NAME, 0);
    if (key.Save(folder.File(L"hive").c_str()))
        GTEST_SKIP() << "this platform saves a key without SE_BACKUP_NAME";
    EXPECT_EQ(ERROR_PRIVILEGE_NOT_HELD, RegKey::lError);
    RegKey::lError = 0;
}
} // namespace
