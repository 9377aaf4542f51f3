// The manual page.
//
// Tested by tests/tool/man_page_test.sh
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace qvej::cli {

// In the language of man(7): all verbs, and all options with the verbs that take them.
std::string manPage(const CLI::App& app);

}  // namespace qvej::cli
