// What has been found of some rows, as bytes that can be stored, sent and added up.
//
// Numbers are LEB128; the last four bytes are the CRC-32 of all before, the lowest first.  A class
// whose objects go into bytes and come out of them names its members once, for both ways:
//
//     template <class Bytes> void pass(Bytes& bytes) { bytes(flags_); bytes(runs_); }
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include "../error.h"

#include <zlib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace qvej {

[[nodiscard]] inline uint32_t sumOfFacts(std::string_view bytes) {
    return static_cast<uint32_t>(
        ::crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

class FactWriter {
   public:
    template <class Value>
    void operator()(Value& value) {
        if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>) {
            put(static_cast<uint64_t>(value));
        } else {
            value.pass(*this);
        }
    }
    template <class Value>
    void operator()(std::vector<Value>& values) {
        put(values.size());
        for (Value& value : values) {
            (*this)(value);
        }
    }
    [[nodiscard]] std::string take() {
        const uint32_t sum = sumOfFacts(bytes_);
        for (unsigned shift = 0; shift < 32; shift += 8) {
            bytes_ += static_cast<char>(sum >> shift);
        }
        return std::move(bytes_);
    }

   private:
    void put(uint64_t number) {
        for (; number >= 0x80; number >>= 7) {
            bytes_ += static_cast<char>(number | 0x80);
        }
        bytes_ += static_cast<char>(number);
    }

    std::string bytes_;
};

// Throws QV_BADPARMS for bytes that are none of a FactWriter.
class FactReader {
   public:
    explicit FactReader(std::string_view bytes) : bytes_(bytes) {
        check(bytes.size() >= 4);
        bytes_.remove_suffix(4);
        uint32_t sum = 0;
        for (unsigned i = 0; i < 4; ++i) {
            sum |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[bytes_.size() + i])) << (8 * i);
        }
        check(sum == sumOfFacts(bytes_));
    }

    template <class Value>
    void operator()(Value& value) {
        if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>) {
            value = static_cast<Value>(get());
        } else {
            value.pass(*this);
        }
    }
    template <class Value>
    void operator()(std::vector<Value>& values) {
        const uint64_t count = get();
        check(count <= bytes_.size());  // each has a byte at least
        for (uint64_t i = 0; i < count; ++i) {
            (*this)(values.emplace_back());
        }
    }
    [[nodiscard]] bool atEnd() const { return bytes_.empty(); }

    // Throws unless what has been read is right.
    static void check(bool right) {
        if (!right) {
            throw Error(QV_BADPARMS, "these bytes are no facts of rows, or are damaged");
        }
    }

   private:
    uint64_t get() {
        uint64_t number = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            check(!bytes_.empty());
            const auto byte = static_cast<uint8_t>(bytes_.front());
            bytes_.remove_prefix(1);
            number |= static_cast<uint64_t>(byte & 0x7F) << shift;
            if (byte < 0x80) {
                return number;
            }
        }
        check(false);
        return 0;
    }

    std::string_view bytes_;
};

}  // namespace qvej
