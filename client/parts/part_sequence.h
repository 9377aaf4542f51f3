// The pieces of a document's texts as those that scan them need them: what cannot be divided is one
// part, and the last part is known.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "text_part.h"

namespace qvej {

// Thrown when it turns out too late that a text cannot be divided.
struct Indivisible {};

// The parts that can be scanned apart.
//   least    bytes of a part: smaller ones are taken together, but those of a member
//   Members  whether what comes before and after the elements of a large member is a part each, or
//            of one part with the first elements, and of one with the last
enum class Members : bool { APART, JOINED };
void readInParts(const PartsOfDocument& parts, uint64_t least, Members members,
                 const TakePart& take);

// All as one part.
void readAsOne(const PartsOfDocument& parts, const TakePart& take);

}  // namespace qvej
