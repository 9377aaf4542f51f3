// One sheet of a workbook, written row by row.
//
// A text is never taken for a formula, a link or a number.  The library keeps each row in a file of
// the sheet's own until the workbook is closed.
//
// Tested by tests/formats/full_disk.py and tests/formats/typed_files.py
#pragma once

#include <xlsxwriter.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

// Looks of cells; of the workbook.
struct SheetLooks {
    lxw_format* header;
    lxw_format* date;
    lxw_format* time;
    lxw_format* millis;  // a time with milliseconds
    lxw_format* link;
};

class Sheet {
   public:
    // `shown`: what messages call it.
    Sheet(lxw_worksheet* sheet, const SheetLooks& looks, std::string shown)
        : sheet_(sheet), looks_(looks), shown_(std::move(shown)) {}

    [[nodiscard]] const SheetLooks& looks() const { return looks_; }

    // The row that cells go to from now on, from 0; rows come in order.
    void begin(lxw_row_t row) { row_ = row; }

    // All of these throw Error.
    void text(std::size_t column, std::string_view text, lxw_format* look = nullptr);
    void number(std::size_t column, double number, lxw_format* look = nullptr);
    void boolean(std::size_t column, bool value);
    void link(std::size_t column, const std::string& sheet);

    // The first row stays in view.
    void freezeHeader() { worksheet_freeze_panes(sheet_, 1, 0); }

    // After the last row: the bytes that were written.  Throws when not all could be.
    [[nodiscard]] uint64_t finish();

   private:
    void check(lxw_error code, std::size_t column) const;

    lxw_worksheet* sheet_;
    const SheetLooks& looks_;
    std::string shown_;
    std::string buffer_;
    lxw_row_t row_ = 0;
};

}  // namespace qvej
