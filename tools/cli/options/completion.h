// What a shell offers for the word at the cursor.
//
// Tested by tests/tool/golden/completion.t
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qvej::cli {

// `words` are those after the name of the tool; the last one is at the cursor.  A line for each
// word that could stand there: the word, a TAB, what it means.  They are not chosen by what is
// typed so far, since each shell compares in its own way.  The line ":files" stands for the names
// of files.
//
// Hides options of `app`, which is of no other use afterwards.
std::string completions(CLI::App& app, std::vector<std::string> words);

}  // namespace qvej::cli
