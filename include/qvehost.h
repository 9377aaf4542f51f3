/* What the engine asks of its host: handles and tables of functions, nothing else.
 *
 * This is the only header that the engine and a host share, and qvGlobalHandle() is the only
 * function that the engine imports.  To put the engine on another host, implement the tables below.
 *
 * CONVENTIONS
 *   Objects.    Every object begins with a QVGeneric and is ended by
 *               h->generic.destroy(&h->generic).  An object is used by one thread at a time; the
 *               host handle by any.
 *   Strings.    Counted, never terminated.  "const QVChar*" are 4-byte characters with their
 *               number, "const char*" bytes of the document's encoding with their number.
 *   Failure.    A routine that returns an object returns null when it cannot; all others return a
 *               status, and set their out-parameters only when it is QV_OK.
 *   Callbacks.  No service that the engine uses inside a parser callback gives QV_EOF or
 *               QV_NEEDMORE, since the parser returns a callback's status as its own.
 *
 * Tested by tests/abi/layout_test.c (layout) and tests/host/ (the portable host's tables)
 */
#ifndef QVEHOST_H
#define QVEHOST_H

#include "qvstatus.h"
#include "qvtypes.h"

#include <stdarg.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Objects ------------------------------------------------------------------------------- */

typedef struct QVGeneric QVGeneric;
typedef struct QVHndl* QVHndlp;
typedef struct QVExtension* QVExtensionh;
typedef struct QVPool* QVPoolh;
typedef struct QVJnl* QVJnlh;
typedef struct QVNLS* QVNLSh;
typedef struct QVTranscoder* QVTranscoderh;
typedef struct QVStringService* QVStringServiceh;
typedef struct QVTracker* QVTrackerh;
typedef struct QVJSON* QVJSONh;
typedef struct JSNParser* JSNParserh;
typedef struct JSNWriter* JSNWriterh;
typedef struct QVZLIB* QVZLIBh;
typedef struct QVFMT* QVFMTh;
typedef struct QVIOE* QVIOEh;
typedef struct QVIOFile* QVIOFileh;

/* Head of every object. */
struct QVGeneric {
    char tag[4];                          /* kind of object, four characters */
    uint32_t reserved;                    /* 0 */
    QVStatus (*destroy)(QVGeneric* self); /* ends the object; its memory is gone afterwards */
};

/* Head of every extension module's instance.  The module sets the two version queries and
 * `realDestroy`; the loader sets `generic.destroy`, `hndl` and `handle` after the entry point has
 * returned.  Callers end an extension through `generic.destroy`, which calls `realDestroy`. */
typedef struct QVExtension {
    QVGeneric generic;
    /* Host interface needed. */
    QVStatus (*getReqVersion)(QVExtensionh ext, size_t* a, size_t* b, size_t* c);
    QVStatus (*getVersion)(QVExtensionh ext, size_t* a, size_t* b, size_t* c); /* of the module */
    QVHndlp hndl;                              /* host that loaded it */
    QVStatus (*realDestroy)(QVExtensionh ext); /* the module's own release */
    /* May be null. */
    QVMemPtr (*findFunction)(QVExtensionh ext, const char* name, QVStrSize nameLen);
    QVMemPtr handle; /* the loader's record of it */
} QVExtension;

/* Entry point of a module, exported under the module's own name.  Returns the instance, or null. */
typedef QVExtensionh (*QVEntry)(QVHndlp hndl, QVJnlh jnl);

/* ---- The host handle ----------------------------------------------------------------------- */

#define QV_HOST_VERSION_MAJOR 7 /* version of this interface: 7.1.1 */
#define QV_HOST_VERSION_MINOR 1
#define QV_HOST_VERSION_PATCH 1

#define QV_NO_NUMA (-1)

typedef struct QVPoolParms {
    uint64_t flags;        /* 1: an ordinary growing pool */
    QVStrSize initialSize; /* bytes to reserve at once, 0 for none */
    int32_t numaNode;      /* QV_NO_NUMA: anywhere */
} QVPoolParms;

#define QV_TRACKER_HASH 1 /* kind: hash table */

struct QVHndl {
    QVGeneric generic;
    QVJnlh jnl; /* default journal */
    QVNLSh nls; /* national-language service */

