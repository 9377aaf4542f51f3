// Are the values of several names of one shape, so that the names may be data?
//
// Tested by tests/client/shape_finder_test.cpp
#pragma once

#include "name_tree.h"

#include <string_view>
#include <vector>

namespace qvej {

// What most values of a path are.
enum class ValueClass { NOTHING, SCALAR, OBJECT, ARRAY };
ValueClass classOf(const NameNode& node);

// What the values of all nodes are if they are of one shape; NOTHING: they are not.  Objects are
// alike when they share names, or when their names are data too and their values are alike.
ValueClass likeness(const std::vector<NameNode*>& nodes);

// Has an object the names that those have in common?
bool likeOthers(const NameNode& node, const std::vector<NameNode*>& others);

// The containers' name that most of the objects hold within a few levels; empty: there is none.
std::string_view commonNameBelow(const std::vector<NameNode*>& objects);

// Is an object of that name within a few levels below?
bool holdsBelow(const NameNode& node, std::string_view name);

// Is the name no word that a programmer chose, but a number, a version or a date?  Other signs tell
// little: fields have names with blanks, in any script, and with "@" in front.
bool looksLikeData(std::string_view name);

// Do at least four in five look so?
bool lookLikeData(const std::vector<NameNode*>& nodes);

}  // namespace qvej
