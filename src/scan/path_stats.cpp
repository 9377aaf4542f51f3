// Statistics of paths: what the automatic map is made from.
//
// Tested by tests/scan/path_stats_test.cpp
#include "path_stats.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "exact_number.h"
#include "path_text.h"
#include "path_watch.h"

#include <algorithm>
#include <cstring>
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

QVTrackerh newTracker(JMAP_PRIVATE* p, std::u32string_view name) {
    QVHndlp host = qvGlobalHandle();
    QVTrackerh tracker = host->createTracker(host, QV_TRACKER_HASH, 1, name.data(),
                                             static_cast<QVStrSize>(name.size()));
    p->lostLookups += tracker == nullptr ? 1 : 0;
    return tracker;
}

// Kept: a failure of the host's tables is counted, but has no status.  One can see its effects in
// the map: paths of the same text, or parts of a group, stand side by side.
PATHINFO* find(QVTrackerh tracker, std::string_view key) {
    if (tracker == nullptr) {
        return nullptr;
    }
    return static_cast<PATHINFO*>(tracker->find(tracker, key.data(), lengthOf(key)));
}

void enter(JMAP_PRIVATE* p, QVTrackerh tracker, std::string_view key, PATHINFO* info) {
    if (tracker != nullptr && tracker->insert(tracker, key.data(), lengthOf(key), info) != QV_OK) {
        ++p->lostLookups;
    }
}

std::string_view pathOf(const PATHINFO* info) {
    return view(info->path, info->pathLen);
}

std::string_view parentOf(const PATHINFO* info) {
    return view(info->path, info->parentLen);
}

bool headsItsGroup(const PATHINFO* info) {
    return info->head == nullptr;
}

// Kept: a placeholder that heads its group cannot be found, so that the next one of the same
// container becomes a second entry, in the group; from the third on that one counts.
bool canBeFound(const PATHINFO* info) {
    return info->type != VAR_FAKEVARIABLE || !headsItsGroup(info);
}

void enterByText(JMAP_PRIVATE* p, PATHINFO* info) {
    if (canBeFound(info)) {
        enter(p, p->hash, pathOf(info), info);
    }
    if (headsItsGroup(info)) {
        enter(p, p->hash2, parentOf(info), info);
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

[[gnu::noinline]] void countIfInexact(JMAP_PRIVATE* p, PATHINFO* info, std::string_view number) {
    if (losesDigits(p->smh, number) && ++info->inexact == 1) {
        info->firstInexact = presentPlace(p);
    }
}

void lookAtNumber(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, std::string_view value) {
    if (type == VAL_NUMBER && mayLoseDigits(value)) [[unlikely]] {
        countIfInexact(p, info, value);
    }
}

// The entry and its text are one piece.
PATHINFO* newPathInfo(JMAP_PRIVATE* p, std::string_view path, VALTYPE type,
                      std::string_view value) {
    char* mem = arenaBytes(&p->pathArena, p->cpool,
                           static_cast<QVStrSize>(sizeof(PATHINFO)) + lengthOf(path));
    if (mem == nullptr) {
        return nullptr;
    }
    std::memset(mem, 0, sizeof(PATHINFO));
    auto* info = reinterpret_cast<PATHINFO*>(mem);
    info->path = mem + sizeof(PATHINFO);
    copyShort(info->path, path);
    info->pathLen = lengthOf(path);
    info->parentLen = info->pathLen - p->lastNameLen;
    info->count = 1;
    info->type = typeOf(type);
    info->pathMaxValLen = std::max<QVStrSize>(lengthOf(value), 1);
    info->longest = presentPlace(p);
    info->kinds = {nullptr, type, 1, info->longest};
    lookAtNumber(p, info, type, value);
    if (p->watches != nullptr) {
        noteWatched(p, info, type, info->longest);
    }
    return info;
}

void joinGroup(PATHINFO* head, PATHINFO* info) {
    PATHINFO* last = head->downtail != nullptr ? head->downtail : head;
    last->down = info;
    info->head = head;
    head->downtail = info;
}

QVStatus insertNewPath(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path, VALTYPE type,
                       std::string_view value) {
    PATHINFO* info = newPathInfo(p, path, type, value);
    if (info == nullptr) {
        return QV_NOMEM;
    }
    PATHINFO** group = &p->pathAt->group;
    if (*group == nullptr && p->byText) {
        *group = find(p->hash2, parentOf(info));
    }
    if (*group != nullptr) {
        joinGroup(*group, info);
    } else {
        append(p->pathInfoHead, p->pathInfoTail, info);
        *group = info;
    }
    if (p->byText) {
        enterByText(p, info);
    }
    node->info = canBeFound(info) ? info : nullptr;
    return QV_OK;
}

}  // namespace

QVStatus insertPathInfo(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path, VALTYPE type,
                        std::string_view value) {
    if (p->debugInsertPath) [[unlikely]] {
        const std::string_view slashed = shown(p, path);
        myLogNote(p, U"insertPathInfo [%.*hs] type %s valLen %d", noteLen(lengthOf(slashed)),
                  slashed.data(), valtypeToHostString(type), noteLen(lengthOf(value)));
    }
    if (node->info == nullptr && p->byText) {
        node->info = find(p->hash, path);
    }
    if (node->info == nullptr) {
        return insertNewPath(p, node, path, type, value);
    }
    countAgain(p, node->info, type, value);
    return QV_OK;
}

void lookUpByText(JMAP_PRIVATE* p) {
    if (p->byText) {
        return;
    }
    p->byText = true;
    p->hash = newTracker(p, U"pathinfo tracker");
    p->hash2 = newTracker(p, U"pathinfo sub tracker");
    for (PATHINFO& head : each(p->pathInfoHead)) {
        for (PATHINFO& info : eachDown(&head)) {
            enterByText(p, &info);
        }
    }
}

void countAgain(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, std::string_view value) {
    const QVStrSize valLen = lengthOf(value);
    ++info->count;
    countKind(p, &info->kinds, type);
    lookAtNumber(p, info, type, value);
    if (info->count == info->watched) [[unlikely]] {
        noteWatched(p, info, type, presentPlace(p));
    }
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
