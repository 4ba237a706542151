#pragma once
#include "e2e/engine_test_support.h"
#include "e2e/support/command_run.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

/// The program's commands beside a test desktop.
class CommandTest : public EngineTest {
  protected:
    /// Runs a command and looks at its exit code; what failed is told, where it is told.
    CommandEnd Expect(CommandCode code, const std::wstring& strArguments,
                      const std::wstring& strCurrent = {});
    /// Stores a good snapshot of icons that no desktop has; its name.
    std::wstring Plant(uint64_t nSecondsAgo, int nIcons = 3, int nVariant = 0);
    /// The same for icons that are given.
    std::wstring Plant(uint64_t nSecondsAgo, const std::vector<StoredIcon>& icons);
    /// A snapshot whose digest does not hold.
    std::wstring PlantDamaged(uint64_t nSecondsAgo, int nIcons = 3);
    void Mark(const std::wstring& strName);
    std::set<std::wstring> Names();

    /// A desktop of that many icons, and the monitor on it if it is wanted; no snapshots.
    void Begin(bool bWithMonitor, int nIcons = 3);
    /// Nothing of the program's is in the shell, and no monitor is there.
    testing::AssertionResult LeftNothing();
};

/// What has to be the same with a monitor that runs and without one. Such a test begins with a
/// plain desktop; at its end the monitor works on, or nothing has been left behind.
class CommandBoth : public CommandTest, public testing::WithParamInterface<bool> {
  protected:
    void Begin(int nIcons = 3) { CommandTest::Begin(GetParam(), nIcons); }
    void TearDown() override;
};
std::string WithOrWithout(const testing::TestParamInfo<bool>& row);
#define INSTANTIATE_COMMAND_BOTH(suite)                                                            \
    INSTANTIATE_TEST_SUITE_P(Monitor, suite, testing::Bool(), WithOrWithout)

/// Records of icons that no desktop has, as SomeIcons makes them, with keys that are of no names:
/// those take the platform long for many.
std::vector<StoredIcon> MadeIcons(int nIcons, int nVariant = 0);
/// The lines of a text, each of which has to end with a carriage return and a line feed.
std::vector<std::string> Lines(const std::string& strText);
/// A snapshot's time as the commands tell and take it.
std::wstring LocalText(const std::wstring& strName);
/// A snapshot's time as it stands in a file.
std::string UtcText(const std::wstring& strName);

/// The key of the snapshots can be neither opened nor made while the object lives.
class RefusedKey {
  public:
    RefusedKey();
    ~RefusedKey();
    RefusedKey(const RefusedKey&) = delete;
    RefusedKey& operator=(const RefusedKey&) = delete;
};

/// A process that does nothing while the object lives.
class SuspendedProcess {
  public:
    explicit SuspendedProcess(DWORD dwProcess);
    ~SuspendedProcess();
    SuspendedProcess(const SuspendedProcess&) = delete;
    SuspendedProcess& operator=(const SuspendedProcess&) = delete;

  private:
    HANDLE hProcess;
};

/// The mutexes of the logon session that have names.
std::set<std::wstring> SessionMutexes();
/// The mark of a program that runs already, without one.
class TakenMark {
  public:
    TakenMark() : h(::CreateEventW(nullptr, FALSE, FALSE, L"Local\\Orvanta_App_Tessaly")) {}
    ~TakenMark() { ::CloseHandle(h); }
    TakenMark(const TakenMark&) = delete;
    TakenMark& operator=(const TakenMark&) = delete;

  private:
    HANDLE h;
};

// Files of snapshots, made without any code of the product

/// A section of a file; tests damage its lines.
std::string SectionText(const std::wstring& strName, const std::vector<StoredIcon>& icons);
/// A whole file of such sections.
std::string FileText(const std::vector<std::string>& sections);
/// What means something in a file: no comments, no blank lines, no mark and no carriage returns.
std::string Meaning(std::string strText);
std::string Replaced(std::string strText, const std::string& strOld, const std::string& strNew);
