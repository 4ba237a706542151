// The dialog's resource as it lies in the library, and as the platform makes it.

#include "progress/dlg_support.h"

namespace {
struct Row {
    DWORD nId;
    const wchar_t* pszClass; // in whatever case
    DWORD dwStyle;
    short x, y, cx, cy;
    std::wstring strText;
};
const Row kRows[] = {
    {28003, L"STATIC", 0x50020000, 16, 16, 168, 8, L""},
    {28004, L"STATIC", 0x50020000, 16, 28, 168, 8, L""},
    {28005, L"STATIC", 0x50020000, 16, 40, 168, 8, L""},
    {28006, L"STATIC", 0x50020000, 16, 52, 168, 8, L""},
    {28007, L"MSCTLS_PROGRESS32", 0x50000000, 16, 68, 128, 8, L""},
    {2, L"BUTTON", 0x50010000, 148, 64, 36, 14, L"Cancel"},
    {28010, L"STATIC", 0x50000012, 4, 4, 192, 84, L""},
};

/// Reads what follows one another in a template.
class Reader {
  public:
    explicit Reader(const void* p) : pStart(static_cast<const char*>(p)) {}
    template <class T>
    T Get() {
        T value;
        memcpy(&value, pStart + cb, sizeof(T));
        cb += sizeof(T);
        return value;
    }
    /// A text, or the number behind 0xFFFF.
    std::wstring GetName() {
        WORD w = Get<WORD>();
        if (w == 0xFFFF) return std::to_wstring(Get<WORD>());
        std::wstring str;
        for (; w; w = Get<WORD>()) str += static_cast<wchar_t>(w);
        return str;
    }
    void Align() { cb = (cb + 3) & ~size_t{3}; }
    void Skip(size_t n) { cb += n; }

  private:
    const char* pStart;
    size_t cb = 0;
};

class ProgressTemplate : public ProgressDialogTest {};

RECT ClientRectOf(HWND hwndDlg, int nId) {
    RECT rc{};
    ::GetWindowRect(::GetDlgItem(hwndDlg, nId), &rc);
    ::MapWindowPoints(nullptr, hwndDlg, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}
} // namespace

TEST_F(ProgressTemplate, HoldsWhatItIsToHold) {
    HRSRC hres = ::FindResourceW(nullptr, MAKEINTRESOURCEW(kProgressTemplate), RT_DIALOG);
    ASSERT_TRUE(hres);
    Reader in(::LockResource(::LoadResource(nullptr, hres)));
    ASSERT_EQ(in.Get<WORD>(), 1);
    ASSERT_EQ(in.Get<WORD>(), 0xFFFF);
    in.Skip(2 * sizeof(DWORD)); // help id, extended style
    EXPECT_EQ(in.Get<DWORD>(), 0x80CE0044u);
    ASSERT_EQ(in.Get<WORD>(), std::size(kRows));
    in.Skip(2 * sizeof(short)); // place
    EXPECT_EQ(in.Get<short>(), 200);
    EXPECT_EQ(in.Get<short>(), 92);
    EXPECT_EQ(in.GetName(), L""); // menu
    EXPECT_EQ(in.GetName(), L""); // class
    EXPECT_EQ(in.GetName(), L"Processing...");
    EXPECT_EQ(in.Get<WORD>(), 8);
    in.Skip(2 * sizeof(WORD)); // weight, slant and character set
    EXPECT_EQ(in.GetName(), L"Tahoma");
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.nId);
        in.Align();
        in.Skip(2 * sizeof(DWORD));
        EXPECT_EQ(in.Get<DWORD>(), row.dwStyle);
        EXPECT_EQ(in.Get<short>(), row.x);
        EXPECT_EQ(in.Get<short>(), row.y);
        EXPECT_EQ(in.Get<short>(), row.cx);
        EXPECT_EQ(in.Get<short>(), row.cy);
        EXPECT_EQ(in.Get<DWORD>(), row.nId);
        std::wstring strClass = in.GetName();
        if (strClass == L"130") strClass = L"STATIC"; // the numbers of the platform's own
        if (strClass == L"128") strClass = L"BUTTON";
        EXPECT_EQ(::lstrcmpiW(strClass.c_str(), row.pszClass), 0);
        EXPECT_EQ(in.GetName(), row.strText);
        in.Skip(in.Get<WORD>());
    }
}

TEST_F(ProgressTemplate, BecomesTheDialogPixelByPixel) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(TextOf(hwnd), kTemplateTitle);
    RECT rc{0, 0, 200, 92}, rcClient{};
    ::MapDialogRect(hwnd, &rc);
    ::GetClientRect(hwnd, &rcClient);
    EXPECT_EQ(rcClient.right, rc.right);
    EXPECT_EQ(rcClient.bottom, rc.bottom);
    constexpr DWORD kFrameStyle = 0xFFFF0000 & ~(WS_VISIBLE | WS_CLIPSIBLINGS);
    EXPECT_EQ(StyleOf(hwnd) & kFrameStyle, 0x80CE0000u);
    int nChildren = 0;
    for (HWND h = ::GetWindow(hwnd, GW_CHILD); h; h = ::GetWindow(h, GW_HWNDNEXT)) ++nChildren;
    EXPECT_EQ(nChildren, static_cast<int>(std::size(kRows)));
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.nId);
        HWND hwndItem = ::GetDlgItem(hwnd, static_cast<int>(row.nId));
        ASSERT_TRUE(hwndItem);
        RECT rcItem = ClientRectOf(hwnd, static_cast<int>(row.nId));
        rc = {row.x, row.y, row.cx, row.cy};
        ::MapDialogRect(hwnd, &rc);
        EXPECT_EQ(rcItem.left, rc.left);
        EXPECT_EQ(rcItem.top, rc.top);
        EXPECT_EQ(rcItem.right - rcItem.left, rc.right);
        EXPECT_EQ(rcItem.bottom - rcItem.top, rc.bottom);
        EXPECT_TRUE(IsShown(hwndItem));
        EXPECT_EQ(TextOf(hwndItem), row.strText);
    }
}

TEST_F(ProgressTemplate, QuestionIsAString) {
    wchar_t sz[100] = L"";
    ::LoadStringW(nullptr, 28008, sz, 100);
    EXPECT_STREQ(sz, kQuestion);
}
