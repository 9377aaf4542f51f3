// The value columns of a table.
//
// Tested by tests/automap/discovery_test.cpp
#include "variables.h"

#include "column_names.h"
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
        const std::string_view path = shown(p, pathOf(info));
        myLogNote(p, fmt, noteLen(lengthOf(path)), path.data());
    }
}

// The kinds of the values of a path, a bit each; 0 when one was lost for want of memory.
uint8_t kindsOf(const PATHINFO& info) {
    unsigned kinds = 0;
    int64_t count = 0;
    for (const PATHKIND* kind = &info.kinds; kind != nullptr; kind = kind->next) {
        kinds |= 1U << kind->kind;
        count += kind->count;
    }
    return count == info.count ? static_cast<uint8_t>(kinds) : uint8_t{0};
}

QVStatus addColumn(JMAP_PRIVATE* p, DSINFO* ds, const PATHINFO& info, COLUMNNAMES& names) {
    auto* column = poolNew<VARINFO>(p->cpool);
    char* name = poolBytes(p->cpool, kNameMax);
    if (column == nullptr || name == nullptr) {
        return QV_NOMEM;
    }
    const std::string_view last = partsOf(p, pathOf(info)).last;
    column->name = name;
    column->nameLen = std::min(lengthOf(last), kNameMax);
    std::copy_n(last.data(), column->nameLen, name);
    QV_TRY(makeZULVariable(p, column->name, &column->nameLen, ds->vhead, names));

    column->path = poolCopy(p->cpool, pathOf(info));
    if (column->path == nullptr) {
        return QV_NOMEM;
    }
    column->pathLen = info.pathLen;
    column->type = info.type;
    column->kinds = kindsOf(info);
    column->length = static_cast<uint64_t>(info.pathMaxValLen);
    append(ds->vhead, ds->vtail, column);
    ds->varcount += 1;
    indexLastColumn(p, ds, names);
    return QV_OK;
}

QVStatus addColumns(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n, COLUMNNAMES& names) {
    const std::string_view object = parentOf(p, pathOf(*n));
    notePath(p, U"doVariables search     [%.*hs]", *n);
    for (PATHINFO& info : eachDown(n)) {
        notePath(p, U"doVariables considered [%.*hs]", info);
        if (parentOf(p, pathOf(info)) != object) {
            continue;  // only where a member name is empty or contains the separator
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

QVStatus doVariables(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n) {
    COLUMNNAMES names = {};
    const QVStatus rc = addColumns(p, ds, n, names);
    endColumnNames(p, names);
    return rc;
}

}  // namespace jmap
