// What the JSON parser reports, turned into values and markers.
//
// The eight handlers keep the nesting stack.  They give a sink every value with the node of its
// path, and a marker for each container boundary that can begin a row.  Scalar elements of arrays
// get names: the array's member name ("element" without one) and a running number.
//
// A sink is a struct of static routines, so that the handlers are compiled into one piece with it:
//
//     marker(p)                    of the container at `pathAt`
//     value(p, node, text, kind)   of a label, or of an element, that is on the stack no more
//     known(p, node, text, kind)   the same, faster, where it applies; false: nothing has been done
//     placeholder(p, node)         stands for an empty container, whose member "FAKE" `node` is
//
// Each returns QV_OK, or a status that ends the scan.  There are three: RecordSink writes records
// (record_stream.h), CountSink counts paths alone (count_sink.h), and a walk makes rows
// (reader/row_walk.h).
//
// Tested by tests/scan/events_test.cpp
#pragma once

#include "core/context.h"
#include "core/list.h"
#include "core/note.h"
#include "core/status.h"
#include "core/text.h"
#include "nesting.h"
#include "path_tree.h"

#include <string_view>

namespace jmap {

// One more text of the document begins, or the first of several: see jmapBeginText.  Returns how
// many markers of the root component there are.
uint64_t beginText(JMAP_PRIVATE* p);

// The handlers of a parser's events.  Each returns QV_OK; QV_NOMEM; JMAP_PARSE for an end that does
// not fit its start; a status of the sink.  A failure does not restore the stack and the sink.
template <class Sink>
struct Events {
    [[nodiscard]] static QVStatus farrayStart(JSNParseCB* cb);
    [[nodiscard]] static QVStatus farrayEnd(JSNParseCB* cb);
    [[nodiscard]] static QVStatus fobjectStart(JSNParseCB* cb);
    [[nodiscard]] static QVStatus fobjectEnd(JSNParseCB* cb);
    [[nodiscard]] static QVStatus fnull(JSNParseCB* cb);
    [[nodiscard]] static QVStatus fboolean(JSNParseCB* cb, QVBoolean myboo);
    [[nodiscard]] static QVStatus fnumber(JSNParseCB* cb, const char* str, QVStrSize length,
                                          int32_t flags);
    [[nodiscard]] static QVStatus fstring(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength,
                                          int32_t flags);

    // Gives the sink a scalar under the member name on top of the stack; inside an array a name is
    // made first.  Without an enclosing container `vrc` and the result are JMAP_INCOMPLETE.
    [[nodiscard]] static QVStatus gotValue(JMAP_PRIVATE* p, std::string_view value, VALTYPE type);

