// Path text: with 0x02 inside the engine, with "/" for the user.
//
// Inside the engine the components of a path are separated by the byte `sep` (0x02), so that member
// names may contain "/".  The user sees and writes "/".
//
// Tested by tests/scan/path_text_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

// A copy of the `l` bytes at `s` with every `sep` shown as "/", not terminated, in the scratch
// buffer `*sb` of `*sl` bytes.  A buffer of at most `l` bytes is replaced by one of 2 * `l`.  Valid
// until the next call with the same buffer.  Null when `l` is below 1 or there is no memory.
[[nodiscard]] char* sepToSlashes(JMAP_PRIVATE* p, const char* s, QVStrSize l, QVStrSize* sl,
                                 char** sb);

// The path with slashes, for notes; in `sepbuf`, so valid until the next call.  Empty (and not
// null) when there is no memory.
[[nodiscard]] std::string_view shown(JMAP_PRIVATE* p, std::string_view path);

// The same in `sepbuf2`: a second path for one note.
[[nodiscard]] std::string_view shown2(JMAP_PRIVATE* p, std::string_view path);

// Turns every "/" into `sep`, in place.
void slashToSep(JMAP_PRIVATE* p, char* s, QVStrSize l);

// Splits a path at its last `sep`: `last` is what follows it, `first` what precedes it.  Without a
// separator `last` is the whole path and `first` is null.  Both point into `path`.  Always 0.
int splitPath(JMAP_PRIVATE* p, const char* path, QVStrSize pathLen, const char** first,
              QVStrSize* firstLen, const char** last, QVStrSize* lastLen);

// 1 when both texts are equal but for the case of ASCII letters, else 0.
[[nodiscard]] int charNormCompare(const char* s1, QVStrSize l1, const char* s2, QVStrSize l2);

}  // namespace jmap
