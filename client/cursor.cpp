// See cursor.h.
#include "client/cursor.h"

#include "client/error.h"

namespace qvej {

Cursor::Cursor(const Document& document, const Table& table, bool retain)
    : document_(document), table_(table) {
    QVEJMAPReadInitParms parms = {retain ? uint64_t{QVEJMAP_RETAIN} : 0};
    check(jmapReadTable(document.handle(), table.handle, &parms, &handle_));
    row_ = handle_->obsbuf;
    const auto count = static_cast<std::size_t>(handle_->varCount);
    places_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const VARIABLEINFO& v = handle_->varinfo[i];
        places_.push_back({static_cast<std::size_t>(v.offset), static_cast<std::size_t>(v.length),
                           v.vartype == VARTYPE_NUMERIC});
    }
    if (!document.codec().isUtf8()) {
        scratch_.resize(count);
    }
}

Cursor::~Cursor() {
    (void)document_.operations()->ReadTerm(handle_);  // only read from: nothing can be lost
}

bool Cursor::next() {
    const QVStatus status = document_.operations()->Read(handle_);
    if (status == QV_EOF) {
        return false;
    }
    check(status);
    return true;
}

void Cursor::reset() {
    check(document_.operations()->ReadReset(handle_));
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
