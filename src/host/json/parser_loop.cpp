// The parser's loop: whole, well-formed tokens of one buffer, without a copy.
//
// A buffer may begin anywhere, so inside() is a switch over what comes next; in it each state falls
// through to the one that nearly always follows.
//
// With short tokens most time is spent waiting for the place of a token, which depends on the token
// before it.  So a place is not computed from bytes just loaded where a branch, which is predicted
// well, can give it.
//
// Tested by tests/json/parser_test.cpp and, for speed, bench/bench_parser.cpp
#include "host/json/parser.h"
#include "host/json/scan_window.h"

#include <cstring>

namespace qvhost {

void Parser::loop(const uint8_t* p, const uint8_t* end) {
    TextWindow window(scan_, p, end);
    while (p != nullptr) {
        p = inContainer() ? inside(p, end, window) : outside(p, end);
    }
}

// Members of objects and elements of arrays, up to the end of the outermost container.
[[gnu::always_inline]] inline const uint8_t* Parser::inside(const uint8_t* p, const uint8_t* end,
                                                            TextWindow& window) {
    State state = state_;
    NearStops stops(p, 0);  // from the text of the last name on, for its value
    while (p != nullptr) {
        switch (state) {
            case State::NAME_OR_END:
                p = toByte('"', p, end, State::NAME_OR_END);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == '}') {
                    p = close(Container::OBJECT, p);
                    state = afterValue();
                    break;
                }
                [[fallthrough]];
            case State::NAME:
                p = toByte('"', p, end, State::NAME);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p != '"') {
                    return unexpected(QV_JSON_NAME, p);
                }
                stops = window.near(p + 1);
                p = string(p, stops.from(p + 1), end, window, Token::NAME);
                if (p == nullptr) {
                    return nullptr;
                }
                [[fallthrough]];
            case State::COLON:
                p = toByte(':', p, end, State::COLON);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p != ':') {
                    return unexpected(QV_JSON_COLON, p);
                }
                ++p;
                [[fallthrough]];
            case State::VALUE:
                p = toByte('"', p, end, State::VALUE);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == '{') {
                    p = open(Container::OBJECT, p);
                    state = State::NAME_OR_END;
                    break;
                }
                if (*p == '[') {
                    p = open(Container::ARRAY, p);
                    state = State::ELEMENT_OR_END;
                    break;
                }
                p = scalar(p, stops, end, window);
                if (p == nullptr) {
                    return nullptr;
                }
                [[fallthrough]];
            case State::MEMBER_NEXT:
                p = toByte(',', p, end, State::MEMBER_NEXT);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == ',') {
                    ++p;
                    state = State::NAME;
                    break;
                }
                if (*p != '}') {
                    return unexpected(QV_JSON_OBJECT_NEXT, p);
                }
                p = close(Container::OBJECT, p);
                state = afterValue();
                break;

            case State::ELEMENT_OR_END:
                p = toByte('"', p, end, State::ELEMENT_OR_END);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == ']') {
                    p = close(Container::ARRAY, p);
                    state = afterValue();
                    break;
                }
                [[fallthrough]];
            case State::ELEMENT:
                p = toByte('"', p, end, State::ELEMENT);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == '{') {
                    p = open(Container::OBJECT, p);
                    state = State::NAME_OR_END;
                    break;
                }
                if (*p == '[') {
                    p = open(Container::ARRAY, p);
                    state = State::ELEMENT_OR_END;
                    break;
                }
                p = scalar(p, NearStops(p, 0), end, window);
                if (p == nullptr) {
                    return nullptr;
                }
                [[fallthrough]];
            case State::ELEMENT_NEXT:
                p = toByte(',', p, end, State::ELEMENT_NEXT);
                if (p == nullptr) {
                    return nullptr;
                }
                if (*p == ',') {
                    ++p;
                    state = State::ELEMENT;
                    break;
                }
                if (*p != ']') {
                    return unexpected(QV_JSON_ARRAY_NEXT, p);
                }
                p = close(Container::ARRAY, p);
                state = afterValue();
                break;

            case State::TOKEN:
                p = collectToken(p, end);
                state = token_ == Token::NAME ? State::COLON : afterValue();
                break;
            default:  // DONE: the outermost container has ended
                state_ = State::DONE;
                return p;
        }
    }
    return nullptr;
}

// The bracket at `p` that begins a container.
[[gnu::always_inline]] inline const uint8_t* Parser::open(Container container, const uint8_t* p) {
    if (!containers_.push(container)) {
        return fail(QV_JSON_DEPTH, p);
    }
    event_ = p;
    return delivered(container == Container::OBJECT ? callbacks_->objectStart(callbacks_)
                                                    : callbacks_->arrayStart(callbacks_),
                     p + 1);
}

