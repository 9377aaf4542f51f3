// Values that their columns cannot take: counted, told, and written to a file when that is asked
// for.
//
// Tested by tests/tool/golden/map_use.t
#pragma once

#include "client/row.h"
#include "formats/csv_fields.h"
#include "formats/destination.h"
#include "formats/output_files.h"
#include "tools/cli/failure.h"
#include "tools/cli/reports/skipped.h"

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace qvej::cli {

class Rejects {
   public:
    // `file`: gets a line of CSV for each value; empty: none.  It is there after `commit` only, and
    // must be neither one of the `sources` nor one that `tables` writes.  `several`: of a document
    // of several texts, whose tables begin with the column of their names.  Throws a Failure.
    Rejects(const std::string& file, bool force, const Sources& sources, bool several = false,
            const Destination* tables = nullptr);

    // What the row of a table calls.  This object and the table must outlive it.
    RejectHandler handlerFor(const Table& table);

    // The lines of the document that are no JSON, for the file: they have no table, their number
    // for the row, and their place for the path.
    void takeLines(const Skipped& skipped);

    // Gives the file its name, and commits `tables`: both or none.  Throws a Failure.
    void commit(Destination* tables = nullptr);

    // Tells a line for each column on standard error.  REJECTED, or DONE when there was nothing.
    [[nodiscard]] ExitCode tellAll() const;

   private:
    struct OfColumn {
        std::string column;  // "table.column"
        uint64_t count;
        uint64_t firstRow;
        std::string firstText;
        std::string reason;
        bool cut;
    };
    struct File {
        File(const std::string& file, bool force, const Sources& sources, bool several);
        OutputFiles output;
        Writer writer;
        CsvFields fields;
        bool namesSources;  // each line begins with the name of its text
    };

    void take(const Table& table, const qvej::Row& row, const Rejected& rejected);
    void writeLine(const Table& table, const qvej::Row& row, const Rejected& rejected);

    std::unique_ptr<File> file_;
    std::vector<OfColumn> columns_;  // in order of their first
    // By table, column and whether values are cut: their place in `columns_`.
    std::map<std::tuple<const Table*, std::size_t, bool>, std::size_t> places_;
};

}  // namespace qvej::cli
