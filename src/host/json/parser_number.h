// The grammar of numbers, byte by byte:  -? (0 | [1-9][0-9]*) (. [0-9]+)? ([eE] [+-]? [0-9]+)?
//
// Tested by tests/json/parser_test.cpp
#pragma once

#include "qvehost.h"

#include <cstdint>

namespace qvhost {

constexpr bool isDigit(uint8_t byte) {
    return byte >= '0' && byte <= '9';
}

class NumberGrammar {
   public:
    void begin() { place_ = BEGIN; }

    // Takes one byte.  QV_OK: it belongs to the number; QV_EOF: the number was whole before it;
    // else the mistake that it makes.
    QVStatus next(uint8_t byte) {
        const bool digit = isDigit(byte);
        switch (place_) {
            case BEGIN:
                if (byte == '-') {
                    return go(MINUS);
                }
                [[fallthrough]];
            case MINUS:
                return digit ? go(byte == '0' ? ZERO : INTEGER) : QV_JSON_DIGIT;
            case ZERO:
                if (digit) {
                    return QV_JSON_LEADING_ZERO;
                }
                [[fallthrough]];
            case INTEGER:
                if (byte == '.') {
                    return go(POINT);
                }
                [[fallthrough]];
            case FRACTION:
                if (byte == 'e' || byte == 'E') {
                    return go(EXPONENT);
                }
                [[fallthrough]];
            case POWER:
                return digit ? QV_OK : QV_EOF;
            case POINT:
                return digit ? go(FRACTION) : QV_JSON_DIGIT;
            case EXPONENT:
                if (byte == '+' || byte == '-') {
                    return go(SIGN);
                }
                [[fallthrough]];
            case SIGN:
                return digit ? go(POWER) : QV_JSON_DIGIT;
        }
        return QV_INTERNAL;  // not reached
    }

    // Whether the number may end here.
    [[nodiscard]] bool whole() const {
        return place_ == ZERO || place_ == INTEGER || place_ == FRACTION || place_ == POWER;
    }
    [[nodiscard]] int32_t flags() const {
        return place_ == ZERO || place_ == INTEGER ? JSN_INTEGER : JSN_REAL;
    }

   private:
    // What the byte before was.
    enum Place : uint8_t { BEGIN, MINUS, ZERO, INTEGER, POINT, FRACTION, EXPONENT, SIGN, POWER };

    QVStatus go(Place place) {
        place_ = place;
        return QV_OK;
    }

    Place place_ = BEGIN;
};

}  // namespace qvhost
