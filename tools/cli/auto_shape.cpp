// See auto_shape.h.
#include "tools/cli/auto_shape.h"

#include "client/input/document_reader.h"

namespace qvej::cli {

qvej::FoundShape findShape(const qvej::Engine& engine, qvej::RereadableFile& file,
                           const ReadingOptions& reading, const qvej::FinderOptions& finding) {
    qvej::DocumentReader reader(file.walk(), reading.text);
    qvej::ShapeFinder finder(engine.host(), reader.lines(), finding);
    reader.pass([&](std::string_view piece) { return finder.feed(piece); });
    return finder.finish();
}

}  // namespace qvej::cli
