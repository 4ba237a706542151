#include "app/about/about.h"
#include "app/about/about_box.h"
#include "app/launch/open_html.h"
#include "app/other_window.h"
#include "app/shell_start_recorder.h"
#include "resources/resource_ids.h"
#include "runtime/base/ownership.h"
#include "support/heap_count.h"
#include "support/program_folder.h"
#include "support/start_process.h"
#include "support/test_window.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <atomic>

namespace {
constexpr LPARAM kAboutNumber = 370;

/// A dialog that says that it is the About box, and what it answers to the request to come forward.
struct OpenBox {
    explicit OpenBox(LRESULT nAnswer = 0, LPARAM nNumber = kAboutNumber)
        : window(
              [this, nAnswer, nNumber](HWND, UINT uMsg, WPARAM wParam,
                                       LPARAM lParam) -> std::optional<LRESULT> {
                  if (uMsg != GetMyCompanyMsgId() || lParam != nNumber) return std::nullopt;
                  if (wParam == kCompanyCodeIsDialog) return 1;
                  if (wParam != kCompanyCodeActivate) return std::nullopt;
                  ++nAsked;
                  return nAnswer;
              },
              OtherWindow::kDialogClass, L"a box") {}
    std::atomic<int> nAsked{0};
    OtherWindow window;
};

/// A window on the thread that shows the box, as the monitor's: counts its timer's messages, and
/// asks for the box when it gets WM_APP.
struct Caller {
    void Show() {
        TestWindow window([this](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (uMsg == WM_TIMER) ++nTimers;
            if (uMsg == WM_APP) ShowAboutOrActivate();
            return std::nullopt;
        });
        hwnd = window;
        ::SetTimer(window, 1, USER_TIMER_MINIMUM, nullptr);
        ShowAboutOrActivate();
    }
    std::atomic<int> nTimers{0};
    std::atomic<HWND> hwnd{nullptr};
};

/// A program that shows its About box; told to close it with the object.
class OtherProgram {
  public:
    OtherProgram() {
        std::wstring strLine = L"\"" + ProgramFolder() + L"about_probe.exe\"";
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        EXPECT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                       nullptr, &si, &pi));
        EXPECT_TRUE(WaitUntil([this] {
            hwndBox = FindMessageBox(pi.dwProcessId, kAboutTitle);
            return hwndBox != nullptr;
        }));
        ::SendMessageW(hwndBox, WM_NULL, 0, 0);
    }
    ~OtherProgram() {
        ::PostMessageW(hwndBox, WM_CLOSE, 0, 0);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, kTestDeadlineMs));
        DWORD dwCode = 1;
        ::GetExitCodeProcess(pi.hProcess, &dwCode);
        EXPECT_EQ(0u, dwCode);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    HWND Box() const { return hwndBox; }

  private:
    HWND hwndBox = nullptr;
    PROCESS_INFORMATION pi{};
};
} // namespace

// What is in the box

TEST(SimpleAbout, TellsNameVersionAndNotice) {
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_EQ(L"About Tessaly", WindowText(box));
    EXPECT_EQ(L"Tessaly v. 1.1", WindowText(box.Item(1003)));
    EXPECT_EQ(L"Copyright (c) 2017 Orvanta. All rights reserved.", WindowText(box.Item(1004)));
    EXPECT_EQ(nullptr, ::GetWindow(box, GW_OWNER));
    EXPECT_TRUE(::IsWindowVisible(box));
    EXPECT_EQ(box.Item(IDOK), box.Focus());
}

TEST(SimpleAbout, WindowHasTheProductsIconInBothSizes) {
    ShownBox box(&ShowAboutOrActivate);
    HICON hiconSmall = IconOfWindow(box, ICON_SMALL), hiconBig = IconOfWindow(box, ICON_BIG);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), SizeOfIcon(hiconSmall).cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), SizeOfIcon(hiconSmall).cy);
    EXPECT_EQ(::GetSystemMetrics(SM_CXICON), SizeOfIcon(hiconBig).cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYICON), SizeOfIcon(hiconBig).cy);
}

TEST(SimpleAbout, IconsOfTheWindowGoWithTheBox) {
    HICON hiconSmall = nullptr, hiconBig = nullptr;
    {
        ShownBox box(&ShowAboutOrActivate);
        hiconSmall = IconOfWindow(box, ICON_SMALL);
        hiconBig = IconOfWindow(box, ICON_BIG);
    }
    EXPECT_EQ(0, SizeOfIcon(hiconSmall).cx);
    EXPECT_EQ(0, SizeOfIcon(hiconBig).cx);
}

