#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <iterator>
#include <list>
#include <memory>
#include <random>

namespace {
constexpr UINT kMsg = WM_APP + 1;
constexpr LRESULT kDefaultResult = 9000;

std::string* pCalls = nullptr; // one letter per hook that was asked, "." for the default
int nDefaults = 0;

LRESULT CALLBACK DefaultProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg != kMsg) return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
    ++nDefaults;
    if (pCalls) *pCalls += '.';
    return kDefaultResult + static_cast<LRESULT>(wParam);
}

/// Writes its letter down and then does what it is told.
struct LetterHook : ProbeHook {
    explicit LetterHook(char chNew) : ch(chNew) {
        fn = [this](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) {
            if (uMsg != kMsg) return 0;
            *pCalls += ch;
            return act ? act(p, pl) : 0;
        };
    }
    char ch;
    std::function<int(CSWnd*, LRESULT*)> act;
};

struct CSWndHooks : testing::Test {
    CSWndHooks() {
        pCalls = &calls;
        EXPECT_EQ(1, wnd.Make());
        wnd.oldWndProc = &DefaultProc;
    }
    ~CSWndHooks() override {
        wnd.Destroy();
        pCalls = nullptr;
    }
    /// Adds them so that a is asked first.
    void AddAll() {
        for (auto* p : {&c, &b, &a}) wnd.AddWndHook(p);
    }
    /// The letters of one dispatch.
    std::string Send(WMHook* pAfter = nullptr, LRESULT* plResult = nullptr) {
        calls.clear();
        LRESULT lResult = wnd.DoWndMessage(kMsg, 5, 6, pAfter);
        if (plResult) *plResult = lResult;
        return calls;
    }

    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd{record};
    LetterHook a{'a'}, b{'b'}, c{'c'}, d{'d'};
    std::string calls;
};

TEST_F(CSWndHooks, NoHooksGiveTheDefault) {
    LRESULT lResult = 0;
    EXPECT_EQ(".", Send(nullptr, &lResult));
    EXPECT_EQ(kDefaultResult + 5, lResult);
}

TEST_F(CSWndHooks, LastAddedIsAskedFirst) {
    AddAll();
    EXPECT_EQ("abc.", Send());
}

TEST_F(CSWndHooks, HooksOwnSideSaysTheSame) {
    c.AddToWnd(&wnd);
    b.AddToWnd(&wnd);
    a.AddToWnd(&wnd);
    EXPECT_EQ("abc.", Send());
    b.RemoveFromWnd(&wnd);
    EXPECT_EQ("ac.", Send());
    b.RemoveFromWnd(&wnd);
    EXPECT_EQ("ac.", Send());
}

TEST_F(CSWndHooks, ArgumentsArriveAsTheyAre) {
    CSWnd* pSeen = nullptr;
    WPARAM wSeen = 0;
    LPARAM lSeen = 0;
    LRESULT lAtStart = -1;
    ProbeHook hook([&](CSWnd* p, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* pl) {
        if (uMsg != kMsg) return 0;
        pSeen = p;
        wSeen = wParam;
        lSeen = lParam;
        lAtStart = *pl;
        return 0;
    });
    wnd.AddWndHook(&hook);
    ::SendMessageW(wnd, kMsg, 0xFEDCBA9876543210, -0x123456789AB);
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), pSeen);
    EXPECT_EQ(0xFEDCBA9876543210, wSeen);
    EXPECT_EQ(-0x123456789AB, lSeen);
    EXPECT_EQ(0, lAtStart);
    wnd.RemoveAllWndHooks();
}

TEST_F(CSWndHooks, NonZeroStopsHooksBehindAndDefault) {
    AddAll();
    for (int nStop : {1, -1, 2, INT_MIN}) {
        b.act = [nStop](CSWnd*, LRESULT* pl) {
            *pl = 44;
            return nStop;
        };
        LRESULT lResult = 0;
        EXPECT_EQ("ab", Send(nullptr, &lResult));
        EXPECT_EQ(44, lResult);
        EXPECT_EQ(44, ::SendMessageW(wnd, kMsg, 5, 6));
    }
}

