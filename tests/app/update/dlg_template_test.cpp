// The dialogs about updates as their templates have them, before any code has run.
#include "app/update/update_dlg.h"
#include "app/about/monitor_dpi.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {
/// The head of an extended template.
struct TemplateHead {
    WORD wVersion = 0, wSignature = 0;
    DWORD dwStyle = 0;
    WORD wItems = 0;
    short cx = 0, cy = 0;
    WORD wPoints = 0;
    std::wstring strFont;
};

TemplateHead HeadOf(int nTemplate) {
    HRSRC hres = ::FindResourceW(nullptr, MAKEINTRESOURCEW(nTemplate), RT_DIALOG);
    if (!hres) return {};
    auto* p = static_cast<const WORD*>(::LockResource(::LoadResource(nullptr, hres)));
    TemplateHead head;
    head.wVersion = p[0];
    head.wSignature = p[1];
    std::memcpy(&head.dwStyle, p + 6, sizeof(DWORD));
    head.wItems = p[8];
    head.cx = static_cast<short>(p[11]);
    head.cy = static_cast<short>(p[12]);
    p += 13;
    for (int nText = 0; nText < 3; ++nText) { // menu, class, title: a text, or a number
        if (*p == 0xFFFF)
            p += 2;
        else
            p += std::wcslen(reinterpret_cast<const wchar_t*>(p)) + 1;
    }
    head.wPoints = p[0];
    head.strFont = reinterpret_cast<const wchar_t*>(p + 3); // behind weight, italic and charset
    return head;
}

/// The dialog as the platform makes it of the template.
class PlainDialog {
  public:
    explicit PlainDialog(int nTemplate)
        : hwnd(::CreateDialogParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(nTemplate),
                                    nullptr, &Proc, 0)) {
        EXPECT_NE(nullptr, hwnd);
    }
    ~PlainDialog() { ::DestroyWindow(hwnd); }
    PlainDialog(const PlainDialog&) = delete;
    PlainDialog& operator=(const PlainDialog&) = delete;
    HWND hwnd;

  private:
    static INT_PTR CALLBACK Proc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }
};

struct ControlRow {
    const char* pszName;
    int nId;
    const wchar_t* pszClass;
    DWORD dwType, dwTypeMask;    // of the style
    const wchar_t* pszCheckText; // null: not in that dialog
    const wchar_t* pszGetText;
};
constexpr DWORD kRadio = BS_AUTORADIOBUTTON, kBox = BS_AUTOCHECKBOX;
constexpr ControlRow kControls[] = {
    {"Title", 21542, L"Static", 0, 0, L"Would you like to check for updates to %s?",
     L"An update is available:"},
    {"Days", 21503, L"Static", 0, 0, L"Last check for updates was %d days ago. ", nullptr},
    {"Yes", 21536, L"Button", kRadio, BS_TYPEMASK, L"Yes, check for updates now.",
     L"Yes, download and install it now."},
    {"No", 21537, L"Button", kRadio, BS_TYPEMASK, L"No, not this time. ", L"No, not this time. "},
    {"RemindLabel", 1037, L"Static", 0, 0, L"Remind me to check for updates again: ",
     L"Remind me about the new version again: "},
    {"RemindList", 21543, L"ComboBox", CBS_DROPDOWNLIST, 3, L"", L""},
    {"AutoCheck", 1008, L"Button", kBox, BS_TYPEMASK,
     L"Check for updates automatically, without asking me", nullptr},
    {"Question", 1038, L"Static", 0, 0, nullptr,
     L"Would you like to download and install the new version now?"},
    {"Description", 1009, L"Static", SS_NOTIFY | SS_NOPREFIX, SS_NOTIFY | SS_NOPREFIX, nullptr,
     L"%s"},
    {"Continue", 1032, L"Static", 0, 0, L"Continue", L"Continue"},
    {"Proceed", 1, L"Button", 0, 0, L"Btn3", L"Btn3"},
    {"Close", 2, L"Button", 0, 0, L"x", L"x"},
};

