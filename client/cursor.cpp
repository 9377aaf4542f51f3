// See cursor.h.
#include "client/cursor.h"

#include "client/error.h"
#include "client/user_map.h"

#include <algorithm>
#include <utility>

namespace qvej {
namespace {

constexpr std::string_view kNotNumber = "not a number";
constexpr std::size_t kMostPending = 10000;  // values of one row, so that memory is bounded

}  // namespace

Cursor::Cursor(const Document& document, const Table& table, bool retain, RejectHandler onReject)
    : document_(document), table_(table), onReject_(std::move(onReject)) {
    open(retain);
    try {
        openConversions();
    } catch (...) {
        (void)document_.operations()->ReadTerm(handle_);  // the first failure is the one to report
        throw;
    }
    observer_.arg = this;
    observer_.notNumber = [](void* arg, QVStrSize column, const char* text, QVStrSize textLen) {
        static_cast<Cursor*>(arg)->notNumber(static_cast<std::size_t>(column),
                                             {text, static_cast<std::size_t>(textLen)});
    };
    observer_.raw = [](void* arg, QVStrSize column, int32_t kind, QVStatus status) {
        static_cast<Cursor*>(arg)->rawText(static_cast<std::size_t>(column), kind, status);
    };
    jmapObserve(handle_, &observer_);
}

Cursor::~Cursor() {
    (void)document_.operations()->ReadTerm(handle_);  // only read from: nothing can be lost
}

void Cursor::open(bool retain) {
    QVEJMAPReadInitParms parms = {retain ? uint64_t{QVEJMAP_RETAIN} : 0};
    check(jmapReadTable(document_.handle(), table_.handle, &parms, &handle_));
    row_ = handle_->obsbuf;
    const auto count = static_cast<std::size_t>(handle_->varCount);
    places_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const VARIABLEINFO& v = handle_->varinfo[i];
        places_.push_back({static_cast<std::size_t>(v.offset), static_cast<std::size_t>(v.length),
                           v.vartype == VARTYPE_NUMERIC, nullptr});
    }
    if (!document_.codec().isUtf8()) {
        scratch_.resize(count);
    }
}

void Cursor::openConversions() {
    const Engine& engine = document_.engine();
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const Column& column = table_.columns[i];
        if (column.informat.name.empty() && column.format.name.empty()) {
            continue;
        }
        auto converted = std::make_unique<Converted>();
        converted->column = i;
        handle_->varinfo[i].informatBad = 1;       // until it is there
        if (column.type != ColumnType::ORDINAL) {  // a count has no text to read
            converted->informat = openInformat(engine, column);
        }
        handle_->varinfo[i].informatBad = 0;
        converted->format = openFormat(engine, column);
        places_[i].converted = converted.get();
        converted_.push_back(std::move(converted));
    }
}

bool Cursor::next() {
    const QVStatus status = document_.operations()->Read(handle_);
    if (failure_ != nullptr) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
    ++rows_;
    if (status == QV_OK) {
        reportPending();
    }
    pending_.clear();
    if (status == QV_EOF) {
        return false;
    }
    check(status);
    for (const auto& converted : converted_) {
        if (converted->informat != nullptr) {
            convert(*converted);
        }
    }
    return true;
}

void Cursor::reportPending() {
    std::string decoded;
    for (const Pending& pending : pending_) {
        handle_->varinfo[pending.column].badNumData = 0;
        reject(pending.column, document_.codec().decode(pending.text, decoded), kNotNumber);
    }
}

void Cursor::reset() {
    check(document_.operations()->ReadReset(handle_));
    rows_ = 0;
}