TEST_F(CSWndHooks, StopWithoutAResultGivesZero) {
    AddAll();
    a.act = [](CSWnd*, LRESULT*) { return 1; };
    LRESULT lResult = 5;
    EXPECT_EQ("a", Send(nullptr, &lResult));
    EXPECT_EQ(0, lResult);
}

TEST_F(CSWndHooks, ResultsOfThoseInFrontAreSeenByThoseBehind) {
    AddAll();
    a.act = [](CSWnd*, LRESULT* pl) {
        *pl = 3;
        return 0;
    };
    c.act = [](CSWnd*, LRESULT* pl) {
        *pl += 10;
        return 1;
    };
    LRESULT lResult = 0;
    EXPECT_EQ("abc", Send(nullptr, &lResult));
    EXPECT_EQ(13, lResult);
}

TEST_F(CSWndHooks, DefaultsResultGoesBeforeWhatHooksLeft) {
    AddAll();
    a.act = [](CSWnd*, LRESULT* pl) {
        *pl = 3;
        return 0;
    };
    LRESULT lResult = 0;
    EXPECT_EQ("abc.", Send(nullptr, &lResult));
    EXPECT_EQ(kDefaultResult + 5, lResult);
}

TEST_F(CSWndHooks, AfterAsksOnlyThoseBehind) {
    AddAll();
    EXPECT_EQ("bc.", Send(&a));
    EXPECT_EQ("c.", Send(&b));
    EXPECT_EQ(".", Send(&c)) << "the last one: only the default";
    EXPECT_EQ(".", Send(&d)) << "one that is not in the chain";
    EXPECT_EQ("abc.", Send(nullptr));
}

TEST_F(CSWndHooks, AfterDoesNotAskThoseInFrontEvenIfTheyWouldStop) {
    AddAll();
    a.act = [](CSWnd*, LRESULT*) { return 1; };
    EXPECT_EQ("c.", Send(&b));
    c.act = [](CSWnd*, LRESULT* pl) {
        *pl = 8;
        return 1;
    };
    LRESULT lResult = 0;
    EXPECT_EQ("c", Send(&b, &lResult));
    EXPECT_EQ(8, lResult);
}

TEST_F(CSWndHooks, HookRunsWhatIsBehindItAndLooksAtTheOutcome) {
    AddAll();
    b.act = [&](CSWnd* p, LRESULT* pl) {
        *pl = p->DoWndMessage(kMsg, 5, 6, &b) + 1;
        return 1;
    };
    LRESULT lResult = 0;
    EXPECT_EQ("abc.", Send(nullptr, &lResult));
    EXPECT_EQ(kDefaultResult + 6, lResult);
    EXPECT_EQ(0, wnd.msgDepth);
}

TEST_F(CSWndHooks, AfterOfAHookThatTookItselfOffAsksNone) {
    AddAll();
    a.act = [&](CSWnd* p, LRESULT* pl) {
        p->RemoveWndHook(&a);
        *pl = p->DoWndMessage(kMsg, 5, 6, &a);
        return 1;
    };
    EXPECT_EQ("a.", Send());
    EXPECT_EQ("bc.", Send());
}

TEST_F(CSWndHooks, SameHookTwiceIsAskedTwiceAndGoesOneByOne) {
    wnd.AddWndHook(&a);
    wnd.AddWndHook(&b);
    wnd.AddWndHook(&a);
    EXPECT_EQ("aba.", Send());
    EXPECT_EQ("ba.", Send(&a)) << "the first entry counts";
    wnd.RemoveWndHook(&a);
    EXPECT_EQ("ba.", Send());
    wnd.RemoveWndHook(&a);
    EXPECT_EQ("b.", Send());
}

