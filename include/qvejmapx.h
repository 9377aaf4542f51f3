/* What tools need in addition to the operation table: tables and columns by position, the records
 * of the stream, the rows of many tables in one pass, the statistics of paths.
 *
 * These routines work on the same handles as qvejmap.h and follow its rules.  They are part of the
 * static engine library (link jmap_engine and register the entry point with
 * qvPortableRegister(host, "qvejmap", qvejmap)); the loadable module does not export them.
 *
 * All pointers lead into the document and are valid until Term.  Exceptions are the texts of a
 * record, valid until the next call on its cursor, and the items of a pass.  The separator in paths
 * is the byte 0x02.
 *
 * WHAT MAY CHANGE
 *   The operation table of qvejmap.h stays as it is.  This header grows with the tools: a new
 *   release may change its records, constants and routines, and QVEJMAPX_VERSION rises when it
 *   does.  Routines that are only added do not change it.  A program is compiled and linked with
 *   one release; it compares the macro with jmapVersion() before the first call.
 *
 * Tested by tests/frame/equality_test.cpp and tests/frame/fault_sweep_test.cpp
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

/* The fields after `kinds` are set for user maps only. */
typedef struct JMAPColumnInfo {
    const char* name; /* null when a user map gives none */
    QVStrSize nameLen;
    QVStrSize pathLen; /* 0 when the column has none (ALLDATA); see jmapColumnPath */
    int32_t type;      /* JMAP_ORDINAL, JMAP_NUMERIC, JMAP_CHARACTER */
    uint64_t length;   /* the map's: longest value of a character column; not yet capped */
    uint32_t kinds;    /* automatic map: the bit 1 << JMAP_KIND_... for each kind that the values of
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

/* Write the path of a table or a column: as many bytes as the info says.  The engine does not store
 * these texts but builds them.  On any thread. */
void jmapTablePath(JMAPTableh table, char* path);
void jmapColumnPath(JMAPColumnh column, char* path);

/* The path of the object or array that a table of the automatic map is made of; a table of ordinals
 * alone has another as its table path.  Returns its length, 0 for a table of no path or of another
 * map, and writes it to `path`, if that is not null. */
QVStrSize jmapTableObject(JMAPTableh table, char* path);

/* As jmapNextTable, for the columns of a table. */
QVStatus jmapNextColumn(JMAPTableh table, JMAPColumnh* column);

void jmapColumnInfo(JMAPColumnh column, JMAPColumnInfo* info);

/* ReadInit for a table by its handle; several tables may have one name.  QV_NOMEM. */
QVStatus jmapReadTable(QVEJMAPJsonContexth inh, JMAPTableh table, QVEJMAPReadInitParms* rip,
                       QVEJMAPReadContexth* inrctx);

/* What Read does not put into the row buffer.  The routines are called from within Read and must
 * not throw; texts live until they return. */
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

/* The parser of a document, to set rules for the text before the first buffer; null when it could
 * not be made. */
struct JSNParser* jmapParser(QVEJMAPJsonContexth inh);

/* The callbacks of a document's scan, for a parser of the caller's; they live as long as the
 * document. */
struct JSNParseCB* jmapCallbacks(QVEJMAPJsonContexth inh);

/* Before the first buffer: a parser with those callbacks takes the place of the document's, which
 * is ended.  The document owns it from now on. */
void jmapSetParser(QVEJMAPJsonContexth inh, struct JSNParser* parser);

/* A document may be several texts, one after the other: call this before each, the first one too,
 * with a parser that takes them all (jmapSetParser).  The root of each is the root component, and
 * its first scalar directly in the outermost array, which else writes no marker, begins a row.
 * Returns how many markers of the root component there have been: an ordinal of the root has a
 * greater count in this text. */
uint64_t jmapBeginText(QVEJMAPJsonContexth inh);

/* Call this before Term when the last buffer failed or never came.  It ends the cache file and the
 * hash tables, which else live until the host stops.  Only Term may follow. */
void jmapEndInput(QVEJMAPJsonContexth inh);

/* ---- Scans that count alone, and scans in parts ---------------------------------------------- */

/* Before the first buffer: the document keeps no records.  It gets its maps and its statistics, but
 * has no rows: a table, a pass or a cursor on it ends at once.  Memory: what its paths take.
 *   part  it makes no map either; see jmapTakePart */
void jmapCountOnly(QVEJMAPJsonContexth inh, QVBoolean part);

/* Between the buffers of a part, before an element of an array: what came before is not of the part
 * but around it, such as the bracket of that array.  It is not counted.  In a walk (jmapWalkOpen)
 * the rows that this element would end are handed out before this returns, as they are not of the
 * part either; those that stay open keep their values. */
void jmapBeginPart(QVEJMAPJsonContexth inh);

/* Between the buffers of a part that is not the last, after an element: what comes now is around
 * it, and the next part begins with another element.  At the end of a walk the rows are handed out
 * that this next element ends.  QV_NOMEM. */
QVStatus jmapEndPart(QVEJMAPJsonContexth inh);

/* After the last buffer of a document that counts a part: what it has counted, as bytes that can be
 * stored and sent.  They live until Term.  QV_NOMEM. */
QVStatus jmapTakePart(QVEJMAPJsonContexth inh, const char** bytes, QVStrSize* bytesLen);

/* Adds a part to a document that counts alone and gets no buffers.  Parts of one text, or texts one
 * after the other, added in order, give what a scan of all of them would have given, unless
 * jmapPartFlags says other.
 *   line, column  where the part begins; of the line only the lowest 40 bits are a line, from 1
 * Returns QV_OK; QV_BADPARMS for bytes that are no part; QV_NOMEM; a status of the guard.  After a
 * failure only Term may follow. */
QVStatus jmapAddPart(QVEJMAPJsonContexth inh, const char* bytes, QVStrSize bytesLen, int64_t line,
                     int64_t column);

/* After the last part: makes the map, as the last buffer does.  Returns what JsonInput would. */
QVStatus jmapEndParts(QVEJMAPJsonContexth inh);

/* As jmapNextTable, over the paths of objects and arrays that have come in a document that counts
 * alone, each after those that it lies below.  Two may have one path when a name has a separator in
 * it. */
typedef struct PATHBRANCH* JMAPContainerh; /* opaque */
QVStatus jmapNextContainer(QVEJMAPJsonContexth inh, JMAPContainerh* container);

/* The path of the container or member that the scan stands in, as jmapContainerPath gives one:
 * after a mistake of the text, where it is. */
const char* jmapOpenPath(QVEJMAPJsonContexth inh, QVStrSize* pathLen);

/* How often it has come, which is what ordinals count. */
uint64_t jmapContainerCount(JMAPContainerh container);

/* The path: `*pathLen` bytes.  Valid until the next call for this document; null: no memory. */
const char* jmapContainerPath(QVEJMAPJsonContexth inh, JMAPContainerh container,
                              QVStrSize* pathLen);

/* Why parts may not give what the whole gives; 0: they do.  Of what has been scanned or added. */
enum {
    JMAP_PART_EMPTY_NAME = 1,     /* a member has the name "", which changes how labels are counted
                                     from there on */
    JMAP_PART_OTHER_ELEMENTS = 2, /* the outermost array has elements that are no objects: they are
                                     numbered.  It does not matter to parts that are whole texts */
    JMAP_PART_LONG_ELEMENTS = 4   /* an element of an array has a name of 30 bytes or more: how many
                                     of its digits it keeps depends on the arrays before */
};
uint32_t jmapPartFlags(QVEJMAPJsonContexth inh);

/* ---- Limits of a scan ---------------------------------------------------------------------- */

/* The size of a document so far. */
typedef struct JMAPGrowth {
    uint64_t paths;        /* distinct ones, also of objects and arrays */
    uint64_t recordBytes;  /* of closed blocks, uncompressed */
    uint64_t spilledBytes; /* in the cache file */
    uint64_t tables;       /* of the automatic map, made after the last record, or of a pass */
} JMAPGrowth;

/* Limits a scan and what follows it.  `check` is called for each block of records that is closed,
 * before the first table of the automatic map and after each some thousand of its columns, and
 * likewise for the tables that a pass opens, for which `spilledBytes` is 0.  Any status but QV_OK
 * ends the scan, or the opening: JsonInput or jmapPassOpen then fails.  It must not throw. */
typedef struct JMAPGuard {
    void* arg;
    QVStatus (*check)(void* arg, const JMAPGrowth* growth);
    /* Asked in place of the host's `qvmrlmem` whether records go to the cache file.  Null: the host
     * is asked. */
    QVStatus (*available)(void* arg, uint64_t* bytes);
} JMAPGuard;

/* Before the first buffer; `guard` must live until Term. */
void jmapGuard(QVEJMAPJsonContexth inh, const JMAPGuard* guard);

/* The longest path that has more than half of all paths below it.  `*count`: how many.  Writes its
 * text to `path`, if that is not null, and returns its length. */
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
    int32_t kind;       /* JMAP_KIND_... */
    int32_t labelCount; /* names in the path, the root apart */
    const char* path;
    QVStrSize pathLen;
    const char* value; /* null for JMAP_KIND_NOVAL */
    QVStrSize valueLen;
    const char* bytes; /* the whole record as stored (docs/FORMATS.md) */
    QVStrSize bytesLen;
} JMAPRecord;

