#include "shell/namespace/com_wrappers.h"
#include "shell/namespace/freed_blocks.h"
#include "shell/namespace/made_lists.h"
#include "shell/namespace/pidl.h"
#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <random>

namespace {
const Bytes kEmpty = ListBytes({});
const Bytes kTen = ListBytes({Bytes(8, 0xA5)});
const Bytes kThree = ListBytes({{1}, {}, {2, 3, 4}}); // counts of 3, 2 and 5: nothing is aligned

Bytes BytesOfList(const PIDL& list) {
    const ITEMIDLIST* pidl = list;
    return BytesAt(pidl, list.GetSizeTotal());
}
BYTE* PlaceIn(const ITEMIDLIST* pidl, std::size_t cb) {
    return reinterpret_cast<BYTE*>(const_cast<ITEMIDLIST*>(pidl)) + cb;
}

TEST(PidlSizes, OfNullAreZero) {
    EXPECT_EQ(0u, PIDL::GetSizeOne(nullptr));
    EXPECT_EQ(0u, PIDL::GetSizeAll(nullptr));
    EXPECT_EQ(0u, PIDL::GetSizeTotal(nullptr));
    EXPECT_EQ(0u, PIDL::GetCount(nullptr));
    EXPECT_EQ(1, PIDL::IsEmpty(nullptr));
    PIDL list;
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
    EXPECT_EQ(0u, list.GetSizeOne());
    EXPECT_EQ(0u, list.GetSizeAll());
    EXPECT_EQ(0u, list.GetSizeTotal());
    EXPECT_EQ(0u, list.GetCount());
    EXPECT_EQ(1, list.IsEmpty());
}

TEST(PidlSizes, OfAnEmptyListAreItsEnd) {
    GuardedBytes empty(kEmpty);
    EXPECT_EQ(2u, PIDL::iMinSize);
    EXPECT_EQ(0u, PIDL::GetSizeOne(empty.List()));
    EXPECT_EQ(0u, PIDL::GetSizeAll(empty.List()));
    EXPECT_EQ(2u, PIDL::GetSizeTotal(empty.List()));
    EXPECT_EQ(0u, PIDL::GetCount(empty.List()));
    EXPECT_EQ(1, PIDL::IsEmpty(empty.List()));
}

TEST(PidlSizes, CountTheItems) {
    GuardedBytes ten(kTen), three(kThree);
    EXPECT_EQ(10u, PIDL::GetSizeOne(ten.List()));
    EXPECT_EQ(10u, PIDL::GetSizeAll(ten.List()));
    EXPECT_EQ(12u, PIDL::GetSizeTotal(ten.List()));
    EXPECT_EQ(1u, PIDL::GetCount(ten.List()));
    EXPECT_EQ(0, PIDL::IsEmpty(ten.List()));
    EXPECT_EQ(3u, PIDL::GetSizeOne(three.List()));
    EXPECT_EQ(10u, PIDL::GetSizeAll(three.List()));
    EXPECT_EQ(12u, PIDL::GetSizeTotal(three.List()));
    EXPECT_EQ(3u, PIDL::GetCount(three.List()));
    PIDL list(three.List());
    EXPECT_EQ(3u, list.GetSizeOne());
    EXPECT_EQ(10u, list.GetSizeAll());
    EXPECT_EQ(12u, list.GetSizeTotal());
    EXPECT_EQ(3u, list.GetCount());
    EXPECT_EQ(0, list.IsEmpty());
}

TEST(PidlSizes, CountTheLargestItem) {
    GuardedBytes large(ListBytes({Bytes(65533, 7), Bytes(65533, 8)}));
    EXPECT_EQ(65535u, PIDL::GetSizeOne(large.List()));
    EXPECT_EQ(131070u, PIDL::GetSizeAll(large.List()));
    EXPECT_EQ(131072u, PIDL::GetSizeTotal(large.List()));
    PIDL list(large.List());
    EXPECT_EQ(131072u, list.GetSizeTotal());
    list.AppendAll(large.List());
    EXPECT_EQ(262142u, list.GetSizeTotal());
    EXPECT_EQ(4u, list.GetCount());
}

TEST(PidlPlaces, FirstAndNextWalkToTheEnd) {
    GuardedBytes three(kThree);
    ITEMIDLIST* pidl = PIDL::GetFirst(three.List());
    EXPECT_EQ(three.List(), pidl);
    pidl = PIDL::GetNext(pidl);
    EXPECT_EQ(PlaceIn(three.List(), 3), PlaceIn(pidl, 0));
    pidl = PIDL::GetNext(pidl);
    EXPECT_EQ(PlaceIn(three.List(), 5), PlaceIn(pidl, 0));
    pidl = PIDL::GetNext(pidl);
    EXPECT_EQ(PlaceIn(three.List(), 10), PlaceIn(pidl, 0)); // the end, and not null
    EXPECT_EQ(nullptr, PIDL::GetNext(pidl));
}

TEST(PidlPlaces, LastAndEnd) {
    GuardedBytes three(kThree), ten(kTen);
    EXPECT_EQ(PlaceIn(three.List(), 5), PlaceIn(PIDL::GetLast(three.List()), 0));
    EXPECT_EQ(PlaceIn(three.List(), 10), PlaceIn(PIDL::GetEnd(three.List()), 0));
    EXPECT_EQ(ten.List(), PIDL::GetLast(ten.List()));
    PIDL list(three.List());
    EXPECT_EQ(PlaceIn(list, 5), PlaceIn(list.GetLast(), 0));
    EXPECT_EQ(PlaceIn(list, 10), PlaceIn(list.GetEnd(), 0));
}

TEST(PidlPlaces, OfNothing) {
    GuardedBytes empty(kEmpty);
    EXPECT_EQ(nullptr, PIDL::GetFirst(nullptr));
    EXPECT_EQ(nullptr, PIDL::GetFirst(empty.List()));
    EXPECT_EQ(nullptr, PIDL::GetNext(nullptr));
    EXPECT_EQ(nullptr, PIDL::GetNext(empty.List()));
    EXPECT_EQ(nullptr, PIDL::GetLast(nullptr));
    EXPECT_EQ(nullptr, PIDL::GetLast(empty.List()));
    EXPECT_EQ(nullptr, PIDL::GetEnd(nullptr));
    EXPECT_EQ(empty.List(), PIDL::GetEnd(empty.List()));
    PIDL list;
    EXPECT_EQ(nullptr, list.GetLast());
    EXPECT_EQ(nullptr, list.GetEnd());
    list.Reset();
    EXPECT_EQ(nullptr, list.GetLast());
    EXPECT_EQ(static_cast<ITEMIDLIST*>(list), list.GetEnd());
}

TEST(PidlMemory, IsTheShells) {
    IMalloc* pMalloc = GetShellMalloc();
    ITEMIDLIST* pidl = PIDL::Alloc(12);
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(1, pMalloc->DidAlloc(pidl));
    PIDL::Copy(pidl, AsList(kThree), 12);
    EXPECT_EQ(kThree, BytesAt(pidl, 12));
    PIDL::Copy(pidl, AsList(kTen), 0);
    EXPECT_EQ(kThree, BytesAt(pidl, 12));
    PIDL list(pidl);
    EXPECT_EQ(1, pMalloc->DidAlloc(static_cast<ITEMIDLIST*>(list)));
    PIDL::Free(pidl);
    PIDL::Free(nullptr);
    void* pBlock = PIDL::csiMem.Alloc(3);
    EXPECT_EQ(1, pMalloc->DidAlloc(pBlock));
    PIDL::csiMem.Free(pBlock);
}

TEST(PidlObject, EndFreesTheList) {
    FreedBlocks freed;
    ITEMIDLIST* pidl = PIDL::Alloc(2);
    PIDL::Copy(pidl, AsList(kEmpty), 2);
    {
        PIDL list;
        list.Attach(pidl);
        EXPECT_EQ(pidl, static_cast<ITEMIDLIST*>(list));
        EXPECT_FALSE(freed.Has(pidl));
    }
    EXPECT_TRUE(freed.Has(pidl));
    pidl = PIDL::Alloc(2);
    PIDL::Free(pidl);
    EXPECT_TRUE(freed.Has(pidl));
}

TEST(PidlObject, DetachForgetsAndClearFrees) {
    FreedBlocks freed;
    PIDL list(AsList(kTen));
    ITEMIDLIST* pidl = list;
    list.Detach();
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
    EXPECT_FALSE(freed.Has(pidl));
    list.Attach(pidl);
    list.Clear();
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
    EXPECT_TRUE(freed.Has(pidl));
    list.Clear();
}

TEST(PidlObject, WhatWasHeldIsFreed) {
    FreedBlocks freed;
    PIDL list(AsList(kTen));
    ITEMIDLIST* pidl = list;
    list.Reset();
    EXPECT_TRUE(freed.Has(pidl) || pidl == list);
    // With the old one alive the new one lies elsewhere.
    pidl = list;
    list.CopyAll(AsList(kThree));
    EXPECT_TRUE(freed.Has(pidl));
    pidl = list;
    list.CopyOne(AsList(kTen));
    EXPECT_TRUE(freed.Has(pidl));
    EXPECT_FALSE(freed.Has(list));
}

TEST(PidlObject, ResetAndMakeGiveTheEmptyList) {
    PIDL list(AsList(kTen));
    list.Reset();
    EXPECT_EQ(kEmpty, BytesOfList(list));
    PIDL other;
    other.Make();
    EXPECT_EQ(kEmpty, BytesOfList(other));
    PIDL third;
    third.Reset();
    EXPECT_EQ(kEmpty, BytesOfList(third));
}

TEST(PidlCopy, OneTakesTheFirstItem) {
    GuardedBytes three(kThree);
    PIDL list(AsList(kTen));
    list.CopyOne(three.List());
    EXPECT_EQ(ListBytes({{1}}), BytesOfList(list));
    // The item alone, without an end behind it.
    GuardedBytes item(Bytes(kTen.begin(), kTen.end() - 2));
    list.CopyOne(item.List());
    EXPECT_EQ(kTen, BytesOfList(list));
    list.CopyOne(AsList(kEmpty));
    EXPECT_EQ(kEmpty, BytesOfList(list));
    list.CopyOne(nullptr);
    EXPECT_EQ(kEmpty, BytesOfList(list));
}

TEST(PidlCopy, AllTakesEachItem) {
    GuardedBytes three(kThree);
    PIDL list;
    list.CopyAll(three.List());
    EXPECT_EQ(kThree, BytesOfList(list));
    list.CopyAll(AsList(kEmpty));
    EXPECT_EQ(kEmpty, BytesOfList(list));
    list.CopyAll(three.List());
    list.CopyAll(nullptr);
    EXPECT_EQ(kEmpty, BytesOfList(list));
    PIDL ofNull(nullptr);
    EXPECT_EQ(kEmpty, BytesOfList(ofNull));
}

TEST(PidlCopy, FromTheObjectsOwnList) {
    PIDL list(AsList(kThree));
    list.CopyAll(PIDL::GetNext(list));
    EXPECT_EQ(ListBytes({{}, {2, 3, 4}}), BytesOfList(list));
    list.CopyOne(list.GetLast());
    EXPECT_EQ(ListBytes({{2, 3, 4}}), BytesOfList(list));
    list.CopyAll(list);
    EXPECT_EQ(ListBytes({{2, 3, 4}}), BytesOfList(list));
    list.CopyAll(list.GetEnd());
    EXPECT_EQ(kEmpty, BytesOfList(list));
}

TEST(PidlAppend, PutsItemsBehind) {
    GuardedBytes three(kThree);
    PIDL list(AsList(kTen));
    list.AppendOne(three.List());
    EXPECT_EQ(ListBytes({Bytes(8, 0xA5), {1}}), BytesOfList(list));
    list.AppendAll(three.List());
    EXPECT_EQ(ListBytes({Bytes(8, 0xA5), {1}, {1}, {}, {2, 3, 4}}), BytesOfList(list));
    GuardedBytes item(Bytes(kTen.begin(), kTen.end() - 2));
    list.CopyAll(AsList(kThree));
    list.AppendOne(item.List());
    EXPECT_EQ(ListBytes({{1}, {}, {2, 3, 4}, Bytes(8, 0xA5)}), BytesOfList(list));
}

TEST(PidlAppend, OfNothingChangesNothing) {
    PIDL list(AsList(kTen));
    list.AppendOne(nullptr);
    list.AppendAll(nullptr);
    list.AppendOne(AsList(kEmpty));
    list.AppendAll(AsList(kEmpty));
    EXPECT_EQ(kTen, BytesOfList(list));
    PIDL none;
    none.AppendOne(nullptr);
    none.AppendAll(nullptr);
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(none));
}

