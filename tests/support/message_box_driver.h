#pragma once
#include "support/wait_until.h"

#include <windows.h>
#include <optional>
#include <string>
#include <vector>

// Message boxes of this process and of others, found by their class, read and answered. Needs
// nothing of the product.

/// A message box as it was found.
struct SeenMessageBox {
    std::wstring strTitle;
    std::wstring strText;
    HWND hwndOwner = nullptr;
    LONG_PTR nStyle = 0;
    std::vector<int> buttons; // ids of its buttons, in their order
    HICON hicon = nullptr;    // its picture; of its process
    int bHasIcon = 0;
};

/// The message box that a process shows now, the one in front if there are more; null if there is
/// none. A null title stands for any.
HWND FindMessageBox(DWORD dwProcess, const wchar_t* pszTitle = nullptr);
/// What stands in an open box.
SeenMessageBox ReadMessageBox(HWND hwndBox);
/// Waits for a message box of a process, presses the button with that id (IDOK and the like) and
/// waits until the box has gone. Nothing if no box comes in time. Not for boxes of the calling
/// thread, which sits in them: those are MessageBoxDriver's.
std::optional<SeenMessageBox> AnswerMessageBox(DWORD dwProcess, int nButton,
                                               DWORD nDeadlineMs = kTestDeadlineMs);
/// 1 if a message box with that title of this process is open now.
int IsMessageBoxOpen(const wchar_t* pszTitle = L"Tessaly");

/// Answers the next message boxes of this process from a thread of its own, while the test's thread
/// sits in them: the n-th box gets the n-th button. Boxes are known by the title "Tessaly"; another
/// title can be given, and the empty one stands for any. Waits for a box until Finish or its own
/// end, however late it comes.
///
///     MessageBoxDriver driver({IDYES});
///     EXPECT_EQ(IDYES, Msg(nullptr, MB_YESNO, L"text"));
///     ASSERT_EQ(1u, driver.Finish().size());
class MessageBoxDriver {
  public:
    explicit MessageBoxDriver(std::vector<int> buttonsToPress, std::wstring strTitle = L"Tessaly");
    ~MessageBoxDriver();
    MessageBoxDriver(const MessageBoxDriver&) = delete;
    MessageBoxDriver& operator=(const MessageBoxDriver&) = delete;

    /// Stops and gives the boxes that were answered. Fewer than asked for: the others never came.
    const std::vector<SeenMessageBox>& Finish();

  private:
    static DWORD WINAPI ThreadProc(void* pDriver);
    void Run();

    std::vector<int> buttons;
    std::wstring strBoxTitle;
    std::vector<SeenMessageBox> seen;
    HANDLE hThread = nullptr;
    HANDLE hStop = nullptr;
};
