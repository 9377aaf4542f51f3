// CSV with a header row.
//
// Numbers have the digits of the document.  No value and null are an empty field, or what --null
// says; then a text that looks the same is quoted.  In a table of one column an empty field is
// written "", since many readers pass over an empty line.  Infinity is inf and -inf.
//
// Tested by tests/tool/golden/read.t
#include "formats/csv_fields.h"
#include "formats/formats.h"

namespace {

class CsvSink final : public qvej::Sink {
   public:
    CsvSink(Writer& out, const FormatOptions& options)
        : fields_(out, options.null), nullGiven_(options.null.has_value()) {}

    void begin(const qvej::Columns& columns) override {
        counts_.resize(columns.size());
        for (const qvej::Column& column : columns) {
            fields_.text(column.name);
        }
        endLine();
    }

    void row(const qvej::PassRow& row) override {
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            write(row.cell(i), counts_[i]);
        }
        endLine();
    }

    void end() override {}

   private:
    void write(const qvej::Cell& cell, CountText& counts) {
        switch (cell.kind) {
            case qvej::Cell::MISSING:
            case qvej::Cell::NUL:
                if (alone() && !nullGiven_) {
                    fields_.quotedNothing();
                } else {
                    fields_.null();
                }
                break;
            case qvej::Cell::COUNT:
                fields_.count(cell.count, counts);
                break;
            case qvej::Cell::DIGITS:
                fields_.digits(cell.text);
                break;
            case qvej::Cell::NUMBER:
                if (cell.text.empty()) {
                    fields_.number(cell.number);
                } else {
                    fields_.text(cell.text);
                }
                break;
            case qvej::Cell::TEXT:
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

std::unique_ptr<qvej::Sink> makeCsvSink(Writer& out, const FormatOptions& options) {
    return std::make_unique<CsvSink>(out, options);
}
