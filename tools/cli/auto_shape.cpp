// See auto_shape.h.
#include "tools/cli/auto_shape.h"

#include "client/open/shape_of_texts.h"
#include "tools/cli/counted_input.h"

namespace qvej::cli {

FoundShape findShape(const Engine& engine, std::span<RereadableFile> files,
                     const ReadingOptions& reading, Progress& progress) {
    FinderOptions options = reading.shape.finding;
    options.maxDepth = reading.depth;
    return shapeOfTexts(
        engine, files.size(), [&](std::size_t i) { return counted(files[i].walk(), progress); },
        reading.text, options);
}

}  // namespace qvej::cli
