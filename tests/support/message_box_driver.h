#pragma once
#include <windows.h>
#include <string>
#include <vector>

/// A message box as the driver found it.
struct SeenMessageBox {
    std::wstring strTitle;
    std::wstring strText;
    HWND hwndOwner = nullptr;
    LONG_PTR nStyle = 0;
    std::vector<int> buttons; // ids of its buttons, in their order
    int bHasIcon = 0;
    HICON hicon = nullptr;
};

/// Answers the next message boxes of this process from a thread of its own, while the test's thread
/// sits in them: the n-th box gets the n-th button. Boxes are found by class and by the title
/// "Tessaly"; another title can be given. Waits for a box until Finish or its own end.
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
    HWND FindBox() const;

    std::vector<int> buttons;
    std::wstring strBoxTitle;
    std::vector<SeenMessageBox> seen;
    HANDLE hThread = nullptr;
    HANDLE hStop = nullptr;
};

/// 1 if a message box with that title of this process is open now.
int IsMessageBoxOpen(const wchar_t* pszTitle = L"Tessaly");
