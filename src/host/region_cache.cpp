// A cache of mappings, from ended pools to later ones.
//
// Tested by tests/host/pool_test.cpp
#include "host/region_cache.h"

#include "host/piece.h"

#include <new>
#include <sys/mman.h>

namespace qvhost {

namespace {

#ifdef QV_ASAN
constexpr std::size_t kMostKept = 0;  // so that the sanitizer finds use after a pool's end
#else
constexpr std::size_t kMostKept = std::size_t{1} << 31;  // bytes
#endif

}  // namespace

std::byte* mapMemory(std::size_t size) {
    void* const got =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return got == MAP_FAILED ? nullptr : static_cast<std::byte*>(got);
}

void unmapMemory(void* mem, std::size_t size) {
    piece::reveal(mem, size);
    munmap(mem, size);
}

std::byte* remapMemory(void* mem, std::size_t size, std::size_t newSize) {
    piece::reveal(mem, size);  // it may be another's when the call returns
    void* const got = mremap(mem, size, newSize, MREMAP_MAYMOVE);
    return got == MAP_FAILED ? nullptr : static_cast<std::byte*>(got);
}

RegionCache::~RegionCache() {
    while (first_ != nullptr) {
        Kept* const kept = first_;
        first_ = kept->next;
        unmapMemory(kept, kept->size);
    }
}

RegionCache::Mapping RegionCache::get(std::size_t wanted, std::size_t least) {
    {
        const std::lock_guard lock(mutex_);
        for (Kept** link = &first_; *link != nullptr; link = &(*link)->next) {
            Kept* const kept = *link;
            if (kept->size >= wanted) {
                *link = kept->next;
                bytes_ -= kept->size;
                return {reinterpret_cast<std::byte*>(kept), kept->size, false};
            }
        }
    }
    std::byte* begin = mapMemory(wanted);
    if (begin == nullptr && least < wanted) {
        wanted = least;
        begin = mapMemory(wanted);
    }
    return {begin, wanted, true};
}

void RegionCache::put(std::byte* begin, std::size_t size, std::size_t used) {
    const std::lock_guard lock(mutex_);
    if (bytes_ + size > kMostKept || madvise(begin, used, MADV_FREE) != 0) {
        unmapMemory(begin, size);
        return;
    }
    first_ = new (begin) Kept{first_, size};
    bytes_ += size;
}

}  // namespace qvhost
