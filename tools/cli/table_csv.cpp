// CSV with a header row.
//
// A missing number is an empty field; in a table of one column it is written "", since many readers
// pass over an empty line.  Infinity is inf and -inf.
//
// Tested by tests/tool/golden/read.t
#include "tools/cli/csv_fields.h"
#include "tools/cli/formats.h"

namespace {

class CsvSink final : public qvej::Sink {
   public:
    explicit CsvSink(Writer& out) : fields_(out) {}

    void begin(const std::vector<qvej::Column>& columns) override {
        count_ = columns.size();
        for (const qvej::Column& column : columns) {
            fields_.text(column.name);
        }
        endLine();
    }

    void row(const qvej::Row& row) override {
        for (std::size_t i = 0; i < count_; ++i) {
            const qvej::Cell cell = row.cell(i);
            if (cell.kind == qvej::Cell::NUMBER && cell.text.empty()) {
                fields_.number(cell.number);
            } else if (cell.text.empty() && count_ == 1) {
                fields_.quotedNothing();
            } else {
                fields_.text(cell.text);
            }
        }
        endLine();
    }

    void end() override {}

   private:
    void endLine() {
        if (count_ != 0) {
            fields_.endLine();
        }
    }

    CsvFields fields_;
    std::size_t count_ = 0;
};

}  // namespace

std::unique_ptr<qvej::Sink> makeCsvSink(Writer& out) {
    return std::make_unique<CsvSink>(out);
}
