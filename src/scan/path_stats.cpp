// Statistics of paths: what the automatic map is made from.
//
// Tested by tests/scan/path_stats_test.cpp
#include "path_stats.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/text.h"
#include "path_text.h"

#include <algorithm>
#include <string_view>

namespace jmap {
namespace {

struct KindWord {
    const char* word;
    const QVChar* hostWord;
};

constexpr KindWord kKindWords[] = {
    {"NOVAL", U"NOVAL"}, {"NUMBER", U"NUMBER"},   {"STRING", U"STRING"},
    {"NULL", U"NULL"},   {"BOOLEAN", U"BOOLEAN"}, {"FAKE_VARIABLE", U"FAKE_VARIABLE"},
};
constexpr KindWord kUnknownKind = {"UNKNOWN?", U"UNKNOWN?"};

const KindWord& kindWord(int32_t t) {
    return t >= VAL_NOVAL && t <= VAL_FAKEVARIABLE ? kKindWords[t - VAL_NOVAL] : kUnknownKind;
}

QVTrackerh newTracker(std::u32string_view name) {
    QVHndlp host = qvGlobalHandle();
    return host->createTracker(host, QV_TRACKER_HASH, 1, name.data(),
                               static_cast<QVStrSize>(name.size()));
}

// Kept: a failure of the host's tables is not reported.  One can see its effects in the map: a path
// that cannot be found again is listed once for each value, a group that cannot be found splits.
PATHINFO* find(QVTrackerh tracker, std::string_view key) {
    if (tracker == nullptr) {
        return nullptr;
    }
    return static_cast<PATHINFO*>(tracker->find(tracker, key.data(), lengthOf(key)));
}

// The entry, or null when it will not be found.
PATHINFO* enter(QVTrackerh tracker, std::string_view key, PATHINFO* info) {
    const bool entered =
        tracker != nullptr && tracker->insert(tracker, key.data(), lengthOf(key), info) == QV_OK;
    return entered ? info : nullptr;
}

void createTrackers(JMAP_PRIVATE* p) {
    p->hash = newTracker(U"pathinfo tracker");
    if (p->hash2 == nullptr) {  // it is there when only the first could not be made before
        p->hash2 = newTracker(U"pathinfo sub tracker");
    }
}

// The column type that a value asks for.  Booleans and nulls count as numbers.
VARTYPE typeOf(VALTYPE type) {
    switch (type) {
        case VAL_STRING:
            return VAR_CHAR;
        case VAL_FAKEVARIABLE:
            return VAR_FAKEVARIABLE;
        default:
            return VAR_DOUBLE;
    }
}

// Where the value of the present event begins.
PLACE presentPlace(JMAP_PRIVATE* p) {
    JSNParserh parser = p->parser;
    return parser == nullptr || parser->eventColumn == nullptr
               ? PLACE{}
               : PLACE{parser->line(parser), parser->eventColumn(parser)};
}

// Kept: a kind that there is no memory for stays out of the statistics; nothing in the map depends
// on it.
void addKind(JMAP_PRIVATE* p, PATHKIND* last, VALTYPE kind) {
    last->next = poolNew<PATHKIND>(p->cpool);
    if (last->next != nullptr) {
        *last->next = {nullptr, kind, 1, presentPlace(p)};
    }
}

[[gnu::noinline]] void countOtherKind(JMAP_PRIVATE* p, PATHKIND* kinds, VALTYPE kind) {
    for (; kinds->kind != kind; kinds = kinds->next) {
        if (kinds->next == nullptr) {
            addKind(p, kinds, kind);
            return;
        }
    }
    ++kinds->count;
}

void countKind(JMAP_PRIVATE* p, PATHKIND* kinds, VALTYPE kind) {
    if (kinds->kind == kind) [[likely]] {
        ++kinds->count;
    } else {
        countOtherKind(p, kinds, kind);
    }
}

[[gnu::noinline]] void keepLongest(JMAP_PRIVATE* p, PATHINFO* info, QVStrSize valLen) {
    info->pathMaxValLen = valLen;
    info->longest = presentPlace(p);
}

[[gnu::noinline]] void becomeCharacter(JMAP_PRIVATE* p, PATHINFO* info) {
    info->type = VAR_CHAR;
    if (p->debugInsertPath) {
        myLogNote(p, U"insertPathInfo type DOUBLE val type STRING so type now CHARACTER");
    }
}

PATHINFO* newPathInfo(JMAP_PRIVATE* p, std::string_view path, VALTYPE type, QVStrSize valLen) {
    auto* info = poolNew<PATHINFO>(p->cpool);
    if (info == nullptr) {
        return nullptr;
    }
    info->path = poolCopy(p->cpool, path);
    if (info->path == nullptr) {
        return nullptr;
    }
    info->pathLen = lengthOf(path);
    info->count = 1;
    info->type = typeOf(type);
    info->pathMaxValLen = valLen == 0 ? 1 : valLen;
    info->longest = presentPlace(p);
    info->kinds = {nullptr, type, 1, info->longest};
    return info;
}

void joinGroup(PATHINFO* head, PATHINFO* info) {
    PATHINFO* last = head->downtail != nullptr ? head->downtail : head;
    last->down = info;
    info->head = head;
    head->downtail = info;
}

QVStatus insertNewPath(JMAP_PRIVATE* p, std::string_view path, VALTYPE type, QVStrSize valLen) {
    PATHINFO* info = newPathInfo(p, path, type, valLen);
    if (info == nullptr) {
        return QV_NOMEM;
    }
    const std::string_view ownPath = view(info->path, info->pathLen);  // keys are borrowed
    PATHINFO** group = &p->pathAt->group;
    const std::string_view parent = firstOf(ownPath, ownPath.size() - p->lastNameLen);
    if (*group == nullptr) {
        *group = find(p->hash2, parent);
    }
    if (*group != nullptr) {
        joinGroup(*group, info);
        p->pathInfoLast = enter(p->hash, ownPath, info);
        return QV_OK;
    }
    append(p->pathInfoHead, p->pathInfoTail, info);
    // Kept: a placeholder that heads its group cannot be found, so that the next one of the same
    // container becomes a second entry, in the group; from the third on that one counts.
    p->pathInfoLast =
        info->type == VAR_FAKEVARIABLE ? nullptr : enter(p->hash, ownPath, info);
    *group = enter(p->hash2, parent, info);
    return QV_OK;
}

}  // namespace

QVStatus insertPathInfo(JMAP_PRIVATE* p, const char* path, QVStrSize pathLen, VALTYPE type,
                        QVStrSize valLen) {
    if (p->hash == nullptr) [[unlikely]] {
        createTrackers(p);
    }
    const std::string_view text = view(path, pathLen);
    if (p->debugInsertPath) [[unlikely]] {
        const std::string_view slashed = shown(p, text);
        myLogNote(p, U"insertPathInfo [%.*hs] type %s valLen %d", noteLen(lengthOf(slashed)),
                  slashed.data(), valtypeToHostString(type), noteLen(valLen));
    }
    p->pathInfoLast = find(p->hash, text);
    if (p->pathInfoLast == nullptr) {
        return insertNewPath(p, text, type, valLen);
    }
    countAgain(p, p->pathInfoLast, type, valLen);
    return QV_OK;
}

void countAgain(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, QVStrSize valLen) {
    ++info->count;
    countKind(p, &info->kinds, type);
    if (info->type == VAR_DOUBLE && type == VAL_STRING) [[unlikely]] {
        becomeCharacter(p, info);
    }
    if (valLen > info->pathMaxValLen) [[unlikely]] {
        keepLongest(p, info, valLen);
    }
}

QVStatus dumpPathInfo(JMAP_PRIVATE* p) {
    myLogNote(p, U"Path info dump");
    for (PATHINFO& head : each(p->pathInfoHead)) {
        for (const PATHINFO& info : eachDown(&head)) {
            const std::string_view path = shown(p, view(info.path, info.pathLen));
            myLogNote(p, U"path [%-30.*hs] count %ld processed %s", noteLen(lengthOf(path)),
                      path.data(), static_cast<long>(info.count),
                      info.processed ? U"TRUE" : U"FALSE");
        }
    }
    myLogNote(p, U"Path info dump end");
    return QV_OK;
}

const char* valtypeToString(int32_t t) {
    return kindWord(t).word;
}

const QVChar* valtypeToHostString(int32_t t) {
    return kindWord(t).hostWord;
}

}  // namespace jmap
