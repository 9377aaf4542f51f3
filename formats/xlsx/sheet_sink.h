// The rows of one table as those of a sheet.
//
//     whole numbers   numbers up to 15 digits; a column with longer ones is text
//     other numbers   numbers, of 16 digits at most; those that no double keeps are text
//     dates, times    numbers that are shown as dates from 1900-03-01 on, else text; instants in
//                     UTC; text when there are more than three digits after the second
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "client/schema/schema.h"
#include "formats/sink.h"
#include "formats/xlsx/sheet.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace qvej {

// Columns whose cells are not what their type says, by name.
struct SheetLosses {
    std::set<std::string> rounded;   // numbers of 17 digits
    std::set<std::string> oldDates;  // texts, since sheets have no such date
};

// Are the values of the column texts though they are numbers or times?
[[nodiscard]] bool isTextInSheet(const Field& field);

class SheetSink final : public Sink {
   public:
    // All must outlive the sink; `bytes` gets what the sheet has.
    SheetSink(const TableSchema& table, Sheet sheet, SheetLosses& losses, uint64_t& bytes);

    void row(const PassRow& row) override;
    void end() override { bytes_ = sheet_.finish(); }

   private:
    void put(std::size_t column, const Cell& cell);
    void putNumber(std::size_t column, double number);
    void putDate(std::size_t column, const Cell& cell, double days, lxw_format* look);

    const TableSchema& table_;
    std::vector<DataType> types_;  // of each column, as the sheet has it
    std::vector<std::string> names_;
    Sheet sheet_;
    SheetLosses& losses_;
    uint64_t& bytes_;
    lxw_row_t row_ = 0;
    std::string buffer_;
};

}  // namespace qvej
