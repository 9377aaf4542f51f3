// From the statistics of paths to the automatic map.
//
// Tested by tests/automap/discovery_test.cpp
#include "discovery.h"

#include "alldata.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "ordinals.h"
#include "path_parts.h"
#include "variables.h"

namespace jmap {

QVStatus doMapping(JMAP_PRIVATE* p) {
    auto* map = poolNew<MAP>(p->cpool);
    p->automap = map;
    if (map == nullptr) {
        return QV_NOMEM;
    }
    map->mtype = AUTO_MAP;
    uint64_t tables = 0;
    uint64_t columns = kColumnsBetween;  // since the guard was asked
    for (PATHINFO& info : each(p->pathInfoHead)) {
        if (info.processed) {
            continue;
        }
        if (columns >= kColumnsBetween) {
            QV_TRY(askGuard(p, tables));
            columns = 0;
        }
        ++tables;
        // Kept: a table that fails is left out and counted, with no status.  One can observe a map
        // without it, and perhaps a gap in the numbers of tables of its name.
        if (doDataset(p, map, &info) != QV_OK) {
            ++p->droppedTables;
            QV_TRY(askGuard(p, 0));  // it may have ended the table, and then ends the scan
            continue;
        }
        columns += map->dstail->varcount + 1;
    }
    return doAlldataDsinfo(p, map);
}

QVStatus doDataset(JMAP_PRIVATE* p, MAP* m, PATHINFO* n) {
    auto* ds = poolNew<DSINFO>(p->cpool);
    if (ds == nullptr) {
        return QV_NOMEM;
    }
    ds->start = n->node;
    QV_TRY(uniqueDsName(p, ds, n));
    QV_TRY(doOrdinals(p, ds, n));
    QV_TRY(doVariables(p, ds, n));
    QV_TRY(doTablePath(p, ds));
    append(m->dshead, m->dstail, ds);
    return QV_OK;
}

QVStatus doTablePath(JMAP_PRIVATE* p, DSINFO* ds) {
    const VARINFO* last = ds->vtail;
    ds->tableNode = nullptr;
    ds->tablePathLen = 0;
    if (last == nullptr) {
        return QV_OK;
    }
    const std::string_view path = pathOf(p, *last);
    if (path.data() == nullptr) {
        return QV_NOMEM;
    }
    ds->tablePathLen = lengthOf(parentOf(p, path));
    ds->tableNode = last->node;
    while (ds->tableNode->parent != nullptr &&
           ds->tableNode->parent->node.textLen >= ds->tablePathLen) {
        ds->tableNode = &ds->tableNode->parent->node;
    }
    return QV_OK;
}

}  // namespace jmap