TEST(PidlAppend, GivesANewListToAnObjectWithout) {
    PIDL all, one, empty, emptyOne;
    all.AppendAll(AsList(kThree));
    EXPECT_EQ(kThree, BytesOfList(all));
    one.AppendOne(AsList(kThree));
    EXPECT_EQ(ListBytes({{1}}), BytesOfList(one));
    empty.AppendAll(AsList(kEmpty));
    EXPECT_EQ(kEmpty, BytesOfList(empty));
    emptyOne.AppendOne(AsList(kEmpty));
    EXPECT_EQ(kEmpty, BytesOfList(emptyOne));
}

TEST(PidlAppend, OfTheObjectsOwnList) {
    PIDL list(AsList(kThree));
    list.AppendAll(list);
    EXPECT_EQ(ListBytes({{1}, {}, {2, 3, 4}, {1}, {}, {2, 3, 4}}), BytesOfList(list));
    list.CopyAll(AsList(kThree));
    list.AppendOne(list.GetLast());
    EXPECT_EQ(ListBytes({{1}, {}, {2, 3, 4}, {2, 3, 4}}), BytesOfList(list));
    list.CopyAll(AsList(kThree));
    list.AppendAll(PIDL::GetNext(list));
    EXPECT_EQ(ListBytes({{1}, {}, {2, 3, 4}, {}, {2, 3, 4}}), BytesOfList(list));
}