TEST_F(CSWndHooks, EmptyEntriesAreSkipped) {
    wnd.AddWndHook(&b);
    wnd.AddWndHook(nullptr);
    wnd.AddWndHook(&a);
    EXPECT_EQ("ab.", Send());
    EXPECT_EQ("b.", Send(&a));
    wnd.RemoveAllWndHooks();
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndHooks, RemovingAnUnknownHookChangesNothing) {
    wnd.RemoveWndHook(&a);
    AddAll();
    wnd.RemoveWndHook(&d);
    wnd.RemoveWndHook(nullptr);
    EXPECT_EQ("abc.", Send());
    EXPECT_EQ(3, wnd.hooks.GetCount());
}

TEST_F(CSWndHooks, RemoveAllOutsideADispatchEmptiesAtOnce) {
    AddAll();
    wnd.RemoveAllWndHooks();
    EXPECT_TRUE(wnd.hooks.IsEmpty());
    EXPECT_EQ(0, wnd.hooksRemovalPending);
    EXPECT_EQ(".", Send());
    wnd.RemoveAllWndHooks();
}

struct RemovalCase {
    const char* pszName;
    char chActor;
    char chRemoved;
    const char* pszNow;
    const char* pszThen;
};
class CSWndHookRemoval : public CSWndHooks, public testing::WithParamInterface<RemovalCase> {
  protected:
    LetterHook* Of(char ch) {
        for (auto* p : {&a, &b, &c})
            if (p->ch == ch) return p;
        return nullptr;
    }
};
TEST_P(CSWndHookRemoval, WorksAtOnceInsideADispatch) {
    const auto& row = GetParam();
    AddAll();
    int nRemovals = 0;
    Of(row.chActor)->act = [&](CSWnd* p, LRESULT*) {
        if (nRemovals++ == 0) p->RemoveWndHook(Of(row.chRemoved));
        return 0;
    };
    EXPECT_EQ(row.pszNow, Send());
    EXPECT_EQ(2, wnd.hooks.GetCount());
    EXPECT_EQ(row.pszThen, Send());
}
INSTANTIATE_TEST_SUITE_P(Cases, CSWndHookRemoval,
                         testing::Values(RemovalCase{"FirstItself", 'a', 'a', "abc.", "bc."},
                                         RemovalCase{"MiddleItself", 'b', 'b', "abc.", "ac."},
                                         RemovalCase{"LastItself", 'c', 'c', "abc.", "ab."},
                                         RemovalCase{"Next", 'a', 'b', "ac.", "ac."},
                                         RemovalCase{"LastFromMiddle", 'b', 'c', "ab.", "ab."},
                                         RemovalCase{"LastFromFirst", 'a', 'c', "ab.", "ab."},
                                         RemovalCase{"Previous", 'b', 'a', "abc.", "bc."},
                                         RemovalCase{"FirstFromLast", 'c', 'a', "abc.", "bc."}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSWndHooks, AllOneByOneInsideADispatch) {
    AddAll();
    a.act = [&](CSWnd* p, LRESULT*) {
        for (auto* pHook : {&b, &a, &c}) p->RemoveWndHook(pHook);
        return 0;
    };
    EXPECT_EQ("a.", Send());
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndHooks, HookThatGoesMayBeDeletedInItsOwnCall) {
    AddAll();
    auto pOwn = std::make_unique<LetterHook>('x');
    pOwn->act = [&](CSWnd* p, LRESULT*) {
        p->RemoveWndHook(pOwn.get());
        return 0;
    };
    wnd.AddWndHook(pOwn.get());
    EXPECT_EQ("xabc.", Send());
    pOwn.reset();
    EXPECT_EQ("abc.", Send());
}

TEST_F(CSWndHooks, RemoveAllInsideAHookWaitsForTheOutermostReturn) {
    AddAll();
    int nCountInside = 0, nPendingInside = 0;
    a.act = [&](CSWnd* p, LRESULT*) {
        p->RemoveAllWndHooks();
        nCountInside = wnd.hooks.GetCount();
        nPendingInside = wnd.hooksRemovalPending != 0;
        return 0;
    };
    EXPECT_EQ("abc.", Send()) << "the chain is still there for this message";
    EXPECT_EQ(3, nCountInside);
    EXPECT_EQ(1, nPendingInside);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
    EXPECT_EQ(0, wnd.hooksRemovalPending);
    EXPECT_EQ(".", Send());
}

TEST_F(CSWndHooks, RemoveAllInANestedDispatchWaitsForTheOutermostReturn) {
    AddAll();
    int nDepth = 0;
    std::vector<int> counts;
    b.act = [&](CSWnd* p, LRESULT*) {
        if (++nDepth == 3) {
            p->RemoveAllWndHooks();
        } else {
            ::SendMessageW(*p, kMsg, 5, 6);
        }
        counts.push_back(wnd.hooks.GetCount());
        return 0;
    };
    EXPECT_EQ("abababc.c.c.", Send());
    EXPECT_EQ((std::vector<int>{3, 3, 3}), counts);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndHooks, HookAddedAfterRemoveAllInTheSameDispatchGoesToo) {
    AddAll();
    a.act = [&](CSWnd* p, LRESULT*) {
        p->RemoveAllWndHooks();
        p->AddWndHook(&d);
        return 0;
    };
    EXPECT_EQ("abc.", Send());
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndHooks, RemoveAllAndRemoveOneInTheSameDispatch) {
    AddAll();
    a.act = [&](CSWnd* p, LRESULT*) {
        p->RemoveAllWndHooks();
        p->RemoveWndHook(&b);
        return 0;
    };
    EXPECT_EQ("ac.", Send());
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndHooks, HookAddedInAHookIsAskedFromTheNextDispatchOn) {
    AddAll();
    int nAdds = 0;
    b.act = [&](CSWnd* p, LRESULT*) {
        if (nAdds++ == 0) p->AddWndHook(&d);
        return 0;
    };
    EXPECT_EQ("abc.", Send());
    EXPECT_EQ("dabc.", Send());
}

TEST_F(CSWndHooks, HookAddedInAHookIsAskedByANestedDispatch) {
    AddAll();
    int nAdds = 0;
    b.act = [&](CSWnd* p, LRESULT*) {
        if (nAdds++ == 0) {
            p->AddWndHook(&d);
            ::SendMessageW(*p, kMsg, 5, 6);
        }
        return 0;
    };
    EXPECT_EQ("abdabc.c.", Send());
}

TEST_F(CSWndHooks, HookTakenOffAndPutBackInItsOwnCallIsFirstThen) {
    AddAll();
    int nTimes = 0;
    c.act = [&](CSWnd* p, LRESULT*) {
        if (nTimes++ == 0) {
            p->RemoveWndHook(&c);
            p->AddWndHook(&c);
        }
        return 0;
    };
    EXPECT_EQ("abc.", Send());
    EXPECT_EQ("cab.", Send());
    EXPECT_EQ(3, wnd.hooks.GetCount());
}

TEST_F(CSWndHooks, DepthIsCountedAndComesBackToZero) {
    AddAll();
    std::vector<int> depths;
    a.act = [&](CSWnd* p, LRESULT*) {
        depths.push_back(wnd.msgDepth);
        if (depths.size() < 4) ::SendMessageW(*p, kMsg, 5, 6);
        return 1;
    };
    Send();
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), depths);
    EXPECT_EQ(0, wnd.msgDepth);
}

