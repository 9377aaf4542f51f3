/* What tools need beyond the operation table: tables and columns by position, the records of the
 * stream, the rows of many tables in one walk, the statistics of paths.
 *
 * These routines work on the same handles as qvejmap.h and follow its rules.  They are part of the
 * static engine library (link jmap_engine and register the entry point with
 * qvPortableRegister(host, "qvejmap", qvejmap)); the loadable module does not export them.
 *
 * Everything handed out points into the document and lives until Term, except a record's texts,
 * which live until the next call on its cursor, and the items of a pass.  Paths use the byte 0x02 as
 * separator.
 *
 * WHAT MAY CHANGE
 *   The operation table of qvejmap.h stays as it is.  This header grows with the tools: a new
 *   release may change its records, constants and routines, and QVEJMAPX_VERSION rises when it does.
 *   Routines that are only added do not change it.  A program is compiled and linked with one
 *   release; it compares the macro with jmapVersion() before the first call.
 *
 * Tested by tests/frame/qvejmapx_test.cpp and tests/frame/equality_test.cpp
 */
#ifndef QVEJMAPX_H
#define QVEJMAPX_H

#include "qvejmap.h"

#ifdef __cplusplus
extern "C" {
#endif

#define QVEJMAPX_VERSION 1

/* QVEJMAPX_VERSION of the engine that is linked. */
int32_t jmapVersion(void);

/* ---- Tables and columns of a map ----------------------------------------------------------- */

typedef struct DSINFO* JMAPTableh;   /* opaque */
typedef struct VARINFO* JMAPColumnh; /* opaque */

enum { JMAP_ORDINAL = 0, JMAP_NUMERIC = 1, JMAP_CHARACTER = 2 };

typedef struct JMAPTableInfo {
    const char* name;
    QVStrSize nameLen;
    QVStrSize tablePathLen; /* 0 when the table has none; see jmapTablePath */
    uint64_t columnCount;
} JMAPTableInfo;

/* Name, width and decimals of a format or informat; a length of 0: none. */
typedef struct JMAPFormat {
    const char* name;
    QVStrSize nameLen;
    uint64_t width; /* 0: none given, as `decimals` */
    uint64_t decimals;
} JMAPFormat;

/* What comes after `kinds` is of user maps only. */
typedef struct JMAPColumnInfo {
    const char* name; /* null when a user map gives none */
    QVStrSize nameLen;
    QVStrSize pathLen; /* 0 when the column has none (ALLDATA); see jmapColumnPath */
    int32_t type;     /* JMAP_ORDINAL, JMAP_NUMERIC, JMAP_CHARACTER */
    uint64_t length;  /* the map's: longest value of a character column; not yet capped */
    uint32_t kinds;   /* automatic map: the bit 1 << JMAP_KIND_... for each kind that the values of
                         the column are of; 0: not known */
    const char* label;
    QVStrSize labelLen; /* 0: none */
    JMAPFormat format;
    JMAPFormat informat;
    QVBoolean informatNoError; /* bad values are not to be reported */
    QVBoolean retain;
    QVBoolean noretain;
    /* Of a character column, as settled by GetUserMap. */
    QVBoolean lengthFromAutomap; /* `length` was not given */
    QVBoolean truncation;        /* `length` cuts the longest value */
    uint64_t currentLength;      /* longest value of the document; 0: it has no such path */
} JMAPColumnInfo;

/* Moves `*table` to the next table of the map, from null to the first.  QV_EOF after the last (or
 * for a null map), with `*table` as it was. */
QVStatus jmapNextTable(QVMemPtr map, JMAPTableh* table);

/* The ALLDATA table, which is in no map.  JMAP_NOTABLE before the last buffer. */
QVStatus jmapAlldataTable(QVEJMAPJsonContexth inh, JMAPTableh* table);

void jmapTableInfo(JMAPTableh table, JMAPTableInfo* info);

/* Writes the path of a table, of a column: as many bytes as the info says.  The engine does not keep
 * such texts but puts them together.  On any thread. */
void jmapTablePath(JMAPTableh table, char* path);
void jmapColumnPath(JMAPColumnh column, char* path);

/* As jmapNextTable, for the columns of a table. */
QVStatus jmapNextColumn(JMAPTableh table, JMAPColumnh* column);

void jmapColumnInfo(JMAPColumnh column, JMAPColumnInfo* info);

/* ReadInit for a table that is already found, whatever its name.  QV_NOMEM. */
QVStatus jmapReadTable(QVEJMAPJsonContexth inh, JMAPTableh table, QVEJMAPReadInitParms* rip,
                       QVEJMAPReadContexth* inrctx);

/* What Read does not put into the row buffer.  The routines are called from within Read and must not
 * throw; texts live until they return. */
typedef struct JMAPReadObserver {
    void* arg;
    /* `column` (its index) is NUMERIC, has no informat, and got this text, which is no number.  The
     * row buffer holds 0 for it by now; the routine may write something else there. */
    void (*notNumber)(void* arg, QVStrSize column, const char* text, QVStrSize textLen);
    /* `column` has an informat, and its `rawdata` is now the text of a value of this JMAP_KIND_...;
     * with QV_NOMEM the text could not be kept. */
    void (*raw)(void* arg, QVStrSize column, int32_t kind, QVStatus status);
} JMAPReadObserver;

/* Follows the reads of an open table.  `observer` must live until ReadTerm. */
void jmapObserve(QVEJMAPReadContexth rctx, const JMAPReadObserver* observer);

/* ---- Text of a document -------------------------------------------------------------------- */

/* The parser of a document, so that it can be told rules for the text before the first buffer; null
 * when it could not be made. */
struct JSNParser* jmapParser(QVEJMAPJsonContexth inh);

/* Ends what a document keeps open when its last buffer failed or never came: the cache file and hash
 * tables, which Term leaves to the host.  Only Term may follow. */
void jmapEndInput(QVEJMAPJsonContexth inh);

/* ---- Limits of a scan ---------------------------------------------------------------------- */

/* What a document has come to so far. */
typedef struct JMAPGrowth {
    uint64_t paths;        /* distinct ones, also of objects and arrays */
    uint64_t recordBytes;  /* of closed blocks, uncompressed */
    uint64_t spilledBytes; /* in the cache file */
    uint64_t tables;       /* of the automatic map, which is made after the last record */
} JMAPGrowth;

/* Is asked with each block of records that is closed and before each table of the automatic map is
 * made.  What it answers other than QV_OK ends the scan: JsonInput then fails.  It must not throw. */
typedef struct JMAPGuard {
    void* arg;
    QVStatus (*check)(void* arg, const JMAPGrowth* growth);
} JMAPGuard;

/* Before the first buffer; `guard` must live until Term. */
void jmapGuard(QVEJMAPJsonContexth inh, const JMAPGuard* guard);

/* The path below which more than half of all paths lie, the longest one: how many, and, when `path`
 * is not null, its text.  Returns its length. */
QVStrSize jmapMostPaths(QVEJMAPJsonContexth inh, uint64_t* count, char* path);

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
    int32_t labelCount;   /* names in the path, the root apart */
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

/* The next record; QV_EOF after the last.  Else the cursor is over, and further calls give the same:
 * a status of loading a block. */
QVStatus jmapRecordsNext(JMAPRecordCursorh cursor, JMAPRecord* record);

QVStatus jmapRecordsClose(JMAPRecordCursorh cursor);

/* ---- Rows of many tables in one walk ------------------------------------------------------- */

typedef struct JMAPPass* JMAPPassh; /* opaque */

/* What a cell holds: nothing, a count, or, by its JMAP_KIND_..., a value. */
enum {
    JMAP_CELL_MISSING = 0,
    JMAP_CELL_COUNT = 7, /* of an ordinal; of ALLDATA: the number of labels, and 1 with a value */
    JMAP_CELL_CUT = 8    /* a STRING of which the records keep only the beginning */
};

typedef struct JMAPPassCell {
    int32_t kind;     /* JMAP_CELL_... or JMAP_KIND_...; a text of ALLDATA is a STRING, or cut */
    QVBoolean fresh;  /* set for this row, not kept from an earlier one */
    QVBoolean strayed; /* it came before the row began: see JMAPPassColumn */
    const char* text; /* of a value: as recorded, neither padded nor cut nor converted */
    union {
        QVStrSize textLen;
        uint64_t count;
    };
} JMAPPassCell;

enum {
    JMAP_PASS_ROW = 1,       /* a row is complete */
    JMAP_PASS_NOT_NUMBER = 2 /* a NUMERIC column without informat got a text that is no number */
};

typedef struct JMAPPassItem {
    int32_t kind;              /* JMAP_PASS_... */
    QVStrSize table;           /* index in the list of jmapPassOpen */
    const JMAPPassCell* cells; /* one for each column; of a JMAP_PASS_NOT_NUMBER: so far */
    QVStrSize cellCount;
    /* After these, one for each ORDINAL column with an informat, in order: the text that Read keeps
     * as its `rawdata`.  The column's own cell has the count. */
    QVStrSize textCount;
    QVStrSize column;          /* of a JMAP_PASS_NOT_NUMBER, as the rest; its cell has the text too */
    const char* text;
    QVStrSize textLen;
} JMAPPassItem;

/* Opens a pass before the first record of a document whose last buffer has been passed, for tables
 * of its maps and perhaps ALLDATA.  `flags` are those of QVEJMAPReadInitParms.  QV_NOMEM.
 * Each table gives the rows that Read gives, in the same order.  Needs memory for the columns of all
 * the tables and for the rows that are being made, and one file at the most. */
QVStatus jmapPassOpen(QVEJMAPJsonContexth inh, const JMAPTableh* tables, QVStrSize tableCount,
                      uint64_t flags, JMAPPassh* pass);

/* The next item; it lives until the next call.  QV_EOF after the last.  Else the pass is over, and
 * further calls give the same: QV_NOMEM, a status of loading a block. */
QVStatus jmapPassNext(JMAPPassh pass, JMAPPassItem* item);

QVStatus jmapPassClose(JMAPPassh pass);

/* What has come for a column so far; all 0: nothing takes values for it. */
typedef struct JMAPPassColumn {
    uint64_t values;           /* of its path */
    uint64_t overwritten;      /* of them replaced by a later one in the same row */
    uint64_t firstOverwritten; /* its number, from 1, among the values of the path */
    /* Of them in a row that began after them, as an array that comes after other elements need not
     * begin one: the row may belong to another parent. */
    uint64_t strayed;
    QVBoolean below;           /* the path lies below the table's; else values never stray */
} JMAPPassColumn;
void jmapPassColumn(JMAPPassh pass, QVStrSize table, QVStrSize column, JMAPPassColumn* info);

/* After QV_EOF: the cells of the row that a table had begun and never completed; those that are
 * fresh are in no row. */
void jmapPassLeft(JMAPPassh pass, QVStrSize table, const JMAPPassCell** cells, QVStrSize* cellCount);

/* Whether the texts that cells (not the cells) point to live until Term, because the records lie in
 * memory as they are. */
QVBoolean jmapPassTextsStay(JMAPPassh pass);

/* The number that a NUMERIC column has for a text: that of a JSON number, or of the words true (1),
 * false (0) and null (missing).  Else QV_NOTNUM.  On any thread. */
QVStatus jmapToNumber(QVEJMAPJsonContexth inh, const char* text, QVStrSize textLen, double* number);

/* Whether a double does not keep a text that is a JSON number: see JMAPPathInfo.inexact.  On any
 * thread. */
QVBoolean jmapIsInexact(QVEJMAPJsonContexth inh, const char* number, QVStrSize numberLen);

/* ---- Statistics of paths ------------------------------------------------------------------- */

typedef struct PATHINFO* JMAPPathh; /* opaque */

/* Values of one kind at a path. */
typedef struct JMAPPathKind {
    int64_t count;  /* 0: there are none */
    int64_t line;   /* where the first begins, as ERRORINFO counts; 0: not known */
    int64_t column;
} JMAPPathKind;

typedef struct JMAPPathInfo {
    QVStrSize pathLen;     /* see jmapPathText */
    int64_t count;         /* records with this path */
    int32_t type;          /* JMAP_NUMERIC, JMAP_CHARACTER, or 3 for an empty container */
    QVStrSize maxValueLen; /* longest value, at least 1 */
    int64_t longestLine;   /* where the first of that length begins */
    int64_t longestColumn;
    JMAPPathKind kinds[7]; /* by JMAP_KIND_... */
    JMAPPathKind inexact;  /* numbers that a double does not keep: the shortest text that reads back to
                              the nearest double is another number, or it is infinite, or 0 */
} JMAPPathInfo;

/* As jmapNextTable, over every distinct path that had a value: groups of one parent together, in
 * order of first appearance. */
QVStatus jmapNextPath(QVEJMAPJsonContexth inh, JMAPPathh* path);

void jmapPathInfo(JMAPPathh path, JMAPPathInfo* info);

/* Writes the path: `pathLen` bytes. */
void jmapPathText(JMAPPathh path, char* text);

/* Places of chosen values: asks a document that is scanned anew, before its first buffer, where value
 * `number` (from 1) of a path begins.  QV_NOMEM. */
typedef struct PATHWATCH* JMAPWatchh; /* opaque */
QVStatus jmapWatch(QVEJMAPJsonContexth inh, const char* path, QVStrSize pathLen, int64_t number,
                   JMAPWatchh* watch);

/* Where it began, as ERRORINFO counts; 0: it has not come. */
void jmapWatched(JMAPWatchh watch, int64_t* line, int64_t* column);

/* ---- Totals -------------------------------------------------------------------------------- */

typedef struct JMAPTotals {
    uint64_t records;
    uint64_t values; /* of them scalars of the document: neither markers nor placeholders */
    uint64_t recordBytes;  /* uncompressed */
    uint64_t storedBytes;  /* as kept: compressed when asked for */
    uint64_t blocks;
    uint64_t blocksOnDisk;
    /* What the end of a document lost without a status, for want of memory or of room in the cache
     * file: 0, or the tables must not be taken for the document's. */
    uint64_t unstoredBytes; /* of records in the last block */
    QVStatus unstoredStatus; /* why; of use with such bytes only */
    uint64_t droppedTables; /* that are missing in the automatic map */
    uint64_t lostLookups;   /* failures of hash tables: tables and columns may be there twice */
    /* Member names of 256 bytes or more, or empty ones: in ALLDATA labels are cut at wrong places. */
    QVBoolean labelsSlip;
} JMAPTotals;
void jmapTotals(QVEJMAPJsonContexth inh, JMAPTotals* totals);

/* ---- Words --------------------------------------------------------------------------------- */

/* "NOVAL", "NUMBER", "STRING", "NULL", "BOOLEAN", "FAKE_VARIABLE", else "UNKNOWN?".  Static. */
const char* jmapKindName(int32_t kind);

#ifdef __cplusplus
}
#endif

#endif
