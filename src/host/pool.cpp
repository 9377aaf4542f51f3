// An arena of three kinds of pieces.
//
//   small   up to 64 KiB: slots of 88 lengths, each with a list of free slots.
//   large   up to 4 MiB: cut to size.  Free ones are kept by their magnitude and reused for
//           requests that leave at most an eighth of them idle.
//   huge    mappings of their own, given back to the system when they are released.  The system
//           moves their pages when they grow or shrink.
//
// Small and large pieces are cut one after the other from regions of 4 to 256 MiB; free ones are
// never joined.  A region is only address space at first: what counts as held is what has been cut
// from it.  A region after a pool's first has its pages made present 2 MiB at a time: most of the
// cost of a fresh piece is the first touch of its pages, and one call for many costs two thirds of
// a fault for each.  The pages of the first region are made by faults, so that a pool for a small
// document stays small.  Huge pages of 2 MiB are not used: under a hypervisor that takes back free
// memory, it takes them first, and 800 MB of them took 0.15 s or 2.4 s, where this takes 0.27.  A
// fresh region is zero; one that another pool has left (region_cache.h) is cleared where the caller
// asks for zeros.
//
// Tested by tests/host/pool_test.cpp
#include "host/pool.h"

#include "host/host_object.h"
#include "host/kernel.h"
#include "host/piece.h"
#include "host/region_cache.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <sys/mman.h>

namespace qvhost {

namespace {

using namespace piece;

constexpr std::size_t kPage = 4 * kKiB;
constexpr std::size_t kFirstRegion = 4 * kMiB;
constexpr std::size_t kLastRegion = 256 * kMiB;
constexpr std::size_t kFirstGrain = 64 * kKiB;  // the first region is counted in these
constexpr std::size_t kGrain = 2 * kMiB;        // the others are counted and made present in these

// Makes pages present before they are touched.  If this fails, each page is made by a fault.
void makePresent([[maybe_unused]] std::byte* begin, [[maybe_unused]] std::size_t size) {
#ifdef MADV_POPULATE_WRITE
    madvise(begin, size, MADV_POPULATE_WRITE);
#endif
}

// Heads of mappings.  A piece of a huge mapping follows its record.
struct Region {
    Region* next;
    std::size_t size;
};
struct Huge {
    Huge* older;
    Huge* newer;
    std::size_t size;
};
constexpr std::size_t kMapHead = 64;
static_assert(sizeof(Region) <= kMapHead && sizeof(Huge) <= kMapHead - kHeadSize);

class Pool : public QVPool {
   public:
    Pool(Host& host, std::string_view name);
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    // Makes room for `size` bytes at once.
    bool reserve(std::size_t size) { return size <= kAbsurd && newRegion(size); }
    [[nodiscard]] uint64_t calls() const { return calls_.load(std::memory_order_relaxed); }

   private:
    static QVMemPtr allocateSlot(QVPoolh handle, QVStrSize size, uint32_t flags) noexcept;
    static QVMemPtr reallocateSlot(QVPoolh handle, QVMemPtr mem, QVStrSize size,
                                   uint32_t flags) noexcept;
    static QVStatus releaseSlot(QVPoolh handle, QVMemPtr mem) noexcept;
    static QVStatus destroySlot(QVGeneric* self) noexcept;

    std::byte* obtain(std::size_t size, bool zero);
    std::byte* obtainLarge(std::size_t size, bool zero);
    std::byte* obtainHuge(std::size_t size);
    std::byte* resizeHuge(std::byte* piece, std::size_t size);
    std::byte* moved(std::byte* piece, Head head, std::size_t size, bool grows);
    void release(std::byte* piece);
    void releaseHuge(std::byte* piece);
    static std::size_t usableOf(const std::byte* piece, Head head);

    std::byte* cut(std::size_t size);
    bool extend(std::size_t size);
    bool newRegion(std::size_t need);
    void countCall() { calls_.store(calls() + 1, std::memory_order_relaxed); }

    RegionCache& cache_;
    MemoryAccount& account_;
    std::atomic<uint64_t> calls_{0};  // written by the pool's thread only

