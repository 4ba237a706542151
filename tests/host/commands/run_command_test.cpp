#include "host/commands/run_command.h"
#include "host/commands/exit_code.h"
#include "host/commands/export_text.h"
#include "host/commands/snapshot_request.h"
#include "icons/commands/snapshot_step.h"
#include "icons/snapshots/command_result.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace {
constexpr unsigned __int64 kOld = 0x01CAC36B51D3C400; // a day of 2010
const IconRecord kIcon{0, {10, 20}, 8, 0x0123456789ABCDEF};

std::map<unsigned __int64, CommandResult> loads; // those that are listed, and what Load says
CommandResult ofImport = CommandResult::Done;

CommandResult List(SnapshotWork& work) {
    unsigned n = 0;
    for (const auto& [qwTime, result] : loads) {
        if (n < work.nEntries && work.pEntries) {
            work.pEntries[n] = {qwTime, {2010, 3, 1, 14}, 1, TRUE, FALSE};
        }
        ++n;
    }
    work.nEntries = work.nStored = n;
    return CommandResult::Done;
}

CommandResult Load(SnapshotWork& work) {
    CommandResult result = loads.at(work.qwTime);
    if (result == CommandResult::Done) *work.pRecords = kIcon;
    return result;
}
} // namespace

/// In the place of the library's.
extern "C" int DoSnapshotStep(SnapshotWork* pWork) {
    CommandResult result = CommandResult::Done;
    if (pWork->step == SnapshotStep::List) result = List(*pWork);
    if (pWork->step == SnapshotStep::Load) result = Load(*pWork);
    if (pWork->step == SnapshotStep::Import) result = ofImport;
    return static_cast<int>(result);
}

namespace {
/// Commands whose words go to a file.
class RunCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        loads.clear();
        ofImport = CommandResult::Done;
    }
    int Run(SnapshotCommand command, const std::wstring& strFile) {
        SnapshotRequest request{};
        request.command = command;
        request.pszFile = strFile.c_str();
        HANDLE h = ::CreateFileW(folder.File(L"told.txt").c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                 nullptr, CREATE_ALWAYS, 0, nullptr);
        HANDLE hOutput = ::GetStdHandle(STD_OUTPUT_HANDLE);
        HANDLE hError = ::GetStdHandle(STD_ERROR_HANDLE);
        ::SetStdHandle(STD_OUTPUT_HANDLE, h);
        ::SetStdHandle(STD_ERROR_HANDLE, h);
        int nExitCode = RunCommand(request);
        ::SetStdHandle(STD_OUTPUT_HANDLE, hOutput);
        ::SetStdHandle(STD_ERROR_HANDLE, hError);
        ::CloseHandle(h);
        strTold = folder.ReadFile(L"told.txt");
        return nExitCode;
    }
    int Export() { return Run(SnapshotCommand::Export, folder.File(L"all.txt")); }
    int Import(unsigned nSections) {
        CommandText text;
        AddExportHead(text);
        for (unsigned n = 0; n < nSections; ++n) AddExportSection(text, kOld + n, {&kIcon, 1});
        std::wstring str = text.Get();
        return Run(SnapshotCommand::Import,
                   folder.MakeFile(L"in.txt", std::string(str.begin(), str.end())));
    }
    bool Tells(const char* psz) const { return strTold.find(psz) != std::string::npos; }

    TempFolder folder;
    std::string strTold;
};

TEST_F(RunCommandTest, ExportLeavesOutWithoutAWordWhatGoesMeanwhile) {
    loads = {{kOld, CommandResult::NoSnapshot}, {kOld + 1, CommandResult::Done}};
    EXPECT_EQ(kExitDone, Export());
    EXPECT_TRUE(strTold.starts_with("1 snapshot is written to ")) << strTold;
    EXPECT_FALSE(Tells("damaged")) << strTold;
    loads = {{kOld, CommandResult::NoSnapshot}};
    EXPECT_EQ(kExitNoSnapshot, Export());
    loads = {{kOld, CommandResult::Damaged}, {kOld + 1, CommandResult::Done}};
    EXPECT_EQ(kExitPartly, Export());
    EXPECT_TRUE(Tells("damaged")) << strTold;
}

TEST_F(RunCommandTest, ImportTellsHowManyItTook) {
    EXPECT_EQ(kExitNothingTaken, Import(0));
    EXPECT_EQ("There are no snapshots in the file.\r\n", strTold);
    EXPECT_EQ(kExitDone, Import(1));
    EXPECT_EQ("1 snapshot is taken in.\r\n", strTold);
    EXPECT_EQ(kExitDone, Import(2));
    EXPECT_EQ("2 snapshots are taken in.\r\n", strTold);
}

TEST_F(RunCommandTest, ImportBesideWhatCannotBeReadTellsTheWantOfMemory) {
    loads = {{kOld, CommandResult::NoMemory}};
    EXPECT_EQ(kExitFile, Import(1));
    EXPECT_TRUE(Tells("not enough memory")) << strTold;
    loads.clear();
    ofImport = CommandResult::NoMemory;
    EXPECT_EQ(kExitFile, Import(1));
    EXPECT_TRUE(Tells("not enough memory")) << strTold;
}

TEST_F(RunCommandTest, ImportTakesWhatHasGoneSinceItWasListed) {
    loads = {{kOld, CommandResult::NoSnapshot}};
    EXPECT_EQ(kExitDone, Import(1));
    EXPECT_EQ("1 snapshot is taken in.\r\n", strTold);
}
} // namespace
