#include "runtime/base/cs_list.h"

#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

static_assert(std::has_virtual_destructor_v<CSList>);

namespace {
int a = 1, b = 2, c = 3, d = 4, e = 5, f = 6;
using Elements = std::vector<void*>;

/// The elements from the head, after a check that the way back and the count agree.
Elements Walk(const CSList& list) {
    Elements forward, backward;
    for (POS pos = list.GetHeadPos(); pos;) forward.push_back(list.GetNext(pos));
    for (POS pos = list.GetTailPos(); pos;) backward.push_back(list.GetPrev(pos));
    EXPECT_EQ(Elements(forward.rbegin(), forward.rend()), backward);
    EXPECT_EQ(static_cast<int>(forward.size()), list.GetCount());
    EXPECT_EQ(forward.empty(), list.IsEmpty() != 0);
    return forward;
}

void Fill(CSList& list, const Elements& elements) {
    for (void* p : elements) list.AddTail(p);
}

struct Released {
    Elements elements;
    std::vector<unsigned> codes;
    static int Callback(unsigned long long qwContext, unsigned nCode, void* pElement) {
        auto* pReleased = reinterpret_cast<Released*>(qwContext);
        pReleased->elements.push_back(pElement);
        pReleased->codes.push_back(nCode);
        return 0;
    }
    void Watch(CSList& list) {
        list.SetCallback(reinterpret_cast<unsigned long long>(this), Callback);
    }
};

TEST(CSList, StartsEmpty) {
    CSList list;
    EXPECT_EQ(Elements{}, Walk(list));
    EXPECT_EQ(nullptr, list.GetHeadPos());
    EXPECT_EQ(nullptr, list.GetTailPos());
    EXPECT_EQ(nullptr, list.FindIndex(0));
    EXPECT_EQ(nullptr, list.Find(&a));
    list.RemoveAll();
}

TEST(CSList, ElementsGoToTheEndThatIsNamed) {
    CSList list;
    POS posB = list.AddHead(&b);
    POS posA = list.AddHead(&a);
    POS posC = list.AddTail(&c);
    EXPECT_EQ((Elements{&a, &b, &c}), Walk(list));
    EXPECT_EQ(posA, list.GetHeadPos());
    EXPECT_EQ(posC, list.GetTailPos());
    EXPECT_EQ(&b, list.GetAt(posB));
    EXPECT_EQ(&a, list.GetHead());
    EXPECT_EQ(&c, list.GetTail());
}

TEST(CSList, AddHeadOfAListKeepsItsOrderInFront) {
    CSList list, other;
    Fill(list, {&d, &e});
    Fill(other, {&a, &b, &c});
    list.AddHead(other);
    EXPECT_EQ((Elements{&a, &b, &c, &d, &e}), Walk(list));
    EXPECT_EQ((Elements{&a, &b, &c}), Walk(other));
}

TEST(CSList, AddTailOfAListKeepsItsOrderBehind) {
    CSList list, other;
    Fill(list, {&d, &e});
    Fill(other, {&a, &b, &c});
    list.AddTail(other);
    EXPECT_EQ((Elements{&d, &e, &a, &b, &c}), Walk(list));
    EXPECT_EQ((Elements{&a, &b, &c}), Walk(other));
}

TEST(CSList, EmptyListAddsNothing) {
    CSList list, other;
    Fill(list, {&a});
    list.AddHead(other);
    list.AddTail(other);
    EXPECT_EQ((Elements{&a}), Walk(list));
}

TEST(CSList, CanBeAddedToItself) {
    CSList list;
    Fill(list, {&a, &b});
    list.AddTail(list);
    EXPECT_EQ((Elements{&a, &b, &a, &b}), Walk(list));
    list.AddHead(list);
    EXPECT_EQ((Elements{&a, &b, &a, &b, &a, &b, &a, &b}), Walk(list));
}

TEST(CSList, InsertBeforeTheHeadMakesANewHead) {
    CSList list;
    POS pos = list.AddTail(&b);
    POS posNew = list.InsertBefore(pos, &a);
    EXPECT_EQ(list.GetHeadPos(), posNew);
    EXPECT_EQ((Elements{&a, &b}), Walk(list));
}

TEST(CSList, InsertAfterTheTailMakesANewTail) {
    CSList list;
    POS pos = list.AddTail(&a);
    POS posNew = list.InsertAfter(pos, &b);
    EXPECT_EQ(list.GetTailPos(), posNew);
    EXPECT_EQ((Elements{&a, &b}), Walk(list));
}

TEST(CSList, InsertsInTheMiddleOnEitherSide) {
    CSList list;
    POS posA = list.AddTail(&a);
    POS posD = list.AddTail(&d);
    list.InsertAfter(posA, &b);
    list.InsertBefore(posD, &c);
    EXPECT_EQ((Elements{&a, &b, &c, &d}), Walk(list));
}

TEST(CSList, NullPositionInsertsBeforeAtTheHeadAndAfterAtTheTail) {
    CSList list;
    list.InsertBefore(nullptr, &b);
    list.InsertBefore(nullptr, &a);
    list.InsertAfter(nullptr, &c);
    EXPECT_EQ((Elements{&a, &b, &c}), Walk(list));
    CSList other;
    other.InsertAfter(nullptr, &a);
    EXPECT_EQ((Elements{&a}), Walk(other));
}

TEST(CSList, RemoveHeadAndTailReturnTheElementAndTellTheCallback) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {&a, &b, &c});
    EXPECT_EQ(&a, list.RemoveHead());
    EXPECT_EQ(&c, list.RemoveTail());
    EXPECT_EQ((Elements{&b}), Walk(list));
    EXPECT_EQ(&b, list.RemoveTail());
    EXPECT_EQ(Elements{}, Walk(list));
    EXPECT_EQ((Elements{&a, &c, &b}), released.elements);
    EXPECT_EQ((std::vector<unsigned>{1, 1, 1}), released.codes);
}

