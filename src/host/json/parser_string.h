// The text of a string that cannot be passed on from the buffer without a copy: it has escapes, or
// it crosses the end of the buffer.
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include "qvehost.h"

#include "host/json/growing_bytes.h"
#include "host/json/parser_utf8.h"

#include <cstdint>

namespace qvhost {

class CodePage;

// Collects one string over any number of buffers: decodes escapes, checks UTF-8.
class StringCollector {
   public:
    // Finds the end of a run of plain text (see ScanPortable::text).
    using TextScan = const uint8_t* (*)(const uint8_t* p, const uint8_t* end);

    // `page` is the code page of the document, null for UTF-8; `text` takes the string.
    StringCollector(TextScan scan, const CodePage* page, GrowingBytes& text)
        : scan_(scan), page_(page), text_(text) {}

    // Begins a string with the plain text [from, to).
    void begin(const uint8_t* from, const uint8_t* to);

    // Takes bytes from `p` on.  QV_OK: the string is whole and `p` after its quote; QV_EOF: all
    // bytes are used up; else a mistake, and `mistake()` bytes before `p` is the offending one.
    QVStatus collect(const uint8_t*& p, const uint8_t* end);
    [[nodiscard]] int mistake() const { return mistake_; }

   private:
    enum class Place : uint8_t {
        PLAIN,         // at a byte of text
        SEQUENCE,      // inside a UTF-8 sequence
        ESCAPE,        // after a backslash
        HEX,           // after "\u" and less than four digits
        LOW_BACKSLASH  // after a high surrogate: only the escape of a low one may follow
    };

    const uint8_t* plainEnd(const uint8_t* p, const uint8_t* end) const;
    QVStatus byte(uint8_t b);
    QVStatus escape(uint8_t b);
    QVStatus hexDigit(uint8_t b);
    QVStatus codeUnit();
    bool appendCharacter(char32_t c);
    QVStatus wrong(QVStatus status, int back);

    TextScan scan_;
    const CodePage* page_;
    GrowingBytes& text_;

    Place place_ = Place::PLAIN;
    Utf8Check sequence_;
    int hexDigits_ = 0;      // of the present \u
    uint32_t unit_ = 0;      // their value
    uint32_t highUnit_ = 0;  // the high surrogate before, 0: none
    int mistake_ = 0;
};

}  // namespace qvhost
