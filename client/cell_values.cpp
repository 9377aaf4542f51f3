// See cell_values.h.
#include "client/cell_values.h"

#include "client/error.h"
#include "client/user_map.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <system_error>
#include <utility>

namespace qvej {
namespace {

constexpr std::string_view kNotNumber = "not a number";
constexpr std::string_view kTooLong = "longer than 32767 bytes";  // of a text for a number
constexpr std::string_view kRounded = "rounded to what a double keeps";
constexpr std::size_t kLongestText = 32767;  // bytes that a record keeps
constexpr std::size_t kMostPending = 10000;  // values of one row, so that memory is bounded

// Adds `places` to the exponent of a number's text.  An exponent that no integer holds stays: the
// number is infinite or 0 in any case.
void movePoint(std::string& number, int64_t places) {
    const std::size_t end = std::min(number.find_first_of("eE"), number.size());
    const char* const begin = number.data() + std::min(end + 1, number.size());
    int64_t exponent = 0;
    const auto error = std::from_chars(begin, number.data() + number.size(), exponent).ec;
    if (places != 0 && error != std::errc::result_out_of_range) {
        number.replace(end, std::string::npos, "e" + std::to_string(exponent + places));
    }
}

}  // namespace

CellValues::CellValues(const Document& document, const Table& table, RejectHandler onReject)
    : document_(document),
      table_(table),
      onReject_(std::move(onReject)),
      utf8_(document.codec().isUtf8()) {
    places_.reserve(table.columns.size());
    for (const Column& column : table.columns) {
        const bool numeric =
            column.type == ColumnType::ORDINAL || column.type == ColumnType::NUMERIC;
        const bool boolean = column.logicalType == LogicalType::BOOLEAN;
        places_.push_back({column.length, numeric, boolean, nullptr});
    }
    if (!utf8_) {
        scratch_.resize(places_.size());
    }
    openConversions();
}

void CellValues::openConversions() {
    const Engine& engine = document_.engine();
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const Column& column = table_.columns[i];
        if (column.informat.name.empty() && column.format.name.empty()) {
            continue;
        }
        auto converted = std::make_unique<Converted>();
        converted->column = i;
        if (column.type != ColumnType::ORDINAL) {  // a count has no text to read
            converted->informat = openInformat(engine, column);
        }
        converted->format = openFormat(engine, column);
        if (converted->informat != nullptr) {
            withInformat_.push_back(converted.get());
        }
        places_[i].converted = converted.get();
        converted_.push_back(std::move(converted));
    }
}

// The value is reported when its row is complete: only then the row has all its ordinals.
void CellValues::notNumber(std::size_t column, std::string_view text) {
    pending_.push_back({column, std::string(text)});
    if (pending_.size() == kMostPending) {
        reportPending(rows_ + 1);
    }
}

void CellValues::reportPending(uint64_t row) {
    std::string decoded;
    for (const Pending& pending : pending_) {
        // Only the length shows that a text was cut.  No text of that length is taken for a number.
        reject({pending.column, row, document_.codec().decode(pending.text, decoded),
                pending.text.size() < kLongestText ? kNotNumber : kTooLong, false});
    }
    pending_.clear();
}

void CellValues::wasCut(std::size_t column, std::string_view text) {
    const std::string reason = "cut to " + std::to_string(places_[column].length) + " bytes";
    const std::string whole = document_.codec().decoded(text);
    // The record may hold only its beginning.
    reject({column, rows_, utf8_ ? withoutUnfinished(whole) : whole, reason, true});
}

void CellValues::convert(Converted& converted, std::string_view raw) {
    const bool fresh = std::exchange(converted.fresh, false);
    if (!fresh && !raw.empty()) {
        return;  // a value that the column keeps
    }
    converted.missing = true;
    converted.cut = false;
    converted.text.clear();
    if (!fresh || converted.kind == JMAP_KIND_NULL) {
        return;
    }
    std::string decoded;
    const std::string_view text = document_.codec().decode(raw, decoded);
    if (places_[converted.column].numeric && converted.kind == JMAP_CELL_CUT) {
        refuse(converted, text, kTooLong);
    } else if (places_[converted.column].numeric) {
        convertNumber(converted, text);
    } else {
        convertText(converted, text);
    }
}

