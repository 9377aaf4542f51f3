// The bad lines of a range of JSON Lines.
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../engine.h"
#include "../line_sieve.h"
#include "../text_consumer.h"
#include "text_range.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qvej {

using OnBadLine = std::function<void(const BadLine&)>;

// Gives a piece of JSON Lines, of whole lines, to `takes` without its bad ones.  What `onBad` gets
// has its line in the file when that of the piece is known, else in the piece.  Throws Error.
void readSifted(const Engine& engine, const TextRange& range, const TextPiece& piece,
                uint64_t maxDepth, TextConsumer& takes, const OnBadLine& onBad);

// Reads a range for its bad lines alone: none when it is no JSON Lines.  Throws Error.
//   stopped  see DocumentOptions; may be empty
void eachBadLine(const Engine& engine, const TextRange& range, const TextOptions& options,
                 uint64_t maxDepth, const std::function<bool()>& stopped, const OnBadLine& onBad);

}  // namespace qvej
