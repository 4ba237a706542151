#include "runtime/base/current_product.h"
#include "support/other_windows.h"
#include "support/program_folder.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {
/// Puts the product and the library's module back at the end of a test.
class CurrentProductTest : public testing::Test {
  protected:
    ~CurrentProductTest() override {
        SetCurrentProduct(productBefore);
        SetLibraryInstance(hinstBefore);
    }
    CurrentProduct productBefore = GetCurrentProduct();
    HINSTANCE hinstBefore = GetLibraryInstance();
};

const HINSTANCE kOther = reinterpret_cast<HINSTANCE>(0x123450000);

TEST(CurrentProductStart, IsTheLibraryWithoutNameAndNumber) {
    std::istringstream stream(OutputOf(ProgramFolder() + L"version_probe.exe"));
    std::string strAnswers;
    for (std::string strName, strValue; stream >> strName >> strValue;) {
        if (strName == "NameLength" || strName == "Id" || strName == "HasModule" ||
            strName == "IsLibrary") {
            strAnswers += strName + " " + strValue + " ";
        }
    }
    EXPECT_EQ("NameLength 0 Id 0 HasModule 0 IsLibrary 1 ", strAnswers);
}

TEST_F(CurrentProductTest, LibraryStartSetsItsOwn) {
    EXPECT_EQ(::GetModuleHandleW(nullptr), GetLibraryInstance());
    EXPECT_STREQ(L"Tessaly", GetCurrentProduct().pfnGetName());
    EXPECT_EQ(GetLibraryInstance(), GetCurrentProduct().pfnGetModule());
    EXPECT_STREQ(L"Tessaly.chm", GetCurrentProduct().pfnGetHelpFile());
    EXPECT_STREQ(L"HKCU\\SOFTWARE\\Orvanta\\Tessaly", GetCurrentProduct().pfnGetRootKey());
}

TEST_F(CurrentProductTest, SetReplacesAll) {
    SetCurrentProduct({[] { return kOther; }, []() -> const wchar_t* { return L"other"; },
                       []() -> unsigned short { return 7; },
                       []() -> const wchar_t* { return L"other.chm"; },
                       []() -> const wchar_t* { return L"HKCU\\Other"; }});
    EXPECT_EQ(kOther, GetCurrentProduct().pfnGetModule());
    EXPECT_STREQ(L"other", GetCurrentProduct().pfnGetName());
    EXPECT_EQ(7, GetCurrentProduct().pfnGetId());
    EXPECT_STREQ(L"other.chm", GetCurrentProduct().pfnGetHelpFile());
    EXPECT_STREQ(L"HKCU\\Other", GetCurrentProduct().pfnGetRootKey());
    EXPECT_EQ(hinstBefore, GetLibraryInstance()) << "the library is what it was";
}

TEST_F(CurrentProductTest, LibrarysModuleIsWhatWasSet) {
    SetLibraryInstance(kOther);
    EXPECT_EQ(kOther, GetLibraryInstance());
}
} // namespace
