// Statistics of paths: what the automatic map is made from.
//
// Every distinct path that had a value has one PATHINFO: how often it occurred, its type and its
// longest value.  Paths are grouped by their parent path.  The first path of a parent is the head
// of the group and is in the list `pathInfoHead`; the others follow it through `down`.
//
// A path is found through its node in the tree of known paths.  When two nodes might have the same
// text, a path (`hash`) and the head of a group (`hash2`) are also looked up by their text.
//
// Tested by tests/scan/path_stats_test.cpp
#pragma once

#include "core/context.h"
#include "core/text.h"
#include "exact_number.h"

#include <string_view>

namespace jmap {

// Records one more value of `path`: counts it, in all and by kind, adapts the type, and keeps the
// longest length.  Counts numbers that a double does not keep.  Keeps the place of the first value
// of each kind, of the longest length, and that a double does not keep.
//   node           of the path; its parent is that of the labels on the stack
//   path           text of the record without its value, separator 0x02
//   lastNameLen    (of the context) bytes of the last component with its separator; the rest is the
//                  parent path.  0: the path is its own parent
//   value          an empty value has length 1
// Returns QV_OK, or QV_NOMEM with the statistics unchanged.
[[nodiscard]] QVStatus insertPathInfo(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path,
                                      VALTYPE type, std::string_view value);

// Whether insertPathInfo looks at `path`; else it may be empty.
[[nodiscard]] inline bool needsPathText(const JMAP_PRIVATE* p) noexcept {
    return p->byText || p->watches != nullptr || p->debugInsertPath;
}

// Counts the number when a double does not keep it.
void countIfInexact(JMAP_PRIVATE* p, PATHINFO* info, std::string_view number);

inline void lookAtNumber(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, std::string_view value) {
    if (type == VAL_NUMBER && mayLoseDigits(value)) [[unlikely]] {
        countIfInexact(p, info, value);
    }
}

// A value that is of another kind than the first, longer than all before, or watched.
void countOther(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, QVStrSize valLen);

// Records one more value as insertPathInfo does, of a path whose entry is known.
inline void countAgain(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, std::string_view value) {
    const QVStrSize valLen = lengthOf(value);
    lookAtNumber(p, info, type, value);
    ++info->count;
    if (type == info->kinds.kind && valLen <= info->pathMaxValLen && p->watches == nullptr)
        [[likely]] {
        ++info->kinds.count;
    } else {
        countOther(p, info, type, valLen);
    }
}

// Values of a path that were counted elsewhere.
inline constexpr int32_t kKindsOfAPath = 5;
struct COUNTEDPATH {
    VARTYPE type;
    bool ownParent;
    int64_t count;
    QVStrSize longest;  // bytes
    PLACE longestAt;
    int64_t inexact;
    PLACE firstInexact;
    int32_t kindCount;              // 1 or more
    PATHKIND kinds[kKindsOfAPath];  // in order of appearance
};

// Records these as insertPathInfo does, after all that have been recorded.  `pathAt` is the parent
// of the path, or the path itself if that is its own parent.
[[nodiscard]] QVStatus insertCounted(JMAP_PRIVATE* p, PATHNODE* node, const COUNTEDPATH& path);

// From now on paths are looked up by text when their nodes do not know them.
void lookUpByText(JMAP_PRIVATE* p);

// The extras of a path, allocated on first use.  Null without memory.
[[nodiscard]] PATHEXTRAS* pathExtras(JMAP_PRIVATE* p, PATHINFO* info);

// Notes every path with its count.  Always 0.
[[nodiscard]] QVStatus dumpPathInfo(JMAP_PRIVATE* p);

// "NOVAL", "NUMBER", "STRING", "NULL", "BOOLEAN", "FAKE_VARIABLE" for 1 to 6, else "UNKNOWN?".
[[nodiscard]] const char* valtypeToString(int32_t t);

// The same word in host characters, for the conversion "%s" of a note.
[[nodiscard]] const QVChar* valtypeToHostString(int32_t t);

}  // namespace jmap
