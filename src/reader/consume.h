// What one record does to the row of an open table.
//
//     consumePathOnly     a container's marker: ends the row or not, and counts in ordinals
//     consumePathVar      a value: goes into every column that has its path
//     consumePathAlldata  any record: makes a row of ALLDATA
//
// Paths and values are borrowed and not terminated.  Only the raw text of columns with an informat
// is allocated.
//
// Tested by tests/reader/consume_test.cpp
#pragma once

#include "core/readctx.h"
#include "core/text.h"

#include <algorithm>
#include <string_view>

namespace jmap {

inline constexpr std::size_t kRootPrefix = 6;  // bytes of a record's text before its first label

// Removes the next label, of `len` bytes, and the separator after it from `rest`.  A label is cut
// at the end of the text, since `len` is wrong for labels of 256 bytes and more and for those after
// an empty member name.
[[nodiscard]] inline std::string_view takeLabel(std::string_view& rest, int32_t len) noexcept {
    const std::string_view label = firstOf(rest, static_cast<std::size_t>(len));
    rest = after(rest, label.size() + 1);
    return label;
}

// The text of a record from its first label on.
[[nodiscard]] inline std::string_view labelsOf(std::string_view text) noexcept {
    return after(text, kRootPrefix);
}

// Sets `*done` when the record ends the row; else it counts in the ordinals that have its path.
// Returns QV_OK.
QVStatus consumePathOnly(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen, bool* done);

// Stores a value into every column with this path.  `done` is not touched.
//   Kept: returns the status of the last conversion to a number in the call, also when the value
//   was a word or was flagged as bad.  QV_NOMEM and other failures of a conversion end the call at
//   once, so later columns do not get the value.
QVStatus consumePathVar(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen,
                        const char* value, QVStrSize valueLen, bool* done, VALTYPE kind);

// Makes a row of ALLDATA and sets `*done`; the marker of the root makes none.  A shorter text
// leaves the bytes after it in its cell as they were.
//   path                      whole text of the record, value included
//   labelCount, labelCurLens  (of the document) those of the record
// Returns QV_OK.
QVStatus consumePathAlldata(QVEJMAPReadContexth rctx, const char* path, QVStrSize pathLen,
                            const char* value, QVStrSize valueLen, bool* done, VALTYPE kind);

}  // namespace jmap
