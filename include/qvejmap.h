/* The engine `qvejmap`: a JSON document as rectangular tables.  START HERE.
 *
 * The engine is a module.  A host (qvehost.h; the bundled one is started by qvportable.h) loads it
 * by the name "qvejmap" and gets its operation table, UserJMAP_S.  All work goes through that
 * table.
 *
 * ORDER OF CALLS
 *     JsonInit                          one document
 *     JsonInput ... JsonInput(done)     its text, buffer by buffer; the last one builds the map
 *     MapInit                           if wanted, a user's map of the document
 *     MapInput ... MapInput(done)       its text, buffer by buffer
 *     MapTerm                           ends the parse; the map stays
 *     GetAutoMap or GetUserMap          the map to read by
 *     GetDsName, MemberExist            which tables it has
 *     ReadInit                          one table
 *     Read ... Read                     QV_OK: a row is in obsbuf; QV_EOF: no more
 *     ReadReset                         from the first row again, any number of times
 *     ReadTerm                          each open table, before Term: it still needs the document
 *     Term
 * After a failed JsonInput only Term is meaningful.  Every document is ended before its instance.
 * After a failed MapInput the parse is over: MapTerm, and MapInit again if there is another map.
 *
 * A PROGRAM
 *     QVEJMAPJsonInitParms parms = {0};
 *     parms.inCEI = U_UTF8_CE;
 *     parms.ordinalCount = UINT64_MAX;
 *     parms.alldataName = "ALLDATA";
 *     parms.alldataNameLen = 7;
 *     QVEJMAPJsonContexth doc;
 *     QVBoolean caching = 0;
 *     engine->JsonInit(&engine->exth, &parms, &doc, NULL);
 *     engine->JsonInput(doc, text, textLen, 1, &caching, NULL);
 *     QVMemPtr map;
 *     engine->GetAutoMap(doc, &map);
 *     QVEJMAPReadContexth table;
 *     engine->ReadInit(doc, map, "orders", 6, NULL, &table);
 *     while (engine->Read(table) == QV_OK) {
 *         double d;                       // columns are unaligned: copy them out
 *         memcpy(&d, table->obsbuf + table->varinfo[0].offset, sizeof d);
 *     }
 *     engine->ReadTerm(table);
 *     engine->Term(doc, NULL);
 * examples/rows.c is the whole of it.
 *
 * WHO FREES WHAT
 *   Maps, names, columns, row buffers and the map document belong to the engine.  A document and
 *   its maps live until Term, a read context until ReadTerm, the map document until
 *   GetAutoMapBufFree (call it before Term and between two GetAutoMapBuf).  The caller's buffers
 *   are borrowed for the call and never written, except `debugString`, which is upper-cased in
 *   place.  A call that fails may leave pools alive.  Term does not end open tables, a parse of a
 *   map and a map document.  What is left is freed when the host stops.
 *
 * THREADS
 *   The engine starts none and locks nothing.  One thread at a time uses a document, and no two
 *   Read calls on tables of one document may run at once.  Different documents are independent.
 *
 * STATUSES are listed in qvstatus.h.
 *
 * Tested by tests/abi/layout_test.c and tests/frame/
 */
#ifndef QVEJMAP_H
#define QVEJMAP_H

#include "qvehost.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Why and where a parse failed.  The last four are of a user map that was parsed, and count those
 * of the document's earlier maps as well. */
typedef struct ERRORINFO {
    QVStatus rc;        /* status from the parser */
    int64_t line;       /* from 1 */
    int64_t col;        /* from 1, in bytes */
    char badstring[32]; /* last string or number seen, cut; of a user map only */
    QVStrSize badstringLen;
    char novardsname[32]; /* last table of a user map that had no variables */
    QVStrSize novardsnameLen;
    uint64_t novarCount;   /* how many of them there were */
    QVBoolean ordNoretain; /* an ordinal column of a user map carries NORETAIN */
} ERRORINFO;

/* A document.  `p` is the engine's own. */
typedef struct QVEJMAPJsonContext {
    QVExtensionh exth;
    QVMemPtr p;
    ERRORINFO e; /* filled when a parse fails */
} * QVEJMAPJsonContexth;

/* A parse of a user map.  `p` is the engine's own. */
typedef struct QVEJMAPMapContext {
    QVExtensionh exth;
    QVMemPtr p;
    ERRORINFO e; /* filled by the last MapInput */
} * QVEJMAPMapContexth;

typedef struct QVEJMAPJsonInitParms {
    QVCEI inCEI;               /* encoding of the document, > 0 */
    char* debugString;         /* keywords such as ",MAP,READ,"; upper-cased in place */
    QVStrSize debugStringLen;  /* 0: none */
    char desc[20];             /* what messages call the document */
    QVStrSize descLen;         /* 0: none; more than 20 counts as 20 */
    uint64_t flags;            /* no effect */
    QVChar* tempName;          /* path of the cache file for spilled blocks */
    QVStrSize tempNameLen;     /* in characters */
    uint64_t rlmemSize;        /* memory known to the caller, in bytes; only reported */
    int32_t rlmemLeavePercent; /* no effect */
    uint64_t memLeave;         /* bytes that must stay free; below it blocks go to the cache file */
    QVBoolean compress;        /* deflate the record blocks */
    uint64_t ordinalCount;     /* levels of ordinal columns in the automatic map, 0: none */
    char* alldataName;         /* name of the ALLDATA table */
    QVStrSize alldataNameLen;  /* 0 to 40; 0: "ALLDATA", and no name opens it but the empty one */
} QVEJMAPJsonInitParms;