    /* A new, empty pool, or null.  The name is for messages and is copied. */
    QVPoolh (*createPool)(QVHndlp host, const QVPoolParms* parms, const QVChar* name,
                          QVStrSize nameLen);
    /* Loads a module by name: a built-in one, else a shared object of that name in the module path.
     * Each call makes an instance of its own.  Null when there is none, or its entry point
     * refuses. */
    QVExtensionh (*loadExtension)(QVHndlp host, const QVChar* name, QVStrSize nameLen, QVJnlh jnl);
    /* A new tracker, or null.  `resourceTypes` is the number of kinds of value it will hold. */
    QVTrackerh (*createTracker)(QVHndlp host, int32_t kind, int32_t resourceTypes,
                                const QVChar* name, QVStrSize nameLen);
    /* Bytes of real memory that are still available. */
    QVStatus (*qvmrlmem)(QVHndlp host, uint64_t* available);
};

/* The host of this process, or null when none has been started. */
QV_EXPORT QVHndlp qvGlobalHandle(void);

/* ---- Memory -------------------------------------------------------------------------------- */

#define QV_ZERO 0x80000000u /* zero-fill; for `reallocate`, the bytes added */

/* Memory is aligned for any scalar (16 bytes).  A request for 0 bytes succeeds and gives a pointer
 * that may be freed. */
struct QVPool {
    QVGeneric generic; /* destroy: gives back everything the pool handed out */
    QVMemPtr (*allocate)(QVPoolh pool, QVStrSize size, uint32_t flags);
    /* Null: nothing has changed.  `mem` may be null. */
    QVMemPtr (*reallocate)(QVPoolh pool, QVMemPtr mem, QVStrSize size, uint32_t flags);
    QVStatus (*release)(QVPoolh pool, QVMemPtr mem); /* `mem` is one of this pool's, not null */
};

/* ---- Journals ------------------------------------------------------------------------------ */

#define QV_NOTE 2 /* message kind: a note */

/* Formats are 4-byte characters with the conversions %d %ld %lld %g %s %hs and %%: flag "-", a
 * width and a precision, each a number or "*".  %hs takes bytes (const char*), %s takes 4-byte
 * characters (const QVChar*); a precision is their length, without one they are terminated. */
struct QVJnl {
    QVGeneric generic;
    QVStatus (*write)(QVJnlh jnl, int32_t kind, const QVChar* fmt, QVStrSize fmtLen, va_list args);
    QVStatus (*flush)(QVJnlh jnl);
};

/* ---- Character sets ------------------------------------------------------------------------ */

#define U_UTF8_CE 20   /* UTF-8 */
#define U_L_UCS4_CE 27 /* the host's own characters: UTF-32, little endian */

struct QVNLS {
    QVExtension exth;
    /* The id of an encoding by its name in any case ("UTF-8", "windows-1252"), or 0 when it cannot
     * be a document's: neither UTF-8 nor a single-byte set that agrees with ASCII below 0x80.
     * Ids other than the two above hold for this process only. */
    QVCEI (*encodingId)(QVNLSh nls, const char* name, QVStrSize nameLen);
    /* A converter between encodings, or null. */
    QVTranscoderh (*newTranscoder)(QVNLSh nls, QVCEI from, QVCEI to, QVJnlh jnl);
    QVStatus (*newStringService)(QVNLSh nls, QVCEI cei, QVJnlh jnl, QVStringServiceh* service);
    /* Upper-cases a-z in place, every other byte stays. */
    void (*upper8)(QVNLSh nls, char* text, QVStrSize textLen);
    /* Formats as a journal does.  At most `outSize` - 1 characters and a terminator are written;
     * `*outLen` is their number without the terminator.  A longer result: QV_TRUNCATED, with what
     * fits written and counted. */
    QVStatus (*format)(QVNLSh nls, QVChar* out, QVStrSize outSize, QVStrSize* outLen,
                       const QVChar* fmt, ...);
};

struct QVTranscoder {
    QVGeneric generic;
    /* Converts `in` whole.  `inLen` and `outSize` are in bytes on the 8-bit side and in characters
     * on the 4-byte side.  QV_UNMAPPABLE or QV_TRUNCATED when it cannot. */
    QVStatus (*convert)(QVTranscoderh t, const void* in, QVStrSize inLen, void* out,
                        QVStrSize outSize, QVStrSize* outLen);
};

