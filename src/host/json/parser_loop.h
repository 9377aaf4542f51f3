// The parser's loop: whole, well-formed tokens of one buffer, straight from where they stand.
//
// It is a template over the scanning kernel and over whether the text is UTF-8, so that every run
// is scanned in line.  Two routines do nearly all of the work, each with a loop over scalars:
// members() and elements().  Brackets lead from one to the other by way of begin() and next().
// A buffer may begin anywhere; otherState() takes its first bytes up to a place where one of the
// two goes on.
//
// Tested by tests/json/parser_test.cpp and, for speed, bench/bench_parser.cpp
#pragma once

#include "host/json/parser.h"
#include "host/json/scan_window.h"

namespace qvhost {

template <class Scan, bool kUtf8>
void Parser::loop(const uint8_t* p, const uint8_t* end) {
    TextWindow<Scan, kUtf8> window(p, end);
    while (p != nullptr) {
        if (state_ == State::NAME) {
            p = members<Scan, kUtf8>(p, end, window);
        } else if (state_ == State::ELEMENT) {
            p = elements<Scan, kUtf8>(p, end, window);
        } else {
            p = otherState<Scan>(p, end);
        }
    }
}

// Members of an object, up to the first value that is a container, or the end of the object.
template <class Scan, bool kUtf8>
[[gnu::always_inline]] inline const uint8_t* Parser::members(const uint8_t* p, const uint8_t* end,
                                                             TextWindow<Scan, kUtf8>& window) {
    for (;;) {
        p = toToken<Scan>(p, end, State::NAME);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p != '"') {
            return unexpected(QV_JSON_NAME, p);
        }
        p = string<Scan, kUtf8>(p, end, window, Token::NAME);
        if (p == nullptr) {
            return nullptr;
        }
        p = toToken<Scan>(p, end, State::COLON);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p != ':') {
            return unexpected(QV_JSON_COLON, p);
        }
        p = toToken<Scan>(p + 1, end, State::VALUE);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p == '{' || *p == '[') {
            return begin<Scan>(p, end);
        }
        p = scalar<Scan, kUtf8>(p, end, window);
        if (p == nullptr) {
            return nullptr;
        }
        p = toToken<Scan>(p, end, State::MEMBER_NEXT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p != ',') {
            return next<Scan>(p, end);
        }
        ++p;
    }
}

// Elements of an array, likewise.
template <class Scan, bool kUtf8>
[[gnu::always_inline]] inline const uint8_t* Parser::elements(const uint8_t* p, const uint8_t* end,
                                                              TextWindow<Scan, kUtf8>& window) {
    for (;;) {
        p = toToken<Scan>(p, end, State::ELEMENT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p == '{' || *p == '[') {
            return begin<Scan>(p, end);
        }
        p = scalar<Scan, kUtf8>(p, end, window);
        if (p == nullptr) {
            return nullptr;
        }
        p = toToken<Scan>(p, end, State::ELEMENT_NEXT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p != ',') {
            return next<Scan>(p, end);
        }
        ++p;
    }
}

// The container whose bracket is at `p`: its beginning, and its end if it is empty.
template <class Scan>
[[gnu::noinline]] const uint8_t* Parser::begin(const uint8_t* p, const uint8_t* end) {
    const bool object = *p == '{';
    if (containers_.depth() == maxDepth_) {
        return fail(QV_JSON_DEPTH, p);
    }
    containers_.push(object);
    p = delivered(object ? callbacks_->objectStart(callbacks_) : callbacks_->arrayStart(callbacks_),
                  p + 1);
    return p == nullptr ? nullptr : firstOrEnd<Scan>(p, end);
}

template <class Scan>
const uint8_t* Parser::firstOrEnd(const uint8_t* p, const uint8_t* end) {
    const bool object = containers_.inObject();
    p = toToken<Scan>(p, end, object ? State::NAME_OR_END : State::ELEMENT_OR_END);
    if (p == nullptr) {
        return nullptr;
    }
    if (*p == (object ? '}' : ']')) {
        return next<Scan>(p, end);
    }
    state_ = object ? State::NAME : State::ELEMENT;
    return p;
}

