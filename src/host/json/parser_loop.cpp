// The parser's loop: whole, well-formed tokens of one buffer, straight from where they stand.
//
// Nearly all of the work is done by values(), which takes members and elements one after another;
// brackets change what it takes next, by way of begin() and next().  A buffer may begin anywhere;
// otherState() takes its first bytes up to a place where values() goes on.
//
// Tested by tests/json/parser_test.cpp and, for speed, bench/bench_parser.cpp
#include "host/json/parser.h"
#include "host/json/scan_window.h"

#include <cstring>

namespace qvhost {

namespace {

// The bracket that ends a container.
uint8_t closer(bool object) {
    return object ? '}' : ']';
}

}  // namespace

void Parser::loop(const uint8_t* p, const uint8_t* end) {
    TextWindow window(scan_, p, end);
    while (p != nullptr) {
        if (state_ == State::NAME || state_ == State::ELEMENT) {
            p = values(p, end, window);
        } else {
            p = otherState(p, end);
        }
    }
}

// Members of objects and elements of arrays, up to the end of the outermost container.
[[gnu::always_inline]] inline const uint8_t* Parser::values(const uint8_t* p, const uint8_t* end,
                                                            TextWindow& window) {
    bool object = state_ == State::NAME;
    for (;;) {
        if (object) {
            p = name(p, end, window);
            if (p == nullptr) {
                return nullptr;
            }
        }
        p = toByte('"', p, end, object ? State::VALUE : State::ELEMENT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p == '{' || *p == '[') {
            p = begin(p, end);
        } else {
            p = scalar(p, end, window);
            if (p == nullptr) {
                return nullptr;
            }
            p = toByte(',', p, end, object ? State::MEMBER_NEXT : State::ELEMENT_NEXT);
            if (p == nullptr) {
                return nullptr;
            }
            if (*p == ',') {
                ++p;
                continue;
            }
            p = next(p, end);
        }
        if (p == nullptr || state_ == State::DONE) {
            return p;
        }
        object = state_ == State::NAME;
    }
}

// A member name and the colon behind it.
[[gnu::always_inline]] inline const uint8_t* Parser::name(const uint8_t* p, const uint8_t* end,
                                                          TextWindow& window) {
    p = toByte('"', p, end, State::NAME);
    if (p == nullptr) {
        return nullptr;
    }
    if (*p != '"') {
        return unexpected(QV_JSON_NAME, p);
    }
    p = string(p, end, window, Token::NAME);
    if (p == nullptr) {
        return nullptr;
    }
    p = toByte(':', p, end, State::COLON);
    if (p == nullptr) {
        return nullptr;
    }
    return *p == ':' ? p + 1 : unexpected(QV_JSON_COLON, p);
}

// The container whose bracket is at `p`: its beginning, and its end if it is empty.
[[gnu::noinline]] const uint8_t* Parser::begin(const uint8_t* p, const uint8_t* end) {
    const bool object = *p == '{';
    if (containers_.depth() == maxDepth_) {
        return fail(QV_JSON_DEPTH, p);
    }
    containers_.push(object);
    event_ = p;
    p = delivered(object ? callbacks_->objectStart(callbacks_) : callbacks_->arrayStart(callbacks_),
                  p + 1);
    return p == nullptr ? nullptr : firstOrEnd(p, end);
}

const uint8_t* Parser::firstOrEnd(const uint8_t* p, const uint8_t* end) {
    const bool object = containers_.inObject();
    p = toToken(p, end, object ? State::NAME_OR_END : State::ELEMENT_OR_END);
    if (p == nullptr) {
        return nullptr;
    }
    if (*p == closer(object)) {
        return next(p, end);
    }
    state_ = object ? State::NAME : State::ELEMENT;
    return p;
}

// Behind a value: the brackets of all containers that end here, and the comma behind them.
[[gnu::noinline]] const uint8_t* Parser::next(const uint8_t* p, const uint8_t* end) {
    while (containers_.depth() != 0) {
        const bool object = containers_.inObject();
        p = toToken(p, end, object ? State::MEMBER_NEXT : State::ELEMENT_NEXT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p == ',') {
            state_ = object ? State::NAME : State::ELEMENT;
            return p + 1;
        }
        if (*p != closer(object)) {
            return unexpected(object ? QV_JSON_OBJECT_NEXT : QV_JSON_ARRAY_NEXT, p);
        }
        containers_.pop();
        event_ = p;
        p = delivered(object ? callbacks_->objectEnd(callbacks_) : callbacks_->arrayEnd(callbacks_),
                      p + 1);
        if (p == nullptr) {
            return nullptr;
        }
    }
    state_ = State::DONE;
    return p;
}

// What is met once a document, or once a buffer.
[[gnu::noinline]] const uint8_t* Parser::otherState(const uint8_t* p, const uint8_t* end) {
    switch (state_) {
        case State::BEGIN:
            if (p == end) {
                return pause(State::BEGIN, QV_EOF, p);
            }
            state_ = *p == 0xEF ? State::BOM : State::VALUE;
            return rules_.lines == 0 ? p : delivered(callbacks_->arrayStart(callbacks_), p);
        case State::BOM:
            return byteOrderMark(p, end);
        case State::VALUE:
            p = toToken(p, end, State::VALUE);
            if (p == nullptr) {
                return nullptr;
            }
            if (*p == '{' || *p == '[') {
                return begin(p, end);
            }
            state_ = afterValue();
            return loneScalar(p, end);
        case State::COLON:
            p = toToken(p, end, State::COLON);
            if (p == nullptr) {
                return nullptr;
            }
            if (*p != ':') {
                return unexpected(QV_JSON_COLON, p);
            }
            state_ = State::VALUE;
            return p + 1;
        case State::NAME_OR_END:
        case State::ELEMENT_OR_END:
            return firstOrEnd(p, end);
        case State::MEMBER_NEXT:
        case State::ELEMENT_NEXT:
            return next(p, end);
        case State::TOKEN:
            state_ = token_ == Token::NAME ? State::COLON : afterValue();
            return collectToken(p, end);
        case State::DONE:
            if (rules_.lines != 0) {
                return nextLine(p, end);
            }
            p = space(p, end);
            return p == end ? pause(State::DONE, QV_OK, p) : fail(QV_JSON_TRAILING, p);
        case State::NAME:
        case State::ELEMENT:
        case State::FAILED:
            break;
    }
    return nullptr;  // not reached
}

// The string, number or word that begins at `p`.
[[gnu::always_inline]] inline const uint8_t* Parser::scalar(const uint8_t* p, const uint8_t* end,
                                                            TextWindow& window) {
    if (*p == '"') {
        return string(p, end, window, Token::STRING);
    }
    if (*p == '-' || (*p >= '0' && *p <= '9')) {
        return number(p, end);
    }
    return word(p, end);
}

// The string whose quote is at `p`.
[[gnu::always_inline]] inline const uint8_t* Parser::string(const uint8_t* p, const uint8_t* end,
                                                            TextWindow& window, Token token) {
    event_ = p;
    const uint8_t* text = p + 1;
    const uint8_t* stop = window.nearStop(text);
    if (stop == nullptr || *stop != '"') [[unlikely]] {
        return otherString(text, end, window, token);
    }
    return deliverString(text, stop, token, stop + 1);
}

// A string that is long, or is more than plain ASCII.
[[gnu::noinline]] const uint8_t* Parser::otherString(const uint8_t* text, const uint8_t* end,
                                                     TextWindow& window, Token token) {
    const uint8_t* stop = window.stop(text);
    if (utf8_) {
        while (stop != end && *stop >= 0x80) {
            const uint8_t* behind = utf8Run(stop, end);
            if (behind == stop) {
                break;
            }
            stop = window.stop(behind);
        }
    }
    if (stop == end || *stop != '"') {
        return beginString(text, stop, end, token);
    }
    return deliverString(text, stop, token, stop + 1);
}

// The number that begins at `p`.
[[gnu::always_inline]] inline const uint8_t* Parser::number(const uint8_t* p, const uint8_t* end) {
    event_ = p;
    const uint8_t* first = p + (*p == '-' ? 1 : 0);
    const DecimalRun digits = scan_.decimal(first, end);
    if (digits.end == end || digits.point == first || digits.end == digits.point + 1 ||
        (*first == '0' && digits.point != first + 1) || (*digits.end | 0x20) == 'e') {
        return beginNumber(p, end);
    }
    const int32_t flags = digits.end == digits.point ? JSN_INTEGER : JSN_REAL;
    return delivered(
        callbacks_->number(callbacks_, reinterpret_cast<const char*>(p), digits.end - p, flags),
        digits.end);
}

// Passes white space; null when nothing else is left, and the next call goes on at `state`.
[[gnu::always_inline]] inline const uint8_t* Parser::toToken(const uint8_t* p, const uint8_t* end,
                                                             State state) {
    p = space(p, end);
    if (p == end) [[unlikely]] {
        return pause(state, QV_EOF, p);
    }
    return p;
}

// The same where `byte` is expected, and nearly always without white space before it.
[[gnu::always_inline]] inline const uint8_t* Parser::toByte(uint8_t byte, const uint8_t* p,
                                                            const uint8_t* end, State state) {
    return p != end && *p == byte ? p : toToken(p, end, state);
}

[[gnu::always_inline]] inline const uint8_t* Parser::space(const uint8_t* p, const uint8_t* end) {
    return p != end && *p > ' ' ? p : spaceRun(p, end);
}

[[gnu::noinline]] const uint8_t* Parser::spaceRun(const uint8_t* p, const uint8_t* end) {
    if (end - p >= 2 && *p == ' ' && p[1] > ' ') {
        return p + 1;
    }
    const uint8_t* from = p;
    LineEnds lines;
    p = scan_.space(p, end, lines);
    if (lines.last != nullptr) {
        if (rules_.lines != 0 && containers_.depth() != 0) {
            return static_cast<const uint8_t*>(
                std::memchr(from, '\n', static_cast<std::size_t>(p - from)));
        }
        line_ += lines.count;
        lineStart_ = offsetOf(lines.last) + 1;
    }
    return p;
}

Parser::State Parser::afterValue() const {
    return containers_.depth() == 0 ? State::DONE
           : containers_.inObject() ? State::MEMBER_NEXT
                                    : State::ELEMENT_NEXT;
}

}  // namespace qvhost
