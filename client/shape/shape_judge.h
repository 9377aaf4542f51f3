// From the names of a document to the rules that make tables of it as a person would draw them.
//
// Tested by tests/client/shape_finder_test.cpp
#pragma once

#include "finder_options.h"
#include "found_shape.h"
#include "name_tree.h"

namespace qvej {

// Merges nodes of the tree as it finds names that are data; it is of no use afterwards.
FoundShape judgeShape(NameTree& tree, const FinderOptions& options);

}  // namespace qvej
