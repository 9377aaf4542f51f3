// Statistics of paths: what the automatic map is made from.
//
// Every distinct path that had a value has one PATHINFO, with how often it occurred, whether a
// string was among its values, and its longest value.  Paths are grouped by their parent path: the
// first path of a parent heads the group and stands in the list `pathInfoHead`, the others hang
// behind it through `down`.
//
// A path is found through its node in the tree of known paths.  Only when two nodes might have the
// same text, two host tables find a path (`hash`) and the head of a group (`hash2`) by text.
//
// Tested by tests/scan/path_stats_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

// Records one more value for `path`: counts it, also by its kind, promotes the type, keeps the
// longest length, counts numbers that a double does not keep, and keeps the places where a kind,
// that length and such a number were first seen.
//   node           of the path; its parent is that of the labels on the stack
//   path           text of the record without its value, separator 0x02
//   lastNameLen    (of the context) bytes of the last component with its separator: the rest is the
//                  parent path.  0: the path is its own parent
//   value          a longest value of 0 bytes is kept as 1
// Returns QV_OK, or QV_NOMEM with the statistics unchanged.
[[nodiscard]] QVStatus insertPathInfo(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path,
                                      VALTYPE type, std::string_view value);

// The same for a path whose entry is known.
void countAgain(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, std::string_view value);

// From now on paths are looked up by text when their nodes do not know them.
void lookUpByText(JMAP_PRIVATE* p);

// What few paths have, made when there is none yet.  Null without memory.
[[nodiscard]] PATHEXTRAS* pathExtras(JMAP_PRIVATE* p, PATHINFO* info);

// Notes every path with its count.  Always 0.
[[nodiscard]] QVStatus dumpPathInfo(JMAP_PRIVATE* p);

// "NOVAL", "NUMBER", "STRING", "NULL", "BOOLEAN", "FAKE_VARIABLE" for 1 to 6, else "UNKNOWN?".
[[nodiscard]] const char* valtypeToString(int32_t t);

// The same word in host characters, for the conversion "%s" of a note.
[[nodiscard]] const QVChar* valtypeToHostString(int32_t t);

}  // namespace jmap
