// The page "Progress".

#include "gallery/gallery_test_support.h"
#include "support/message_box_driver.h"

#include <commctrl.h>
#include <filesystem>
#include <fstream>

namespace {
// What a progress dialog has.
constexpr int kLineIds[] = {28003, 28004, 28005, 28006};
constexpr int kBarId = 28007;
constexpr const wchar_t* kQuestion = L"Are you sure you want to cancel this operation?";

/// A folder with files, gone with the object.
class FolderOfFiles {
  public:
    FolderOfFiles() { std::filesystem::create_directories(strPath + L"\\below"); }
    ~FolderOfFiles() {
        std::error_code ignored;
        std::filesystem::remove_all(strPath, ignored);
    }
    void Write(const wchar_t* pszName, const char* psz) const {
        std::ofstream(std::filesystem::path(strPath) / pszName, std::ios::binary) << psz;
    }
    /// So long that it takes minutes to read, without taking room.
    void WriteLong(const wchar_t* pszName) const {
        HANDLE h = ::CreateFileW((strPath + L"\\" + pszName).c_str(), GENERIC_WRITE, 0, nullptr,
                                 CREATE_ALWAYS, 0, nullptr);
        LARGE_INTEGER size{};
        size.QuadPart = 1ll << 37;
        ::SetFilePointerEx(h, size, nullptr, FILE_BEGIN);
        ::SetEndOfFile(h);
        ::CloseHandle(h);
    }
    const std::wstring strPath = L"C:\\gallery-files";
};

class GalleryProgress : public Gallery {
  protected:
    GalleryProgress() { GoToPage(5); }

    void Set(const wchar_t* pszKey, const std::wstring& strValue) {
        PressKeys(Main(), {pszKey});
        TypeText(Main(), strValue);
    }
    /// Starts the steps and gives their dialog.
    HWND Run() {
        ClickOn(PageItem(IDC_RUN_JOB));
        return WaitForDialog(L"Counting");
    }
    HWND WaitForQuestion() const {
        HWND hwndBox = nullptr;
        WaitUntil([&] { return (hwndBox = FindMessageBox(ProcessId(), L"Tessaly")) != nullptr; });
        return hwndBox;
    }
    static std::wstring Line(HWND hwndDlg, int nLine) {
        return TextOf(::GetDlgItem(hwndDlg, kLineIds[nLine]));
    }
    static int Pos(HWND hwndBar) {
        return static_cast<int>(::SendMessageW(hwndBar, PBM_GETPOS, 0, 0));
    }
    /// True when the bar has moved from where it is now.
    static bool Moves(HWND hwndBar) {
        const int nPos = Pos(hwndBar);
        return WaitUntil([&] { return Pos(hwndBar) != nPos; });
    }
    /// True when the text of the control begins so.
    static bool WaitForStart(HWND hwnd, const std::wstring& strStart) {
        return WaitUntil([&] { return TextOf(hwnd).starts_with(strStart); });
    }
    /// The right edge of a window is pulled by the mouse.
    static void DragRightEdge(HWND hwnd, int dx) {
        constexpr int kIntoEdge = 2;
        const RECT rc = RectOf(hwnd);
        POINT pt{rc.right - kIntoEdge, (rc.top + rc.bottom) / 2};
        mouse::Drag(pt, {pt.x + dx, pt.y});
    }
    bool MainIsBack() const {
        return WaitUntil(
            [&] { return ::IsWindowEnabled(Main()) && ::GetForegroundWindow() == Main(); });
    }
};
} // namespace

TEST_F(GalleryProgress, WorkOnTheInterfaceThreadIsCanceledOnceWithNoAndOnceWithYes) {
    Set(L"alt+d", L"0");
    Set(L"alt+s", L"2000");
    HWND hwnd = Run();
    ASSERT_TRUE(hwnd);
    EXPECT_TRUE(WaitUntil([&] { return !::IsWindowEnabled(Main()); }));
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 0).ends_with(L" of 2000"); }));
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 1) == L"Each step takes 20 milliseconds."; }));
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 2).ends_with(L" seconds"); }));
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 3).ends_with(L" percent"); }));
    EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId)));

    ClickOn(::GetDlgItem(hwnd, IDCANCEL)); // with the mouse, and No
    HWND hwndBox = WaitForQuestion();
    ASSERT_TRUE(hwndBox);
    EXPECT_EQ(ReadMessageBox(hwndBox).strText, kQuestion);
    EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId))); // the work goes on behind it
    TakePicture(L"progress-question", {Main(), hwnd, hwndBox});
    ClickOn(::GetDlgItem(hwndBox, IDNO));
    EXPECT_TRUE(WaitUntilGone(hwndBox));
    EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId)));
    TakePicture(L"progress-dialog", {Main(), hwnd});

    PressKeys(hwnd, {L"Return"}); // Cancel has the keyboard; and Yes
    hwndBox = WaitForQuestion();
    ASSERT_TRUE(hwndBox);
    PressKeys(hwndBox, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForStart(PageItem(IDC_JOB_RESULT), L"Last result: canceled after "));
    EXPECT_TRUE(MainIsBack());
    EXPECT_TRUE(Leave());
}

