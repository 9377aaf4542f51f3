// The first sheet of a workbook: a list of the tables with links to their sheets, and below it all
// columns with their types and where they come from.
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "client/schema/schema.h"
#include "formats/xlsx/sheet.h"

#include <string>
#include <vector>

namespace qvej {

inline constexpr const char* kContents = "Contents";

// `sheets`: their names, for each table of the schema.  Throws Error.
void writeContents(Sheet& sheet, const Schema& schema, const std::vector<std::string>& sheets);

}  // namespace qvej