// The bracket at `p` that ends the innermost container.
[[gnu::always_inline]] inline const uint8_t* Parser::close(Container container, const uint8_t* p) {
    containers_.pop();
    event_ = p;
    return delivered(container == Container::OBJECT ? callbacks_->objectEnd(callbacks_)
                                                    : callbacks_->arrayEnd(callbacks_),
                     p + 1);
}

// A value in no container.
[[gnu::noinline]] const uint8_t* Parser::outside(const uint8_t* p, const uint8_t* end) {
    switch (state_) {
        case State::BEGIN:
            if (p == end) {
                return pause(State::BEGIN, QV_EOF, p);
            }
            state_ = State::DOCUMENT;
            return manyValues() ? delivered(callbacks_->arrayStart(callbacks_), p) : p;
        case State::BOM:
            return byteOrderMark(p, end);
        case State::DOCUMENT:
            p = toToken(p, end, State::DOCUMENT);
            if (p == nullptr) {
                return nullptr;
            }
            if (*p == 0xEF) {
                matched_ = 0;
                return byteOrderMark(p, end);
            }
            if (*p == '{') {
                state_ = State::NAME_OR_END;
                return open(Container::OBJECT, p);
            }
            if (*p == '[') {
                state_ = State::ELEMENT_OR_END;
                return open(Container::ARRAY, p);
            }
            state_ = State::DONE;
            return loneScalar(p, end);
        case State::TOKEN:
            state_ = State::DONE;
            return collectToken(p, end);
        case State::DONE:
            if (manyValues()) {
                return nextLine(p, end);
            }
            p = space(p, end);
            return p == end ? pause(State::DONE, QV_OK, p) : fail(QV_JSON_TRAILING, p);
        default:
            return nullptr;  // not reached
    }
}

// The string, number or word that begins at `p`.  `stops` may tell where a string ends.
[[gnu::always_inline]] inline const uint8_t* Parser::scalar(const uint8_t* p, NearStops stops,
                                                            const uint8_t* end,
                                                            TextWindow& window) {
    if (*p == '"') {
        const uint8_t* stop = stops.from(p + 1);
        if (stop == nullptr) {
            stop = window.near(p + 1).from(p + 1);
        }
        return string(p, stop, end, window, Token::STRING);
    }
    if (isDigit(*p)) {
        return number(p, p, end);
    }
    return *p == '-' ? negative(p, end) : word(p, end);
}

// The string whose quote is at `p` and whose text stops at `stop`; null: that is not near.
[[gnu::always_inline]] inline const uint8_t* Parser::string(const uint8_t* p, const uint8_t* stop,
                                                            const uint8_t* end, TextWindow& window,
                                                            Token token) {
    event_ = p;
    if (stop == nullptr || *stop != '"') [[unlikely]] {
        return otherString(p + 1, end, window, token);
    }
    return deliverString(p + 1, stop, token, stop + 1);
}

// A string that is long, or is more than plain ASCII.
[[gnu::noinline]] const uint8_t* Parser::otherString(const uint8_t* text, const uint8_t* end,
                                                     TextWindow& window, Token token) {
    const uint8_t* stop = window.stop(text);
    if (utf8_) {
        while (stop != end && *stop >= 0x80) {
            const uint8_t* after = utf8Run(stop, end);
            if (after == stop) {
                break;
            }
            stop = window.stop(after);
        }
    }
    if (stop == end || *stop != '"') {
        return beginString(text, stop, end, token);
    }
    return deliverString(text, stop, token, stop + 1);
}

// The number that begins at `p`, whose digits begin at `first`.
[[gnu::always_inline]] inline const uint8_t* Parser::number(const uint8_t* p, const uint8_t* first,
                                                            const uint8_t* end) {
    event_ = p;
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

// Not inlined: else the compiler adds the comparison with the sign to the place of the digits
// instead of branching, and every number waits for it.  canada.json was a fifth slower.
[[gnu::noinline]] const uint8_t* Parser::negative(const uint8_t* p, const uint8_t* end) {
    return number(p, p + 1, end);
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
        if (rules_.lines != 0 && inContainer()) {
            return static_cast<const uint8_t*>(
                std::memchr(from, '\n', static_cast<std::size_t>(p - from)));
        }
        line_ += lines.count;
        lineStart_ = offsetOf(lines.last) + 1;
    }
    return p;
}

}  // namespace qvhost
