// Long operations side by side, for real: workers, dialogs and a person who presses Cancel now and
// then, each in their own time. Nothing may crash, hang, or be left behind.

#include "progress/dlg_support.h"
#include "progress/race_blocks.h"
#include "progress/race_watch.h"
#include "support/test_window.h"
#include "wnd/core/cswnd.h"

#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {
constexpr int kOperations = 2000; // calls of workers, and presses of the person's
constexpr unsigned kLanes = 20;
constexpr int kLongestPauseMs = 5;

using Random = std::mt19937;

int Below(Random& random, int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

/// 0 to 5 ms.
void Pause(Random& random) { ::Sleep(static_cast<DWORD>(Below(random, kLongestPauseMs + 1))); }

const std::function<void(Progress&, Random&)> kCalls[] = {
    [](Progress& p, Random&) { p.SetTitle(L"title"); },
    [](Progress& p, Random& r) { p.SetTextFmt(Below(r, 4), L"%d files", Below(r, 1000)); },
    [](Progress& p, Random& r) { p.SetText(Below(r, 4), L"text"); },
    [](Progress& p, Random&) { p.StepIt(); },
    [](Progress& p, Random&) { p.NextStep(28008); },
    [](Progress& p, Random& r) { p.SetRange64(0, 1 + r()); },
    [](Progress& p, Random& r) { p.SetPos64(r()); },
    [](Progress& p, Random& r) {
        static unsigned long nEnd;
        p.EnableTicker(1 + static_cast<unsigned>(Below(r, 5)), 50, &nEnd);
    },
    [](Progress& p, Random&) {
        if (p.GetTicker()) p.PauseTicker(1);
    },
    [](Progress& p, Random& r) { p.Show(Below(r, 2)); },
    [](Progress& p, Random&) { p.IsCanceled(); },
    [](Progress& p, Random&) { p.GetDlgHWND(); },
};

std::atomic<int> nLeft{0}; // of the operations

/// One piece of work, from the handle's construction to its end.
void RunWork(Random& random) {
    const unsigned long nDelay = static_cast<unsigned long>(Below(random, kLongestPauseMs + 1));
    const unsigned long nTextInterval = Below(random, 3) ? 0 : 3;
    Progress progress(nullptr, nDelay, nTextInterval, static_cast<unsigned>(Below(random, 5)),
                      Below(random, 8) != 0);
    --nLeft;
    for (int n = Below(random, 7); n > 0; --n, --nLeft) {
        kCalls[Below(random, std::size(kCalls))](progress, random);
        Pause(random);
    }
    for (int n = Below(random, 3); n > 0; --n, --nLeft) progress.Close();
}

/// Presses Cancel of the dialogs that are there, now and then, and answers what is asked.
class Person {
  public:
    explicit Person(unsigned nSeed) : random(nSeed), thread([this] { Run(); }) {}
    ~Person() {
        bStop = true;
        thread.join();
    }

  private:
    void Run() {
        while (!bStop) {
            for (HWND hwnd = nullptr;
                 (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", nullptr));) {
                DWORD dwProcess = 0;
                ::GetWindowThreadProcessId(hwnd, &dwProcess);
                if (dwProcess != ::GetCurrentProcessId()) continue;
                if (::GetDlgItem(hwnd, IDYES)) {
                    ::PostMessageW(hwnd, WM_COMMAND, Below(random, 2) ? IDYES : IDNO, 0);
                } else if (!Below(random, 4)) {
                    PressCancel(hwnd);
                    --nLeft;
                }
            }
            Pause(random);
        }
    }

    std::atomic<bool> bStop{false};
    Random random;
    std::thread thread;
};

class ProgressRace : public testing::Test {};

/// All lanes side by side until so many operations are done.
void RunLanes(int nOperations, unsigned nSeed) {
    nLeft = nOperations;
    Person person(nSeed);
    std::vector<std::thread> lanes;
    for (unsigned n = 1; n <= kLanes; ++n) {
        lanes.emplace_back([nLaneSeed = nSeed + n] {
            Random random(nLaneSeed);
            while (nLeft > 0) RunWork(random);
        });
    }
    for (std::thread& lane : lanes) lane.join();
}

/// The C++ runtime's locks for threads make their events when two threads first meet at one; that
/// is to have happened before handles are counted. (With few threads at a time it can take until
/// late.)
void LetThreadsMeet() {
    constexpr int kThreadsEach = 100;
    std::vector<std::thread> lanes;
    for (unsigned n = 0; n < kLanes; ++n) {
        lanes.emplace_back([] {
            for (int i = 0; i < kThreadsEach; ++i) std::thread([] { FailBlock(0); }).join();
        });
    }
    for (std::thread& lane : lanes) lane.join();
}
/// The library keeps the table of its objects as large as it had to be, by the chance of their
/// addresses: here far larger than the lanes' few hundred windows could have it.
void LetTheTableGrow() {
    constexpr int kWindows = 1000;
    struct Subclassed {
        TestWindow window{L"STATIC"};
        CSWnd wnd;
    };
    std::vector<std::unique_ptr<Subclassed>> all;
    for (int n = 0; n < kWindows; ++n) {
        all.push_back(std::make_unique<Subclassed>());
        ASSERT_EQ(1, all.back()->wnd.Subclass(all.back()->window));
    }
}
} // namespace

// (The platform's own checks, where they look at each call, find faults in dialogs on many threads
// that have nothing of ours: the blocks of this program are checked here instead.)
TEST_F(ProgressRace, WorkersDialogsAndCancelMeetAtRandomMoments) {
    HangWatch watch(150);
    CheckBlocks();
    LetThreadsMeet();
    LetTheTableGrow();
    // What the platform keeps for as many windows and threads as there were at a time.
    RunLanes(kOperations / 5, 1000);
    const Belongings before;
    const int nBroken = CountBrokenBlocks();
    RunLanes(kOperations, 2000);
    EXPECT_TRUE(NothingIsLeft(before)) << "now " << Belongings() << ", before " << before;
    EXPECT_EQ(CountLiveBlocks(), before.nBlocks);
    EXPECT_EQ(CountBrokenBlocks(), nBroken);
    EXPECT_TRUE(::HeapValidate(::GetProcessHeap(), 0, nullptr));
}

TEST_F(ProgressRace, BlockWrittenBehindItsEndIsFound) {
    CheckBlocks();
    const int nBefore = CountBrokenBlocks();
    auto* volatile p = static_cast<unsigned char*>(malloc(10));
    p[10] = 1; // behind its end
    free(p);
    EXPECT_EQ(CountBrokenBlocks(), nBefore + 1);
}

TEST_F(ProgressRace, StacksCanBeToldAtARandomMoment) {
    HANDLE hOver = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] { ::WaitForSingleObject(hOver, 20000); });
    std::string strStacks;
    EXPECT_TRUE(WaitUntil([&] {
        strStacks = TellStacks();
        return strStacks.find("ntdll") != std::string::npos;
    })) << strStacks;
    ::SetEvent(hOver);
    other.join();
    ::CloseHandle(hOver);
}