TEST_F(CSWndHooks, SwallowedMessageReachesNeitherHooksNorDefault) {
    AddAll();
    wnd.onMessage = [](ProbeWnd&, UINT uMsg, WPARAM, LPARAM) {
        return uMsg == kMsg ? ProbeWnd::Answer(12) : std::nullopt;
    };
    EXPECT_EQ(12, ::SendMessageW(wnd, kMsg, 0, 0));
    EXPECT_EQ("", calls);
}

TEST(CSWndHooksWithoutWindow, AttachedObjectDispatchesToHooks) {
    PlainWnd plain;
    ProbeRecord record;
    ProbeWnd wnd(record);
    wnd.Attach(plain);
    ProbeHook hook([](CSWnd*, UINT, WPARAM, LPARAM, LRESULT* pl) {
        *pl = 6;
        return 1;
    });
    wnd.AddWndHook(&hook);
    EXPECT_EQ(6, wnd.DoWndMessage(kMsg, 0, 0, nullptr));
    wnd.RemoveWndHook(&hook);
    wnd.DoWndMessage(kMsg, 0, 0, nullptr); // an object without earlier procedure must not crash
}

// A random walk through everything that may happen to the chain, against a plain model of it.

constexpr int kRandomHooks = 7;
constexpr int kMaxDepth = 5;

