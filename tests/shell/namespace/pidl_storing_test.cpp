#include "runtime/base/cs_list.h"
#include "shell/namespace/made_lists.h"
#include "shell/namespace/pidl.h"
#include "store/registry/reg_key.h"
#include "support/registry.h"

#include <gtest/gtest.h>
#include <random>

namespace {
const Bytes kEmpty = ListBytes({});
const Bytes kTen = ListBytes({Bytes(8, 0xA5)});
const Bytes kThree = ListBytes({{1}, {}, {2, 3, 4}});
constexpr unsigned kCap = 64 * 1024;

Bytes BytesOfList(const PIDL& list) {
    const ITEMIDLIST* pidl = list;
    return BytesAt(pidl, list.GetSizeTotal());
}

TEST(PidlGetPut, GetWritesTheListWithItsEnd) {
    PIDL list(AsList(kThree));
    EXPECT_EQ(12u, list.GetPut(1, nullptr));
    Bytes bytes(13, 0xEE);
    EXPECT_EQ(12u, list.GetPut(1, bytes.data()));
    Bytes expected = kThree;
    expected.push_back(0xEE);
    EXPECT_EQ(expected, bytes);
    EXPECT_EQ(12u, list.GetPut(-5, bytes.data())); // any number but 0
}

TEST(PidlGetPut, GetOfNothing) {
    PIDL list;
    Bytes bytes(4, 0xEE);
    EXPECT_EQ(0u, list.GetPut(1, nullptr));
    EXPECT_EQ(0u, list.GetPut(1, bytes.data()));
    EXPECT_EQ(Bytes(4, 0xEE), bytes);
    list.Reset();
    EXPECT_EQ(2u, list.GetPut(1, nullptr));
    EXPECT_EQ(2u, list.GetPut(1, bytes.data()));
    EXPECT_EQ(Bytes({0, 0, 0xEE, 0xEE}), bytes);
}

TEST(PidlGetPut, PutTakesTheListThatIsThere) {
    GuardedBytes three(kThree), empty(kEmpty);
    PIDL list(AsList(kTen));
    EXPECT_EQ(0u, list.GetPut(0, nullptr));
    EXPECT_EQ(kTen, BytesOfList(list));
    EXPECT_EQ(12u, list.GetPut(0, static_cast<BYTE*>(three.Get())));
    EXPECT_EQ(kThree, BytesOfList(list));
    EXPECT_EQ(2u, list.GetPut(0, static_cast<BYTE*>(empty.Get())));
    EXPECT_EQ(kEmpty, BytesOfList(list));
    PIDL none;
    EXPECT_EQ(12u, none.GetPut(0, static_cast<BYTE*>(three.Get())));
    EXPECT_EQ(kThree, BytesOfList(none));
}

TEST(PidlGetPut, PutLooksForTheEndIn64KiBOnly) {
    PIDL list(AsList(kTen));
    // The longest that is taken: items of 65,534 bytes, and the end.
    GuardedBytes longest(ListBytes({Bytes(65532, 7)}));
    EXPECT_EQ(kCap, list.GetPut(0, static_cast<BYTE*>(longest.Get())));
    EXPECT_EQ(ListBytes({Bytes(65532, 7)}), BytesOfList(list));
    list.CopyAll(AsList(kTen));
    // One item, many of one size, and two: the end of each comes too late.
    for (unsigned cb : {65535u, 3u, 2u, 40002u}) {
        Bytes bytes;
        while (bytes.size() < kCap) {
            PutWord(bytes, cb);
            bytes.resize(bytes.size() + cb - 2, 7);
        }
        bytes.resize(kCap); // nothing behind may be read
        GuardedBytes guarded(bytes);
        EXPECT_EQ(0u, list.GetPut(0, static_cast<BYTE*>(guarded.Get())));
        EXPECT_EQ(kTen, BytesOfList(list));
    }
}

TEST(PidlGetPut, CountsOfOneGoByTheBytes) {
    GuardedBytes odd(Bytes{1, 0, 0});
    PIDL list;
    EXPECT_EQ(3u, list.GetPut(0, static_cast<BYTE*>(odd.Get())));
    EXPECT_EQ(Bytes({1, 0, 0}), BytesOfList(list));
}

/// A CSList of some PIDLs.
struct ManyLists {
    explicit ManyLists(std::size_t nCount) : lists(nCount) {
        for (auto& list : lists) nodes.AddTail(&list);
    }
    std::vector<PIDL> lists;
    CSList nodes;
};

TEST(PidlGetPutList, WritesOneBehindTheOther) {
    ManyLists many(4);
    many.lists[0].CopyAll(AsList(kTen));
    many.lists[1].Reset();
    many.lists[3].CopyAll(AsList(kThree)); // [2] has none and writes nothing
    EXPECT_EQ(26u, PIDL::GetPutPIDLList(many.nodes, 0, 1, nullptr));
    GuardedBytes out(Bytes(26, 0xEE));
    EXPECT_EQ(26u, PIDL::GetPutPIDLList(many.nodes, 77, 1, static_cast<BYTE*>(out.Get())));
    Bytes expected = kTen;
    expected.insert(expected.end(), kEmpty.begin(), kEmpty.end());
    expected.insert(expected.end(), kThree.begin(), kThree.end());
    EXPECT_EQ(expected, BytesAt(out.Get(), 26));
    CSList none;
    EXPECT_EQ(0u, PIDL::GetPutPIDLList(none, 5, 1, nullptr));
}

TEST(PidlGetPutList, ReadsAsManyAsThereAreObjects) {
    Bytes bytes = kTen;
    bytes.insert(bytes.end(), kEmpty.begin(), kEmpty.end());
    bytes.insert(bytes.end(), kThree.begin(), kThree.end());
    GuardedBytes in(bytes);
    ManyLists many(3), two(2);
    EXPECT_EQ(26u, PIDL::GetPutPIDLList(many.nodes, 1, 0, static_cast<BYTE*>(in.Get())));
    EXPECT_EQ(kTen, BytesOfList(many.lists[0]));
    EXPECT_EQ(kEmpty, BytesOfList(many.lists[1]));
    EXPECT_EQ(kThree, BytesOfList(many.lists[2]));
    EXPECT_EQ(14u, PIDL::GetPutPIDLList(two.nodes, 99, 0, static_cast<BYTE*>(in.Get())));
    EXPECT_EQ(kEmpty, BytesOfList(two.lists[1]));
    EXPECT_EQ(0u, PIDL::GetPutPIDLList(two.nodes, 2, 0, nullptr));
    EXPECT_EQ(kTen, BytesOfList(two.lists[0]));
}

TEST(PidlGetPutList, ReadingEndsAtTheFirstWithoutAnEnd) {
    Bytes bytes = kTen;
    Bytes endless = ListBytes(Items(40000, Bytes{}));
    bytes.insert(bytes.end(), endless.begin(), endless.begin() + kCap);
    GuardedBytes in(bytes);
    ManyLists many(3);
    many.lists[2].CopyAll(AsList(kThree));
    EXPECT_EQ(12u, PIDL::GetPutPIDLList(many.nodes, 3, 0, static_cast<BYTE*>(in.Get())));
    EXPECT_EQ(kTen, BytesOfList(many.lists[0]));
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(many.lists[1]));
    EXPECT_EQ(kThree, BytesOfList(many.lists[2]));
}

