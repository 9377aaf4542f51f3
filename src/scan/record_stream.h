// The record stream: one compact record for every value and every container marker.
//
// The bytes of a record are described in record_format.h.
//
// Tested by tests/scan/record_stream_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

// Writes the record of the labels on the stack and, when `nameLen` is not 0, of `name` below them.
//   name  last label when it is not on the stack (a popped member name, "FAKE")
//   node  of the path; null: the record has no value part
// Returns QV_OK; QV_NOMEM, also for a record that no block can hold; a status of closing a block.
[[nodiscard]] QVStatus generatePathVariableString(JMAP_PRIVATE* p, PATHNODE* node,
                                                  std::string_view name, std::string_view val,
                                                  VALTYPE type);

// What a scan does that keeps records: see events.h.
struct RecordSink {
    // Writes the marker of a container: the labels on the stack, no value.
    [[nodiscard]] static QVStatus marker(JMAP_PRIVATE* p);

    // Records the value of a label that has been popped.
    [[nodiscard]] static QVStatus value(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value,
                                        VALTYPE type);

    // The same, faster, for a path that has had a value.
    [[nodiscard]] static bool known(JMAP_PRIVATE* p, PATHNODE* node, std::string_view value,
                                    VALTYPE type);

    // Writes the record that stands for an empty object or array.
    [[nodiscard]] static QVStatus placeholder(JMAP_PRIVATE* p, PATHNODE* node);
};

// Appends a record with the text `path` (value part included) to the open block, closing the block
// first when the record does not fit, and counts the value in the statistics of `node`.
[[nodiscard]] QVStatus processPathVariableString(JMAP_PRIVATE* p, PATHNODE* node,
                                                 std::string_view path, QVStrSize valLen,
                                                 VALTYPE type);

}  // namespace jmap
