// The rows of a pass on their way into the files of their tables.
//
// Tested by tests/tool/golden/convert.t
#pragma once

#include "client/table_pass.h"
#include "formats/formats.h"
#include "formats/output_files.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace qvej {

class TableOutputs {
   public:
    // What takes the rejected values of a table.
    using RejectsOf = std::function<qvej::RejectHandler(const qvej::Table&)>;

    // A file of `files` for each table.  All must outlive this object.
    TableOutputs(const qvej::Document& document, const std::vector<const qvej::Table*>& tables,
                 OutputFiles& files, const Format& format, const FormatOptions& formatOptions,
                 RejectsOf rejectsOf);

    // Takes items of a pass over the tables.  Throws qvej::Error.
    void take(std::span<const qvej::PassItem> items);

    // Writes what is left, and what tables without rows have.
    void end();

    [[nodiscard]] uint64_t rows(std::size_t table) const { return rows_[table]; }

   private:
    // Made with the first row: of many tables most are small.
    struct Output {
        Output(TableOutputs& all, std::size_t table);
        Writer writer;
        std::unique_ptr<qvej::Sink> sink;
        qvej::PassRow row;
    };

    Output& outputOf(std::size_t table);
    void writeRow(std::size_t table, Output& output);
    void releaseAll();

    const qvej::Document& document_;
    const std::vector<const qvej::Table*>& tables_;
    OutputFiles& files_;
    const Format& format_;
    const FormatOptions& formatOptions_;
    RejectsOf rejectsOf_;
    std::vector<std::unique_ptr<Output>> outputs_;
    std::vector<uint64_t> rows_;
    std::size_t buffered_ = 0;  // bytes of all buffers
};

}  // namespace qvej
