// The engine instance and the document context that nearly every routine works on.
//
// Owners: the instance lives in its own pool; JMAP_PRIVATE and all it points to live in `cpool`,
// the document pool, unless a field says otherwise.  `p` is the document context everywhere.
#pragma once

#include "qvejmap.h"
#include "qvejmapx.h"

#include "arena.h"
#include "records.h"

inline constexpr QVStrSize kBlockBytes = 1048576;  // capacity of one block of the record stream

struct ROWWALK;  // src/reader/row_walk.h

// The instance.  It begins with the public table, so its address is also the QVExtensionh.
struct JMAP_S {
    UserJMAP_S ujmap;  // must be first
    QVJnlh jnl;
    QVPoolh pool;  // the instance's own; set when all modules are loaded
    QVNLSh nls;    // the host's, not owned
    QVJSONh jsonh;
    QVZLIBh zlibh;
    QVFMTh fmth;
    QVStringServiceh smh;  // reserved, null
};
static_assert(offsetof(JMAP_S, ujmap) == 0 && offsetof(UserJMAP_S, exth) == 0);

// Each group of fields names in brackets the phase that owns it.  Only that phase writes the
// fields, unless a field says otherwise.  Later phases read them.  Open sets all fields to their
// first values.
//
//     open     JsonInit                         src/frame/document.cpp, options.cpp
//     scan     JsonInput                        src/scan, src/frame/driver.cpp
//     automap  the end of the last JsonInput    src/automap
//     map      MapInit to MapTerm, GetUserMap,  src/mapdoc, src/automap/lengths.cpp
//              GetAutoMapBuf
//     read     Read, a pass, a record cursor    src/reader
//
// Term ends what is "owned".  Any phase may use scratch; its contents do not survive the next call
// of a routine that uses it.
//
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the fields stand by owner
struct JMAP_PRIVATE {
    // Parser callbacks [open; map replaces them]; must be first: a callback gets their address and
    // casts it to the context.
    JSNParseCB parseCB;

    // Host services [open].
    QVTranscoderh tosess;  // host characters to document encoding; owned
    QVJSONh jsonh;         // the instance's, as are the next two
    QVZLIBh zlibh;
    QVFMTh fmth;
    QVIOEh qvioeh;         // loaded by scan or read when first needed; owned
    QVCEI inCei;           // document encoding
    QVJnlh jnl;            // the caller's; null: no notes
    QVPoolh cpool;         // the document pool
    uint64_t flags;        // the caller's; no effect
    uint64_t hashSeed;     // of hashOf, for all tables of the document
    JSNParserh parser;     // owned
    JSNParserh mapParser;  // of map, ended by MapTerm; owned
    QVStringServiceh smh;  // string service of the document encoding; owned

    // Tree of known paths [scan].
    PATHBRANCH pathRoot;  // the root component
    PATHBRANCH* pathAt;   // the node of the labels on the nesting stack
    uint64_t pathNodes;   // nodes in the tree: the distinct paths of the document
    uint64_t pathsAsked;  // of a scan that counts alone: nodes when the guard was asked
    ARENA pathArena;      // nodes, names, statistics, columns of the automatic map
    HEADSTORE heads;      // record heads of the nodes
    QVTrackerh members;   // parent and name -> PATHNODE, for parents that are `indexed`; owned,
                          // ended after the scan

    // Text of the record being written [scan]; also a scratch buffer between records.
    VARSTR path;

    VARSTR pathScratch;  // see pathText

    // Statistics of paths [scan].
    PATHINFO* pathInfoHead;
    PATHINFO* pathInfoTail;
    bool byText;       // paths are looked up by text as well; else the next two are null
    QVTrackerh hash;   // checksum of a path -> PATHBYTEXT; owned, ended after the scan
    QVTrackerh hash2;  // checksum of a parent path -> PATHBYTEXT of the group head; likewise

    // Says whether the document may grow on [open, by jmapGuard]; the caller's; null: it may.
    const JMAPGuard* guard;

    // Makes rows of what is scanned [open, by jmapWalkOpen]; the caller's; null: records are
    // written.
    ROWWALK* walk;

    // Values whose place the caller wants [open, by jmapWatch; scan fills in the places].
    PATHWATCH** watches;  // in lists by path; null: none

    // Failures without a status, and what they cost [scan].
    uint64_t droppedTables;  // of automap: left out of the automatic map
    uint64_t lostLookups;    // times that a tracker could not be made or an entry not be inserted
                             // (a path or a group may then be there twice), or that a number could
                             // not be counted as inexact

