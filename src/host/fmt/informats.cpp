// One row for each informat; the row says by which routine a text is read.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/informats.h"

#include "host/fmt/calendar.h"
#include "host/fmt/catalogue.h"
#include "host/fmt/numbers.h"
#include "host/fmt/pattern.h"
#include "host/fmt/texts.h"
#include "host/host_object.h"
#include "host/rim.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace qvhost {
namespace {

struct Informat;

struct Row {
    const char* name;
    const char* purpose;
    const char* refusal;
    QVStatus (*number)(Informat&, std::string_view text, double* value);  // null: character
    QVStatus (*text)(Informat&, std::string_view text, std::string_view* out);
    bool takesDecimals = false;
    bool needsWidth = false;

    [[nodiscard]] constexpr bool numeric() const noexcept { return number != nullptr; }
};

struct Informat : QVInformat {
    Informat(QVHndlp host, std::string_view name, const Row& itsRow, uint64_t itsWidth,
             uint64_t itsDecimals, std::optional<Pattern> itsPattern);

    const Row& row;
    uint64_t width;  // 0: no limit
    uint64_t decimals;
    std::optional<Pattern> pattern;
    std::optional<CaseMapper> caseMapper;  // made by the first use
    std::string scratch;
    HostObject entry;
};

QVStatus store(std::optional<double> number, double* value) noexcept {
    if (!number) {
        return QV_FMT_VALUE;
    }
    *value = *number;
    return QV_OK;
}

// ---- Numeric columns: the text has no blanks around it ------------------------------------------

QVStatus plainNumber(Informat& inf, std::string_view text, double* value) {
    return store(readNumber(text, {.decimals = inf.decimals}, inf.scratch), value);
}

QVStatus groupedNumber(Informat& inf, std::string_view text, double* value) {
    return store(readNumber(text, {.grouped = true, .decimals = inf.decimals}, inf.scratch), value);
}

QVStatus percentNumber(Informat& inf, std::string_view text, double* value) {
    if (!text.ends_with('%')) {
        return QV_FMT_VALUE;
    }
    text.remove_suffix(1);
    return store(readNumber(withoutBlanksAround(text), {.pointMoved = -2, .decimals = inf.decimals},
                            inf.scratch),
                 value);
}

QVStatus hexNumber(Informat&, std::string_view text, double* value) {
    return readHex(text, *value);
}

QVStatus yesOrNo(Informat&, std::string_view text, double* value) {
    for (const char* word : {"no", "false", "0", "yes", "true", "1"}) {
        Scanner scanner(text);
        if (scanner.takeWord(word) && scanner.atEnd()) {
            *value = *word == 'y' || *word == 't' || *word == '1' ? 1 : 0;
            return QV_OK;
        }
    }
    return QV_FMT_VALUE;
}

QVStatus isoDate(Informat&, std::string_view text, double* value) {
    return store(readIsoDate(text), value);
}

QVStatus isoDateTime(Informat&, std::string_view text, double* value) {
    return store(readIsoDateTime(text), value);
}

QVStatus isoTime(Informat&, std::string_view text, double* value) {
    return store(readIsoTime(text), value);
}

// Beyond the years of four digits it is no count of seconds: milliseconds most often.
QVStatus unixTime(Informat& inf, std::string_view text, int64_t pointMoved, double* value) {
    const auto seconds = readNumber(text, {.pointMoved = pointMoved}, inf.scratch);
    if (seconds && !momentOfNumber(*seconds)) {
        return QV_FMT_RANGE;
    }
    return store(seconds, value);
}

QVStatus unixSeconds(Informat& inf, std::string_view text, double* value) {
    return unixTime(inf, text, 0, value);
}

QVStatus unixMillis(Informat& inf, std::string_view text, double* value) {
    return unixTime(inf, text, -3, value);
}

QVStatus byPattern(Informat& inf, std::string_view text, double* value) {
    return store(inf.pattern->read(text), value);
}

// ---- Character columns --------------------------------------------------------------------------

QVStatus sameText(Informat&, std::string_view text, std::string_view* out) {
    *out = text;  // the width has cut it
    return QV_OK;
}

QVStatus trimmed(Informat&, std::string_view text, std::string_view* out) {
    *out = withoutBlanksAround(text);
    return QV_OK;
}

template <auto Map>
QVStatus mapped(Informat& inf, std::string_view text, std::string_view* out) {
    if (!inf.caseMapper) {
        inf.caseMapper.emplace();
    }
    const QVStatus status = ((*inf.caseMapper).*Map)(text, inf.scratch);
    *out = inf.scratch;
    return status;
}

constexpr Row kRows[] = {
    {"number", "a number, blanks around it", "not a number", &plainNumber, nullptr, true},
    {"comma", "a number with commas: 1,234,567.5", "not a number with commas", &groupedNumber,
     nullptr, true},
    {"percent", "a percentage: 12.5% is 0.125", "not a percentage", &percentNumber, nullptr, true},
    {"hex", "a hexadecimal integer: ff or 0xFF", "not a hexadecimal integer", &hexNumber, nullptr},
    {"yesno", "yes, true, 1 are 1; no, false, 0 are 0", "not one of yes, no, true, false, 1, 0",
     &yesOrNo, nullptr},
    {"date", "a date of ISO 8601, in days since 1970", "not a date", &isoDate, nullptr},
    {"datetime", "a date and time of ISO 8601, in seconds since 1970", "not a date and time",
     &isoDateTime, nullptr},
    {"time", "a time of day, in seconds since midnight", "not a time of day", &isoTime, nullptr},
    {"unix", "seconds since 1970", "not a number of seconds", &unixSeconds, nullptr},
    {"unixms", "milliseconds since 1970, in seconds", "not a number of milliseconds", &unixMillis,
     nullptr},
    {"trim", "without blanks at both ends", "", nullptr, &trimmed},
    {"upper", "in upper case", "", nullptr, &mapped<&CaseMapper::upper>},
    {"lower", "in lower case", "", nullptr, &mapped<&CaseMapper::lower>},
    {"left", "the leftmost characters, as many as the width", "", nullptr, &sameText, false, true},
};

constexpr Row kPatternRow = {"%", "", "not a date or time of the pattern", &byPattern, nullptr};

// ---- The object ---------------------------------------------------------------------------------

std::string_view inputOf(const Informat& inf, const char* text, QVStrSize textLen) noexcept {
    const std::string_view whole(text, static_cast<std::size_t>(textLen));
    return inf.width == 0 ? whole : leftCharacters(whole, inf.width);
}

QVStatus toNumber(QVInformath self, const char* text, QVStrSize textLen, double* value) {
    auto& inf = *static_cast<Informat*>(self);
    if (!inf.row.numeric()) {
        return QV_FMT_TYPE;
    }
    return inf.row.number(inf, withoutBlanksAround(inputOf(inf, text, textLen)), value);
}

QVStatus toText(QVInformath self, const char* text, QVStrSize textLen, const char** out,
                QVStrSize* outLen) {
    auto& inf = *static_cast<Informat*>(self);
    if (inf.row.numeric()) {
        return QV_FMT_TYPE;
    }
    std::string_view result;
    const QVStatus status = inf.row.text(inf, inputOf(inf, text, textLen), &result);
    if (status == QV_OK) {
        *out = result.data();
        *outLen = static_cast<QVStrSize>(result.size());
    }
    return status;
}

QVStatus destroy(QVGeneric* self) {
    delete static_cast<Informat*>(reinterpret_cast<QVInformat*>(self));
    return QV_OK;
}

Informat::Informat(QVHndlp host, std::string_view name, const Row& itsRow, uint64_t itsWidth,
                   uint64_t itsDecimals, std::optional<Pattern> itsPattern)
    : QVInformat{{{'i', 'n', 'f', 'm'}, 0, &Rim<&destroy>::call},
                 0,
                 itsRow.refusal,
                 &Rim<&qvhost::toNumber>::call,
                 &Rim<&qvhost::toText>::call},
      row(itsRow),
      width(itsWidth),
      decimals(itsDecimals),
      pattern(std::move(itsPattern)),
      entry(host, ObjectKind::INFORMAT, generic, name) {}

}  // namespace

QVStatus openInformat(QVHndlp host, bool numeric, std::string_view name, uint64_t width,
                      uint64_t decimals, QVInformath* informat) {
    const bool byPattern = name.starts_with(kPatternBegin);
    const Row* row = byPattern ? &kPatternRow : findRow(kRows, name);
    if (row == nullptr) {
        return QV_FMT_NAME;
    }
    if (row->numeric() != numeric) {
        return QV_FMT_TYPE;
    }
    std::optional<Pattern> pattern;
    if (byPattern && !(pattern = Pattern::make(name, Pattern::Use::READ))) {
        return QV_FMT_PATTERN;
    }
    if (decimals > (row->takesDecimals ? kDecimalsMax : 0) || (row->needsWidth && width == 0) ||
        width > INT64_MAX) {  // what a map gives as a negative number
        return QV_FMT_WIDTH;
    }
    *informat = new Informat(host, name, *row, width, decimals, std::move(pattern));
    return QV_OK;
}

QVStatus informatAt(QVStrSize index, QVFMTEntry* entry) noexcept {
    return rowAt(kRows, index, entry);
}

}  // namespace qvhost
