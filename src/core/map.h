// A map: which tables a document has, which columns they have, and which paths fill the columns.
// Automatic and user maps have the same form.
//
// All records live in the document pool.  They are created zero-filled and never freed one by one.
// Names and paths are counted and not terminated.  Paths are in internal form, separator 0x02.
#pragma once

#include "qvehost.h"

#include <cstdint>

enum MAPTYPE : int32_t { USER_MAP = 0, AUTO_MAP = 1 };

// Kind of a column.
enum VARTYPE : int32_t {
    VAR_ORDINAL = 0,      // counter of an enclosing object or array
    VAR_DOUBLE = 1,       // 8-byte floating point
    VAR_CHAR = 2,         // fixed length
    VAR_FAKEVARIABLE = 3  // placeholder, no column of an automatic map
};

struct PATHNODE;  // src/core/records.h

// What only a user's map says of a column.
struct USERVARINFO {
    char* label;  // null: none
    QVStrSize labelLen;
    char format[32];
    QVStrSize formatLen;
    uint64_t formatWidth;  // 0: none given
    uint64_t formatDec;
    char informat[32];
    QVStrSize informatLen;
    uint64_t informatWidth;  // 0: none given
    uint64_t informatDec;
    bool informatNoError;    // bad values are not to be reported
    QVExtensionh infh;       // reserved, null: informats belong to the caller
    uint64_t currentLength;  // length in the automatic map
};

// A column.  Its path is that of its values; an ordinal has the path that it counts.  Nearly every
// path of a document has a column, so keep this small.  An automatic column does not store its
// path: it is the first `pathLen` bytes of the path of `node`.
struct VARINFO {
    VARINFO* next;
    char* name;
    QVStrSize nameLen;
    union {
        const PATHNODE* node;  // `inTree`: the automatic map's
        char* path;            // any other; null: the column has none (ALLDATA)
    };
    QVStrSize pathLen;
    uint64_t length;    // bytes; VAR_CHAR: longest value, not yet capped
    USERVARINFO* user;  // user map; else null
    VARTYPE type;
    uint8_t kinds;  // automatic map: the bit 1 << VALTYPE for each kind of its values, or 0
    bool inTree : 1;
    bool lengthFromAutomap : 1;  // user map: `length` came from the automatic map
    bool retain : 1;
    bool noretain : 1;
    bool truncation : 1;  // user map: `length` cuts the longest value
};
static_assert(sizeof(VARINFO) <= 64);

struct DSINFO {
    DSINFO* next;
    char name[40];
    QVStrSize nameLen;
    VARINFO* vhead;
    VARINFO* vtail;
    uint64_t varcount;      // columns in the list
    const PATHNODE* start;  // automatic map: the first path of its group; else null
    // Path of the object that makes a row, stored as that of a column.  Both null: none.
    const PATHNODE* tableNode;
    char* tablePath;
    QVStrSize tablePathLen;
};

// One table in an index.  A reference to a table is its position plus 1; 0: none.
struct MAPSLOT {
    DSINFO* ds;
    uint32_t hash;  // of its name in upper case
    uint32_t next;  // table of the same bucket, in map order
};

// Index of the tables of a map by position and by name.  Zero-filled it is empty.
struct MAPINDEX {
    MAPSLOT* slots;     // [size] by position
    uint32_t* buckets;  // [size] by the low bits of the hash of a name: the first such table
    uint64_t size;      // a power of two
    uint64_t count;     // tables in it: the first ones of the map
    uint64_t linked;    // of them, those in a bucket; access by position needs no buckets
};

struct MAP {
    MAPTYPE mtype;
    DSINFO* dshead;
    DSINFO* dstail;
    MAPINDEX index;  // made when it is needed, see map_index.h
};

// One candidate table name of the automatic map.
struct DSNAMELIST {
    DSNAMELIST* next;
    char name[32];   // as first formed
    char uname[32];  // upper-cased: the key
    QVStrSize nameLen;
    int32_t count;  // tables that asked for this name
};
