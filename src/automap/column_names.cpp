// Names of the value columns of one table.
//
// Tested by tests/automap/column_names_test.cpp
#include "column_names.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "path_parts.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jmap {
namespace {

constexpr int32_t kFirstSuffix = 2;

// The slot of a name: that of the column that has it, in any case, or the empty one to put it in.
COLUMNSLOT& slotOf(const JMAP_PRIVATE* p, const COLUMNNAMES& names,
                   std::string_view name) noexcept {
    char upper[kNameMax];
    upperName(upper, name);
    const uint32_t hash = hashOf(p->hashSeed, view(upper, lengthOf(name)));
    for (uint64_t at = hash;; ++at) {
        COLUMNSLOT& slot = names.slots[at & (names.size - 1)];
        if (slot.column == nullptr) {
            slot.hash = hash;
            return slot;
        }
        if (slot.hash == hash && charNormCompare(slot.column->name, slot.column->nameLen,
                                                 name.data(), lengthOf(name)) != 0) {
            return slot;
        }
    }
}

bool isTaken(const JMAP_PRIVATE* p, VARINFO* inl, const COLUMNNAMES& names,
             std::string_view name) noexcept {
    if (names.slots != nullptr) {
        return slotOf(p, names, name).column != nullptr;
    }
    for (const VARINFO& column : each(inl)) {
        if (charNormCompare(column.name, column.nameLen, name.data(), lengthOf(name)) != 0) {
            return true;
        }
    }
    return false;
}

void indexColumn(const JMAP_PRIVATE* p, const VARINFO& column, COLUMNNAMES& names) noexcept {
    if (column.nameLen > kNameMax) {
        return;  // an ordinal with a suffix: longer than any name that is looked up
    }
    COLUMNSLOT& slot = slotOf(p, names, nameOf(column));
    if (slot.column == nullptr) {
        slot.column = &column;
        names.count += 1;
    }
}

// Grows the set to `wanted` names.  False without memory: the set is as it was.
[[nodiscard]] bool grow(JMAP_PRIVATE* p, COLUMNNAMES& names, uint64_t wanted) noexcept {
    const COLUMNNAMES old = names;
    names.size = std::bit_ceil(3 * wanted);
    names.slots = poolNew<COLUMNSLOT>(p->cpool, static_cast<QVStrSize>(names.size));
    if (names.slots == nullptr) {
        names = old;
        return false;
    }
    for (uint64_t i = 0; i < old.size; ++i) {
        if (old.slots[i].column == nullptr) {
            continue;
        }
        uint64_t at = old.slots[i].hash;
        while (names.slots[at & (names.size - 1)].column != nullptr) {
            ++at;
        }
        names.slots[at & (names.size - 1)] = old.slots[i];
    }
    (void)poolFree(p->cpool, old.slots);  // on failure it is freed with the pool
    return true;
}

}  // namespace

QVStatus makeZULVariable(JMAP_PRIVATE* p, char* s, QVStrSize* insLen, VARINFO* inl,
                         const COLUMNNAMES& names) {
    const QVStrSize baseLen = std::min(*insLen, kNameMax);
    validateName(s, baseLen);
    *insLen = baseLen;
    if (!isTaken(p, inl, names, view(s, baseLen))) {
        return QV_OK;
    }
    // Names are never removed, so a number that is taken once need not be tried again.
    COLUMNSLOT* const base = names.slots != nullptr ? &slotOf(p, names, view(s, baseLen)) : nullptr;
    int32_t suffix = base != nullptr && base->nextSuffix != 0 ? base->nextSuffix : kFirstSuffix;
    do {
        char digits[kNumberMax];
        QVStrSize digitCount = 0;
        QV_TRY(formatNumber(p, U"%d", suffix, digits, &digitCount));
        const QVStrSize at = std::min(baseLen, kNameMax - digitCount);
        std::memcpy(s + at, digits, static_cast<std::size_t>(digitCount));
        *insLen = at + digitCount;
        ++suffix;
    } while (isTaken(p, inl, names, view(s, *insLen)));
    if (base != nullptr) {
        base->nextSuffix = suffix;
    }
    return QV_OK;
}

void indexLastColumn(JMAP_PRIVATE* p, DSINFO* ds, COLUMNNAMES& names) noexcept {
    if (ds->varcount < kListedColumns) {
        return;
    }
    const bool isNew = names.slots == nullptr;
    const uint64_t wanted = isNew ? ds->varcount : names.count + 1;
    if (2 * wanted > names.size && !grow(p, names, wanted)) {
        endColumnNames(p, names);
        return;
    }
    if (!isNew) {
        indexColumn(p, *ds->vtail, names);
        return;
    }
    for (const VARINFO& column : each(ds->vhead)) {
        indexColumn(p, column, names);
    }
}

void endColumnNames(JMAP_PRIVATE* p, COLUMNNAMES& names) noexcept {
    (void)poolFree(p->cpool, names.slots);  // on failure it is freed with the pool
    names = {};
}

}  // namespace jmap
