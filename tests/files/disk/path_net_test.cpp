#include "files/disk/path_drive.h"
#include "files/fake_drives.h"
#include "files/path_support.h"

#include <gtest/gtest.h>

namespace {
const wchar_t* kNull = nullptr;

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
    drives.nOpenResult = NO_ERROR;
    SetRuntimeLookup(nullptr);
    EXPECT_EQ(L"", Universal(L"X:\\a", 0, 0));
}

TEST(GetUniversalNameFallback, SystemWithoutTheNetworkLibraryGivesZero) {
    FakeDrives drives;
    drives.Connect(L"X:", L"\\\\Server\\Share");
    drives.bNetwork = false;
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
    [](const auto& row) { return std::string(row.param.pszName); });

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
    for (int i = 0; i < kRandomInputs; ++i) {
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
