// The right name for a wrong one.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// "; did you mean A, B?" with the names that look most like `name`; empty: none does.
std::string suggestion(std::string_view name, const std::vector<std::string>& names);

}  // namespace qvej
