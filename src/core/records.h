// Records of the scan: the nesting stack, the statistics of paths, the blocks of the record stream.
//
// All live in the document pool.
#pragma once

#include "qvtypes.h"

#include "map.h"

#include <cstdint>
#include <string_view>

// Kind of an entry of the nesting stack.
enum WHAT : int32_t { WHAT_LABEL = 1, WHAT_ARRAY = 2, WHAT_OBJECT = 3 };

// Kind of the last scan event; 0 before the first.
enum CALLBACKTYPE : int32_t {
    CB_OBJECTSTART = 1,
    CB_OBJECTEND = 2,
    CB_ARRAYSTART = 3,
    CB_ARRAYEND = 4,
    CB_STRING = 5,  // member names too
    CB_NUMBER = 6,
    CB_BOOLEAN = 7,
    CB_NULL = 8
};

// Kind of a record.  Values on disk: DO NOT CHANGE.
enum VALTYPE : int32_t {
    VAL_NOVAL = 1,  // container marker, no value
    VAL_NUMBER = 2,
    VAL_STRING = 3,
    VAL_NULL = 4,
    VAL_BOOLEAN = 5,
    VAL_FAKEVARIABLE = 6  // placeholder for an empty object or array
};

inline constexpr char kSep = '\x02';                   // between the components of a path
inline constexpr std::string_view kRoot = "\x02root";  // the first one, with it

inline constexpr QVStrSize kMaxStringLen = 32767;  // bytes that a record keeps of a string

// A string of exactly kMaxStringLen bytes that is whole.  All others of that length in the records
// are cut.
struct WHOLESTRING {
    WHOLESTRING* next;
    uint64_t number;  // from 1, among the strings of that length in the records
};

// A growable byte string, grown by jmapVarstrCheck; not terminated.
struct VARSTR {
    char* str;
    QVStrSize len;    // bytes used
    QVStrSize alloc;  // bytes allocated
};

struct PATHINFO;
struct PATHBRANCH;
struct PATHNODE;
struct PASSPATH;  // src/reader/pass_paths.h
struct PATHWATCH;

// One entry of the nesting stack.  Entries above the top stay linked for the next push.
struct LEVEL {
    LEVEL* next;  // entry below, null at the bottom
    LEVEL* prev;  // entry above, which may be unused; null when there has never been one
    WHAT what;
    const char* name;   // label text, borrowed; null for containers
    QVStrSize nameLen;  // bytes, 0 for containers
    PATHNODE* node;     // of a label; null for containers and for elements
    int refcount;       // reserved, 0
    int levelNum;       // reserved, 0
};

// The children of a label; made with the first one.
struct PATHCHILDREN {
    PATHBRANCH* members;    // list, the newest first
    int64_t memberCount;    // its length
    PATHNODE* elements[2];  // the first element named after the label, and the first plain one
    PATHNODE* lastElement;  // the element that was read last
    PATHINFO* group;        // head of the group of the children
    uint64_t markers;       // of the container, in a scan that counts alone
    char* ordinalName;      // that all ordinals of the label share; null: there is none yet
};

// A node of the tree of known paths: the last label of a path.  Members are identified by name,
// elements by number.
//
// A node stores its own name only; the text of a path is built from the chain of parents when it is
// needed.  Elements have no children, since only a scalar is an element with a label.  An array may
// have millions of them, and each takes one PATHNODE, so keep it small.
struct PATHNODE {
    PATHINFO* info;  // its statistics; null: none, or not to be found again
    union {
        char* head;           // see record_heads.h; null: none
        PASSPATH* meaning;    // of a walk: what the path means to its tables; null: not known yet
        uint64_t partNumber;  // in a scan that counts alone: see partial_scan.h
    };
    PATHNODE* follower;  // the member or element that came next the last time
    union {
        PATHCHILDREN* children;  // of a member; null: none yet
        int64_t number;          // of an element
    };
    int32_t textLen;  // bytes of the path
    int32_t nameLen;
    int32_t labels;      // in the path
    bool plain;          // an element named "element", as its array has no member name
    bool marked;         // a marker has been written
    bool indexed;        // of a member: all its members are in the table `members`
    PATHBRANCH* parent;  // null: the root component.  Must be last: it and the name, which follows
                         // it in memory, are the key of a member
};

// A node that can have children: a member, or the root component.
struct PATHBRANCH {
    PATHBRANCH* sibling;     // the member made before it
    PATHBRANCH* lastMember;  // the child that was read last
    PATHNODE node;           // must be last: the name follows it
};

// The fixed store of record heads (see record_heads.h): a ring of pieces.  When all are full, the
// oldest piece is emptied and filled again.  Zero-filled it is empty.
inline constexpr int kHeadPieces = 128;
struct HEADSTORE {
    char* pieces[kHeadPieces];
    QVStrSize used[kHeadPieces];
    int at;     // the piece that is being filled
    bool full;  // every piece has been filled
};

// Where a value begins in the document, counted from 1; all 0: not known.
struct PLACE {
    int64_t line;
    int64_t column;  // bytes
};

// Values of one kind with the same path.
struct PATHKIND {
    PATHKIND* next;  // the next kind of the path
    VALTYPE kind;
    int64_t count;
    PLACE first;
};

// Statistics that few paths need, kept apart so that PATHINFO stays small.
struct PATHEXTRAS {
    int64_t inexact;  // numbers that a double does not keep
    PLACE firstInexact;
    int64_t watched;  // the count at which noteWatched is called next; 0: never
};

// One distinct path of the document that had a value.  It stores no text: see pathText.
struct PATHINFO {
    PATHINFO* next;  // next group head
    PATHINFO* down;  // next member of the group
    union {
        PATHINFO* downtail;  // of a group head: last member of its group
        PATHINFO* head;      // of a member: its group head
    };
    const PATHNODE* node;
    int64_t count;  // records with this path
    VARTYPE type;
    bool member;              // of a group, not its head
    bool processed;           // taken as a column (or placeholder) by the map builder
    bool ownParent;           // the path is its own parent: its last label is ""
    QVStrSize pathMaxValLen;  // longest value, at least 1
    PLACE longest;            // the first value of that length
    PATHEXTRAS* extras;       // null: none
    PATHKIND kinds;           // in order of appearance
};

// One closed block of the record stream.
struct COMPPATHS {
    COMPPATHS* next;
    char* buf;                 // stored bytes; on disk: null until the reader loads it
    QVStrSize bufLen;          // stored bytes
    uint64_t checksum;         // of the stored bytes, when they are on disk
    uint64_t uncompressedLen;  // bytes of records, > 0
    bool onDisk;               // the stored bytes are in the cache file
    bool compressed;           // the stored bytes are raw deflate data
};
