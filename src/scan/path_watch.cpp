// See path_watch.h.
#include "path_watch.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"

namespace jmap {

PATHWATCH* watchFor(JMAP_PRIVATE* p, std::string_view path, int64_t number) {
    auto* watch = poolNew<PATHWATCH>(p->cpool);
    if (watch == nullptr) {
        return nullptr;
    }
    watch->path = poolCopy(p->cpool, path);
    if (watch->path == nullptr) {
        return nullptr;
    }
    watch->pathLen = lengthOf(path);
    watch->number = number;
    watch->next = p->watches;
    p->watches = watch;
    return watch;
}

void noteWatched(JMAP_PRIVATE* p, PATHINFO* info, PLACE place) {
    info->watched = 0;
    for (PATHWATCH& watch : each(p->watches)) {
        if (view(watch.path, watch.pathLen) != view(info->path, info->pathLen)) {
            continue;
        }
        if (watch.number == info->count) {
            watch.place = place;
        } else if (watch.number > info->count &&
                   (info->watched == 0 || watch.number < info->watched)) {
            info->watched = watch.number;
        }
    }
}

}  // namespace jmap