TEST(CSList, RemoveAtMovesOnAndTellsTheCallback) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {&a, &b, &c});
    POS pos = list.FindIndex(1);
    list.RemoveAt(pos);
    EXPECT_EQ(list.GetTailPos(), pos);
    EXPECT_EQ((Elements{&a, &c}), Walk(list));
    EXPECT_EQ((Elements{&b}), released.elements);
}

TEST(CSList, RemoveAtTheLastNodeLeavesNull) {
    CSList list;
    Fill(list, {&a, &b});
    POS pos = list.GetTailPos();
    list.RemoveAt(pos);
    EXPECT_EQ(nullptr, pos);
    EXPECT_EQ((Elements{&a}), Walk(list));
}

TEST(CSList, ExtractAtMovesOnAndDoesNotTellTheCallback) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {&a, &b});
    POS pos = list.GetHeadPos();
    EXPECT_EQ(&a, list.ExtractAt(pos));
    EXPECT_EQ(list.GetTailPos(), pos);
    EXPECT_EQ(&b, list.ExtractAt(pos));
    EXPECT_EQ(nullptr, pos);
    EXPECT_EQ(Elements{}, Walk(list));
    EXPECT_EQ(Elements{}, released.elements);
}

TEST(CSList, NullElementIsNeverHandedToTheCallback) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {nullptr, &a, nullptr});
    EXPECT_EQ(nullptr, list.RemoveHead());
    POS pos = list.GetTailPos();
    list.RemoveAt(pos);
    list.RemoveAll();
    EXPECT_EQ((Elements{&a}), released.elements);
}

TEST(CSList, RemovingNothingChangesNothing) {
    CSList list;
    EXPECT_EQ(nullptr, list.RemoveHead());
    EXPECT_EQ(nullptr, list.RemoveTail());
    int nElement = 0;
    list.AddTail(&nElement);
    POS pos = nullptr;
    list.RemoveAt(pos);
    EXPECT_EQ(nullptr, list.ExtractAt(pos));
    EXPECT_EQ(nullptr, list.MoveAfter(nullptr, list.GetHeadPos()));
    EXPECT_EQ(1, list.GetCount());
    EXPECT_EQ(&nElement, list.GetHead());
}

