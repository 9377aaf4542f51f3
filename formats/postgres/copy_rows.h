// Rows as the binary form of COPY has them.
//
//     kCopyBegin, for each row: fields:int16 (size:int32 byte[size])*, kCopyEnd
//
// A size of -1 is null.  Integers have their highest byte first.
//
// Tested by tests/formats/databases.py
#pragma once

#include "client/row.h"
#include "client/schema/data_type.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

inline constexpr std::string_view kCopyBegin{"PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0", 19};
inline constexpr std::string_view kCopyEnd{"\377\377", 2};

inline constexpr int kMostFraction = 6;  // digits of a second that a timestamp has

class CopyRows {
   public:
    void beginRow(std::size_t fields) { put(static_cast<uint16_t>(fields)); }

    // A cell of a column of that type.
    //   shift   is added to a BIGINT
    // False: a text has U+0000, and nothing was added.
    [[nodiscard]] bool add(const Cell& cell, const DataType& type, int64_t shift);

    void append(const CopyRows& rows) { bytes_ += rows.bytes_; }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }
    [[nodiscard]] std::size_t held() const { return bytes_.capacity(); }
    void clear() { bytes_.clear(); }
    void release() { std::string().swap(bytes_); }  // an assignment keeps the memory

   private:
    template <class Number>
    void put(Number number);
    template <class Number>
    void field(Number number);
    void decimal(const Cell& cell, const DataType& type);
    bool text(std::string_view text);

    std::string bytes_;
    std::string buffer_;
};

}  // namespace qvej