   private:
    static QVStatus gotMember(JMAP_PRIVATE* p, std::string_view value, VALTYPE type);
    static QVStatus gotElement(JMAP_PRIVATE* p, std::string_view value, VALTYPE type);
    static bool gotKnownElement(JMAP_PRIVATE* p, bool plain, std::string_view value, VALTYPE type);
    static QVStatus gotOtherElement(JMAP_PRIVATE* p, bool plain, std::string_view value,
                                    VALTYPE type);
    static QVStatus redeliver(JMAP_PRIVATE* p, std::string_view value, VALTYPE type);
    static QVStatus placeholder(JMAP_PRIVATE* p);
};

// The member that stands for an empty container.
inline constexpr std::string_view kPlaceholder = "FAKE";

// Sets the eight callbacks of a scan.
template <class Sink>
void installScanCallbacks(JSNParseCB* cb) {
    using E = Events<Sink>;
    *cb = {E::farrayStart, E::farrayEnd, E::fobjectStart, E::fobjectEnd,
           E::fnull,       E::fboolean,  E::fnumber,      E::fstring};
}

// ---- What the handlers of all sinks share -------------------------------------------------------

// Pops the container `what`, and the member name whose value it is.
[[nodiscard]] QVStatus endContainer(JMAP_PRIVATE* p, WHAT what);

// Pushes the name of a member.
[[nodiscard]] QVStatus pushName(JMAP_PRIVATE* p, std::string_view name);

// Makes the name of the next element of the array on top of the stack, and pushes it.
//   plain  it is not named after a label
//   value  of the element, for a note
[[nodiscard]] QVStatus pushElement(JMAP_PRIVATE* p, bool plain, std::string_view value);

// Counts a string of kMaxStringLen bytes or more.  `cut`: the string of the document is longer.
[[nodiscard]] QVStatus countLongString(JMAP_PRIVATE* p, bool cut);

inline void noteEvent(JMAP_PRIVATE* p, const QVChar* event) {
    if (p->debugLevel) [[unlikely]] {
        myLogNote(p, event);
    }
}

void noteValue(JMAP_PRIVATE* p, std::string_view name, std::string_view value);

// Whether `top` of the stack is the only one.
[[nodiscard]] inline bool isOutermost(const LEVEL* top) noexcept {
    return top != nullptr && top->next == nullptr;
}

// ---- The handlers -------------------------------------------------------------------------------

template <class Sink>
QVStatus Events<Sink>::placeholder(JMAP_PRIVATE* p) {
    PATHNODE* node = memberNode(p, kPlaceholder);
    return node == nullptr ? QV_NOMEM : Sink::placeholder(p, node);
}

// Takes a value under the member name on top of the stack.
template <class Sink>
QVStatus Events<Sink>::gotMember(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    const LEVEL* label = popLevel(p);
    noteValue(p, view(label->name, label->nameLen), value);
    return Sink::value(p, label->node, value, type);
}

// Handles an element's value as a member's, now that its name is on the stack.
template <class Sink>
QVStatus Events<Sink>::redeliver(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    JSNParseCB* cb = &p->parseCB;
    switch (type) {
        case VAL_NUMBER:
            return fnumber(cb, value.data(), lengthOf(value), JSN_REAL);
        case VAL_STRING:
            noteEvent(p, U"fstring");  // fstring has counted the value already
            return gotValue(p, value, type);
        case VAL_NULL:
            return fnull(cb);
        case VAL_BOOLEAN:
            return fboolean(cb, value.size() == 4);  // by the length of its text: "true"
        default:
            myLogNote(p, U"Hit default in switch in gotValue");
            return QV_NOMEM;
    }
}

// Takes an element whose path is known, without forming its name.  False when it does not apply;
// nothing has been done then.
template <class Sink>
bool Events<Sink>::gotKnownElement(JMAP_PRIVATE* p, bool plain, std::string_view value,
                                   VALTYPE type) {
    const PATHBRANCH* at = p->pathAt;
    PATHNODE* element = expectedElement(at, plain, static_cast<int64_t>(p->elementCount) + 1);
    if (element == nullptr || !Sink::known(p, element, value, type)) {
        return false;
    }
    at->node.children->lastElement = element;
    p->labelCurLens[p->labelCount + 1] = static_cast<int32_t>(element->nameLen);
    ++p->elementCount;
    return true;
}

// Names an element of an array and takes its value.
template <class Sink>
[[gnu::noinline]] QVStatus Events<Sink>::gotOtherElement(JMAP_PRIVATE* p, bool plain,
                                                         std::string_view value, VALTYPE type) {
    QV_TRY(pushElement(p, plain, value));
    return redeliver(p, value, type);
}

// Kept: the document has one counter, and every array end resets it.  After an array inside an
// array the numbers start again at 1, and a marker is written again.
// A scalar directly in the outermost array has no marker of its own.  Of several texts the first
// one of each begins a row, so that the values of two texts never share one.
template <class Sink>
QVStatus Events<Sink>::gotElement(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    const LEVEL* below = peekLevel(p)->next;
    const bool plain = below == nullptr || below->what != WHAT_LABEL;
    p->otherElements = p->otherElements || isOutermost(peekLevel(p));
    const bool beginsText = p->severalTexts && p->rootMarkers == p->textMarkers;
    if (beginsText || (!plain && p->elementCount == 0)) {
        QV_TRY(Sink::marker(p));
    }
    return gotKnownElement(p, plain, value, type) ? QV_OK : gotOtherElement(p, plain, value, type);
}

template <class Sink>
QVStatus Events<Sink>::farrayStart(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Array Start");
    settleLabel(p);
    if (p->lastCallback == CB_ARRAYSTART || p->lastCallback == CB_ARRAYEND) {
        QV_TRY(Sink::marker(p));
    }
    p->lastCallback = CB_ARRAYSTART;
    p->otherElements = p->otherElements || isOutermost(peekLevel(p));
    return newLevel(p, WHAT_ARRAY);
}

template <class Sink>
QVStatus Events<Sink>::farrayEnd(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Array End");
    if (p->lastCallback == CB_ARRAYSTART) {
        QV_TRY(Sink::marker(p));
        QV_TRY(placeholder(p));
    }
    p->elementCount = 0;
    p->lastCallback = CB_ARRAYEND;
    return endContainer(p, WHAT_ARRAY);
}

template <class Sink>
QVStatus Events<Sink>::fobjectStart(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Object Start");
    settleLabel(p);
    p->lastCallback = CB_OBJECTSTART;
    QV_TRY(Sink::marker(p));
    return newLevel(p, WHAT_OBJECT);
}

template <class Sink>
QVStatus Events<Sink>::fobjectEnd(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"Object End");
    if (p->lastCallback == CB_OBJECTSTART) {
        QV_TRY(placeholder(p));
    }
    p->lastCallback = CB_OBJECTEND;
    return endContainer(p, WHAT_OBJECT);
}

