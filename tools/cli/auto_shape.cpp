// See auto_shape.h.
#include "tools/cli/auto_shape.h"

#include "client/input/document_reader.h"

namespace qvej::cli {

FoundShape findShape(const Engine& engine, RereadableFile& file, const ReadingOptions& reading) {
    DocumentReader reader(file.walk(), reading.text);
    ShapeFinder finder(engine.host(), reader.lines(), reading.shape.finding);
    try {
        reader.pass([&](std::string_view piece) { return finder.feed(piece); });
    } catch (const Error& error) {
        if (isOfFiles(error.status())) {
            throw;
        }
    }
    return finder.finish();
}

}  // namespace qvej::cli
