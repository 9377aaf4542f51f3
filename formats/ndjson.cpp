// NDJSON: one JSON object a row, its members the columns in order.
//
// A column without a value is left out; null, and a value that was rejected, is null.  Numbers have
// the digits of the document; a column of booleans has true and false; a number with a format is a
// string, as the format shows it; infinity, when it does not come from digits, is 1e400 and -1e400
// (a number of JSON that reads back as infinity).
//
// It is always valid UTF-8; control characters are escaped.
//
// Tested by tests/tool/golden/read.t and tests/formats/conformance.py
#include "client/escape.h"
#include "formats/formats.h"
#include "formats/number_text.h"
#include "formats/text_sink.h"

#include <string>
#include <vector>

namespace qvej {

namespace {

constexpr InfinityWords kInfinity = {"1e400", "-1e400"};

class NdjsonSink final : public TextSink {
   public:
    NdjsonSink(Writer out, const Columns& columns) : TextSink(std::move(out)) {
        for (const Column& column : columns) {
            std::string head = "\"";
            appendEscaped(head, column.name, JSON_STRING);
            members_.push_back({head + "\":", {}});
        }
    }

    void row(const PassRow& row) override {
        bool first = true;
        for (std::size_t i = 0; i < members_.size(); ++i) {
            const Cell cell = row.at(i);
            if (cell.kind != Cell::MISSING) {
                const std::string_view head = members_[i].head;
                put(first ? "{" : ",");
                put(head);
                first = false;
                writeCell(cell, members_[i].counts);
            }
        }
        put(first ? "{}\n" : "}\n");
    }

   private:
    struct Member {
        std::string head;  // "name":
        CountText counts;
    };

    void put(std::string_view text) { out_.advance(copyText(out_.room(text.size()), text)); }

    void writeCell(const Cell& cell, CountText& counts) {
        switch (cell.kind) {
            case Cell::MISSING:
            case Cell::NUL:
                put("null");
                break;
            case Cell::COUNT:
                out_.advance(counts.write(out_.room(kNumberChars), cell.count));
                break;
            case Cell::BOOLEAN:
            case Cell::DIGITS:
                put(cell.text);
                break;
            case Cell::NUMBER:
                if (cell.text.empty()) {
                    out_.advance(writeNumber(out_.room(kNumberChars), cell.number, kInfinity));
                } else {
                    writeText(cell.text);
                }
                break;
            case Cell::TEXT:
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

    std::vector<Member> members_;
};

}  // namespace

std::unique_ptr<Sink> makeNdjsonSink(Writer out, const SinkParms& parms) {
    return std::make_unique<NdjsonSink>(std::move(out), parms.table.columns);
}

}  // namespace qvej
