// The pages that --help prints.
//
// Tested by tests/tool/golden/usage.t
#pragma once

#include <cstddef>
#include <string>

namespace CLI {
class App;
}

namespace qvej::cli {

struct Verb;

// Leaves in `app` what belongs to the verb, as the verb has it: the others are in no group, and a
// description says what the option means there.
void keepOptionsOf(const Verb& verb, CLI::App& app);

// The text in lines of at most `width` columns, divided at blanks.
std::string wrapped(const std::string& text, std::size_t width);

// The page of a verb, or with a null verb the one with all verbs and options.  Hides options of
// `app`, which is of no other use afterwards.
std::string helpText(CLI::App& app, const Verb* verb);

}  // namespace qvej::cli
