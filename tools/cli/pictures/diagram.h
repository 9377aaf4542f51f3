// Tables, columns and keys as a picture shows them.
//
// Tested by tests/tool/golden/pictures.t
#pragma once

#include "client/schema/schema.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qvej::cli {

struct Diagram {
    struct Column {
        std::string name, type;
        std::string note;      // the map's label, or the document's own name where it differs
        bool primary = false;  // it is the primary key
        bool parent = false;   // it says which row of the parent
    };
    // To the table that the rows of this one belong to.  Both columns are among those shown.
    struct Edge {
        std::size_t table;         // the parent's position, which is before this table's
        std::size_t column;        // here
        std::size_t parentColumn;  // there
        bool one;                  // a row there has at most one here
        bool foreignKey;           // each row here has one there
    };
    struct Table {
        std::string name, path;
        std::size_t schemaTable;  // its position in the schema
        uint64_t rows;
        std::vector<Column> columns;
        std::size_t moreColumns = 0;  // that are left out
        std::optional<Edge> parent;
    };
    std::vector<Table> tables;   // each after its parent
    std::size_t moreTables = 0;  // that are left out
};

// Of many tables and columns the first ones; keys are always among the columns.
[[nodiscard]] Diagram diagramOf(const Schema& schema, std::size_t mostTables,
                                std::size_t mostColumns);

// What is left out, in a sentence; empty: nothing.
[[nodiscard]] std::string leftOut(const Diagram& diagram);

}  // namespace qvej::cli
