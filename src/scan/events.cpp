// What the JSON parser reports, turned into records.
//
// Tested by tests/scan/events_test.cpp
#include "events.h"

#include "core/arena.h"
#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "nesting.h"
#include "path_tree.h"
#include "record_stream.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

constexpr QVStrSize kElementSlack = 30;  // bytes for the number after an element's base name
constexpr QVStrSize kMaxDigits = 20;     // of a 64-bit number, sign included

void noteEvent(JMAP_PRIVATE* p, const QVChar* event) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, event);
    }
}

void noteValue(JMAP_PRIVATE* p, std::string_view name, std::string_view value) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, U"gotValue [%.*hs][%.*hs]", noteLen(lengthOf(name)), name.data(),
                  noteLen(lengthOf(value)), value.data());
    }
}

void noteName(JMAP_PRIVATE* p, std::string_view name) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, U"String [%.*hs] %hs ", noteLen(lengthOf(name)), name.data(), "Label");
    }
}

// The record that stands for an empty object or array.
QVStatus placeholder(JMAP_PRIVATE* p) {
    constexpr std::string_view kName = "FAKE";
    PATHNODE* node = memberNode(p, kName);
    return node == nullptr ? QV_NOMEM
                           : generatePathVariableString(p, node, kName, "VAR", VAL_FAKEVARIABLE);
}

// Pops the container `what`, and the member name whose value it is.
QVStatus endContainer(JMAP_PRIVATE* p, WHAT what) {
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

// Records a value under the member name on top of the stack.
QVStatus gotMember(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    const LEVEL* label = popLevel(p);
    noteValue(p, view(label->name, label->nameLen), value);
    return recordValue(p, label->node, value, type);
}

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

// Counts a string of kMaxStringLen bytes in the records.  `cut`: the string of the document is
// longer.
QVStatus countLongString(JMAP_PRIVATE* p, bool cut) {
    ++p->longStrings;
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

// Handles an element's value as a member's, now that its name is on the stack.
QVStatus redeliver(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    JSNParseCB* cb = &p->parseCB;
    switch (type) {
        case VAL_NUMBER:
            return fnumber(cb, value.data(), lengthOf(value), JSN_REAL);
        case VAL_STRING:
            noteEvent(p, U"fstring");  // fstring has counted the value already
            return gotValue(p, value.data(), lengthOf(value), type);
        case VAL_NULL:
            return fnull(cb);
        case VAL_BOOLEAN:
            return fboolean(cb, value.size() == 4);  // by the length of its text: "true"
        default:
            myLogNote(p, U"Hit default in switch in gotValue");
            return QV_NOMEM;
    }
}

// Records an element whose path is known, without forming its name.  False when it does not apply;
// nothing has been done then.
bool gotKnownElement(JMAP_PRIVATE* p, bool plain, std::string_view value, VALTYPE type) {
    const PATHBRANCH* at = p->pathAt;
    PATHNODE* element = expectedElement(at, plain, static_cast<int64_t>(p->elementCount) + 1);
    if (element == nullptr || !recordKnown(p, element, value, type)) {
        return false;
    }
    at->node.children->lastElement = element;
    p->labelCurLens[p->labelCount + 1] = static_cast<int32_t>(element->nameLen);
    ++p->elementCount;
    return true;
}

// Names an element of an array and records its value.
[[gnu::noinline]] QVStatus gotOtherElement(JMAP_PRIVATE* p, bool plain, std::string_view value,
                                           VALTYPE type) {
    const LEVEL* below = peekLevel(p)->next;
    const std::string_view base = plain ? kPlainBase : view(below->name, below->nameLen);
    QV_TRY(elementRoom(p, lengthOf(base)));
    ++p->elementCount;
    const ELEMENTNAME name = formElementName(p, base, p->elementCount);
    const auto number = static_cast<int64_t>(p->elementCount);
    PATHNODE* node =
        name.whole ? elementNode(p, plain, number, name.text) : memberNode(p, name.text);
    if (node == nullptr) {
        return QV_NOMEM;
    }
    noteValue(p, name.text, value);
    noteEvent(p, U"fstring");
    noteName(p, name.text);
    QV_TRY(newElementLabel(p, node));
    return redeliver(p, value, type);
}

// Kept: the document has one counter, and every array end resets it.  After an array inside an
// array the numbers start again at 1, and a marker is written again.
// A scalar directly in the outermost array has no marker of its own.  Of several texts the first
// one of each begins a row, so that the values of two texts never share one.
QVStatus gotElement(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    const LEVEL* below = peekLevel(p)->next;
    const bool plain = below == nullptr || below->what != WHAT_LABEL;
    const bool beginsText = p->severalTexts && p->rootMarkers == p->textMarkers;
    if (beginsText || (!plain && p->elementCount == 0)) {
        QV_TRY(generateMarker(p));
    }
    return gotKnownElement(p, plain, value, type) ? QV_OK : gotOtherElement(p, plain, value, type);
}

}  // namespace

uint64_t beginText(JMAP_PRIVATE* p) {
    p->lastCallback = {};
    p->severalTexts = true;
    p->textMarkers = p->rootMarkers;
    return p->rootMarkers;
}

void installScanCallbacks(JSNParseCB* cb) {
    *cb = {farrayStart, farrayEnd, fobjectStart, fobjectEnd, fnull, fboolean, fnumber, fstring};
}

QVStatus farrayStart(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Array Start");
    if (p->lastCallback == CB_ARRAYSTART || p->lastCallback == CB_ARRAYEND) {
        QV_TRY(generateMarker(p));
    }
    p->lastCallback = CB_ARRAYSTART;
    return newLevel(p, WHAT_ARRAY);
}

QVStatus farrayEnd(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Array End");
    if (p->lastCallback == CB_ARRAYSTART) {
        QV_TRY(generateMarker(p));
        QV_TRY(placeholder(p));
    }
    p->elementCount = 0;
    p->lastCallback = CB_ARRAYEND;
    return endContainer(p, WHAT_ARRAY);
}

QVStatus fobjectStart(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Object Start");
    p->lastCallback = CB_OBJECTSTART;
    QV_TRY(generateMarker(p));
    return newLevel(p, WHAT_OBJECT);
}

QVStatus fobjectEnd(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Object End");
    if (p->lastCallback == CB_OBJECTSTART) {
        QV_TRY(placeholder(p));
    }
    p->lastCallback = CB_OBJECTEND;
    return endContainer(p, WHAT_OBJECT);
}

QVStatus fnull(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fnull");
    p->lastCallback = CB_NULL;
    return gotValue(p, "null", 4, VAL_NULL);
}

QVStatus fboolean(JSNParseCB* cb, QVBoolean myboo) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fboolean");
    const std::string_view value = myboo != 0 ? "true" : "false";
    p->lastCallback = CB_BOOLEAN;
    return gotValue(p, value.data(), lengthOf(value), VAL_BOOLEAN);
}

