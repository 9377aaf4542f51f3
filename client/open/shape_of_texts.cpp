// See shape_of_texts.h.
#include "client/open/shape_of_texts.h"

#include "client/error.h"
#include "client/shape/shape_finder.h"

#include <optional>

namespace qvej {

FoundShape shapeOfTexts(const Engine& engine, std::size_t count,
                        const std::function<ByteSource(std::size_t)>& open, const TextOptions& text,
                        const FinderOptions& options) {
    std::optional<ShapeFinder> finder;
    for (std::size_t i = 0; i < count; ++i) {
        DocumentReader reader(open(i), text);
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

}  // namespace qvej
