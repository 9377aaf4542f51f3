/* What tools need beyond the operation table: tables and columns by position, the records of the
 * stream, the statistics of paths.
 *
 * These routines work on the same handles as qvejmap.h and follow its rules.  They are part of the
 * static engine library (link jmap_engine and register the entry point with
 * qvPortableRegister(host, "qvejmap", qvejmap)); the loadable module does not export them.
 *
 * Everything handed out points into the document and lives until Term, except a record's texts,
 * which live until the next call on its cursor.  Paths use the byte 0x02 as separator.
 *
 * Tested by tests/frame/extras_test.cpp
 */
#ifndef QVEJMAPX_H
#define QVEJMAPX_H

#include "qvejmap.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Tables and columns of a map ----------------------------------------------------------- */

typedef struct DSINFO* JMAPTableh;   /* opaque */
typedef struct VARINFO* JMAPColumnh; /* opaque */

enum { JMAP_ORDINAL = 0, JMAP_NUMERIC = 1, JMAP_CHARACTER = 2 };

typedef struct JMAPTableInfo {
    const char* name;
    QVStrSize nameLen;
    const char* tablePath; /* null when the table has none */
    QVStrSize tablePathLen;
    uint64_t columnCount;
} JMAPTableInfo;

typedef struct JMAPColumnInfo {
    const char* name;
    QVStrSize nameLen;
    const char* path; /* null when the column has none (ALLDATA) */
    QVStrSize pathLen;
    int32_t type;     /* JMAP_ORDINAL, JMAP_NUMERIC, JMAP_CHARACTER */
    uint64_t length;  /* the map's: longest value of a character column; not yet capped */
} JMAPColumnInfo;

/* Moves `*table` to the next table of the map, from null to the first.  QV_EOF after the last (or
 * for a null map), with `*table` as it was. */
QVStatus jmapNextTable(QVMemPtr map, JMAPTableh* table);

/* The ALLDATA table, which is in no map.  JMAP_NOTABLE before the last buffer. */
QVStatus jmapAlldataTable(QVEJMAPJsonContexth inh, JMAPTableh* table);

void jmapTableInfo(JMAPTableh table, JMAPTableInfo* info);

/* As jmapNextTable, for the columns of a table. */
QVStatus jmapNextColumn(JMAPTableh table, JMAPColumnh* column);

void jmapColumnInfo(JMAPColumnh column, JMAPColumnInfo* info);

/* ReadInit for a table that is already found, whatever its name.  QV_NOMEM. */
QVStatus jmapReadTable(QVEJMAPJsonContexth inh, JMAPTableh table, QVEJMAPReadInitParms* rip,
                       QVEJMAPReadContexth* inrctx);

/* ---- Records ------------------------------------------------------------------------------- */

typedef struct JMAPRecordCursor* JMAPRecordCursorh; /* opaque */

enum {
    JMAP_KIND_NOVAL = 1,
    JMAP_KIND_NUMBER = 2,
    JMAP_KIND_STRING = 3,
    JMAP_KIND_NULL = 4,
    JMAP_KIND_BOOLEAN = 5,
    JMAP_KIND_FAKE_VARIABLE = 6
};

typedef struct JMAPRecord {
    int32_t kind;         /* JMAP_KIND_... */
    const char* path;
    QVStrSize pathLen;
    const char* value;    /* null for JMAP_KIND_NOVAL */
    QVStrSize valueLen;
    const char* bytes;    /* the whole record as stored (docs/FORMATS.md) */
    QVStrSize bytesLen;
} JMAPRecord;

/* Opens a cursor before the first record of a document whose last buffer has been passed.  QV_NOMEM.
 * Any number may be open; they follow the rule of Read: one call at a time for each document. */
QVStatus jmapRecordsOpen(QVEJMAPJsonContexth inh, JMAPRecordCursorh* cursor);

/* The next record; QV_EOF after the last; else a status of loading a block, whose records are then
 * left out by a further call. */
QVStatus jmapRecordsNext(JMAPRecordCursorh cursor, JMAPRecord* record);

QVStatus jmapRecordsClose(JMAPRecordCursorh cursor);

/* ---- Statistics of paths ------------------------------------------------------------------- */

typedef struct PATHINFO* JMAPPathh; /* opaque */

typedef struct JMAPPathInfo {
    const char* path;
    QVStrSize pathLen;
    int64_t count;         /* records with this path */
    int32_t type;          /* JMAP_NUMERIC, JMAP_CHARACTER, or 3 for an empty container */
    QVStrSize maxValueLen; /* longest value, at least 1 */
} JMAPPathInfo;

/* As jmapNextTable, over every distinct path that had a value: groups of one parent together, in
 * order of first appearance. */
QVStatus jmapNextPath(QVEJMAPJsonContexth inh, JMAPPathh* path);

void jmapPathInfo(JMAPPathh path, JMAPPathInfo* info);

/* ---- Totals -------------------------------------------------------------------------------- */

typedef struct JMAPTotals {
    uint64_t records;
    uint64_t recordBytes;  /* uncompressed */
    uint64_t storedBytes;  /* as kept: compressed when asked for */
    uint64_t blocks;
    uint64_t blocksOnDisk;
    uint64_t unstoredBytes; /* of the last block when the end of the document could not store it; 0 */
} JMAPTotals;
void jmapTotals(QVEJMAPJsonContexth inh, JMAPTotals* totals);

/* ---- Words --------------------------------------------------------------------------------- */

/* "NOVAL", "NUMBER", "STRING", "NULL", "BOOLEAN", "FAKE_VARIABLE", else "UNKNOWN?".  Static. */
const char* jmapKindName(int32_t kind);

#ifdef __cplusplus
}
#endif

#endif
