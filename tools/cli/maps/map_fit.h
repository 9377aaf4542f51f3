// How a user's map fits a document, and what a map cannot say about one.
//
// Tested by tests/tool/golden/map_check.t
#pragma once

#include "client/document.h"
#include "client/map_text.h"

#include <functional>
#include <string>
#include <vector>

namespace qvej::cli {

// What is found, a line each: "orders.id (/root/orders/id)".
using Findings = std::vector<std::string>;

// Paths of the map that the document never has.
Findings neverOccurring(const Document& document);

// Columns of the automatic map whose path is no column's in the map, and how many there are of both
// kinds.
struct LeftOut {
    Findings columns;
    std::size_t tables = 0;  // that lack a column
    std::size_t of = 0;      // columns of the automatic map, the ordinals apart
};
LeftOut leftOut(const Document& document);

// Columns that show a value of an ancestor, with its path and what that means.
Findings columnsOfParents(const std::vector<Table>& tables);

// Names of a map that are not what they were in the document or may not be what was meant: shared
// by tables or by columns of a table, cut to 32 bytes, empty, with characters that got lost.
// `texts`: what the map's text says, or empty.
Findings doubtfulNames(const std::vector<Table>& tables, const std::vector<TableText>& texts);

// Paths of the document that a map cannot name: those with a name that holds "/"; those with a name
// that holds the byte 0x02, which divides paths.  The second reads all records and throws
// QV_IO_..., QV_NOMEM.  `wanted`: of these paths, separator 0x02; empty: of all.
using PathFilter = std::function<bool(const std::string&)>;
Findings namesWithSlash(const Document& document, const PathFilter& wanted = {});
Findings namesWithSeparator(const Document& document, const PathFilter& wanted = {});

}  // namespace qvej::cli
