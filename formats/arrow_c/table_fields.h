// A table as Arrow describes it: names and types of columns, and as metadata what else is known of
// them.  It is what Parquet files have; formats/table_metadata.h lists the metadata.
//
// Tested by tests/bindings/python/test_arrow.py
#pragma once

#include "client/schema/schema.h"
#include "formats/arrow_c/arrow_c.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

struct ArrowField {
    std::string name;      // no two of a table are the same
    std::string format;    // of the type, as the C data interface writes it
    std::string metadata;  // likewise; empty: none
    bool nullable = true;
};

struct TableFields {
    std::vector<ArrowField> fields;  // of the columns that were asked for
    std::string metadata;            // of the table
};

// Of the table at that position.
//   columns  which of its columns, by their positions
[[nodiscard]] TableFields tableFields(const Schema& schema, std::size_t table,
                                      const std::vector<std::size_t>& columns);

// Gives `out` a structure with a child for each field.  Throws std::bad_alloc; `out` is untouched
// then.
void exportSchema(const TableFields& fields, ArrowSchema* out);

}  // namespace qvej
