// Kinds of failures, which each front door tells in its own way: by an exit code, a class of
// exceptions.
//
// Tested by tests/client/failure_kind_test.cpp
#pragma once

#include "qvstatus.h"

#include <cstdint>

namespace qvej {

enum class FailureKind : uint8_t {
    NOT_JSON,  // a mistake in the text of a document
    FILES,
    LIMIT,  // depth, paths, disk, memory
    USAGE,  // an option or argument that cannot be
    OTHER,  // a table or a map, above all
};

[[nodiscard]] FailureKind kindOf(QVStatus status);

}  // namespace qvej
