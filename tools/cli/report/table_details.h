// What a report shows of the values of tables, beyond their schema.
//
// Tested by tests/tool/golden/report.t
#pragma once

#include "client/document.h"
#include "client/schema/schema.h"
#include "tools/cli/options/options.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

inline constexpr std::size_t kMostDetailColumns = 100;  // of a table
inline constexpr std::size_t kMostDetailRows = 10;
inline constexpr std::size_t kMostDistinct = 1000;  // that are counted
inline constexpr std::size_t kMostExamples = 3;

// A value and where it stands.
struct Example {
    std::string text;
    Spot place;
    std::string file = {};  // of several; else empty
};

struct ColumnDetails {
    std::optional<uint64_t> distinct;  // texts of values; nothing: more than kMostDistinct
    bool counted = true;               // false: there was no memory for counting them
    std::string least, greatest;       // of numbers, dates and times; empty: no such column
    std::vector<Example> examples;     // the first of each kind, and the longest
};

struct DetailCell {
    enum Kind : uint8_t { MISSING, NUL, NUMBER, TEXT } kind = MISSING;
    std::string text;
};

struct TableDetails {
    std::vector<ColumnDetails> columns;         // the first ones
    std::vector<std::vector<DetailCell>> rows;  // the first ones, of these columns
};

// Of the tables at these positions in the schema, by a pass over their rows and a walk over the
// records.  Texts have at most `longest` characters.  Throws as TablePass and RecordCursor.
[[nodiscard]] std::vector<TableDetails> detailsOf(const Document& document, const Schema& schema,
                                                  const std::vector<std::size_t>& tables,
                                                  const Options& options, std::size_t longest);

}  // namespace qvej::cli