// Behind a value: the brackets of all containers that end here, and the comma behind them.
template <class Scan>
[[gnu::noinline]] const uint8_t* Parser::next(const uint8_t* p, const uint8_t* end) {
    while (containers_.depth() != 0) {
        const bool object = containers_.inObject();
        p = toToken<Scan>(p, end, object ? State::MEMBER_NEXT : State::ELEMENT_NEXT);
        if (p == nullptr) {
            return nullptr;
        }
        if (*p == ',') {
            state_ = object ? State::NAME : State::ELEMENT;
            return p + 1;
        }
        if (*p != (object ? '}' : ']')) {
            return unexpected(object ? QV_JSON_OBJECT_NEXT : QV_JSON_ARRAY_NEXT, p);
        }
        containers_.pop();
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
template <class Scan>
[[gnu::noinline]] const uint8_t* Parser::otherState(const uint8_t* p, const uint8_t* end) {
    switch (state_) {
        case State::BEGIN:
            if (p == end) {
                return pause(State::BEGIN, QV_EOF, p);
            }
            state_ = *p == 0xEF ? State::BOM : State::VALUE;
            return p;
        case State::BOM:
            return byteOrderMark(p, end);
        case State::VALUE:
            p = toToken<Scan>(p, end, State::VALUE);
            if (p == nullptr) {
                return nullptr;
            }
            if (*p == '{' || *p == '[') {
                return begin<Scan>(p, end);
            }
            state_ = afterValue();
            return loneScalar(p, end);
        case State::COLON:
            p = toToken<Scan>(p, end, State::COLON);
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
            return firstOrEnd<Scan>(p, end);
        case State::MEMBER_NEXT:
        case State::ELEMENT_NEXT:
            return next<Scan>(p, end);
        case State::TOKEN:
            state_ = token_ == Token::NAME ? State::COLON : afterValue();
            return collectToken(p, end);
        case State::DONE:
            p = space<Scan>(p, end);
            return p == end ? pause(State::DONE, QV_OK, p) : fail(QV_JSON_TRAILING, p);
        case State::NAME:
        case State::ELEMENT:
        case State::FAILED:
            break;
    }
    return nullptr;  // not reached
}

// The string, number or word that begins at `p`.
template <class Scan, bool kUtf8>
[[gnu::always_inline]] inline const uint8_t* Parser::scalar(const uint8_t* p, const uint8_t* end,
                                                            TextWindow<Scan, kUtf8>& window) {
    if (*p == '"') {
        return string<Scan, kUtf8>(p, end, window, Token::STRING);
    }
    if (*p == '-' || (*p >= '0' && *p <= '9')) {
        return number<Scan>(p, end);
    }
    return word(p, end);
}

// The string whose quote is at `p`.
template <class Scan, bool kUtf8>
[[gnu::always_inline]] inline const uint8_t* Parser::string(const uint8_t* p, const uint8_t* end,
                                                            TextWindow<Scan, kUtf8>& window,
                                                            Token token) {
    const uint8_t* text = p + 1;
    const uint8_t* stop = window.stop(text);
    if (stop == end || *stop != '"') [[unlikely]] {
        return otherString<Scan, kUtf8>(text, stop, end, window, token);
    }
    return deliverString(text, stop, token, stop + 1);
}

// A string that is plain ASCII up to `stop` and does not end there.
template <class Scan, bool kUtf8>
[[gnu::noinline]] const uint8_t* Parser::otherString(const uint8_t* text, const uint8_t* stop,
                                                     const uint8_t* end,
                                                     TextWindow<Scan, kUtf8>& window, Token token) {
    if constexpr (kUtf8) {
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
template <class Scan>
[[gnu::always_inline]] inline const uint8_t* Parser::number(const uint8_t* p, const uint8_t* end) {
    const uint8_t* first = p + (*p == '-' ? 1 : 0);
    const DecimalRun digits = Scan::decimal(first, end);
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
template <class Scan>
[[gnu::always_inline]] inline const uint8_t* Parser::toToken(const uint8_t* p, const uint8_t* end,
                                                             State state) {
    p = space<Scan>(p, end);
    if (p == end) [[unlikely]] {
        return pause(state, QV_EOF, p);
    }
    return p;
}

template <class Scan>
[[gnu::always_inline]] inline const uint8_t* Parser::space(const uint8_t* p, const uint8_t* end) {
    return p != end && *p > ' ' ? p : spaceRun<Scan>(p, end);
}

template <class Scan>
[[gnu::noinline]] const uint8_t* Parser::spaceRun(const uint8_t* p, const uint8_t* end) {
    if (end - p >= 2 && *p == ' ' && p[1] > ' ') {
        return p + 1;
    }
    LineEnds lines;
    p = Scan::space(p, end, lines);
    if (lines.last != nullptr) {
        line_ += lines.count;
        lineStart_ = offsetOf(lines.last) + 1;
    }
    return p;
}

inline const uint8_t* Parser::deliverString(const uint8_t* text, const uint8_t* stop, Token token,
                                            const uint8_t* p) {
    const int32_t flags = token == Token::NAME ? JSN_MEMBERNAME : JSN_VALUE;
    return delivered(callbacks_->string(callbacks_, text, stop - text, flags), p);
}

// Behind an event whose callback gave `status`.
[[gnu::always_inline]] inline const uint8_t* Parser::delivered(QVStatus status, const uint8_t* p) {
    return status == QV_OK ? p : fail(status, p);
}

inline Parser::State Parser::afterValue() const {
    return containers_.depth() == 0 ? State::DONE
           : containers_.inObject() ? State::MEMBER_NEXT
                                    : State::ELEMENT_NEXT;
}

}  // namespace qvhost
