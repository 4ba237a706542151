// Texts and numbers of a dialog's items.
#include "support/heap_count.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"
#include "wnd/dialog/dlg_items.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
HINSTANCE OtherModule() { return ::GetModuleHandleW(L"user32.dll"); }

struct CSDlgTexts : testing::Test {
    std::wstring Text(int nId) { return ItemText(dlg, nId); }
    OpenDlg dlg;
};

TEST_F(CSDlgTexts, SetGetAndLength) {
    EXPECT_NE(0, dlg.SetDlgItemTextW(IDC_EDIT, L"some text"));
    EXPECT_EQ(L"some text", Text(IDC_EDIT));
    EXPECT_EQ(9, dlg.GetDlgItemTextLength(IDC_EDIT));
    wchar_t sz[6] = L"";
    EXPECT_EQ(5, dlg.GetDlgItemTextW(IDC_EDIT, sz, 6));
    EXPECT_STREQ(L"some ", sz);
    dlg.SetDlgItemTextW(IDC_EDIT, L"");
    EXPECT_EQ(0, dlg.GetDlgItemTextLength(IDC_EDIT));
    EXPECT_EQ(0, dlg.GetDlgItemTextW(IDC_EDIT, sz, 6));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, dlg.SetDlgItemTextW(IDC_NO_ITEM, L"x"));
    EXPECT_EQ(0, dlg.GetDlgItemTextLength(IDC_NO_ITEM));
    EXPECT_EQ(0, dlg.GetDlgItemTextW(IDC_NO_ITEM, sz, 6));
}

TEST_F(CSDlgTexts, Numbers) {
    EXPECT_NE(0, dlg.SetDlgItemInt(IDC_NUMBER, static_cast<unsigned>(-12), TRUE));
    EXPECT_EQ(L"-12", Text(IDC_NUMBER));
    int bOk = 0;
    EXPECT_EQ(-12, static_cast<int>(dlg.GetDlgItemInt(IDC_NUMBER, &bOk, TRUE)));
    EXPECT_EQ(1, bOk);
    dlg.SetDlgItemInt(IDC_NUMBER, 0xFFFFFFFF, FALSE);
    EXPECT_EQ(L"4294967295", Text(IDC_NUMBER));
    EXPECT_EQ(0xFFFFFFFFu, dlg.GetDlgItemInt(IDC_NUMBER, nullptr, FALSE));
    dlg.SetDlgItemTextW(IDC_NUMBER, L"no number");
    bOk = 1;
    EXPECT_EQ(0u, dlg.GetDlgItemInt(IDC_NUMBER, &bOk, FALSE));
    EXPECT_EQ(0, bOk);
    EXPECT_EQ(0u, dlg.GetDlgItemInt(IDC_NUMBER, nullptr, TRUE));
    bOk = 1;
    EXPECT_EQ(0u, dlg.GetDlgItemInt(IDC_NO_ITEM, &bOk, TRUE));
    EXPECT_EQ(0, bOk);
}

TEST_F(CSDlgTexts, StringOfTheLibraryOrOfTheDialogsModule) {
    dlg.SetDlgItemTextW(IDC_EDIT, -IDS_TEST_PLAIN, nullptr);
    EXPECT_EQ(L"plain test string", Text(IDC_EDIT));
    dlg.SetDlgItemTextW(IDC_NUMBER, IDS_TEST_PLAIN, nullptr);
    EXPECT_EQ(L"plain test string", Text(IDC_NUMBER));
    dlg.SetDlgItemTextW(IDC_EDIT, L"before");
    dlg.SetDlgItemTextW(IDC_EDIT, IDS_TEST_PLAIN, ::GetModuleHandleW(nullptr));
    EXPECT_EQ(L"plain test string", Text(IDC_EDIT));
}

TEST_F(CSDlgTexts, NegativeStringIdLeavesAModuleThatIsNamedAlone) {
    dlg.SetDlgItemTextW(IDC_EDIT, L"before");
    dlg.SetDlgItemTextW(IDC_EDIT, IDS_TEST_PLAIN, OtherModule());
    EXPECT_NE(L"plain test string", Text(IDC_EDIT));
}

TEST_F(CSDlgTexts, FormattedTexts) {
    EXPECT_NE(0, dlg.SetDlgItemTextFmt(IDC_EDIT, L"%d of %s", 7, L"nine"));
    EXPECT_EQ(L"7 of nine", Text(IDC_EDIT));
    EXPECT_NE(0, dlg.SetDlgItemTextFmt(IDC_EDIT, IDS_TEST_NUMBER_AND_TEXT, 5, L"five"));
    EXPECT_EQ(L"number 5, text five", Text(IDC_EDIT));
    EXPECT_NE(0, dlg.SetDlgItemTextFmt(IDC_EDIT, -IDS_TEST_NUMBER_AND_TEXT, 6, L"six"));
    EXPECT_EQ(L"number 6, text six", Text(IDC_EDIT));
    EXPECT_NE(0, dlg.SetDlgItemTextFmt(IDC_EDIT, ::GetModuleHandleW(nullptr),
                                       IDS_TEST_NUMBER_AND_TEXT, 8, L"eight"));
    EXPECT_EQ(L"number 8, text eight", Text(IDC_EDIT));
    dlg.SetDlgItemTextFmt(IDC_EDIT, OtherModule(), IDS_TEST_NUMBER_AND_TEXT, 8, L"eight");
    EXPECT_EQ(L"", Text(IDC_EDIT)) << "no such string: the empty text";
    EXPECT_EQ(0, dlg.SetDlgItemTextFmt(IDC_NO_ITEM, L"%d", 1));
}

