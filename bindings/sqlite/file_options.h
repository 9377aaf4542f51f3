// How a file is read, from the arguments of a table or a function: 'orders.json', then name=value.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "client/open/open_document.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvej::sqlite {

struct FileOptions {
    std::string file;        // or a folder, or a pattern
    std::string map = {};    // a file; empty: the automatic map
    std::string shape = {};  // "auto" or a file of rules; empty: none
    TextOptions text = {};
    Naming naming = Naming::MAP;
    uint64_t memory = 0;   // bytes that the process may hold; 0: any number
    unsigned threads = 0;  // 0: as many as there are cores

    // Sets one of "map", "shape", "lines", "encoding", "naming", "memory", "threads".  False: no
    // option has that name.  Throws Error for a value that it cannot have.
    bool set(const std::string& name, const std::string& value);

    // Equal when the options are.
    [[nodiscard]] std::string key() const;
};

struct Setting {
    std::string name;
    std::string value;
};

// An argument "name=value", whose value may be quoted.  Throws Error for one without "=".
[[nodiscard]] Setting settingOf(std::string_view argument);

// Text between single or double quotes, as SQL has it; any other without blanks around it.
[[nodiscard]] std::string unquoted(std::string_view text);

// Throws what is said of a name that `set` does not know.
//   others  names that are options here, too: ", table"
[[noreturn]] void throwUnknown(const std::string& name, const std::string& others);

}  // namespace qvej::sqlite
