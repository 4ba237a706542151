#include "runtime/messages/msg.h"
#include "runtime/system/system_facts.h"
#include "support/message_box_driver.h"

#include <gtest/gtest.h>

namespace {
TEST(SingleFloppy, IsOneUnlessBothDrivesAreRemovable) {
    bool bBoth =
        ::GetDriveTypeW(L"A:\\") == DRIVE_REMOVABLE && ::GetDriveTypeW(L"B:\\") == DRIVE_REMOVABLE;
    EXPECT_EQ(bBoth ? 0 : 1, SingleFloppy());
}

TEST(WinProNotSupported, TellsTheUserOnAProfessionalEdition) {
    if (!WinPro()) GTEST_SKIP() << "this is a home edition";
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, WinProNotSupported(nullptr));
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"This command is not available on this edition of Windows.", boxes[0].strText);
    EXPECT_EQ(1, boxes[0].bHasIcon);
    EXPECT_EQ(std::vector<int>{IDOK}, boxes[0].buttons);
}

/// The system's switch as it was, put back at the end.
struct KeepSwitch {
    HKEY hkey = nullptr;
    DWORD dwOld = 0, cb = sizeof(DWORD);
    bool bHad = false;
    KeepSwitch() {
        ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                        L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", 0,
                        KEY_ALL_ACCESS, &hkey);
        bHad = ::RegQueryValueExW(hkey, kName, nullptr, nullptr, reinterpret_cast<BYTE*>(&dwOld),
                                  &cb) == ERROR_SUCCESS;
    }
    ~KeepSwitch() {
        if (bHad)
            Put(dwOld);
        else
            ::RegDeleteValueW(hkey, kName);
        ::RegCloseKey(hkey);
    }
    void Put(DWORD dw) {
        ::RegSetValueExW(hkey, kName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dw), sizeof(dw));
    }
    static constexpr const wchar_t* kName = L"AllowMultipleTSSessions";
};

TEST(IsFastUserSwitchingEnabled, IsTheSystemsSwitchAndZeroWithoutIt) {
    KeepSwitch keep;
    if (!keep.hkey) GTEST_SKIP() << "this user may not write the system's settings";
    keep.Put(1);
    EXPECT_EQ(1, IsFastUserSwitchingEnabled());
    keep.Put(0);
    EXPECT_EQ(0, IsFastUserSwitchingEnabled());
    ::RegDeleteValueW(keep.hkey, KeepSwitch::kName);
    EXPECT_EQ(0, IsFastUserSwitchingEnabled());
}

TEST(GetWinLanguage, IsTheSystemsLocale) {
    wchar_t szWanted[85], sz[85];
    ASSERT_NE(0, ::GetLocaleInfoW(2048, WinVista() ? 92 : 4097, szWanted, 85));
    ASSERT_EQ(1, GetWinLanguage(sz, 85));
    EXPECT_STREQ(szWanted, sz);
}

TEST(GetWinLanguage, FitsExactlyOrNotAtAll) {
    wchar_t sz[85];
    ASSERT_EQ(1, GetWinLanguage(sz, 85));
    int cch = static_cast<int>(wcslen(sz)) + 1;
    EXPECT_EQ(1, GetWinLanguage(sz, cch));
    wchar_t szShort[85] = L"before";
    EXPECT_EQ(0, GetWinLanguage(szShort, cch - 1));
    EXPECT_STREQ(L"", szShort);
    EXPECT_EQ(0, GetWinLanguage(szShort, 0));
    EXPECT_EQ(0, GetWinLanguage(szShort, -1));
}
} // namespace