/* Opens a cursor before the first record of a document whose last buffer has been passed.
 * QV_NOMEM.  Any number may be open; they follow the rule of Read: one call at a time for each
 * document. */
QVStatus jmapRecordsOpen(QVEJMAPJsonContexth inh, JMAPRecordCursorh* cursor);

/* The next record; QV_EOF after the last.  Any other status comes from loading a block; further
 * calls give the same one. */
QVStatus jmapRecordsNext(JMAPRecordCursorh cursor, JMAPRecord* record);

QVStatus jmapRecordsClose(JMAPRecordCursorh cursor);

/* ---- Rows of many tables in one pass ------------------------------------------------------- */

typedef struct ROWMACHINE* JMAPPassh; /* opaque */

/* What a cell holds: nothing, a count, or, by its JMAP_KIND_..., a value. */
enum {
    JMAP_CELL_MISSING = 0,
    JMAP_CELL_COUNT = 7, /* of an ordinal; of ALLDATA: the number of labels, and 1 with a value */
    JMAP_CELL_CUT = 8    /* a STRING of which the records keep only the beginning */
};

typedef struct JMAPPassCell {
    int32_t kind;      /* JMAP_CELL_... or JMAP_KIND_...; a text of ALLDATA is a STRING, or cut */
    QVBoolean fresh;   /* set in this row, not kept from an earlier one */
    QVBoolean strayed; /* it came before the row began: see JMAPPassColumn */
    const char* text;  /* of a value: as recorded, neither padded nor cut nor converted */
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
    QVStrSize column; /* of a JMAP_PASS_NOT_NUMBER, as the rest; its cell has the text too */
    const char* text;
    QVStrSize textLen;
} JMAPPassItem;

