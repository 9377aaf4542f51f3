// The JSON push parser: takes a document in buffers of any size and calls the events of JSNParseCB.
//
// The work is divided in two.  The loop (parser_loop.cpp) recognises tokens that are well formed
// and whole in the buffer, and passes them on without a copy.  Every other token, one that
// crosses the end of the buffer, has escapes or is wrong, goes to a collector: a small machine that
// takes the token byte by byte into memory of the parser, can stop at any byte, and knows each
// mistake.  So mistakes are described in one place, whichever way the document is cut.
//
// Nothing recurses: open containers are bytes of a stack.
//
// JSON Lines.  The events of the array around the values are made here; else a line is a document
// of its own, so that a place is never anything but the place in the text.  Within a value a line
// feed is not passed over as white space, and so turns up where a token is expected.  A sequence is
// the same without lines.
//
// Position.  Line feeds are counted while white space is skipped, since they occur nowhere else.
// So the bytes are read only once.
//
// Tested by tests/json/
#pragma once

#include "qvehost.h"

#include "host/host_object.h"
#include "host/json/container_stack.h"
#include "host/json/growing_bytes.h"
#include "host/json/parser_number.h"
#include "host/json/parser_string.h"
#include "host/json/scan_routines.h"
#include "host/json/scan_window.h"

#include <cstddef>
#include <cstdint>

namespace qvhost {

struct ParserSettings {
    uint64_t maxDepth = 0;  // containers that may be open at once, 0: any number
    ScanKernel kernel = ScanKernel::BEST;
};

class Parser : public JSNParser {
   public:
    // Fills the table.  The parser is made with `new` and ended by `generic.destroy`.
    Parser(QVHndlp hndl, const JSNParserParms& parms, const ParserSettings& settings);
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

   private:
    // What comes next.
    enum class State : uint8_t {
        BEGIN,           // the first byte: a byte order mark is detected here
        BOM,             // after the first bytes of what may be one
        DOCUMENT,        // the value of the document
        VALUE,           // after ':'
        NAME,            // after ',' in an object
        NAME_OR_END,     // after '{'
        COLON,           // after a member name
        MEMBER_NEXT,     // after a member: ',' or '}'
        ELEMENT,         // after ',' in an array
        ELEMENT_OR_END,  // after '['
        ELEMENT_NEXT,    // after an element: ',' or ']'
        TOKEN,           // inside a token that crosses the end of a buffer
        DONE,            // only white space
        FAILED           // nothing: `status_` is the answer for ever, a mistake or the end
    };
    enum class Token : uint8_t { NAME, STRING, NUMBER, WORD };

    // The table's slots.
    static QVStatus parseBuffer(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done);
    static int64_t lineOf(JSNParserh self);
    static int64_t columnOf(JSNParserh self);
    static int64_t eventColumnOf(JSNParserh self);
    static int64_t offsetOf(JSNParserh self);
    static int64_t eventOffsetOf(JSNParserh self);
    static void setRules(JSNParserh self, const JSNTextRules* rules);
    static QVStatus destroyParser(QVGeneric* self);
    QVStatus parseBytes(const uint8_t* buf, std::size_t bufLen, bool done);

