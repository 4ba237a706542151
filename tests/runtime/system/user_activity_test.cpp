#include "runtime/system/user_activity.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

extern "C" FARPROC __imp_SystemParametersInfoW;

namespace {
std::vector<DWORD> states;
EXECUTION_STATE WINAPI NoteState(EXECUTION_STATE dwState) {
    states.push_back(dwState);
    return 1;
}

struct ExecutionState : testing::Test {
    ExecutionState() {
        states.clear();
        replaced.Set("SetThreadExecutionState", &NoteState);
    }
    ReplaceFunctions replaced;
};

TEST_F(ExecutionState, StopScreenSaverIsForSystemAndDisplay) {
    StopScreenSaver();
    EXPECT_EQ(std::vector<DWORD>{3}, states);
}

TEST_F(ExecutionState, ImitateUserActivityByItsTwoArguments) {
    struct Row {
        int bSystem, bDisplay;
        DWORD dwState;
    };
    for (Row row : {Row{0, 0, 0x80000000}, Row{1, 0, 0x80000001}, Row{0, 1, 2}, Row{1, 1, 3},
                    Row{-7, 0, 0x80000001}, Row{0, 9, 2}, Row{2, -2, 3}}) {
        states.clear();
        ImitateUserActivity(row.bSystem, row.bDisplay);
        EXPECT_EQ(std::vector<DWORD>{row.dwState}, states) << row.bSystem << " " << row.bDisplay;
    }
}

TEST_F(ExecutionState, NothingHappensWhereThePlatformHasNoSuchFunction) {
    replaced.Hide("SetThreadExecutionState");
    StopScreenSaver();
    for (int bSystem : {0, 1})
        for (int bDisplay : {0, 1}) ImitateUserActivity(bSystem, bDisplay);
    EXPECT_TRUE(states.empty());
}

TEST(UserActivity, PlatformTakesAllStates) {
    StopScreenSaver();
    for (int bSystem : {1, 0})
        for (int bDisplay : {1, 0}) ImitateUserActivity(bSystem, bDisplay);
    SUCCEED(); // it tells nothing of the states that were asked for
}

// The wallpaper

struct ParametersCall {
    UINT uAction, uParam, uFlags;
    std::wstring strText;
};
std::optional<ParametersCall> parametersCall;
BOOL bParametersResult = TRUE;
BOOL WINAPI NoteParameters(UINT uAction, UINT uParam, PVOID p, UINT uFlags) {
    parametersCall = {uAction, uParam, uFlags, p ? static_cast<const wchar_t*>(p) : L"(null)"};
    return bParametersResult;
}

struct Wallpaper : testing::Test {
    Wallpaper() { parametersCall.reset(); }
    ~Wallpaper() override { bParametersResult = TRUE; }
    ReplaceImport replaced{__imp_SystemParametersInfoW, &NoteParameters};
};

TEST_F(Wallpaper, PathIsStoredAndTold) {
    for (const wchar_t* psz : {L"C:\\Pictures\\one.bmp", L"x", L""}) {
        EXPECT_EQ(TRUE, SetWallpaper(psz));
        ASSERT_TRUE(parametersCall);
        EXPECT_EQ(20u, parametersCall->uAction);
        EXPECT_EQ(3u, parametersCall->uFlags);
        EXPECT_EQ(psz, parametersCall->strText);
    }
}

TEST_F(Wallpaper, NullIsTheEmptyTextOfSize0) {
    EXPECT_EQ(TRUE, SetWallpaper(nullptr));
    ASSERT_TRUE(parametersCall);
    EXPECT_EQ(20u, parametersCall->uAction);
    EXPECT_EQ(0u, parametersCall->uParam);
    EXPECT_EQ(3u, parametersCall->uFlags);
    EXPECT_EQ(L"", parametersCall->strText);
}

TEST_F(Wallpaper, ResultIsThePlatforms) {
    bParametersResult = FALSE;
    EXPECT_EQ(0, SetWallpaper(L"x"));
    EXPECT_EQ(0, SetWallpaper(nullptr));
}

std::wstring CurrentWallpaper() {
    wchar_t sz[MAX_PATH] = L"";
    ::SystemParametersInfoW(SPI_GETDESKWALLPAPER, MAX_PATH, sz, 0);
    return sz;
}

TEST(SetWallpaper, PlatformHasItThenAndItGoesAgain) {
    const std::wstring strBefore = CurrentWallpaper();
    TempFolder folder;
    const std::string strPicture("BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x01\0\0\0\x01\0\0\0"
                                 "\x01\0\x18\0\0\0\0\0\x04\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                 "\xff\0\0\0",
                                 0x3a);
    std::wstring strPath = folder.MakeFile(L"one pixel.bmp", strPicture);
    EXPECT_NE(0, SetWallpaper(strPath.c_str()));
    EXPECT_EQ(strPath, CurrentWallpaper());
    EXPECT_NE(0, SetWallpaper(nullptr));
    EXPECT_EQ(L"", CurrentWallpaper());
    SetWallpaper(strBefore.c_str());
}
} // namespace