    // The next piece is cut at cut_.  Invariant: cut_ and heldEnd_ lie in the newest region, what
    // is in front of both has been counted and may be cut (a new region has nothing counted, not
    // even its record), and cut_ is 8 past a multiple of 16, so that a piece after its head is
    // aligned.
    std::byte* cut_ = nullptr;
    std::byte* heldEnd_ = nullptr;  // counted up to here
    std::byte* regionEnd_ = nullptr;
    bool regionIsZero_ = true;  // what has not been cut yet
    std::array<FreeList, kClasses> freeSmall_;
    std::array<FreeList, kMagnitudes> freeLarge_;

    Region* regions_ = nullptr;  // newest first
    Huge* huge_ = nullptr;       // newest first
    std::size_t reserved_ = 0;   // bytes of all regions
    std::size_t held_ = 0;       // of them, and of huge pieces, counted
    HostObject entry_;           // last, since a listed pool is asked for its calls
};

Pool::Pool(Host& host, std::string_view name)
    : QVPool{},
      cache_(host.regions()),
      account_(host.memory()),
      entry_(&host, ObjectKind::POOL, generic, name) {
    std::memcpy(generic.tag, "pool", sizeof generic.tag);
    generic.destroy = &destroySlot;
    allocate = &allocateSlot;
    reallocate = &reallocateSlot;
    QVPool::release = &releaseSlot;
}

Pool::~Pool() {
    const std::byte* usedEnd = heldEnd_;  // of the newest region; the others are used up
    while (regions_ != nullptr) {
        Region* const region = regions_;
        auto* const begin = reinterpret_cast<std::byte*>(region);
        const std::size_t size = region->size;
        const auto used = usedEnd == nullptr ? size : static_cast<std::size_t>(usedEnd - begin);
        usedEnd = nullptr;
        regions_ = region->next;
        reveal(begin, size);
        cache_.put(begin, size, used);
    }
    while (huge_ != nullptr) {
        Huge* const huge = huge_;
        huge_ = huge->older;
        unmapMemory(huge, huge->size);
    }
    account_.giveBack(held_);
    account_.addCalls(calls());
}

// Opens a region that has room for a piece of `need` bytes.
bool Pool::newRegion(std::size_t need) {
    const std::size_t least = roundUp(need + kMapHead + 2 * kLargeAlignment, kGrain);
    const std::size_t wanted = std::max(least, std::clamp(reserved_, kFirstRegion, kLastRegion));
    const auto [begin, size, isZero] = cache_.get(wanted, least);
    if (begin == nullptr) {
        return false;
    }
    regions_ = new (begin) Region{regions_, size};
    reserved_ += size;
    regionIsZero_ = isZero;
    heldEnd_ = begin;
    cut_ = begin + kMapHead + kHeadSize;
    regionEnd_ = begin + size;
    hide(cut_, static_cast<std::size_t>(regionEnd_ - cut_));
    return true;
}

// Counts `size` bytes from cut_ on as held, in a new region when this one is too short.
bool Pool::extend(std::size_t size) {
    if (static_cast<std::size_t>(regionEnd_ - cut_) < size && !newRegion(size)) {
        return false;
    }
    const bool isFirst = regions_->next == nullptr;
    const auto wanted = static_cast<std::size_t>(cut_ + size - heldEnd_);
    const std::size_t more = std::min(roundUp(wanted, isFirst ? kFirstGrain : kGrain),
                                      static_cast<std::size_t>(regionEnd_ - heldEnd_));
    if (!isFirst && regionIsZero_) {
        makePresent(heldEnd_, more);
    }
    heldEnd_ += more;
    held_ += more;
    account_.take(more);
    return true;
}

// The next `size` bytes, not handed out before by this pool, or null.
inline std::byte* Pool::cut(std::size_t size) {
    if (heldEnd_ - cut_ < static_cast<std::ptrdiff_t>(size) && !extend(size)) {
        return nullptr;
    }
    std::byte* const begin = cut_;
    cut_ += size;
    return begin;
}

// A piece, or null.
inline std::byte* Pool::obtain(std::size_t size, bool zero) {
    if (size > kSmallLimit - kHeadSize - kRedZone) {
        if (size > kAbsurd) {
            return nullptr;
        }
        return size <= kLargeLimit ? obtainLarge(size, zero) : obtainHuge(size);
    }
    const std::size_t slotClass = classOf(roundUp(size + kHeadSize + kRedZone, kStep));
    std::byte* piece = freeSmall_[slotClass].pop();
    if (piece == nullptr) {
        piece = cut(slotOf(slotClass));
        if (piece == nullptr) {
            return nullptr;
        }
        piece += kHeadSize;
        zero = zero && !regionIsZero_;
    }
    reveal(piece, size);
    if (zero) {
        clear(piece, size);
    }
    setHead(piece, size, static_cast<uint8_t>(slotClass));
    return piece;
}

// The list of free large pieces of a magnitude: those with 16 bits in the length come first.
std::size_t largeListOf(std::size_t usable) {
    return static_cast<std::size_t>(std::bit_width(usable)) - 16;
}

std::byte* Pool::obtainLarge(std::size_t size, bool zero) {
    const std::size_t usable = roundUp(size + kRedZone + kHeadSize, kStep) - kHeadSize;
    const auto fits = [usable](const std::byte* piece) {
        const std::size_t has = largeUsable(piece);
        return has >= usable && has - usable <= has / 8;
    };
    std::byte* piece = freeLarge_[largeListOf(usable)].popIf(fits);
    if (piece == nullptr) {
        // The place is known only when there is surely room.
        if (heldEnd_ - cut_ < static_cast<std::ptrdiff_t>(usable + 2 * kLargeAlignment) &&
            !extend(usable + 2 * kLargeAlignment)) {
            return nullptr;
        }
        const auto at = reinterpret_cast<std::uintptr_t>(cut_);
        piece = cut_ + (roundUp(at + 2 * kHeadSize, kLargeAlignment) - at);
        cut_ = piece + usable;
        setLargeUsable(piece, usable);
        zero = zero && !regionIsZero_;
    }
    reveal(piece, size);
    if (zero) {
        std::memset(piece, 0, size);
    }
    setHead(piece, size, kLargeClass);
    return piece;
}

std::byte* Pool::obtainHuge(std::size_t size) {
    const std::size_t mapped = roundUp(size + kMapHead + kRedZone, kPage);
    std::byte* const begin = mapMemory(mapped);
    if (begin == nullptr) {
        return nullptr;
    }
    Huge* const huge = new (begin) Huge{huge_, nullptr, mapped};
    if (huge_ != nullptr) {
        huge_->newer = huge;
    }
    huge_ = huge;
    held_ += mapped;
    account_.take(mapped);
    std::byte* const piece = begin + kMapHead;
    hide(piece, mapped - kMapHead);
    reveal(piece, size);
    setHead(piece, size, kHugeClass);
    return piece;
}

// The piece with another size that is huge too, or null.
std::byte* Pool::resizeHuge(std::byte* piece, std::size_t size) {
    Huge* huge = reinterpret_cast<Huge*>(piece - kMapHead);
    const std::size_t before = huge->size;
    const std::size_t mapped = roundUp(size + kMapHead + kRedZone, kPage);
    std::byte* const begin = remapMemory(huge, before, mapped);
    if (begin == nullptr) {
        return nullptr;
    }
    huge = reinterpret_cast<Huge*>(begin);
    huge->size = mapped;
    (huge->newer == nullptr ? huge_ : huge->newer->older) = huge;
    if (huge->older != nullptr) {
        huge->older->newer = huge;
    }
    held_ = held_ - before + mapped;
    if (mapped > before) {
        account_.take(mapped - before);
    } else {
        account_.giveBack(before - mapped);
    }
    piece = begin + kMapHead;
    hide(piece, mapped - kMapHead);
    setHead(piece, size, kHugeClass);
    return piece;
}

// Bytes that a piece could hold where it is.
std::size_t Pool::usableOf(const std::byte* piece, Head head) {
    switch (head.pieceClass) {
        case kLargeClass:
            return largeUsable(piece) - kRedZone;
        case kHugeClass:
            return reinterpret_cast<const Huge*>(piece - kMapHead)->size - kMapHead - kRedZone;
        default:
            return slotOf(head.pieceClass) - kHeadSize - kRedZone;
    }
}

inline void Pool::release(std::byte* piece) {
    const Head head = headOf(piece);
    hide(piece, head.size);
    if (head.pieceClass < kClasses) {
        freeSmall_[head.pieceClass].push(piece);
    } else if (head.pieceClass == kLargeClass) {
        freeLarge_[largeListOf(largeUsable(piece))].push(piece);
    } else {
        releaseHuge(piece);
    }
}

void Pool::releaseHuge(std::byte* piece) {
    Huge* const huge = reinterpret_cast<Huge*>(piece - kMapHead);
    (huge->newer == nullptr ? huge_ : huge->newer->older) = huge->older;
    if (huge->older != nullptr) {
        huge->older->newer = huge->newer;
    }
    held_ -= huge->size;
    account_.giveBack(huge->size);
    unmapMemory(huge, huge->size);
}

// A piece of another size with the contents of `piece`, which is then released; or null.
std::byte* Pool::moved(std::byte* piece, Head head, std::size_t size, bool grows) {
    if (head.pieceClass == kHugeClass && size > kLargeLimit && size <= kAbsurd) {
        return resizeHuge(piece, size);
    }
    // What grows will grow again, and each large piece that it leaves serves few others.
    const bool growsLarge = grows && size > kSmallLimit && size <= kLargeLimit;
    std::byte* const other = obtain(growsLarge ? size + size / 4 : size, false);
    if (other != nullptr) {
        std::memcpy(other, piece, std::min<std::size_t>(head.size, size));
        release(piece);
    }
    return other;
}

QVMemPtr Pool::allocateSlot(QVPoolh handle, QVStrSize size, uint32_t flags) noexcept {
    Pool* const pool = static_cast<Pool*>(handle);
    if (size < 0 || pool->account_.fails()) {
        return nullptr;
    }
    std::byte* const piece = pool->obtain(static_cast<std::size_t>(size), (flags & QV_ZERO) != 0);
    if (piece != nullptr) {
        pool->countCall();
    }
    return piece;
}

QVMemPtr Pool::reallocateSlot(QVPoolh handle, QVMemPtr mem, QVStrSize size,
                              uint32_t flags) noexcept {
    if (mem == nullptr) {
        return allocateSlot(handle, size, flags);
    }
    Pool* const pool = static_cast<Pool*>(handle);
    if (size < 0 || pool->account_.fails()) {
        return nullptr;
    }
    const auto newSize = static_cast<std::size_t>(size);
    std::byte* const old = static_cast<std::byte*>(mem);
    const Head head = headOf(old);
    const std::size_t usable = usableOf(old, head);
    const std::size_t kept = std::min<std::size_t>(head.size, newSize);
    std::byte* piece = old;
    if (newSize > usable || (head.pieceClass >= kClasses && newSize < usable / 2)) {
        piece = pool->moved(old, head, newSize, newSize > usable);
        if (piece == nullptr) {
            return nullptr;
        }
    }
    const Head has = headOf(piece);
    hide(piece, has.size);
    reveal(piece, newSize);
    setHead(piece, newSize, has.pieceClass);
    if ((flags & QV_ZERO) != 0) {
        std::memset(piece + kept, 0, newSize - kept);
    }
    pool->countCall();
    return piece;
}

QVStatus Pool::releaseSlot(QVPoolh handle, QVMemPtr mem) noexcept {
    if (mem == nullptr) {
        return QV_BADPARMS;
    }
    static_cast<Pool*>(handle)->release(static_cast<std::byte*>(mem));
    return QV_OK;
}

QVStatus Pool::destroySlot(QVGeneric* self) noexcept {
    delete static_cast<Pool*>(reinterpret_cast<QVPool*>(self));  // a pool begins with its head
    return QV_OK;
}

}  // namespace

QVPoolh createPool(Host& host, const QVPoolParms& parms, const QVChar* name, QVStrSize nameLen) {
    if (parms.flags != 1 || parms.initialSize < 0 || host.memory().fails()) {
        return nullptr;
    }
    auto pool = std::make_unique<Pool>(host, utf8Text(name, nameLen));
    if (parms.initialSize > 0 && !pool->reserve(static_cast<std::size_t>(parms.initialSize))) {
        return nullptr;
    }
    return pool.release();
}

uint64_t poolCalls(const QVGeneric& pool) noexcept {
    return static_cast<const Pool&>(reinterpret_cast<const QVPool&>(pool)).calls();
}

}  // namespace qvhost
