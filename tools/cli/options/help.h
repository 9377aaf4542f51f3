// The pages that --help prints.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace qvej::cli {

struct Verb;

// The page of a verb, or with a null verb the one with all verbs and options.  Hides options of
// `app`, which is of no other use afterwards.
std::string helpText(CLI::App& app, const Verb* verb);

}  // namespace qvej::cli