class UpdateDlgControl : public testing::TestWithParam<ControlRow> {
  protected:
    static void Expect(int nTemplate, const wchar_t* pszText) {
        const ControlRow& row = GetParam();
        PlainDialog dialog(nTemplate);
        HWND hwndItem = ::GetDlgItem(dialog.hwnd, row.nId);
        ASSERT_EQ(pszText != nullptr, hwndItem != nullptr) << nTemplate;
        if (!hwndItem) return;
        wchar_t szClass[32] = L"";
        ::GetClassNameW(hwndItem, szClass, 32);
        EXPECT_STRCASEEQ(
            std::string(row.pszClass, row.pszClass + std::wcslen(row.pszClass)).c_str(),
            std::string(szClass, szClass + std::wcslen(szClass)).c_str());
        EXPECT_EQ(pszText, WindowText(hwndItem));
        const LONG_PTR nStyle = ::GetWindowLongPtrW(hwndItem, GWL_STYLE);
        EXPECT_EQ(row.dwType, static_cast<DWORD>(nStyle) & row.dwTypeMask);
        EXPECT_TRUE(nStyle & WS_VISIBLE);
        EXPECT_FALSE(nStyle & WS_DISABLED);
    }
};
} // namespace

TEST_P(UpdateDlgControl, HasItsClassAndText) {
    Expect(21802, GetParam().pszCheckText);
    Expect(21804, GetParam().pszGetText);
}
INSTANTIATE_TEST_SUITE_P(Rows, UpdateDlgControl, testing::ValuesIn(kControls),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(UpdateDlgTemplate, HasSizeFontAndStyle) {
    EXPECT_EQ(21802, IDD_CHECK_FOR_UPDATES);
    EXPECT_EQ(21804, IDD_GET_UPDATES);
    for (int nTemplate : {21802, 21804}) {
        TemplateHead head = HeadOf(nTemplate);
        EXPECT_EQ(1, head.wVersion);
        EXPECT_EQ(0xFFFF, head.wSignature);
        EXPECT_EQ(227, head.cx);
        EXPECT_EQ(124, head.cy);
        EXPECT_EQ(L"Tahoma", head.strFont);
        EXPECT_EQ(8, head.wPoints);
        EXPECT_TRUE(head.dwStyle & WS_POPUP);
        EXPECT_FALSE(head.dwStyle & WS_CHILD);
        EXPECT_NE(static_cast<DWORD>(WS_CAPTION), head.dwStyle & WS_CAPTION);
        EXPECT_FALSE(head.dwStyle & (WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX));
    }
}

TEST(UpdateDlgTemplate, HasTheTablesControlsAndNoOthers) {
    for (int nTemplate : {21802, 21804}) {
        PlainDialog dialog(nTemplate);
        for (const DialogItem& item : ItemsOf(dialog.hwnd)) {
            EXPECT_TRUE(std::any_of(std::begin(kControls), std::end(kControls),
                                    [&](const ControlRow& row) { return row.nId == item.nId; }))
                << item.nId;
        }
        int nExpected = 0;
        for (const ControlRow& row : kControls)
            nExpected += (nTemplate == 21802 ? row.pszCheckText : row.pszGetText) != nullptr;
        EXPECT_EQ(nExpected, HeadOf(nTemplate).wItems);
    }
}

TEST(UpdateDlgTemplate, TextsOfTheProductFitIntoTheirStrings) {
    struct Row {
        int nId;
        const wchar_t* pszText;
    };
    for (Row row : {Row{IDS_NO_UPDATE_SERVER,
                        L"Cannot connect to the software update server. Please make sure your "
                        L"computer is connected to the Internet and then press Retry. If your "
                        L"firewall asks to allow the connection for this software, allow it."},
                    Row{IDS_NO_UPDATES, L"No updates are available at this time. You are using the "
                                        L"latest version available."},
                    Row{IDS_UPDATE_ERROR, L"An error occurred when checking for updates.\n\n%s"}}) {
        wchar_t sz[512] = L"";
        ::LoadStringW(nullptr, static_cast<UINT>(row.nId), sz, 512);
        EXPECT_STREQ(row.pszText, sz);
    }
}

/// The dialogs with a font so much larger as it is at a higher number of dots per inch.
class UpdateDlgAtDpi : public testing::TestWithParam<int> {
  protected:
    /// The template's bytes with another size of the font.
    static std::vector<DWORD> Scaled(int nTemplate) {
        HRSRC hres = ::FindResourceW(nullptr, MAKEINTRESOURCEW(nTemplate), RT_DIALOG);
        const DWORD cb = ::SizeofResource(nullptr, hres);
        std::vector<DWORD> bytes(cb / sizeof(DWORD) + 1);
        std::memcpy(bytes.data(), ::LockResource(::LoadResource(nullptr, hres)), cb);
        auto* p = reinterpret_cast<WORD*>(bytes.data()) + 13;
        for (int nText = 0; nText < 3; ++nText)
            p += *p == 0xFFFF ? 2 : std::wcslen(reinterpret_cast<const wchar_t*>(p)) + 1;
        *p = static_cast<WORD>(*p * GetParam() / 96);
        return bytes;
    }
    template <class Dlg>
    void ExpectRoom(Dlg& dlg, int nTemplate) {
        auto bytes = Scaled(nTemplate);
        ASSERT_EQ(1,
                  dlg.CreateIndirect(reinterpret_cast<const DLGTEMPLATE*>(bytes.data()), nullptr));
        ::ShowWindow(dlg, SW_SHOWNOACTIVATE);
        ::RedrawWindow(dlg, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        ExpectSizeInUnits(dlg, 227, 124);
        ExpectNoOverlap(dlg);
        HDC hdc = ::GetDC(nullptr);
        for (const DialogItem& item : ItemsOf(dlg)) {
            SCOPED_TRACE(item.nId);
            const int cx = item.rc.right - item.rc.left, cy = item.rc.bottom - item.rc.top;
            if (item.nId == 1) {
                EXPECT_LE(48, cx);
                EXPECT_LE(48, cy);
            } else if (item.nId == 2) {
                EXPECT_LE(::GetSystemMetrics(SM_CXSMICON) - 4, cx);
            } else if (dlg.GetDlgCtrl(item.nId)->IsKindOf(L"CSStaticHTML")) {
                RECT rc{0, 0, cx, cy};
                const int nHeight =
                    static_cast<CSStaticHTML&>(*dlg.GetDlgCtrl(item.nId)).CalcHeight(hdc, &rc);
                EXPECT_LT(0, nHeight);
                EXPECT_LE(nHeight, cy);
            } else if (item.nId == 21543) {
                for (int n = 0; n < 4; ++n) ExpectRoomInList(hdc, item, n);
            } else {
                ExpectRoomForText(hdc, item);
            }
        }
        ::ReleaseDC(nullptr, hdc);
        ::DestroyWindow(dlg);
    }

  private:
    static SIZE SizeOfText(HDC hdc, HWND hwnd, const std::wstring& strText) {
        HGDIOBJ hBefore =
            ::SelectObject(hdc, reinterpret_cast<HFONT>(::SendMessageW(hwnd, WM_GETFONT, 0, 0)));
        RECT rc{};
        ::DrawTextW(hdc, strText.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
        ::SelectObject(hdc, hBefore);
        return {rc.right, rc.bottom};
    }
    static void ExpectRoomForText(HDC hdc, const DialogItem& item) {
        wchar_t szClass[32] = L"";
        ::GetClassNameW(item.hwnd, szClass, 32);
        const int nMark = std::wcscmp(szClass, L"Button") == 0 ? 18 : 0; // of a radio or check box
        SIZE size = SizeOfText(hdc, item.hwnd, WindowText(item.hwnd));
        const int cx = item.rc.right - item.rc.left, cy = item.rc.bottom - item.rc.top;
        const int nLines = nMark || size.cx <= cx ? 1 : size.cx / cx + 1;
        EXPECT_LE(size.cx + nMark, cx * nLines);
        EXPECT_LE(size.cy * nLines, cy + 1);
    }
    static void ExpectRoomInList(HDC hdc, const DialogItem& item, int nIndex) {
        wchar_t sz[64] = L"";
        ::SendMessageW(item.hwnd, CB_GETLBTEXT, static_cast<WPARAM>(nIndex),
                       reinterpret_cast<LPARAM>(sz));
        EXPECT_LE(SizeOfText(hdc, item.hwnd, sz).cx + ::GetSystemMetrics(SM_CXVSCROLL) + 8,
                  item.rc.right - item.rc.left);
    }
};

TEST_P(UpdateDlgAtDpi, EverythingHasRoom) {
    FakeMonitorDpi dpi(static_cast<UINT>(GetParam()));
    DlgCheckForUpdates check(1, 3650, nullptr);
    ExpectRoom(check, 21802);
    DlgGetUpdates get(
        1,
        L"Version <b>2.0</b> keeps the layouts of several screens apart, and restores "
        L"them when a screen comes back. <a>More about it</a>",
        nullptr);
    ExpectRoom(get, 21804);
}
INSTANTIATE_TEST_SUITE_P(Dpi, UpdateDlgAtDpi, testing::Values(96, 120, 144, 192),
                         [](const auto& row) { return std::to_string(row.param); });