TEST(PidlAppend, ReallocAppendTakesThatManyBytes) {
    PIDL list;
    list.ReallocAppend(AsList(kThree), 5);
    EXPECT_EQ(ListBytes({{1}, {}}), BytesOfList(list));
    list.ReallocAppend(AsList(kTen), 10);
    EXPECT_EQ(ListBytes({{1}, {}, Bytes(8, 0xA5)}), BytesOfList(list));
    list.ReallocAppend(AsList(kTen), 0);
    EXPECT_EQ(ListBytes({{1}, {}, Bytes(8, 0xA5)}), BytesOfList(list));
}

TEST(PidlRemoveLast, EndsTheListInPlace) {
    PIDL list(AsList(kTen));
    const ITEMIDLIST* pidl = list;
    auto cb = GetShellMalloc()->GetSize(list);
    list.RemoveLast();
    EXPECT_EQ(kEmpty, BytesOfList(list));
    EXPECT_EQ(pidl, static_cast<ITEMIDLIST*>(list));
    EXPECT_EQ(cb, GetShellMalloc()->GetSize(list));
    Bytes left = BytesAt(list, 12); // nothing but the count has changed
    EXPECT_EQ(Bytes({0, 0, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0, 0}), left);
    list.RemoveLast();
    EXPECT_EQ(kEmpty, BytesOfList(list));
    PIDL three(AsList(kThree));
    three.RemoveLast();
    EXPECT_EQ(ListBytes({{1}, {}}), BytesOfList(three));
    three.RemoveLast();
    three.AppendAll(AsList(kThree));
    EXPECT_EQ(ListBytes({{1}, {1}, {}, {2, 3, 4}}), BytesOfList(three));
    PIDL none;
    none.RemoveLast();
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(none));
}

