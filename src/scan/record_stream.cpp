// The record stream: one compact record for every value and every container marker.
//
// A record of a known path is a copy of its head (or of the parent's head and the name), patched,
// and the value.  All other records are built in `path` first.
//
// Tested by tests/scan/record_stream_test.cpp
#include "record_stream.h"

#include "core/note.h"
#include "core/short_bytes.h"
#include "core/status.h"
#include "core/text.h"
#include "nesting.h"
#include "path_stats.h"
#include "path_text.h"
#include "path_tree.h"
#include "record_block.h"
#include "record_format.h"
#include "record_heads.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

// Puts the labels on the stack, the name and the value into `path`.
QVStatus composeText(JMAP_PRIVATE* p, std::string_view name, std::string_view val, VALTYPE type) {
    VARSTR* path = &p->path;
    path->len = 0;
    QV_TRY(jmapVarstrCheck(p, path, p->pathAt->node.textLen + lengthOf(name) + lengthOf(val) + 4));
    writePath(&p->pathAt->node, path->str);
    path->len = p->pathAt->node.textLen;
    p->lastNameLen = 0;
    if (!name.empty()) {
        put(path, p->sep);
        put(path, name);
        p->lastNameLen = lengthOf(name) + 1;
    }
    if (type != VAL_NOVAL) {
        put(path, ' ');
        put(path, val);
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

// Whether a record can be written by head: the node or its parent has one, and the block has room
// to spare.
bool headReady(JMAP_PRIVATE* p, PATHNODE* node, QVStrSize valLen) {
    static_assert(2 * kHeadStep > kRecordRoomBytes);
    return p->cBufi + headLenOf(node) + valLen + 2 * kHeadStep <= kBlockBytes &&
           (node->head != nullptr || prepareHead(p, node));
}

}  // namespace

QVStatus RecordSink::marker(JMAP_PRIVATE* p) {
    PATHNODE* node = &p->pathAt->node;
    p->rootMarkers += node == &p->pathRoot.node ? 1 : 0;
    if (node->marked && inStep(p, node->labels + 1) && headReady(p, node, 0)) [[likely]] {
        const QVStrSize headLen = headLenOf(node);
        putHead(node, headLen, p->cBuf + p->cBufi);
        p->cBufi += headLen - 1;  // without the blank
        ++p->pathCount;
        return QV_OK;
    }
    node->marked = true;
    return generatePathVariableString(p, nullptr, {}, {}, VAL_NOVAL);
}

bool RecordSink::known(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value, VALTYPE type) {
    const QVStrSize valLen = lengthOf(value);
    if (node->info == nullptr || !inStep(p, node->labels) || !headReady(p, node, valLen))
        [[unlikely]] {
        return false;
    }
    char* const to = p->cBuf + p->cBufi;
    const QVStrSize headLen = headLenOf(node);
    char* patch = to + sizeof node->labels + node->labels;
    const QVStrSize textLen = node->textLen + 1 + valLen;
    p->cBufi += headLen + valLen;
    ++p->pathCount;
    p->valueMaxLen = std::max(p->valueMaxLen, valLen);
    countAgain(p, node->info, type, value);
    putHead(node, headLen, to);
    std::memcpy(patch, &textLen, sizeof textLen);
    patch += sizeof textLen;
    std::memcpy(patch, &valLen, sizeof valLen);
    patch[sizeof valLen] = static_cast<char>(type);
    copyShort(to + headLen, value);
    return true;
}

QVStatus RecordSink::value(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value, VALTYPE type) {
    if (known(p, node, value, type)) [[likely]] {
        return QV_OK;
    }
    // A label "" does not show in the text: its values count for the path before it.
    PATHNODE* place = node->nameLen != 0 ? node : &node->parent->node;
    return generatePathVariableString(p, place, nameOf(node), value, type);
}

QVStatus RecordSink::placeholder(JMAP_PRIVATE* p, PATHNODE* node) {
    return generatePathVariableString(p, node, nameOf(node), "VAR", VAL_FAKEVARIABLE);
}

QVStatus generatePathVariableString(JMAP_PRIVATE* p, PATHNODE* node, std::string_view name,
                                    std::string_view val, VALTYPE type) {
    const QVStrSize valLen = lengthOf(val);
    QV_TRY(composeText(p, name, val, type));
    p->valueMaxLen = std::max(p->valueMaxLen, valLen);
    if (p->debugPath) [[unlikely]] {
        noteRecord(p, !name.empty(), valLen);
    }
    ++p->pathCount;
    // The name counts as a label, with the length that `labelCurLens` has for its depth.
    // Kept: for "FAKE" this is the length of the label last seen at that depth, or 0.
    p->labelCount += name.empty() ? 0 : 1;
    const QVStatus rc =
        processPathVariableString(p, node, view(p->path.str, p->path.len), valLen, type);
    p->labelCount -= name.empty() ? 0 : 1;
    return rc;
}

QVStatus processPathVariableString(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path,
                                   QVStrSize valLen, VALTYPE type) {
    const QVStrSize need = lengthOf(path) + p->labelCount + kRecordRoomBytes;
    if (need >= kBlockBytes) [[unlikely]] {
        return QV_NOMEM;  // no block can hold it: a very long name or number
    }
    if (need + p->cBufi >= kBlockBytes) [[unlikely]] {
        QV_TRY(compressPathBuffer(p));
    }
    p->cBufi +=
        writeRecord(p->cBuf + p->cBufi, p->labelCount + 1, p->labelCurLens, path, valLen, type);
    if (type == VAL_NOVAL) {
        return QV_OK;
    }
    const std::size_t pathLen = path.size() - static_cast<std::size_t>(valLen) - 1;
    return insertPathInfo(p, node, firstOf(path, pathLen), type, after(path, pathLen + 1));
}

}  // namespace jmap
