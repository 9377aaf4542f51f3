// The next row of an open table, from the record stream.
//
// Tested by tests/reader/row_loop_test.cpp
#include "row_loop.h"

#include "block_reader.h"
#include "column_index.h"
#include "consume.h"
#include "core/note.h"
#include "core/status.h"
#include "core/text.h"
#include "row_layout.h"
#include "scan/path_text.h"
#include "scan/record_format.h"

#include <algorithm>

namespace jmap {
namespace {

// Memory this far after the current record is prefetched.  The place of a record depends on the
// length of the one before it, so the processor does not prefetch by itself.
constexpr QVStrSize kPrefetchBytes = 2048;

// A note that shows the table's name.
void noteTable(const JMAP_READPRIVATE& rp, const QVChar* fmt) {
    if (rp.p->debugRead) {
        myLogNote(rp.p, fmt, noteLen(rp.dsnameLen), rp.dsname);
    }
}

// Clears every column, once in the life of a read context.
//   Kept: ReadReset does not clear them again, so retained columns begin with their last values.
void clearOnce(JMAP_READPRIVATE* rp) noexcept {
    if (rp->obsbufCleared) {
        return;
    }
    for (QVStrSize i = 0; i < rp->varCount; ++i) {
        const ROWCOLUMN& column = rp->varinfo[i];
        if (column.type == VAR_CHAR || column.type == VAR_FAKEVARIABLE) {
            storeBlanks(*rp, column);
        } else {
            storeBits(*rp, column, QVEJMAP_MISSING_BITS);
        }
    }
    rp->obsbufCleared = true;
}

// Clears the columns that are not retained.  An ordinal always shows its running count.
void startRow(QVEJMAPReadContexth rctx, JMAP_READPRIVATE* rp) noexcept {
    for (QVStrSize i = 0; i < rp->varCount; ++i) {
        const ROWCOLUMN& column = rp->varinfo[i];
        if (column.retain) {
            continue;
        }
        rctx->varinfo[i].rawdataLen = 0;
        if (column.type == VAR_DOUBLE) {
            storeBits(*rp, column, QVEJMAP_MISSING_BITS);
        } else if (column.type == VAR_CHAR) {
            storeBlanks(*rp, column);
        }
    }
    rp->tablePathSeen = false;
    rp->inVariables = false;
}

// Copies the label lengths of the record to the document context.
void storeLabels(JMAP_PRIVATE* p, const RECORD& record) noexcept {
    p->labelCount = record.labelCount;
    std::copy_n(record.labelLens, record.labelCount, p->labelCurLens);
}

void noteRecord(JMAP_PRIVATE* p, const RECORD& record) {
    const std::string_view text = view(record.text, record.textLen);
    const std::string_view path = shown(p, text);
    myLogNote(p, U"Read: path [%.*hs]", noteLen(lengthOf(path)), path.data());
    myLogNote(p, U"Read: p->labelCount %d valLen %d", p->labelCount, noteLen(record.valLen));
    std::string_view rest = labelsOf(text);
    for (int32_t i = 0; i < p->labelCount; ++i) {
        const std::string_view label = takeLabel(rest, p->labelCurLens[i]);
        myLogNote(p, U"  p%d %d [%.*hs]", i + 1, p->labelCurLens[i], noteLen(lengthOf(label)),
                  label.data());
    }
    if (record.valLen > 0) {
        const std::string_view value = valueOf(record);
        myLogNote(p, U"  valLen %d [%.*hs]", noteLen(record.valLen), noteLen(lengthOf(value)),
                  value.data());
    }
}

// Gives a record of an ordinary table to its consumer.  The status is ignored: bad numbers are
// flagged in their column.
void consume(QVEJMAPReadContexth rctx, JMAP_READPRIVATE* rp, const RECORD& record, bool* done) {
    JMAP_PRIVATE* p = rp->p;
    const std::string_view name = view(rp->dsname, rp->dsnameLen);
    const std::string_view path = pathOf(record);
    const std::string_view value = valueOf(record);
    if (record.kind == VAL_NOVAL) {
        if (p->debugRead) {
            const std::string_view shownPath = shown(p, path);
            myLogNote(p, U"consumePath    [%.*hs] [%.*hs]", noteLen(lengthOf(name)), name.data(),
                      noteLen(lengthOf(shownPath)), shownPath.data());
        }
        (void)consumePathOnly(rctx, path.data(), lengthOf(path), done);
        return;
    }
    if (p->debugRead) {
        const std::string_view shownPath = shown(p, path);
        myLogNote(p, U"consumePath    [%.*hs] [%.*hs] val [%.*hs]", noteLen(lengthOf(name)),
                  name.data(), noteLen(lengthOf(shownPath)), shownPath.data(),
                  noteLen(lengthOf(value)), value.data());
    }
    (void)consumePathVar(rctx, path.data(), lengthOf(path), value.data(), lengthOf(value), done,
                         record.kind);
}

// Replays the records of the block until one ends the row.  Returns whether one did.
//   The labels of a record are stored in the document only where they are read: for ALLDATA, for
//   notes, and for the last record of the call.
bool replayBlock(QVEJMAPReadContexth rctx, JMAP_READPRIVATE* rp) {
    JMAP_PRIVATE* p = rp->p;
    const bool noted = p->debugRead || p->debugAllData;
    BLOCKREADER& blocks = rp->blocks;
    const char* at = blocks.records + blocks.pBufi;
    const char* const end = blocks.records + blocks.pBufLen;
    const char* last = nullptr;
    bool done = false;
    while (!done && at < end) {
        __builtin_prefetch(at + kPrefetchBytes);
        const RECORD record = parseRecord(at);
        last = at;
        at += record.size;
        if (record.kind != VAL_NOVAL && !noted &&
            !mayHoldLength(*rp->index, pathOf(record).size()) && !rp->doAlldata) {
            continue;  // no column has a path of that length
        }
        if (noted || rp->doAlldata) {
            storeLabels(p, record);
        }
        if (p->debugAllData) {
            noteRecord(p, record);
        }
        if (!rp->doAlldata) {
            consume(rctx, rp, record, &done);
            if (done) {
                at = last;  // it belongs to the next row
            }
        } else if (record.kind != VAL_FAKEVARIABLE) {
            const std::string_view value = valueOf(record);
            (void)consumePathAlldata(rctx, record.text, record.textLen, value.data(),
                                     lengthOf(value), &done, record.kind);
        }
    }
    if (last != nullptr) {
        storeLabels(p, parseRecord(last));
    }
    blocks.pBufi = at - blocks.records;
    return done;
}

// At the end of the stream: the last row may be pending.
QVStatus endOfStream(JMAP_READPRIVATE* rp) {
    rp->blocks.curr = nullptr;
    rp->atEOF = true;
    if (rp->inVariables && rp->tablePathSeen) {
        noteTable(*rp, U"Read           [%.*hs] returning LAST OBSERVATION");
        return QV_OK;
    }
    noteTable(*rp, U"Read           [%.*hs] returning QV_EOF");
    return QV_EOF;
}

}  // namespace

QVStatus Read(QVEJMAPReadContexth rctx) {
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    if (rp->p->debugRead) {
        myLogNote(rp->p, U"");
    }
    noteTable(*rp, U"Read on dataset[%.*hs] called");
    clearOnce(rp);
    startRow(rctx, rp);
    if (rp->atEOF) {
        noteTable(*rp, U"Read           [%.*hs] atEOF set, returning QV_EOF");
        return QV_EOF;
    }
    if (rp->blocks.curr != nullptr && replayBlock(rctx, rp)) {
        return QV_OK;
    }
    while (COMPPATHS* next = nextBlock(rp->blocks)) {
        QV_TRY(loadBlock(&rp->blocks, next));
        if (replayBlock(rctx, rp)) {
            return QV_OK;
        }
    }
    return endOfStream(rp);
}

}  // namespace jmap