TEST(CSList, RemoveAllGoesFromTheTail) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {&a, &b, &c});
    list.RemoveAll();
    EXPECT_EQ(Elements{}, Walk(list));
    EXPECT_EQ((Elements{&c, &b, &a}), released.elements);
}

TEST(CSList, DestructorRemovesFromTheTailWithTheCallback) {
    Released released;
    {
        CSList list;
        released.Watch(list);
        Fill(list, {&a, &b, &c});
    }
    EXPECT_EQ((Elements{&c, &b, &a}), released.elements);
}

TEST(CSList, WithoutCallbackRemovingReleasesNothing) {
    Released released;
    CSList list;
    released.Watch(list);
    Fill(list, {&a, &b});
    list.SetCallback(0, nullptr);
    list.RemoveAll();
    EXPECT_EQ(Elements{}, released.elements);
}

struct MoveCase {
    const char* pszName;
    int nMoved;
    int nAfter; // -1: to the head
    Elements expected;
};

class CSListMove : public testing::TestWithParam<MoveCase> {};

TEST_P(CSListMove, RelinksWithoutCountOrCallback) {
    CSList list;
    Released released;
    released.Watch(list);
    Fill(list, {&a, &b, &c, &d});
    POS pos = list.FindIndex(GetParam().nMoved);
    POS posAfter = GetParam().nAfter < 0 ? nullptr : list.FindIndex(GetParam().nAfter);
    EXPECT_EQ(pos, list.MoveAfter(pos, posAfter));
    EXPECT_EQ(GetParam().expected, Walk(list));
    EXPECT_EQ(Elements{}, released.elements);
}