template <class Sink>
QVStatus Events<Sink>::fnull(JSNParseCB* cb) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fnull");
    p->lastCallback = CB_NULL;
    return gotValue(p, "null", VAL_NULL);
}

template <class Sink>
QVStatus Events<Sink>::fboolean(JSNParseCB* cb, QVBoolean myboo) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fboolean");
    p->lastCallback = CB_BOOLEAN;
    return gotValue(p, myboo != 0 ? "true" : "false", VAL_BOOLEAN);
}

template <class Sink>
QVStatus Events<Sink>::fnumber(JSNParseCB* cb, const char* str, QVStrSize length, int32_t) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fnumber");
    p->lastCallback = CB_NUMBER;
    return gotValue(p, view(str, length), VAL_NUMBER);
}

template <class Sink>
QVStatus Events<Sink>::fstring(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength,
                               int32_t flags) {
    JMAP_PRIVATE* p = contextOf(cb);
    noteEvent(p, U"fstring");
    const char* text = reinterpret_cast<const char*>(str);
    p->lastCallback = CB_STRING;
    if (flags == JSN_MEMBERNAME) {
        return pushName(p, view(text, inlength));
    }
    if (inlength >= kMaxStringLen) [[unlikely]] {
        QV_TRY(countLongString(p, inlength > kMaxStringLen));
        inlength = kMaxStringLen;
    }
    return gotValue(p, view(text, inlength), VAL_STRING);
}

template <class Sink>
QVStatus Events<Sink>::gotValue(JMAP_PRIVATE* p, std::string_view value, VALTYPE type) {
    noteEvent(p, U"gotValue");
    if (PATHNODE* node = p->awaited; node != nullptr) [[likely]] {
        p->awaited = nullptr;
        return Sink::value(p, node, value, type);
    }
    const LEVEL* top = peekLevel(p);
    if (top == nullptr) {
        p->vrc = JMAP_INCOMPLETE;
        return JMAP_INCOMPLETE;
    }
    return top->what == WHAT_LABEL ? gotMember(p, value, type) : gotElement(p, value, type);
}

}  // namespace jmap
