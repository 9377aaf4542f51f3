// The fields of CSV, as RFC 4180 has them: commas, lines ended by CR LF, quotes only around fields
// that hold a comma, a quote or a line end.
//
// Always UTF-8.  On a terminal lines end with LF alone and control characters are shown as JSON
// escapes.
//
// Tested by tests/tool/golden/read.t
#pragma once

#include "formats/number_text.h"
#include "formats/writer.h"

#include <optional>
#include <string>
#include <string_view>

namespace qvej {

class CsvFields {
   public:
    // `null`: what stands for no value.  When it is given, any other field that looks the same is
    // quoted.
    explicit CsvFields(Writer& out, std::optional<std::string> null = std::nullopt)
        : out_(out),
          terminal_(out.terminal()),
          nullGiven_(null.has_value()),
          null_(std::move(null).value_or(std::string())) {}

    void text(std::string_view text) {  // quoted where it must be
        if (terminal_ || isNull(text) || anyByte(text, needsCare)) {
            writeWithCare(text);
        } else {
            out_.advance(copyText(begin(text.size()), text));
        }
    }
    void digits(std::string_view digits) {  // a number or a word as it stands
        if (isNull(digits)) {
            writeQuoted(digits);
        } else {
            out_.advance(copyText(begin(digits.size()), digits));
        }
    }
    void count(uint64_t count, CountText& texts) {
        if (nullGiven_) {
            digits(std::to_string(count));
        } else {
            out_.advance(texts.write(begin(kNumberChars), count));
        }
    }
    void number(double number);
    void null() { out_.advance(copyText(begin(null_.size()), null_)); }
    void quotedNothing() { writeQuoted({}); }  // ""
    void endLine() {
        char* const at = out_.room(2);
        at[0] = terminal_ ? '\n' : '\r';
        at[1] = '\n';
        out_.advance(at + (terminal_ ? 1 : 2));
        first_ = true;
    }

   private:
    // Quotes, or perhaps no UTF-8.
    static short_text::Marks needsCare(short_text::Bytes b) {
        return (b == ',') | (b == '"') | (b == '\r') | (b == '\n') | (b >= 0x80);
    }
    [[nodiscard]] bool isNull(std::string_view text) const { return nullGiven_ && text == null_; }

    // Room for a field, after its separator.
    char* begin(std::size_t size) {
        char* const at = out_.room(size + 1);
        *at = ',';
        char* const field = at + (first_ ? 0 : 1);
        first_ = false;
        return field;
    }
    void writeWithCare(std::string_view text);
    void writeQuoted(std::string_view text);

    Writer& out_;
    bool terminal_;
    bool first_ = true;  // no field yet in the line
    bool nullGiven_;
    std::string null_;
    std::string safe_;
};

}  // namespace qvej
