// Completing a user map from the automatic map of the same document.
//
// Tested by tests/automap/lengths_test.cpp
#include "lengths.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "path_parts.h"

#include <algorithm>
#include <span>

namespace jmap {
namespace {

// A column of the automatic map, to be found by its path.
struct AUTOCOLUMN {
    const char* path;
    QVStrSize pathLen;
    const DSINFO* ds;
    uint64_t length;
    QVStrSize rank;  // of the column in the map
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
        const std::string_view name = nameOf(column);
        const std::string_view table = nameOf(ds);
        myLogNote(p,
                  U" charInformatDefaultWidth data set [%.*hs] var [%.*hs] informat [%.*hs] len "
                  U"%lld",
                  noteLen(lengthOf(table)), table.data(), noteLen(lengthOf(name)), name.data(),
                  noteLen(column.informatLen), column.informat,
                  static_cast<long long>(column.informatLen));
    }
}

[[nodiscard]] std::string_view keyOf(const AUTOCOLUMN& column) noexcept {
    return view(column.path, column.pathLen);
}

// The columns of a map by path, those of one path in the order of their tables; of each table the
// first column of a path alone.  One piece of the pool; empty without memory.
[[nodiscard]] std::span<AUTOCOLUMN> newIndex(QVPoolh pool, const MAP& map) noexcept {
    QVStrSize count = 0;
    for (const DSINFO& ds : each(map.dshead)) {
        count += static_cast<QVStrSize>(ds.varcount);
    }
    auto* columns = poolNew<AUTOCOLUMN>(pool, count);
    if (columns == nullptr) {
        return {};
    }
    AUTOCOLUMN* end = columns;
    for (const DSINFO& ds : each(map.dshead)) {
        for (const VARINFO& column : each(ds.vhead)) {
            *end = {column.path, column.pathLen, &ds, column.length, end - columns};
            ++end;
        }
    }
    std::sort(columns, end, [](const AUTOCOLUMN& a, const AUTOCOLUMN& b) {
        const int order = keyOf(a).compare(keyOf(b));
        return order != 0 ? order < 0 : a.rank < b.rank;
    });
    end = std::unique(columns, end, [](const AUTOCOLUMN& a, const AUTOCOLUMN& b) {
        return a.ds == b.ds && keyOf(a) == keyOf(b);
    });
    return {columns, end};
}

// Settles the length of a user's column with that of an automatic one of the same path.
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
    column.currentLength = autoLength;
}

void settleByIndex(JMAP_PRIVATE* p, VARINFO& column, const DSINFO& ds,
                   std::span<AUTOCOLUMN> index) noexcept {
    const std::string_view path = pathOf(column);
    auto found = std::lower_bound(
        index.begin(), index.end(), path,
        [](const AUTOCOLUMN& a, std::string_view wanted) { return keyOf(a) < wanted; });
    for (; found != index.end() && keyOf(*found) == path; ++found) {
        settleLength(p, column, ds, found->length, *found->ds);
    }
}

// The same without an index: slow, but a length left out would cut values.
void settleBySearch(JMAP_PRIVATE* p, VARINFO& column, const DSINFO& ds) noexcept {
    const std::string_view path = pathOf(column);
    for (const DSINFO& autoDs : each(p->automap->dshead)) {
        for (const VARINFO& found : each(autoDs.vhead)) {
            if (pathOf(found) == path) {
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
        entry->informat = column.informat;
        entry->informatLen = column.informatLen;
        entry->informatWidth = &column.informatWidth;
        entry->informatNoError = column.informatNoError ? 1 : 0;
        entry->length = &column.length;
        entry->lengthFromAutomap = column.lengthFromAutomap ? 1 : 0;
    }
    return entry;
}

}  // namespace

// Kept: a path that several automatic tables have is settled with each of them in turn, so that the
// last one's length is the current length, and a length taken from the first may be marked as
// cutting by another.
void getAutomapLengths(JMAP_PRIVATE* p) {
    if (p->usermap == nullptr || p->automap == nullptr) {
        return;
    }
    const std::span<AUTOCOLUMN> index = newIndex(p->cpool, *p->automap);
    for (DSINFO& ds : each(p->usermap->dshead)) {
        for (VARINFO& column : each(ds.vhead)) {
            if (column.type != VAR_CHAR) {
                continue;
            }
            if (index.empty()) {
                settleBySearch(p, column, ds);
            } else {
                settleByIndex(p, column, ds, index);
            }
        }
    }
    (void)poolFree(p->cpool, index.data());  // otherwise it goes with the pool
}

QVStatus charInformatDefaultWidths(JMAP_PRIVATE* p, MAP* m, QVPoolh pool, INFORMATINFO** ii) {
    INFORMATINFO** link = ii;
    for (DSINFO& ds : each(m->dshead)) {
        for (VARINFO& column : each(ds.vhead)) {
            if (column.type != VAR_CHAR || column.informatLen <= 0) {
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