typedef struct QVEJMAPMapInitParms {
    QVCEI inCEI;       /* no effect: the document's encoding is used */
    char desc[20];     /* replaces the document's description */
    QVStrSize descLen; /* 0: none, the document's stays; more than 20 counts as 20 */
    uint64_t flags;    /* no effect */
} QVEJMAPMapInitParms;

#define QVEJMAP_RETAIN 1 /* bit of ReadInit's flags: columns keep their value from row to row */

typedef struct QVEJMAPReadInitParms {
    uint64_t flags; /* QVEJMAP_RETAIN or 0 */
} QVEJMAPReadInitParms;

typedef enum VARIABLETYPE { VARTYPE_CHARACTER = 0, VARTYPE_NUMERIC = 1 } VARIABLETYPE;

/* Bit pattern of the missing numeric value, a NaN.  Compare bits, not values. */
#define QVEJMAP_MISSING_BITS 0xFFFFFE0000000000u

/* One column of an open table. */
typedef struct VARIABLEINFO {
    char* name;
    QVStrSize nameLen;
    char label[256];
    QVStrSize labelLen;
    VARIABLETYPE vartype;
    QVStrSize length; /* bytes in the row buffer: 8, or up to 32767 */
    QVStrSize offset; /* in the row buffer, unaligned */
    char* informat;   /* null: none */
    QVStrSize informatLen;
    QVStrSize informatWidth;
    QVStrSize informatDec;
    QVBoolean informatNoError;
    char* rawdata; /* value text of an informatted column */
    QVStrSize rawdataLen;
    QVStrSize rawdataAlloc;
    QVBoolean informatBad;
    char* format; /* null: none */
    QVStrSize formatLen;
    QVStrSize formatWidth;
    QVStrSize formatDec;
    QVBoolean truncation; /* the map says that values will be cut */
    QVStrSize currentLength;
    QVBoolean badNumData; /* a value was not a number; set by Read, cleared by the caller */
    QVBoolean badNumMsgOutput;
} VARIABLEINFO;

/* An open table.  A numeric column is an 8-byte double in machine order, a character column its
 * bytes, blank-padded and not terminated. */
typedef struct qvejmapReadContext {
    QVExtensionh exth;
    char* obsbuf; /* the row after each Read that gives QV_OK */
    QVStrSize obsbufLen;
    QVStrSize varCount;
    VARIABLEINFO* varinfo; /* [varCount], in map order */
    QVMemPtr p;            /* the engine's own */
    char dsname[32];       /* name as given, cut */
    QVStrSize dsnameLen;
} * QVEJMAPReadContexth;

/* A character column of a user map that has an informat.  The pointers lead into the map.  The
 * caller may write a default width or length through them, before it opens the table. */
typedef struct INFORMATINFO {
    struct INFORMATINFO* next; /* null: the last one */
    char* variable;            /* name of the column */
    QVStrSize variableLen;
    char* informat;
    QVStrSize informatLen;
    uint64_t* informatWidth;     /* 0: none was given */
    QVBoolean informatNoError;   /* bad values are not to be reported */
    uint64_t* length;            /* 0: none was given, and the path is not in the document */
    QVBoolean lengthFromAutomap; /* none was given; it is that of the longest value */
} INFORMATINFO;

/* The operation table.  The instance begins with it, so the handle that the host returned for
 * "qvejmap" is the UserJMAP_S*. */
