// The bytes of a record.  Writer, reader and tools share this one description.
//
// Records lie back to back in a block, without alignment or padding, integers in machine order.
//
//     offset  size  content
//     0       4     N: labels in the path, signed; the root does not count
//     4       N     length of each label modulo 256, outermost first
//     4 + N   8     L: bytes of the text, signed
//     12 + N  8     V: bytes of the value, signed
//     20 + N  1     kind: a VALTYPE
//     21 + N  L     text
//
// Text: the root component (0x02 "root"), for each label 0x02 and its bytes, and, for every kind
// but VAL_NOVAL, one blank and the V bytes of the value.  The next record begins at 21 + N + L.
//
// {"a":{"b":12}} gives for b:
//
//     02 00 00 00 | 01 01 | 0C 00 00 00 00 00 00 00 | 02 00 00 00 00 00 00 00 | 02 |
//     02 72 6F 6F 74 02 61 02 62 20 31 32
//
// Limits: a label of 256 bytes or more has a wrong length byte, and so has the component "FAKE" of
// a placeholder (it holds the length of the label last seen at that depth).  Readers take "FAKE"
// from the text.
//
// Tested by tests/scan/record_stream_test.cpp
#pragma once

#include "core/context.h"
#include "core/short_bytes.h"
#include "core/text.h"

#include <cstring>
#include <string_view>

namespace jmap {

inline constexpr QVStrSize kRecordFixedBytes =
    21;  // all but label lengths and text.  DO NOT CHANGE

// Bytes that are added to text, label count and bytes in use to see whether a record fits: it stays
// below kBlockBytes, so at least 4 bytes of a block are never used.
inline constexpr QVStrSize kRecordRoomBytes = 26;

// Whether a block can hold a record of that text.  Scans without records refuse the same values.
//   labelCount  as when the record is written
[[nodiscard]] constexpr bool fitsBlock(QVStrSize textLen, QVStrSize labelCount) noexcept {
    return textLen + labelCount + kRecordRoomBytes < kBlockBytes;
}

// A record in place.  All pointers go into the block.
struct RECORD {
    const char* at;
    int32_t labelCount;
    const uint8_t* labelLens;  // [labelCount]
    const char* text;
    QVStrSize textLen;
    QVStrSize valLen;
    VALTYPE kind;
    QVStrSize size;  // bytes to the next record
};

// The record that begins at `at`.  The bytes are trusted: they come from writeRecord.
[[nodiscard]] inline RECORD parseRecord(const char* at) noexcept {
    RECORD record;
    record.at = at;
    std::memcpy(&record.labelCount, at, sizeof record.labelCount);
    at += sizeof record.labelCount;
    record.labelLens = reinterpret_cast<const uint8_t*>(at);
    at += record.labelCount;
    std::memcpy(&record.textLen, at, sizeof record.textLen);
    at += sizeof record.textLen;
    std::memcpy(&record.valLen, at, sizeof record.valLen);
    at += sizeof record.valLen;
    record.kind = static_cast<VALTYPE>(static_cast<uint8_t>(*at));
    record.text = at + 1;
    record.size = kRecordFixedBytes + record.labelCount + record.textLen;
    return record;
}

// The path of a record, separator 0x02.
[[nodiscard]] inline std::string_view pathOf(const RECORD& record) noexcept {
    const QVStrSize valuePart = record.kind == VAL_NOVAL ? 0 : record.valLen + 1;
    return view(record.text, record.textLen - valuePart);
}

// The value of a record; a marker has none (a null view).
[[nodiscard]] inline std::string_view valueOf(const RECORD& record) noexcept {
    if (record.kind == VAL_NOVAL) {
        return {};
    }
    return view(record.text + record.textLen - record.valLen, record.valLen);
}

// Writes a record at `to` and returns its size.  The first `labelCount` of `labelLens` are read.
inline QVStrSize writeRecord(char* to, int32_t labelCount, const int32_t* labelLens,
                             std::string_view text, QVStrSize valLen, VALTYPE kind) noexcept {
    const char* const start = to;
    const QVStrSize textLen = lengthOf(text);
    std::memcpy(to, &labelCount, sizeof labelCount);
    to += sizeof labelCount;
    for (int32_t i = 0; i < labelCount; ++i) {
        *to++ = static_cast<char>(static_cast<uint8_t>(labelLens[i]));  // Kept: modulo 256
    }
    std::memcpy(to, &textLen, sizeof textLen);
    to += sizeof textLen;
    std::memcpy(to, &valLen, sizeof valLen);
    to += sizeof valLen;
    *to++ = static_cast<char>(kind);
    copyShort(to, text);
    return to + textLen - start;
}

}  // namespace jmap