TEST_F(GalleryProgress, DialogIsResizedByItsEdgeAndTheNextOneIsAsWide) {
    constexpr int dx = 70;
    Set(L"alt+d", L"0");
    Set(L"alt+s", L"2000");
    PressKeys(Main(), {L"alt+o"}); // on a thread of its own
    HWND hwnd = Run();
    ASSERT_TRUE(hwnd);
    const RECT rc = RectOf(hwnd), rcBar = RectOf(::GetDlgItem(hwnd, kBarId));
    const RECT rcCancel = RectOf(::GetDlgItem(hwnd, IDCANCEL));
    DragRightEdge(hwnd, dx);
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(hwnd)) == WidthOf(rc) + dx; }));
    EXPECT_EQ(HeightOf(RectOf(hwnd)), HeightOf(rc));
    EXPECT_EQ(WidthOf(RectOf(::GetDlgItem(hwnd, kBarId))), WidthOf(rcBar) + dx);
    EXPECT_EQ(RectOf(::GetDlgItem(hwnd, IDCANCEL)).left, rcCancel.left + dx);
    EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId)));
    TakePicture(L"progress-wider", {Main(), hwnd});
    PressKeys(hwnd, {L"Escape"});
    HWND hwndBox = WaitForQuestion();
    ASSERT_TRUE(hwndBox);
    PressKeys(hwndBox, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForStart(PageItem(IDC_JOB_RESULT), L"Last result: canceled after "));
    EXPECT_TRUE(MainIsBack());

    Set(L"alt+l", L"1");
    Set(L"alt+s", L"30");
    hwnd = Run();
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(WidthOf(RectOf(hwnd)), WidthOf(rc) + dx);
    EXPECT_LT(HeightOf(RectOf(hwnd)), HeightOf(rc)); // of one line
    EXPECT_FALSE(::IsWindowVisible(::GetDlgItem(hwnd, kLineIds[1])));
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForText(PageItem(IDC_JOB_RESULT), L"Last result: done after 30 steps"));
    EXPECT_TRUE(MainIsBack());
}

TEST_F(GalleryProgress, WorkThatEndsBeforeTheDelayShowsNothing) {
    Set(L"alt+d", L"30000");
    Set(L"alt+s", L"25");
    ClickOn(PageItem(IDC_RUN_JOB));
    EXPECT_TRUE(WaitUntil([&] {
        EXPECT_FALSE(FindDialog(L"Counting"));
        return TextOf(PageItem(IDC_JOB_RESULT)) == L"Last result: done after 25 steps";
    }));
    EXPECT_TRUE(MainIsBack());
}

TEST_F(GalleryProgress, TickerPausesBehindTheQuestionHalfWay) {
    Set(L"alt+d", L"0");
    Set(L"alt+s", L"60");
    PressKeys(Main(), {L"alt+o", L"alt+i", L"alt+c"});
    HWND hwnd = Run();
    ASSERT_TRUE(hwnd);
    EXPECT_FALSE(::IsWindowEnabled(::GetDlgItem(hwnd, IDCANCEL)));
    HWND hwndBox = WaitForQuestion();
    ASSERT_TRUE(hwndBox);
    EXPECT_EQ(ReadMessageBox(hwndBox).strText, L"Half of the work is done. Shall it go on?");
    EXPECT_TRUE(WaitUntil([&] { return !::IsWindowVisible(hwnd); }));
    PressKeys(hwndBox, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwndBox));
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(
        WaitForStart(PageItem(IDC_JOB_RESULT), L"Last result: done after 60 steps, the bar made "));
    EXPECT_TRUE(MainIsBack());
}

