// The parser outside its loop: the table, the tokens that need a collector, the ends of a call.
//
// Tested by tests/json/
#include "host/json/parser.h"

#include "host/nls/code_page.h"
#include "host/rim.h"

#include <cstring>
#include <new>
#include <string_view>

namespace qvhost {

namespace {

bool isLetter(uint8_t byte) {
    return (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
}

template <std::size_t kSize>
bool standsAt(const uint8_t* p, const uint8_t* end, const char (&word)[kSize]) {
    return static_cast<std::size_t>(end - p) >= kSize - 1 && std::memcmp(p, word, kSize - 1) == 0;
}

std::string_view nameOf(const JSNParserParms& parms) {
    return parms.desc == nullptr
               ? std::string_view()
               : std::string_view(parms.desc, static_cast<std::size_t>(parms.descLen));
}

}  // namespace

// ---- The table ----------------------------------------------------------------------------------

Parser::Parser(QVHndlp hndl, const JSNParserParms& parms, const ParserSettings& settings)
    : JSNParser{},
      callbacks_(parms.callbacks),
      scan_(scanRoutines(settings.kernel, parms.textCei == U_UTF8_CE)),
      utf8_(parms.textCei == U_UTF8_CE),
      containers_(parms.pool, settings.maxDepth == 0 ? UINT64_MAX : settings.maxDepth),
      text_(parms.pool),
      stringCollector_(scan_.text, codePage(parms.textCei), text_),
      entry_(hndl, ObjectKind::PARSER, generic, nameOf(parms)) {
    std::memcpy(generic.tag, "JSNP", sizeof generic.tag);
    generic.destroy = &Rim<&destroyParser>::call;
    JSNParser::parse = &Rim<&parseBuffer>::call;
    JSNParser::line = &lineOf;
    JSNParser::column = &columnOf;
    JSNParser::eventColumn = &eventColumnOf;
    JSNParser::setRules = &setRules;
    JSNParser::offset = &offsetOf;
    JSNParser::eventOffset = &eventOffsetOf;
}

QVStatus Parser::destroyParser(QVGeneric* self) {
    delete static_cast<Parser*>(reinterpret_cast<JSNParser*>(self));
    return QV_OK;
}

QVStatus Parser::parseBuffer(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done) {
    if (bufLen < 0 || (buf == nullptr && bufLen != 0)) {
        return QV_BADPARMS;
    }
    return static_cast<Parser*>(self)->parseBytes(static_cast<const uint8_t*>(buf),
                                                  static_cast<std::size_t>(bufLen), done != 0);
}

int64_t Parser::lineOf(JSNParserh self) {
    return static_cast<Parser*>(self)->line_;
}

int64_t Parser::columnOf(JSNParserh self) {
    const auto* parser = static_cast<Parser*>(self);
    return parser->offset_ - parser->lineStart_ + 1;
}

int64_t Parser::eventColumnOf(JSNParserh self) {
    const auto* parser = static_cast<Parser*>(self);
    return parser->event_ != nullptr ? parser->columnOf(parser->event_) : parser->eventColumn_;
}

int64_t Parser::offsetOf(JSNParserh self) {
    return static_cast<Parser*>(self)->offset_;
}

int64_t Parser::eventOffsetOf(JSNParserh self) {
    const auto* parser = static_cast<Parser*>(self);
    return parser->event_ != nullptr ? parser->offsetOf(parser->event_) : parser->eventOffset_;
}

// The column of a byte of the present buffer.
int64_t Parser::columnOf(const uint8_t* p) const {
    return rules_.columnOf != nullptr ? rules_.columnOf(rules_.arg, offsetOf(p))
                                      : offsetOf(p) - lineStart_ + 1;
}

void Parser::setRules(JSNParserh self, const JSNTextRules* rules) {
    auto* parser = static_cast<Parser*>(self);
    parser->rules_ = *rules;
    if (rules->maxDepth != 0) {
        parser->containers_.limit(rules->maxDepth);
    }
}

QVStatus Parser::parseBytes(const uint8_t* buf, std::size_t bufLen, bool done) {
    if (state_ == State::FAILED) {
        return status_;
    }
    static constexpr uint8_t kNothing[1] = {};
    buf_ = buf == nullptr ? kNothing : buf;
    try {
        loop(buf_, buf_ + bufLen);
    } catch (const std::bad_alloc&) {
        fail(QV_NOMEM, buf_);
    }
    if (done && state_ == State::TOKEN && token_ == Token::NUMBER && !inContainer() &&
        numberGrammar_.whole()) {
        // Only here does the end of the document end a token.
        const QVStatus status = deliverNumber();
        pause(status == QV_OK ? State::DONE : State::FAILED, status, buf_ + bufLen);
    }
    if (done && manyValues() && !inContainer()) {
        endLines();
    }
    if (event_ != nullptr) {
        // Its token goes on in the next buffer, or may have failed.
        const bool asked = state_ == State::TOKEN || state_ == State::FAILED;
        eventColumn_ = asked ? columnOf(event_) : 0;
        eventOffset_ = offsetOf(event_);
        event_ = nullptr;
    }
    bufOffset_ += static_cast<int64_t>(bufLen);
    return status_;
}

// ---- Steps that every loop shares -------------------------------------------------------------

// A scalar that begins a buffer, or is the document: rare enough to go to its collector at once.
const uint8_t* Parser::loneScalar(const uint8_t* p, const uint8_t* end) {
    event_ = p;
    if (*p == '"') {
        return beginString(p + 1, p + 1, end, Token::STRING);
    }
    return *p == '-' || isDigit(*p) ? beginNumber(p, end) : word(p, end);
}

// The word, or the mistake, that begins at `p`.
const uint8_t* Parser::word(const uint8_t* p, const uint8_t* end) {
    event_ = p;
    switch (*p) {
        case 't':
            return standsAt(p, end, "true")
                       ? delivered(callbacks_->booleanVal(callbacks_, 1), p + 4)
                       : beginWord(p, end);
        case 'f':
            return standsAt(p, end, "false")
                       ? delivered(callbacks_->booleanVal(callbacks_, 0), p + 5)
                       : beginWord(p, end);
        case 'n':
            return standsAt(p, end, "null") ? delivered(callbacks_->nullx(callbacks_), p + 4)
                                            : beginWord(p, end);
        default:
            return unexpected(isLetter(*p) ? QV_JSON_LITERAL : QV_JSON_VALUE, p);
    }
}

// ---- JSON Lines and sequences -----------------------------------------------------------------

// After the value of a line, perhaps in a later buffer: the rest of the line, and what follows up
// to the next value.  In a sequence that may be nothing.
const uint8_t* Parser::nextLine(const uint8_t* p, const uint8_t* end) {
    const int64_t before = line_;
    p = spaceRun(p, end);
    const bool sameLine = rules_.lines != 0 && line_ == before;
    const State state = sameLine ? State::DONE : State::DOCUMENT;
    if (p == end) {
        return pause(state, QV_EOF, p);
    }
    if (state == State::DONE) {
        return fail(QV_JSON_LINE_REST, p);
    }
    state_ = state;
    return p;
}

// The text ends between two values: the array around them ends too.
void Parser::endLines() {
    if (state_ == State::BEGIN) {
        status_ = callbacks_->arrayStart(callbacks_);
    } else if (state_ == State::DOCUMENT || state_ == State::DONE) {
        status_ = QV_OK;
    } else {
        return;
    }
    status_ = status_ == QV_OK ? callbacks_->arrayEnd(callbacks_) : status_;
    state_ = State::FAILED;  // nothing may follow
}

// ---- Tokens for the collectors ----------------------------------------------------------------

// A string of which [text, stop) has been found to be plain.
const uint8_t* Parser::beginString(const uint8_t* text, const uint8_t* stop, const uint8_t* end,
                                   Token token) {
    token_ = token;
    stringCollector_.begin(text, stop);
    return collectString(stop, end);
}

const uint8_t* Parser::beginNumber(const uint8_t* p, const uint8_t* end) {
    token_ = Token::NUMBER;
    text_.clear();
    numberGrammar_.begin();
    return collectNumber(p, end);
}

const uint8_t* Parser::beginWord(const uint8_t* p, const uint8_t* end) {
    token_ = Token::WORD;
    word_ = *p == 't' ? "true" : *p == 'f' ? "false" : "null";
    matched_ = 0;
    return collectWord(p, end);
}

const uint8_t* Parser::collectToken(const uint8_t* p, const uint8_t* end) {
    switch (token_) {
        case Token::NAME:
        case Token::STRING:
            return collectString(p, end);
        case Token::NUMBER:
            return collectNumber(p, end);
        case Token::WORD:
            return collectWord(p, end);
    }
    return nullptr;  // not reached
}

const uint8_t* Parser::collectString(const uint8_t* p, const uint8_t* end) {
    const QVStatus status = stringCollector_.collect(p, end);
    if (status == QV_OK) {
        return deliverString(text_.data(), text_.data() + text_.size(), token_, p);
    }
    if (status == QV_EOF) {
        return pause(State::TOKEN, QV_EOF, p);
    }
    fail(status, p);
    offset_ -= stringCollector_.mistake();
    return nullptr;
}

const uint8_t* Parser::collectNumber(const uint8_t* p, const uint8_t* end) {
    const uint8_t* from = p;
    QVStatus status = QV_OK;
    while (p != end && (status = numberGrammar_.next(*p)) == QV_OK) {
        ++p;
    }
    text_.append(from, static_cast<std::size_t>(p - from));
    if (status == QV_EOF) {
        return delivered(deliverNumber(), p);
    }
    return status == QV_OK ? pause(State::TOKEN, QV_EOF, p) : fail(status, p);
}

QVStatus Parser::deliverNumber() {
    return callbacks_->number(callbacks_, reinterpret_cast<const char*>(text_.data()),
                              static_cast<QVStrSize>(text_.size()), numberGrammar_.flags());
}

const uint8_t* Parser::collectWord(const uint8_t* p, const uint8_t* end) {
    for (; word_[matched_] != '\0'; ++matched_, ++p) {
        if (p == end) {
            return pause(State::TOKEN, QV_EOF, p);
        }
        if (*p != static_cast<uint8_t>(word_[matched_])) {
            return fail(QV_JSON_LITERAL, p);
        }
    }
    return delivered(word_[0] == 'n' ? callbacks_->nullx(callbacks_)
                                     : callbacks_->booleanVal(callbacks_, word_[0] == 't'),
                     p);
}

// The bytes that may be a byte order mark.  Either way the text is wrong from the first of them.
const uint8_t* Parser::byteOrderMark(const uint8_t* p, const uint8_t* end) {
    static constexpr uint8_t kMark[] = {0xEF, 0xBB, 0xBF};
    for (; p != end; ++p, ++matched_) {
        const bool matches = *p == kMark[matched_];
        if (!matches || matched_ == 2) {
            fail(matches ? QV_JSON_BOM : QV_JSON_VALUE, p);
            offset_ -= matched_;
            return nullptr;
        }
    }
    return pause(State::BOM, QV_EOF, p);
}

// ---- Ends of a call ---------------------------------------------------------------------------

// The call ends with `status` at `p`, and the next one goes on at `state`.
std::nullptr_t Parser::pause(State state, QVStatus status, const uint8_t* p) {
    state_ = state;
    status_ = status;
    offset_ = offsetOf(p);
    return nullptr;
}

std::nullptr_t Parser::fail(QVStatus status, const uint8_t* p) {
    return pause(State::FAILED, status, p);
}

// A byte that begins nothing that may stand at `p`.  `status` says what was expected.
std::nullptr_t Parser::unexpected(QVStatus status, const uint8_t* p) {
    return fail(*p == '/' ? QV_JSON_COMMENT : *p == '\n' ? QV_JSON_LINE_END : status, p);
}

}  // namespace qvhost
