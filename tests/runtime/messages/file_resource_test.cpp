#include "resources/resource_ids.h"
#include "runtime/messages/file_resource.h"
#include "support/message_box_driver.h"
#include "support/temp_folder.h"
#include "support/test_resource_ids.h"
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <thread>

namespace {
const std::string kContent = "a file held as a resource";

std::string DataOf(int nId, HINSTANCE hinst = nullptr, const wchar_t* pszType = nullptr) {
    DWORD cb = 99;
    auto* pData = static_cast<const char*>(LoadFileResource(&cb, nId, hinst, pszType));
    EXPECT_EQ(pData != nullptr, cb != 0);
    return pData ? std::string(pData, cb) : std::string();
}

int Create(const std::wstring& strFile, unsigned nFlags, int nId = -IDR_TEST_FILE) {
    return CreateFileFromResource(nullptr, strFile.c_str(), nId, nullptr, nFlags);
}

TEST(LoadFileResource, GivesTheDataAndTheirSize) {
    EXPECT_EQ(kContent, DataOf(-IDR_TEST_FILE));
    EXPECT_EQ(kContent, DataOf(IDR_TEST_FILE));
    EXPECT_EQ(kContent, DataOf(IDR_TEST_FILE, ::GetModuleHandleW(nullptr)));
    EXPECT_NE(nullptr, LoadFileResource(nullptr, -IDR_TEST_FILE));
}

TEST(LoadFileResource, TypeCanBeNamed) {
    EXPECT_EQ(kContent, DataOf(-IDR_TEST_OTHER_TYPE, nullptr, L"OTHER_DATA"));
    EXPECT_EQ("", DataOf(-IDR_TEST_OTHER_TYPE));
}

TEST(LoadFileResource, NegativeIdIsTheLibrarysWhateverModuleIsNamed) {
    HINSTANCE hinstOther = ::GetModuleHandleW(L"kernel32.dll");
    EXPECT_EQ(kContent, DataOf(-IDR_TEST_FILE, hinstOther));
    EXPECT_EQ("", DataOf(IDR_TEST_FILE, hinstOther));
}

TEST(LoadFileResource, NoSuchResourceGivesNull) {
    for (int nId : {0, 1, -1, 65535, 65536, -65536, INT_MAX, INT_MIN}) EXPECT_EQ("", DataOf(nId));
}

TEST(CreateFileFromResource, WritesANewFileWithAnyFlags) {
    TempFolder folder;
    for (unsigned nFlags : {0u, 1u, 2u, 4u, 7u}) {
        std::wstring strName = L"new" + std::to_wstring(nFlags);
        EXPECT_EQ(1, Create(folder.File(strName), nFlags));
        EXPECT_EQ(kContent, folder.ReadFile(strName));
    }
}

struct ExistingCase {
    const char* pszName;
    unsigned nFlags;
    int nResult;
    bool bOverwritten;
};

class CreateFileFromResourceTable : public testing::TestWithParam<ExistingCase> {};

TEST_P(CreateFileFromResourceTable, FlagsSayWhatHappensToAnExistingFile) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"f", "old");
    EXPECT_EQ(GetParam().nResult, Create(strFile, GetParam().nFlags));
    EXPECT_EQ(GetParam().bOverwritten ? kContent : "old", folder.ReadFile(L"f"));
}

INSTANTIATE_TEST_SUITE_P(Cases, CreateFileFromResourceTable,
                         testing::Values(ExistingCase{"Fails", 1, 0, false},
                                         ExistingCase{"Stays", 2, 1, false},
                                         ExistingCase{"FailsBeforeStays", 3, 0, false},
                                         ExistingCase{"Overwritten", 4, 1, true},
                                         ExistingCase{"FailsBeforeOverwritten", 5, 0, false},
                                         ExistingCase{"StaysBeforeOverwritten", 6, 1, false}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CreateFileFromResource, WithoutFlagsTheUserIsAsked) {
    TempFolder folder;
    for (int nButton : {IDNO, IDYES}) {
        std::wstring strFile = folder.MakeFile(L"f", "old");
        MessageBoxDriver driver({nButton});
        EXPECT_EQ(nButton == IDYES, Create(strFile, 0));
        const auto& boxes = driver.Finish();
        ASSERT_EQ(1u, boxes.size());
        EXPECT_EQ(L"File '" + strFile + L"' already exists.\n\nOverwrite it?", boxes[0].strText);
        EXPECT_EQ((std::vector<int>{IDYES, IDNO}), boxes[0].buttons);
        EXPECT_EQ(1, boxes[0].bHasIcon);
        EXPECT_EQ(nButton == IDYES ? kContent : "old", folder.ReadFile(L"f"));
    }
}

TEST(CreateFileFromResource, FailedCreationIsToldAndGivesZero) {
    TempFolder folder;
    std::wstring strFile = folder.File(L"no such folder\\f");
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, Create(strFile, 0));
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Cannot create file '" + strFile + L"'.", boxes[0].strText);
    EXPECT_EQ((std::vector<int>{IDOK}), boxes[0].buttons);
}

TEST(CreateFileFromResource, MissingResourceLeavesAnExistingFileAlone) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"f", "old");
    EXPECT_EQ(0, Create(strFile, kExistingFileOverwritten, -999));
    EXPECT_EQ("old", folder.ReadFile(L"f"));
    EXPECT_EQ(0, Create(folder.File(L"g"), 0, -999));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(folder.File(L"g").c_str()));
}

TEST(CreateFileFromResource, FailedWriteIsToldAndGivesZero) {
    // A pipe without a buffer opens like a file; its reader leaves as soon as the writer has come.
    std::wstring strPipe = L"\\\\.\\pipe\\tessaly_test_" + std::to_wstring(::GetCurrentProcessId());
    HANDLE hPipe = ::CreateNamedPipeW(strPipe.c_str(), PIPE_ACCESS_INBOUND, 0, 1, 0, 0, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, hPipe);
    std::thread reader([hPipe] {
        ::ConnectNamedPipe(hPipe, nullptr);
        ::CloseHandle(hPipe);
    });
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, Create(strPipe, kExistingFileOverwritten));
    reader.join();
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Cannot write to file '" + strPipe + L"'.", boxes[0].strText);
}
} // namespace
