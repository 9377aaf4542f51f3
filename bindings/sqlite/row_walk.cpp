// See row_walk.h.
#include "bindings/sqlite/row_walk.h"

#include <utility>

namespace qvej::sqlite {

namespace {

constexpr int64_t kNonePassed = -1;  // ordinals are counts

}  // namespace

RowWalk::RowWalk(std::shared_ptr<const OpenFile> file, std::size_t table)
    : file_(std::move(file)), table_(table) {}

void RowWalk::begin(const OrdinalRange& range) {
    const bool goesOn =
        pass_ != nullptr && range.column && range.column == range_.column && range.low > passed_;
    range_ = range;
    const TableSchema& of = schema();
    single_ = range.low == range.high && of.key && range.column == of.own;
    handed_ = false;
    if (!goesOn) {
        restart();
    }
}

void RowWalk::restart() {
    pass_.reset();  // its threads end before others begin
    row_ = std::make_unique<PassRow>(file_->document(), *schema().table);
    pass_ = std::make_unique<TablePass>(file_->document(), std::vector{schema().table});
    at_ = BEFORE;
    passed_ = kNonePassed;
}

int64_t RowWalk::ordinal() const {
    return range_.column ? static_cast<int64_t>(row_->cell(*range_.column).count) : 0;
}

// To the next row of the table.
bool RowWalk::fetch() {
    if (at_ == AT_ROW) {
        passed_ = ordinal();
    }
    at_ = AT_END;
    try {
        for (PassItem item; pass_->next(item);) {
            if (row_->take(item)) {
                at_ = AT_ROW;
                return true;
            }
        }
    } catch (...) {
        pass_.reset();
        throw;
    }
    return false;
}

bool RowWalk::next() {
    if (handed_ && single_) {
        return false;  // the row stays, for it may be asked for again
    }
    if ((handed_ || at_ == BEFORE) && !fetch()) {
        return false;
    }
    while (at_ == AT_ROW && range_.column && ordinal() < range_.low) {
        fetch();
    }
    handed_ = at_ == AT_ROW && (!range_.column || ordinal() <= range_.high);
    return handed_;
}

}  // namespace qvej::sqlite