/* Operations on texts of one encoding. */
struct QVStringService {
    QVGeneric generic;
    /* Byte position of the first `needle` in `text`, or -1. */
    QVStrSize (*index)(QVStringServiceh s, const char* text, QVStrSize textLen, const char* needle,
                       QVStrSize needleLen, uint32_t flags);
    /* Flags 0: the same bytes. */
    QVBoolean (*equal)(QVStringServiceh s, const char* a, QVStrSize aLen, const char* b,
                       QVStrSize bLen, uint32_t flags);
    /* A JSON integer over the whole text; else QV_NOTNUM.  Beyond 64 bits: QV_NOTNUM.  `*used` is
     * the number of bytes converted.  Unlike other out-parameters `*value` is set on failure: 0. */
    QVStatus (*toInteger)(QVStringServiceh s, const char* text, QVStrSize textLen, int64_t* value,
                          QVStrSize* used);
    /* A JSON number over the whole text, correctly rounded; else QV_NOTNUM.  Too large a magnitude
     * gives infinity and QV_OK, too small a one 0.  `*value` is set on failure: 0.0. */
    QVStatus (*toDouble)(QVStringServiceh s, const char* text, QVStrSize textLen, double* value,
                         QVStrSize* used);
};

/* ---- Trackers ------------------------------------------------------------------------------ */

/* A hash table from byte strings to pointers.  Keys are compared as raw bytes and borrowed: a key
 * must stay as it is until the tracker is destroyed.  Values are not owned. */
struct QVTracker {
    QVGeneric generic;
    QVMemPtr (*find)(QVTrackerh t, const char* key, QVStrSize keyLen); /* null: not there */
    /* Replaces an earlier value. */
    QVStatus (*insert)(QVTrackerh t, const char* key, QVStrSize keyLen, QVMemPtr value);
};

/* ---- Module "qvejson" ---------------------------------------------------------------------- */

typedef uint8_t JSNChar; /* one byte of text */

#define JSN_MEMBERNAME 1 /* flags of `string`: the string is a member name */
#define JSN_VALUE 0      /* flags of `string`: the string is a value */
#define JSN_INTEGER 3    /* flags of `number`: neither fraction nor exponent */
#define JSN_REAL 0       /* flags of `number`: fraction or exponent */

/* The events of a parse.  Each callback gets the pointer to this table.  A caller that keeps the
 * table as the first member of a record thus gets its record.  A status other than QV_OK stops the
 * parse and becomes its result.  Texts are not terminated, live until the callback returns, and
 * must not be changed; a string of length 0 has a non-null pointer. */
typedef struct JSNParseCB JSNParseCB;
struct JSNParseCB {
    QVStatus (*arrayStart)(JSNParseCB* cb);
    QVStatus (*arrayEnd)(JSNParseCB* cb);
    QVStatus (*objectStart)(JSNParseCB* cb);
    QVStatus (*objectEnd)(JSNParseCB* cb);
    QVStatus (*nullx)(JSNParseCB* cb);
    QVStatus (*booleanVal)(JSNParseCB* cb, QVBoolean myboo);
    QVStatus (*number)(JSNParseCB* cb, const char* str, QVStrSize length, int32_t flags);
    QVStatus (*string)(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength, int32_t flags);
};

#define JSN_PARSER_FLAGS 0x400   /* deliver whole tokens, unescaped */
#define JSN_WRITER_FLAGS 0x10000 /* compact output in one growing buffer */

typedef struct JSNParserParms {
    QVCEI textCei;         /* encoding of the text */
    QVCEI callbackCei;     /* encoding of the tokens; the same */
    uint64_t flags;        /* JSN_PARSER_FLAGS */
    QVPoolh pool;          /* null: the parser keeps its own memory */
    QVJnlh jnl;            /* for messages, may be null */
    JSNParseCB* callbacks; /* borrowed until the parser is destroyed, read at each event */
    QVMemPtr stream;       /* null: text comes by `parse` only */
    QVStrSize tippingSize; /* 0 */
    const char* desc;      /* for messages, copied */
    QVStrSize descLen;
} JSNParserParms;

typedef struct JSNWriterParms {
    QVCEI inCei;    /* encoding of the texts given */
    QVCEI outCei;   /* encoding of the document; the same */
    uint64_t flags; /* JSN_WRITER_FLAGS */
    QVPoolh pool;   /* null: the writer keeps its own memory */
    QVJnlh jnl;
    QVStrSize textSize;    /* 0 */
    QVStrSize tippingSize; /* 0 */
    QVMemPtr stream;       /* null: the document stays in the buffer */
    const char* desc;
    QVStrSize descLen;
} JSNWriterParms;

