// See auto_shape.h.
#include "tools/cli/auto_shape.h"

#include "client/input/document_reader.h"
#include "tools/cli/counted_input.h"

#include <optional>

namespace qvej::cli {

FoundShape findShape(const Engine& engine, std::span<RereadableFile> files,
                     const ReadingOptions& reading, Progress& progress) {
    FinderOptions options = reading.shape.finding;
    options.maxDepth = reading.depth;
    std::optional<ShapeFinder> finder;
    for (RereadableFile& file : files) {
        DocumentReader reader(counted(file.walk(), progress), reading.text);
        if (finder) {
            finder->nextText(reader.form());
        } else {
            finder.emplace(engine.host(), reader.form(), options);
        }
        try {
            reader.pass([&](std::string_view piece) { return finder->feed(piece); });
        } catch (const Error& error) {
            if (isOfFiles(error.status())) {
                throw;
            }
        }
    }
    return finder->finish();
}

}  // namespace qvej::cli
