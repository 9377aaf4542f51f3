// The ordinal columns of a table.
//
// Tested by tests/automap/discovery_test.cpp
#include "ordinals.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "path_parts.h"
#include "variables.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

constexpr std::string_view kPrefix = "ordinal_";

// Makes the ordinal that counts `path`, the beginning of the path of `node`, and puts it first.
//   Kept: for an empty last component no ordinal is made.
QVStatus addOrdinal(JMAP_PRIVATE* p, DSINFO* ds, const PATHNODE* node, std::string_view path) {
    const std::string_view last = partsOf(p, path).last;
    if (last.empty()) {
        return QV_OK;
    }
    VARINFO* column = newColumn(p);  // zero: VAR_ORDINAL of length 0
    if (column == nullptr) {
        return QV_NOMEM;
    }
    column->node = node;
    column->pathLen = lengthOf(path);
    const QVStrSize lastLen = std::min(lengthOf(last), kNameMax - lengthOf(kPrefix));
    column->nameLen = lengthOf(kPrefix) + lastLen;
    column->name = poolBytes(p->cpool, column->nameLen + 1);
    if (column->name == nullptr) {
        return QV_NOMEM;
    }
    std::copy_n(last.data(), lastLen, std::copy_n(kPrefix.data(), kPrefix.size(), column->name));
    validateName(column->name, column->nameLen);

    column->next = ds->vhead;
    ds->vhead = column;
    if (ds->vtail == nullptr) {
        ds->vtail = column;
    }
    ds->varcount += 1;
    return QV_OK;
}

// Appends one character to a name.
QVStatus appendCharacter(JMAP_PRIVATE* p, VARINFO& column, char c) {
    auto* grown =
        static_cast<char*>(p->cpool->reallocate(p->cpool, column.name, column.nameLen + 1, 0));
    if (grown == nullptr) {
        return QV_NOMEM;
    }
    column.name = grown;
    column.name[column.nameLen] = c;
    column.nameLen += 1;
    return QV_OK;
}

// Makes equal names differ: the later one of each pair gets one more character.
//   Kept: each pair of the table takes the next character of the code table: "1" to "9", then ":".
//   Case counts.  A name can get more than one character.
QVStatus makeOrdinalsUnique(JMAP_PRIVATE* p, DSINFO* ds) {
    uint8_t next = '1';
    for (const VARINFO& column : each(ds->vhead)) {
        for (VARINFO& later : each(column.next)) {
            if (nameOf(later) == nameOf(column)) {
                QV_TRY(appendCharacter(p, later, static_cast<char>(next++)));
            }
        }
    }
    return QV_OK;
}

}  // namespace

QVStatus doOrdinals(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* n) {
    const PATHNODE* node = n->node;
    const std::string_view whole = pathOf(p, *n);
    if (whole.data() == nullptr) {
        return QV_NOMEM;
    }
    std::string_view path = parentOf(p, whole);
    for (uint64_t left = p->ordinalCount; left > 0 && !path.empty(); --left) {
        while (node->parent != nullptr && node->parent->node.textLen >= lengthOf(path)) {
            node = &node->parent->node;
        }
        QV_TRY(addOrdinal(p, ds, node, path));
        path = parentOf(p, path);
    }
    return makeOrdinalsUnique(p, ds);
}

}  // namespace jmap
