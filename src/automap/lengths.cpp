// Completes a user map from the automatic map of the same document.
//
// Tested by tests/automap/lengths_test.cpp
#include "lengths.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "path_parts.h"

#include <bit>

namespace jmap {
namespace {

constexpr uint64_t kMostColumns = uint64_t{1} << 31;  // references have 32 bits

// A column of the automatic map.  A reference to one is its position in the map plus 1; 0: none.
struct AUTOCOLUMN {
    const VARINFO* column;
    const DSINFO* ds;
    uint32_t hash;  // of its path
    uint32_t next;  // column of the same bucket, in map order
};

// Index of the columns of the automatic map by path.
struct AUTOINDEX {
    AUTOCOLUMN* columns;
    uint32_t* buckets;  // [mask + 1] by the low bits of the hash of a path: the first column
    uint32_t mask;
};

void noteTaken(JMAP_PRIVATE* p, const VARINFO& column, const DSINFO& autoDs) {
    if (p->debugUserMap) {
        const std::string_view name = nameOf(column);
        const std::string_view table = nameOf(autoDs);
        myLogNote(p, U"getAutomapLengths: variable [%.*hs] in dataset [%.*hs] length set to %lld",
                  noteLen(lengthOf(name)), name.data(), noteLen(lengthOf(table)), table.data(),
                  static_cast<long long>(column.length));
    }
}

void noteDifferent(JMAP_PRIVATE* p, const VARINFO& column, const DSINFO& ds, uint64_t autoLength) {
    if (p->debugUserMap) {
        const std::string_view name = nameOf(column);
        const std::string_view table = nameOf(ds);
        myLogNote(p,
                  U"getAutomapLengths: variable [%.*hs] in dataset [%.*hs] user length %lld, "
                  U"automap length %lld",
                  noteLen(lengthOf(name)), name.data(), noteLen(lengthOf(table)), table.data(),
                  static_cast<long long>(column.length), static_cast<long long>(autoLength));
    }
}

void noteInformat(JMAP_PRIVATE* p, const VARINFO& column, const DSINFO& ds) {
    if (p->debugUserMap) {
        const USERVARINFO& user = userPartOf(column);
        const std::string_view name = nameOf(column);
        const std::string_view table = nameOf(ds);
        myLogNote(p,
                  U" charInformatDefaultWidth data set [%.*hs] var [%.*hs] informat [%.*hs] len "
                  U"%lld",
                  noteLen(lengthOf(table)), table.data(), noteLen(lengthOf(name)), name.data(),
                  noteLen(user.informatLen), user.informat,
                  static_cast<long long>(user.informatLen));
    }
}

// Fills an empty index; false without memory.
[[nodiscard]] bool fillIndex(JMAP_PRIVATE* p, const MAP& map, AUTOINDEX& index) noexcept {
    uint64_t count = 0;
    for (const DSINFO& ds : each(map.dshead)) {
        count += ds.varcount;
    }
    if (count > kMostColumns) {
        return false;
    }
    const uint64_t buckets = std::bit_ceil(count + 1);
    index.columns = poolNew<AUTOCOLUMN>(p->cpool, static_cast<QVStrSize>(count));
    index.buckets = poolNew<uint32_t>(p->cpool, static_cast<QVStrSize>(buckets));
    index.mask = static_cast<uint32_t>(buckets - 1);
    if (index.columns == nullptr || index.buckets == nullptr) {
        return false;
    }
    AUTOCOLUMN* end = index.columns;
    for (const DSINFO& ds : each(map.dshead)) {
        for (const VARINFO& column : each(ds.vhead)) {
            const std::string_view path = pathOf(p, column);
            if (lengthOf(path) != column.pathLen) {
                return false;
            }
            *end++ = {&column, &ds, hashOf(p->hashSeed, path), 0};
        }
    }
    // From the last column to the first, so that every bucket is in map order.
    for (uint64_t rank = count; rank-- > 0;) {
        uint32_t& bucket = index.buckets[index.columns[rank].hash & index.mask];
        index.columns[rank].next = bucket;
        bucket = static_cast<uint32_t>(rank + 1);
    }
    return true;
}

// Sets the length of a user's column from an automatic column of the same path.
void settleLength(JMAP_PRIVATE* p, VARINFO& column, const DSINFO& ds, uint64_t autoLength,
                  const DSINFO& autoDs) noexcept {
    if (column.length == 0) {
        column.length = autoLength;
        column.lengthFromAutomap = true;
        noteTaken(p, column, autoDs);
    } else if (column.length != autoLength) {
        noteDifferent(p, column, ds, autoLength);
        if (column.length < autoLength) {
            column.truncation = true;
        }
    }
    column.user->currentLength = autoLength;
}

// Does so for each table that has the path, with its first column of that path.
void settleByIndex(JMAP_PRIVATE* p, VARINFO& column, const DSINFO& ds,
                   const AUTOINDEX& index) noexcept {
    const std::string_view path = view(column.path, column.pathLen);
    const uint32_t hash = hashOf(p->hashSeed, path);
    const DSINFO* settled = nullptr;
    for (uint32_t at = index.buckets[hash & index.mask]; at != 0;) {
        const AUTOCOLUMN& found = index.columns[at - 1];
        if (found.hash == hash && found.ds != settled && hasPath(*found.column, path)) {
            settleLength(p, column, ds, found.column->length, *found.ds);
            settled = found.ds;
        }
        at = found.next;
    }
}

// The same without an index, when there is no memory for one.  Slow, but without a length values
// would be cut.
void settleBySearch(JMAP_PRIVATE* p, VARINFO& column, const DSINFO& ds) noexcept {
    const std::string_view path = view(column.path, column.pathLen);
    for (const DSINFO& autoDs : each(p->automap->dshead)) {
        for (const VARINFO& found : each(autoDs.vhead)) {
            if (hasPath(found, path)) {
                settleLength(p, column, ds, found.length, autoDs);
                break;
            }
        }
    }
}

[[nodiscard]] INFORMATINFO* newEntry(QVPoolh pool, VARINFO& column) noexcept {
    auto* entry = poolNew<INFORMATINFO>(pool);
    if (entry != nullptr) {
        entry->variable = column.name;
        entry->variableLen = column.nameLen;
        entry->informat = column.user->informat;
        entry->informatLen = column.user->informatLen;
        entry->informatWidth = &column.user->informatWidth;
        entry->informatNoError = column.user->informatNoError ? 1 : 0;
        entry->length = &column.length;
        entry->lengthFromAutomap = column.lengthFromAutomap ? 1 : 0;
    }
    return entry;
}

}  // namespace

// Kept: when several automatic tables have the path, each of them is compared in turn.  The current
// length is then that of the last one.  A length taken from the first may be marked as cutting,
// because another one is longer.
void getAutomapLengths(JMAP_PRIVATE* p) {
    if (p->usermap == nullptr || p->automap == nullptr) {
        return;
    }
    AUTOINDEX index = {};
    const bool isIndexed = fillIndex(p, *p->automap, index);
    for (DSINFO& ds : each(p->usermap->dshead)) {
        for (VARINFO& column : each(ds.vhead)) {
            if (column.type != VAR_CHAR) {
                continue;
            }
            if (isIndexed) {
                settleByIndex(p, column, ds, index);
            } else {
                settleBySearch(p, column, ds);
            }
        }
    }
    (void)poolFree(p->cpool, index.columns);  // on failure they are freed with the pool
    (void)poolFree(p->cpool, index.buckets);
}

QVStatus charInformatDefaultWidths(JMAP_PRIVATE* p, MAP* m, QVPoolh pool, INFORMATINFO** ii) {
    INFORMATINFO** link = ii;
    for (DSINFO& ds : each(m->dshead)) {
        for (VARINFO& column : each(ds.vhead)) {
            if (column.type != VAR_CHAR || userPartOf(column).informatLen <= 0) {
                continue;
            }
            noteInformat(p, column, ds);
            if (link == nullptr) {
                continue;
            }
            INFORMATINFO* entry = newEntry(pool, column);
            if (entry == nullptr) {
                return QV_NOMEM;
            }
            *link = entry;
            link = &entry->next;
        }
    }
    return QV_OK;
}

}  // namespace jmap
