// Where chosen values of the document begin: the 17th of this path, the first of that.
//
// A scan keeps no places but the first of each kind.  Who finds out later which value he must name
// scans the document again and watches for it.
//
// Tested by tests/scan/path_watch_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

// A value to watch for.
struct PATHWATCH {
    PATHWATCH* next;  // in its list
    char* path;       // own copy
    QVStrSize pathLen;
    int64_t number;  // of the value among those of the path, from 1; placeholders are none
    PLACE place;     // where it began; all 0 before
};

namespace jmap {

// Watches for value `number` of a path that the scan has not met yet.  Null without memory.
[[nodiscard]] PATHWATCH* watchFor(JMAP_PRIVATE* p, std::string_view path, int64_t number);

// Record `count` of the path has come at `place`, and is watched for or is the first: keeps its
// place, and sets the next one that is watched for.  A placeholder is no value and only moves that.
void noteWatched(JMAP_PRIVATE* p, PATHINFO* info, std::string_view path, VALTYPE type, PLACE place);

}  // namespace jmap
