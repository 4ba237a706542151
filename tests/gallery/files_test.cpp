// The page "Files".

#include "gallery/gallery_test_support.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

class GalleryFiles : public Gallery {
  protected:
    GalleryFiles() {
        std::filesystem::remove_all(strFolder);
        std::filesystem::create_directory(strFolder);
        GoToPage(kFilesPage);
    }
    ~GalleryFiles() override { std::filesystem::remove_all(strFolder); }

    std::wstring File(const wchar_t* pszName) const { return strFolder + L"\\" + pszName; }
    std::string Content(const wchar_t* pszName) const {
        std::ifstream in(std::filesystem::path(File(pszName)), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void MakeFile(const wchar_t* pszName, const std::string& bytes) const {
        std::ofstream(std::filesystem::path(File(pszName)), std::ios::binary) << bytes;
    }
    /// The file's path comes into its edit as from a drag.
    void Name(const wchar_t* pszName) {
        DropFileOn(PageItem(IDC_TEXT_PATH), File(pszName));
        EXPECT_TRUE(WaitForText(PageItem(IDC_TEXT_PATH), File(pszName)));
    }
    void TypeBody(const std::wstring& strText) {
        PressKeys(Main(), {L"alt+t"});
        EXPECT_TRUE(WaitForFocus(IDC_TEXT_BODY));
        PressKeys(Main(), {L"ctrl+a", L"Delete"});
        EXPECT_TRUE(WaitForText(PageItem(IDC_TEXT_BODY), L""));
        TypeText(Main(), strText);
        PressKeys(Main(), {L"Return"});
        EXPECT_TRUE(WaitForText(PageItem(IDC_TEXT_BODY), strText + L"\r\n"));
    }
    /// The n-th of the list, by keys.
    void ChooseFormat(int n) {
        PressKeys(Main(), {L"alt+e"});
        EXPECT_TRUE(WaitForFocus(IDC_TEXT_FORMAT));
        std::vector<std::wstring> keys{L"Home"};
        keys.insert(keys.end(), n, L"Down");
        PressKeys(Main(), keys);
        EXPECT_TRUE(WaitUntil([&] { return ChosenFormat() == n; }));
    }
    int ChosenFormat() {
        return static_cast<int>(::SendMessageW(PageItem(IDC_TEXT_FORMAT), CB_GETCURSEL, 0, 0));
    }
    /// Presses a button by its key and waits for what it says.
    void Do(const wchar_t* pszKey, const wchar_t* pszResult) {
        ::SendMessageW(PageItem(IDC_TEXT_RESULT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
        PressKeys(Main(), {pszKey});
        EXPECT_TRUE(WaitForText(PageItem(IDC_TEXT_RESULT), pszResult))
            << testing::PrintToString(TextOf(PageItem(IDC_TEXT_RESULT)));
    }
    bool IsTold(const wchar_t* pszFormat) {
        return WaitForText(PageItem(IDC_TEXT_TOLD),
                           std::wstring(L"&Text, recognised as: ") + pszFormat);
    }

  private:
    const std::wstring strFolder = L"C:\\gallery files";
};

struct FormatRow {
    const wchar_t* pszName;
    std::string bytes; // of "word" and a line end
};
const FormatRow kFormats[] = {
    // in the order of the list
    {L"ANSI", "word\r\n"},
    {L"ANSI, LF alone", "word\n"},
    {L"UTF-8", "\xEF\xBB\xBFword\r\n"},
    {L"UTF-8, LF alone", "\xEF\xBB\xBFword\n"},
    {L"UTF-16", std::string("\xFF\xFEw\0o\0r\0d\0\r\0\n\0", 14)},
    {L"UTF-16, big-endian", std::string("\xFE\xFF\0w\0o\0r\0d\0\r\0\n", 14)},
};
constexpr const wchar_t *kOpen = L"alt+o", *kSave = L"alt+s", *kAppend = L"alt+a";
} // namespace

TEST_F(GalleryFiles, ATextIsSavedAndRecognisedInEveryEncoding) {
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    Name(L"a.txt");
    TypeBody(L"word");
    for (int n = 0; n < static_cast<int>(std::size(kFormats)); ++n) {
        ChooseFormat(n);
        Do(kSave, L"Saved");
        EXPECT_EQ(kFormats[n].bytes, Content(L"a.txt")) << n;
        if (n == 0) ChooseFormat(3); // the file tells another one
        Do(kOpen, L"6 characters");
        EXPECT_TRUE(IsTold(kFormats[n].pszName)) << n;
        EXPECT_EQ(ChosenFormat(), n);
        EXPECT_EQ(TextOf(PageItem(IDC_TEXT_BODY)), L"word\r\n");
    }
    TakePicture(L"files", {Main()});
}

TEST_F(GalleryFiles, ATextIsAppendedInTheEncodingOfTheFile) {
    Name(L"a.txt");
    TypeBody(L"more");
    MakeFile(L"a.txt", "one\n");
    ChooseFormat(4); // does not count
    Do(kAppend, L"Appended");
    EXPECT_EQ("one\nmore\n", Content(L"a.txt"));
    MakeFile(L"a.txt", "\xFF\xFE");
    Do(kAppend, L"Appended");
    EXPECT_EQ(std::string("\xFF\xFEm\0o\0r\0e\0\r\0\n\0", 14), Content(L"a.txt"));
    Do(kOpen, L"6 characters");
    EXPECT_TRUE(IsTold(L"UTF-16"));
}

TEST_F(GalleryFiles, WhatIsNoTextIsShownAndNotAppendedTo) {
    MakeFile(L"a.bin", std::string("a\0b\1", 4));
    Name(L"a.bin");
    Do(kOpen, L"4 characters");
    EXPECT_TRUE(IsTold(L"no text"));
    EXPECT_EQ(TextOf(PageItem(IDC_TEXT_BODY)), L"a\x25A1"
                                               L"b\x25A1");
    Do(kAppend, L"Not possible");
    EXPECT_EQ(std::string("a\0b\1", 4), Content(L"a.bin"));
}

TEST_F(GalleryFiles, WhatIsNotThereCannotBeOpenedOrAppendedTo) {
    const std::wstring strBody = TextOf(PageItem(IDC_TEXT_BODY));
    EXPECT_TRUE(IsTold(L"not saved yet"));
    MakeFile(L"gone.txt", "");
    Name(L"gone.txt");
    std::filesystem::remove(File(L"gone.txt"));
    Do(kOpen, L"Not possible");
    EXPECT_TRUE(IsTold(L"unknown"));
    Do(kAppend, L"Not possible");
    EXPECT_FALSE(std::filesystem::exists(File(L"gone.txt")));
    EXPECT_EQ(TextOf(PageItem(IDC_TEXT_BODY)), strBody);
}
