// See cursor.h.
#include "client/cursor.h"

#include "client/error.h"

#include <utility>

namespace qvej {

Cursor::Cursor(const Document& document, const Table& table, bool retain, RejectHandler onReject)
    : CellValues(document, table, std::move(onReject)) {
    open(retain);
    observer_.arg = this;
    observer_.notNumber = [](void* arg, QVStrSize column, const char* text, QVStrSize textLen) {
        static_cast<Cursor*>(arg)->takeNotNumber(static_cast<std::size_t>(column),
                                                 {text, static_cast<std::size_t>(textLen)});
    };
    observer_.raw = [](void* arg, QVStrSize column, int32_t kind, QVStatus status) {
        static_cast<Cursor*>(arg)->takeRawText(static_cast<std::size_t>(column), kind, status);
    };
    jmapObserve(handle_, &observer_);
}

Cursor::~Cursor() {
    (void)document().operations()->ReadTerm(handle_);  // only read from: nothing can be lost
}

void Cursor::open(bool retain) {
    if (document().hasSourceColumn()) {
        throw Error(QV_UNSUPPORTED, "a cursor has no column of the names of texts");
    }
    offsets_.resize(columns().size());
    QVEJMAPReadInitParms parms = {retain ? uint64_t{QVEJMAP_RETAIN} : 0};
    check(jmapReadTable(document().handle(), table().handle, &parms, &handle_));
    row_ = handle_->obsbuf;
    for (std::size_t i = 0; i < offsets_.size(); ++i) {
        offsets_[i] = static_cast<std::size_t>(handle_->varinfo[i].offset);
    }
}

// After a block that cannot be loaded Read goes on with the next one, and rows would be missing
// without a word.  So a failure stays.
bool Cursor::read() {
    if (failure_ == nullptr) {
        const QVStatus status = document().operations()->Read(handle_);
        if (status == QV_OK && failure_ == nullptr) {
            return true;
        }
        forgetNotNumbers();
        if (status == QV_EOF && failure_ == nullptr) {
            return false;
        }
        if (failure_ == nullptr) {
            failure_ = std::make_exception_ptr(Error(status));
        }
    }
    std::rethrow_exception(failure_);
}

bool Cursor::next() {
    if (!read()) {
        return false;
    }
    endRow();
    for (Converted* converted : withInformat()) {
        const VARIABLEINFO& info = handle_->varinfo[converted->column];
        convert(*converted, {info.rawdata, static_cast<std::size_t>(info.rawdataLen)});
    }
    return true;
}

void Cursor::reset() {
    check(document().operations()->ReadReset(handle_));
    failure_ = nullptr;
    restart();
}

// Called within Read, through which no exception may pass.
void Cursor::takeNotNumber(std::size_t column, std::string_view text) noexcept {
    try {
        const uint64_t missing = QVEJMAP_MISSING_BITS;
        std::memcpy(handle_->obsbuf + offsets_[column], &missing, sizeof missing);
        VARIABLEINFO& info = handle_->varinfo[column];
        info.badNumData = 0;  // the value is reported here
        info.badNumMsgOutput = 1;
        notNumber(column, text);
    } catch (...) {
        failure_ = std::current_exception();
    }
}

void Cursor::takeRawText(std::size_t column, int32_t kind, QVStatus status) noexcept {
    Converted* converted = place(column).converted;
    if (converted != nullptr) {
        converted->kind = kind;
        converted->fresh = true;
    }
    if (status != QV_OK) {
        failure_ = std::make_exception_ptr(Error(status));
    }
}

}  // namespace qvej
