// Which verb takes which option.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include <span>
#include <string_view>

namespace qvej::cli {

struct Verb;

// An option that belongs to some verbs.  The others do not list it, and refuse it: it would do
// nothing there.
struct Owner {
    const char* option;
    std::string_view verbs;  // "map, convert"
};

// Options of all verbs are not among them.
std::span<const Owner> optionOwners();

bool owns(const Verb& verb, const Owner& owner);

}  // namespace qvej::cli
