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
//   least    bytes of a part: smaller ones are taken together
//   Members  whether the elements of a member are: else they are one part with what is around them
enum class Members : bool { WHOLE, DIVIDED };
void readInParts(const PartsOfDocument& parts, uint64_t least, Members members,
                 const TakePart& take);

// All as one part.
void readAsOne(const PartsOfDocument& parts, const TakePart& take);

}  // namespace qvej
