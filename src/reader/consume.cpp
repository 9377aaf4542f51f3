// What one record does to the row of an open table.
//
// Tested by tests/reader/consume_test.cpp
#include "consume.h"

#include "qvejmapx.h"

#include "column_index.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "number_cell.h"
#include "row_boundary.h"
#include "row_layout.h"
#include "scan/path_text.h"

#include <bit>
#include <cstring>

namespace jmap {
namespace {

std::string_view nameOf(const JMAP_READPRIVATE& rp) noexcept {
    return view(rp.dsname, rp.dsnameLen);
}

void storeDouble(const JMAP_READPRIVATE& rp, const ROWCOLUMN& column, double number) noexcept {
    storeBits(rp, column, std::bit_cast<uint64_t>(number));
}

// Copies as much of the text as the column holds.
void storeText(const JMAP_READPRIVATE& rp, const ROWCOLUMN& column,
               std::string_view text) noexcept {
    std::copy_n(text.data(), std::min<uint64_t>(text.size(), column.length), cellOf(rp, column));
}

// The note of a decision; null: none.
const QVChar* boundaryNote(BOUNDARY boundary) noexcept {
    switch (boundary) {
        case BOUNDARY::BEFORE:
            return nullptr;
        case BOUNDARY::FIRST:
            return U"consumePathOnly[%.*hs] tablePath [%.*hs] seen ONCE";
        case BOUNDARY::INSIDE:
            return U"consumePathOnly[%.*hs] path [%.*hs] contains tablePath [%.*hs] so NOT DONE";
        case BOUNDARY::AGAIN_EMPTY:
            return U"consumePathOnly[%.*hs] tablePath [%.*hs] seen TWICE but not inVariables";
        case BOUNDARY::AGAIN:
            return U"consumePathOnly[%.*hs] tablePath [%.*hs] seen TWICE so DONE";
        case BOUNDARY::SHORTER:
            return U"consumePathOnly[%.*hs] path [%.*hs] < tablePath [%.*hs] so DONE";
        case BOUNDARY::OUTSIDE:
            return U"consumePathOnly[%.*hs] path [%.*hs] doesn't contain tablePath [%.*hs] so DONE";
    }
    return nullptr;
}

// A note with one path shows the table path; the record has the same.
void noteBoundary(const JMAP_READPRIVATE& rp, BOUNDARY boundary, std::string_view path) {
    const QVChar* fmt = boundaryNote(boundary);
    if (fmt == nullptr) {
        return;
    }
    JMAP_PRIVATE* p = rp.p;
    const std::string_view name = nameOf(rp);
    const std::string_view a = shown(p, path);
    const std::string_view b = shown2(p, view(rp.tablePath, rp.tablePathLen));
    myLogNote(p, fmt, noteLen(lengthOf(name)), name.data(), noteLen(lengthOf(a)), a.data(),
              noteLen(lengthOf(b)), b.data());
}

void countOrdinal(JMAP_READPRIVATE* rp, ROWCOLUMN& column, std::string_view path) {
    column.ordinalValue += 1;
    storeDouble(*rp, column, static_cast<double>(column.ordinalValue));
    if (rp->ordinalsOnly) {
        rp->inVariables = true;  // in such a table counting makes a row
    }
    JMAP_PRIVATE* p = rp->p;
    if (p->debugRead) {
        const std::string_view name = nameOf(*rp);
        const std::string_view shownPath = shown(p, path);
        myLogNote(p, U"consumePathOnly[%.*hs] path[%.*hs] name[%.*hs] set to %ld",
                  noteLen(lengthOf(name)), name.data(), noteLen(lengthOf(shownPath)),
                  shownPath.data(), noteLen(column.nameLen), column.name,
                  static_cast<long>(column.ordinalValue));
    }
}

// State of storing one value into the columns of its path.
struct STORE {
    QVEJMAPReadContexth rctx;
    JMAP_READPRIVATE* rp;
    std::string_view value;
    VALTYPE kind;
    QVStatus status;  // of the last conversion to a number
    bool wordSeen;    // the value was a word for a column: later numeric columns are not noted
};

void noteStored(const STORE& store, const ROWCOLUMN& column) {
    JMAP_PRIVATE* p = store.rp->p;
    if (p->debugRead) {
        const std::string_view name = nameOf(*store.rp);
        myLogNote(p, U"consumePathVar [%.*hs] [%.*hs] set to [%.*hs]", noteLen(lengthOf(name)),
                  name.data(), noteLen(column.nameLen), column.name, noteLen(lengthOf(store.value)),
                  store.value.data());
    }
}

void noteWord(const STORE& store, const ROWCOLUMN& column, const WORD& word) {
    JMAP_PRIVATE* p = store.rp->p;
    if (p->debugRead) {
        const std::string_view name = nameOf(*store.rp);
        myLogNote(p, word.note, noteLen(lengthOf(name)), name.data(), noteLen(column.nameLen),
                  column.name);
    }
}

QVStatus keepRaw(const STORE& store, VARIABLEINFO& info) {
    const QVStrSize valueLen = lengthOf(store.value);
    if (info.rawdataAlloc < valueLen) {
        (void)poolFree(store.rp->rpool, info.rawdata);  // replaced even if this fails
        info.rawdataAlloc = 0;
        info.rawdataLen = 0;  // the earlier text is gone too
        info.rawdata = poolBytes(store.rp->rpool, 2 * valueLen);
        if (info.rawdata == nullptr) {
            return QV_NOMEM;
        }
        info.rawdataAlloc = 2 * valueLen;
    }
    std::copy_n(store.value.data(), valueLen, info.rawdata);
    info.rawdataLen = valueLen;
    return QV_OK;
}

// Keeps the text for the caller, which applies the informat.
QVStatus storeRaw(const STORE& store, uint32_t i) {
    const QVStatus rc = keepRaw(store, store.rctx->varinfo[i]);
    const JMAPReadObserver* observer = store.rp->observer;
    if (observer != nullptr) {
        observer->raw(observer->arg, i, store.kind, rc);
    }
    QV_TRY(rc);
    store.rp->inVariables = true;
    return QV_OK;
}

// Kept: a column flagged as bad holds 0, as the conversion gave it, and not the missing value.
void flagBad(const STORE& store, uint32_t i) {
    store.rctx->varinfo[i].badNumData = true;
    const JMAPReadObserver* observer = store.rp->observer;
    if (observer != nullptr) {
        observer->notNumber(observer->arg, i, store.value.data(), lengthOf(store.value));
    }
}

// Returns QV_OK unless the call must end.  The status of the conversion goes into `store`.
QVStatus storeNumber(STORE& store, uint32_t i) {
    JMAP_READPRIVATE* rp = store.rp;
    const ROWCOLUMN& column = rp->varinfo[i];
    const NUMBERCELL number = numberCell(rp->p->smh, store.value);
    store.status = number.status;
    storeBits(*rp, column, number.bits);
    if (number.word != nullptr) {
        noteWord(store, column, *number.word);
        store.wordSeen = true;
    } else if (store.status == QV_OK || store.status == QV_NOTNUM) {
        if (store.status == QV_NOTNUM) {
            flagBad(store, i);
        }
        if (!store.wordSeen) {
            noteStored(store, column);
        }
    } else {
        return store.status;
    }
    rp->inVariables = true;
    return QV_OK;
}

void storeCharacter(const STORE& store, const ROWCOLUMN& column) {
    storeBlanks(*store.rp, column);
    if (store.kind != VAL_NULL) {
        storeText(*store.rp, column, store.value);
    }
    noteStored(store, column);
    store.rp->inVariables = true;
}

// Stores the value into column `i`.
QVStatus storeValue(STORE& store, uint32_t i) {
    const ROWCOLUMN& column = store.rp->varinfo[i];
    if (store.rctx->varinfo[i].informat != nullptr) {
        return storeRaw(store, i);
    }
    if (column.type == VAR_DOUBLE) {
        return storeNumber(store, i);
    }
    if (column.type == VAR_CHAR) {
        storeCharacter(store, column);
    }
    return QV_OK;
}

}  // namespace

QVStatus consumePathOnly(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen,
                         bool* done) {
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    const std::string_view recordPath = view(path, pathLen);
    const BOUNDARY boundary = rowBoundary(recordPath, view(rp->tablePath, rp->tablePathLen),
                                          rp->p->sep, rp->tablePathSeen, rp->inVariables);
    if (rp->p->debugRead) {
        noteBoundary(*rp, boundary, recordPath);
    }
    if (endsRow(boundary)) {
        *done = true;
        return QV_OK;
    }
    if (boundary == BOUNDARY::FIRST) {
        rp->tablePathSeen = true;
    }
    for (uint32_t i = firstColumn(*rp, recordPath); i != kNoColumn;
         i = nextColumn(*rp, i, recordPath)) {
        if (rp->varinfo[i].type == VAR_ORDINAL) {
            countOrdinal(rp, rp->varinfo[i], recordPath);
        }
    }
    return QV_OK;
}

QVStatus consumePathVar(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen,
                        const char* value, QVStrSize valueLen, bool* done, VALTYPE kind) {
    (void)done;
    if (kind == VAL_FAKEVARIABLE) {
        return QV_OK;
    }
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    const std::string_view recordPath = view(path, pathLen);
    STORE store = {rctx, rp, view(value, valueLen), kind, QV_OK, false};
    for (uint32_t i = firstColumn(*rp, recordPath); i != kNoColumn;
         i = nextColumn(*rp, i, recordPath)) {
        QV_TRY(storeValue(store, i));
    }
    return store.status;
}

QVStatus consumePathAlldata(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen,
                            const char* value, QVStrSize valueLen, bool* done, VALTYPE kind) {
    if (kind == VAL_FAKEVARIABLE) {
        return QV_OK;
    }
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    JMAP_PRIVATE* p = rp->p;
    if (p->labelCount == 0 && kind == VAL_NOVAL) {
        *done = false;
        return QV_OK;
    }
    *done = true;
    const QVStrSize flagColumn = p->labelCountMax + 2;
    if (rp->varCount <= flagColumn + 1) {
        return QV_OK;  // the table could not be laid out in full
    }
    storeDouble(*rp, rp->varinfo[0], p->labelCount);
    std::string_view rest = labelsOf(view(path, pathLen));
    const int32_t labels = std::min(p->labelCount, p->labelCountMax + 1);
    for (int32_t i = 0; i < labels; ++i) {
        storeText(*rp, rp->varinfo[i + 1], takeLabel(rest, p->labelCurLens[i]));
    }
    storeDouble(*rp, rp->varinfo[flagColumn], kind == VAL_NOVAL ? 0.0 : 1.0);
    storeText(*rp, rp->varinfo[flagColumn + 1], view(value, valueLen));
    return QV_OK;
}

}  // namespace jmap
