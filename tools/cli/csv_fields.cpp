// See csv_fields.h.
#include "tools/cli/csv_fields.h"

#include "tools/cli/escape.h"
#include "tools/cli/number_text.h"

#include <array>
#include <cstdint>

namespace {

constexpr InfinityWords kInfinity = {"inf", "-inf"};

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

}  // namespace

void CsvFields::number(double number) {
    separate();
    out_.advance(writeNumber(out_.room(), number, kInfinity));
}

void CsvFields::quotedNothing() {
    separate();
    out_.append("\"\"");
}

void CsvFields::endLine() {
    out_.append(terminal_ ? "\n" : "\r\n");
    first_ = true;
}

void CsvFields::writeText(std::string_view text) {
    uint8_t classes = terminal_ ? HIGH : PLAIN;
    for (const char c : text) {
        classes |= kFieldClass[static_cast<uint8_t>(c)];
    }
    if ((classes & HIGH) != 0) {  // perhaps not UTF-8, or not fit for a terminal
        safe_.clear();
        appendEscaped(safe_, text, terminal_ ? CONTROLS : 0u);
        text = safe_;
    }
    if ((classes & QUOTED) != 0) {
        writeQuoted(text);
    } else {
        out_.append(text);
    }
}

void CsvFields::writeQuoted(std::string_view text) {
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