/// What the chain should do. Entries that are taken off stay in the list, dead, until no dispatch
/// runs, so that the frames' places in it stay good.
class ChainModel {
  public:
    void Add(int nHook) { entries.push_front({nHook, true}); }
    void Remove(int nHook) {
        for (auto& entry : entries) {
            if (!entry.bAlive || entry.nHook != nHook) continue;
            entry.bAlive = false;
            break;
        }
        Settle();
    }
    void RemoveAll() {
        bRemoveAll = true;
        Settle();
    }
    /// A dispatch begins; nAfter is -1 for none.
    void Begin(int nAfter) {
        Frame frame{entries.begin(), nAfter};
        frames.push_back(frame);
    }
    /// The hook that is asked next, -1 for the default.
    int Next() {
        Frame& frame = frames.back();
        while (frame.it != entries.end()) {
            auto& entry = *frame.it++;
            if (!entry.bAlive) continue;
            if (frame.nAfter < 0) return entry.nHook;
            if (frame.nAfter == entry.nHook) frame.nAfter = -1;
        }
        return -1;
    }
    void End() {
        frames.pop_back();
        Settle();
    }
    int GetDepth() const { return static_cast<int>(frames.size()); }
    std::vector<int> Alive() const {
        std::vector<int> alive;
        for (const auto& entry : entries)
            if (entry.bAlive) alive.push_back(entry.nHook);
        return alive;
    }

  private:
    struct Entry {
        int nHook;
        bool bAlive;
    };
    struct Frame {
        std::list<Entry>::iterator it;
        int nAfter;
    };
    void Settle() {
        if (!frames.empty()) return;
        if (bRemoveAll) entries.clear();
        bRemoveAll = false;
        entries.remove_if([](const Entry& entry) { return !entry.bAlive; });
    }
    std::list<Entry> entries;
    std::vector<Frame> frames;
    bool bRemoveAll = false;
};