TEST(PidlRandom, StoredListsComeBack) {
    std::mt19937 random(903);
    for (int nRound = 0; nRound < 200; ++nRound) {
        ManyLists from(random() % 6), to(from.lists.size());
        Bytes expected;
        for (auto& list : from.lists) {
            Items items(random() % 5);
            for (auto& item : items) item = Bytes(random() % 3000, static_cast<BYTE>(random()));
            Bytes bytes = ListBytes(items);
            list.CopyAll(AsList(bytes));
            expected.insert(expected.end(), bytes.begin(), bytes.end());
        }
        auto cb = unsigned(expected.size());
        GuardedBytes stored(Bytes(cb, 0xEE));
        auto* p = static_cast<BYTE*>(stored.Get());
        ASSERT_EQ(cb, PIDL::GetPutPIDLList(from.nodes, 0, 1, nullptr));
        ASSERT_EQ(cb, PIDL::GetPutPIDLList(from.nodes, 0, 1, p));
        ASSERT_EQ(expected, BytesAt(p, cb));
        ASSERT_EQ(cb, PIDL::GetPutPIDLList(to.nodes, 0, 0, p));
        for (std::size_t n = 0; n < to.lists.size(); ++n) {
            ASSERT_EQ(BytesOfList(from.lists[n]), BytesOfList(to.lists[n]));
        }
    }
}

class PidlPersist : public testing::Test {
  protected:
    void Read(const Bytes& stored, DWORD dwType = REG_BINARY) {
        plain.Put(L"list", dwType, stored);
        list.CopyAll(AsList(kTen));
        EXPECT_EQ(1, list.Persist(0, key, L"list"));
    }
    TestKey plain{L"Software\\TessalyTest_Pidl"};
    RegKey key{plain.Path().c_str(), 1};
    PIDL list;
};

TEST_F(PidlPersist, WrittenListIsReadBack) {
    list.CopyAll(AsList(kThree));
    EXPECT_EQ(1, list.Persist(1, key, L"list"));
    EXPECT_EQ((RegContent{REG_BINARY, kThree}), plain.Value(L"list"));
    PIDL other;
    EXPECT_EQ(1, other.Persist(0, key, L"list"));
    EXPECT_EQ(kThree, BytesOfList(other));
    list.CopyAll(AsList(kTen));
    EXPECT_EQ(1, list.Persist(1, key, L"list"));
    EXPECT_EQ((RegContent{REG_BINARY, kTen}), plain.Value(L"list"));
}

TEST_F(PidlPersist, EmptyListIsWrittenAsTwoBytes) {
    list.Reset();
    EXPECT_EQ(1, list.Persist(1, key, L"list"));
    EXPECT_EQ((RegContent{REG_BINARY, kEmpty}), plain.Value(L"list"));
    Read(kEmpty);
    EXPECT_EQ(kEmpty, BytesOfList(list));
}

