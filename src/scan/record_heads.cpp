// See record_heads.h.
#include "record_heads.h"

#include "core/pool.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "path_tree.h"

#include <cstring>

namespace jmap {
namespace {

constexpr QVStrSize kHeadPieceBytes = 65536;  // one piece of a HEADSTORE, 8 MiB in all

// Precedes each head in its piece.
struct HEADOWNER {
    PATHNODE* node;
    QVStrSize size;  // bytes from this to the next
};

// Empties a piece: the nodes whose heads are in it have none from now on.
void emptyPiece(HEADSTORE* store, int piece) {
    char* at = store->pieces[piece];
    for (char* const end = at + store->used[piece]; at < end;) {
        const auto* owner = reinterpret_cast<const HEADOWNER*>(at);
        owner->node->head = nullptr;
        at += owner->size;
    }
    store->used[piece] = 0;
}

// Room for one more head in the store; null when there is none.
char* headRoom(JMAP_PRIVATE* p, QVStrSize size) {
    HEADSTORE* store = &p->heads;
    if (size > kHeadPieceBytes) {
        return nullptr;
    }
    int piece = store->at;
    if (store->used[piece] + size > kHeadPieceBytes) {
        piece = (piece + 1) % kHeadPieces;
    }
    if (store->pieces[piece] == nullptr) {
        store->pieces[piece] = poolBytes(p->cpool, kHeadPieceBytes);
        if (store->pieces[piece] == nullptr) {
            return nullptr;
        }
    }
    if (piece != store->at) {
        store->full = store->full || piece == 0;
        store->at = piece;
        emptyPiece(store, piece);
    }
    char* const room = store->pieces[piece] + store->used[piece];
    store->used[piece] += size;
    return room;
}

void fillHead(const PATHNODE* node, char* head) {
    const QVStrSize recordLen = headLenOf(node) - 1;
    std::memset(head, 0, static_cast<std::size_t>(recordLen - node->textLen));
    std::memcpy(head, &node->labels, sizeof node->labels);
    for (const PATHNODE* at = node; at->parent != nullptr; at = &at->parent->node) {
        head[sizeof at->labels + static_cast<std::size_t>(at->labels) - 1] =
            static_cast<char>(at->nameLen);  // Kept: modulo 256
    }
    const QVStrSize textLen = node->textLen;
    std::memcpy(head + sizeof node->labels + node->labels, &textLen, sizeof textLen);
    head[recordLen - node->textLen - 1] = static_cast<char>(VAL_NOVAL);
    writePath(node, head + recordLen - node->textLen);
    head[recordLen] = ' ';
    std::memset(head + recordLen + 1, 0, static_cast<std::size_t>(kHeadStep));
}

// Gives the node a head, if it can get one.
bool makeHead(JMAP_PRIVATE* p, PATHNODE* node) {
    constexpr QVStrSize kAlignment = alignof(HEADOWNER);
    if (p->debugLevel || p->debugPath || p->debugAllData || p->debugInsertPath) {
        return false;
    }
    const QVStrSize bytes = static_cast<QVStrSize>(sizeof(HEADOWNER)) + headLenOf(node) + kHeadStep;
    const QVStrSize size = (bytes + kAlignment - 1) / kAlignment * kAlignment;
    char* const room = headRoom(p, size);
    if (room == nullptr) {
        return false;
    }
    *reinterpret_cast<HEADOWNER*>(room) = {node, size};
    node->head = room + sizeof(HEADOWNER);
    fillHead(node, node->head);
    return true;
}

// Whether to make a head.  When the store is full, a new head replaces others, so only a path that
// occurs often gets one; the head of its parent serves many children.
bool deservesHead(const JMAP_PRIVATE* p, const PATHNODE* node) {
    constexpr int64_t kOften = 16;
    return !p->heads.full || node->info == nullptr || node->info->count % kOften == 0;
}

}  // namespace

bool prepareHead(JMAP_PRIVATE* p, PATHNODE* node) {
    if (deservesHead(p, node) && makeHead(p, node)) {
        return true;
    }
    PATHBRANCH* parent = node->parent;
    return parent != nullptr && (parent->node.head != nullptr || makeHead(p, &parent->node));
}

void putHeadFromParent(const PATHNODE* node, char* to) {
    const PATHNODE* parent = &node->parent->node;
    const QVStrSize lensEnd = static_cast<QVStrSize>(sizeof node->labels) + parent->labels;
    const QVStrSize textLen = node->textLen;
    copyHead(to, parent->head, lensEnd);
    std::memcpy(to, &node->labels, sizeof node->labels);
    to += lensEnd;
    *to++ = static_cast<char>(node->nameLen);  // Kept: modulo 256
    copyHead(to, parent->head + lensEnd, headLenOf(parent) - lensEnd);
    std::memcpy(to, &textLen, sizeof textLen);
    to += headLenOf(parent) - lensEnd - 1;
    *to++ = kSep;
    copyShort(to, nameOf(node));
    to[node->nameLen] = ' ';
}

}  // namespace jmap
