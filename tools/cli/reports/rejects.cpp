// See rejects.h.
#include "tools/cli/reports/rejects.h"

#include "client/text.h"
#include "formats/number_text.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"

namespace qvej::cli {

namespace {

constexpr const char* kHeader[] = {"table", "row", "column", "path", "ordinals", "text", "reason"};

// "ordinal_root=1 ordinal_orders=2"
std::string ordinalsOf(const qvej::Row& row) {
    std::string text;
    for (std::size_t i = 0; i < row.columns().size(); ++i) {
        if (row.columns()[i].type == ColumnType::ORDINAL) {
            const Cell cell = row.cell(i);
            text += (text.empty() ? "" : " ") + row.columns()[i].name + "=";
            text += cell.kind == Cell::COUNT ? std::to_string(cell.count)
                    : cell.kind == Cell::NUMBER  // it has a format
                        ? std::to_string(static_cast<uint64_t>(cell.number))
                        : std::string();
        }
    }
    return text;
}

}  // namespace

Rejects::File::File(const std::string& file, bool force, const Sources& sources, bool several)
    : output(OutputFiles::single(file, force, sources)),
      writer(output.writer(0)),
      fields(writer),
      namesSources(several) {
    if (namesSources) {
        fields.text("source");
    }
    for (const char* name : kHeader) {
        fields.text(name);
    }
    fields.endLine();
}

Rejects::Rejects(const std::string& file, bool force, const Sources& sources, bool several,
                 const Destination* tables)
    : file_(file.empty() ? nullptr : std::make_unique<File>(file, force, sources, several)) {
    if (file_ != nullptr && tables != nullptr && tables->shares(file_->output)) {
        throw Failure(WRONG_USAGE, "--rejects: " + file + " is also the file of a table");
    }
}

RejectHandler Rejects::handlerFor(const Table& table) {
    return [this, &table](const qvej::Row& row, const Rejected& rejected) {
        take(table, row, rejected);
    };
}

void Rejects::take(const Table& table, const qvej::Row& row, const Rejected& rejected) {
    const auto [place, first] =
        places_.try_emplace({&table, rejected.column, rejected.cut}, columns_.size());
    if (first) {
        columns_.push_back({visible(table.name) + "." + table.columns[rejected.column].name, 0,
                            rejected.row, shortened(rejected.text), std::string(rejected.reason),
                            rejected.cut});
    }
    ++columns_[place->second].count;
    if (file_ != nullptr) {
        writeLine(table, row, rejected);
    }
}

void Rejects::writeLine(const Table& table, const qvej::Row& row, const Rejected& rejected) {
    CsvFields& fields = file_->fields;
    const Column& column = table.columns[rejected.column];
    if (file_->namesSources) {
        fields.text(row.cell(0).text);
    }
    fields.text(table.name);
    fields.text(std::to_string(rejected.row));
    fields.text(column.name);
    fields.text(withSlashes(column.path));
    fields.text(ordinalsOf(row));
    fields.text(rejected.text);
    fields.text(rejected.reason);
    fields.endLine();
}

void Rejects::takeLines(const Skipped& skipped) {
    if (file_ == nullptr) {
        return;
    }
    CsvFields& fields = file_->fields;
    for (const Skipped::Line& line : skipped.lines()) {
        if (file_->namesSources) {
            fields.text(line.file);
        }
        fields.text("");
        fields.text(std::to_string(line.spot.line));
        fields.text("");
        fields.text(spotText(line.file, line.spot));
        fields.text("");
        fields.text(line.text);
        fields.text(line.reason);
        fields.endLine();
    }
}

void Rejects::commit(Destination* tables) {
    OutputFiles* const list = file_ == nullptr ? nullptr : &file_->output;
    if (list != nullptr) {
        file_->writer.flush();
    }
    if (tables != nullptr) {
        tellEach(tables->commit(list));
    } else if (list != nullptr) {
        tellEach(list->commit());
    }
}

ExitCode Rejects::tellAll() const {
    for (const OfColumn& c : columns_) {
        tell(c.column + ": " + std::to_string(c.count) + (c.count == 1 ? " value " : " values ") +
             (c.cut ? c.reason : "rejected") +
             (c.count == 1 ? ", in row " : ", the first in row ") + std::to_string(c.firstRow) +
             ": " + c.firstText + (c.cut ? std::string() : " is " + c.reason));
    }
    return columns_.empty() ? DONE : REJECTED;
}

}  // namespace qvej::cli
