// Names of the automatic map: letters, digits and underscores, no digit in front, at most 32 bytes
// before a table's suffix; and the names of tables.
//
// Tested by tests/automap/names_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

inline constexpr QVStrSize kNameMax = 32;  // bytes of a name that the engine makes, without suffix
inline constexpr QVStrSize kNumberMax = 16;  // bytes of a number made for a name

// Makes the bytes of a name valid in place: each that is no letter, digit or underscore becomes
// "_", and so does a digit in front.  The length stays.
void validateName(char* name, QVStrSize nameLen) noexcept;

// The name with a-z in upper case; `out` has room for it.
void upperName(char* out, std::string_view name) noexcept;

// Formats `number` with the host's `fmt` into document bytes.  `out` has kNumberMax bytes.  Returns
// the status of the host's formatting or transcoding, or QV_NOMEM without a transcoder.
[[nodiscard]] QVStatus formatNumber(JMAP_PRIVATE* p, const QVChar* fmt, int32_t number, char* out,
                                    QVStrSize* outLen);

// The name that a table of this path asks for, made of the names of the object that holds the path
// and of the one around it, joined from the third level below the root on.  Not yet validated.
//   out  kNameMax bytes
// Returns the length.
[[nodiscard]] QVStrSize candidateDsName(JMAP_PRIVATE* p, std::string_view path, char* out) noexcept;

// Names a table after its path, with a running number when the name, in any case, was asked for
// before.  Numbers only count up, also when a table fails.
//   Kept: the name with its number is not remembered, so a later table's own name can equal it.
// Returns QV_OK, QV_NOMEM, or a status of the host's tracker, formatting or transcoding.
[[nodiscard]] QVStatus uniqueDsName(JMAP_PRIVATE* p, DSINFO* ds, PATHINFO* path);

}  // namespace jmap
