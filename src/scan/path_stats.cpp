// Statistics of paths: what the automatic map is made from.
//
// Tested by tests/scan/path_stats_test.cpp
#include "path_stats.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "exact_number.h"
#include "path_text.h"
#include "path_tree.h"
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

// A path, or the path of a parent, in a tracker.  The key is a hash of the text, since the
// texts of many deep paths would need more memory than all else.  Paths of one hash are a list.
struct PATHBYTEXT {
    PATHBYTEXT* next;  // the next one with this hash
    uint64_t hash;
    PATHINFO* info;
};

constexpr QVStrSize kKeyBytes = sizeof PATHBYTEXT::hash;

QVStrSize parentLenOf(const PATHINFO* info) {
    return info->ownParent ? info->node->textLen : info->node->parent->node.textLen;
}

// Kept: a failure of a tracker is counted, but gives no status.  The map shows it: a path, or a
// group, is there twice.
PATHBYTEXT* findText(QVTrackerh tracker, uint64_t hash) {
    return tracker == nullptr ? nullptr
                              : static_cast<PATHBYTEXT*>(tracker->find(
                                    tracker, reinterpret_cast<const char*>(&hash), kKeyBytes));
}

// The entry of a text.  `lenOf` gives the bytes of an entry's path that are compared.
template <class LenOf>
PATHINFO* find(const JMAP_PRIVATE* p, QVTrackerh tracker, std::string_view text, LenOf lenOf) {
    PATHBYTEXT* entry = findText(tracker, wideHashOf(p->hashSeed, text));
    while (entry != nullptr && !pathIs(entry->info->node, lenOf(entry->info), text)) {
        entry = entry->next;
    }
    return entry == nullptr ? nullptr : entry->info;
}

void enter(JMAP_PRIVATE* p, QVTrackerh tracker, std::string_view text, PATHINFO* info) {
    if (tracker == nullptr) {
        return;
    }
    char* const mem = arenaBytes(&p->pathArena, p->cpool, sizeof(PATHBYTEXT));
    if (mem == nullptr) {
        ++p->lostLookups;
        return;
    }
    auto* entry = reinterpret_cast<PATHBYTEXT*>(mem);
    *entry = {nullptr, wideHashOf(p->hashSeed, text), info};
    if (PATHBYTEXT* first = findText(tracker, entry->hash); first != nullptr) {
        entry->next = first->next;
        first->next = entry;
    } else if (tracker->insert(tracker, reinterpret_cast<const char*>(&entry->hash), kKeyBytes,
                               entry) != QV_OK) {
        ++p->lostLookups;
    }
}

bool headsItsGroup(const PATHINFO* info) {
    return !info->member;
}

// Kept: a placeholder that is the head of its group cannot be found.  The next one of the same
// container makes a second entry, in the group, and all later ones are counted there.
bool canBeFound(const PATHINFO* info) {
    return info->type != VAR_FAKEVARIABLE || !headsItsGroup(info);
}

