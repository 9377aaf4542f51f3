// A cache of mappings, from ended pools to later ones.
//
// Most of the cost of fresh memory is the first touch of its pages.  A program that reads one
// document after the other pays it once: the regions of an ended pool are kept and given to the
// next pool, with their contents.  Meanwhile the system may take their pages (MADV_FREE).
//
// Any thread may use it.
//
// Tested by tests/host/pool_test.cpp
#pragma once

#include <cstddef>
#include <mutex>

namespace qvhost {

class RegionCache {
   public:
    struct Mapping {
        std::byte* begin;  // null: there was no memory
        std::size_t size;
        bool isZero;  // fresh from the system
    };

    RegionCache() = default;
    ~RegionCache();
    RegionCache(const RegionCache&) = delete;
    RegionCache& operator=(const RegionCache&) = delete;

    // A mapping of `wanted` bytes or more, or one of at least `least` when that is all there is.
    Mapping get(std::size_t wanted, std::size_t least);
    // Takes a mapping over, without any part of it hidden from the address sanitizer.
    //   used  bytes at its begin that may have been written: only they are marked, so that the end
    //         of a small pool is cheap however large its region is
    void put(std::byte* begin, std::size_t size, std::size_t used);

   private:
    struct Kept {
        Kept* next;
        std::size_t size;
    };
    std::mutex mutex_;
    Kept* first_ = nullptr;  // the record lies at the begin of its mapping
    std::size_t bytes_ = 0;
};

// Zero-filled address space of its own, or null.
std::byte* mapMemory(std::size_t size);
void unmapMemory(void* mem, std::size_t size);
// The mapping with another size, perhaps elsewhere; its pages are moved, not copied.  Null: nothing
// has changed.
std::byte* remapMemory(void* mem, std::size_t size, std::size_t newSize);

}  // namespace qvhost
