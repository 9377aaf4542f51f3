// A scan that counts paths and keeps no records.
//
// Tested by tests/scan/partial_scan_test.cpp
#include "count_sink.h"

#include "core/guard.h"
#include "core/status.h"
#include "path_text.h"
#include "path_tree.h"

namespace jmap {

QVStatus mindGrowth(JMAP_PRIVATE* p) {
    constexpr uint64_t kPathsBetween = 4096;  // about a megabyte
    if (p->pathNodes < p->pathsAsked + kPathsBetween) [[likely]] {
        return QV_OK;
    }
    p->pathsAsked = p->pathNodes;
    return askGuardOfMemory(p, 0);
}

[[gnu::noinline]] QVStatus CountSink::firstMarker(JMAP_PRIVATE* p, PATHNODE* node) {
    PATHCHILDREN* below = childrenOf(p, node);
    if (below == nullptr) {
        return QV_NOMEM;
    }
    if (!fitsBlock(node->textLen, p->labelCount)) {
        return QV_NOMEM;
    }
    ++below->markers;
    return mindGrowth(p);
}

[[gnu::noinline]] QVStatus CountSink::countNew(JMAP_PRIVATE* p, PATHNODE* node,
                                               std::string_view value, VALTYPE type) {
    // A label "" does not show in the text: its values count for the path before it.
    PATHNODE* place = node->nameLen != 0 ? node : &node->parent->node;
    p->lastNameLen = node->nameLen != 0 ? node->nameLen + 1 : 0;
    const QVStrSize named = node->nameLen != 0 ? 1 : 0;
    if (!fitsBlock(place->textLen + 1 + lengthOf(value), p->labelCount + named)) {
        return QV_NOMEM;
    }
    ++p->pathCount;
    p->valueMaxLen = std::max(p->valueMaxLen, lengthOf(value));
    std::string_view path;
    if (needsPathText(p)) {
        path = pathText(p, place, place->textLen);
        if (path.data() == nullptr) {
            return QV_NOMEM;
        }
    }
    QV_TRY(insertPathInfo(p, place, path, type, value));
    return mindGrowth(p);
}

}  // namespace jmap
