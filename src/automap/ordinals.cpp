// The ordinal columns of a table.
//
// Tested by tests/automap/discovery_test.cpp
#include "ordinals.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "names.h"
#include "path_parts.h"
#include "variables.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jmap {
namespace {

constexpr std::string_view kPrefix = "ordinal_";

QVStrSize nameLenOf(std::string_view last) noexcept {
    return lengthOf(kPrefix) + std::min(lengthOf(last), kNameMax - lengthOf(kPrefix));
}

// The name of an ordinal that counts a path with this last component.  Null without memory.
char* newName(JMAP_PRIVATE* p, std::string_view last) {
    const QVStrSize nameLen = nameLenOf(last);
    char* const name = arenaBytes(&p->pathArena, p->cpool, nameLen);
    if (name != nullptr) {
        std::copy_n(last.data(), nameLen - lengthOf(kPrefix),
                    std::copy_n(kPrefix.data(), kPrefix.size(), name));
        validateName(name, nameLen);
    }
    return name;
}

// The same, made once for all tables below the node.  It must not be changed.
char* sharedName(JMAP_PRIVATE* p, const PATHNODE* node, std::string_view path,
                 std::string_view last) {
    if (node->textLen != lengthOf(path)) {
        return newName(p, last);  // the name of a member holds the separator
    }
    PATHCHILDREN* const below = node->children;  // it has some: the table's values are below it
    if (below->ordinalName == nullptr) {
        below->ordinalName = newName(p, last);
    }
    return below->ordinalName;
}

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
    column->inTree = true;
    column->node = node;
    column->pathLen = lengthOf(path);
    column->nameLen = nameLenOf(last);
    column->name = sharedName(p, node, path, last);
    if (column->name == nullptr) {
        return QV_NOMEM;
    }
    column->next = ds->vhead;
    ds->vhead = column;
    if (ds->vtail == nullptr) {
        ds->vtail = column;
    }
    ds->varcount += 1;
    return QV_OK;
}

// Gives a column a name of its own, with one more character.
QVStatus appendCharacter(JMAP_PRIVATE* p, VARINFO& column, char c) {
    char* const grown = arenaBytes(&p->pathArena, p->cpool, column.nameLen + 1);
    if (grown == nullptr) {
        return QV_NOMEM;
    }
    std::copy_n(column.name, column.nameLen, grown);
    column.name = grown;
    column.name[column.nameLen] = c;
    column.nameLen += 1;
    return QV_OK;
}

constexpr uint64_t kFewNames = 32;  // up to so many are compared with each other

struct NAMEENTRY {
    VARINFO* column;
    uint32_t hash;  // of its name
    uint32_t next;  // number of the next column in the list, 0: none
};

// The ordinals of a table in lists by the hash of their names.  A reference to a column is its
// number, from 1; each list is in the order of the columns.
struct NAMELISTS {
    NAMEENTRY* entries;  // [0] is not used
    uint32_t* heads;
    uint32_t mask;
};

void putInList(const JMAP_PRIVATE* p, const NAMELISTS& names, uint32_t number) noexcept {
    NAMEENTRY& entry = names.entries[number];
    entry.hash = hashOf(p->hashSeed, nameOf(*entry.column));
    uint32_t* link = names.heads + (entry.hash & names.mask);
    while (*link != 0 && *link < number) {
        link = &names.entries[*link].next;
    }
    entry.next = *link;
    *link = number;
}

// Gives one more character to each later column with the name of this one.
QVStatus renameLater(JMAP_PRIVATE* p, const NAMELISTS& names, uint32_t number, uint8_t* next) {
    const NAMEENTRY& entry = names.entries[number];
    for (uint32_t* link = &names.entries[number].next; *link != 0;) {
        const uint32_t laterNumber = *link;
        NAMEENTRY& later = names.entries[laterNumber];
        if (later.hash != entry.hash || nameOf(*later.column) != nameOf(*entry.column)) {
            link = &later.next;
            continue;
        }
        *link = later.next;
        QV_TRY(appendCharacter(p, *later.column, static_cast<char>((*next)++)));
        putInList(p, names, laterNumber);
    }
    return QV_OK;
}

QVStatus renameByLists(JMAP_PRIVATE* p, const DSINFO* ds, const NAMELISTS& names) {
    auto count = static_cast<uint32_t>(ds->varcount);
    uint32_t number = 0;
    for (VARINFO& column : each(ds->vhead)) {
        names.entries[++number].column = &column;
    }
    for (number = count; number > 0; --number) {  // so that each is put in front
        putInList(p, names, number);
    }
    uint8_t next = '1';
    for (number = 1; number <= count; ++number) {
        QV_TRY(renameLater(p, names, number, &next));
    }
    return QV_OK;
}

QVStatus renameManyOrdinals(JMAP_PRIVATE* p, const DSINFO* ds) {
    const uint64_t heads = std::bit_ceil(ds->varcount);
    const NAMELISTS names = {poolNew<NAMEENTRY>(p->cpool, static_cast<QVStrSize>(ds->varcount + 1)),
                             poolNew<uint32_t>(p->cpool, static_cast<QVStrSize>(heads)),
                             static_cast<uint32_t>(heads - 1)};
    const QVStatus rc =
        names.entries == nullptr || names.heads == nullptr ? QV_NOMEM : renameByLists(p, ds, names);
    (void)poolFree(p->cpool, names.heads);  // on failure they are freed with the pool
    (void)poolFree(p->cpool, names.entries);
    return rc;
}

QVStatus renameFewOrdinals(JMAP_PRIVATE* p, const DSINFO* ds) {
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

// Tells equal names apart: each later one of a pair gets one more character.
//   Kept: the characters count up through the code table, "1" to "9" and then ":", and over all
//   pairs of the table; case counts; a name can get more than one.
QVStatus makeOrdinalsUnique(JMAP_PRIVATE* p, const DSINFO* ds) {
    return ds->varcount <= kFewNames ? renameFewOrdinals(p, ds) : renameManyOrdinals(p, ds);
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
