// See sheet.h.
#include "formats/xlsx/sheet.h"

#include "client/error.h"

#include <cstdio>
#include <utility>

namespace qvej {

namespace {

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// Does the text go on with what a cell takes for an escaped character, such as _x000D_?
bool isEscape(std::string_view text) {
    return text.size() >= 7 && text[0] == '_' && text[1] == 'x' && isHex(text[2]) &&
           isHex(text[3]) && isHex(text[4]) && isHex(text[5]) && text[6] == '_';
}

// U+FFFE and U+FFFF, which XML has not; the other one, U+0000, ends a text of the library.
bool isNoCharacter(std::string_view text) {
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

// As the library takes it: it escapes other control characters itself.
void appendCellText(std::string& to, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = text.substr(i);
        if (rest[0] == '\0') {
            to += "_x0000_";
        } else if (isEscape(rest)) {
            to += "_x005F_";
        } else if (isNoCharacter(rest)) {
            to += rest[2] == '\xBE' ? "_xFFFE_" : "_xFFFF_";
            i += 2;
        } else {
            to += rest[0];
        }
    }
}

}  // namespace

void Sheet::text(std::size_t column, std::string_view text, lxw_format* look) {
    buffer_.clear();
    appendCellText(buffer_, text);
    check(
        worksheet_write_string(sheet_, row_, static_cast<lxw_col_t>(column), buffer_.c_str(), look),
        column);
}

void Sheet::number(std::size_t column, double number, lxw_format* look) {
    check(worksheet_write_number(sheet_, row_, static_cast<lxw_col_t>(column), number, look),
          column);
}

void Sheet::boolean(std::size_t column, bool value) {
    check(worksheet_write_boolean(sheet_, row_, static_cast<lxw_col_t>(column), value ? 1 : 0,
                                  nullptr),
          column);
}

void Sheet::link(std::size_t column, const std::string& sheet) {
    const std::string target = "internal:'" + sheet + "'!A1";
    check(worksheet_write_url_opt(sheet_, row_, static_cast<lxw_col_t>(column), target.c_str(),
                                  looks_.link, sheet.c_str(), nullptr),
          column);
}

uint64_t Sheet::finish() {
    lxw_worksheet_write_single_row(sheet_);  // else it comes with the next one
    if (std::fflush(sheet_->optimize_tmpfile) != 0 || std::ferror(sheet_->optimize_tmpfile) != 0) {
        throw fileError(QV_IO_WRITE, shown_);
    }
    return static_cast<uint64_t>(::ftello(sheet_->optimize_tmpfile));
}

void Sheet::check(lxw_error code, std::size_t column) const {
    if (code == LXW_NO_ERROR) {
        return;
    }
    const std::string place =
        "row " + std::to_string(row_ + 1) + ", column " + std::to_string(column + 1) + ": ";
    throw Error(code == LXW_ERROR_MEMORY_MALLOC_FAILED ? QV_NOMEM : QV_IO_REFUSED,
                place + (code == LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED
                             ? "a cell of XLSX takes no text of more than 32767 characters"
                             : lxw_strerror(code)),
                shown_);
}

}  // namespace qvej