typedef struct UserJMAP_S {
    QVExtension exth;

    /* Opens a document.  QV_BADPARMS, QV_NOMEM, or the status of the string service; `*inctx` is
     * set by success and by a failure of the string service alone. */
    QVStatus (*JsonInit)(QVExtensionh inh, QVEJMAPJsonInitParms* parms, QVEJMAPJsonContexth* inctx,
                         QVJnlh jnl);

    /* Takes the next buffer; `done` with the last.  Sets `*caching` to 1, once, when blocks have
     * begun to go to the cache file.  JMAP_INCOMPLETE: the document ended too soon (ERRORINFO as it
     * was) or is a bare scalar.  JMAP_PARSE: ERRORINFO says what, line and column. */
    QVStatus (*JsonInput)(QVEJMAPJsonContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                          QVBoolean* caching, QVJnlh jnl);

    /* The automatic map as a JSON document; before the last buffer it has no tables.  QV_NOMEM, or
     * the status of the host's writer.  Call GetAutoMapBufFree after each call, also after a failed
     * one: a further call does not end the writer of the one before. */
    QVStatus (*GetAutoMapBuf)(QVEJMAPJsonContexth inh, char** buf, QVStrSize* bufLen, QVJnlh jnl);

    /* The status of ending the writer; QV_OK when there is none. */
    QVStatus (*GetAutoMapBufFree)(QVEJMAPJsonContexth inh);

    /* Opens a table by its name in any case, or ALLDATA by its exact name.  `rip` may be null.
     * JMAP_NOTABLE, QV_NOMEM. */
    QVStatus (*ReadInit)(QVEJMAPJsonContexth inh, QVMemPtr inmap, char* dsname, QVStrSize dsnameLen,
                         QVEJMAPReadInitParms* rip, QVEJMAPReadContexth* inrctx);

    /* The next row.
     *   QV_OK     a row is in obsbuf
     *   QV_EOF    there are no more, until ReadReset
     *   QV_NOMEM  no memory, or a compressed block that does not inflate
     *   other     a status of opening or reading the cache file, such as QV_IO_SHORT, QV_IO_CHANGED
     * After QV_NOMEM and other there is no row.  Stop then: the next call may go on after the block
     * that could not be loaded, without the values in it. */
    QVStatus (*Read)(QVEJMAPReadContexth rctx);

    /* From the first row again, and the end of the read context.  Both always QV_OK. */
    QVStatus (*ReadReset)(QVEJMAPReadContexth inrctx);
    QVStatus (*ReadTerm)(QVEJMAPReadContexth rctx);

    /* Name of the table `index` (from 0).  `*dsnameLen`: capacity in, bytes copied out.  QV_EOF
     * past the last table. */
    QVStatus (*GetDsName)(QVEJMAPJsonContexth inh, QVMemPtr m, uint64_t index, char* dsname,
                          int16_t* dsnameLen);

    /* Begins to parse a user map, after the last buffer of the document: from now on the document
     * takes no more text.  One parse at a time: MapTerm comes before the next MapInit.  `parms` may
     * be null.  QV_NOMEM, with `*inctx` as it was. */
    QVStatus (*MapInit)(QVEJMAPJsonContexth inh, QVEJMAPMapInitParms* parms,
                        QVEJMAPMapContexth* inctx, QVJnlh jnl);

    /* Takes the next buffer of the map; `done` with the last.  The buffer is only read.
     *   QV_OK           goes on; with `done` the map is there, and ERRORINFO has the tables without
     *                   variables and whether an ordinal has NORETAIN.
     *   JMAP_MAP_...    a mistake in the map: ERRORINFO has its place (of null, true and false the
     *                   last byte; of a text with escapes a place in it) and the last number or
     *                   text.
     *   JMAP_PARSE      a mistake in its JSON, or, by `rc` of ERRORINFO: QV_NOTNUM, an integer
     *                   outside of 64 bits; QV_NOMEM, JMAP_MAP_NOMEM, no memory.  Once a map of the
     *                   document had a mistake, the code of that one is given instead, for this map
     *                   too.
     *   JMAP_INCOMPLETE the map ends too soon; ERRORINFO as it was.
     *   QV_NOMEM        MapInit could not make the parser.
     * After a failure the tables made so far are the document's user map. */
    QVStatus (*MapInput)(QVEJMAPMapContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                         QVJnlh jnl);

    /* Ends the parse, and the context if `mctx` is not null, which is then cleared.  The map stays
     * until Term, also when another one takes its place.  Gives the status of ending the parser. */
    QVStatus (*MapTerm)(QVEJMAPJsonContexth inh, QVEJMAPMapContexth* mctx, QVJnlh jnl);

    /* The automatic map; null before the last buffer. */
    QVStatus (*GetAutoMap)(QVEJMAPJsonContexth inh, QVMemPtr* m);

    /* The user map parsed last, its lengths completed from the automatic map, and a list of its
     * character columns with an informat: `*ii` is the first one and stays as it was when there is
     * none.  The list is in `pool`, which is the caller's; without an `ii` it is not made, and
     * `pool` may be null.  Without a user map `*m` is null and nothing else happens.  QV_NOMEM:
     * `*m` is set and the list holds what has been made. */
    QVStatus (*GetUserMap)(QVEJMAPJsonContexth inh, QVMemPtr* m, QVPoolh pool, INFORMATINFO** ii);

    /* `*i`: the number n of levels, the bytes of the longest value, then n numbers, the bytes of
     * the longest member name of each level from the outermost.  Each call makes a new list, which
     * lives until Term.  QV_NOMEM, with a null `*i`. */
    QVStatus (*GetAlldataInfo)(QVEJMAPJsonContexth inh, int32_t** i);

    /* 0: a table of the map has exactly this name, or it is the `alldataName` of JsonInit.
     * 1: there is no such table.  This 1 means no; it is none of the codes in qvstatus.h. */
    QVStatus (*MemberExist)(QVEJMAPJsonContexth inh, QVMemPtr m, int16_t nameLen, char* name);

    /* Ends the document, and gives the status of ending its pool. */
    QVStatus (*Term)(QVEJMAPJsonContexth inh, QVJnlh jnl);
} UserJMAP_S;

/* The module's one exported symbol: its entry point. */
QV_EXPORT QVExtensionh qvejmap(QVHndlp hndl, QVJnlh jnl);

#ifdef __cplusplus
}
#endif

#endif
