// See listing.h.
#include "tools/cli/reports/listing.h"

#include "client/escape.h"

#include <algorithm>
#include <string_view>
#include <utility>

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

void putLine(Writer& out, const Row& row, std::string_view separator) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        out.append(i == 0 ? std::string_view() : separator);
        out.append(row[i]);
    }
    out.put('\n');
}

}  // namespace

void print(Writer& out, std::vector<Row> rows) {
    Listing list(out);
    for (Row& row : rows) {
        list.add(std::move(row));
    }
    list.end();
}

void Listing::add(Row row) {
    if (terminal_) {
        rows_.push_back(std::move(row));
    } else {
        putLine(out_, row, "\t");
    }
}

void Listing::end() {
    align(rows_);
    for (const Row& row : rows_) {
        putLine(out_, row, " ");
    }
}

}  // namespace qvej::cli