TEST(SimpleAbout, PictureOf48PixelsStandsInTheMiddleOfItsButton) {
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_TRUE(IsOwnerDrawn(box.Item(1001)));
    const SIZE size{70, 66};
    MemoryPicture picture(size.cx, size.cy, kUndrawn);
    DrawButtonInto(box, 1001, picture, size);
    RECT rc = DrawnPart(picture, size), rcPlace{11, 9, 59, 57}, rcBoth{};
    ::UnionRect(&rcBoth, &rc, &rcPlace);
    EXPECT_TRUE(::EqualRect(&rcBoth, &rcPlace)) << rc.left << " " << rc.top;
    EXPECT_LE(40, rc.right - rc.left);
    EXPECT_LE(40, rc.bottom - rc.top);
}

TEST(SimpleAbout, WebAddressIsALink) {
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_TRUE(IsOwnerDrawn(box.Item(1002)));
    EXPECT_EQ(L"orvanta.example", WindowText(box.Item(1002)));
    const SIZE size{400, 60}; // room for any size of text
    MemoryPicture picture(size.cx, size.cy, kUndrawn);
    DrawButtonInto(box, 1002, picture, size);
    int nLinkPixels = 0;
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) nLinkPixels += picture.Get(x, y) == RGB(0, 0, 187);
    EXPECT_LE(60, nLinkPixels); // the underline alone is as long as the text
    EXPECT_EQ(kUndrawn, picture.Get(0, 0)) << "it has a face";
    EXPECT_EQ(kUndrawn, picture.Get(399, 59));
}

TEST(SimpleAbout, HasTheTemplatesSizeAndRoomForEveryText) {
    ShownBox box(&ShowAboutOrActivate);
    ExpectSizeInUnits(box, 223, 86);
    ExpectNoOverlap(box);
    for (const DialogItem& item : ItemsOf(box)) {
        if (item.nId != 1001) ExpectTextFits(item); // that one is all picture
    }
}

// What it does

TEST(SimpleAbout, ClickOnTheWebAddressOpensTheMakersPage) {
    ShellStartRecorder recorder;
    ShownBox box(&ShowAboutOrActivate);
    box.Click(1002);
    ASSERT_EQ(1u, recorder.calls.size());
    ShellCall call = recorder.TakeOne();
    EXPECT_EQ(0, call.bEx);
    EXPECT_EQ(box, call.hwnd);
    EXPECT_EQ(MaybeText(), call.verb);
    EXPECT_EQ(MaybeText(pszMyCompanyURL), call.file);
    EXPECT_EQ(MaybeText(), call.parameters);
    EXPECT_EQ(MaybeText(), call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_TRUE(box.IsOpen());
}

TEST(SimpleAbout, TabAndSpaceOpenTheMakersPage) {
    ShellStartRecorder recorder;
    ShownBox box(&ShowAboutOrActivate);
    box.PressKey(VK_TAB);
    ASSERT_TRUE(WaitUntil([&] { return box.Focus() == box.Item(1002); }));
    ::SendMessageW(box.Item(1002), WM_KEYDOWN, VK_SPACE, 1);
    ::SendMessageW(box.Item(1002), WM_KEYUP, VK_SPACE, LPARAM{0xC0000001});
    EXPECT_EQ(1u, recorder.calls.size());
    box.PressKey(VK_TAB); // the picture is passed over
    EXPECT_TRUE(WaitUntil([&] { return box.Focus() == box.Item(IDOK); }));
}

TEST(SimpleAbout, ClickOnThePictureDoesNothing) {
    ShellStartRecorder recorder;
    ShownBox box(&ShowAboutOrActivate);
    box.Click(1001);
    ::SendMessageW(box, WM_NULL, 0, 0);
    EXPECT_EQ(0u, recorder.calls.size());
    EXPECT_TRUE(box.IsOpen());
}

struct ClosingCase {
    const char* pszName;
    void (*pfnClose)(const ShownBox&);
};
class SimpleAboutClosing : public testing::TestWithParam<ClosingCase> {};
TEST_P(SimpleAboutClosing, EndsTheCall) {
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_TRUE(box.IsOpen());
    GetParam().pfnClose(box);
    EXPECT_TRUE(box.HasClosed());
    EXPECT_FALSE(::IsWindow(box));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, SimpleAboutClosing,
    testing::Values(ClosingCase{"Escape", [](const ShownBox& box) { box.PressKey(VK_ESCAPE); }},
                    ClosingCase{"Return", [](const ShownBox& box) { box.PressKey(VK_RETURN); }},
                    ClosingCase{"OkButton", [](const ShownBox& box) { box.Click(IDOK); }},
                    ClosingCase{"CloseButton",
                                [](const ShownBox& box) {
                                    ::PostMessageW(box, WM_SYSCOMMAND, SC_CLOSE, 0);
                                }}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(SimpleAbout, TimersOfItsThreadGoOn) {
    Caller caller;
    ShownBox box([&] { caller.Show(); });
    int nBefore = caller.nTimers;
    EXPECT_TRUE(WaitUntil([&] { return caller.nTimers >= nBefore + 3; }));
    EXPECT_TRUE(box.IsOpen());
}

TEST(SimpleAbout, AnswersToItsNumberAlone) {
    ShownBox box(&ShowAboutOrActivate);
    auto Ask = [&](WPARAM nCode, LPARAM nNumber) {
        return ::SendMessageW(box, GetMyCompanyMsgId(), nCode, nNumber);
    };
    EXPECT_EQ(1, Ask(121, 370));
    EXPECT_EQ(0, Ask(121, 371));
    EXPECT_EQ(0, Ask(121, 0));
    EXPECT_EQ(0, Ask(3, 370)); // whoever asks brings it forward
}

TEST(SimpleAbout, FiftyOpeningsLeaveNothing) {
    { ShownBox box(&ShowAboutOrActivate); } // makes what the process keeps
    { ShownBox box(&ShowAboutOrActivate); }
    int nDrawing = CountGdiObjects(), nWindows = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 50; ++n) {
        ShownBox box(&ShowAboutOrActivate);
    }
    EXPECT_EQ(nDrawing, CountGdiObjects());
    EXPECT_EQ(nWindows, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

// One box at a time

TEST(ShowAboutOrActivate, SecondCallBringsTheOpenBoxForward) {
    ShownBox box(&ShowAboutOrActivate);
    OtherWindow front;
    ::SetForegroundWindow(front);
    ASSERT_EQ(front, ::GetForegroundWindow());
    ShowAboutOrActivate(); // returns at once
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == box; }));
    EXPECT_EQ(1, ShownBox::Count());
    EXPECT_TRUE(box.IsOpen());
}

TEST(ShowAboutOrActivate, SecondCallOnTheBoxsOwnThreadMakesNoOther) {
    Caller caller;
    ShownBox box([&] { caller.Show(); });
    OtherWindow front;
    ::SetForegroundWindow(front);
    ::SendMessageW(caller.hwnd, WM_APP, 0, 0);
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == box; }));
    EXPECT_EQ(1, ShownBox::Count());
}