QVStatus fnumber(JSNParseCB* cb, const char* str, QVStrSize length, int32_t) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fnumber");
    p->lastCallback = CB_NUMBER;
    return gotValue(p, str, length, VAL_NUMBER);
}

QVStatus fstring(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength, int32_t flags) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fstring");
    const char* text = reinterpret_cast<const char*>(str);
    p->lastCallback = CB_STRING;
    if (flags == JSN_MEMBERNAME) {
        const std::string_view name = view(text, inlength);
        noteName(p, name);
        return newLabel(p, name);
    }
    if (inlength >= kMaxStringLen) [[unlikely]] {
        QV_TRY(countLongString(p, inlength > kMaxStringLen));
        inlength = kMaxStringLen;
    }
    return gotValue(p, text, inlength, VAL_STRING);
}

QVStatus gotValue(JMAP_PRIVATE* p, const char* str, QVStrSize strLen, VALTYPE type) {
    noteEvent(p, U"gotValue");
    const LEVEL* top = peekLevel(p);
    if (top == nullptr) {
        p->vrc = JMAP_INCOMPLETE;
        return JMAP_INCOMPLETE;
    }
    const std::string_view value = view(str, strLen);
    return top->what == WHAT_LABEL ? gotMember(p, value, type) : gotElement(p, value, type);
}

}  // namespace jmap