TEST_F(PidlPersist, WritingANullListDeletesTheValue) {
    plain.Put(L"list", REG_BINARY, kTen);
    EXPECT_EQ(1, list.Persist(1, key, L"list"));
    EXPECT_FALSE(plain.HasValue(L"list"));
    EXPECT_EQ(1, list.Persist(1, key, L"list")); // there is none any more
}

TEST_F(PidlPersist, ListsOverTheLimitAreWrittenAndNotRead) {
    Bytes bytes = ListBytes({Bytes(4998 - 2, 9)});
    list.CopyAll(AsList(bytes));
    EXPECT_EQ(1, list.Persist(1, key, L"list"));
    EXPECT_EQ((RegContent{REG_BINARY, bytes}), plain.Value(L"list"));
    Read(bytes);
    EXPECT_EQ(kTen, BytesOfList(list));
}

TEST_F(PidlPersist, LimitIs4096Bytes) {
    Bytes most = ListBytes({Bytes(4096 - 4, 9)}), over = ListBytes({Bytes(4096 - 3, 9)});
    ASSERT_EQ(4096u, most.size());
    Read(most);
    EXPECT_EQ(most, BytesOfList(list));
    Read(over);
    EXPECT_EQ(kTen, BytesOfList(list));
    Read(Bytes(65536 + 12, 0)); // whose size has a low word that is a list's
    EXPECT_EQ(kTen, BytesOfList(list));
}

TEST_F(PidlPersist, WhatIsNotOneListLeavesTheObjectAlone) {
    for (const Bytes& bytes :
         {Bytes{}, Bytes{0}, Bytes{2}, Bytes{0, 0, 0}, Bytes{2, 0}, Bytes{4, 0, 0, 0},
          Bytes{3, 0, 1}, Bytes{3, 0, 1, 0}, Bytes{0xFF, 0xFF, 0, 0}, Bytes(4096, 0xFF),
          Bytes(4096, 0), Bytes{1, 0}, Bytes{3, 0, 1, 0, 0, 0}, Bytes(5000, 0)}) {
        Read(bytes);
        EXPECT_EQ(kTen, BytesOfList(list)) << bytes.size();
    }
    list.CopyAll(AsList(kTen));
    EXPECT_EQ(1, list.Persist(0, key, L"missing"));
    EXPECT_EQ(kTen, BytesOfList(list));
    PIDL none;
    EXPECT_EQ(1, none.Persist(0, key, L"missing"));
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(none));
}

TEST_F(PidlPersist, TypeOfTheValueDoesNotCount) {
    for (DWORD dwType : {REG_NONE, REG_SZ, REG_DWORD, REG_MULTI_SZ}) {
        Read(kThree, dwType);
        // A value of no type counts as absent elsewhere; here its size is what is asked for.
        EXPECT_EQ(kThree, BytesOfList(list)) << dwType;
    }
}

TEST_F(PidlPersist, NullNameIsTheDefaultValue) {
    list.CopyAll(AsList(kThree));
    EXPECT_EQ(1, list.Persist(1, key, nullptr));
    EXPECT_EQ((RegContent{REG_BINARY, kThree}), plain.Value(L""));
    PIDL other;
    other.Persist(0, key, nullptr);
    EXPECT_EQ(kThree, BytesOfList(other));
}

TEST_F(PidlPersist, WithoutAKeyNothingHappens) {
    RegKey none;
    list.CopyAll(AsList(kThree));
    EXPECT_EQ(1, list.Persist(1, none, L"list"));
    EXPECT_EQ(1, list.Persist(0, none, L"list"));
    EXPECT_EQ(kThree, BytesOfList(list));
    list.Clear();
    EXPECT_EQ(1, list.Persist(1, none, L"list"));
}

/// Whether bytes are one list, said another way.
bool IsOneList(const Bytes& bytes) {
    for (std::size_t n = 0; n + 2 <= bytes.size();) {
        std::size_t cb = bytes[n] | bytes[n + 1] << 8;
        if (cb == 0) return n + 2 == bytes.size();
        n += cb;
    }
    return false;
}

TEST_F(PidlPersist, RandomBytesAreTakenWhenTheyAreOneList) {
    std::mt19937 random(904);
    int nTaken = 0;
    for (int nRound = 0; nRound < 1500; ++nRound) {
        Bytes bytes(random() % 30);
        for (auto& b : bytes) b = static_cast<BYTE>(random() % 3 ? random() % 5 : 0);
        if (nRound % 3 == 0) bytes = ListBytes({bytes, bytes, Bytes(random() % 2100, 1)});
        if (nRound % 6 == 0) bytes[random() % bytes.size()] ^= 1 << random() % 8;
        Read(bytes);
        bool bTaken = IsOneList(bytes) && bytes.size() <= 4096;
        nTaken += bTaken;
        ASSERT_EQ(bTaken ? bytes : kTen, BytesOfList(list)) << nRound;
    }
    EXPECT_GT(nTaken, 100);
}
} // namespace