/* A table for passes alone, without columns yet: it is in no map and lives until Term.  QV_NOMEM.
 */
QVStatus jmapNewTable(QVEJMAPJsonContexth inh, const char* path, QVStrSize pathLen,
                      JMAPTableh* table);

/* Adds a column to such a table: one that takes what `like` takes, a column of a map; when that is
 * null, an ordinal of `path`.  QV_NOMEM. */
QVStatus jmapNewColumn(QVEJMAPJsonContexth inh, JMAPTableh table, JMAPColumnh like,
                       const char* path, QVStrSize pathLen);

/* Opens a pass before the first record of a document whose last buffer has been passed, for tables
 * of its maps, new ones and perhaps ALLDATA.  `flags` are those of QVEJMAPReadInitParms.  QV_NOMEM.
 * Each table gives the rows that Read gives, in the same order.  Needs memory for the columns of
 * all the tables and for the rows that are being made, and one file at the most. */
QVStatus jmapPassOpen(QVEJMAPJsonContexth inh, const JMAPTableh* tables, QVStrSize tableCount,
                      uint64_t flags, JMAPPassh* pass);

/* The next item, valid until the next call.  QV_EOF after the last.  Any other status is QV_NOMEM
 * or comes from loading a block; further calls give the same one. */
QVStatus jmapPassNext(JMAPPassh pass, JMAPPassItem* item);

QVStatus jmapPassClose(JMAPPassh pass);

/* Counts of a column so far; all 0: it takes no values. */
typedef struct JMAPPassColumn {
    uint64_t values;           /* of its path */
    uint64_t overwritten;      /* of them replaced by a later one in the same row */
    uint64_t firstOverwritten; /* its number, from 1, among the values of the path; in a part 0 when
                                  it came before jmapBeginPart */
    /* Of them in a row that began after them: an array that comes after other elements does not
     * always begin a row.  The row may belong to another parent. */
    uint64_t strayed;
    QVBoolean below; /* the path is the table's or lies below it; else values never stray */
} JMAPPassColumn;
void jmapPassColumn(JMAPPassh pass, QVStrSize table, QVStrSize column, JMAPPassColumn* info);

/* After QV_EOF: the cells of the row that a table had begun and never completed; those that are
 * fresh are in no row. */
void jmapPassLeft(JMAPPassh pass, QVStrSize table, const JMAPPassCell** cells,
                  QVStrSize* cellCount);

/* How many markers of the root component have been counted, which is what an ordinal of the root
 * has in the row that was handed out last: see jmapBeginText. */
uint64_t jmapPassRoots(JMAPPassh pass);

/* Whether the texts of cells (not the cells) are valid until Term, because the records are in
 * memory and not compressed. */
QVBoolean jmapPassTextsStay(JMAPPassh pass);

/* ---- Rows as they come --------------------------------------------------------------------- */

