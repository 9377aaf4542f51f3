// Trackers on Boost's unordered_flat_map: open addressing in groups of 15, found by one SIMD
// compare.
//
// A key carries its hash, so that a growing table does not read the texts again: there are
// documents of a million paths, and each text is a miss of the cache.
//
// Tested by tests/host/tracker_test.cpp
#include "host/tracker.h"

#include "host/byte_hash.h"
#include "host/host_object.h"
#include "host/kernel.h"
#include "host/rim.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <cstring>
#include <memory>
#include <string_view>
#include <sys/random.h>

namespace qvhost {

// Without a seed the table still works; only keys that were chosen to collide make it slow.
ByteHash::ByteHash() : seed_(0x9E3779B97F4A7C15) {
    uint64_t drawn;
    if (getrandom(&drawn, sizeof drawn, GRND_NONBLOCK) == static_cast<ssize_t>(sizeof drawn)) {
        seed_ = drawn;
    }
}

namespace {

// Counts the table's memory as the host's.
template <class T>
struct CountingAllocator {
    using value_type = T;

    MemoryAccount* account;

    explicit CountingAllocator(MemoryAccount& a) : account(&a) {}
    template <class U>
    explicit(false) CountingAllocator(const CountingAllocator<U>& other) : account(other.account) {}

    T* allocate(std::size_t n) {
        T* const mem = std::allocator<T>().allocate(n);
        account->take(n * sizeof(T));
        return mem;
    }
    void deallocate(T* mem, std::size_t n) {
        account->giveBack(n * sizeof(T));
        std::allocator<T>().deallocate(mem, n);
    }
    template <class U>
    bool operator==(const CountingAllocator<U>& other) const {
        return account == other.account;
    }
};

struct Key {
    std::string_view text;
    std::size_t hash;

    bool operator==(const Key& other) const { return hash == other.hash && text == other.text; }
};
struct KeptHash {
    using is_avalanching = void;  // as ByteHash
    std::size_t operator()(const Key& key) const noexcept { return key.hash; }
};

using Entry = std::pair<const Key, QVMemPtr>;
using Table = boost::unordered_flat_map<Key, QVMemPtr, KeptHash, std::equal_to<Key>,
                                        CountingAllocator<Entry>>;

class Tracker : public QVTracker {
   public:
    Tracker(Host& host, std::string_view name)
        : QVTracker{},
          entry_(&host, ObjectKind::TRACKER, generic, name),
          table_(CountingAllocator<Entry>(host.memory())) {
        std::memcpy(generic.tag, "trak", sizeof generic.tag);
        generic.destroy = &Rim<&destroyTracker>::call;
        find = &findKey;
        insert = &Rim<&insertKey>::call;
    }

   private:
    static QVMemPtr findKey(QVTrackerh handle, const char* key, QVStrSize keyLen) noexcept;
    static QVStatus insertKey(QVTrackerh handle, const char* key, QVStrSize keyLen, QVMemPtr value);
    static QVStatus destroyTracker(QVGeneric* self);
    [[nodiscard]] Key keyOf(const char* key, QVStrSize keyLen) const noexcept {
        const std::string_view text(key, static_cast<std::size_t>(keyLen));
        return {text, hash_(text)};
    }

    ByteHash hash_;
    HostObject entry_;
    Table table_;
};

QVMemPtr Tracker::findKey(QVTrackerh handle, const char* key, QVStrSize keyLen) noexcept {
    if (keyLen < 0) {
        return nullptr;
    }
    const Tracker* const tracker = static_cast<Tracker*>(handle);
    const Table& table = tracker->table_;
    const auto found = table.find(tracker->keyOf(key, keyLen));
    return found == table.end() ? nullptr : found->second;
}

QVStatus Tracker::insertKey(QVTrackerh handle, const char* key, QVStrSize keyLen, QVMemPtr value) {
    if (keyLen < 0) {
        return QV_BADPARMS;
    }
    Tracker* const tracker = static_cast<Tracker*>(handle);
    tracker->table_.insert_or_assign(tracker->keyOf(key, keyLen), value);
    return QV_OK;
}

QVStatus Tracker::destroyTracker(QVGeneric* self) {
    delete static_cast<Tracker*>(reinterpret_cast<QVTracker*>(self));  // begins with its head
    return QV_OK;
}

}  // namespace

QVTrackerh createTracker(Host& host, const QVChar* name, QVStrSize nameLen) {
    if (host.memory().fails()) {
        return nullptr;
    }
    return new Tracker(host, utf8Text(name, nameLen));
}

}  // namespace qvhost
