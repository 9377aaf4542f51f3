// The rows of a table as texts, once as Read gives them and once as a pass over many tables does.
#pragma once

#include "kit/document.h"

#include <string>
#include <vector>

namespace jmap::fuzz {

// The row buffer, then "|" and the raw text of each column; in front of it a line "!COLUMN TEXT"
// for each text that was no number.  What a row that never ends got stands behind the last one.
using Rows = std::vector<std::string>;

// Of one table.  Without flags it is read three times, and the readings must agree.
Rows rowsOfRead(const Document& document, JMAPTableh table, uint64_t flags);

// Of all tables in one pass.
std::vector<Rows> rowsOfPass(const Document& document, const std::vector<JMAPTableh>& tables,
                             uint64_t flags);

}  // namespace jmap::fuzz
