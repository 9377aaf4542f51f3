// From FILE to a finished document: opens the text, starts the engine as the options say, feeds the
// document, and tells mistakes with their place.
#pragma once

#include "client/document.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/input/document_text.h"
#include "client/input/place.h"
#include "tools/cli/failure.h"
#include "tools/cli/maps/map_file.h"
#include "tools/cli/maps/separator_watch.h"
#include "tools/cli/options/options.h"

#include <optional>
#include <string>

namespace qvej::cli {

class Session {
   public:
    // Reads the whole document, and first the map when one is named.  Throws a Failure.
    explicit Session(const Options& options) : Session(options, options.operands[0], options.map) {}
    Session(const Options& options, const std::string& file, const std::string& map,
            std::vector<qvej::Watch> watches = {});
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] const qvej::Document& document() const { return *document_; }
    [[nodiscard]] const qvej::Engine& engine() const { return engine_; }

    // The map in use; null: the automatic one.
    [[nodiscard]] const MapFile* map() const { return map_ ? &*map_ : nullptr; }

    // What messages call the document.
    [[nodiscard]] const std::string& name() const { return text_.name(); }

    // What messages call the map in use: of the automatic one, the document.
    [[nodiscard]] const std::string& mapName() const { return map_ ? map_->name() : name(); }

    // Whether a member name of the document can hold the byte 0x02, which divides paths.  Only
    // asked of `qvejmap map`; else false.
    [[nodiscard]] bool separatorEscaped() const { return separators_.found(); }

    // Turns a failure of the finished document (its records cannot be read back) into the tool's.
    [[noreturn]] void failReading(const qvej::Error& error) const;

   private:
    void open();
    void readAll();
    void feed(std::string_view text);
    void useMap();
    [[noreturn]] void fail(const qvej::Error& error) const;
    [[nodiscard]] std::string hint(QVStatus status, qvej::Place place) const;
    [[nodiscard]] int64_t columnOf(qvej::Place place) const;
    [[noreturn]] void failAt(ExitCode code, qvej::Place place, int64_t column,
                             const std::string& what) const;

    const Options& options_;
    qvej::DocumentText text_;
    bool lines_;  // JSON Lines
    qvej::Engine engine_;
    std::optional<MapFile> map_;
    std::string cachePath_;  // of records that leave memory
    std::vector<qvej::Watch> watches_;
    std::optional<qvej::Document> document_;
    qvej::TextTrail trail_;
    SeparatorWatch separators_;
};

}  // namespace qvej::cli
