// The columns of an open table and where each lies in the row buffer.
//
// Tested by tests/reader/row_layout_test.cpp
#include "row_layout.h"

#include "automap/map_dump.h"
#include "automap/path_parts.h"
#include "column_index.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "scan/path_text.h"

#include <algorithm>

namespace jmap {
namespace {

static_assert(sizeof(double) == kNumberBytes);

// Copies a text into the pool.
QVStatus copyText(QVPoolh pool, std::string_view text, char*& to, QVStrSize& toLen) {
    to = poolCopy(pool, text);
    if (to == nullptr) {
        return QV_NOMEM;
    }
    toLen = lengthOf(text);
    return QV_OK;
}

// Sets type and length, not yet capped.
void setType(const VARINFO& from, VARIABLEINFO& info, VARINFO& column,
             bool& ordinalsOnly) noexcept {
    column.type = from.type;
    switch (from.type) {
        case VAR_ORDINAL:
            info.vartype = VARTYPE_NUMERIC;
            column.retain = true;  // it shows its count in every row
            break;
        case VAR_DOUBLE:
            info.vartype = VARTYPE_NUMERIC;
            ordinalsOnly = false;
            break;
        case VAR_CHAR:
            info.vartype = VARTYPE_CHARACTER;
            ordinalsOnly = false;
            break;
        case VAR_FAKEVARIABLE:
            break;  // appears as a character column of the map's length
    }
    column.length =
        info.vartype == VARTYPE_NUMERIC ? kNumberBytes : std::min(from.length, kMaxCharLen);
    info.length = static_cast<QVStrSize>(column.length);
}

// Copies the path of a map's column as a text.
QVStatus copyPath(JMAP_READPRIVATE* rp, const VARINFO& from, VARINFO& column) {
    if (!from.inTree) {
        return from.path == nullptr ? QV_OK
                                    : copyText(rp->rpool, view(from.path, from.pathLen),
                                               column.path, column.pathLen);
    }
    column.path = poolBytes(rp->rpool, from.pathLen);
    if (column.path == nullptr) {
        return QV_NOMEM;
    }
    column.pathLen = from.pathLen;
    writePath(from.node, from.pathLen, column.path);
    return QV_OK;
}

QVStatus copyFormats(QVPoolh pool, const USERVARINFO& from, VARIABLEINFO& info) {
    if (from.informatLen != 0) {
        QV_TRY(
            copyText(pool, view(from.informat, from.informatLen), info.informat, info.informatLen));
        info.informatWidth = static_cast<QVStrSize>(from.informatWidth);
        info.informatDec = static_cast<QVStrSize>(from.informatDec);
        info.informatNoError = from.informatNoError;
    }
    if (from.formatLen != 0) {
        QV_TRY(copyText(pool, view(from.format, from.formatLen), info.format, info.formatLen));
        info.formatWidth = static_cast<QVStrSize>(from.formatWidth);
        info.formatDec = static_cast<QVStrSize>(from.formatDec);
    }
    return QV_OK;
}

// Makes one column in both structures, at `offset`.
QVStatus layoutColumn(JMAP_READPRIVATE* rp, const VARINFO& from, VARIABLEINFO& info,
                      ROWCOLUMN& column, uint64_t offset) {
    const std::string_view name = view(from.name, from.nameLen);
    QV_TRY(copyText(rp->rpool, name, info.name, info.nameLen));
    QV_TRY(copyText(rp->rpool, name, column.name, column.nameLen));
    QV_TRY(copyPath(rp, from, column));
    const USERVARINFO& user = userPartOf(from);
    info.labelLen = std::min(user.labelLen, static_cast<QVStrSize>(sizeof info.label));
    if (user.label != nullptr) {
        std::memcpy(info.label, user.label, static_cast<std::size_t>(info.labelLen));
    }
    setType(from, info, column, rp->ordinalsOnly);
    info.truncation = from.truncation;
    info.currentLength = static_cast<QVStrSize>(user.currentLength);
    QV_TRY(copyFormats(rp->rpool, user, info));
    if (from.retain) {
        column.retain = true;
    }
    // Kept: NORETAIN wins over the RETAIN flag of ReadInit and over that of an ordinal.  Notes show
    // the ordinal as not retained, although its cell is never cleared between rows.
    if (from.noretain) {
        column.retain = false;
    }
    column.offset = offset;
    info.offset = static_cast<QVStrSize>(offset);
    return QV_OK;
}

int precision(const char* text, QVStrSize textLen) noexcept {
    return text == nullptr ? 4 : noteLen(textLen);
}

const char* orNull(const char* text) noexcept {
    return text == nullptr ? "NULL" : text;
}

void dumpCallerColumn(JMAP_PRIVATE* p, const VARIABLEINFO& info) {
    myLogNote(p,
              U"rctx var %-20.*hs %-10s length %3ld offset %3ld informat [%.*hs %ld %ld] format "
              U"[%.*hs %ld %ld]",
              noteLen(info.nameLen), info.name, usertypeToString(info.vartype),
              static_cast<long>(info.length), static_cast<long>(info.offset),
              precision(info.informat, info.informatLen), orNull(info.informat),
              static_cast<long>(info.informatWidth), static_cast<long>(info.informatDec),
              precision(info.format, info.formatLen), orNull(info.format),
              static_cast<long>(info.formatWidth), static_cast<long>(info.formatDec));
}

void dumpPrivateColumn(JMAP_PRIVATE* p, const ROWCOLUMN& column) {
    const std::string_view path = shown(p, view(column.path, column.pathLen));
    myLogNote(p, U"rp   var %-20.*hs %-10s %-40.*hs length %3ld offset %3ld%hs",
              noteLen(column.nameLen), column.name, privateTypeToString(column.type),
              noteLen(lengthOf(path)), path.data(), static_cast<long>(column.length),
              static_cast<long>(column.offset), column.retain ? " RETAIN" : "");
}

}  // namespace

QVStatus layoutRow(QVEJMAPReadContexth rctx, const DSINFO& ds, uint64_t flags) {
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    const auto count = static_cast<QVStrSize>(ds.varcount);
    rctx->varCount = count;
    rp->varCount = count;
    rctx->varinfo = poolNew<VARIABLEINFO>(rp->rpool, count);
    rp->varinfo = poolNew<ROWCOLUMN>(rp->rpool, count);
    if (rctx->varinfo == nullptr || rp->varinfo == nullptr) {
        return QV_NOMEM;
    }
    rp->ordinalsOnly = true;
    uint64_t totOffset = 0;
    QVStrSize i = 0;
    for (const VARINFO& from : each(ds.vhead)) {
        ROWCOLUMN& column = rp->varinfo[i];
        column.retain = (flags & QVEJMAP_RETAIN) != 0;
        QV_TRY(layoutColumn(rp, from, rctx->varinfo[i], column, totOffset));
        totOffset += column.length;
        ++i;
    }
    rp->obsbufLen = static_cast<QVStrSize>(totOffset);
    rp->obsbuf = poolBytes(rp->rpool, rp->obsbufLen);
    rp->index = newColumnIndex(rp->rpool, rp->varinfo, count);
    rctx->obsbufLen = rp->obsbufLen;
    rctx->obsbuf = rp->obsbuf;
    return rp->obsbuf == nullptr || rp->index == nullptr ? QV_NOMEM : QV_OK;
}

void dumpLayout(QVEJMAPReadContexth rctx) {
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    JMAP_PRIVATE* p = rp->p;
    if (!p->debugReadInit) {
        return;
    }
    myLogNote(p, U" ");
    for (QVStrSize i = 0; i < rctx->varCount; ++i) {
        dumpCallerColumn(p, rctx->varinfo[i]);
    }
    myLogNote(p, U" ");
    for (QVStrSize i = 0; i < rp->varCount; ++i) {
        dumpPrivateColumn(p, rp->varinfo[i]);
    }
    myLogNote(p, U" ");
    const std::string_view tablePath = shown(p, view(rp->tablePath, rp->tablePathLen));
    myLogNote(p, U"tablePath %-40.*hs", noteLen(lengthOf(tablePath)), tablePath.data());
    myLogNote(p, U" ");
}

}  // namespace jmap
