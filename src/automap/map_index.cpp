// The tables of a map by position and by name.
//
// Tested by tests/automap/map_index_test.cpp
#include "map_index.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/pool.h"
#include "names.h"
#include "path_parts.h"

#include <algorithm>

namespace jmap {
namespace {

constexpr uint64_t kFirstSize = 64;
constexpr uint64_t kMostSize = uint64_t{1} << 31;  // positions have 32 bits

// The tables that are not indexed.
[[nodiscard]] auto restOf(const MAP& map) noexcept {
    const MAPINDEX& index = map.index;
    return each(index.count == 0 ? map.dshead : index.slots[index.count - 1].ds->next);
}

// A hash of a name that does not depend on case.
[[nodiscard]] uint32_t hashInAnyCase(const JMAP_PRIVATE* p, std::string_view name) noexcept {
    char upper[sizeof(DSINFO::name)];
    upperName(upper, name);
    return hashOf(p->hashSeed, std::string_view(upper, name.size()));
}

[[nodiscard]] uint32_t& bucketOf(const MAPINDEX& index, uint32_t hash) noexcept {
    return index.buckets[hash & (index.size - 1)];
}

// Enters a table under its name, unless an earlier one has exactly this name.
void link(const MAPINDEX& index, uint64_t position) noexcept {
    MAPSLOT& slot = index.slots[position];
    uint32_t* end = &bucketOf(index, slot.hash);
    while (*end != 0) {
        MAPSLOT& earlier = index.slots[*end - 1];
        if (earlier.hash == slot.hash && nameOf(*earlier.ds) == nameOf(*slot.ds)) {
            return;
        }
        end = &earlier.next;
    }
    *end = static_cast<uint32_t>(position + 1);
}

// Doubles the room for tables.  False without memory: nothing has changed.
[[nodiscard]] bool grow(JMAP_PRIVATE* p, MAPINDEX& index) noexcept {
    const uint64_t size = std::max(kFirstSize, 2 * index.size);
    if (size > kMostSize) {
        return false;
    }
    auto* slots = poolNew<MAPSLOT>(p->cpool, static_cast<QVStrSize>(size));
    auto* buckets = poolNew<uint32_t>(p->cpool, static_cast<QVStrSize>(size));
    if (slots == nullptr || buckets == nullptr) {
        (void)poolFree(p->cpool, slots);  // on failure they are freed with the pool
        (void)poolFree(p->cpool, buckets);
        return false;
    }
    for (uint64_t i = 0; i < index.count; ++i) {
        slots[i] = {index.slots[i].ds, index.slots[i].hash, 0};
    }
    (void)poolFree(p->cpool, index.slots);
    (void)poolFree(p->cpool, index.buckets);
    index.slots = slots;
    index.buckets = buckets;
    index.size = size;
    index.linked = 0;
    return true;
}

[[nodiscard]] bool isRestShort(const MAP& map) noexcept {
    uint64_t left = kWalkedTables;
    for ([[maybe_unused]] const DSINFO& ds : restOf(map)) {
        if (left-- == 0) {
            return false;
        }
    }
    return true;
}

// Adds the missing tables when there are many, as far as there is memory.
void update(JMAP_PRIVATE* p, MAP& map) noexcept {
    if (isRestShort(map)) {
        return;
    }
    MAPINDEX& index = map.index;
    for (DSINFO& ds : restOf(map)) {
        if (&ds == map.dstail || (index.count == index.size && !grow(p, index))) {
            return;
        }
        index.slots[index.count++] = {&ds, hashInAnyCase(p, nameOf(ds)), 0};
    }
}

}  // namespace

DSINFO* tableAt(JMAP_PRIVATE* p, MAP* map, uint64_t position) noexcept {
    if (map == nullptr) {
        return nullptr;
    }
    update(p, *map);
    if (position < map->index.count) {
        return map->index.slots[position].ds;
    }
    position -= map->index.count;
    for (DSINFO& ds : restOf(*map)) {
        if (position-- == 0) {
            return &ds;
        }
    }
    return nullptr;
}

DSINFO* findTable(JMAP_PRIVATE* p, MAP* map, std::string_view name, SAMENAME* same) noexcept {
    if (map == nullptr || name.size() > sizeof(DSINFO::name)) {
        return nullptr;
    }
    update(p, *map);
    MAPINDEX& index = map->index;
    for (; index.linked < index.count; ++index.linked) {
        link(index, index.linked);
    }
    const uint32_t hash = hashInAnyCase(p, name);
    uint32_t at = index.count == 0 ? 0 : bucketOf(index, hash);
    while (at != 0) {
        const MAPSLOT& slot = index.slots[at - 1];
        if (slot.hash == hash && same(p, nameOf(*slot.ds), name)) {
            return slot.ds;
        }
        at = slot.next;
    }
    for (DSINFO& ds : restOf(*map)) {
        if (same(p, nameOf(ds), name)) {
            return &ds;
        }
    }
    return nullptr;
}

}  // namespace jmap
