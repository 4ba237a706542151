#include "files/disk/path_drive.h"
#include "files/fake_drives.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace {
const wchar_t* kNull = nullptr;

// The real drive that the tests run on

TEST(RealDrive, IsFixedAndThere) {
    EXPECT_EQ(1, DriveExists(L"C:\\any\\thing"));
    EXPECT_EQ(1, DriveExists(L"c"));
    EXPECT_EQ(::GetDriveTypeW(L"C:\\"), ::GetDriveTypeW(2));
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), ::GetDriveTypeW(2));
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), GetDriveTypeFromPath(L"c:\\x"));
}

TEST(RealDrive, FileSystemsNameIsThePlatforms) {
    wchar_t szExpected[64] = L"", sz[64] = L"";
    ASSERT_TRUE(
        ::GetVolumeInformationW(L"C:\\", nullptr, 0, nullptr, nullptr, nullptr, szExpected, 64));
    TempFolder folder;
    EXPECT_EQ(1, GetFileSysName(folder.Get().c_str(), sz, 64));
    EXPECT_STREQ(szExpected, sz);
    EXPECT_NE(L'\0', sz[0]);
}

TEST(RealDrive, LargestFileIsThatOfItsFileSystem) {
    EXPECT_EQ(0xFFFFFFF0000u, GetMaxFileSize(L"C:\\x")); // the platform here says NTFS
    EXPECT_EQ(0u, GetMaxFileSize(L"\\\\server\\share\\x"));
}

// Drives that a test gives

class DriveTest : public testing::Test {
  protected:
    DriveTest() {
        drives.types = {{L'A', DRIVE_REMOVABLE},
                        {L'C', DRIVE_FIXED},
                        {L'D', DRIVE_CDROM},
                        {L'E', DRIVE_UNKNOWN},
                        {L'Z', DRIVE_REMOTE}};
        drives.volumes = {{L"C:\\", FILE_PERSISTENT_ACLS | FILE_CASE_PRESERVED_NAMES},
                          {L"A:\\", FILE_CASE_PRESERVED_NAMES},
                          {L"\\\\server\\share\\", FILE_PERSISTENT_ACLS}};
    }
    FakeDrives drives;
};
using DriveType = DriveTest;
using DriveExistsTest = DriveTest;
using FileSysName = DriveTest;
using MaxFileSize = DriveTest;

TEST_F(DriveType, OfANumber) {
    EXPECT_EQ(static_cast<UINT>(DRIVE_REMOVABLE), ::GetDriveTypeW(0));
    EXPECT_EQ(static_cast<UINT>(DRIVE_NO_ROOT_DIR), ::GetDriveTypeW(1));
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), ::GetDriveTypeW(2));
    EXPECT_EQ(static_cast<UINT>(DRIVE_UNKNOWN), ::GetDriveTypeW(4));
    EXPECT_EQ(static_cast<UINT>(DRIVE_REMOTE), ::GetDriveTypeW(25));
}

TEST_F(DriveType, OfANumberThatIsNoDrive) {
    for (int n : {-1, 26, 32, INT_MAX, INT_MIN}) {
        EXPECT_EQ(static_cast<UINT>(DRIVE_NO_ROOT_DIR), ::GetDriveTypeW(n)) << n;
    }
}

TEST_F(DriveType, OfAPath) {
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), GetDriveTypeFromPath(L"C:\\x"));
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), GetDriveTypeFromPath(L"c:x"));
    EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), GetDriveTypeFromPath(L"c"));
    EXPECT_EQ(static_cast<UINT>(DRIVE_REMOTE), GetDriveTypeFromPath(L"z:/"));
    EXPECT_EQ(static_cast<UINT>(DRIVE_NO_ROOT_DIR), GetDriveTypeFromPath(L"B:\\"));
    for (const wchar_t* psz : {kNull, L"", L"\\\\C", L"1:\\", L"@:\\", L"[:\\", L"\u00C4:\\"}) {
        EXPECT_EQ(static_cast<UINT>(DRIVE_UNKNOWN), GetDriveTypeFromPath(psz));
    }
}

TEST_F(DriveExistsTest, UnlessUnknownOrWithoutARoot) {
    EXPECT_EQ(1, DriveExists(L"a:\\x"));
    EXPECT_EQ(1, DriveExists(L"Z"));
    EXPECT_EQ(0, DriveExists(L"B:\\"));
    EXPECT_EQ(0, DriveExists(L"E:\\"));
    for (const wchar_t* psz : {kNull, L"", L"\\C:", L"\u00E4:\\"}) EXPECT_EQ(0, DriveExists(psz));
}

TEST_F(FileSysName, IsThatOfTheRoot) {
    wchar_t sz[16] = L"before";
    EXPECT_EQ(1, GetFileSysName(L"C:\\a\\b", sz, 16));
    EXPECT_STREQ(L"NTFS", sz);
    EXPECT_EQ(1, GetFileSysName(L"\\\\server\\share\\x\\y", sz, 16));
    EXPECT_EQ(1, GetFileSysName(L"\\\\server\\share", sz, 16));
}

TEST_F(FileSysName, IsEmptyWithoutARootOrAVolume) {
    for (const wchar_t* psz : {kNull, L"", L"x", L"C:", L"\\x", L"D:\\", L"\\\\server"}) {
        wchar_t sz[16] = L"before";
        EXPECT_EQ(0, GetFileSysName(psz, sz, 16));
        EXPECT_STREQ(L"", sz);
    }
    drives.strFileSystem = L"";
    wchar_t sz[16] = L"before";
    EXPECT_EQ(0, GetFileSysName(L"C:\\", sz, 16));
    EXPECT_STREQ(L"", sz);
}

TEST_F(FileSysName, HasToFit) {
    wchar_t sz[5] = L"abcd";
    EXPECT_EQ(1, GetFileSysName(L"C:\\", sz, 5));
    EXPECT_STREQ(L"NTFS", sz);
    EXPECT_EQ(0, GetFileSysName(L"C:\\", sz, 4));
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    EXPECT_EQ(0, GetFileSysName(L"C:\\", sz, 0));
    EXPECT_EQ(L'x', sz[0]);
    EXPECT_EQ(0, GetFileSysName(L"C:\\", nullptr, 5));
}

TEST_F(MaxFileSize, DependsOnAccessRights) {
    EXPECT_EQ(17592185978880u, GetMaxFileSize(L"C:\\a"));
    EXPECT_EQ(17592185978880u, GetMaxFileSize(L"\\\\server\\share\\x"));
    EXPECT_EQ(4294967295u, GetMaxFileSize(L"A:\\"));
    for (const wchar_t* psz : {kNull, L"", L"a", L"D:\\x", L"\\x"}) {
        EXPECT_EQ(0u, GetMaxFileSize(psz));
    }
}
} // namespace
