#include "progress_jobs.h"
#include "resource_ids.h"

#include <algorithm>
#include <iterator>

namespace {
constexpr DWORD kStepMs = 20; // as IDS_STEP says
constexpr unsigned kChunk = 1 << 18;
constexpr int kLineCount = 4;
} // namespace

// The handle is all that a worker needs: until the dialog is due it only remembers what it is told.
// NextStep is the loop's condition; it steps, and sets the second line to a string.
void StepJob::Run() {
    unsigned long nTicked = 0;
    {
        Progress progress(settings.hwndParent, settings.nDelayMs, 0, settings.nLines,
                          settings.bCanCancel);
        progress.SetTitle(L"Counting");
        progress.SetRange64(0, settings.nSteps);
        // A ticker is for work that does not know how far it is: an estimate takes its place.
        if (settings.bByTicker) progress.EnableTicker(kStepMs, settings.nSteps, &nTicked);
        bool bGoOn = true;
        while (bGoOn && nDone < settings.nSteps && !IsStopped()) {
            ::Sleep(kStepMs);
            ++nDone;
            tracker.Update();
            ShowStep(progress);
            if (!settings.bByTicker) {
                bGoOn = progress.NextStep(IDS_STEP) != 0;
            } else {
                bGoOn = !progress.IsCanceled();
                if (bGoOn && nDone == settings.nSteps / 2) bGoOn = AskHalfWay(progress);
            }
        }
        strResult = progress.IsCanceled() ? L"canceled" : bGoOn ? L"done" : L"stopped";
    } // with the handle the dialog goes, and the parent is enabled again
    strResult += L" after " + std::to_wstring(nDone) + L" steps";
    if (settings.bByTicker) strResult += L", the bar made " + std::to_wstring(nTicked);
}

// Lines that the dialog does not have are not shown.
void StepJob::ShowStep(Progress& progress) {
    progress.SetTextFmt(0, L"Step %u of %u", nDone, settings.nSteps);
    wchar_t szTime[64];
    unsigned nMs = tracker.GetAverageEventsDuration(settings.nSteps - nDone);
    GetTextRemaining((nMs + 999) / 1000, szTime, 64, 1);
    progress.SetTextFmt(2, L"Time remaining: %s", szTime);
    progress.SetTextFmt(3, L"%u percent", nDone * 100 / settings.nSteps);
}

// The dialog is out of the way of the question, and its ticker stands still.
bool StepJob::AskHalfWay(Progress& progress) {
    ProgressPauseHide hide(&progress);
    tracker.Pause(1);
    int nAnswer = Msg(settings.hwndParent, MB_YESNO | MB_ICONQUESTION,
                      L"Half of the work is done. Shall it go on?");
    tracker.Pause(0);
    return nAnswer == IDYES;
}

void DigestJob::Run() {
    constexpr unsigned long kDelayMs = 300; // what is quicker than that shows nothing
    Progress progress(hwndParent, kDelayMs, 0, kLineCount, 1);
    progress.SetTitle(L"SHA-1");
    Collect(progress, L"");
    progress.SetRange64(0, static_cast<__int64>(qwTotal)); // in bytes
    for (const File& file : files) {
        if (progress.IsCanceled() || IsStopped()) break;
        progress.SetText(0, strFolder.c_str());
        progress.SetText(1, file.strPath.c_str());
        if (!Read(progress, file)) break;
    }
    strResult = progress.IsCanceled() ? L"canceled after " : L"";
    strResult += std::to_wstring(lines.size()) + L" of " + std::to_wstring(files.size()) +
                 L" files, " + std::to_wstring(qwRead) + L" bytes";
}

// First the sizes, so that the bar can tell the truth.
void DigestJob::Collect(Progress& progress, const std::wstring& strBelow) {
    WIN32_FIND_DATAW found{};
    HANDLE h = ::FindFirstFileW((strFolder + L"\\" + strBelow + L"*").c_str(), &found);
    if (h == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring strName = found.cFileName;
        if (strName == L"." || strName == L"..") continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) continue; // may lead back here
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            progress.SetText(0, strName.c_str()); // looks at the clock too
            Collect(progress, strBelow + strName + L"\\");
            continue;
        }
        auto qwSize =
            (static_cast<unsigned __int64>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
        files.push_back({strBelow + strName, qwSize});
        qwTotal += qwSize;
    } while (!progress.IsCanceled() && !IsStopped() && ::FindNextFileW(h, &found));
    ::FindClose(h);
}

// False if the user has had enough. A file that can't be read is left out.
bool DigestJob::Read(Progress& progress, const File& file) {
    SHA1_Context context;
    SHA1_Init(&context);
    CoreFile in((strFolder + L"\\" + file.strPath).c_str(), 0);
    std::vector<unsigned char> buffer(kChunk);
    DWORD cb = 0;
    unsigned __int64 qwOfFile = 0;
    // A read that meets the end gives 0, and what there was.
    while (in.IsReady() && (in.ReadBin(buffer.data(), kChunk, &cb) || cb)) {
        SHA1_Update(&context, buffer.data(), cb);
        qwOfFile += cb;
        qwRead += cb;
        tracker.Update();
        progress.SetPos64(static_cast<__int64>(qwRead));
        ShowRest(progress);
        if (progress.IsCanceled() || IsStopped()) return false;
        cb = 0;
    }
    if (!in.IsReady() || qwOfFile < file.qwSize) return true;
    unsigned char digest[kSha1Size];
    SHA1_Final(digest, &context);
    wchar_t szDigest[2 * kSha1Size + 1] = L"";
    for (unsigned char b : digest) StrAppendTextFmt(szDigest, std::size(szDigest), L"%02x", b);
    lines.push_back(szDigest + (L"  " + file.strPath));
    return true;
}

// By the time that the pieces took so far.
void DigestJob::ShowRest(Progress& progress) {
    constexpr unsigned __int64 kMegabyte = 1 << 20;
    progress.SetTextFmt(2, L"%I64u of %I64u MB", qwRead / kMegabyte, qwTotal / kMegabyte);
    auto nChunks = static_cast<unsigned>((qwTotal - std::min(qwRead, qwTotal)) / kChunk);
    wchar_t szTime[64];
    GetTextRemaining((tracker.GetAverageEventsDuration(nChunks) + 999) / 1000, szTime, 64, 1);
    progress.SetTextFmt(3, L"Time remaining: %s", szTime);
}

// A worker that uses members of its own is waited for before they go.
JobThread::~JobThread() {
    job.Stop();
    Destroy(INFINITE);
}

unsigned JobThread::DoThreadEx() {
    job.Run();
    ::PostMessageW(hwndToTell, uMsg, 0, 0);
    return 0;
}
