// The value columns of a table.
//
// Tested by tests/automap/discovery_test.cpp
#include "variables.h"

#include "column_names.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "path_parts.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

void notePath(JMAP_PRIVATE* p, const QVChar* fmt, const PATHINFO& info) {
    if (p->debugMapGen) {
        const std::string_view path = shown(p, pathOf(p, info));
        myLogNote(p, fmt, noteLen(lengthOf(path)), path.data());
    }
}

// The kinds of the values of a path, one bit each; 0 when one was lost without memory.
uint8_t kindsOf(const PATHINFO& info) {
    unsigned kinds = 0;
    int64_t count = 0;
    for (const PATHKIND* kind = &info.kinds; kind != nullptr; kind = kind->next) {
        kinds |= 1U << kind->kind;
        count += kind->count;
    }
    return count == info.count ? static_cast<uint8_t>(kinds) : uint8_t{0};
}

// The name of a column.  Most names are a label in the tree, which then need not be copied.
char* keptName(JMAP_PRIVATE* p, std::string_view label, std::string_view name) {
    if (name == label) {
        return const_cast<char*>(label.data());  // names of automatic columns are never written
    }
    char* const copy = arenaBytes(&p->pathArena, p->cpool, lengthOf(name));
    if (copy != nullptr) {
        std::memcpy(copy, name.data(), name.size());
    }
    return copy;
}

QVStatus addColumn(JMAP_PRIVATE* p, DSINFO* ds, const PATHINFO& info, COLUMNNAMES& names) {
    const std::string_view last = lastComponent(info.node);
    char name[kNameMax];
    QVStrSize nameLen = std::min(lengthOf(last), kNameMax);
    std::copy_n(last.data(), nameLen, name);
    QV_TRY(makeZULVariable(p, name, &nameLen, ds->vhead, names));

    VARINFO* column = newColumn(p);
    if (column == nullptr) {
        return QV_NOMEM;
    }
    column->name = keptName(p, last, view(name, nameLen));
    if (column->name == nullptr) {
        return QV_NOMEM;
    }
    column->nameLen = nameLen;
    column->inTree = true;
    column->node = info.node;
    column->pathLen = info.node->textLen;
    column->type = info.type;
    column->kinds = kindsOf(info);
    column->length = static_cast<uint64_t>(info.pathMaxValLen);
    append(ds->vhead, ds->vtail, column);
    ds->varcount += 1;
    indexLastColumn(p, ds, names);
    return QV_OK;
}

QVStatus addColumns(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n, COLUMNNAMES& names) {
    notePath(p, U"doVariables search     [%.*hs]", *n);
    for (PATHINFO& info : eachDown(n)) {
        notePath(p, U"doVariables considered [%.*hs]", info);
        if (!sameParent(p, info.node, n->node)) {
            continue;  // only where a member name is empty or contains the separator
        }
        if (ds->varcount % kColumnsBetween == kColumnsBetween - 1) {  // one table can hold them all
            QV_TRY(askGuard(p, 0));
        }
        if (info.type == VAR_FAKEVARIABLE) {
            notePath(p, U"doVariables chose fake [%.*hs]", info);
        } else {
            notePath(p, U"doVariables chose      [%.*hs]", info);
            QV_TRY(addColumn(p, ds, info, names));
        }
        info.processed = true;
    }
    return QV_OK;
}

}  // namespace

VARINFO* newColumn(JMAP_PRIVATE* p) {
    char* const mem = arenaBytes(&p->pathArena, p->cpool, sizeof(VARINFO));
    if (mem != nullptr) {
        std::memset(mem, 0, sizeof(VARINFO));
    }
    return reinterpret_cast<VARINFO*>(mem);
}

QVStatus doVariables(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n) {
    COLUMNNAMES names = {};
    const QVStatus rc = addColumns(p, ds, n, names);
    endColumnNames(p, names);
    return rc;
}

}  // namespace jmap
