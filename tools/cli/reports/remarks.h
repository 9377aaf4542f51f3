// Remarks on a document: what a person should know about its tables.
//
// Tested by tests/tool/golden/
#pragma once

#include "client/document.h"
#include "client/messages.h"
#include "formats/formats.h"

#include <string>
#include <string_view>
#include <vector>

namespace qvej::cli {

// One line on those of the tables that no name opens, since another has it; empty: there are none.
std::string sharedNames(const std::vector<const Table*>& tables, Naming naming,
                        const std::string& alldataName);

// One line on a table that has the name of ALLDATA, in any case; empty: there is none.
std::string hiddenAlldata(const std::vector<const Table*>& tables, const std::string& alldataName);

// The beginning of a value, in quotes.
std::string shortened(std::string_view text);

// Which columns with numbers that a double does not keep are told.
enum class Inexact {
    FIRST,   // numeric ones, of many the first few
    ALL,     // numeric ones
    ROUNDED  // of many the first few whose rows have the double, since a format or informat makes
             // them; the rows of others have the digits of the document
};

// Tells such columns of `tables` on standard error: a line each with their count and first place.
void tellInexact(const std::string& file, const Document& document,
                 const std::vector<const Table*>& tables, Inexact which);

// Tells on standard error the tables whose column of file names is not called `name`, since another
// column is; nothing when the document is not several texts.
void tellSourceNames(const Document& document, const std::vector<const Table*>& tables,
                     const std::string& name);

// Columns of a table whose name an earlier one has, the first for each name.
std::vector<Column> repeatedNames(const Table& table);

// Tells on standard error which columns share a name, and what comes of it in that format.  `map`:
// what gave the names.
void tellSharedNames(const std::string& map, const std::vector<const Table*>& tables,
                     const Format& format);

// A table and how many rows came of it.
struct WrittenTable {
    const Table* table;
    uint64_t rows;
};

// Tells on standard error, a line each, what the rows of these tables of `file` do not show:
// numbers that a double does not keep where a format or informat makes them, tables that have
// values but no rows (scalars directly in the outermost array), and labels of ALLDATA that are not
// the document's.
void tellLosses(const std::string& file, const Document& document,
                const std::vector<WrittenTable>& written);

// What is odd about the tables of a user's map.
struct MapOddities {
    std::vector<std::string> empty;     // tables without columns
    std::vector<std::string> noretain;  // ordinal columns with NORETAIN
    std::vector<std::string> informat;  // ordinal columns with INFORMAT
    std::vector<std::string> cut;       // columns with values longer than their length
};
MapOddities mapOddities(const std::vector<const Table*>& tables);

// Tells the first three on standard error, a line for each kind.
void tellMapOddities(const std::string& map, const std::vector<const Table*>& tables);

// Tells on standard error which columns of the tables of a user's map are of a parent, and what
// that means without --carry.
void tellParents(const std::string& map, const std::vector<const Table*>& tables);

// Tells the last, for those who do not read the rows: they tell each value that is cut.
void tellCuts(const std::string& map, const std::vector<const Table*>& tables);

}  // namespace qvej::cli
