// The fields of CSV, as RFC 4180 has them: commas, lines ended by CR LF, quotes only around fields
// that hold a comma, a quote or a line end.  Another separator may take the place of the comma.
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
    explicit CsvFields(Writer& out, char separator = ',',
                       std::optional<std::string> null = std::nullopt)
        : out_(out),
          separator_(separator),
          terminal_(out.terminal()),
          nullGiven_(null.has_value()),
          null_(std::move(null).value_or(std::string())) {}

    void text(std::string_view text) {  // quoted where it must be
        const auto needsCare = [separator = static_cast<uint8_t>(separator_)](auto bytes) {
            return (bytes == separator) | (bytes == '"') | (bytes == '\r') | (bytes == '\n') |
                   (bytes >= 0x80);  // perhaps no UTF-8
        };
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
    [[nodiscard]] bool isNull(std::string_view text) const { return nullGiven_ && text == null_; }

    // Room for a field, after its separator.
    char* begin(std::size_t size) {
        char* const at = out_.room(size + 1);
        *at = separator_;
        char* const field = at + (first_ ? 0 : 1);
        first_ = false;
        return field;
    }
    void writeWithCare(std::string_view text);
    void writeQuoted(std::string_view text);

    Writer& out_;
    char separator_;
    bool terminal_;
    bool first_ = true;  // no field yet in the line
    bool nullGiven_;
    std::string null_;
    std::string safe_;
};

}  // namespace qvej
