// The state of those who read the record stream.
#pragma once

#include "context.h"

struct COLUMNINDEX;       // src/reader/column_index.h
struct JMAPReadObserver;  // include/qvejmapx.h

// Loads the blocks of the record stream one after the other (src/reader/block_reader.h).
struct BLOCKREADER {
    JMAP_PRIVATE* p;      // the document
    QVZStream z;          // inflate state
    QVIOFileh rfp;        // the cache file, open while it is read; owned
    QVStatus rfpStatus;   // its first failure, which later blocks give too; QV_OK: none
    COMPPATHS* curr;      // block being read; null: start from the first
    char* pBuf;           // [kBlockBytes] room for its records
    const char* records;  // its records: in pBuf, or in the document if uncompressed there
    QVStrSize pBufi;      // read position in `records`
    QVStrSize pBufLen;    // valid bytes in `records`
};

// A column of an open table: a copy of the map's, with its path as a text.
struct ROWCOLUMN : VARINFO {
    uint64_t offset;        // in the row buffer
    uint64_t ordinalValue;  // running count
};

// The private state of an open table.  It lives in the read pool; `rp` is the name everywhere.
struct JMAP_READPRIVATE {
    JMAP_PRIVATE* p;  // the document
    QVPoolh rpool;    // owns all of this
    BLOCKREADER blocks;
    QVStrSize varCount;
    char dsname[32];
    QVStrSize dsnameLen;
    ROWCOLUMN* varinfo;  // [varCount]
    bool inVariables;    // the row has received a value
    bool atEOF;          // the next Read gives QV_EOF
    char* obsbuf;        // the row buffer, the caller's context points to the same
    QVStrSize obsbufLen;
    char* tablePath;  // null for a table without one
    QVStrSize tablePathLen;
    bool tablePathSeen;                // the table path occurred in the row
    bool obsbufCleared;                // the row buffer has been cleared once
    bool ordinalsOnly;                 // every column is an ordinal
    bool doAlldata;                    // this is the ALLDATA table
    COLUMNINDEX* index;                // columns by path
    const JMAPReadObserver* observer;  // the caller's; null: none
};

namespace jmap {

[[nodiscard]] inline JMAP_READPRIVATE* readContextOf(QVEJMAPReadContexth rctx) noexcept {
    return static_cast<JMAP_READPRIVATE*>(rctx->p);
}

}  // namespace jmap
