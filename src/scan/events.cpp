// What the JSON parser reports: the steps that do not depend on the sink.
//
// Tested by tests/scan/events_test.cpp
#include "events.h"

#include "core/arena.h"
#include "core/pool.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace jmap {
namespace {

constexpr QVStrSize kElementSlack = 30;  // bytes for the number after an element's base name
constexpr QVStrSize kMaxDigits = 20;     // of a 64-bit number, sign included

// Grows the buffer for an element's name.
// Kept: it grows only when the base name alone does not fit.  A base name just below its size
// leaves no room for all digits of the number, and elements then share a name.
// Kept: `elementBuf`, a buffer for the name in host characters, stays null.  The digits are ASCII
// in every document encoding, so the name is formed in bytes.  One can observe one allocation less.
QVStatus elementRoom(JMAP_PRIVATE* p, QVStrSize baseLen) {
    if (baseLen < p->elementBufLen) [[likely]] {
        return QV_OK;
    }
    (void)poolFree(p->cpool, p->celementBuf);  // replaced even if this fails
    p->elementBufLen = 0;
    p->celementBuf = poolBytes(p->cpool, baseLen + kElementSlack);
    if (p->celementBuf == nullptr) {
        return QV_NOMEM;
    }
    p->elementBufLen = baseLen + kElementSlack;
    return QV_OK;
}

struct ELEMENTNAME {
    std::string_view text;
    bool whole;  // no digit is missing
};

// The base name and the number, cut to one byte less than the buffer.
ELEMENTNAME formElementName(JMAP_PRIVATE* p, std::string_view base, uint64_t number) {
    char digits[kMaxDigits];
    const char* end = std::to_chars(digits, digits + kMaxDigits, static_cast<int64_t>(number)).ptr;
    const QVStrSize room = p->elementBufLen - 1 - lengthOf(base);  // 0 or more
    const QVStrSize digitsLen = std::min<QVStrSize>(end - digits, room);
    std::memcpy(p->celementBuf, base.data(), base.size());
    std::memcpy(p->celementBuf + base.size(), digits, static_cast<std::size_t>(digitsLen));
    return {view(p->celementBuf, lengthOf(base) + digitsLen), digitsLen == end - digits};
}

void noteName(JMAP_PRIVATE* p, std::string_view name) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, U"String [%.*hs] %hs ", noteLen(lengthOf(name)), name.data(), "Label");
    }
}

}  // namespace

uint64_t beginText(JMAP_PRIVATE* p) {
    p->lastCallback = {};
    p->severalTexts = true;
    p->textMarkers = p->rootMarkers;
    return p->rootMarkers;
}

QVStatus endContainer(JMAP_PRIVATE* p, WHAT what) {
    settleLabel(p);
    if (peekLevel(p) == nullptr || peekLevel(p)->what != what) {
        return JMAP_PARSE;
    }
    (void)popLevel(p);
    if (peekLevel(p) != nullptr && peekLevel(p)->what == WHAT_LABEL) {
        (void)popLevel(p);
    }
    dumpLevels(p);
    return QV_OK;
}

QVStatus pushName(JMAP_PRIVATE* p, std::string_view name) {
    noteName(p, name);
    return newLabel(p, name);
}

QVStatus pushElement(JMAP_PRIVATE* p, bool plain, std::string_view value) {
    const LEVEL* below = peekLevel(p)->next;
    const std::string_view base = plain ? kPlainBase : view(below->name, below->nameLen);
    QV_TRY(elementRoom(p, lengthOf(base)));
    ++p->elementCount;
    const ELEMENTNAME name = formElementName(p, base, p->elementCount);
    p->longElements = p->longElements || !name.whole || lengthOf(name.text) >= kElementSlack;
    const auto number = static_cast<int64_t>(p->elementCount);
    PATHNODE* node =
        name.whole ? elementNode(p, plain, number, name.text) : memberNode(p, name.text);
    if (node == nullptr) {
        return QV_NOMEM;
    }
    noteValue(p, name.text, value);
    noteEvent(p, U"fstring");
    noteName(p, name.text);
    return newElementLabel(p, node);
}

QVStatus countLongString(JMAP_PRIVATE* p, bool cut) {
    ++p->longStrings;
    p->valueCut = cut;
    if (cut) {
        return QV_OK;
    }
    char* const mem = arenaBytes(&p->pathArena, p->cpool, sizeof(WHOLESTRING));
    if (mem == nullptr) {
        return QV_NOMEM;
    }
    auto* whole = reinterpret_cast<WHOLESTRING*>(mem);
    *whole = {nullptr, p->longStrings};
    append(p->wholeHead, p->wholeTail, whole);
    return QV_OK;
}

void noteValue(JMAP_PRIVATE* p, std::string_view name, std::string_view value) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, U"gotValue [%.*hs][%.*hs]", noteLen(lengthOf(name)), name.data(),
                  noteLen(lengthOf(value)), value.data());
    }
}

}  // namespace jmap
