// See path_watch.h.
#include "path_watch.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "path_stats.h"

namespace jmap {
namespace {

constexpr QVStrSize kLists = QVStrSize{1} << 16;  // every path of a document may be watched for

PATHWATCH** listOf(const JMAP_PRIVATE* p, std::string_view path) {
    return p->watches + hashOf(p->hashSeed, path) % kLists;
}

// The number of records of a path so far, without placeholders.
int64_t valuesOf(const PATHINFO* info) {
    int64_t count = 0;
    for (const PATHKIND* kind = &info->kinds; kind != nullptr; kind = kind->next) {
        count += kind->kind == VAL_FAKEVARIABLE ? 0 : kind->count;
    }
    return count;
}

}  // namespace

PATHWATCH* watchFor(JMAP_PRIVATE* p, std::string_view path, int64_t number) {
    if (p->watches == nullptr) {
        p->watches = poolNew<PATHWATCH*>(p->cpool, kLists);
    }
    auto* watch = p->watches == nullptr ? nullptr : poolNew<PATHWATCH>(p->cpool);
    if (watch == nullptr) {
        return nullptr;
    }
    watch->path = poolCopy(p->cpool, path);
    if (watch->path == nullptr) {
        return nullptr;
    }
    watch->pathLen = lengthOf(path);
    watch->number = number;
    PATHWATCH** list = listOf(p, path);
    watch->next = *list;
    *list = watch;
    return watch;
}

void noteWatched(JMAP_PRIVATE* p, PATHINFO* info, std::string_view path, VALTYPE type,
                 PLACE place) {
    const int64_t values = valuesOf(info);
    int64_t next = 0;
    for (PATHWATCH& watch : each(*listOf(p, path))) {
        if (view(watch.path, watch.pathLen) != path) {
            continue;
        }
        if (watch.number == values && type != VAL_FAKEVARIABLE) {
            watch.place = place;
        } else if (watch.number > values && (next == 0 || watch.number < next)) {
            next = watch.number;
        }
    }
    PATHEXTRAS* extras = next == 0 ? info->extras : pathExtras(p, info);
    if (extras != nullptr) {  // else the place stays unknown
        extras->watched = next == 0 ? 0 : info->count + (next - values);
    }
}

}  // namespace jmap