void enterByText(JMAP_PRIVATE* p, PATHINFO* info, std::string_view path) {
    if (canBeFound(info)) {
        enter(p, p->hash, path, info);
    }
    if (headsItsGroup(info)) {
        enter(p, p->hash2, firstOf(path, static_cast<std::size_t>(parentLenOf(info))), info);
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

// Kept: without memory the kind is left out, with no status.  The counts by kind then do not add up
// to the count of the path; the map is the same.
void addKind(JMAP_PRIVATE* p, PATHKIND* last, VALTYPE kind) {
    last->next = poolNew<PATHKIND>(p->cpool);
    if (last->next != nullptr) {
        *last->next = {nullptr, kind, 1, presentPlace(p)};
    }
}

void countKind(JMAP_PRIVATE* p, PATHKIND* kinds, VALTYPE kind) {
    for (; kinds->kind != kind; kinds = kinds->next) {
        if (kinds->next == nullptr) {
            addKind(p, kinds, kind);
            return;
        }
    }
    ++kinds->count;
}

void noteIfWatched(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type) {
    if (info->extras != nullptr && info->extras->watched == info->count) {
        const std::string_view path = pathText(p, info->node, info->node->textLen);
        noteWatched(p, info, path, type, presentPlace(p));
    }
}

void becomeCharacter(JMAP_PRIVATE* p, PATHINFO* info) {
    info->type = VAR_CHAR;
    if (p->debugInsertPath) {
        myLogNote(p, U"insertPathInfo type DOUBLE val type STRING so type now CHARACTER");
    }
}

PATHINFO* emptyPathInfo(JMAP_PRIVATE* p, const PATHNODE* node, bool ownParent) {
    char* mem = arenaBytes(&p->pathArena, p->cpool, sizeof(PATHINFO));
    if (mem == nullptr) {
        return nullptr;
    }
    std::memset(mem, 0, sizeof(PATHINFO));
    auto* info = reinterpret_cast<PATHINFO*>(mem);
    info->node = node;
    info->ownParent = ownParent;
    return info;
}

PATHINFO* newPathInfo(JMAP_PRIVATE* p, const PATHNODE* node, VALTYPE type, std::string_view value) {
    PATHINFO* info = emptyPathInfo(p, node, p->lastNameLen == 0);
    if (info == nullptr) {
        return nullptr;
    }
    info->count = 1;
    info->type = typeOf(type);
    info->pathMaxValLen = std::max<QVStrSize>(lengthOf(value), 1);
    info->longest = presentPlace(p);
    info->kinds = {nullptr, type, 1, info->longest};
    lookAtNumber(p, info, type, value);
    return info;
}

void joinGroup(PATHINFO* head, PATHINFO* info) {
    PATHINFO* last = head->downtail != nullptr ? head->downtail : head;
    last->down = info;
    info->member = true;
    info->head = head;
    head->downtail = info;
}

PATHINFO* groupByText(JMAP_PRIVATE* p, const PATHINFO* info, std::string_view path) {
    return find(p, p->hash2, firstOf(path, static_cast<std::size_t>(parentLenOf(info))),
                [](const PATHINFO* head) { return parentLenOf(head); });
}

// Enters a new path into its group, and where it can be found.
void enterPath(JMAP_PRIVATE* p, PATHNODE* node, PATHINFO* info, std::string_view path) {
    PATHINFO** group = &p->pathAt->node.children->group;
    if (*group == nullptr && p->byText) {
        *group = groupByText(p, info, path);
    }
    if (*group != nullptr) {
        joinGroup(*group, info);
    } else {
        append(p->pathInfoHead, p->pathInfoTail, info);
        *group = info;
    }
    if (p->byText) {
        enterByText(p, info, path);
    }
    node->info = canBeFound(info) ? info : nullptr;
}

QVStatus insertNewPath(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path, VALTYPE type,
                       std::string_view value) {
    PATHINFO* info = newPathInfo(p, node, type, value);
    if (info == nullptr) {
        return QV_NOMEM;
    }
    enterPath(p, node, info, path);
    if (p->watches != nullptr) {
        noteWatched(p, info, path, type, info->longest);
    }
    return QV_OK;
}

void findByText(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path) {
    if (node->info == nullptr && p->byText) {
        node->info = find(p, p->hash, path,
                          [](const PATHINFO* info) -> QVStrSize { return info->node->textLen; });
    }
}

// ---- Values that were counted elsewhere ---------------------------------------------------------

// Kept: as in addKind.
void addKinds(JMAP_PRIVATE* p, PATHKIND* kinds, const COUNTEDPATH& path, int32_t from) {
    for (int32_t i = from; i < path.kindCount; ++i) {
        PATHKIND* kind = kinds;
        while (kind->kind != path.kinds[i].kind && kind->next != nullptr) {
            kind = kind->next;
        }
        if (kind->kind == path.kinds[i].kind) {
            kind->count += path.kinds[i].count;
        } else if (auto* added = poolNew<PATHKIND>(p->cpool); added != nullptr) {
            *added = path.kinds[i];
            kind->next = added;
        }
    }
}

void addInexact(JMAP_PRIVATE* p, PATHINFO* info, const COUNTEDPATH& path) {
    if (path.inexact == 0) {
        return;
    }
    PATHEXTRAS* extras = pathExtras(p, info);
    if (extras == nullptr) {
        ++p->lostLookups;
        return;
    }
    if (extras->inexact == 0) {
        extras->firstInexact = path.firstInexact;
    }
    extras->inexact += path.inexact;
}

bool hasStrings(const COUNTEDPATH& path) {
    return path.type == VAR_CHAR ||
           std::any_of(path.kinds, path.kinds + path.kindCount,
                       [](const PATHKIND& kind) { return kind.kind == VAL_STRING; });
}

void addCounted(JMAP_PRIVATE* p, PATHINFO* info, const COUNTEDPATH& path) {
    info->count += path.count;
    addKinds(p, &info->kinds, path, 0);
    addInexact(p, info, path);
    if (info->type == VAR_DOUBLE && hasStrings(path)) {
        info->type = VAR_CHAR;
    }
    if (path.longest > info->pathMaxValLen) {
        info->pathMaxValLen = path.longest;
        info->longest = path.longestAt;
    }
}

PATHINFO* newCounted(JMAP_PRIVATE* p, const PATHNODE* node, const COUNTEDPATH& path) {
    PATHINFO* info = emptyPathInfo(p, node, path.ownParent);
    if (info == nullptr) {
        return nullptr;
    }
    info->count = path.count;
    info->type = path.type;
    info->pathMaxValLen = path.longest;
    info->longest = path.longestAt;
    info->kinds = path.kinds[0];
    addKinds(p, &info->kinds, path, 1);
    addInexact(p, info, path);
    return info;
}

}  // namespace

QVStatus insertPathInfo(JMAP_PRIVATE* p, PATHNODE* node, std::string_view path, VALTYPE type,
                        std::string_view value) {
    if (p->debugInsertPath) [[unlikely]] {
        const std::string_view slashed = shown(p, path);
        myLogNote(p, U"insertPathInfo [%.*hs] type %s valLen %d", noteLen(lengthOf(slashed)),
                  slashed.data(), valtypeToHostString(type), noteLen(lengthOf(value)));
    }
    findByText(p, node, path);
    if (node->info == nullptr) {
        return insertNewPath(p, node, path, type, value);
    }
    countAgain(p, node->info, type, value);
    return QV_OK;
}

QVStatus insertCounted(JMAP_PRIVATE* p, PATHNODE* node, const COUNTEDPATH& path) {
    if (childrenOf(p, &p->pathAt->node) == nullptr) {
        return QV_NOMEM;
    }
    std::string_view text;
    if (p->byText) {
        text = pathText(p, node, node->textLen);
        if (text.data() == nullptr) {
            return QV_NOMEM;
        }
        findByText(p, node, text);
    }
    if (node->info != nullptr) {
        addCounted(p, node->info, path);
        return QV_OK;
    }
    PATHINFO* info = newCounted(p, node, path);
    if (info == nullptr) {
        return QV_NOMEM;
    }
    enterPath(p, node, info, text);
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
            const QVStrSize len = info.node->textLen;
            const std::string_view path = pathText(p, info.node, len);
            if (lengthOf(path) != len) {
                ++p->lostLookups;
                continue;
            }
            enterByText(p, &info, path);
        }
    }
}

