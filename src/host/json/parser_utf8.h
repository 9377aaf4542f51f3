// Which byte sequences are UTF-8: shortest forms only, no surrogates, nothing past U+10FFFF.
//
// Tested by tests/json/reference_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvhost {

// One sequence of several bytes, checked byte by byte.
class Utf8Check {
   public:
    // Takes the first byte (0x80 or above).  False: none begins so.
    bool begin(uint8_t first) {
        low_ = 0x80;
        high_ = 0xBF;
        taken_ = 1;
        if (first >= 0xC2 && first <= 0xDF) {
            missing_ = 1;
        } else if (first >= 0xE0 && first <= 0xEF) {
            missing_ = 2;
            low_ = first == 0xE0 ? 0xA0 : low_;    // longer than needed
            high_ = first == 0xED ? 0x9F : high_;  // surrogates
        } else if (first >= 0xF0 && first <= 0xF4) {
            missing_ = 3;
            low_ = first == 0xF0 ? 0x90 : low_;    // longer than needed
            high_ = first == 0xF4 ? 0x8F : high_;  // past U+10FFFF
        } else {
            return false;
        }
        return true;
    }
    // Takes the next byte.  False: it cannot follow.
    bool next(uint8_t byte) {
        if (byte < low_ || byte > high_) {
            return false;
        }
        low_ = 0x80;
        high_ = 0xBF;
        --missing_;
        ++taken_;
        return true;
    }
    [[nodiscard]] bool whole() const { return missing_ == 0; }
    [[nodiscard]] int taken() const { return taken_; }  // bytes so far

   private:
    uint8_t low_ = 0;  // bounds of the next byte
    uint8_t high_ = 0;
    int missing_ = 0;
    int taken_ = 0;
};

// Passes whole, valid sequences of several bytes.  Returns the first byte that is ASCII or begins
// no such sequence within the buffer, or `end`.
inline const uint8_t* utf8Run(const uint8_t* p, const uint8_t* end) {
    const auto continues = [&p](int i) { return (p[i] & 0xC0) == 0x80; };
    while (p != end && *p >= 0x80) {
        const std::ptrdiff_t left = end - p;
        const uint8_t first = *p;
        if (first >= 0xE0 && first <= 0xEF) {
            if (left < 3 || !continues(1) || !continues(2) || (first == 0xE0 && p[1] < 0xA0) ||
                (first == 0xED && p[1] > 0x9F)) {
                return p;
            }
            p += 3;
        } else if (first >= 0xC2 && first <= 0xDF) {
            if (left < 2 || !continues(1)) {
                return p;
            }
            p += 2;
        } else {
            if (first < 0xF0 || first > 0xF4 || left < 4 || !continues(1) || !continues(2) ||
                !continues(3) || (first == 0xF0 && p[1] < 0x90) || (first == 0xF4 && p[1] > 0x8F)) {
                return p;
            }
            p += 4;
        }
    }
    return p;
}

}  // namespace qvhost