TEST(PidlValid, BySizeAlone) {
    GuardedBytes three(kThree);
    EXPECT_EQ(1, PIDL::IsValid(nullptr, 0));
    EXPECT_EQ(0, PIDL::IsValid(nullptr, 2));
    EXPECT_EQ(1, PIDL::IsValid(three.List(), 12));
    for (unsigned cb = 0; cb < 12; ++cb) EXPECT_EQ(0, PIDL::IsValid(three.List(), cb)) << cb;
    EXPECT_EQ(1, PIDL::IsValid(AsList(kEmpty), 2));
    Bytes longer = kThree;
    longer.push_back(0);
    EXPECT_EQ(0, PIDL::IsValid(AsList(longer), 13));
    EXPECT_EQ(0, PIDL::IsValid(AsList(kEmpty), 0));
}

TEST(PidlValid, SizeWithinSomeBytes) {
    GuardedBytes three(kThree);
    for (unsigned cb = 0; cb < 12; ++cb) EXPECT_EQ(0u, PIDL::GetSizeWithin(three.List(), cb)) << cb;
    for (unsigned cb : {12u, 13u, 0x10000u, 0xFFFFFFFFu})
        EXPECT_EQ(12u, PIDL::GetSizeWithin(three.List(), cb)) << cb;
    EXPECT_EQ(0u, PIDL::GetSizeWithin(nullptr, 2));
    EXPECT_EQ(2u, PIDL::GetSizeWithin(AsList(kEmpty), 2));
}

/// Whether bytes are one list, said another way: each place once, by bounds alone.
int IsOneList(const Bytes& bytes) {
    for (std::size_t n = 0; n + 2 <= bytes.size();) {
        std::size_t cb = bytes[n] | bytes[n + 1] << 8;
        if (cb == 0) return n + 2 == bytes.size();
        n += cb;
    }
    return 0;
}

