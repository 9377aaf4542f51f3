// The rules that a document gets when it is to find its shape itself.
//
// Tested by tests/tool/golden/shape.t
#pragma once

#include "client/engine.h"
#include "client/input/rereadable_file.h"
#include "client/shape/shape_finder.h"
#include "tools/cli/options/reading_options.h"

namespace qvej::cli {

// Walks the file once; the next walk is for its values.  A text that is not well formed gives the
// shape of what stands before the mistake.  Throws Error when the file cannot be read.
FoundShape findShape(const Engine& engine, RereadableFile& file, const ReadingOptions& reading);

}  // namespace qvej::cli
