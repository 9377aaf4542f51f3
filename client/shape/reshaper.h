// Stands between the parser and the engine, and makes of the document what the rules of a shape
// say.
//
// To the engine it is the parser: it answers to the parser's table, and calls the engine's
// callbacks with the events of a document that was written in the new shape.  To the parser it is
// the callbacks.  The rules are defined in docs/FORMATS.md.
//
// Nothing is read ahead: a member's name is held until its value begins, the text of a `text` rule
// until its end.  So memory is bounded by the depth of the document, the longest name and
// kLongestText.  Where no rule can match any more, events pass through with their depth counted.
//
// Places are those of the text.  What a rule makes of a name has the place of the name, a text that
// of its container.
//
// Tested by tests/client/reshaper_test.cpp and tests/tool/reshape.py
#pragma once

#include "qvehost.h"

#include "../handle.h"
#include "../text_relay.h"
#include "json_text.h"
#include "shape.h"
#include "shape_plans.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// What a shape has done to the values of a document.
struct ShapeCounts {
    uint64_t values = 0;        // of the document as it is: strings, numbers, true, false, null
    uint64_t names = 0;         // that became values
    uint64_t leftOut = 0;       // values left out by `drop` and `only`
    uint64_t inTexts = 0;       // values that are part of a text
    uint64_t texts = 0;         // made by `text`
    uint64_t emptyLeftOut = 0;  // empty objects and arrays left out by `empty drop`
};

class Reshaper final : private JSNParser, private JSNParseCB {
   public:
    // `host`: where the module "qvejson" is.  `parms`: what the engine would make its parser with;
    // the encoding must be UTF-8.  `relay`: parses in place of a parser of its own, and belongs to
    // it from now on; null: none.  It ends with the table's `destroy`.  Throws Error.
    Reshaper(QVHndlp host, const JSNParserParms& parms, const Shape& shape,
             std::unique_ptr<TextRelay> relay = {});
    ~Reshaper() = default;
    Reshaper(const Reshaper&) = delete;
    Reshaper& operator=(const Reshaper&) = delete;

    [[nodiscard]] JSNParserh parser() { return this; }
    [[nodiscard]] const Shape& shape() const { return plans_.shape(); }
    [[nodiscard]] const ShapeCounts& counts() const { return counts_; }

    // For each rule, whether a path of the document matched it.  `empty drop` always did.
    [[nodiscard]] const std::vector<bool>& matched() const { return plans_.matched(); }

   private:
    using Plan = ShapePlans::Plan;
    enum class Form : uint8_t {
        OBJECT,   // stays as it is
        INLINED,  // members of the object around it
        ENTRIES,  // an object that becomes an array, its members entries
        MIXED,    // an object with exceptions: members, and runs of entries
        ARRAY,    // stays
        ROWS      // an array whose elements become objects
    };
    // A container of the document that is open.
    struct Frame {
        const Plan* plan;
        Form form;
        bool wrapped;        // an object around it, which is made, ends with it
        bool inRun;          // MIXED: the array of a run is open
        bool simple;         // what no rule concerns goes to the engine as it is
        std::size_t prefix;  // where the prefix of its members' names begins in prefixes_
        std::size_t around;  // size of prefixes_ before it
    };
    // What a value is to the container around it.
    enum class Role : uint8_t { ROOT, ELEMENT, MEMBER, ENTRY };
    enum class State : uint8_t {
        SHAPING,
        PASSING,   // nothing below can match
        SKIPPING,  // left out
        WRITING    // becomes a text
    };
    // A member that is a container and, as `empty drop` holds, waits for what is in it.
    struct Waiting {
        std::string name;
        bool array;
    };
    struct EventPlace {
        int64_t line, column, offset;
    };

    // The table that the engine sees.
    static QVStatus parseText(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done);
    static QVStatus destroyReshaper(QVGeneric* self);
    static Reshaper& of(JSNParserh self) { return static_cast<Reshaper&>(*self); }
    static Reshaper& of(JSNParseCB* cb) { return static_cast<Reshaper&>(*cb); }

    // The callbacks that the parser sees.
    template <bool kArray>
    static QVStatus containerStart(JSNParseCB* cb);
    template <bool kArray>
    static QVStatus containerEnd(JSNParseCB* cb);
    static QVStatus nullValue(JSNParseCB* cb);
    static QVStatus booleanValue(JSNParseCB* cb, QVBoolean value);
    static QVStatus numberValue(JSNParseCB* cb, const char* text, QVStrSize textLen, int32_t flags);
    static QVStatus stringEvent(JSNParseCB* cb, const JSNChar* text, QVStrSize textLen,
                                int32_t flags);

    template <class Emit, class Write>
    QVStatus otherValue(Emit emit, Write write);
    QVStatus otherNull();
    QVStatus otherBoolean(QVBoolean value);
    QVStatus otherNumber(const char* text, QVStrSize textLen, int32_t flags);
    QVStatus otherString(const JSNChar* text, QVStrSize textLen, int32_t flags);
    void openDirect(bool array);
    bool sendsName(std::string_view name) noexcept;
    QVStatus otherName(std::string_view name);
    QVStatus endPassing();
    void setState(State state);
    void settle();
    void open(bool array);
    void close();
    template <class Emit>
    void put(Role role, Emit emit);
    [[nodiscard]] bool leavesOut(Role role, bool container) const;
    [[nodiscard]] const Plan& planOfNext(Role role) const;
    [[nodiscard]] Form formOf(Role role, bool array) const;
    bool openAs(Role role, Form form);

    [[nodiscard]] Role roleOfNext() const;
    [[nodiscard]] EventPlace eventPlace() const;
    [[nodiscard]] int64_t eventPlaceOr(int64_t EventPlace::*part) const;

    // What goes to the engine.  Each throws the engine's status.
    void content();
    void emitName(std::string_view name);
    void emitString(std::string_view text, const EventPlace& place);
    void emitOpen(bool array);
    void emitMemberOpen(std::string_view name, bool array);
    void emitClose(bool array);
    std::string_view memberName();
    void beginEntry();
    void beginMember();
    void endRun(Frame& frame);

    ShapePlans plans_;
    ShapeCounts counts_;

    State state_ = State::SHAPING;
    uint64_t depth_ = 0;  // containers open in another state than SHAPING
    std::vector<Frame> frames_;
    std::string prefixes_;
    std::string name_;            // of the member that comes
    const Plan* next_ = nullptr;  // of its value
    // The next value goes to the engine as it is; a member's name has gone.
    bool direct_ = false;
    const Plan* object_ = nullptr;  // of the innermost container: an object that stays; null: other
    EventPlace namePlace_ = {};
    std::string made_;  // prefix and name
    JsonText text_;
    EventPlace textPlace_ = {};
    std::vector<Waiting> waiting_;
    const EventPlace* place_ = nullptr;  // of the event, where it is not the parser's

    JSNParseCB* engine_;  // the engine's callbacks
    Handle<QVJSON> json_;
    Handle<JSNParser> parser_;
};

}  // namespace qvej