/* Opens a walk before the first buffer of a document `inh`: its scan makes the rows of tables of
 * another document, `tablesOf`, of the same encoding.  It writes no records, and makes no map and
 * no statistics.  JsonInput hands out what a pass over the records of the same text would give, the
 * same items in the same order: `take` is called with each, which is valid until it returns.  The
 * last buffer hands out the rows that are open.  Any status of `take` but QV_OK ends the scan, and
 * JsonInput gives it.  It must not throw.
 *
 * Nothing of `tablesOf` is changed, and several threads may read it at the same time; it must live
 * until the walk is closed.  jmapPassColumn, jmapPassLeft, jmapPassRoots and jmapPassClose take the
 * handle too.  After jmapPassClose only Term, or jmapEndInput before it, may be called for `inh`.
 * QV_NOMEM; JMAP_NOTABLE for ALLDATA, which a walk does not make; a status of the guard, which is
 * also asked after each buffer. */
QVStatus jmapWalkOpen(QVEJMAPJsonContexth inh, QVEJMAPJsonContexth tablesOf,
                      const JMAPTableh* tables, QVStrSize tableCount, uint64_t flags,
                      QVStatus (*take)(void* arg, const JMAPPassItem* item), void* arg,
                      JMAPPassh* walk);

/* A text may be walked in parts, each a document of its own, with jmapBeginPart after what is
 * before it and jmapEndPart before what is after it.  When a row is open around the elements, the
 * first part has all that comes before them, and the last one has it before its jmapBeginPart.
 *
 * What an ordinal has counted; columns of one path share it.  It may be set before the first
 * buffer, or after jmapBeginPart, to what the parts before have counted.  Null: the column is no
 * ordinal, or has no path. */
uint64_t* jmapWalkCount(JMAPPassh walk, QVStrSize table, QVStrSize column);

/* After the last buffer of a part with jmapEndPart: whether values have come that a row of a later
 * part would get, because their own row has not ended, or they came before it began, or a column
 * retains them.  Later parts can then not be walked by themselves.  A row that is open around the
 * elements does not matter, unless it takes values of the elements. */
QVBoolean jmapWalkLeft(JMAPPassh walk);

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
    int64_t count; /* 0: there are none */
    int64_t line;  /* where the first begins, as ERRORINFO counts; 0: not known */
    int64_t column;
} JMAPPathKind;

typedef struct JMAPPathInfo {
    QVStrSize pathLen;     /* see jmapPathText */
    int64_t count;         /* records with this path */
    int32_t type;          /* JMAP_NUMERIC, JMAP_CHARACTER, or 3 for an empty container */
    int32_t labels;        /* names in the path, the root apart; a name may hold separators */
    QVStrSize maxValueLen; /* longest value, at least 1 */
    int64_t longestLine;   /* where the first of that length begins */
    int64_t longestColumn;
    JMAPPathKind kinds[7]; /* by JMAP_KIND_... */
    JMAPPathKind inexact;  /* numbers that a double does not keep: the shortest text that reads back
                              to the nearest double is another number, or it is infinite, or 0 */
} JMAPPathInfo;

/* As jmapNextTable, over every distinct path that had a value: groups of one parent together, in
 * order of first appearance. */
QVStatus jmapNextPath(QVEJMAPJsonContexth inh, JMAPPathh* path);

void jmapPathInfo(JMAPPathh path, JMAPPathInfo* info);

/* Writes the path: `pathLen` bytes. */
void jmapPathText(JMAPPathh path, char* text);

/* Asks for the place of value `number` (from 1) of a path.  Call it before the first buffer of a
 * document, which is usually scanned a second time for this.  QV_NOMEM. */
typedef struct PATHWATCH* JMAPWatchh; /* opaque */
QVStatus jmapWatch(QVEJMAPJsonContexth inh, const char* path, QVStrSize pathLen, int64_t number,
                   JMAPWatchh* watch);

/* Where it began, as ERRORINFO counts; 0: it has not come. */
void jmapWatched(JMAPWatchh watch, int64_t* line, int64_t* column);

/* ---- Totals -------------------------------------------------------------------------------- */

typedef struct JMAPTotals {
    uint64_t records;
    uint64_t values;      /* of them scalars of the document: neither markers nor placeholders */
    uint64_t recordBytes; /* uncompressed */
    uint64_t storedBytes; /* as kept: compressed when asked for */
    uint64_t blocks;
    uint64_t blocksOnDisk;
    /* What the end of a scan lost without a status, when memory or the cache file was full.  Unless
     * all are 0, the tables are not those of the document. */
    uint64_t unstoredBytes;  /* of records in the last block */
    QVStatus unstoredStatus; /* why; meaningless when there are no such bytes */
    uint64_t droppedTables;  /* that are missing in the automatic map */
    uint64_t lostLookups;    /* failures of hash tables: tables and columns may be there twice */
    /* There are member names of 256 bytes or more, or empty ones: in ALLDATA labels are cut at
     * wrong places. */
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
