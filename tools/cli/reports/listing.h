// Rows of fields on standard output: aligned with blanks on a terminal, separated by TABs
// elsewhere.
//
// Tested by tests/tool/golden/tables.t and tests/tool/golden/terminal.t
#pragma once

#include "formats/writer.h"

#include <string>
#include <vector>

namespace qvej::cli {

using Row = std::vector<std::string>;  // fields, already safe

void print(Writer& out, std::vector<Row> rows);

// The same for rows that come one by one: those of many are held on a terminal alone.
class Listing {
   public:
    explicit Listing(Writer& out) : out_(out), terminal_(out.terminal()) {}
    void add(Row row);
    void end();

   private:
    Writer& out_;
    bool terminal_;
    std::vector<Row> rows_;  // of a terminal
};

}  // namespace qvej::cli
