// Names of the value columns of one table.
//
// Tested by tests/automap/column_names_test.cpp
#include "column_names.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "path_parts.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

constexpr int32_t kFirstSuffix = 2;

// One name of the index, in the document pool.
struct COLUMNNAME {
    char uname[kNameMax];  // the key
    int32_t nextSuffix;  // lowest number that may still be free behind this name; 0: not yet asked
};

COLUMNNAME* findIndexed(const COLUMNNAMES& names, std::string_view name) noexcept {
    char upper[kNameMax];
    upperName(upper, name);
    return static_cast<COLUMNNAME*>(names.tracker->find(names.tracker, upper, lengthOf(name)));
}

bool isTaken(VARINFO* inl, const COLUMNNAMES& names, std::string_view name) noexcept {
    if (names.tracker != nullptr) {
        return findIndexed(names, name) != nullptr;
    }
    for (const VARINFO& column : each(inl)) {
        if (charNormCompare(column.name, column.nameLen, name.data(), lengthOf(name)) != 0) {
            return true;
        }
    }
    return false;
}

QVStatus indexColumn(JMAP_PRIVATE* p, const VARINFO& column, COLUMNNAMES& names) {
    if (column.nameLen > kNameMax) {
        return QV_OK;  // an ordinal with a suffix: longer than any name that is looked for
    }
    auto* entry = poolNew<COLUMNNAME>(p->cpool);
    if (entry == nullptr) {
        return QV_NOMEM;
    }
    upperName(entry->uname, nameOf(column));
    return names.tracker->insert(names.tracker, entry->uname, column.nameLen, entry);
}

}  // namespace

QVStatus makeZULVariable(JMAP_PRIVATE* p, char* s, QVStrSize* insLen, VARINFO* inl,
                         const COLUMNNAMES& names) {
    const QVStrSize baseLen = std::min(*insLen, kNameMax);
    validateName(s, baseLen);
    *insLen = baseLen;
    if (!isTaken(inl, names, view(s, baseLen))) {
        return QV_OK;
    }
    // Names are never given back, so numbers once found taken need not be looked at again.
    COLUMNNAME* const base =
        names.tracker != nullptr ? findIndexed(names, view(s, baseLen)) : nullptr;
    int32_t suffix = base != nullptr && base->nextSuffix != 0 ? base->nextSuffix : kFirstSuffix;
    do {
        char digits[kNumberMax];
        QVStrSize digitCount = 0;
        QV_TRY(formatNumber(p, U"%d", suffix, digits, &digitCount));
        const QVStrSize at = std::min(baseLen, kNameMax - digitCount);
        std::memcpy(s + at, digits, static_cast<std::size_t>(digitCount));
        *insLen = at + digitCount;
        ++suffix;
    } while (isTaken(inl, names, view(s, *insLen)));
    if (base != nullptr) {
        base->nextSuffix = suffix;
    }
    return QV_OK;
}

QVStatus indexLastColumn(JMAP_PRIVATE* p, DSINFO* ds, COLUMNNAMES& names) {
    if (names.tracker != nullptr) {
        return indexColumn(p, *ds->vtail, names);
    }
    if (ds->varcount < kListedColumns) {
        return QV_OK;
    }
    constexpr std::u32string_view kTracker = U"column name tracker";
    QVHndlp host = qvGlobalHandle();
    names.tracker = host->createTracker(host, QV_TRACKER_HASH, 1, kTracker.data(), kTracker.size());
    if (names.tracker == nullptr) {
        return QV_NOMEM;
    }
    for (const VARINFO& column : each(ds->vhead)) {
        QV_TRY(indexColumn(p, column, names));
    }
    return QV_OK;
}

}  // namespace jmap
