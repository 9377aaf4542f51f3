// NDJSON: one JSON object a row, its members the columns in order.
//
// A column without a value is left out; null, and a value that was rejected, is null.  Numbers have
// the digits of the document; one with a format is a string, as the format shows it; infinity, when
// it does not come from digits, is 1e400 and -1e400 (a number of JSON that reads back as infinity).
// Always valid UTF-8; control characters are escaped.
//
// Tested by tests/tool/golden/read.t and tests/tool/ndjson.py
#include "client/escape.h"
#include "formats/formats.h"
#include "formats/number_text.h"

#include <string>
#include <vector>

namespace {

constexpr InfinityWords kInfinity = {"1e400", "-1e400"};

class NdjsonSink final : public qvej::Sink {
   public:
    explicit NdjsonSink(Writer& out) : out_(out) {}

    void begin(const qvej::Columns& columns) override {
        for (const qvej::Column& column : columns) {
            std::string head = "\"";
            appendEscaped(head, column.name, JSON_STRING);
            members_.push_back({head + "\":", {}});
        }
    }

    void row(const qvej::PassRow& row) override {
        bool first = true;
        for (std::size_t i = 0; i < members_.size(); ++i) {
            const qvej::Cell cell = row.cell(i);
            if (cell.kind != qvej::Cell::MISSING) {
                const std::string_view head = members_[i].head;
                put(first ? "{" : ",");
                put(head);
                first = false;
                writeCell(cell, members_[i].counts);
            }
        }
        put(first ? "{}\n" : "}\n");
    }

    void end() override {}

   private:
    struct Member {
        std::string head;  // "name":
        CountText counts;
    };

    void put(std::string_view text) { out_.advance(copyText(out_.room(text.size()), text)); }

    void writeCell(const qvej::Cell& cell, CountText& counts) {
        switch (cell.kind) {
            case qvej::Cell::MISSING:
            case qvej::Cell::NUL:
                put("null");
                break;
            case qvej::Cell::COUNT:
                out_.advance(counts.write(out_.room(kNumberChars), cell.count));
                break;
            case qvej::Cell::DIGITS:
                put(cell.text);
                break;
            case qvej::Cell::NUMBER:
                if (cell.text.empty()) {
                    out_.advance(writeNumber(out_.room(kNumberChars), cell.number, kInfinity));
                } else {
                    writeText(cell.text);
                }
                break;
            case qvej::Cell::TEXT:
                writeText(cell.text);
                break;
        }
    }

    void writeText(std::string_view text) {
        if (anyByte(text, needsCare)) {
            put("\"");
            appendEscaped(out_, text, JSON_STRING);
            put("\"");
            return;
        }
        char* at = out_.room(text.size() + 2);
        *at++ = '"';
        at = copyText(at, text);
        *at++ = '"';
        out_.advance(at);
    }

    // Escapes, or perhaps no UTF-8.
    static short_text::Marks needsCare(short_text::Bytes b) {
        return (b == '"') | (b == '\\') | (b >= 0x7F) | (b < 0x20);
    }

    Writer& out_;
    std::vector<Member> members_;
};

}  // namespace

std::unique_ptr<qvej::Sink> makeNdjsonSink(Writer& out, const FormatOptions&) {
    return std::make_unique<NdjsonSink>(out);
}
