#include "wnd/core/object_table.h"

#include <cstdint>
#include <new>
#include <utility>

ObjectTable::~ObjectTable() {
    Part* pPart = first.pNext.exchange(nullptr);
    while (pPart) delete std::exchange(pPart, pPart->pNext.load());
}

bool ObjectTable::Add(const void* pObject) noexcept {
    if (!pObject) return false;
    if (Has(pObject)) return true;
    std::size_t nBucket = BucketOf(pObject);
    for (Part* pPart = &first; pPart; pPart = GetNext(*pPart)) {
        for (Place& place : pPart->buckets[nBucket]) {
            const void* pFree = nullptr;
            if (place.compare_exchange_strong(pFree, pObject)) return true;
        }
    }
    return false;
}

void ObjectTable::Remove(const void* pObject) noexcept {
    if (const Place* pPlace = Find(pObject)) const_cast<Place*>(pPlace)->store(nullptr);
}

bool ObjectTable::Has(const void* pObject) const noexcept { return Find(pObject) != nullptr; }

std::size_t ObjectTable::BucketOf(const void* pObject) noexcept {
    // Addresses of objects differ in their middle bits: the golden ratio's fraction brings all of
    // them to the top, where the bucket's number is taken.
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;
    constexpr int kBucketBits = 6;
    static_assert(kBuckets == std::size_t{1} << kBucketBits);
    return reinterpret_cast<std::uint64_t>(pObject) * kGoldenRatio >> (64 - kBucketBits);
}

const ObjectTable::Place* ObjectTable::Find(const void* pObject) const noexcept {
    if (!pObject) return nullptr;
    std::size_t nBucket = BucketOf(pObject);
    for (const Part* pPart = &first; pPart; pPart = pPart->pNext.load()) {
        for (const Place& place : pPart->buckets[nBucket]) {
            if (place.load() == pObject) return &place;
        }
    }
    return nullptr;
}

ObjectTable::Part* ObjectTable::GetNext(Part& part) noexcept {
    Part* pNext = part.pNext.load();
    if (pNext) return pNext;
    Part* pNew = new (std::nothrow) Part;
    if (!pNew || part.pNext.compare_exchange_strong(pNext, pNew)) return pNew;
    delete pNew; // another thread was first; pNext is its part now
    return pNext;
}
