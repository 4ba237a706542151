#include "app/instance/single_instance.h"
#include "app/instance_process.h"
#include "app/other_window.h"
#include "support/replace_import.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

extern "C" FARPROC __imp_SendMessageTimeoutW;

namespace {
TEST(SingleInstanceXP, SecondProcessOfTheNameIsNotTheFirst) {
    for (int bGlobal : {0, 1}) {
        std::wstring strName = UniqueInstanceName();
        {
            InstanceProcess first(bGlobal, strName);
            EXPECT_EQ(1, first.nAnswer);
            InstanceProcess second(bGlobal, strName);
            EXPECT_EQ(0, second.nAnswer);
            SingleInstanceXP here;
            EXPECT_EQ(0, here.IsFirstInstance(bGlobal, strName.c_str()));
            InstanceProcess foreign(bGlobal, strName + L"x");
            EXPECT_EQ(1, foreign.nAnswer);
        }
        InstanceProcess later(bGlobal, strName); // the mark went with its process
        EXPECT_EQ(1, later.nAnswer);
    }
}

TEST(SingleInstanceXP, GlobalAndLocalDoNotSeeEachOther) {
    std::wstring strName = UniqueInstanceName();
    InstanceProcess local(0, strName);
    InstanceProcess global(1, strName);
    EXPECT_EQ(1, local.nAnswer);
    EXPECT_EQ(1, global.nAnswer);
}

TEST(SingleInstanceXP, MarkHasTheProductsName) {
    std::wstring strName = UniqueInstanceName();
    SingleInstanceXP instance;
    ASSERT_EQ(1, instance.IsFirstInstance(1, strName.c_str()));
    HANDLE h = ::OpenEventW(SYNCHRONIZE, FALSE, (L"Global\\Orvanta_App_" + strName).c_str());
    EXPECT_NE(nullptr, h);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), ::WaitForSingleObject(h, 0));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, MarkIsSeenWithoutBeingTaken) {
    const wchar_t* pszName = L"TessalyTestSeenMark";
    EXPECT_FALSE(HasInstanceMark(0, pszName));
    {
        SingleInstanceXP instance;
        ASSERT_EQ(1, instance.IsFirstInstance(0, pszName)); // the question before took nothing
        EXPECT_TRUE(HasInstanceMark(0, pszName));
        EXPECT_FALSE(HasInstanceMark(1, pszName));
    }
    EXPECT_FALSE(HasInstanceMark(0, pszName));
    HANDLE h = ::CreateMutexW(nullptr, FALSE, L"Local\\Orvanta_App_TessalyTestSeenMark");
    EXPECT_TRUE(HasInstanceMark(0, pszName)); // something else is in its way
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, AskedAgainGivesZeroAndKeepsTheMark) {
    std::wstring strName = UniqueInstanceName();
    {
        SingleInstanceXP instance;
        EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
        for (int n = 0; n < 3; ++n) {
            EXPECT_EQ(0, instance.IsFirstInstance(0, strName.c_str())) << n;
            EXPECT_EQ(0, SingleInstanceXP().IsFirstInstance(0, strName.c_str())) << n;
        }
    }
    EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkOfAnotherTakesNothingAway) {
    std::wstring strName = UniqueInstanceName(), strTaken = UniqueInstanceName();
    SingleInstanceXP instance, other;
    EXPECT_EQ(1, other.IsFirstInstance(0, strTaken.c_str()));
    EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
    EXPECT_EQ(0, instance.IsFirstInstance(0, strTaken.c_str()));
    EXPECT_EQ(0, other.IsFirstInstance(0, strName.c_str())); // the mark stayed
}

