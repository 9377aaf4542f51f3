// What a scan has counted, as bytes, and the sum of several.
//
// Tested by tests/scan/partial_scan_test.cpp
#include "partial_scan.h"

#include "core/hash.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "count_sink.h"
#include "nesting.h"
#include "path_stats.h"
#include "path_tree.h"

#include <algorithm>

namespace jmap {
namespace {

constexpr std::string_view kMagic{"QVPS\x01", 5};

enum PARTNODE : uint64_t { PARTNODE_MEMBER, PARTNODE_ELEMENT, PARTNODE_PLAIN };

// ---- Writing ------------------------------------------------------------------------------------

// Bytes that grow.  After a failure they stay as they are, and `status` says why.
struct PARTWRITER {
    JMAP_PRIVATE* p;
    VARSTR* bytes;
    QVStatus status;
};

bool room(PARTWRITER& to, QVStrSize need) {
    VARSTR* const bytes = to.bytes;
    if (to.status == QV_OK && bytes->len + need >= bytes->alloc) {
        to.status = jmapVarstrCheck(to.p, bytes, std::max(need, bytes->len));  // doubles it
    }
    return to.status == QV_OK;
}

void putNumber(PARTWRITER& to, uint64_t number) {
    constexpr QVStrSize kLongest = 10;
    if (!room(to, kLongest)) {
        return;
    }
    for (; number >= 0x80; number >>= 7) {
        put(to.bytes, static_cast<char>(number | 0x80));
    }
    put(to.bytes, static_cast<char>(number));
}

void putBytes(PARTWRITER& to, std::string_view bytes) {
    if (room(to, lengthOf(bytes))) {
        put(to.bytes, bytes);
    }
}

void putText(PARTWRITER& to, std::string_view text) {
    putNumber(to, text.size());
    putBytes(to, text);
}

void putPlace(PARTWRITER& to, const PLACE& place) {
    putNumber(to, static_cast<uint64_t>(place.line));
    putNumber(to, static_cast<uint64_t>(place.column));
}

void putNode(PARTWRITER& to, PATHNODE* node, PARTNODE kind, uint64_t& count) {
    node->partNumber = ++count;
    putNumber(to, node->parent->node.partNumber);
    putNumber(to, kind);
    putText(to, nameOf(node));
    putNumber(to, kind != PARTNODE_MEMBER     ? static_cast<uint64_t>(node->number)
                  : node->children == nullptr ? 0
                                              : node->children->markers);
}

void putElements(PARTWRITER& to, const PATHCHILDREN& of, uint64_t& count) {
    for (const PARTNODE kind : {PARTNODE_ELEMENT, PARTNODE_PLAIN}) {
        PATHNODE* element = of.elements[kind == PARTNODE_PLAIN ? 1 : 0];
        for (; element != nullptr; element = element->follower) {
            putNode(to, element, kind, count);
        }
    }
}

void putNodes(PARTWRITER& to) {
    JMAP_PRIVATE* p = to.p;
    putNumber(to, p->pathNodes);
    uint64_t count = 0;
    p->pathRoot.node.partNumber = 0;
    for (PATHBRANCH* at = &p->pathRoot; at != nullptr; at = nextBranch(at)) {
        if (at != &p->pathRoot) {
            putNode(to, &at->node, PARTNODE_MEMBER, count);
        }
        if (at->node.children != nullptr) {
            putElements(to, *at->node.children, count);
        }
    }
}

void putInfo(PARTWRITER& to, const PATHINFO& info) {
    putNumber(to, info.node->partNumber);
    putNumber(to, info.ownParent ? 1 : 0);
    putNumber(to, info.type);
    putNumber(to, static_cast<uint64_t>(info.count));
    putNumber(to, static_cast<uint64_t>(info.pathMaxValLen));
    putPlace(to, info.longest);
    const PATHEXTRAS* extras = info.extras;
    putNumber(to, extras == nullptr ? 0 : static_cast<uint64_t>(extras->inexact));
    putPlace(to, extras == nullptr ? PLACE{} : extras->firstInexact);
    uint64_t kinds = 0;
    for (const PATHKIND* kind = &info.kinds; kind != nullptr; kind = kind->next) {
        ++kinds;
    }
    putNumber(to, kinds);
    for (const PATHKIND* kind = &info.kinds; kind != nullptr; kind = kind->next) {
        putNumber(to, kind->kind);
        putNumber(to, static_cast<uint64_t>(kind->count));
        putPlace(to, kind->first);
    }
}

void putInfos(PARTWRITER& to) {
    uint64_t infos = 0;
    for (PATHINFO& head : each(to.p->pathInfoHead)) {
        for ([[maybe_unused]] const PATHINFO& info : eachDown(&head)) {
            ++infos;
        }
    }
    putNumber(to, infos);
    for (PATHINFO& head : each(to.p->pathInfoHead)) {
        for (const PATHINFO& info : eachDown(&head)) {
            putInfo(to, info);
        }
    }
}

void putTotals(PARTWRITER& to) {
    const JMAP_PRIVATE* p = to.p;
    putNumber(to, partFlags(p));
    putNumber(to, p->pathCount);
    putNumber(to, static_cast<uint64_t>(p->valueMaxLen));
    putNumber(to, p->rootMarkers);
    putNumber(to, p->lostLookups);
    putNumber(to, static_cast<uint64_t>(p->labelCountMax) + 1);
    for (int32_t i = 0; i <= p->labelCountMax; ++i) {
        putNumber(to, static_cast<uint64_t>(p->labelMaxes[i]));
    }
}

// ---- Reading ------------------------------------------------------------------------------------

// What has not been read yet.  What is not there is read as 0, and `whole` becomes false.
struct PARTREADER {
    const char* at;
    const char* end;
    bool whole;
};

uint64_t takeNumber(PARTREADER& from) {
    uint64_t number = 0;
    for (unsigned shift = 0; from.at != from.end && shift < 64; shift += 7) {
        const auto byte = static_cast<uint8_t>(*from.at++);
        number |= static_cast<uint64_t>(byte & 0x7F) << shift;
        if (byte < 0x80) {
            return number;
        }
    }
    from.whole = false;
    return 0;
}

// A number of at most `most`.
int64_t takeUpTo(PARTREADER& from, int64_t most) {
    const uint64_t number = takeNumber(from);
    if (number > static_cast<uint64_t>(most)) {
        from.whole = false;
        return 0;
    }
    return static_cast<int64_t>(number);
}

int64_t takeCount(PARTREADER& from) {
    return takeUpTo(from, INT64_MAX);
}

std::string_view takeText(PARTREADER& from) {
    const int64_t len = takeUpTo(from, from.end - from.at);
    const std::string_view text = view(from.at, len);
    from.at += len;
    return text;
}

// A place of the part, in the whole.
PLACE takePlace(PARTREADER& from, const PLACE& begins) {
    const PLACE place = {takeCount(from), takeCount(from)};
    if (place.line == 0) {
        return place;
    }
    return {place.line - 1 + begins.line,
            place.line == 1 ? place.column - 1 + begins.column : place.column};
}

// The nodes of a part in the document's tree, by their numbers.
struct PARTNODES {
    PATHNODE** nodes;  // [count + 1]
    bool* elements;    // likewise: it has no children
    int64_t known;     // so many have been read
};

// Finds a member, or makes it.  Null without memory.
PATHNODE* takeMember(JMAP_PRIVATE* p, std::string_view name, int64_t markers) {
    PATHNODE* node = memberNode(p, name);
    PATHCHILDREN* below = node == nullptr ? nullptr : childrenOf(p, node);
    if (below == nullptr) {
        return nullptr;
    }
    below->markers += static_cast<uint64_t>(markers);
    expectMember(p->pathAt, node);  // one part is much like another
    return node;
}

QVStatus takeNode(JMAP_PRIVATE* p, PARTREADER& from, PARTNODES& of) {
    const int64_t parent = takeUpTo(from, of.known);
    const int64_t kind = takeUpTo(from, PARTNODE_PLAIN);
    const std::string_view name = takeText(from);
    const int64_t number = takeCount(from);
    if (!from.whole || of.elements[parent]) {
        return QV_BADPARMS;
    }
    p->pathAt = branchOf(of.nodes[parent]);
    PATHNODE* node = kind == PARTNODE_MEMBER ? takeMember(p, name, number)
                                             : elementNode(p, kind == PARTNODE_PLAIN, number, name);
    ++of.known;
    of.nodes[of.known] = node;
    of.elements[of.known] = kind != PARTNODE_MEMBER;
    return node == nullptr ? QV_NOMEM : mindGrowth(p);
}

QVStatus takeNodes(JMAP_PRIVATE* p, PARTREADER& from, PARTNODES& of) {
    constexpr int64_t kLeastBytes = 4;  // of a node
    const int64_t count = takeUpTo(from, (from.end - from.at) / kLeastBytes);
    of.nodes = poolNew<PATHNODE*>(p->cpool, count + 1);
    of.elements = poolNew<bool>(p->cpool, count + 1);
    if (of.nodes == nullptr || of.elements == nullptr) {
        return QV_NOMEM;
    }
    of.nodes[0] = &p->pathRoot.node;
    while (of.known < count) {
        QV_TRY(takeNode(p, from, of));
    }
    return QV_OK;
}

void takeKinds(PARTREADER& from, COUNTEDPATH* path, const PLACE& begins) {
    path->kindCount = static_cast<int32_t>(takeUpTo(from, kKindsOfAPath));
    for (int32_t i = 0; i < path->kindCount; ++i) {
        const auto kind = static_cast<VALTYPE>(takeUpTo(from, VAL_FAKEVARIABLE));
        const int64_t count = takeCount(from);
        path->kinds[i] = {nullptr, kind, count, takePlace(from, begins)};
    }
    from.whole = from.whole && path->kindCount != 0;
}

QVStatus takePath(JMAP_PRIVATE* p, PARTREADER& from, const PARTNODES& of, const PLACE& begins) {
    const int64_t number = takeUpTo(from, of.known);
    COUNTEDPATH path = {};
    path.ownParent = takeUpTo(from, 1) != 0;
    path.type = static_cast<VARTYPE>(takeUpTo(from, VAR_FAKEVARIABLE));
    from.whole = from.whole && path.type != VAR_ORDINAL;
    path.count = takeCount(from);
    path.longest = takeCount(from);
    path.longestAt = takePlace(from, begins);
    path.inexact = takeCount(from);
    path.firstInexact = takePlace(from, begins);
    takeKinds(from, &path, begins);
    PATHNODE* node = of.nodes[number];
    const bool placed = path.ownParent ? !of.elements[number] : node->parent != nullptr;
    if (!from.whole || !placed) {
        return QV_BADPARMS;
    }
    p->pathAt = path.ownParent ? branchOf(node) : node->parent;
    return insertCounted(p, node, path);
}

QVStatus takePaths(JMAP_PRIVATE* p, PARTREADER& from, const PARTNODES& of, const PLACE& begins) {
    for (int64_t left = takeCount(from); left > 0; --left) {
        QV_TRY(takePath(p, from, of, begins));
    }
    return QV_OK;
}

QVStatus takeTotals(JMAP_PRIVATE* p, PARTREADER& from) {
    const uint64_t flags = takeNumber(from);
    p->emptyName = p->emptyName || (flags & PART_EMPTYNAME) != 0;
    p->otherElements = p->otherElements || (flags & PART_OTHERELEMENTS) != 0;
    p->longElements = p->longElements || (flags & PART_LONGELEMENTS) != 0;
    p->pathCount += takeNumber(from);
    p->valueMaxLen = std::max<QVStrSize>(p->valueMaxLen, takeCount(from));
    const uint64_t markers = takeNumber(from);
    p->rootMarkers += markers;
    p->lostLookups += takeNumber(from);
    const int64_t depths = takeUpTo(from, std::min<int64_t>(from.end - from.at, INT32_MAX));
    for (int32_t depth = 0; depth < depths; ++depth) {
        const auto longest = static_cast<int32_t>(takeUpTo(from, INT32_MAX));
        QV_TRY(keepLabelLength(p, depth, longest));
    }
    PATHCHILDREN* root = childrenOf(p, &p->pathRoot.node);
    if (root == nullptr) {
        return QV_NOMEM;
    }
    root->markers += markers;
    return QV_OK;
}

}  // namespace

void beginPart(JMAP_PRIVATE* p) {
    for (PATHBRANCH* at = &p->pathRoot; at != nullptr; at = nextBranch(at)) {
        at->node.info = nullptr;
        if (at->node.children != nullptr) {
            at->node.children->group = nullptr;
            at->node.children->markers = 0;
        }
    }
    p->pathInfoHead = p->pathInfoTail = nullptr;
    p->pathCount = 0;
    p->rootMarkers = 0;
    p->textMarkers = UINT64_MAX;  // no text begins here
    p->valueMaxLen = 0;
    p->lastCallback = CB_OBJECTEND;  // as after another element
}

uint32_t partFlags(const JMAP_PRIVATE* p) noexcept {
    return (p->emptyName ? uint32_t{PART_EMPTYNAME} : 0) |
           (p->otherElements ? uint32_t{PART_OTHERELEMENTS} : 0) |
           (p->longElements ? uint32_t{PART_LONGELEMENTS} : 0);
}

QVStatus writePart(JMAP_PRIVATE* p, std::string_view* bytes) {
    p->path.len = 0;
    PARTWRITER to = {p, &p->path, QV_OK};
    putBytes(to, kMagic);
    putTotals(to);
    putNodes(to);
    putInfos(to);
    const uint64_t sum = to.status == QV_OK ? checksumOf(view(p->path.str, p->path.len)) : 0;
    for (unsigned shift = 0; shift < 64; shift += 8) {
        const auto byte = static_cast<char>(sum >> shift);
        putBytes(to, {&byte, 1});
    }
    *bytes = view(p->path.str, p->path.len);
    return to.status;
}

QVStatus addPart(JMAP_PRIVATE* p, std::string_view bytes, PLACE begins) {
    constexpr std::size_t kSumBytes = 8;
    if (bytes.size() < kMagic.size() + kSumBytes || firstOf(bytes, kMagic.size()) != kMagic) {
        return QV_BADPARMS;
    }
    const std::string_view counted = firstOf(bytes, bytes.size() - kSumBytes);
    uint64_t sum = 0;
    for (std::size_t i = 0; i < kSumBytes; ++i) {
        sum |= uint64_t{static_cast<uint8_t>(bytes[counted.size() + i])} << (8 * i);
    }
    if (sum != checksumOf(counted)) {
        return QV_BADPARMS;
    }
    PARTREADER from = {counted.data() + kMagic.size(), counted.data() + counted.size(), true};
    PARTNODES nodes = {};
    QVStatus status = takeTotals(p, from);
    if (status == QV_OK) {
        status = takeNodes(p, from, nodes);
    }
    if (status == QV_OK) {
        status = takePaths(p, from, nodes, begins);
    }
    (void)poolFree(p->cpool, nodes.nodes);  // on failure they are freed with the pool
    (void)poolFree(p->cpool, nodes.elements);
    p->pathAt = &p->pathRoot;
    QV_TRY(status);
    return from.whole && from.at == from.end ? QV_OK : QV_BADPARMS;
}

}  // namespace jmap
