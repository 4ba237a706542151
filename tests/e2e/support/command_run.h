#pragma once
#include "support/wait_until.h"

#include <windows.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The program's commands, run as a script, a console or a link on the desktop runs them.

/// What a command may take that waits for something: each of its waits ends after 15 s.
constexpr DWORD kCommandDeadlineMs = 20000;
constexpr DWORD kNotEnded = 0xFFFFFFFF;

/// By what a command tells how it went. Written down here once more: scripts go by these numbers.
enum CommandCode : DWORD {
    kCodeDone = 0,
    kCodeBadSwitch = 2,
    kCodeNotWritten = 5,
    kCodeNoSuchSnapshot = 7,
    kCodeDamaged = 8,
    kCodeNoShell = 9,
    kCodeNoFile = 10,
    kCodeNoExport = 11,
    kCodeLeftOut = 12,
    kCodeBusy = 13,
    kCodeAutoArranged = 14,
};

std::string ToUtf8(const std::wstring& str);

/// How a command ended, with the bytes that it wrote.
struct CommandEnd {
    DWORD dwCode = kNotEnded;
    std::string strOut, strErr;
    std::wstring strBox; // the text of a box that came though nobody expected one

    std::string All() const { return strOut + strErr; }
    bool Tells(const std::string& str) const { return All().find(str) != std::string::npos; }
    bool Tells(const std::wstring& str) const { return Tells(ToUtf8(str)); }
};

/// Which of its outputs lead to files of the test's; the others lead nowhere.
enum class Redirected { Both, Out, Error };

/// A command that runs, without a console. It is ended without warning when the object goes.
class CommandProcess {
  public:
    CommandProcess();
    ~CommandProcess();
    CommandProcess(const CommandProcess&) = delete;
    CommandProcess& operator=(const CommandProcess&) = delete;

    /// Throws std::runtime_error. The product's folder is the current one if none is given.
    void Start(const std::wstring& strArguments, Redirected redirected = Redirected::Both,
               const std::wstring& strCurrent = {});
    DWORD Id() const { return dwId; }
    bool IsRunning() const;
    void Kill();
    /// Waits for its end; the code is kNotEnded if that does not come in time. A box that it shows
    /// is closed.
    CommandEnd Wait(DWORD nMs = kCommandDeadlineMs);

  private:
    struct Files;
    std::unique_ptr<Files> files;
    HANDLE hProcess = nullptr;
    DWORD dwId = 0;
};

CommandEnd RunCommand(const std::wstring& strArguments, Redirected redirected = Redirected::Both,
                      const std::wstring& strCurrent = {});

/// How the program comes to the console of the one that starts it.
enum class ConsoleUse {
    Shared,  // it has it from its start on, as the test platform does it
    Attached // it has none and has to ask for it, as on Windows
};
/// Runs a command from a program that has a console. What stands on the screen afterwards is its
/// output, lines without the blanks at their ends.
CommandEnd RunOnConsole(const std::wstring& strArguments, ConsoleUse use);

struct SeenCommandBox {
    std::wstring strTitle, strText;
    int bHasIcon = 0;
    std::vector<int> buttons;
};
struct CommandBoxes {
    DWORD dwCode = kNotEnded;
    std::vector<SeenCommandBox> boxes;
};
/// Runs a command where there is no console and nothing is redirected; presses that button in each
/// box that comes.
CommandBoxes RunWithBoxes(const std::wstring& strArguments, int nButton = IDOK);