/* Rules for a text that is not one document whose columns are counted in bytes. */
typedef struct JSNTextRules {
    /* The text is JSON Lines: any number of values, each in a line of its own, and lines of white
     * space.  The events are those of one array that holds the values; its end comes with the last
     * buffer, until then `parse` gives QV_EOF. */
    QVBoolean lines;
    /* The result of `eventColumn` for a token that begins at byte `offset` (from 0) of the text;
     * null: columns are counted in bytes.  Called within `parse`, while the buffer with that byte
     * is parsed. */
    int64_t (*columnOf)(void* arg, int64_t offset);
    void* arg;
    /* As `lines`, but with any white space between the values, or none. */
    QVBoolean sequence;
    uint64_t maxDepth; /* containers that may be open at once; 0: as many as the host allows */
} JSNTextRules;

/* A push parser for one JSON document. */
struct JSNParser {
    QVGeneric generic;
    /* Takes the next buffer, which is only read.  QV_OK: the value is complete; QV_EOF: the buffer
     * is used up before it is; a QV_JSON_ status: a mistake, the same again on further calls; any
     * other status: a callback's. */
    QVStatus (*parse)(JSNParserh parser, const void* buf, QVStrSize bufLen, QVBoolean done);
    int64_t (*line)(JSNParserh parser);   /* from 1 */
    int64_t (*column)(JSNParserh parser); /* from 1, in bytes: of the next unread byte, or of the
                                             offending one */
    /* Within a callback, and after one that failed: the column where its token begins, in the line
     * that `line` gives (a token has no line end).  May be null. */
    int64_t (*eventColumn)(JSNParserh parser);
    /* Before the first buffer.  The rules are copied.  May be null. */
    void (*setRules)(JSNParserh parser, const JSNTextRules* rules);
    int64_t (*offset)(JSNParserh parser);      /* bytes before the place of `column`; may be null */
    int64_t (*eventOffset)(JSNParserh parser); /* the same of `eventColumn`; may be null */
};

#define JSN_OPEN_OBJECT 1
#define JSN_OPEN_ARRAY 2

/* Writes one JSON document.  In an object, strings are names and values in turn. */
struct JSNWriter {
    QVGeneric generic; /* destroy: the buffer goes with it */
    QVStatus (*open)(JSNWriterh writer, int32_t kind);
    QVStatus (*close)(JSNWriterh writer); /* the innermost object or array */
    QVStatus (*string)(JSNWriterh writer, const char* text, QVStrSize textLen);
    /* A number with at most `digits` (10: as many as are needed) digits before and `decimals`
     * after the point; with 0 decimals a plain integer. */
    QVStatus (*dbl)(JSNWriterh writer, double value, int32_t digits, int32_t decimals);
    QVStatus (*getBuffer)(JSNWriterh writer, char** buf, QVStrSize* bufLen); /* the writer's own */
};

struct QVJSON {
    QVExtension exth;
    JSNParserh (*createParser)(QVJSONh json, const JSNParserParms* parms);
    JSNWriterh (*createWriter)(QVJSONh json, const JSNWriterParms* parms);
};

/* ---- Module "qvezlib" ---------------------------------------------------------------------- */

/* The stream record of zlib 1.x, field by field; the module checks that. */
typedef struct QVZStream {
    const uint8_t* next_in;
    uint32_t avail_in;
    unsigned long total_in;
    uint8_t* next_out;
    uint32_t avail_out;
    unsigned long total_out;
    const char* msg;
    void* state;
    void* (*zalloc)(void* opaque, uint32_t items, uint32_t size);
    void (*zfree)(void* opaque, void* address);
    void* opaque;
    int data_type;
    unsigned long adler;
    unsigned long reserved;
} QVZStream;

#define QVZ_FINISH 4
#define QVZ_STREAM_END 1

/* zlib's own functions with zlib's own results. */
struct QVZLIB {
    QVExtension exth;
    int (*deflateInit2)(QVZStream* z, int level, int method, int windowBits, int memLevel,
                        int strategy);
    unsigned long (*deflateBound)(QVZStream* z, unsigned long sourceLen);
    int (*deflate)(QVZStream* z, int flush);
    int (*deflateEnd)(QVZStream* z);
    int (*inflateInit2)(QVZStream* z, int windowBits);
    int (*inflate)(QVZStream* z, int flush);
    int (*inflateEnd)(QVZStream* z);
};

/* ---- Module "qvefmt" ----------------------------------------------------------------------- */

/* Informats turn the texts of a column into its values, formats turn numbers into texts.  The
 * engine keeps the handle and passes on names, widths and decimals; the program that shows a table
 * applies them.  Each is opened once for a column and applied to each of its values.  All texts are
 * UTF-8.  The catalogue is in docs/FORMATS.md. */

typedef struct QVInformat* QVInformath;
typedef struct QVFormat* QVFormath;

