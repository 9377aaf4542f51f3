// A scan that counts paths and keeps no records.
//
// It has the same statistics, and so gives the same automatic map, as a scan that keeps records.
// Memory: what the paths take.
//
// Tested by tests/scan/partial_scan_test.cpp
#pragma once

#include "core/context.h"
#include "core/text.h"
#include "nesting.h"
#include "path_stats.h"
#include "record_format.h"

#include <algorithm>
#include <string_view>

namespace jmap {

// Asks the guard when many paths have been made since it was asked.
[[nodiscard]] QVStatus mindGrowth(JMAP_PRIVATE* p);

// See events.h.
struct CountSink {
    // Counts the marker of the container at `pathAt`.
    [[nodiscard]] static QVStatus marker(JMAP_PRIVATE* p) {
        PATHNODE* node = &p->pathAt->node;
        p->rootMarkers += node == &p->pathRoot.node ? 1 : 0;
        ++p->pathCount;
        if (node->children == nullptr) [[unlikely]] {
            return firstMarker(p, node);
        }
        ++node->children->markers;
        return QV_OK;
    }

    [[nodiscard]] static QVStatus value(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value,
                                        VALTYPE type) {
        return known(p, node, value, type) ? QV_OK : countNew(p, node, value, type);
    }

    [[nodiscard]] static bool known(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value,
                                    VALTYPE type) {
        const QVStrSize textLen = node->textLen + 1 + lengthOf(value);
        if (node->info == nullptr || !inStep(p, node->labels) || !fitsBlock(textLen, p->labelCount))
            [[unlikely]] {
            return false;
        }
        ++p->pathCount;
        p->valueMaxLen = std::max(p->valueMaxLen, lengthOf(value));
        countAgain(p, node->info, type, value);
        return true;
    }

    [[nodiscard]] static QVStatus placeholder(JMAP_PRIVATE* p, PATHNODE* node) {
        return value(p, node, "VAR", VAL_FAKEVARIABLE);
    }

   private:
    static QVStatus firstMarker(JMAP_PRIVATE* p, PATHNODE* node);
    static QVStatus countNew(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value, VALTYPE type);
};

}  // namespace jmap