TEST_F(CSDlgTexts, FormattedTextsAreCutToFit) {
    std::wstring strLong(3000, L'x');
    for (int nForm = 0; nForm < 3; ++nForm) {
        dlg.SetDlgItemTextW(IDC_FORMAT, L"");
        switch (nForm) {
        case 0: dlg.SetDlgItemTextFmt(IDC_FORMAT, L"%s", strLong.c_str()); break;
        case 1: ::SetDlgItemTextFmt(dlg, IDC_FORMAT, L"%s", strLong.c_str()); break;
        case 2:
            dlg.SetDlgItemTextFmt(IDC_FORMAT, IDS_TEST_EMPTY_WHEN_FORMATTED, strLong.c_str());
            break;
        }
        EXPECT_EQ(1023u, Text(IDC_FORMAT).size()) << nForm;
    }
}

TEST_F(CSDlgTexts, ControlsFirstTextIsTheFormatAgainAndAgain) {
    EXPECT_NE(0, dlg.SetDlgItemTextFmtCtrl(IDC_FORMAT, 3, L"ten"));
    EXPECT_EQ(L"3 of ten", Text(IDC_FORMAT));
    EXPECT_NE(0, dlg.SetDlgItemTextFmtCtrl(IDC_FORMAT, 4, L"eleven"));
    EXPECT_EQ(L"4 of eleven", Text(IDC_FORMAT));
    dlg.SetDlgItemTextW(IDC_FORMAT, L"%s changed");
    dlg.SetDlgItemTextFmtCtrl(IDC_FORMAT, 5, L"twelve");
    EXPECT_EQ(L"5 of twelve", Text(IDC_FORMAT));
}

TEST_F(CSDlgTexts, ItemThatDoesNotExistCostsNothing) {
    long nBlocks = CountLiveBlocks();
    dlg.SetDlgItemTextFmtCtrl(IDC_NO_ITEM, 5, L"twelve");
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

TEST_F(CSDlgTexts, ControlWithoutAnObjectGetsOneToKeepItsFormat) {
    ::CreateWindowExW(0, L"STATIC", L"late %d", WS_CHILD, 0, 0, 50, 10, dlg,
                      reinterpret_cast<HMENU>(UINT_PTR{1501}), nullptr, nullptr);
    ASSERT_EQ(nullptr, dlg.GetDlgCtrl(1501));
    dlg.SetDlgItemTextFmtCtrl(1501, 1);
    EXPECT_EQ(L"late 1", Text(1501));
    EXPECT_NE(nullptr, dlg.GetDlgCtrl(1501));
    dlg.SetDlgItemTextFmtCtrl(1501, 2);
    EXPECT_EQ(L"late 2", Text(1501));
}

TEST_F(CSDlgTexts, HostileFormatsOfControlsWriteNothingElsewhere) {
    dlg.SetDlgItemTextW(IDC_FORMAT, L"%n %d");
    dlg.SetDlgItemTextFmtCtrl(IDC_FORMAT, 9);
    EXPECT_EQ(L"%n 9", Text(IDC_FORMAT));
    dlg.SetDlgItemTextFmt(IDC_EDIT, IDS_TEST_HOSTILE_FORMAT);
    EXPECT_EQ(L"%n is no conversion", Text(IDC_EDIT));
}

TEST_F(CSDlgTexts, FunctionsOnTheHandleDoTheSame) {
    EXPECT_NE(0, ::SetDlgItemTextFmt(dlg, IDC_EDIT, L"%d of %s", 7, L"nine"));
    EXPECT_EQ(L"7 of nine", Text(IDC_EDIT));
    EXPECT_NE(0, ::SetDlgItemTextFmt(dlg, IDC_EDIT, IDS_TEST_NUMBER_AND_TEXT, 5, L"five"));
    EXPECT_EQ(L"number 5, text five", Text(IDC_EDIT));
    EXPECT_NE(0, ::SetDlgItemTextFmt(dlg, IDC_EDIT, ::GetModuleHandleW(nullptr),
                                     IDS_TEST_NUMBER_AND_TEXT, 8, L"eight"));
    EXPECT_EQ(L"number 8, text eight", Text(IDC_EDIT));
}

TEST_F(CSDlgTexts, WindowsOwnTextIsTheFormatOnce) {
    HWND hwnd = ::GetDlgItem(dlg, IDC_FORMAT);
    EXPECT_NE(0, ::SetWndTextFmtCtrl(hwnd, 3, L"ten"));
    EXPECT_EQ(L"3 of ten", Text(IDC_FORMAT));
    ::SetWndTextFmtCtrl(hwnd, 4, L"eleven");
    EXPECT_EQ(L"3 of ten", Text(IDC_FORMAT)) << "no format any more";
    ::SetWindowTextW(hwnd, L"%s");
    std::wstring strLong(3000, L'x');
    ::SetWndTextFmtCtrl(hwnd, strLong.c_str());
    EXPECT_EQ(1023u, Text(IDC_FORMAT).size());
    ::SetWindowTextW(hwnd, L"");
    ::SetWndTextFmtCtrl(hwnd, 1);
    EXPECT_EQ(L"", Text(IDC_FORMAT));
}
} // namespace