// Brings the value of a column from its raw text.
void Cursor::convert(Converted& converted) {
    VARIABLEINFO& info = handle_->varinfo[converted.column];
    const bool fresh = std::exchange(converted.fresh, false);
    if (!fresh && info.rawdataLen != 0) {
        return;  // a value that the column keeps
    }
    converted.missing = true;
    converted.text.clear();
    if (!fresh || converted.kind == JMAP_KIND_NULL) {
        return;
    }
    std::string decoded;
    const std::string_view text = document_.codec().decode(
        {info.rawdata, static_cast<std::size_t>(info.rawdataLen)}, decoded);
    if (info.vartype == VARTYPE_NUMERIC) {
        convertNumber(converted, text);
    } else {
        convertText(converted, text);
    }
}

void Cursor::convertNumber(Converted& converted, std::string_view text) {
    QVInformath informat = converted.informat.get();
    const QVStatus status = informat->toNumber(
        informat, text.data(), static_cast<QVStrSize>(text.size()), &converted.number);
    converted.missing = status != QV_OK;
    if (status == QV_OK) {
        return;
    }
    if (!table_.columns[converted.column].quiet) {
        reject(converted.column, text,
               status == QV_FMT_VALUE ? informat->refusal : qvStatusText(status));
    }
    handle_->varinfo[converted.column].rawdataLen =
        0;  // a column that keeps its value has none to keep now
}

void Cursor::convertText(Converted& converted, std::string_view text) {
    QVInformath informat = converted.informat.get();
    const char* out = nullptr;
    QVStrSize outLen = 0;
    check(informat->toText(informat, text.data(), static_cast<QVStrSize>(text.size()), &out,
                           &outLen));
    std::string_view result(out, static_cast<std::size_t>(outLen));
    const Column& column = table_.columns[converted.column];
    if (!column.lengthFromDocument) {
        result = document_.codec().isUtf8() ? withoutUnfinished(result.substr(0, column.length))
                                            : firstCharacters(result, column.length);
    }
    converted.text = withoutPadding(result, true);
}

// Called within Read, through which no exception may pass.  The row is told of when it is complete:
// only then it has all its ordinals.
void Cursor::notNumber(std::size_t column, std::string_view text) noexcept {
    try {
        const uint64_t missing = QVEJMAP_MISSING_BITS;
        std::memcpy(handle_->obsbuf + places_[column].offset, &missing, sizeof missing);
        handle_->varinfo[column].badNumMsgOutput = 1;
        pending_.push_back({column, std::string(text)});
        if (pending_.size() == kMostPending) {
            ++rows_;  // the row that is being made
            reportPending();
            --rows_;
            pending_.clear();
        }
    } catch (...) {
        failure_ = std::current_exception();
    }
}

void Cursor::rawText(std::size_t column, int32_t kind, QVStatus status) noexcept {
    Converted* converted = places_[column].converted;
    if (converted != nullptr) {
        converted->kind = kind;
        converted->fresh = true;
    }
    if (status != QV_OK) {
        failure_ = std::make_exception_ptr(Error(status));
    }
}

void Cursor::reject(std::size_t column, std::string_view text, std::string_view reason) {
    if (onReject_) {
        onReject_(*this, {column, rows_, text, reason});
    }
}

Cell Cursor::convertedCell(const Place& place) const {
    const Converted& converted = *place.converted;
    if (converted.informat != nullptr && !place.numeric) {
        return {Cell::TEXT, 0, converted.text};
    }
    Cell cell = number(row_ + place.offset);
    if (converted.informat != nullptr) {
        cell = {converted.missing ? Cell::MISSING : Cell::NUMBER, converted.number, {}};
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

std::string_view Cursor::text(std::size_t column, std::string_view cell) const {
    const TextCodec& codec = document_.codec();
    const std::string_view bytes = withoutPadding(cell, codec.isUtf8());
    return codec.isUtf8() ? bytes : codec.decode(bytes, scratch_[column]);
}

uint64_t copyRows(Cursor& cursor, Sink& sink, uint64_t limit) {
    sink.begin(cursor.columns());
    uint64_t rows = 0;
    while (rows < limit && cursor.next()) {
        sink.row(cursor);
        ++rows;
    }
    sink.end();
    return rows;
}

}  // namespace qvej
