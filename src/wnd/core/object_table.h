#pragma once
#include <array>
#include <atomic>
#include <cstddef>

/// The objects that a window's property may name. A property can be set by any program of the
/// session and may hold anything: only what stands in here is an object and may be touched.
///
/// Constant-initialised and without locks, as it lies on the path of messages: Has looks at the few
/// places of one bucket. Any thread may call everything; one object is added and removed by one
/// thread at a time.
class ObjectTable {
  public:
    constexpr ObjectTable() noexcept = default;
    ObjectTable(const ObjectTable&) = delete; // owns what it grew by
    ObjectTable& operator=(const ObjectTable&) = delete;
    ~ObjectTable();

    /// True if the object is in the table, now or already before; false when out of memory, and for
    /// null.
    [[nodiscard]] bool Add(const void* pObject) noexcept;
    /// Before the object's memory goes. One that is not in the table is nothing to do.
    void Remove(const void* pObject) noexcept;
    [[nodiscard]] bool Has(const void* pObject) const noexcept;

  private:
    using Place = std::atomic<const void*>; // null: free
    static constexpr std::size_t kBuckets = 64;
    static constexpr std::size_t kPlaces = 8; // of a bucket

    /// An object may stand in any place of its bucket, in any part.
    struct Part {
        std::array<std::array<Place, kPlaces>, kBuckets> buckets{};
        std::atomic<Part*> pNext{nullptr}; // made when a bucket of this one was full
    };

    static std::size_t BucketOf(const void* pObject) noexcept;
    const Place* Find(const void* pObject) const noexcept;
    static Part* GetNext(Part& part) noexcept;

    Part first;
};