[[gnu::noinline]] void countIfInexact(JMAP_PRIVATE* p, PATHINFO* info, std::string_view number) {
    if (!losesDigits(p->smh, number)) {
        return;
    }
    PATHEXTRAS* extras = pathExtras(p, info);
    if (extras == nullptr) {
        ++p->lostLookups;
    } else if (++extras->inexact == 1) {
        extras->firstInexact = presentPlace(p);
    }
}

[[gnu::noinline]] void countOther(JMAP_PRIVATE* p, PATHINFO* info, VALTYPE type, QVStrSize valLen) {
    countKind(p, &info->kinds, type);
    if (p->watches != nullptr) [[unlikely]] {
        noteIfWatched(p, info, type);
    }
    if (info->type == VAR_DOUBLE && type == VAL_STRING) {
        becomeCharacter(p, info);
    }
    if (valLen > info->pathMaxValLen) {
        info->pathMaxValLen = valLen;
        info->longest = presentPlace(p);
    }
}

PATHEXTRAS* pathExtras(JMAP_PRIVATE* p, PATHINFO* info) {
    if (info->extras == nullptr) {
        char* mem = arenaBytes(&p->pathArena, p->cpool, sizeof(PATHEXTRAS));
        if (mem != nullptr) {
            std::memset(mem, 0, sizeof(PATHEXTRAS));
        }
        info->extras = reinterpret_cast<PATHEXTRAS*>(mem);
    }
    return info->extras;
}

QVStatus dumpPathInfo(JMAP_PRIVATE* p) {
    myLogNote(p, U"Path info dump");
    for (PATHINFO& head : each(p->pathInfoHead)) {
        for (const PATHINFO& info : eachDown(&head)) {
            const std::string_view path = shown(p, pathText(p, info.node, info.node->textLen));
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
