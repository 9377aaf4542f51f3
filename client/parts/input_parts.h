// The parts of the files of a list, read as often as they are asked for.
//
// Tested by tests/client/input_parts_test.cpp
#pragma once

#include "../input/inputs_reader.h"
#include "text_part.h"

namespace qvej {

// Regular files in UTF-8.  In another encoding a text throws Indivisible (part_sequence.h).
//   check     called before and after each reading; may be empty
//   observer  sees each piece of the text, on the thread that reads; may be empty
[[nodiscard]] ReadParts partsOf(const InputList& inputs, const TextOptions& options,
                                InputsReader::Open open, std::function<void()> check = {},
                                std::function<void(std::string_view)> observer = {});

// Throws Error (QV_IO_CHANGED) for a file that has changed since this was made: size, time, inode,
// or the bytes at its ends.
[[nodiscard]] std::function<void()> checkOfChanges(const InputList& inputs);

// Whether all are files that can be read again, and how many bytes they have; nothing: they are
// not.
[[nodiscard]] std::optional<uint64_t> rereadableBytes(const InputList& inputs);

}  // namespace qvej
