// See listing.h.
#include "tools/cli/reports/listing.h"

#include "client/escape.h"

#include <algorithm>

namespace qvej::cli {

namespace {

// Fills all fields but the last of each row up to a common width.
void align(std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    for (Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            row[i].append(widths[i] - displayWidth(row[i]) + 1, ' ');
        }
    }
}

}  // namespace

void print(Writer& out, std::vector<Row> rows) {
    const bool terminal = out.terminal();
    if (terminal) {
        align(rows);
    }
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out.append(i == 0 ? "" : terminal ? " " : "\t");
            out.append(row[i]);
        }
        out.put('\n');
    }
}

}  // namespace qvej::cli
