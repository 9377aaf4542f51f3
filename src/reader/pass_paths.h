// What each path means to the tables of a pass.
//
// A record is looked up once for all tables.  Records repeat, so the path that came next the last
// time is tried first.  When it is another one (a member is missing or new), a hash table finds it.
// Ordinals are counted by path, not by table, since all tables read the same records.
//
// Tested by tests/reader/table_pass_test.cpp
#pragma once

#include "core/context.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "pass_rows.h"

#include <cstdint>
#include <string_view>

// A column that takes the values of a path.
struct PASSUSE {
    PASSUSE* next;  // the next one of the path: tables in order, then columns
    PASSTABLE* table;
    uint32_t cell;  // its place in the row
    bool number;    // the column is numeric and has no informat
    bool below;     // its path is the table path or lies below; false for the text of an ordinal
    PASSPATH* path;
    uint64_t overwritten;       // values that a later one of the same row replaced
    uint64_t firstOverwritten;  // the first of them, counted from 1 among the values of the path
    uint64_t strayed;           // values in complete rows that came when the table was not open
};

// A path that means something to a table.
struct PASSPATH {
    const char* path;    // in `texts`
    PASSPATH* follower;  // the path that came next the last time
    PASSPATH* other;     // the follower before that one; it comes again at the end of an array
    PASSUSE* uses;       // columns that take its values
    PASSTABLE* tables;   // tables whose table path it is, through `samePath`
    union {
        PASSUSE* usesTail;  // while tables are added
        PASSPATH* above;    // on the stack of seen table paths: the one below it
    };
    union {
        PASSTABLE* tablesTail;  // while tables are added
        const PATHNODE* node;   // of a walk: that has this path, once it has come
    };
    uint64_t count;   // markers so far
    uint64_t values;  // so far
    int32_t pathLen;
    bool numbers;  // one of its columns is numeric and has no informat
};

struct PASSPATHS {
    JMAP_PRIVATE* p;    // the document
    QVTrackerh byPath;  // path -> PASSPATH; owned
    ARENA texts;        // of paths; that of a path may go on as that of the next one
    PASSPATH* newest;   // whose text is the last one there; null: none
    ARENA records;      // entries, uses, and what a table has
    uint64_t lengths;   // bit (length mod 64) of each path
    PASSPATH* last;     // found last
    PASSPATH start;     // before the first
};

namespace jmap {

// Begins an empty set.  QV_NOMEM.
[[nodiscard]] QVStatus openPaths(PASSPATHS* paths, JMAP_PRIVATE* p);

// Adds a table and its columns.  Its cells have been allocated.
//   alldata, retain  as of an open table
// Returns QV_OK, QV_NOMEM or a status of the guard.
[[nodiscard]] QVStatus addTable(PASSPATHS* paths, QVPoolh pool, const DSINFO& ds, bool retain,
                                PASSTABLE* table);

// Whether a path is another one or lies below it, as every path lies below an empty one.
[[nodiscard]] bool liesWithin(const PASSPATH& path, std::string_view above, char sep) noexcept;

// Finds a path by its text.  Null: it means nothing to any table.
[[nodiscard]] PASSPATH* lookUpPath(const PASSPATHS& paths, std::string_view path);

// Finds the path when it is not the expected one.  Null: it means nothing to any table.
[[nodiscard]] PASSPATH* searchPath(PASSPATHS* paths, std::string_view path);

// Finds what the path of a record means.  Null: nothing to any table.
[[nodiscard]] inline PASSPATH* findPath(PASSPATHS* paths, std::string_view path) {
    PASSPATH* const guess = paths->last->follower;
    if (guess != nullptr && equalShort(view(guess->path, guess->pathLen), path)) {
        paths->last = guess;
        return guess;
    }
    return searchPath(paths, path);
}

}  // namespace jmap
