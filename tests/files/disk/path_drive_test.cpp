#include "files/disk/path_drive.h"
#include "files/fake_drives.h"
#include "files/path_support.h"
#include "files/path_tables.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <bit>
#include <cwctype>

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

// Drives as numbers and masks

TEST(GetDriveMask, IsOneBit) {
    EXPECT_EQ(1u, GetDriveMask(-5));
    EXPECT_EQ(1u, GetDriveMask(0));
    EXPECT_EQ(2u, GetDriveMask(1));
    EXPECT_EQ(0x2000000u, GetDriveMask(25));
    EXPECT_EQ(0x80000000u, GetDriveMask(31));
    EXPECT_EQ(0u, GetDriveMask(32));
    EXPECT_EQ(0u, GetDriveMask(0x7FFFFFFF));
}

TEST(GetDriveFromMask, IsTheNumberOfTheNthBit) {
    EXPECT_EQ(1, GetDriveFromMask(0b1010, 0));
    EXPECT_EQ(3, GetDriveFromMask(0b1010, 1));
    EXPECT_EQ(-1, GetDriveFromMask(0b1010, 2));
    EXPECT_EQ(-1, GetDriveFromMask(0, 0));
    EXPECT_EQ(31, GetDriveFromMask(0xFFFFFFFF, 31));
    EXPECT_EQ(-1, GetDriveFromMask(0xFFFFFFFF, 32));
    EXPECT_EQ(-1, GetDriveFromMask(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(CountBits, CountsThoseThatAreSet) {
    EXPECT_EQ(0, CountBits(0));
    EXPECT_EQ(1, CountBits(0x80000000));
    EXPECT_EQ(2, CountBits(0b1010));
    EXPECT_EQ(32, CountBits(0xFFFFFFFF));
}

struct ListCase {
    const char* pszName;
    DWORD dwMask;
    const wchar_t* pszSeparator;
    int nCount;
    const wchar_t* pszList;
};
class GetDrivesListTest : public testing::TestWithParam<ListCase> {};
TEST_P(GetDrivesListTest, ListsTheLetters) {
    PathBuffer out(L"before");
    EXPECT_EQ(GetParam().nCount,
              GetDrivesList(GetParam().dwMask, out, MAX_PATH, GetParam().pszSeparator));
    EXPECT_STREQ(GetParam().pszList, out);
}
INSTANTIATE_TEST_SUITE_P(Masks, GetDrivesListTest,
                         testing::Values(ListCase{"None", 0, L", ", 0, L""},
                                         ListCase{"One", 1, L", ", 1, L"A:"},
                                         ListCase{"Three", 0b1101, L", ", 3, L"A:, C:, D:"},
                                         ListCase{"EmptySeparator", 0b1101, L"", 3, L"A:C:D:"},
                                         ListCase{"NullSeparator", 0b1101, nullptr, 3, L"A:C:D:"},
                                         ListCase{"Last", 0x2000000, L";", 1, L"Z:"},
                                         ListCase{"BitsBehindTheLast", 0xFC000001, L";", 1, L"A:"}),
                         kRowName);

TEST(GetDrivesList, UnknownMaskLeavesTheBufferAlone) {
    PathBuffer out(L"before");
    EXPECT_EQ(0, GetDrivesList(0xFFFFFFFF, out, MAX_PATH, L","));
    EXPECT_STREQ(L"before", out);
    EXPECT_EQ(26, GetDrivesList(0x03FFFFFF, out, MAX_PATH, L","));
    EXPECT_EQ(0, GetDrivesList(1, out, 0, L","));
    EXPECT_EQ(0, GetDrivesList(1, nullptr, 10, L","));
}

TEST(GetDrivesList, LeavesOutWhatDoesNotFitWhole) {
    for (unsigned cch = 1; cch < 12; ++cch) {
        PathBuffer out(L"", cch);
        int nExpected = cch < 3 ? 0 : cch < 7 ? 1 : cch < 11 ? 2 : 3;
        EXPECT_EQ(nExpected, GetDrivesList(0b111, out, cch, L", ")) << cch;
        EXPECT_EQ(std::wstring(L"A:, B:, C:").substr(0, nExpected ? nExpected * 4 - 2 : 0),
                  out.Str());
    }
}

TEST(GetDriveFromPath, TakesCapitals) {
    EXPECT_EQ(0, GetDriveFromPath(L"A:\\x"));
    EXPECT_EQ(2, GetDriveFromPath(L"C:\\x"));
    EXPECT_EQ(25, GetDriveFromPath(L"Z"));
    for (const wchar_t* psz : {L"", L"\\\\s", L"1:", L"@:", L"[:", L"\u00C4:"}) {
        EXPECT_EQ(-1, GetDriveFromPath(psz)) << psz;
    }
    EXPECT_EQ(-1, GetDriveFromPath(nullptr));
}

TEST(GetDriveFromPath, SmallLettersButAAreNone) {
    EXPECT_EQ(0, GetDriveFromPath(L"a:\\x"));
    for (wchar_t ch = L'b'; ch <= L'z'; ++ch) {
        EXPECT_EQ(-1, GetDriveFromPath(std::wstring{ch, L':'}.c_str()));
    }
}

TEST(GetSystemDrive, IsTheWindowsFoldersDrive) {
    wchar_t sz[MAX_PATH] = {};
    ASSERT_NE(0u, ::GetWindowsDirectoryW(sz, MAX_PATH));
    EXPECT_EQ(static_cast<int>(std::towupper(sz[0])) - L'A', GetSystemDrive());
}

TEST(DriveRandom, MasksAgainstASecondTellingOfTheRules) {
    std::mt19937 random(881);
    GuardedArea area(1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        DWORD dwMask = random();
        if (i % 2) dwMask &= random();
        ASSERT_EQ(std::popcount(static_cast<unsigned>(dwMask)), CountBits(dwMask));
        unsigned nIndex = random() % 34;
        DWORD dwRest = dwMask;
        for (unsigned n = 0; n < nIndex; ++n) dwRest &= dwRest - 1;
        ASSERT_EQ(dwRest ? std::countr_zero(static_cast<unsigned>(dwRest)) : -1,
                  GetDriveFromMask(dwMask, nIndex));
        auto cch = static_cast<unsigned>(1 + random() % 120);
        auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
        const wchar_t* pszSeparator = i % 3 ? L", " : L"";
        int nListed = GetDrivesList(dwMask, psz, cch, pszSeparator);
        std::wstring str;
        int nCount = 0;
        for (int n = 0; n < 26; ++n) {
            if (!(dwMask >> n & 1)) continue;
            std::wstring strMore = nCount ? pszSeparator : L"";
            strMore += {static_cast<wchar_t>(L'A' + n), L':'};
            if (str.size() + strMore.size() >= cch) break;
            str += strMore;
            ++nCount;
        }
        if (dwMask == 0xFFFFFFFF) continue;
        ASSERT_EQ(nCount, nListed);
        ASSERT_EQ(str, psz);
    }
}

// The network

std::wstring Universal(const wchar_t* pszPath, int bUpper = 0, int nExpected = 1) {
    PathBuffer out(L"before");
    EXPECT_EQ(nExpected, GetUniversalName(out, MAX_PATH, pszPath, bUpper));
    return out.Str();
}
std::wstring DosPath(const wchar_t* pszUnc, int nExpected = 1) {
    PathBuffer out(L"before");
    EXPECT_EQ(nExpected, DosPathFromUncPath(out, pszUnc));
    return out.Str();
}

// The test platform has no network

TEST(RealNetwork, NothingIsConnected) {
    EXPECT_EQ(0u, GetNetworkDrivesMask());
    EXPECT_EQ(L"", Universal(L"C:\\x", 0, 0));
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
    EXPECT_EQ(L"\\\\s\\x", Universal(L"\\\\s\\x"));
    EXPECT_EQ(L"", DosPath(L"\\\\server\\share", 0));
    PathBuffer out(L"before");
    EXPECT_EQ(0, GetNetworkDrivePath(2, out));
    EXPECT_EQ(L"", out.Str());
}

class PathNetTest : public testing::Test {
  protected:
    PathNetTest() {
        drives.types[L'C'] = DRIVE_FIXED;
        drives.connections.push_back({nullptr, L"\\\\other\\one"});
        drives.Connect(L"X:", L"\\\\Server\\Share");
        drives.Connect(L"Z:", L"\\\\Server\\Share\\Below");
    }
    ~PathNetTest() override { EXPECT_EQ(0, drives.nOpen); }
    FakeDrives drives;
};
using GetUniversalNameTest = PathNetTest;
using NetworkDrives = PathNetTest;
using DosPathFromUncPathTest = PathNetTest;

// GetUniversalName

TEST_F(GetUniversalNameTest, OfAPathOnAConnectedDrive) {
    EXPECT_EQ(L"\\\\Server\\Share\\a\\b", Universal(L"X:\\a\\b"));
    EXPECT_EQ(L"\\\\Server\\Share\\a", Universal(L"x:\\a"));
    EXPECT_EQ(L"\\\\Server\\Share", Universal(L"x:"));
    EXPECT_EQ(L"\\\\Server\\Share\\", Universal(L"X:\\"));
    EXPECT_EQ(L"\\\\Server\\Share/a", Universal(L"X:/a"));
    EXPECT_EQ(L"\\\\Server\\Sharea", Universal(L"X:a")); // what follows the ":", as it stands
    EXPECT_EQ(L"\\\\Server\\Share\\Below\\a", Universal(L"Z:\\a"));
    EXPECT_EQ((std::vector<DWORD>{RESOURCE_CONNECTED, RESOURCETYPE_DISK, 0, 0}),
              drives.openArguments);
}

TEST_F(GetUniversalNameTest, OfANetworkPathIsACopy) {
    drives.nOpenResult = ERROR_NO_NETWORK; // nobody asks
    EXPECT_EQ(L"\\\\any\\Thing\\x", Universal(L"\\\\any\\Thing\\x"));
    EXPECT_EQ(L"\\\\a", Universal(L"\\\\a"));
    EXPECT_EQ(L"\\\\ANY\\THING", Universal(L"\\\\any\\Thing", 1));
}

TEST_F(GetUniversalNameTest, UpperCaseIsForAllOfIt) {
    EXPECT_EQ(L"\\\\SERVER\\SHARE\\A\u00C4", Universal(L"x:\\a\u00E4", 1));
}

TEST_F(GetUniversalNameTest, OfOtherPathsIsEmpty) {
    for (const wchar_t* psz : {kNull, L"", L"x", L"X", L"X\\:", L"C:\\a", L"Y:\\a", L"1:\\a",
                               L"\\x", L"\\\\", L"//server/share", L"\u00C4:\\"}) {
        EXPECT_EQ(L"", Universal(psz, 0, 0));
        EXPECT_EQ(L"", Universal(psz, 1, 0));
    }
}

TEST_F(GetUniversalNameTest, FirstEntryOfTheLetterCountsWithoutCase) {
    drives.connections = {{L"y:", L"\\\\first\\one"}, {L"Y:", L"\\\\second\\one"}};
    EXPECT_EQ(L"\\\\first\\one\\a", Universal(L"Y:\\a"));
}

TEST_F(GetUniversalNameTest, ListIsReadWithRoomForAll) {
    std::wstring strLong = L"\\\\server\\" + std::wstring(200, L's');
    drives.connections.clear();
    for (int i = 0; i < 20; ++i) drives.connections.push_back({L"Q:", strLong.c_str()});
    drives.Connect(L"X:", L"\\\\last\\one");
    EXPECT_EQ(L"\\\\last\\one\\a", Universal(L"X:\\a"));
    ASSERT_EQ(2u, drives.sizes.size()); // too small once, then grown
    EXPECT_EQ(2400u, drives.sizes[0]);
    EXPECT_GT(drives.sizes[1], 8000u);
    EXPECT_EQ((std::vector<DWORD>{0xFFFFFFFF, 0xFFFFFFFF}), drives.counts);
}

TEST_F(GetUniversalNameTest, ListThatComesInPiecesIsReadToItsEnd) {
    drives.nPerPiece = 1;
    EXPECT_EQ(L"\\\\Server\\Share\\Below\\a", Universal(L"Z:\\a"));
    EXPECT_EQ(L"", Universal(L"Y:\\a", 0, 0));
}

TEST_F(GetUniversalNameTest, PlatformWithoutConnectionsGivesZero) {
    drives.devices[L'X'] = L"\\??\\UNC\\server\\share"; // not even the device is asked
    drives.nOpenResult = ERROR_NO_NETWORK;
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
}

TEST(GetUniversalNameFallback, SystemWithoutTheNetworkLibraryGivesZero) {
    FakeDrives drives(false);
    drives.Connect(L"X:", L"\\\\Server\\Share");
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
    EXPECT_EQ(L"\\\\s\\x", Universal(L"\\\\s\\x"));
}

TEST_F(GetUniversalNameTest, ListThatFailsOrNeverFitsCountsAsEmpty) {
    drives.nEnumResult = ERROR_ACCESS_DENIED;
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
    drives.nEnumResult = NO_ERROR;
    drives.bSaysMoreForEver = true;
    drives.sizes.clear();
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
    EXPECT_LT(drives.sizes.size(), 20u);
    drives.devices[L'X'] = L"\\??\\UNC\\server\\share"; // then the device is asked
    EXPECT_EQ(L"\\\\server\\share\\a", Universal(L"X:\\a"));
}

struct DeviceCase {
    const char* pszName;
    const wchar_t* pszDevice;
    const wchar_t* pszExpected; // for "Y:\a"; empty: the result is 0
};
class DeviceTest : public testing::TestWithParam<DeviceCase> {};

TEST_P(DeviceTest, TellsOfAConnectionThatTheListDoesNotShow) {
    FakeDrives drives;
    drives.devices[L'Y'] = GetParam().pszDevice;
    int nExpected = *GetParam().pszExpected != 0;
    EXPECT_EQ(GetParam().pszExpected, Universal(L"y:\\a", 0, nExpected));
}
INSTANTIATE_TEST_SUITE_P(
    Devices, DeviceTest,
    testing::Values(
        DeviceCase{"Unc", L"\\??\\UNC\\server\\share", L"\\\\server\\share\\a"},
        DeviceCase{"UncInOtherCase", L"\\??\\unc\\server\\share", L"\\\\server\\share\\a"},
        DeviceCase{"UncAlone", L"\\??\\UNC", L"\\\\a"},
        DeviceCase{"Redirector", L"\\Device\\LanmanRedirector\\;Y:0\\server\\share",
                   L"\\\\server\\share\\a"},
        DeviceCase{"RedirectorAlone", L";Y:0", L"\\\\a"},
        DeviceCase{"NoSemicolon", L"\\Device\\Y:0\\server\\share", L""},
        DeviceCase{"NothingBefore", L"Y:0\\server\\share", L""},
        DeviceCase{"OtherDigit", L"\\Device\\LanmanRedirector\\;Y:1\\server\\share", L""},
        DeviceCase{"OtherDrive", L"\\Device\\LanmanRedirector\\;X:0\\server\\share", L""},
        DeviceCase{"OnlyTheFirst", L"\\Device\\Y:\\;Y:0\\server\\share", L""},
        DeviceCase{"Disk", L"\\Device\\HarddiskVolume1", L""},
        DeviceCase{"Substituted", L"\\??\\C:\\folder", L""},
        DeviceCase{"SixCharacters", L"\\??\\UN", L""}, DeviceCase{"Empty", L"", L""}),
    kRowName);

TEST_F(GetUniversalNameTest, LongerNumberInTheDeviceNameIsTakenAlong) {
    drives.devices[L'Y'] = L"\\Device\\LanmanRedirector\\;Y:00000000000012ab\\server\\share";
    EXPECT_EQ(L"\\0000000000012ab\\server\\share\\a", Universal(L"Y:\\a"));
}

TEST_F(GetUniversalNameTest, ListComesBeforeTheDevice) {
    drives.devices[L'X'] = L"\\??\\UNC\\device\\share";
    EXPECT_EQ(L"\\\\Server\\Share\\a", Universal(L"X:\\a"));
}

TEST_F(GetUniversalNameTest, DevicesResultIsPutIntoUpperCaseToo) {
    drives.devices[L'Y'] = L"\\??\\UNC\\server\\share";
    EXPECT_EQ(L"\\\\SERVER\\SHARE\\A", Universal(L"y:\\a", 1));
}

TEST_F(GetUniversalNameTest, WhatDoesNotFitIsCut) {
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring strTail = L"\\" + std::wstring(cch - 14 - 1, L't'); // behind "\\Server\Share"
        std::wstring strExpected = (L"\\\\Server\\Share" + strTail).substr(0, 259);
        EXPECT_EQ(strExpected, Universal((L"X:" + strTail).c_str()));
        std::wstring strUnc = L"\\\\" + std::wstring(cch - 2, L'u');
        EXPECT_EQ(strUnc.substr(0, 259), Universal(strUnc.c_str()));
    }
    PathBuffer out(L"abcd", 5);
    EXPECT_EQ(1, GetUniversalName(out, 5, L"X:\\a", 0));
    EXPECT_EQ(L"\\\\Se", out.Str());
    EXPECT_EQ(1, GetUniversalName(out, 1, L"X:\\a", 0));
    EXPECT_EQ(L"", out.Str());
    out.Set(L"abcd");
    EXPECT_EQ(0, GetUniversalName(out, 0, L"X:\\a", 0));
    EXPECT_EQ(L"abcd", out.Str());
    EXPECT_EQ(0, GetUniversalName(nullptr, 5, L"X:\\a", 0));
}

TEST_F(GetUniversalNameTest, ConvertPathToUNCWorksInPlace) {
    PathBuffer path(L"x:\\a\\B");
    ConvertPathToUNC(path);
    EXPECT_EQ(L"\\\\Server\\Share\\a\\B", path.Str());
    ConvertPathToUNC(path);
    EXPECT_EQ(L"\\\\Server\\Share\\a\\B", path.Str());
    for (const wchar_t* psz : {L"C:\\a", L"", L"a", L"y:\\A"}) {
        path.Set(psz);
        ConvertPathToUNC(path);
        EXPECT_EQ(psz, path.Str());
    }
    ConvertPathToUNC(nullptr);
}

// Drives

TEST_F(NetworkDrives, MaskHasTheRemoteOnes) {
    EXPECT_EQ(DWORD{1} << 23 | DWORD{1} << 25, GetNetworkDrivesMask());
    drives.types = {{L'A', DRIVE_REMOTE}, {L'B', DRIVE_REMOVABLE}};
    EXPECT_EQ(1u, GetNetworkDrivesMask());
    drives.types.clear();
    EXPECT_EQ(0u, GetNetworkDrivesMask());
}

TEST_F(NetworkDrives, PathIsInUpperCaseWithoutASeparator) {
    PathBuffer out(L"before");
    EXPECT_EQ(1, GetNetworkDrivePath(23, out));
    EXPECT_EQ(L"\\\\SERVER\\SHARE", out.Str());
    for (int nDrive : {2, 24, -1, 26, INT_MAX, INT_MIN}) {
        out.Set(L"before");
        EXPECT_EQ(0, GetNetworkDrivePath(nDrive, out));
        EXPECT_EQ(L"", out.Str());
    }
    EXPECT_EQ(0, GetNetworkDrivePath(23, nullptr));
}

// DosPathFromUncPath

TEST_F(DosPathFromUncPathTest, FindsTheDrive) {
    EXPECT_EQ(L"X:\\a\\B", DosPath(L"\\\\server\\share\\a\\B"));
    EXPECT_EQ(L"X:\\", DosPath(L"\\\\SERVER\\Share"));
    EXPECT_EQ(L"X:\\", DosPath(L"\\\\server\\share\\"));
    EXPECT_EQ(L"X:\\a", DosPath(L"\\\\server/share/a"));
    EXPECT_EQ(L"X:\\Below\\a", DosPath(L"\\\\server\\share\\Below\\a")); // the first letter
}

TEST_F(DosPathFromUncPathTest, LetterComesBeforeLength) {
    drives.types.erase(L'X');
    EXPECT_EQ(L"Z:\\a", DosPath(L"\\\\server\\share\\Below\\a"));
    drives.Connect(L"B:", L"\\\\server\\share\\below\\a");
    EXPECT_EQ(L"B:\\", DosPath(L"\\\\server\\share\\Below\\a"));
}

TEST_F(DosPathFromUncPathTest, NamesHaveToEndTogether) {
    EXPECT_EQ(L"", DosPath(L"\\\\server\\share2\\a", 0));
    EXPECT_EQ(L"", DosPath(L"\\\\server\\shar", 0));
    EXPECT_EQ(L"", DosPath(L"\\\\server", 0));
}

TEST_F(DosPathFromUncPathTest, OtherTextsGiveZero) {
    for (const wchar_t* psz : {kNull, L"", L"X:\\a", L"\\\\", L"\\server\\share", L"//server/share",
                               L"\\\\other\\one"}) {
        EXPECT_EQ(L"", DosPath(psz, 0));
    }
    EXPECT_EQ(0, DosPathFromUncPath(nullptr, L"\\\\server\\share"));
    drives.types.clear();
    EXPECT_EQ(L"", DosPath(L"\\\\server\\share", 0));
}

TEST_F(DosPathFromUncPathTest, WorksInPlaceAndCutsWhatDoesNotFit) {
    PathBuffer path(L"\\\\server\\share\\a");
    EXPECT_EQ(1, DosPathFromUncPath(path, path));
    EXPECT_EQ(L"X:\\a", path.Str());
    drives.connections = {{L"X:", L"\\\\s"}};
    std::wstring strRest(300, L'r');
    path.Set(L"\\\\s\\" + strRest.substr(0, 255)); // 259
    EXPECT_EQ(1, DosPathFromUncPath(path, path));
    EXPECT_EQ(L"X:\\" + strRest.substr(0, 255), path.Str());
    for (std::size_t cch : {255u, 256u, 257u, 300u}) {
        std::wstring strUnc = L"\\\\s\\" + strRest.substr(0, cch);
        EXPECT_EQ(L"X:\\" + strRest.substr(0, std::min<std::size_t>(cch, 256)),
                  DosPath(strUnc.c_str()));
    }
    std::wstring strLongest = L"\\\\" + std::wstring(257, L's'); // the longest name of a drive
    drives.connections = {{L"X:", strLongest.c_str()}};
    EXPECT_EQ(L"X:\\" + strRest.substr(0, 256), DosPath((strLongest + L"\\" + strRest).c_str()));
}

// Random texts

TEST_F(PathNetTest, RandomPaths) {
    RandomPaths random(8103);
    GuardedArea in(300 * sizeof(wchar_t));
    PathBuffer out;
    for (int i = 0; i < kRandomInputs / 10; ++i) { // each looks functions up by name
        std::wstring str = random.Next();
        if (random.Below(4) == 0) str = L"X:\\" + str;
        if (random.Below(4) == 0) str = L"\\\\server\\share" + str;
        out.Set(L"before");
        int nResult = GetUniversalName(out, MAX_PATH, in.Put(str), static_cast<int>(i & 1));
        ASSERT_EQ(nResult, !out.Str().empty());
        ASSERT_LT(out.Str().size(), 260u);
        if (nResult) {
            ASSERT_TRUE(out.Str().starts_with(L"\\\\"));
        }
        if (i % 8) continue;
        int nFound = DosPathFromUncPath(out, in.Put(str));
        ASSERT_EQ(nFound, !out.Str().empty());
        if (nFound) {
            ASSERT_EQ(L":\\", out.Str().substr(1, 2));
        }
    }
}
} // namespace
