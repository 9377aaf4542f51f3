// What each path means to the tables of a pass.
//
// Tested by tests/reader/table_pass_test.cpp
#include "pass_paths.h"

#include "automap/path_parts.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/pool.h"
#include "row_boundary.h"

#include <utility>

namespace jmap {
namespace {

constexpr uint64_t lengthBit(std::string_view path) noexcept {
    return uint64_t{1} << (path.size() % 64);
}

// The entry of a path.  A new path gets an entry, with a copy of its text.  Null without memory.
PASSPATH* enterPath(PASSPATHS* paths, QVPoolh pool, std::string_view path) {
    if (path.data() == nullptr) {
        return nullptr;  // there was no memory for its text
    }
    if (PASSPATH* known = findPath(paths, path); known != nullptr) {
        return known;
    }
    auto* entry = poolNew<PASSPATH>(pool);
    char* copy = arenaBytes(&paths->texts, pool, lengthOf(path));
    if (entry == nullptr || copy == nullptr) {
        return nullptr;
    }
    copyShort(copy, path);
    if (paths->byPath->insert(paths->byPath, copy, lengthOf(path), entry) != QV_OK) {
        return nullptr;
    }
    entry->path = copy;
    entry->pathLen = lengthOf(path);
    paths->lengths |= lengthBit(path);
    paths->last->follower = entry;  // columns mostly come in the order of the map
    paths->last = entry;
    return entry;
}

QVStatus addOrdinal(PASSPATHS* paths, QVPoolh pool, const VARINFO& column, uint32_t i,
                    PASSTABLE* table) {
    PASSPATH* counted = enterPath(paths, pool, pathOf(paths->p, column));
    if (counted == nullptr) {
        return QV_NOMEM;
    }
    table->ordinals[table->ordinalCount++] = {i, counted};
    return QV_OK;
}

QVStatus addUse(PASSPATHS* paths, QVPoolh pool, const VARINFO& column, uint32_t i, uint32_t cell,
                PASSTABLE* table) {
    PASSPATH* entry = enterPath(paths, pool, pathOf(paths->p, column));
    auto* use = poolNew<PASSUSE>(pool);
    if (entry == nullptr || use == nullptr) {
        return QV_NOMEM;
    }
    use->table = table;
    use->cell = cell;
    use->number = column.type == VAR_DOUBLE && userPartOf(column).informatLen == 0;
    use->path = entry;
    table->uses[i] = use;
    entry->numbers = entry->numbers || use->number;
    append(entry->uses, entry->usesTail, use);
    return QV_OK;
}

// Whether the column is an ordinal that also keeps the text of its path.
bool hasText(const VARINFO& column) noexcept {
    return column.type == VAR_ORDINAL && userPartOf(column).informatLen != 0;
}

struct SIZES {
    uint32_t ordinals;
    uint32_t cells;
};

SIZES sizesOf(const DSINFO& ds) noexcept {
    SIZES sizes = {0, static_cast<uint32_t>(ds.varcount)};
    for (const VARINFO& column : each(ds.vhead)) {
        sizes.ordinals += column.type == VAR_ORDINAL ? 1 : 0;
        sizes.cells += hasText(column) ? 1 : 0;
    }
    return sizes;
}

// Makes the cell take values or counts of the column's path.  A column with an informat takes
// values, whatever its type is.
QVStatus addColumn(PASSPATHS* paths, QVPoolh pool, const VARINFO& column, uint32_t i, uint32_t cell,
                   PASSTABLE* table) {
    if (column.type == VAR_DOUBLE || column.type == VAR_CHAR) {
        table->ordinalsOnly = false;
    }
    if (column.pathLen == 0) {
        return QV_OK;  // no record's path is empty
    }
    if (column.type == VAR_ORDINAL) {
        QV_TRY(addOrdinal(paths, pool, column, i, table));
    }
    if (column.type == VAR_DOUBLE || column.type == VAR_CHAR ||
        userPartOf(column).informatLen != 0) {
        QV_TRY(addUse(paths, pool, column, i, cell, table));
    }
    return QV_OK;
}

//   tablePath  gets the table's path
QVStatus addTablePath(PASSPATHS* paths, QVPoolh pool, const DSINFO& ds, PASSTABLE* table,
                      std::string_view* tablePath) {
    if (ds.tablePathLen == 0) {
        return QV_OK;  // it is never seen: no rows
    }
    PASSPATH* entry = enterPath(paths, pool, tablePathOf(paths->p, ds));
    if (entry == nullptr) {
        return QV_NOMEM;
    }
    *tablePath = view(entry->path, entry->pathLen);
    if (entry->tables == nullptr) {
        entry->tables = table;
    } else {
        entry->tablesTail->samePath = table;
    }
    entry->tablesTail = table;
    return QV_OK;
}

}  // namespace

QVStatus openPaths(PASSPATHS* paths, JMAP_PRIVATE* p) {
    constexpr std::u32string_view kName = U"qvejmap pass tracker";
    QVHndlp host = qvGlobalHandle();
    paths->p = p;
    paths->last = &paths->start;
    paths->byPath = host->createTracker(host, QV_TRACKER_HASH, 1, kName.data(),
                                        static_cast<QVStrSize>(kName.size()));
    return paths->byPath == nullptr ? QV_NOMEM : QV_OK;
}

QVStatus addTable(PASSPATHS* paths, QVPoolh pool, const DSINFO& ds, bool retain, PASSTABLE* table) {
    const SIZES sizes = sizesOf(ds);
    auto* retained = poolNew<bool>(pool, sizes.cells);
    table->cells = poolNew<JMAPPassCell>(pool, sizes.cells);
    table->set = poolNew<uint32_t>(pool, sizes.cells);
    table->uses = poolNew<PASSUSE*>(pool, static_cast<QVStrSize>(ds.varcount));
    table->ordinals = poolNew<PASSORDINAL>(pool, sizes.ordinals);
    if (retained == nullptr || table->cells == nullptr || table->set == nullptr ||
        table->uses == nullptr || table->ordinals == nullptr) {
        return QV_NOMEM;
    }
    table->retained = retained;
    table->columnCount = static_cast<uint32_t>(ds.varcount);
    table->cellCount = sizes.cells;
    table->ordinalsOnly = true;
    std::string_view tablePath;
    QV_TRY(addTablePath(paths, pool, ds, table, &tablePath));
    uint32_t i = 0;
    uint32_t text = table->columnCount;
    for (const VARINFO& column : each(ds.vhead)) {
        if (i % kColumnsBetween == kColumnsBetween - 1) {  // one table can hold them all
            QV_TRY(askGuardOfMemory(paths->p, 0));
        }
        const uint32_t cell = hasText(column) ? text++ : i;
        const bool keeps = retain || column.retain || column.type == VAR_ORDINAL;
        retained[cell] = keeps && !column.noretain;
        QV_TRY(addColumn(paths, pool, column, i, cell, table));
        if (PASSUSE* use = table->uses[i]; use != nullptr) {
            use->below = cell == i && liesWithin(*use->path, tablePath, paths->p->sep);
        }
        ++i;
    }
    return QV_OK;
}

bool liesWithin(const PASSPATH& path, std::string_view above, char sep) noexcept {
    return !endsRow(rowBoundary(view(path.path, path.pathLen), above, sep, true, false));
}

PASSPATH* lookUpPath(const PASSPATHS& paths, std::string_view path) {
    if ((paths.lengths & lengthBit(path)) == 0) {
        return nullptr;
    }
    return static_cast<PASSPATH*>(paths.byPath->find(paths.byPath, path.data(), lengthOf(path)));
}

PASSPATH* searchPath(PASSPATHS* paths, std::string_view path) {
    if ((paths->lengths & lengthBit(path)) == 0) {
        return nullptr;
    }
    PASSPATH* const last = paths->last;
    PASSPATH* found = last->other;
    if (found == nullptr || !equalShort(view(found->path, found->pathLen), path)) {
        found = lookUpPath(*paths, path);
    }
    if (found != nullptr) {
        last->other = std::exchange(last->follower, found);
        paths->last = found;
    }
    return found;
}

}  // namespace jmap
