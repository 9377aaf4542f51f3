// See column_facts.h.
#include "client/schema/column_facts.h"

#include <cmath>

namespace qvej {
namespace {

constexpr double kMostExact = 9007199254740992;  // 2^53: whole numbers up to it are all doubles
constexpr uint8_t kMostExactDigits = 16;
constexpr int kNanoDigits = 9;

// Digits after the second that microseconds need.
uint8_t fractionOf(int64_t micros) {
    return micros % 1000000 == 0 ? 0 : micros % 1000 == 0 ? 3 : 6;
}

// A number of digits, or that it is more than a DECIMAL has.
uint8_t capped(int64_t digits) {
    return static_cast<uint8_t>(std::min<int64_t>(digits, kMostDigits + 1));
}

}  // namespace

ColumnFacts::ColumnFacts(const Column& column)
    : unix_(column.informat.name == "unix" || column.informat.name == "unixms") {
    const bool asIs = column.informat.name.empty() && column.format.name.empty();
    if (asIs && column.type == ColumnType::ORDINAL) {
        flags_ = WHOLE;
    } else if (asIs && column.logicalType == LogicalType::BOOLEAN) {
        flags_ = BOOLEAN;
    }
    known_ = flags_ != 0;
}

void ColumnFacts::add(const ColumnFacts& later) {
    timeFraction_ = std::max(timeFraction_, later.timeFraction_);
    flags_ |= later.flags_;
    if (later.digits_ != kNoCount) {
        noteCount(later.digits_);
    }
    whole_ = std::max(whole_, later.whole_);
    fraction_ = std::max(fraction_, later.fraction_);
}

void ColumnFacts::takeOtherDigits(std::string_view digits, const Document& document) {
    const DecimalNeed need = needOf(digits);
    whole_ = std::max(whole_, capped(need.whole));
    fraction_ = std::max(fraction_, capped(need.fraction));
    flags_ |= need.minusZero ? MINUS_ZERO : 0;
    flags_ |= wholeNumber(digits) ? WHOLE : OTHER;
    noteCount(0);
    // More digits, or an exponent beyond those of doubles.
    const bool perhapsInexact =
        need.significant > kSafeDigits || need.whole > 300 || need.fraction > 300;
    if (perhapsInexact && (flags_ & INEXACT) == 0 &&
        jmapIsInexact(document.handle(), digits.data(), static_cast<QVStrSize>(digits.size())) !=
            0) {
        flags_ |= INEXACT;
    }
}

void ColumnFacts::takeNumber(const Cell& cell) {
    if (!cell.text.empty()) {
        takeText(cell.text);  // as its format shows it
        return;
    }
    const double number = cell.number;
    if (unix_) {
        const std::optional<int64_t> micros = microsecondsOf(number);
        flags_ |= micros ? INSTANT : NO_INSTANT;
        timeFraction_ = std::max(timeFraction_, micros ? fractionOf(*micros) : uint8_t{0});
        return;
    }
    const bool minusZero = number == 0 && std::signbit(number);
    const bool whole = number == std::trunc(number) && std::abs(number) <= kMostExact && !minusZero;
    flags_ |= minusZero ? MINUS_ZERO : 0;
    flags_ |= whole ? WHOLE : OTHER;
    whole_ = std::max(whole_, std::abs(number) < 10 ? uint8_t{1} : kMostExactDigits);
    noteCount(0);
}

void ColumnFacts::takePerhapsTime(std::string_view text) {
    const std::optional<IsoTime> time = parseIsoTime(text);
    if (!time) {
        flags_ |= OTHER_TEXT;
        return;
    }
    flags_ |= time->kind == IsoTime::DATE ? DATE : time->kind == IsoTime::UTC ? UTC : NAIVE;
    timeFraction_ = std::max(timeFraction_, time->fraction);
    if (!unitsSince1970(*time, kNanoDigits)) {
        flags_ |= LONG_AGO;
    }
}

DataType ColumnFacts::type(bool dates) const {
    constexpr unsigned kTexts = DATE | NAIVE | UTC | OTHER_TEXT | LONG_AGO;
    if (flags_ == 0) {
        return {};
    }
    if ((flags_ & kTexts) != 0) {
        return dates ? timeType() : DataType{};
    }
    if (flags_ == BOOLEAN) {
        return {DataType::BOOLEAN};
    }
    if (flags_ == INSTANT) {
        DataType type = {DataType::TIMESTAMP, true};
        type.fraction = timeFraction_;
        return type;
    }
    return numberType();
}

DataType ColumnFacts::timeType() const {
    const unsigned kinds = flags_ & ~unsigned{LONG_AGO};
    if (kinds == DATE) {
        return {DataType::DATE};
    }
    // Times that need nanoseconds and lie where 64 bits have none.
    const bool tooLong = timeFraction_ > 6 && (flags_ & LONG_AGO) != 0;
    if ((kinds != UTC && kinds != NAIVE) || tooLong) {
        return {};
    }
    DataType type = {DataType::TIMESTAMP, kinds == UTC};
    type.fraction = timeFraction_;
    return type;
}

DataType ColumnFacts::numberType() const {
    if ((flags_ & (OTHER | INSTANT | NO_INSTANT)) == 0) {
        return {DataType::BIGINT};
    }
    if ((flags_ & INEXACT) == 0) {
        return {DataType::DOUBLE};
    }
    if ((flags_ & MINUS_ZERO) != 0 || whole_ + fraction_ > kMostDigits) {
        return {};
    }
    DataType type = {DataType::DECIMAL};
    type.scale = fraction_;
    type.precision = static_cast<uint8_t>(std::max(whole_ + fraction_, 1));
    return type;
}

}  // namespace qvej
