// What each path means to the tables of a pass.
//
// Tested by tests/reader/table_pass_test.cpp
#include "pass_paths.h"

#include "automap/path_parts.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/pool.h"
#include "row_boundary.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jmap {
namespace {

constexpr uint64_t lengthBit(std::string_view path) noexcept {
    return uint64_t{1} << (path.size() % 64);
}

// A zero-filled record, or several.  Null without memory.
template <class T>
T* newRecords(PASSPATHS* paths, QVPoolh pool, QVStrSize count = 1) {
    const QVStrSize size = std::max<QVStrSize>(count, 1) * static_cast<QVStrSize>(sizeof(T));
    char* const mem = arenaBytes(&paths->records, pool, size);
    if (mem != nullptr) {
        std::memset(mem, 0, static_cast<std::size_t>(size));
    }
    return reinterpret_cast<T*>(mem);
}

constexpr QVStrSize inArena(QVStrSize size) noexcept {
    return (size + 7) / 8 * 8;
}

// A copy of a path's text.  A table comes after the object that it is in, and its columns after
// the table, so that many texts only go on where the newest one ends: the two share it.
char* newText(PASSPATHS* paths, QVPoolh pool, std::string_view path) {
    ARENA& texts = paths->texts;
    if (paths->newest != nullptr) {
        const std::string_view begin = view(paths->newest->path, paths->newest->pathLen);
        const QVStrSize more = inArena(lengthOf(path)) - inArena(lengthOf(begin));
        if (firstOf(path, begin.size()) == begin &&
            begin.data() + inArena(lengthOf(begin)) == texts.at && more <= texts.left) {
            texts.at += more;
            texts.left -= more;
            path.remove_prefix(begin.size());
            char* const text = const_cast<char*>(begin.data());  // it is in `texts`
            std::copy_n(path.data(), path.size(), text + begin.size());
            return text;
        }
    }
    char* const text = arenaBytes(&texts, pool, lengthOf(path));
    if (text != nullptr) {
        copyShort(text, path);
    }
    return text;
}

// The entry of a path.  A new path gets an entry, with a copy of its text.  Null without memory.
PASSPATH* enterPath(PASSPATHS* paths, QVPoolh pool, std::string_view path) {
    if (path.data() == nullptr) {
        return nullptr;  // there was no memory for its text
    }
    if (PASSPATH* known = findPath(paths, path); known != nullptr) {
        return known;
    }
    auto* entry = newRecords<PASSPATH>(paths, pool);
    char* copy = newText(paths, pool, path);
    if (entry == nullptr || copy == nullptr) {
        return nullptr;
    }
    if (paths->byPath->insert(paths->byPath, copy, lengthOf(path), entry) != QV_OK) {
        return nullptr;
    }
    entry->path = copy;
    entry->pathLen = static_cast<int32_t>(path.size());
    paths->newest = entry;
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
    auto* use = newRecords<PASSUSE>(paths, pool);
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
    auto* retained = newRecords<bool>(paths, pool, sizes.cells);
    table->cells = newRecords<JMAPPassCell>(paths, pool, sizes.cells);
    table->set = newRecords<uint32_t>(paths, pool, sizes.cells);
    table->uses = newRecords<PASSUSE*>(paths, pool, static_cast<QVStrSize>(ds.varcount));
    table->ordinals = newRecords<PASSORDINAL>(paths, pool, sizes.ordinals);
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
