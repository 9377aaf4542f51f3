// Where values of an open document are.
//
//     findValues(open, {PathPattern::parse("/root/**/name")}, ValueTest({}, "^A", false),
//                [](const std::string& file, const FoundValue& value) { ...; return true; });
//
// Tested by tests/client/find_values_test.cpp
#pragma once

#include "../open/open_document.h"
#include "../shape/path_pattern.h"
#include "value_test.h"
#include "value_walk.h"

#include <functional>
#include <string>
#include <vector>

namespace qvej {

// Takes a value, which lives until it returns, and the name of the text that it is in.  False: no
// more is wanted.
using TakeFound = std::function<bool(const std::string& file, const FoundValue& value)>;

// Reads the texts of the document again, and gives what is found in their order: see ValueWalk.
// Paths are those of the texts, whatever the document's shape.  Throws Error: QV_UNSUPPORTED when a
// text comes once; and what the handler throws.
void findValues(const OpenDocument& open, const std::vector<PathPattern>& patterns,
                const ValueTest& test, const TakeFound& take);

}  // namespace qvej
