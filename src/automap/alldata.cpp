// The ALLDATA table.
//
// Tested by tests/automap/discovery_test.cpp
#include "alldata.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "names.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

constexpr std::string_view kDefaultName = "ALLDATA";

QVStatus addColumn(JMAP_PRIVATE* p, std::string_view name, VARTYPE type, uint64_t length) {
    auto* column = poolNew<VARINFO>(p->cpool);
    char* copy = poolCopy(p->cpool, name);
    if (column == nullptr || copy == nullptr) {
        return QV_NOMEM;
    }
    column->name = copy;
    column->nameLen = lengthOf(name);
    column->type = type;
    column->length = length;
    append(p->alldataDs->vhead, p->alldataDs->vtail, column);
    p->alldataDs->varcount += 1;
    return QV_OK;
}

QVStatus addLabelColumns(JMAP_PRIVATE* p) {
    for (int32_t i = 1; i <= p->labelCountMax + 1; ++i) {
        char name[kNumberMax];
        QVStrSize nameLen = 0;
        QV_TRY(formatNumber(p, U"P%d", i, name, &nameLen));
        const auto length = static_cast<uint64_t>(p->labelMaxes[i - 1]);
        QV_TRY(addColumn(p, view(name, nameLen), VAR_CHAR, length));
    }
    return QV_OK;
}

}  // namespace

QVStatus doAlldataDsinfo(JMAP_PRIVATE* p, MAP* m) {
    (void)m;  // the table is in no map
    auto* ds = poolNew<DSINFO>(p->cpool);
    p->alldataDs = ds;
    if (ds == nullptr) {
        return QV_NOMEM;
    }
    const std::string_view name =
        p->alldataNameLen == 0 ? kDefaultName : view(p->alldataName, p->alldataNameLen);
    ds->nameLen = std::min(lengthOf(name), static_cast<QVStrSize>(sizeof ds->name));
    std::copy_n(name.data(), ds->nameLen, ds->name);

    // Kept: P has length 0 and V that of the longest value, as notes show.  Neither means anything.
    const auto valueLength = static_cast<uint64_t>(p->valueMaxLen);
    QV_TRY(addColumn(p, "P", VAR_DOUBLE, 0));
    QV_TRY(addLabelColumns(p));
    QV_TRY(addColumn(p, "V", VAR_DOUBLE, valueLength));
    return addColumn(p, "Value", VAR_CHAR, valueLength);
}

}  // namespace jmap