TEST(ShowAboutOrActivate, SecondCallRestoresAnIconicBox) {
    ShownBox box(&ShowAboutOrActivate);
    ::ShowWindow(box, SW_MINIMIZE);
    ASSERT_TRUE(::IsIconic(box));
    ShowAboutOrActivate();
    EXPECT_FALSE(::IsIconic(box));
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == box; }));
    EXPECT_EQ(1, ShownBox::Count());
}

TEST(ShowAboutOrActivate, BoxOfAnotherProcessIsBroughtForward) {
    OtherProgram program;
    OtherWindow front;
    ::SetForegroundWindow(front);
    ShowAboutOrActivate();
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == program.Box(); }));
    EXPECT_EQ(0, ShownBox::Count());
}

TEST(ShowAboutOrActivate, BoxOfAnotherProcessIsRestored) {
    OtherProgram program;
    ::ShowWindow(program.Box(), SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([&] { return ::IsIconic(program.Box()); }));
    ShowAboutOrActivate();
    EXPECT_TRUE(WaitUntil([&] { return !::IsIconic(program.Box()); }));
    EXPECT_EQ(0, ShownBox::Count());
}

TEST(ShowAboutOrActivate, BringsAnOpenBoxForwardInstead) {
    OpenBox box;
    OtherWindow front;
    ::SetForegroundWindow(front);
    ShowAboutOrActivate();
    EXPECT_EQ(1, box.nAsked);
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == box.window; }));
    EXPECT_EQ(0, ShownBox::Count());
}

TEST(ShowAboutOrActivate, RestoresAnOpenBoxThatIsIconic) {
    OpenBox box;
    box.window.Minimise();
    ASSERT_TRUE(::IsIconic(box.window));
    ShowAboutOrActivate();
    EXPECT_FALSE(::IsIconic(box.window));
}

TEST(ShowAboutOrActivate, LeavesABoxAloneThatCameForwardItself) {
    OpenBox box(1);
    box.window.Minimise();
    ShowAboutOrActivate();
    EXPECT_EQ(1, box.nAsked);
    EXPECT_TRUE(::IsIconic(box.window));
}

TEST(ShowAboutOrActivate, DialogsOfOtherNumbersAreNotTaken) {
    OpenBox other(1, 371);
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_EQ(0, other.nAsked);
    EXPECT_EQ(1, ShownBox::Count());
}

TEST(ShowAboutOrActivate, ShowsABoxAgainWhenTheFirstIsClosed) {
    { ShownBox box(&ShowAboutOrActivate); }
    EXPECT_EQ(0, ShownBox::Count());
    ShownBox box(&ShowAboutOrActivate);
    EXPECT_EQ(1, ShownBox::Count());
}
