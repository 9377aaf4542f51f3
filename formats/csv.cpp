// CSV with a header row; TSV is the same with tabs in place of the commas.
//
// Numbers have the digits of the document; a column of booleans has true and false.  No value and
// null are an empty field, or what --null says; then a text that looks the same is quoted.  In a
// table of one column an empty field is written "", since many readers pass over an empty line.
// Infinity is inf and -inf.
//
// Tested by tests/tool/golden/read.t and tests/formats/conformance.py
#include "formats/csv_fields.h"
#include "formats/formats.h"
#include "formats/text_sink.h"

namespace qvej {

namespace {

class CsvSink final : public TextSink {
   public:
    CsvSink(Writer out, const SinkParms& parms, char separator)
        : TextSink(std::move(out)),
          fields_(out_, separator, parms.options.null),
          nullGiven_(parms.options.null.has_value()),
          counts_(parms.table.columns.size()) {
        if (!parms.pieces && !parms.resumed) {
            writeNames(parms.table);
        }
    }

    void row(const PassRow& row) override {
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            write(row.at(i), counts_[i]);
        }
        endLine();
    }

   private:
    void writeNames(const Table& table) {
        for (const Column& column : table.columns) {
            if (column.name.empty() && alone()) {
                fields_.quotedNothing();
            } else {
                fields_.text(column.name);
            }
        }
        endLine();
    }

    void write(const Cell& cell, CountText& counts) {
        switch (cell.kind) {
            case Cell::MISSING:
            case Cell::NUL:
                if (alone() && !nullGiven_) {
                    fields_.quotedNothing();
                } else {
                    fields_.null();
                }
                break;
            case Cell::COUNT:
                fields_.count(cell.count, counts);
                break;
            case Cell::BOOLEAN:
            case Cell::DIGITS:
                fields_.digits(cell.text);
                break;
            case Cell::NUMBER:
                if (cell.text.empty()) {
                    fields_.number(cell.number);
                } else {
                    fields_.text(cell.text);
                }
                break;
            case Cell::TEXT:
                if (cell.text.empty() && alone()) {
                    fields_.quotedNothing();
                } else {
                    fields_.text(cell.text);
                }
                break;
        }
    }
    [[nodiscard]] bool alone() const { return counts_.size() == 1; }

    void endLine() {
        if (!counts_.empty()) {
            fields_.endLine();
        }
    }

    CsvFields fields_;
    bool nullGiven_;
    std::vector<CountText> counts_;  // of each column
};

}  // namespace

std::unique_ptr<Sink> makeCsvSink(Writer out, const SinkParms& parms) {
    return std::make_unique<CsvSink>(std::move(out), parms, ',');
}

std::unique_ptr<Sink> makeTsvSink(Writer out, const SinkParms& parms) {
    return std::make_unique<CsvSink>(std::move(out), parms, '\t');
}

}  // namespace qvej
