// See csv_fields.h.
#include "formats/csv_fields.h"

#include "client/escape.h"

namespace qvej {

namespace {

constexpr InfinityWords kInfinity = {"inf", "-inf"};

}  // namespace

void CsvFields::number(double number) {
    char room[kNumberChars];
    digits(std::string(room, writeNumber(room, number, kInfinity)));
}

void CsvFields::writeWithCare(std::string_view text) {
    safe_.clear();
    appendEscaped(safe_, text, terminal_ ? CONTROLS : 0u);
    if (isNull(safe_) || safe_.find_first_of("\"\r\n") != std::string::npos ||
        safe_.find(separator_) != std::string::npos) {
        writeQuoted(safe_);
    } else {
        out_.advance(copyText(begin(safe_.size()), safe_));
    }
}

void CsvFields::writeQuoted(std::string_view text) {
    char* at = begin(2 * text.size() + 2);
    *at++ = '"';
    for (const char c : text) {
        *at++ = c;
        if (c == '"') {
            *at++ = c;
        }
    }
    *at++ = '"';
    out_.advance(at);
}

}  // namespace qvej
