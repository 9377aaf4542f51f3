// One row for each format; the row says by which routine a number is written.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/formats.h"

#include "host/fmt/calendar.h"
#include "host/fmt/catalogue.h"
#include "host/fmt/numbers.h"
#include "host/fmt/pattern.h"
#include "host/host_object.h"
#include "host/rim.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace qvhost {
namespace {

constexpr uint64_t kWidthMax = 32767;  // the longest character column

struct Format;

struct Row {
    const char* name;
    const char* purpose;
    // Appends to the text of the format, nothing when it fails.
    QVStatus (*write)(Format&, double value);
    uint64_t decimalsMax;

    static constexpr bool numeric() noexcept { return true; }
};

struct Format : QVFormat {
    Format(QVHndlp host, std::string_view name, const Row& itsRow, uint64_t itsWidth,
           uint64_t itsDecimals, std::optional<Pattern> itsPattern);

    const Row& row;
    std::size_t width;
    uint64_t decimals;
    std::optional<Pattern> pattern;
    std::string text;  // of the last number
    HostObject entry;
};

QVStatus plain(Format& fmt, double value) {
    appendPlain(value, fmt.text);
    return QV_OK;
}

template <auto Append>
QVStatus rounded(Format& fmt, double value) {
    Append(value, fmt.decimals, fmt.text);
    return QV_OK;
}

QVStatus hex(Format& fmt, double value) {
    return appendHex(value, fmt.text);
}

QVStatus isoDate(Format& fmt, double value) {
    if (std::isfinite(value) && std::trunc(value) != value) {
        return QV_FMT_VALUE;
    }
    const auto day = dayOfNumber(value);
    if (!day) {
        return QV_FMT_RANGE;
    }
    appendIsoDate(*day, fmt.text);
    return QV_OK;
}

QVStatus isoDateTime(Format& fmt, double value) {
    const auto moment = momentOfNumber(value);
    if (!moment) {
        return QV_FMT_RANGE;
    }
    appendIsoDateTime(*moment, fmt.decimals, fmt.text);
    return QV_OK;
}

QVStatus isoTime(Format& fmt, double value) {
    const auto moment = momentOfNumber(value);
    if (!moment || value < 0 || moment->time_since_epoch() >= std::chrono::hours(24)) {
        return QV_FMT_RANGE;
    }
    appendIsoTime(moment->time_since_epoch(), fmt.decimals, fmt.text);
    return QV_OK;
}

QVStatus byPattern(Format& fmt, double value) {
    return fmt.pattern->write(value, fmt.text);
}

constexpr uint64_t kFractionMax = 6;  // microseconds

constexpr Row kRows[] = {
    {"number", "the shortest form", &plain, 0},
    {"fixed", "as many decimals as given: 3.10", &rounded<&appendFixed>, kDecimalsMax},
    {"comma", "with commas: 1,234,567.50", &rounded<&appendGrouped>, kDecimalsMax},
    {"percent", "as a percentage: 12.5%", &rounded<&appendPercent>, kDecimalsMax},
    {"hex", "a whole number in hexadecimal: ff", &hex, 0},
    {"date", "days since 1970 as a date: 2024-02-29", &isoDate, 0},
    {"datetime", "seconds since 1970: 2024-02-29T13:05:00", &isoDateTime, kFractionMax},
    {"time", "seconds since midnight: 13:05:00", &isoTime, kFractionMax},
};

constexpr Row kPatternRow = {"%", "", &byPattern, 0};

// Blanks in front, up to so many characters.
void padTo(std::size_t width, std::string& text) {
    const auto characters = static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
    text.insert(0, width > characters ? width - characters : 0, ' ');
}

QVStatus toText(QVFormath self, double value, const char** out, QVStrSize* outLen) {
    auto& fmt = *static_cast<Format*>(self);
    fmt.text.clear();
    const QVStatus status = std::isnan(value) ? QV_OK : fmt.row.write(fmt, value);
    if (status == QV_FMT_VALUE || status == QV_FMT_RANGE) {
        appendPlain(value, fmt.text);
    } else if (status != QV_OK) {
        return status;
    }
    padTo(fmt.width, fmt.text);
    *out = fmt.text.data();
    *outLen = static_cast<QVStrSize>(fmt.text.size());
    return status;
}

QVStatus destroy(QVGeneric* self) {
    delete static_cast<Format*>(reinterpret_cast<QVFormat*>(self));
    return QV_OK;
}

Format::Format(QVHndlp host, std::string_view name, const Row& itsRow, uint64_t itsWidth,
               uint64_t itsDecimals, std::optional<Pattern> itsPattern)
    : QVFormat{{{'f', 'r', 'm', 't'}, 0, &Rim<&destroy>::call}, &Rim<&qvhost::toText>::call},
      row(itsRow),
      width(static_cast<std::size_t>(itsWidth)),
      decimals(itsDecimals),
      pattern(std::move(itsPattern)),
      entry(host, ObjectKind::FORMAT, generic, name) {}

}  // namespace

QVStatus openFormat(QVHndlp host, bool numeric, std::string_view name, uint64_t width,
                    uint64_t decimals, QVFormath* format) {
    if (!numeric) {
        return QV_FMT_TYPE;
    }
    const bool byPattern = name.starts_with(kPatternBegin);
    const Row* row = byPattern ? &kPatternRow : findRow(kRows, name);
    if (row == nullptr) {
        return QV_FMT_NAME;
    }
    std::optional<Pattern> pattern;
    if (byPattern && !(pattern = Pattern::make(name, Pattern::Use::WRITE))) {
        return QV_FMT_PATTERN;
    }
    if (decimals > row->decimalsMax || width > kWidthMax) {
        return QV_FMT_WIDTH;
    }
    *format = new Format(host, name, *row, width, decimals, std::move(pattern));
    return QV_OK;
}

QVStatus formatAt(QVStrSize index, QVFMTEntry* entry) noexcept {
    return rowAt(kRows, index, entry);
}

}  // namespace qvhost