TEST(PidlValid, CountsOfOneGoByTheBounds) {
    for (const Bytes& bytes : {Bytes{1, 0, 0}, Bytes{1, 0, 0, 0}, Bytes{1}, Bytes{1, 0},
                               Bytes{1, 1, 0, 0}, Bytes{1, 0, 1, 0, 0}}) {
        GuardedBytes guarded(bytes);
        EXPECT_EQ(IsOneList(bytes), PIDL::IsValid(guarded.List(), unsigned(bytes.size())));
    }
}

TEST(PidlValid, NothingBeyondTheBytesIsRead) {
    for (const Bytes& bytes :
         {Bytes{}, Bytes{0}, Bytes{2}, Bytes{2, 0}, Bytes{0xFF, 0xFF}, Bytes{4, 0, 1, 1},
          Bytes{3, 0, 1}, Bytes{3, 0, 1, 0}, Bytes{0xFF, 0xFF, 0, 0}, Bytes{2, 0, 0xFF, 0x7F}}) {
        GuardedBytes guarded(bytes);
        EXPECT_EQ(0, PIDL::IsValid(guarded.List(), unsigned(bytes.size())));
    }
}

TEST(PidlRandom, BytesAreValidWhenTheyAreOneList) {
    std::mt19937 random(901);
    GuardedArea area(70000);
    int nValid = 0;
    for (int nRound = 0; nRound < 30000; ++nRound) {
        Bytes bytes;
        std::size_t cb = nRound % 100 ? random() % 40 : random() % 66000;
        // Small counts, so that walks are long and some meet their end.
        while (bytes.size() < cb) {
            bytes.push_back(static_cast<BYTE>(random() % 3 ? random() % 6 : 0));
        }
        if (nRound % 4 == 0) bytes = ListBytes({bytes, bytes}); // and some that are lists
        if (nRound % 8 == 0) bytes[random() % bytes.size()] ^= 1 << random() % 8;
        if (bytes.size() > 70000) continue;
        void* p = area.Put(bytes.size());
        if (!bytes.empty()) std::memcpy(p, bytes.data(), bytes.size());
        int bExpected = IsOneList(bytes);
        nValid += bExpected;
        ASSERT_EQ(bExpected, PIDL::IsValid(static_cast<ITEMIDLIST*>(p), unsigned(bytes.size())))
            << nRound;
    }
    EXPECT_GT(nValid, 1000);
}

/// Lists of at most 64 KiB; most are short, as those of the shell.
Items RandomItems(std::mt19937& random) {
    Items items;
    std::size_t cbLeft = random() % 20 ? random() % 600 : random() % 65535;
    std::size_t cbMost = random() % 3 ? 40 : 65534;
    while (cbLeft >= 2 && items.size() < 400) {
        Bytes data(random() % std::min<std::size_t>(cbLeft - 1, cbMost));
        for (auto& b : data) b = static_cast<BYTE>(random());
        cbLeft -= data.size() + 2;
        items.push_back(data);
    }
    return items;
}

class PidlModel {
  public:
    explicit PidlModel(unsigned nSeed) : random(nSeed) {}
    void Step() {
        // What is appended lies at the end of its memory: the end alone is read behind the items.
        Items other = RandomItems(random);
        Bytes bytes = ListBytes(other);
        void* p = area.Put(bytes.size());
        std::memcpy(p, bytes.data(), bytes.size());
        auto* pidlOther = static_cast<ITEMIDLIST*>(p);
        switch (random() % 10) {
        case 0:
            list.CopyAll(pidlOther);
            items = other;
            break;
        case 1:
            list.CopyOne(pidlOther);
            items.assign(other.begin(), other.begin() + (other.empty() ? 0 : 1));
            break;
        case 2:
        case 3:
            if (list.GetSizeTotal() > 200000) list.Reset(), items.clear();
            list.AppendAll(pidlOther);
            items.insert(items.end(), other.begin(), other.end());
            break;
        case 4:
        case 5:
            list.AppendOne(pidlOther);
            if (!other.empty()) items.push_back(other.front());
            break;
        case 6:
            list.RemoveLast();
            if (!items.empty()) items.pop_back();
            break;
        case 7:
            if (items.empty()) break;
            AppendOwn(random() % items.size());
            break;
        case 8:
            if (items.empty()) break;
            CopyOwn(random() % items.size());
            break;
        default:
            if (random() % 20 == 0) list.Reset(), items.clear();
        }
    }
    void Check() {
        Bytes expected = ListBytes(items);
        ASSERT_EQ(expected.size(), list.GetSizeTotal());
        ASSERT_EQ(expected.size() - 2, list.GetSizeAll());
        ASSERT_EQ(items.empty() ? 0 : items.front().size() + 2, list.GetSizeOne());
        ASSERT_EQ(items.size(), list.GetCount());
        ASSERT_EQ(items.empty(), list.IsEmpty() != 0);
        ASSERT_TRUE(BytesAt(list, expected.size()) == expected);
        ASSERT_GE(GetShellMalloc()->GetSize(list), expected.size());
        ASSERT_EQ(PlaceIn(list, expected.size() - 2), PlaceIn(list.GetEnd(), 0));
        if (items.empty()) {
            ASSERT_EQ(nullptr, list.GetLast());
        } else {
            ASSERT_EQ(PlaceIn(list, expected.size() - 4 - items.back().size()),
                      PlaceIn(list.GetLast(), 0));
        }
        ASSERT_EQ(1, PIDL::IsValid(list, unsigned(expected.size())));
        ASSERT_EQ(0, PIDL::IsValid(list, unsigned(expected.size() - 1)));
        ASSERT_EQ(expected.size(), list.GetPut(1, nullptr));
    }
    void Begin() { list.Reset(); }