struct CSWndHooksRandom : testing::Test {
    CSWndHooksRandom() {
        EXPECT_EQ(1, wnd.Make());
        wnd.oldWndProc = &RandomDefault;
        pThis = this;
        for (int n = 0; n < kRandomHooks; ++n) {
            hooks[n].fn = [this, n](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT* pl) {
                if (uMsg != kMsg) return 0;
                EXPECT_EQ(model.Next(), n);
                for (int nLeft = Pick(3); nLeft > 0; --nLeft) Act();
                if (Pick(8)) return 0;
                *pl = lStopped = n + 100;
                bStopped = true;
                return 1;
            };
        }
    }
    ~CSWndHooksRandom() override {
        wnd.RemoveAllWndHooks();
        wnd.Destroy();
        pThis = nullptr;
    }
    static LRESULT CALLBACK RandomDefault(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != kMsg) return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
        EXPECT_EQ(-1, pThis->model.Next());
        if (pThis->Pick(4) == 0) pThis->Act();
        pThis->bStopped = false;
        return kDefaultResult;
    }
    int Pick(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

    void Act() {
        ++nActs;
        int n = Pick(kRandomHooks);
        int nWhat = Pick(20);
        if (nWhat < 6) {
            model.Add(n);
            wnd.AddWndHook(&hooks[n]);
        } else if (nWhat < 13) {
            model.Remove(n);
            wnd.RemoveWndHook(&hooks[n]);
        } else if (nWhat < 14) {
            model.RemoveAll();
            wnd.RemoveAllWndHooks();
        } else {
            Dispatch(nWhat < 17 ? -1 : n);
        }
    }
    void Dispatch(int nAfter) {
        if (model.GetDepth() == kMaxDepth) return;
        model.Begin(nAfter);
        EXPECT_EQ(model.GetDepth() - 1, wnd.msgDepth);
        LRESULT lResult = nAfter < 0 ? ::SendMessageW(wnd, kMsg, 0, 0)
                                     : wnd.DoWndMessage(kMsg, 0, 0, &hooks[nAfter]);
        EXPECT_EQ(bStopped ? lStopped : kDefaultResult, lResult);
        model.End();
        EXPECT_EQ(model.GetDepth(), wnd.msgDepth);
    }
    void CheckAtRest() {
        std::vector<int> chain;
        for (POS pos = wnd.hooks.GetHeadPos(); pos;)
            chain.push_back(static_cast<int>(
                static_cast<ProbeHook*>(static_cast<WMHook*>(wnd.hooks.GetNext(pos))) - hooks));
        ASSERT_EQ(model.Alive(), chain);
        ASSERT_EQ(0, wnd.hooksRemovalPending);
    }

    static CSWndHooksRandom* pThis;
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd{record};
    ProbeHook hooks[kRandomHooks];
    ChainModel model;
    std::mt19937 random{20240917};
    LRESULT lStopped = 0;
    bool bStopped = false;
    int nActs = 0;
};
CSWndHooksRandom* CSWndHooksRandom::pThis = nullptr;

TEST_F(CSWndHooksRandom, ChainBehavesLikeItsModel) {
    for (int n = 0; n < 20000; ++n) {
        Act();
        ASSERT_NO_FATAL_FAILURE(CheckAtRest()) << "step " << n;
        ASSERT_FALSE(HasFailure()) << "step " << n;
    }
    EXPECT_GT(nActs, 20000);
}

TEST(WMHook, DefaultsTakeNothing) {
    WMHook hook;
    LRESULT lResult = 31;
    EXPECT_EQ(0, hook.OnWndMessage(nullptr, WM_APP, 1, 2, &lResult));
    EXPECT_EQ(0, hook.OnDlgMessage(nullptr, WM_APP, 1, 2, &lResult));
    EXPECT_EQ(31, lResult);
}

TEST(WMHook, AddAndRemoveGoToTheWindow) {
    ProbeRecord record;
    ProbeWnd wnd(record);
    WMHook first, second;
    first.AddToWnd(&wnd);
    second.AddToWnd(&wnd);
    ASSERT_EQ(2, wnd.hooks.GetCount());
    EXPECT_EQ(&second, wnd.hooks.GetHead());
    EXPECT_EQ(&first, wnd.hooks.GetTail());
    second.RemoveFromWnd(&wnd);
    ASSERT_EQ(1, wnd.hooks.GetCount());
    EXPECT_EQ(&first, wnd.hooks.GetHead());
    second.RemoveFromWnd(&wnd);
    first.RemoveFromWnd(&wnd);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST(WMHook, OneHookMaySeeSeveralWindows) {
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd one(record), other(record);
    ASSERT_EQ(1, one.Make());
    ASSERT_EQ(1, other.Make());
    std::vector<CSWnd*> seen;
    ProbeHook hook([&](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg == WM_APP) seen.push_back(p);
        return 0;
    });
    hook.AddToWnd(&one);
    hook.AddToWnd(&other);
    ::SendMessageW(other, WM_APP, 0, 0);
    ::SendMessageW(one, WM_APP, 0, 0);
    EXPECT_EQ((std::vector<CSWnd*>{&other, &one}), seen);
    hook.RemoveFromWnd(&one);
    ::SendMessageW(one, WM_APP, 0, 0);
    EXPECT_EQ(2u, seen.size());
    one.Destroy();
    other.Destroy();
}
} // namespace