    // The loop and its steps (parser_loop.cpp).  A step gives the byte after what it took, or null
    // when the call must end with `status_`.
    void loop(const uint8_t* p, const uint8_t* end);
    const uint8_t* inside(const uint8_t* p, const uint8_t* end, TextWindow& window);
    const uint8_t* outside(const uint8_t* p, const uint8_t* end);
    const uint8_t* open(Container container, const uint8_t* p);
    const uint8_t* close(Container container, const uint8_t* p);
    const uint8_t* scalar(const uint8_t* p, NearStops stops, const uint8_t* end,
                          TextWindow& window);
    const uint8_t* string(const uint8_t* p, const uint8_t* stop, const uint8_t* end,
                          TextWindow& window, Token token);
    const uint8_t* otherString(const uint8_t* text, const uint8_t* end, TextWindow& window,
                               Token token);
    const uint8_t* number(const uint8_t* p, const uint8_t* first, const uint8_t* end);
    const uint8_t* negative(const uint8_t* p, const uint8_t* end);
    const uint8_t* toByte(uint8_t byte, const uint8_t* p, const uint8_t* end, State state);
    const uint8_t* toToken(const uint8_t* p, const uint8_t* end, State state);
    const uint8_t* space(const uint8_t* p, const uint8_t* end);
    const uint8_t* spaceRun(const uint8_t* p, const uint8_t* end);
    const uint8_t* loneScalar(const uint8_t* p, const uint8_t* end);
    const uint8_t* word(const uint8_t* p, const uint8_t* end);
    // What comes after a value.
    [[nodiscard]] State afterValue() const {
        const Container container = containers_.innermost();
        return container == Container::OBJECT  ? State::MEMBER_NEXT
               : container == Container::ARRAY ? State::ELEMENT_NEXT
                                               : State::DONE;
    }
    [[nodiscard]] bool inContainer() const { return containers_.innermost() != Container::NONE; }
    // The string [text, stop), after which the document goes on at `p`.
    const uint8_t* deliverString(const uint8_t* text, const uint8_t* stop, Token token,
                                 const uint8_t* p) {
        const int32_t flags = token == Token::NAME ? JSN_MEMBERNAME : JSN_VALUE;
        return delivered(callbacks_->string(callbacks_, text, stop - text, flags), p);
    }
    // After an event whose callback gave `status`.
    const uint8_t* delivered(QVStatus status, const uint8_t* p) {
        return status == QV_OK ? p : fail(status, p);
    }

    // JSON Lines and sequences.
    [[nodiscard]] bool manyValues() const { return rules_.lines != 0 || rules_.sequence != 0; }
    const uint8_t* nextLine(const uint8_t* p, const uint8_t* end);
    void endLines();

    // Tokens for the collectors.
    const uint8_t* beginString(const uint8_t* text, const uint8_t* stop, const uint8_t* end,
                               Token token);
    const uint8_t* beginNumber(const uint8_t* p, const uint8_t* end);
    const uint8_t* beginWord(const uint8_t* p, const uint8_t* end);
    const uint8_t* collectToken(const uint8_t* p, const uint8_t* end);
    const uint8_t* collectString(const uint8_t* p, const uint8_t* end);
    const uint8_t* collectNumber(const uint8_t* p, const uint8_t* end);
    const uint8_t* collectWord(const uint8_t* p, const uint8_t* end);
    QVStatus deliverNumber();
    const uint8_t* byteOrderMark(const uint8_t* p, const uint8_t* end);

    // Ends of a call, all null.
    std::nullptr_t pause(State state, QVStatus status, const uint8_t* p);
    std::nullptr_t fail(QVStatus status, const uint8_t* p);
    std::nullptr_t unexpected(QVStatus status, const uint8_t* p);
    [[nodiscard]] int64_t columnOf(const uint8_t* p) const;
    [[nodiscard]] int64_t offsetOf(const uint8_t* p) const { return bufOffset_ + (p - buf_); }

    JSNParseCB* callbacks_;
    const ScanRoutines& scan_;
    bool utf8_;
    JSNTextRules rules_ = {};
    State state_ = State::BEGIN;
    QVStatus status_ = QV_OK;

    ContainerStack containers_;

    const uint8_t* buf_ = nullptr;  // the present buffer, during a call
    int64_t bufOffset_ = 0;         // its place in the document
    int64_t offset_ = 0;            // the position that `column` gives
    int64_t line_ = 1;
    int64_t lineStart_ = 0;  // offset of its first byte

    const uint8_t* event_ = nullptr;  // where the present token begins; null: in an earlier buffer,
    int64_t eventColumn_ = 1;         // in this column,
    int64_t eventOffset_ = 0;         // after so many bytes

    Token token_ = Token::STRING;  // the token of State::TOKEN
    GrowingBytes text_;            // its text
    StringCollector stringCollector_;
    NumberGrammar numberGrammar_;
    const char* word_ = nullptr;  // "true", "false" or "null"
    int matched_ = 0;             // bytes of the word, or of a byte order mark

    HostObject entry_;
};

}  // namespace qvhost