INSTANTIATE_TEST_SUITE_P(Cases, CSListMove,
                         testing::Values(MoveCase{"BehindItself", 1, 1, {&a, &b, &c, &d}},
                                         MoveCase{"BehindItsPredecessor", 2, 1, {&a, &b, &c, &d}},
                                         MoveCase{"HeadToTheHead", 0, -1, {&a, &b, &c, &d}},
                                         MoveCase{"HeadBehindTheTail", 0, 3, {&b, &c, &d, &a}},
                                         MoveCase{"TailToTheHead", 3, -1, {&d, &a, &b, &c}},
                                         MoveCase{"TailBehindTheHead", 3, 0, {&a, &d, &b, &c}},
                                         MoveCase{"InnerForward", 1, 2, {&a, &c, &b, &d}},
                                         MoveCase{"InnerToTheTail", 1, 3, {&a, &c, &d, &b}},
                                         MoveCase{"InnerToTheHead", 2, -1, {&c, &a, &b, &d}}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSList, MoveAfterOfTheOnlyNodeStays) {
    CSList list;
    POS pos = list.AddTail(&a);
    EXPECT_EQ(pos, list.MoveAfter(pos, nullptr));
    EXPECT_EQ((Elements{&a}), Walk(list));
}

TEST(CSList, ReferencesChangeTheElement) {
    CSList list;
    Fill(list, {&a, &b, &c});
    list.GetHead() = &d;
    list.GetTail() = &f;
    list.SetAt(list.FindIndex(1), &e);
    EXPECT_EQ((Elements{&d, &e, &f}), Walk(list));
    POS pos = list.GetHeadPos();
    list.GetNext(pos) = &a;
    list.GetPrev(pos) = &b;
    list.GetAt(list.GetTailPos()) = &c;
    EXPECT_EQ((Elements{&a, &b, &c}), Walk(list));
    EXPECT_EQ(list.GetHeadPos(), pos);
}

TEST(CSList, IndexCountsStepsFromTheHead) {
    CSList list;
    Fill(list, {&a, &b, &c});
    EXPECT_EQ(-1, list.GetIndex(nullptr));
    EXPECT_EQ(0, list.GetIndex(list.GetHeadPos()));
    EXPECT_EQ(2, list.GetIndex(list.GetTailPos()));
}

TEST(CSList, FindIndexGivesNullFromTheCountOn) {
    CSList list;
    Fill(list, {&a, &b, &c});
    EXPECT_EQ(list.GetHeadPos(), list.FindIndex(0));
    EXPECT_EQ(list.GetTailPos(), list.FindIndex(2));
    EXPECT_EQ(nullptr, list.FindIndex(3));
    EXPECT_EQ(nullptr, list.FindIndex(-1));
}

TEST(CSList, FindLooksBehindTheGivenPosition) {
    CSList list;
    Fill(list, {&a, &b, &a});
    POS pos = list.Find(&a);
    EXPECT_EQ(list.GetHeadPos(), pos);
    EXPECT_EQ(list.GetTailPos(), list.Find(&a, pos));
    EXPECT_EQ(nullptr, list.Find(&a, list.GetTailPos()));
    EXPECT_EQ(nullptr, list.Find(&c));
}

TEST(CSList, CopyAndAssignmentShareTheNodes) {
    CSList list;
    Fill(list, {&a, &b});
    CSList copy(list);
    CSList assigned;
    assigned = list;
    EXPECT_EQ(list.GetHeadPos(), copy.GetHeadPos());
    EXPECT_EQ(list.GetTailPos(), assigned.GetTailPos());
    copy.SetAt(copy.GetHeadPos(), &c);
    EXPECT_EQ((Elements{&c, &b}), Walk(list));
    copy.Abandon();
    assigned.Abandon();
    EXPECT_EQ(Elements{}, Walk(copy));
    EXPECT_EQ((Elements{&c, &b}), Walk(list));
}

TEST(CSList, CopyTakesTheCallbackWithIt) {
    Released released;
    CSList list;
    released.Watch(list);
    Fill(list, {&a});
    {
        CSList copy(list);
        list.Abandon();
    }
    EXPECT_EQ((Elements{&a}), released.elements);
}

class CountingList : public CSList {
  public:
    ~CountingList() override { RemoveAll(); }
    int nCreated = 0;
    int nDeleted = 0;
    int nLimit = 1000;

  protected:
    CSNode* CreateNode() override {
        return nCreated < nLimit ? (++nCreated, CSList::CreateNode()) : nullptr;
    }
    void DeleteNode(CSNode* pNode) override {
        ++nDeleted;
        CSList::DeleteNode(pNode);
    }
};

TEST(CSList, NodeAllocatorCanBeReplaced) {
    CountingList list;
    Fill(list, {&a, &b, &c});
    POS pos = list.GetHeadPos();
    list.ExtractAt(pos);
    list.RemoveHead();
    EXPECT_EQ(3, list.nCreated);
    EXPECT_EQ(2, list.nDeleted);
}

TEST(CSList, WithoutMemoryNothingIsAdded) {
    CountingList list;
    list.nLimit = 1;
    ASSERT_NE(nullptr, list.AddTail(&a));
    EXPECT_EQ(nullptr, list.AddTail(&b));
    EXPECT_EQ(nullptr, list.AddHead(&b));
    EXPECT_EQ(nullptr, list.InsertBefore(list.GetHeadPos(), &b));
    CSList other;
    Fill(other, {&c, &d});
    list.AddTail(other);
    EXPECT_EQ((Elements{&a}), Walk(list));
}

TEST(CSList, CallbackSeesTheElementAlreadyGoneFromTheList) {
    static CSList* pList;
    static int nCountSeen;
    CSList list;
    pList = &list;
    list.SetCallback(0, [](unsigned long long, unsigned, void*) {
        nCountSeen = pList->GetCount();
        return 0;
    });
    Fill(list, {&a, &b});
    list.RemoveHead();
    EXPECT_EQ(1, nCountSeen);
}
} // namespace
