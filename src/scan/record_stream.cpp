// The record stream: every value and container marker of the document as one compact record.
//
// The stack keeps the text of its labels in `path`; a record's name and value are appended there
// for the time of writing it.
//
// Tested by tests/scan/record_stream_test.cpp
#include "record_stream.h"

#include "core/note.h"
#include "core/status.h"
#include "core/text.h"
#include "nesting.h"
#include "path_stats.h"
#include "path_text.h"
#include "record_block.h"
#include "record_format.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

// Appends the name and the value to the text of the labels on the stack.
QVStatus appendText(JMAP_PRIVATE* p, std::string_view name, const char* val, QVStrSize valLen) {
    VARSTR* path = &p->path;
    QV_TRY(jmapVarstrCheck(p, path, lengthOf(name) + valLen + 4));
    p->lastNameLen = 0;
    if (!name.empty()) {
        put(path, p->sep);
        put(path, name);
        p->lastNameLen = lengthOf(name) + 1;
    }
    if (val != nullptr) {
        put(path, ' ');
        put(path, view(val, valLen));
    }
    return QV_OK;
}

void noteRecord(JMAP_PRIVATE* p, bool named, QVStrSize valLen) {
    const std::string_view text = shown(p, view(p->path.str, p->path.len));
    const int textLen = noteLen(lengthOf(text));
    if (!p->debugAllData) {
        myLogNote(p, U"generatePathVariableString [%.*hs]", textLen, text.data());
        return;
    }
    const int32_t labels = p->labelCount + 1 + (named ? 1 : 0);
    myLogNote(p, U"generatePathVariableString [%.*hs] labelCount %d val %d", textLen, text.data(),
              labels, named ? 1 : 0);
    for (int32_t i = 1; i <= labels; ++i) {
        myLogNote(p, U"  p%d len %d", i, p->labelCurLens[i - 1]);
    }
    if (valLen != 0) {
        myLogNote(p, U"  value len %d", noteLen(valLen));
    }
}

}  // namespace

QVStatus generatePathVariableString(JMAP_PRIVATE* p, const char* name, QVStrSize nameLen,
                                    const char* val, QVStrSize valLen, VALTYPE type) {
    const bool named = nameLen != 0;
    QV_TRY(beginPath(p));
    const QVStrSize stackLen = p->path.len;
    QV_TRY(appendText(p, view(name, nameLen), val, valLen));
    p->valueMaxLen = std::max(p->valueMaxLen, valLen);
    if (p->debugPath) [[unlikely]] {
        noteRecord(p, named, valLen);
    }
    ++p->pathCount;
    // The name counts as a label, with the length that its depth still has in `labelCurLens`.
    // Kept: for "FAKE" that is the length of the label last seen at that depth, or 0.
    p->labelCount += named ? 1 : 0;
    const QVStatus rc = processPathVariableString(p, p->path.str, p->path.len, valLen, type);
    p->labelCount -= named ? 1 : 0;
    p->path.len = stackLen;
    return rc;
}

QVStatus processPathVariableString(JMAP_PRIVATE* p, const char* path, QVStrSize pathLen,
                                   QVStrSize valLen, VALTYPE type) {
    const QVStrSize need = pathLen + p->labelCount + kRecordRoomBytes;
    if (need >= kBlockBytes) [[unlikely]] {
        return QV_NOMEM;  // no block could hold it: a very long name or number
    }
    if (need + p->cBufi >= kBlockBytes) [[unlikely]] {
        QV_TRY(compressPathBuffer(p));
    }
    p->cBufi += writeRecord(p->cBuf + p->cBufi, p->labelCount + 1, p->labelCurLens,
                            view(path, pathLen), valLen, type);
    if (type == VAL_NOVAL) {
        return QV_OK;
    }
    return insertPathInfo(p, path, pathLen - valLen - 1, type, valLen);
}

}  // namespace jmap
