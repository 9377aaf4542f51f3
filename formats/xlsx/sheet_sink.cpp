// See sheet_sink.h.
#include "formats/xlsx/sheet_sink.h"

#include "client/schema/typed_value.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kDigits = 15;    // of a whole number that a sheet keeps
constexpr double kDaysTo1970 = 25569;  // of a sheet, from its day 0
constexpr double kFirstDay = 61;       // 1900-03-01; sheets have a 1900-02-29 before it
constexpr double kMillisOfDay = 86400e3;

// As the library writes it, with 16 digits.
double written(double number) {
    char text[32];
    (void)std::snprintf(text, sizeof text, "%.16G", number);
    return std::strtod(text, nullptr);
}

}  // namespace

bool isTextInSheet(const Field& field) {
    switch (field.type.kind) {
        case DataType::BIGINT:
            return field.longest > kDigits;
        case DataType::DECIMAL:
            return true;
        case DataType::TIMESTAMP:
            return field.type.fraction > 3;
        default:
            return false;
    }
}

SheetSink::SheetSink(const TableSchema& table, Sheet sheet, SheetLosses& losses, uint64_t& bytes)
    : table_(table), sheet_(std::move(sheet)), losses_(losses), bytes_(bytes) {
    sheet_.freezeHeader();
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        const Field& field = table.fields[c];
        types_.push_back(field.type);
        if (isTextInSheet(field)) {
            types_.back().kind = DataType::TEXT;
        }
        names_.push_back(table.table->columns[c].name);
        sheet_.text(c, names_.back(), sheet_.looks().header);
    }
}

void SheetSink::row(const PassRow& row) {
    sheet_.begin(++row_);
    for (std::size_t c = 0; c < types_.size(); ++c) {
        const Cell cell = row.cell(c);
        if (hasValue(cell)) {
            put(c, cell);
        }
    }
}

void SheetSink::put(std::size_t column, const Cell& cell) {
    const DataType& type = types_[column];
    switch (type.kind) {
        case DataType::BOOLEAN:
            sheet_.boolean(column, booleanOf(cell));
            break;
        case DataType::BIGINT:
            putNumber(column, static_cast<double>(bigintOf(cell)));
            break;
        case DataType::DOUBLE:
            if (const double number = doubleOf(cell); std::isfinite(written(number))) {
                putNumber(column, number);
            } else {  // or its digits would be too large for a double
                sheet_.text(column, textOf(cell, type, buffer_));
            }
            break;
        case DataType::DATE:
            putDate(column, cell, daysOf(cell), sheet_.looks().date);
            break;
        case DataType::TIMESTAMP:
            putDate(column, cell, static_cast<double>(unitsOf(cell, 3)) / kMillisOfDay,
                    type.fraction == 0 ? sheet_.looks().time : sheet_.looks().millis);
            break;
        default:
            // An instant of a number is shown as its type says.
            sheet_.text(column, textOf(cell, table_.fields[column].type, buffer_));
    }
}

void SheetSink::putNumber(std::size_t column, double number) {
    if (written(number) != number) {
        losses_.rounded.insert(table_.table->name + "." + names_[column]);
    }
    sheet_.number(column, number);
}

void SheetSink::putDate(std::size_t column, const Cell& cell, double days, lxw_format* look) {
    if (days + kDaysTo1970 >= kFirstDay) {
        sheet_.number(column, days + kDaysTo1970, look);
        return;
    }
    losses_.oldDates.insert(table_.table->name + "." + names_[column]);
    sheet_.text(column, textOf(cell, types_[column], buffer_));
}

}  // namespace qvej
