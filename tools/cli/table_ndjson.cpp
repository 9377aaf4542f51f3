// NDJSON: one JSON object a row, its members the columns in order.
//
// A number with a format is a string, as the format shows it.  A missing number is null, a blank
// character cell "", infinity 1e400 and -1e400 (a number of JSON that reads back as infinity).
// Always valid UTF-8; control characters are escaped.
//
// Tested by tests/tool/golden/read.t and tests/tool/ndjson_test.cpp
#include "tools/cli/escape.h"
#include "tools/cli/formats.h"
#include "tools/cli/number_text.h"

#include <string>
#include <vector>

namespace {

constexpr InfinityWords kInfinity = {"1e400", "-1e400"};

class NdjsonSink final : public qvej::Sink {
   public:
    explicit NdjsonSink(Writer& out) : out_(out) {}

    void begin(const std::vector<qvej::Column>& columns) override {
        for (const qvej::Column& column : columns) {
            std::string head = heads_.empty() ? "{\"" : ",\"";
            appendEscaped(head, column.name, JSON_STRING);
            heads_.push_back(head + "\":");
        }
    }

    void row(const qvej::Row& row) override {
        for (std::size_t i = 0; i < heads_.size(); ++i) {
            out_.append(heads_[i]);
            const qvej::Cell cell = row.cell(i);
            switch (cell.kind) {
                case qvej::Cell::MISSING:
                    out_.append("null");
                    break;
                case qvej::Cell::NUMBER:
                    if (cell.text.empty()) {
                        out_.advance(writeNumber(out_.room(), cell.number, kInfinity));
                    } else {
                        writeText(cell.text);
                    }
                    break;
                case qvej::Cell::TEXT:
                    writeText(cell.text);
                    break;
            }
        }
        out_.append(heads_.empty() ? "{}\n" : "}\n");
    }

    void end() override {}

   private:
    void writeText(std::string_view text) {
        out_.put('"');
        appendEscaped(out_, text, JSON_STRING);
        out_.put('"');
    }

    Writer& out_;
    std::vector<std::string> heads_;  // {"first": and then ,"next":
};

}  // namespace

std::unique_ptr<qvej::Sink> makeNdjsonSink(Writer& out) {
    return std::make_unique<NdjsonSink>(out);
}