  private:
    ITEMIDLIST* ItemAt(std::size_t n) {
        ITEMIDLIST* pidl = list;
        while (n--) pidl = PIDL::GetNext(pidl);
        return pidl;
    }
    void AppendOwn(std::size_t n) {
        if (random() % 2 || list.GetSizeTotal() > 200000) {
            list.AppendOne(ItemAt(n));
            items.push_back(Bytes(items[n]));
        } else {
            list.AppendAll(ItemAt(n));
            Items more(items.begin() + static_cast<std::ptrdiff_t>(n), items.end());
            items.insert(items.end(), more.begin(), more.end());
        }
    }
    void CopyOwn(std::size_t n) {
        Items rest(items.begin() + static_cast<std::ptrdiff_t>(n), items.end());
        if (random() % 2) {
            list.CopyAll(ItemAt(n));
        } else {
            list.CopyOne(ItemAt(n));
            rest.resize(1);
        }
        items = rest;
    }

    std::mt19937 random;
    GuardedArea area{70000};
    PIDL list;
    Items items;
};

TEST(PidlRandom, OperationsAgreeWithTheModel) {
    PidlModel model(902);
    model.Begin();
    for (int nStep = 0; nStep < 4000; ++nStep) {
        model.Step();
        model.Check();
        ASSERT_FALSE(HasFatalFailure()) << nStep;
    }
}

/// An allocator that has nothing more to give once it is told so.
struct PoorMalloc : IMalloc {
    bool bRefuse = false;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    void* STDMETHODCALLTYPE Alloc(SIZE_T cb) override {
        return bRefuse ? nullptr : ::CoTaskMemAlloc(cb);
    }
    void* STDMETHODCALLTYPE Realloc(void* p, SIZE_T cb) override {
        return bRefuse ? nullptr : ::CoTaskMemRealloc(p, cb);
    }
    void STDMETHODCALLTYPE Free(void* p) override { ::CoTaskMemFree(p); }
    SIZE_T STDMETHODCALLTYPE GetSize(void*) override { return 0; }
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; }
    void STDMETHODCALLTYPE HeapMinimize() override {}
};
PoorMalloc poorMalloc;
HRESULT WINAPI GivePoor(LPMALLOC* pp) {
    *pp = &poorMalloc;
    return S_OK;
}

TEST(PidlMemory, WithoutAnyNothingIsTouched) {
    ReleaseShellMalloc();
    ReplaceImport replaced(__imp_SHGetMalloc, &GivePoor);
    {
        PIDL list(AsList(kTen));
        poorMalloc.bRefuse = true;
        EXPECT_EQ(nullptr, PIDL::Alloc(2));
        list.AppendAll(AsList(kThree));
        EXPECT_EQ(kTen, BytesOfList(list));
        list.AppendOne(AsList(kThree));
        EXPECT_EQ(kTen, BytesOfList(list));
        PIDL none;
        none.AppendAll(AsList(kThree));
        none.Make();
        none.Reset();
        none.CopyAll(AsList(kThree));
        none.CopyOne(AsList(kThree));
        EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(none));
        poorMalloc.bRefuse = false;
    }
    ReleaseShellMalloc();
}
} // namespace
