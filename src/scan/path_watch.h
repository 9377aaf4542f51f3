// Finds the places of chosen values, such as the 17th of a path.
//
// A scan keeps only the place of the first value of each kind.  A caller that later needs the place
// of another value scans the document again and watches for it.
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
    int64_t number;  // of the value among those of the path, from 1; placeholders do not count
    PLACE place;     // where it begins; all 0: it has not come yet
};

namespace jmap {

// Watches for value `number` of a path that the scan has not met yet.  Null without memory.
[[nodiscard]] PATHWATCH* watchFor(JMAP_PRIVATE* p, std::string_view path, int64_t number);

// Called for the first record of a path, and for record number `extras->watched`.  Stores `place`
// if the value is watched for, and sets `watched` to the next number.  A placeholder is no value:
// it only moves `watched`.
void noteWatched(JMAP_PRIVATE* p, PATHINFO* info, std::string_view path, VALTYPE type, PLACE place);

}  // namespace jmap
