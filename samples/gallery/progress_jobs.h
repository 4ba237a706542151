#pragma once
#include "tessaly.h"

#include <atomic>
#include <string>
#include <vector>

/// Work that takes its time, and shows how far it is. Runs on whatever thread calls Run.
class Job {
  public:
    virtual ~Job() = default;
    virtual void Run() = 0;
    /// Asks the work to end, as soon as it can.
    void Stop() { bStop = true; }
    /// What came of it, for people, and the lines of a list that go with that.
    const std::wstring& GetResult() const { return strResult; }
    const std::vector<std::wstring>& GetLines() const { return lines; }

  protected:
    bool IsStopped() const { return bStop; }

    std::wstring strResult;
    std::vector<std::wstring> lines;

  private:
    std::atomic<bool> bStop{false};
};

/// A number of steps that do nothing but wait.
class StepJob : public Job {
  public:
    struct Settings {
        HWND hwndParent; // disabled meanwhile
        unsigned nDelayMs, nLines, nSteps;
        int bCanCancel;
        int bByTicker; // the bar goes by the clock, and half-way the user is asked
    };
    explicit StepJob(const Settings& asked) : settings(asked) {}
    void Run() override;

  private:
    void ShowStep(Progress& progress);
    bool AskHalfWay(Progress& progress);

    Settings settings;
    unsigned nDone = 0;
    ProgressTracker tracker;
};

/// The SHA-1 of each file below a folder: a line for each that was read whole, with the digest, and
/// with its path below the folder.
class DigestJob : public Job {
  public:
    DigestJob(HWND hwndToDisable, const std::wstring& strOf)
        : hwndParent(hwndToDisable), strFolder(strOf) {}
    void Run() override;

  private:
    struct File {
        std::wstring strPath; // below the folder
        unsigned __int64 qwSize;
    };
    void Collect(Progress& progress, const std::wstring& strBelow);
    bool Read(Progress& progress, const File& file);
    void ShowRest(Progress& progress);

    HWND hwndParent;
    std::wstring strFolder;
    std::vector<File> files;
    unsigned __int64 qwTotal = 0, qwRead = 0;
    ProgressTracker tracker;
};

/// Runs a job on a thread of its own and then posts a message to a window.
class JobThread : public CSThreadEx {
  public:
    JobThread(Job& jobToRun, HWND hwndTold, UINT uMsgDone)
        : job(jobToRun), hwndToTell(hwndTold), uMsg(uMsgDone) {}
    /// Stops the job and waits for it.
    ~JobThread() override;
    unsigned DoThreadEx() override;

  private:
    Job& job;
    HWND hwndToTell;
    UINT uMsg;
};