TEST(SingleInstanceXP, MarkGoesWithTheObject) {
    std::wstring strName = UniqueInstanceName();
    { EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str())); }
    EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkThatCannotBeMadeGivesZero) {
    std::wstring strName = UniqueInstanceName();
    HANDLE h = ::CreateMutexW(nullptr, FALSE, (L"Local\\Orvanta_App_" + strName).c_str());
    EXPECT_EQ(0, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, LongNamesAreCut) {
    std::wstring strLong(300, L'n');
    SingleInstanceXP instance, other;
    EXPECT_EQ(1, instance.IsFirstInstance(0, strLong.c_str()));
    EXPECT_EQ(0, other.IsFirstInstance(0, (strLong + L"x").c_str()));
    EXPECT_EQ(1, other.IsFirstInstance(0, nullptr));
}

constexpr unsigned kId = 0x9A71; // no other window answers to it
constexpr unsigned short kDialog = 0x5A71;

/// What a window was asked, and what it answers.
struct Answers {
    std::atomic<LRESULT> nIsDialog{0}, nActivate{0};
    std::atomic<int> nAskedDialog{0}, nAskedActivate{0}, nAskedClose{0};
    std::atomic<LPARAM> lAskedFor{-1};

    OtherWindow::Handler Handler() {
        return [this](HWND, UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
            if (uMsg == WM_CLOSE) {
                ++nAskedClose;
                return 0; // it stays
            }
            if (uMsg != GetMyCompanyMsgId()) return {};
            lAskedFor = lParam;
            if (wParam == kCompanyCodeIsDialog) {
                ++nAskedDialog;
                return nIsDialog;
            }
            if (wParam == kCompanyCodeActivate) {
                ++nAskedActivate;
                return nActivate;
            }
            return {};
        };
    }
};

OtherWindow::Handler HandlerOfMainWindow(unsigned nId) {
    return [nId](HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (LRESULT n = OnActivatePreviousInstance(nId, hwnd, uMsg, wParam, lParam)) return n;
        return {};
    };
}

/// One time-out, and what a loaded machine may add.
constexpr double kOneTimeOut = kAskTimeoutMs / 1000.0, kSlack = 3.0;

TEST(ActivatePreviousInstance, GivesTheWindowThatAnswersForTheId) {
    OtherWindow other(HandlerOfMainWindow(kId + 1)), wanted(HandlerOfMainWindow(kId)),
        front(HandlerOfMainWindow(kId + 2));
    GiveForeground(front);
    EXPECT_EQ(wanted, ActivatePreviousInstance(kId));
    EXPECT_TRUE(HasForeground(wanted));
}

TEST(ActivatePreviousInstance, WindowOfAnotherIdIsLeftAlone) {
    OtherWindow other(HandlerOfMainWindow(kId + 1)), front;
    other.Minimise();
    GiveForeground(front);
    EXPECT_EQ(nullptr, ActivatePreviousInstance(kId));
    EXPECT_TRUE(::IsIconic(other));
    EXPECT_EQ(front, ::GetForegroundWindow());
}

TEST(ActivatePreviousInstance, OnlyTheOneAnswerCounts) {
    for (LRESULT nAnswer : {LRESULT{1}, kActivateDone - 1, kActivateDone + 1, LRESULT{-1},
                            kActivateDone + (LRESULT{1} << 32)}) {
        Answers answers;
        answers.nActivate = nAnswer;
        OtherWindow other(answers.Handler());
        EXPECT_EQ(nullptr, ActivatePreviousInstance(kId)) << nAnswer;
        EXPECT_EQ(1, answers.nAskedActivate);
    }
}

TEST(ActivatePreviousInstance, AsksNobodyAfterTheFirstAnswer) {
    Answers first, second;
    first.nActivate = second.nActivate = kActivateDone;
    OtherWindow one(first.Handler()), two(second.Handler());
    HWND hwnd = ActivatePreviousInstance(kId);
    EXPECT_TRUE(hwnd == one || hwnd == two);
    EXPECT_EQ(1, first.nAskedActivate + second.nAskedActivate);
}

TEST(ActivatePreviousInstance, AsksForTheWholeIdWithoutASign) {
    Answers answers;
    OtherWindow other(answers.Handler());
    EXPECT_EQ(nullptr, ActivatePreviousInstance(0xFFFFFFFF));
    EXPECT_EQ(0xFFFFFFFF, answers.lAskedFor);
}

TEST(ActivatePreviousInstance, ForgetsWhatItFoundBefore) {
    OtherWindow wanted(HandlerOfMainWindow(kId));
    EXPECT_EQ(wanted, ActivatePreviousInstance(kId));
    EXPECT_EQ(nullptr, ActivatePreviousInstance(kId + 1));
}

TEST(ActivatePreviousInstance, HungWindowHoldsItNoLongerThanItsTimeOut) {
    OtherWindow wanted(HandlerOfMainWindow(kId)), hung(HandlerOfMainWindow(kId + 1));
    hung.Hang();
    HWND hwnd = nullptr;
    double dTime = Seconds([&] { hwnd = ActivatePreviousInstance(kId + 2); });
    EXPECT_EQ(nullptr, hwnd);
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    dTime = Seconds([&] { hwnd = ActivatePreviousInstance(kId); });
    EXPECT_EQ(wanted, hwnd);
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
}

TEST(ActivatePreviousInstance, ThreadThatHangsIsWaitedForOnceHoweverManyWindowsItHas) {
    OtherWindow hung;
    for (int n = 0; n < 8; ++n) hung.MakeOwned();
    hung.Hang();
    double dTime = Seconds([&] { ActivatePreviousInstance(kId); });
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
}

TEST(ActivatePreviousInstance, HungWindowIsNotTheOneEvenIfItWouldAnswerLater) {
    OtherWindow hung(HandlerOfMainWindow(kId));
    hung.Hang();
    EXPECT_EQ(nullptr, ActivatePreviousInstance(kId));
}

TEST(ActivatePreviousInstance, SecondProcessFindsAndRestoresTheFirst) {
    std::wstring strName = UniqueInstanceName(), strId = std::to_wstring(0xF0009A72u);
    InstanceProcess first(0, strName, strId);
    ASSERT_EQ(1, first.nAnswer);
    ASSERT_TRUE(::IsIconic(first.hwnd));
    InstanceProcess foreign(0, strName, std::to_wstring(0xF0009A73u));
    EXPECT_EQ(0, foreign.nAnswer);
    EXPECT_EQ(nullptr, foreign.hwnd);
    EXPECT_TRUE(::IsIconic(first.hwnd));
    InstanceProcess second(0, strName, strId);
    EXPECT_EQ(0, second.nAnswer);
    EXPECT_EQ(first.hwnd, second.hwnd);
    EXPECT_FALSE(::IsIconic(first.hwnd));
    EXPECT_TRUE(HasForeground(first.hwnd));
}

struct SentMsg {
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    UINT nFlags, nTimeoutMs;
};
std::vector<SentMsg> sent;
LRESULT WINAPI NoteSent(HWND, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT nFlags, UINT nTimeoutMs,
                        DWORD_PTR* pdwAnswer) {
    sent.push_back({uMsg, wParam, lParam, nFlags, nTimeoutMs});
    *pdwAnswer = wParam == 121;
    return 1;
}

TEST(ActivatePrev, EveryQuestionIsAbortedIfTheWindowHangsAndAfterASecond) {
    OtherWindow window({}, OtherWindow::kClass, L"asked");
    ReplaceImport replaced(__imp_SendMessageTimeoutW, &NoteSent);
    sent.clear();
    EXPECT_EQ(nullptr, ActivatePreviousInstance(kId));
    EXPECT_FALSE(sent.empty());
    for (const SentMsg& msg : sent) EXPECT_EQ(3u, msg.wParam);
    ClosePrevWnd(nullptr, L"asked", kDialog);
    ActivatePrevWnd(nullptr, L"asked", kDialog);
    ASSERT_LE(4u, sent.size());
    const SentMsg* p = &sent[sent.size() - 4];
    EXPECT_EQ(121u, p[0].wParam);
    EXPECT_EQ(static_cast<UINT>(WM_CLOSE), p[1].uMsg);
    EXPECT_EQ(121u, p[2].wParam);
    EXPECT_EQ(kDialog, p[2].lParam);
    EXPECT_EQ(3u, p[3].wParam);
    EXPECT_EQ(kDialog, p[3].lParam);
    for (const SentMsg& msg : sent) {
        EXPECT_TRUE(msg.uMsg == GetMyCompanyMsgId() || &msg == p + 1);
        EXPECT_EQ(2u, msg.nFlags);
        EXPECT_EQ(1000u, msg.nTimeoutMs);
    }
}

struct OtherMessageCase {
    const char* pszName;
    bool bWindow;
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
};
class OtherMessage : public testing::TestWithParam<OtherMessageCase> {};
TEST_P(OtherMessage, GivesZeroAndDoesNothing) {
    const OtherMessageCase& row = GetParam();
    OtherWindow window, front;
    window.Minimise();
    GiveForeground(front);
    HWND hwnd = row.bWindow ? static_cast<HWND>(window) : nullptr;
    window.Thread().Run([&] {
        EXPECT_EQ(0, OnActivatePreviousInstance(kId, hwnd, row.uMsg, row.wParam, row.lParam));
    });
    EXPECT_TRUE(::IsIconic(window));
    EXPECT_EQ(front, ::GetForegroundWindow());
}
const UINT kMsgId = GetMyCompanyMsgId();
INSTANTIATE_TEST_SUITE_P(
    Cases, OtherMessage,
    testing::Values(OtherMessageCase{"AnotherMessage", true, WM_NULL, kCompanyCodeActivate, kId},
                    OtherMessageCase{"NextMessage", true, kMsgId + 1, kCompanyCodeActivate, kId},
                    OtherMessageCase{"AnotherCode", true, kMsgId, kCompanyCodeIsDialog, kId},
                    OtherMessageCase{"CodeInTheHighHalf", true, kMsgId,
                                     kCompanyCodeActivate + (WPARAM{1} << 32), kId},
                    OtherMessageCase{"AnotherId", true, kMsgId, kCompanyCodeActivate, kId + 1},
                    OtherMessageCase{"IdWithMoreAboveIt", true, kMsgId, kCompanyCodeActivate,
                                     kId + (LPARAM{1} << 32)},
                    OtherMessageCase{"NoWindow", false, kMsgId, kCompanyCodeActivate, kId}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(OnActivatePreviousInstance, BringsTheWindowForwardAndSaysSo) {
    OtherWindow window(HandlerOfMainWindow(kId)), front;
    GiveForeground(front);
    EXPECT_EQ(8615091, SendMyCompanyMsg(window, 3, kId));
    EXPECT_TRUE(HasForeground(window));
}

TEST(OnActivatePreviousInstance, RestoresAMinimisedWindowFirst) {
    OtherWindow window(HandlerOfMainWindow(kId)), front;
    window.Minimise();
    GiveForeground(front);
    EXPECT_EQ(kActivateDone, SendMyCompanyMsg(window, kCompanyCodeActivate, kId));
    EXPECT_FALSE(::IsIconic(window));
    EXPECT_TRUE(HasForeground(window));
}

TEST(OnActivatePreviousInstance, KeepsAMaximisedWindowMaximised) {
    OtherWindow window(HandlerOfMainWindow(kId), OtherWindow::kClass, L"large", WS_MAXIMIZE);
    EXPECT_EQ(kActivateDone, SendMyCompanyMsg(window, kCompanyCodeActivate, kId));
    EXPECT_TRUE(::IsZoomed(window));
}

TEST(OnActivatePreviousInstance, RestoresTheMinimisedOwner) {
    OtherWindow owner(HandlerOfMainWindow(kId));
    HWND hwndOwned = owner.MakeOwned();
    owner.ListenToOwned();
    owner.Minimise();
    ASSERT_TRUE(::IsIconic(owner));
    EXPECT_EQ(kActivateDone, SendMyCompanyMsg(hwndOwned, kCompanyCodeActivate, kId));
    EXPECT_FALSE(::IsIconic(owner));
    EXPECT_TRUE(HasForeground(hwndOwned));
}

TEST(OnActivatePreviousInstance, RestoresTheMinimisedFrameOfAChild) {
    OtherWindow frame(HandlerOfMainWindow(kId));
    HWND hwndChild = frame.MakeOwned(WS_CHILD | WS_VISIBLE);
    frame.ListenToOwned();
    frame.Minimise();
    EXPECT_EQ(kActivateDone, SendMyCompanyMsg(hwndChild, kCompanyCodeActivate, kId));
    EXPECT_FALSE(::IsIconic(frame));
}

TEST(OnActivatePreviousInstance, BringsTheLastActivePopupForward) {
    OtherWindow window(HandlerOfMainWindow(kId)), front;
    HWND hwndPopup = window.MakeOwned();
    GiveForeground(hwndPopup);
    GiveForeground(front);
    EXPECT_EQ(kActivateDone, SendMyCompanyMsg(window, kCompanyCodeActivate, kId));
    EXPECT_TRUE(HasForeground(hwndPopup));
}

TEST(ActivatePrevDlg, TakesTheOneOfSeveralThatSaysItIsTheDialog) {
    Answers first, wanted, last;
    wanted.nIsDialog = 1;
    wanted.nActivate = 1;
    OtherWindow one(first.Handler(), OtherWindow::kDialogClass),
        two(wanted.Handler(), OtherWindow::kDialogClass),
        three(last.Handler(), OtherWindow::kDialogClass);
    EXPECT_EQ(1, ActivatePrevDlg(kDialog));
    EXPECT_EQ(1, wanted.nAskedDialog);
    EXPECT_EQ(1, wanted.nAskedActivate);
    EXPECT_EQ(kDialog, wanted.lAskedFor);
    EXPECT_EQ(0, first.nAskedActivate + last.nAskedActivate);
    EXPECT_EQ(1, first.nAskedDialog + last.nAskedDialog) << "one was in front of it";
}

TEST(ActivatePrevDlg, NoneThatSaysYesGivesZero) {
    Answers answers;
    OtherWindow one(answers.Handler(), OtherWindow::kDialogClass),
        two(answers.Handler(), OtherWindow::kDialogClass), front;
    one.Minimise();
    GiveForeground(front);
    EXPECT_EQ(0, ActivatePrevDlg(kDialog));
    EXPECT_EQ(2, answers.nAskedDialog);
    EXPECT_EQ(0, answers.nAskedActivate);
    EXPECT_TRUE(::IsIconic(one));
    EXPECT_EQ(front, ::GetForegroundWindow());
}

TEST(ActivatePrevDlg, OtherClassesAreNotAsked) {
    Answers answers;
    answers.nIsDialog = 1;
    OtherWindow window(answers.Handler());
    EXPECT_EQ(0, ActivatePrevDlg(kDialog));
    EXPECT_EQ(0, answers.nAskedDialog);
}

TEST(ActivatePrevDlg, WithoutANumberTakesADialogUnasked) {
    Answers answers;
    OtherWindow window(answers.Handler(), OtherWindow::kDialogClass);
    EXPECT_EQ(1, ActivatePrevDlg(0));
    EXPECT_EQ(0, answers.nAskedDialog);
    EXPECT_EQ(1, answers.nAskedActivate);
    EXPECT_EQ(0, answers.lAskedFor);
}

TEST(ActivatePrevDlg, DialogThatSeesToItIsLeftAsItIs) {
    for (LRESULT nAnswer : {LRESULT{1}, LRESULT{-1}, kActivateDone}) {
        Answers answers;
        answers.nIsDialog = 1;
        answers.nActivate = nAnswer;
        OtherWindow window(answers.Handler(), OtherWindow::kDialogClass), front;
        window.Minimise();
        GiveForeground(front);
        EXPECT_EQ(1, ActivatePrevDlg(kDialog));
        EXPECT_TRUE(::IsIconic(window));
        EXPECT_EQ(front, ::GetForegroundWindow());
    }
}

TEST(ActivatePrevDlg, DialogThatDoesNotSeeToItIsRestoredAndBroughtForward) {
    Answers answers;
    answers.nIsDialog = -1;
    OtherWindow window(answers.Handler(), OtherWindow::kDialogClass), front;
    window.Minimise();
    GiveForeground(front);
    EXPECT_EQ(1, ActivatePrevDlg(kDialog));
    EXPECT_FALSE(::IsIconic(window));
    EXPECT_TRUE(HasForeground(window));
    GiveForeground(front);
    EXPECT_EQ(1, ActivatePrevDlg(kDialog));
    EXPECT_TRUE(HasForeground(window));
}

TEST(ActivatePrevDlg, LastActivePopupOfTheDialogComesForward) {
    Answers answers;
    answers.nIsDialog = 1;
    OtherWindow window(answers.Handler(), OtherWindow::kDialogClass), front;
    HWND hwndPopup = window.MakeOwned();
    GiveForeground(hwndPopup);
    GiveForeground(front);
    EXPECT_EQ(1, ActivatePrevDlg(kDialog));
    EXPECT_TRUE(HasForeground(hwndPopup));
}

TEST(ActivatePrevDlg, HungDialogInFrontDoesNotHideTheOneBehindIt) {
    Answers wanted, before;
    wanted.nIsDialog = 1;
    OtherWindow window(wanted.Handler(), OtherWindow::kDialogClass),
        hung(before.Handler(), OtherWindow::kDialogClass);
    hung.Hang();
    int nResult = 0;
    double dTime = Seconds([&] { nResult = ActivatePrevDlg(kDialog); });
    EXPECT_EQ(1, nResult);
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    EXPECT_EQ(1, wanted.nAskedActivate);
}

TEST(ActivatePrevDlg, ManyThreadsThatHangAreEachWaitedForOnce) {
    Answers answers;
    OtherWindow one(answers.Handler(), OtherWindow::kDialogClass),
        two(answers.Handler(), OtherWindow::kDialogClass);
    one.Hang();
    two.Hang();
    double dTime = Seconds([&] { EXPECT_EQ(0, ActivatePrevDlg(kDialog)); });
    EXPECT_GE(dTime, 1.8 * kOneTimeOut);
    EXPECT_LT(dTime, 2 * kOneTimeOut + kSlack);
}

TEST(ActivatePrevDlg, DialogThatGoesWhileItIsAskedDoesNotEndTheSearch) {
    Answers wanted;
    wanted.nIsDialog = 1;
    OtherWindow window(wanted.Handler(), OtherWindow::kDialogClass);
    std::atomic<int> nGone{0};
    auto goes = [&](HWND hwnd, UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg != GetMyCompanyMsgId()) return {};
        ++nGone;
        ::DestroyWindow(hwnd);
        return 0;
    };
    OtherWindow inFront(goes, OtherWindow::kDialogClass);
    EXPECT_EQ(1, ActivatePrevDlg(kDialog));
    EXPECT_EQ(1, nGone);
    EXPECT_EQ(1, wanted.nAskedActivate);
}

struct ClassAndTitleCase {
    const char* pszName;
    const wchar_t *pszClass, *pszTitle;
    int nResult;
};
class ActivatedByClassAndTitle : public testing::TestWithParam<ClassAndTitleCase> {};
TEST_P(ActivatedByClassAndTitle, BothCount) {
    const ClassAndTitleCase& row = GetParam();
    Answers answers;
    OtherWindow window(answers.Handler(), OtherWindow::kClass, L"title of one");
    EXPECT_EQ(row.nResult, ActivatePrevWnd(row.pszClass, row.pszTitle, 0));
    EXPECT_EQ(row.nResult, answers.nAskedActivate);
    EXPECT_EQ(0, answers.nAskedDialog);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, ActivatedByClassAndTitle,
    testing::Values(ClassAndTitleCase{"Both", OtherWindow::kClass, L"title of one", 1},
                    ClassAndTitleCase{"AnyClass", nullptr, L"title of one", 1},
                    ClassAndTitleCase{"AnyTitle", OtherWindow::kClass, nullptr, 1},
                    ClassAndTitleCase{"PartOfTheTitle", OtherWindow::kClass, L"title", 0},
                    ClassAndTitleCase{"OtherClass", L"NoSuchClassAtAll", L"title of one", 0},
                    ClassAndTitleCase{"OtherTitle", nullptr, L"no such title", 0},
                    ClassAndTitleCase{"EmptyClass", L"", nullptr, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ActivatePrevWnd, WithTheNumberAloneAnyWindowMayAnswer) {
    Answers answers;
    answers.nIsDialog = 1;
    OtherWindow window(answers.Handler());
    EXPECT_EQ(1, ActivatePrevWnd(nullptr, nullptr, kDialog));
    EXPECT_EQ(1, answers.nAskedActivate);
}

TEST(ActivatePrevWnd, WithNothingToGoByNothingIsTaken) {
    Answers answers;
    OtherWindow window(answers.Handler());
    EXPECT_EQ(0, ActivatePrevWnd(nullptr, nullptr, 0));
    EXPECT_EQ(0, ClosePrevWnd(nullptr, nullptr, 0));
    EXPECT_EQ(0, answers.nAskedActivate + answers.nAskedClose);
}

TEST(ActivatePrevWnd, WindowThatHangsOverTheQuestionIsRestoredWhenItIsBack) {
    std::atomic<bool> bResume{false};
    auto slow = [&](HWND, UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg != GetMyCompanyMsgId()) return {};
        WaitUntil([&] { return bResume.load(); });
        return 1; // too late
    };
    OtherWindow window(slow, OtherWindow::kClass, L"slow");
    window.Minimise();
    int nResult = 0;
    double dTime = Seconds([&] { nResult = ActivatePrevWnd(nullptr, L"slow", 0); });
    EXPECT_EQ(1, nResult);
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    bResume = true;
    EXPECT_TRUE(WaitUntil([&] { return !::IsIconic(window); }));
}

TEST(ClosePrevWnd, ClosesTheDialogThatAnswersAndNoOther) {
    Answers other, wanted;
    wanted.nIsDialog = 1;
    OtherWindow one(other.Handler(), OtherWindow::kDialogClass),
        two(wanted.Handler(), OtherWindow::kDialogClass),
        three(other.Handler(), OtherWindow::kDialogClass);
    EXPECT_EQ(1, ClosePrevWnd(OtherWindow::kDialogClass, nullptr, kDialog));
    EXPECT_EQ(1, wanted.nAskedClose);
    EXPECT_EQ(0, other.nAskedClose);
    EXPECT_EQ(0, wanted.nAskedActivate) << "closed, not activated";
}

TEST(ClosePrevWnd, WindowThatClosesIsGoneAndNotFoundAgain) {
    OtherWindow window({}, OtherWindow::kClass, L"to be closed");
    EXPECT_EQ(1, ClosePrevWnd(OtherWindow::kClass, L"to be closed", 0));
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(0, ClosePrevWnd(OtherWindow::kClass, L"to be closed", 0));
}

TEST(ClosePrevWnd, HungWindowCountsAsFoundAfterTheTimeOut) {
    OtherWindow window({}, OtherWindow::kClass, L"hung");
    window.Hang();
    int nResult = 0;
    double dTime = Seconds([&] { nResult = ClosePrevWnd(OtherWindow::kClass, L"hung", 0); });
    EXPECT_EQ(1, nResult);
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    EXPECT_TRUE(::IsWindow(window));
}

/// Whether this thread's input is joined with that of the window's: parting is refused if not.
bool IsJoined(HWND hwnd) {
    DWORD nThread = ::GetWindowThreadProcessId(hwnd, nullptr);
    return ::AttachThreadInput(::GetCurrentThreadId(), nThread, FALSE) != 0;
}

TEST(DoAttachThreadInputActivateWindow, GivesTheForegroundAndPartsAgain) {
    OtherWindow front, wanted;
    GiveForeground(front);
    DoAttachThreadInputActivateWindow(wanted);
    EXPECT_TRUE(HasForeground(wanted));
    EXPECT_FALSE(IsJoined(front));
    EXPECT_FALSE(IsJoined(wanted));
}

TEST(DoAttachThreadInputActivateWindow, WindowOfTheSameThreadNeedsNoJoining) {
    OtherWindow one;
    HWND hwndOwned = one.MakeOwned();
    GiveForeground(one);
    one.Thread().Run([&] { DoAttachThreadInputActivateWindow(hwndOwned); });
    EXPECT_TRUE(HasForeground(hwndOwned));
}

TEST(DoAttachThreadInputActivateWindow, NoWindowChangesNothing) {
    OtherWindow front;
    GiveForeground(front);
    DoAttachThreadInputActivateWindow(nullptr);
    EXPECT_EQ(front, ::GetForegroundWindow());
}

TEST(DoAttachThreadInputActivateWindow, HungForegroundWindowDoesNotHoldIt) {
    OtherWindow front, wanted;
    GiveForeground(front);
    front.Hang();
    double dTime = Seconds([&] { DoAttachThreadInputActivateWindow(wanted); });
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    EXPECT_TRUE(HasForeground(wanted));
    EXPECT_FALSE(IsJoined(front));
}

TEST(DoAttachThreadInputActivateWindow, OwnWindowTakesTheForegroundFromAHungOne) {
    OtherWindow front, other;
    HWND hwndMine = nullptr;
    GiveForeground(front);
    front.Hang();
    double dTime = 0;
    other.Thread().Run([&] {
        hwndMine = other;
        dTime = Seconds([&] { DoAttachThreadInputActivateWindow(hwndMine); });
    });
    EXPECT_LT(dTime, kOneTimeOut + kSlack);
    EXPECT_TRUE(HasForeground(hwndMine));
}
} // namespace