void CellValues::convertNumber(Converted& converted, std::string_view text) {
    QVInformath informat = converted.informat.get();
    const QVStatus status = informat->toNumber(
        informat, text.data(), static_cast<QVStrSize>(text.size()), &converted.number);
    converted.missing = status != QV_OK;
    if (status != QV_OK) {
        refuse(converted, text,
               status == QV_FMT_VALUE   ? informat->refusal
               : status == QV_FMT_RANGE ? "out of range"
                                        : qvStatusText(status));
    }
    // Numbers of JSON that lose digits are reported with the document.
    if (status == QV_OK && converted.kind == JMAP_KIND_STRING) {
        tellRounded(converted, text);
    }
}

// Reports a value, unless the map has "?" before the informat.
void CellValues::refuse(const Converted& converted, std::string_view text,
                        std::string_view reason) {
    if (!table_.columns[converted.column].quiet) {
        reject({converted.column, rows_, text, reason, false});
    }
}

// Reports digits that a double loses.  Only the informats for numbers take so many digits.
void CellValues::tellRounded(const Converted& converted, std::string_view text) {
    constexpr std::size_t kAlwaysKept = 15;
    const Column& column = table_.columns[converted.column];
    const bool percent = equalIgnoringCase(column.informat.name, "percent");
    if (text.size() <= kAlwaysKept ||
        !(percent || equalIgnoringCase(column.informat.name, "number") ||
          equalIgnoringCase(column.informat.name, "comma"))) {
        return;
    }
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c != ',' && c != '%' && c != '+' && c != ' '; });
    const bool point = digits.find('.') != std::string::npos;
    movePoint(digits,
              (percent ? -2 : 0) - (point ? 0 : static_cast<int64_t>(column.informat.decimals)));
    if (jmapIsInexact(document_.handle(), digits.data(), static_cast<QVStrSize>(digits.size())) !=
        0) {
        reject({converted.column, rows_, text, kRounded, true});
    }
}

void CellValues::convertText(Converted& converted, std::string_view text) {
    QVInformath informat = converted.informat.get();
    const char* out = nullptr;
    QVStrSize outLen = 0;
    check(informat->toText(informat, text.data(), static_cast<QVStrSize>(text.size()), &out,
                           &outLen));
    const std::string_view result(out, static_cast<std::size_t>(outLen));
    const Column& column = table_.columns[converted.column];
    std::string_view kept = result;
    if (!column.lengthFromDocument) {
        kept = utf8_ ? withoutUnfinished(result.substr(0, column.length))
                     : firstCharacters(result, column.length);
    }
    converted.missing = false;
    converted.cut = kept.size() < result.size();
    converted.text = kept;
}

void CellValues::reject(const Rejected& rejected) {
    if (onReject_) {
        onReject_(*this, rejected);
    }
}

Cell CellValues::convertedCell(const Place& place, const Cell& plain) const {
    const Converted& converted = *place.converted;
    Cell cell = plain;
    if (converted.informat != nullptr) {
        cell = converted.missing ? Cell{Cell::NUL}
               : place.numeric   ? Cell{Cell::NUMBER, converted.number}
                                 : Cell{Cell::TEXT, 0, converted.text};
    }
    if (cell.kind == Cell::NUMBER && converted.format != nullptr) {
        const char* text = nullptr;
        QVStrSize textLen = 0;
        // Also set when the number does not suit the format.
        if (converted.format->toText(converted.format.get(), cell.number, &text, &textLen) ==
            QV_OK) {
            cell.text = {text, static_cast<std::size_t>(textLen)};
        }
    }
    return cell;
}

}  // namespace qvej