struct QVInformat {
    QVGeneric generic;
    uint64_t defaultWidth; /* characters to read when no width is given; 0: the whole text */
    const char* refusal;   /* why a text gets QV_FMT_VALUE, for people: "not a date"; terminated */
    /* Numeric columns.  A value is read whole, blanks around it allowed, or refused: QV_FMT_VALUE;
     * QV_FMT_RANGE when it is well formed and cannot be represented. */
    QVStatus (*toNumber)(QVInformath inf, const char* text, QVStrSize textLen, double* value);
    /* Character columns.  `*out` stays valid until the next call, and as long as `text`. */
    QVStatus (*toText)(QVInformath inf, const char* text, QVStrSize textLen, const char** out,
                       QVStrSize* outLen);
};

struct QVFormat {
    QVGeneric generic;
    /* `*out` stays valid until the next call.  A number that the format cannot show is written in
     * its shortest plain form: the text is also set with QV_FMT_VALUE (not such a number) and
     * QV_FMT_RANGE (too large or too small).  A NaN, which is how a missing number looks, gives
     * blanks as wide as the format. */
    QVStatus (*toText)(QVFormath fmt, double value, const char** out, QVStrSize* outLen);
};

/* A line of the catalogue.  Texts are static and terminated. */
typedef struct QVFMTEntry {
    const char* name;    /* in lower case */
    const char* purpose; /* one line for people */
    QVBoolean numeric;   /* for numeric columns, else for character columns */
} QVFMTEntry;

struct QVFMT {
    QVExtension exth;
    /* The informat of that name (in any case; a name that begins with "%" is a pattern) for columns
     * of that type.  `width` and `decimals` 0: none given.  QV_FMT_NAME, QV_FMT_TYPE,
     * QV_FMT_PATTERN, or QV_FMT_WIDTH when it can do nothing with the width or the decimals. */
    QVStatus (*openInformat)(QVFMTh fmt, QVBoolean numeric, const char* name, QVStrSize nameLen,
                             uint64_t width, uint64_t decimals, QVInformath* informat);
    /* Likewise.  All formats are for numeric columns. */
    QVStatus (*openFormat)(QVFMTh fmt, QVBoolean numeric, const char* name, QVStrSize nameLen,
                           uint64_t width, uint64_t decimals, QVFormath* format);
    /* The entries of the catalogue from 0 on.  QV_EOF after the last. */
    QVStatus (*informatAt)(QVFMTh fmt, QVStrSize index, QVFMTEntry* entry);
    QVStatus (*formatAt)(QVFMTh fmt, QVStrSize index, QVFMTEntry* entry);
};

/* ---- Module "qvioe" ------------------------------------------------------------------------ */

enum { QVIO_OUTPUT = 1, QVIO_INPUT = 2 }; /* mode */
enum { QVIO_RECFM_BINARY = 1 };           /* record format */
enum { QVIO_ACCESS_SEQUENTIAL = 1 };      /* access */
enum { QVIO_MODIFIER_DEFAULT = 0 };       /* record modifier */

typedef struct QVIOOpenParms {
    QVChar device[8];   /* U"DISK    " */
    const QVChar* name; /* path of the file */
    QVStrSize nameLen;
    const char* desc; /* for messages */
    QVStrSize descLen;
    int32_t mode;
    int32_t recfm;
    int32_t access;
    int32_t modifier;
    QVStrSize dataL; /* buffer size in bytes: the longest block */
    uint64_t flags;  /* 0 */
} QVIOOpenParms;

/* A file of blocks, back to back and nothing between them. */
struct QVIOFile {
    QVGeneric generic; /* destroy: closes; gives QV_IO_CLOSE when bytes may be lost */
    QVStatus (*write)(QVIOFileh file, const void* block, QVStrSize blockLen); /* one block, whole */
    /* The next block, whole.  `*block` stays valid until the next call on the file.  QV_IO_SHORT
     * when there is none; never QV_EOF, which would be taken for the end of a table. */
    QVStatus (*read)(QVIOFileh file, char** block, QVStrSize* blockLen);
};

struct QVIOE {
    QVExtension exth;
    /* Output: makes the file, or takes an existing one only if it is regular, empty, of this user
     * and has one link; never through a symbolic link; mode 0600.  A name that ends with "/" is a
     * directory, in which the file has no name and ends with the program.  Input: a file that this
     * instance wrote under that name, even when the name has been removed since; its block lengths
     * are known only to the instance. */
    QVStatus (*open)(QVIOEh io, const QVIOOpenParms* parms, QVJnlh jnl, QVIOFileh* file);
};

#ifdef __cplusplus
}
#endif

#endif