    // Nesting [scan].
    LEVEL* lhead;           // top of the stack, null when it is empty
    LEVEL* ltail;           // bottom, kept when the stack becomes empty
    PATHNODE* awaited;      // label above the top, not pushed as yet; null: none.  See newLabel
    int32_t labelCount;     // labels on the stack minus one; read keeps a record's count here
    int32_t labelCountMax;  // highest `labelCount` of the scan
    int32_t* labelCurLens;  // [labelMaxesSize + 1] length of the label last pushed at each depth;
                            // of read: those of a record
    int32_t* labelMaxes;    // [labelMaxesSize + 1] longest label at each depth
    int32_t labelMaxesSize;
    bool emptyName;         // a member had the name "": see inStep
    bool otherElements;     // the outermost array has elements that are no objects
    bool longElements;      // an element's name did not fit, or might not have
    QVStrSize valueMaxLen;  // longest value, bytes
    CALLBACKTYPE lastCallback;
    uint64_t rootMarkers;  // markers of the root component that have been written
    bool severalTexts;     // jmapBeginText has been called
    bool isPart;           // [open, by jmapCountOnly] no map is made
    uint64_t textMarkers;  // of these markers, those before the text that is being scanned

    // ALLDATA [automap].
    DSINFO* alldataDs;

    // Record stream [scan].
    COMPPATHS* chead;
    COMPPATHS* ctail;
    char* cBuf;                // [kBlockBytes] the open block
    QVStrSize cBufi;           // bytes used in it
    QVStatus lastBlockStatus;  // of storing the last one
    char* coutBuf;             // deflate output
    QVStrSize coutBufLen;
    QVZStream z;
    uint64_t pathCount;      // records written
    uint64_t longStrings;    // of them strings of kMaxStringLen bytes
    bool valueCut;           // the last of these is cut
    WHOLESTRING* wholeHead;  // those of them that are not cut
    WHOLESTRING* wholeTail;
    uint64_t uncompressedPathBytes;
    uint64_t compressedPathBytes;
    uint64_t spilledPathBytes;     // of them in the cache file
    uint64_t uncompTestPathCount;  // reserved, 0
    uint64_t elementCount;         // scalar elements named since the last array end

    // Automatic map [automap].
    MAP* automap;
    DSNAMELIST* dshead;  // names of its tables
    DSNAMELIST* dstail;
    QVTrackerh dsNameHash;  // upper-cased name -> DSNAMELIST; owned, ended after the scan

    // User's map, and the automatic one as a document [map].
    MAP* usermap;
    JSNWriterh writer;  // of the map document; ended by GetAutoMapBufFree

    // Scratch: a member name of a user's map in upper case [map].
    char* transbuf;
    QVStrSize transbufAlloc;
    QVStrSize transbufLen;

    // Debug switches [open].
    bool debugMap;
    bool debugMapGen;
    bool debugValidateMap;
    bool debugLevel;
    bool debugPath;
    bool debugCompression;
    bool debugRead;
    bool debugReadInit;
    bool debugReadReset;
    bool debugMemory;
    bool debugInsertPath;
    bool debugUserMap;
    bool debugRlmem;
    bool debugAllData;

    // Description [open; map replaces it].
    char jsonDesc[20];
    QVStrSize jsonDescLen;

    // User-map parse [map].
    int32_t vstate;
    QVStatus vrc;  // the engine's own reason for a failed parse, 0 when none; scan sets it too
    char badstring[32];
    QVStrSize badstringLen;
    char novardsname[32];
    QVStrSize novardsnameLen;
    uint64_t novarCount;
    bool ordNoretain;
    QVStrSize lineminus;  // length of the last token
    int32_t badi;

    // Cache file [scan].
    bool usingTemp;     // blocks go to the cache file now; never cleared
    bool usingTempMsg;  // the caller has been told
    QVIOFileh tfp;      // the cache file, open while it is written; owned

    // Options [open].
    QVChar* tempName;  // of the cache file
    QVStrSize tempNameLen;
    uint64_t rlmemSize;
    int32_t rlmemLeavePercent;
    uint64_t memLeave;
    uint64_t rlmemMin;  // below this much free memory blocks are spilled
    bool compress;
    uint64_t ordinalCount;
    char* alldataName;
    QVStrSize alldataNameLen;

    // Separators [open].
    bool munge;    // reserved, false
    char sep;      // 0x02
    char root[6];  // the root component, 5 bytes
    QVStrSize rootL;

    // Scratch: paths as they are shown [all].
    QVStrSize sepLongest;  // capacity of sepbuf
    char* sepbuf;
    QVStrSize sepLongest2;
    char* sepbuf2;

    // Element names [scan].
    QVStrSize elementBufLen;
    QVChar* elementBuf;
    char* celementBuf;
    QVStrSize lastNameLen;  // last component of the last record with its separator; 0: no name
};
static_assert(offsetof(JMAP_PRIVATE, parseCB) == 0);

namespace jmap {

// The context that a callback's argument is the first member of.
[[nodiscard]] inline JMAP_PRIVATE* contextOf(JSNParseCB* cb) noexcept {
    return reinterpret_cast<JMAP_PRIVATE*>(cb);  // the table is its first member
}

[[nodiscard]] inline JMAP_PRIVATE* contextOf(QVEJMAPJsonContexth inh) noexcept {
    return static_cast<JMAP_PRIVATE*>(inh->p);
}

}  // namespace jmap
