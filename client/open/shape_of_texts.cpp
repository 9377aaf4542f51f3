// See shape_of_texts.h.
#include "client/open/shape_of_texts.h"

#include "client/error.h"
#include "client/shape/shape_finder.h"

#include <optional>
#include <string_view>

namespace qvej {

namespace {

constexpr std::size_t kBytesBetweenLooks = std::size_t{64} << 10;  // some milliseconds

bool feed(ShapeFinder& finder, std::string_view piece, const std::function<bool()>& stopped) {
    bool goesOn = true;
    while (goesOn && !piece.empty()) {
        if (stopped && stopped()) {
            throw Error(QV_STOPPED);
        }
        const std::string_view part = piece.substr(0, kBytesBetweenLooks);
        piece.remove_prefix(part.size());
        goesOn = finder.feed(part);
    }
    return goesOn;
}

}  // namespace

FoundShape shapeOfTexts(const Engine& engine, std::size_t count,
                        const std::function<ByteSource(std::size_t)>& open, const TextOptions& text,
                        const FinderOptions& options, const std::function<bool()>& stopped) {
    std::optional<ShapeFinder> finder;
    for (std::size_t i = 0; i < count; ++i) {
        DocumentReader reader(open(i), text);
        if (finder) {
            finder->nextText(reader.form());
        } else {
            finder.emplace(engine.host(), reader.form(), options);
        }
        try {
            reader.pass([&](std::string_view piece) { return feed(*finder, piece, stopped); });
        } catch (const Error& error) {
            if (isOfFiles(error.status()) || error.status() == QV_STOPPED) {
                throw;
            }
        }
    }
    return finder->finish();
}

}  // namespace qvej
