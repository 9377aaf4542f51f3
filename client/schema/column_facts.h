// What the values of one column have in common: enough to give it a type that keeps all of them.
//
//     all booleans                                     BOOLEAN
//     numbers without point and exponent, 64 bits      BIGINT (but not -0)
//     numbers that a double keeps                      DOUBLE
//     other numbers, as far as 38 digits do            DECIMAL
//     texts that all are dates                         DATE
//     texts that all are times, with Z or without      TIMESTAMP
//     numbers that an informat took for unix times     TIMESTAMP, an instant
//     all else, and nothing but null                   TEXT
//
// A column of booleans and numbers is numeric, true is 1.
//
// A document can have millions of columns, so there are eight bytes for each.
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include "../document.h"
#include "../row.h"
#include "data_type.h"
#include "decimal_text.h"
#include "iso_time.h"

#include <algorithm>
#include <cstdint>

namespace qvej {

class ColumnFacts {
   public:
    explicit ColumnFacts(const Column& column);

    // A cell of the next row.
    //   document  of the column
    void take(const Cell& cell, const Document& document) {
        switch (cell.kind) {
            case Cell::MISSING:
            case Cell::NUL:
                break;
            case Cell::COUNT:
                flags_ |= WHOLE;
                break;
            case Cell::DIGITS:
                if (cell.text.size() > kShort || !takeShort(cell.text)) {
                    takeOtherDigits(cell.text, document);
                }
                break;
            case Cell::NUMBER:
                takeNumber(cell);
                break;
            case Cell::BOOLEAN:
                flags_ |= BOOLEAN;
                break;
            default:
                takeText(cell.text);
        }
    }

    // The cells of the rows that come after those of this one.
    void add(const ColumnFacts& later);

    // See fact_bytes.h.  Of another column object of the same column.
    template <class Bytes>
    void pass(Bytes& bytes) {
        bytes(flags_);
        bytes(timeFraction_);
        bytes(digits_);
        bytes(whole_);
        bytes(fraction_);
    }

    // Is the type known whatever comes?
    [[nodiscard]] bool settled() const { return known_ || (flags_ & OTHER_TEXT) != 0; }

    // Has a value come?  Of a column whose type is known from the beginning always true.
    [[nodiscard]] bool any() const { return flags_ != 0; }

    // Is a number -0?  Few types but DOUBLE keep that.
    [[nodiscard]] bool minusZero() const { return (flags_ & MINUS_ZERO) != 0; }

    // The type that keeps all values.  `dates` false: texts are never taken for dates.
    [[nodiscard]] DataType type(bool dates) const;

    // Whole numbers that could all be unix times of the years 2001 to 2069, as a name of the column
    // hints; in seconds (10 digits) or milliseconds (13 digits).
    [[nodiscard]] bool looksLikeSeconds() const { return onlyWhole() && digits_ == 10; }
    [[nodiscard]] bool looksLikeMilliseconds() const { return onlyWhole() && digits_ == 13; }

   private:
    enum Flag : uint16_t {
        BOOLEAN = 1,
        WHOLE = 2,        // a number of a BIGINT
        OTHER = 4,        // any other number
        INEXACT = 8,      // a number that a double does not keep
        MINUS_ZERO = 16,  // -0
        INSTANT = 32,     // a unix time
        NO_INSTANT = 64,  // a number that is none
        DATE = 128,
        NAIVE = 256,
        UTC = 512,
        OTHER_TEXT = 1024,
        LONG_AGO = 2048,  // a time that 64 bits have no nanoseconds for
    };
    static constexpr int kSafeDigits = 15;     // significant ones that a double always keeps
    static constexpr std::size_t kShort = 15;  // bytes of a number that has no more

    // A number of few digits, perhaps with a point, as nearly all are: a double keeps it.  False:
    // it is written in another way.
    bool takeShort(std::string_view digits) {
        const std::size_t begin = digits.front() == '-' ? 1 : 0;
        std::size_t point = digits.size();
        for (std::size_t i = begin; i < digits.size(); ++i) {
            if (digits[i] >= '0' && digits[i] <= '9') {
                continue;
            }
            if (digits[i] != '.' || point != digits.size()) {
                return false;
            }
            point = i;
        }
        const bool whole = point == digits.size();
        if (digits.back() == '0' && (!whole || digits == "-0")) {
            return false;
        }
        flags_ |= whole ? WHOLE : OTHER;
        const std::size_t before = digits[begin] == '0' ? 0 : point - begin;
        whole_ = std::max(whole_, static_cast<uint8_t>(before));
        fraction_ =
            std::max(fraction_, static_cast<uint8_t>(whole ? 0 : digits.size() - 1 - point));
        noteCount(whole && begin == 0 ? static_cast<int8_t>(before) : int8_t{0});
        return true;
    }
    void noteCount(int8_t count) {
        digits_ = digits_ == kNoCount || digits_ == count ? count : int8_t{0};
    }
    void takeText(std::string_view text) {
        if ((flags_ & OTHER_TEXT) == 0) {
            takePerhapsTime(text);
        }
    }
    void takeOtherDigits(std::string_view digits, const Document& document);
    void takeNumber(const Cell& cell);
    void takePerhapsTime(std::string_view text);
    [[nodiscard]] bool onlyWhole() const { return flags_ == WHOLE; }
    [[nodiscard]] DataType numberType() const;
    [[nodiscard]] DataType timeType() const;

    static constexpr int8_t kNoCount = -1;

    uint16_t flags_ = 0;
    bool known_ = false;  // from the beginning
    bool unix_;           // its informat takes numbers for unix times
    uint8_t timeFraction_ = 0;
    int8_t digits_ = kNoCount;  // of every whole number; 0: they differ
    uint8_t whole_ = 0;         // digits before the point, at most one more than a DECIMAL has
    uint8_t fraction_ = 0;      // digits after it, likewise
};
static_assert(sizeof(ColumnFacts) == 8);

// How many values a column has, and how long they are.
struct ColumnCounts {
    uint64_t filled = 0;      // rows with a value
    std::size_t longest = 0;  // bytes of the longest text or number

    // As those of ColumnFacts.
    void take(const Cell& cell) {
        if (cell.kind == Cell::MISSING || cell.kind == Cell::NUL) {
            return;
        }
        ++filled;
        if (cell.kind != Cell::BOOLEAN) {
            longest = std::max(longest, cell.text.size());
        }
    }
    template <class Bytes>
    void pass(Bytes& bytes) {
        bytes(filled);
        bytes(longest);
    }
    void add(const ColumnCounts& later) {
        filled += later.filled;
        longest = std::max(longest, later.longest);
    }
};

}  // namespace qvej
