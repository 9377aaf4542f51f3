// CSV as RFC 4180 has it: a header row, commas, lines ended by CR LF, quotes only around fields
// that hold a comma, a quote or a line end.
//
// A missing number is an empty field; in a table of one column it is written "", since many readers
// pass over an empty line.  Infinity is inf and -inf.  Always UTF-8.  On a terminal lines end with
// LF alone and control characters are shown as JSON escapes.
//
// Tested by tests/tool/golden/read.t
#include "tools/cli/escape.h"
#include "tools/cli/formats.h"
#include "tools/cli/number_text.h"

#include <array>
#include <cstdint>

namespace {

constexpr InfinityWords kInfinity = {"inf", "-inf"};
constexpr std::string_view kEmptyField = "\"\"";

enum : uint8_t { PLAIN = 0, QUOTED = 1, HIGH = 2 };

constexpr std::array<uint8_t, 256> fieldClasses() {
    std::array<uint8_t, 256> classes{};
    for (const char c : {',', '"', '\r', '\n'}) {
        classes[static_cast<uint8_t>(c)] = QUOTED;
    }
    for (std::size_t byte = 0x80; byte < 256; ++byte) {
        classes[byte] = HIGH;
    }
    return classes;
}
constexpr std::array<uint8_t, 256> kFieldClass = fieldClasses();

class CsvSink final : public qvej::Sink {
   public:
    explicit CsvSink(Writer& out)
        : out_(out), terminal_(out.terminal()), lineEnd_(terminal_ ? "\n" : "\r\n") {}

    void begin(const std::vector<qvej::Column>& columns) override {
        count_ = columns.size();
        for (std::size_t i = 0; i < count_; ++i) {
            separate(i);
            writeText(columns[i].name);
        }
        endLine();
    }

    void row(const qvej::Cursor& cursor) override {
        for (std::size_t i = 0; i < count_; ++i) {
            separate(i);
            const qvej::Cell cell = cursor.cell(i);
            if (cell.kind == qvej::Cell::NUMBER) {
                out_.advance(writeNumber(out_.room(), cell.number, kInfinity));
            } else if (cell.text.empty()) {
                out_.append(count_ == 1 ? kEmptyField : std::string_view());
            } else {
                writeText(cell.text);
            }
        }
        endLine();
    }

    void end() override {}

   private:
    void separate(std::size_t column) {
        if (column != 0) {
            out_.put(',');
        }
    }

    void endLine() {
        if (count_ != 0) {
            out_.append(lineEnd_);
        }
    }

    void writeText(std::string_view text) {
        uint8_t classes = terminal_ ? HIGH : PLAIN;
        for (const char c : text) {
            classes |= kFieldClass[static_cast<uint8_t>(c)];
        }
        if (classes == PLAIN) {
            out_.append(text);
            return;
        }
        if ((classes & HIGH) != 0) {  // perhaps not UTF-8, or not fit for a terminal
            safe_.clear();
            appendEscaped(safe_, text, terminal_ ? CONTROLS : 0u);
            text = safe_;
        }
        if ((classes & QUOTED) == 0) {
            out_.append(text);
            return;
        }
        out_.put('"');
        for (std::size_t quote = text.find('"'); quote != std::string_view::npos;
             quote = text.find('"')) {
            out_.append(text.substr(0, quote + 1));
            out_.put('"');
            text.remove_prefix(quote + 1);
        }
        out_.append(text);
        out_.put('"');
    }

    Writer& out_;
    bool terminal_;
    std::string_view lineEnd_;
    std::size_t count_ = 0;
    std::string safe_;
};

}  // namespace

std::unique_ptr<qvej::Sink> makeCsvSink(Writer& out) {
    return std::make_unique<CsvSink>(out);
}
