// The rules that a document gets when it is to find its shape itself.
//
// Tested by tests/tool/golden/shape.t
#pragma once

#include "client/engine.h"
#include "client/input/rereadable_file.h"
#include "client/shape/shape_finder.h"
#include "tools/cli/options/reading_options.h"
#include "tools/cli/reports/progress.h"

#include <span>

namespace qvej::cli {

// Walks the files once, of which there is at least one; the next walk is for their values.  A text
// that is not well formed gives the shape of what stands before the mistake.  Throws Error when a
// file cannot be read.
FoundShape findShape(const Engine& engine, std::span<RereadableFile> files,
                     const ReadingOptions& reading, Progress& progress);

}  // namespace qvej::cli