TEST_F(GalleryProgress, BarOfThePageGoesPausesAndSlides) {
    HWND hwndBar = PageItem(IDC_BAR), hwndText = PageItem(IDC_BAR_TEXT);
    EXPECT_TRUE(WaitForText(hwndText, L"0 percent"));
    PressKeys(Main(), {L"alt+g"});
    EXPECT_TRUE(Moves(hwndBar));
    EXPECT_TRUE(WaitUntil([&] { return TextOf(hwndText).ends_with(L" s remaining"); }));
    PressKeys(Main(), {L"alt+k"}); // there is nothing of that to be seen here
    PressKeys(Main(), {L"alt+u"});
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(IDC_BAR_PAUSE)); }));
    const int nPos = Pos(hwndBar);
    EXPECT_TRUE(HoldsFor([&] { return Pos(hwndBar) == nPos; }, 200));
    PressKeys(Main(), {L"alt+m"});
    EXPECT_TRUE(
        WaitUntil([&] { return (::GetWindowLongPtrW(hwndBar, GWL_STYLE) & PBS_MARQUEE) != 0; }));
    TakePicture(L"progress-marquee", {Main()});
    PressKeys(Main(), {L"alt+m"});
    EXPECT_TRUE(
        WaitUntil([&] { return (::GetWindowLongPtrW(hwndBar, GWL_STYLE) & PBS_MARQUEE) == 0; }));
    PressKeys(Main(), {L"alt+u"});
    EXPECT_TRUE(Moves(hwndBar));
    PressKeys(Main(), {L"alt+k"});
    EXPECT_TRUE(WaitUntil([&] { return !IsChecked(PageItem(IDC_BAR_TASKBAR)); }));
    EXPECT_TRUE(Leave());
}

TEST_F(GalleryProgress, DigestsOfAFolderAreListed) {
    FolderOfFiles folder;
    folder.Write(L"abc.txt", "abc");
    folder.Write(L"below\\empty.txt", "");
    ClickOn(PageItem(IDC_FOLDER));
    TypeText(Main(), folder.strPath);
    ClickOn(PageItem(IDC_DIGEST));
    EXPECT_TRUE(WaitForText(PageItem(IDC_DIGEST_RESULT), L"Last result: 2 of 2 files, 3 bytes"));
    HWND hwndList = PageItem(IDC_DIGESTS);
    std::vector<std::wstring> lines;
    for (int n = 0; n < ::SendMessageW(hwndList, LB_GETCOUNT, 0, 0); ++n) {
        wchar_t sz[200] = L"";
        ::SendMessageW(hwndList, LB_GETTEXT, n, reinterpret_cast<LPARAM>(sz));
        lines.push_back(sz);
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, (std::vector<std::wstring>{
                         L"a9993e364706816aba3e25717850c26c9cd0d89d  abc.txt",
                         L"da39a3ee5e6b4b0d3255bfef95601890afd80709  below\\empty.txt"}));
    EXPECT_TRUE(MainIsBack());
    TakePicture(L"progress-digests", {Main()});
}

TEST_F(GalleryProgress, DigestsTellHowFarTheyAreAndAreCanceled) {
    FolderOfFiles folder;
    folder.WriteLong(L"long.bin");
    ClickOn(PageItem(IDC_FOLDER));
    TypeText(Main(), folder.strPath);
    ClickOn(PageItem(IDC_DIGEST));
    HWND hwnd = WaitForDialog(L"SHA-1");
    ASSERT_TRUE(hwnd);
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 1) == L"long.bin"; }));
    EXPECT_EQ(Line(hwnd, 0), folder.strPath);
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 2).ends_with(L" of 131072 MB"); }));
    EXPECT_TRUE(WaitUntil([&] { return Line(hwnd, 3).size() > wcslen(L"Time remaining: "); }));
    EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId)));
    TakePicture(L"progress-sha1", {Main(), hwnd});
    for (int nAnswer : {IDNO, IDYES}) {
        ClickOn(::GetDlgItem(hwnd, IDCANCEL));
        HWND hwndBox = WaitForQuestion();
        ASSERT_TRUE(hwndBox);
        ClickOn(::GetDlgItem(hwndBox, nAnswer));
        EXPECT_TRUE(WaitUntilGone(hwndBox));
        if (nAnswer == IDNO) {
            EXPECT_TRUE(Moves(::GetDlgItem(hwnd, kBarId)));
        }
    }
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(
        WaitForStart(PageItem(IDC_DIGEST_RESULT), L"Last result: canceled after 0 of 1 files, "));
    EXPECT_TRUE(MainIsBack());
}

TEST_F(GalleryProgress, FolderIsChosenFromATree) {
    ClickOn(PageItem(IDC_BROWSE));
    HWND hwndTree = nullptr;
    ASSERT_TRUE(WaitUntil([&] {
        hwndTree = ::GetForegroundWindow();
        DWORD dwProcess = 0;
        ::GetWindowThreadProcessId(hwndTree, &dwProcess);
        return dwProcess == ProcessId() && hwndTree != Main();
    }));
    PressKeys(hwndTree, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwndTree));
    EXPECT_TRUE(MainIsBack());
    EXPECT_EQ(TextOf(PageItem(IDC_FOLDER)), L"");
}
