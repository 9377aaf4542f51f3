// See session.h.
#include "tools/cli/session.h"

#include "client/error.h"
#include "tools/cli/cleanup.h"
#include "tools/cli/failure.h"
#include "tools/cli/writer.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t kDescriptionBytes = 20;

qvej::EngineOptions engineOptions(const Options& options) {
    qvej::EngineOptions engine;
    engine.memoryBudget = options.memory.value_or(0);
    engine.maxDepth = options.depth;
    engine.journal = [](std::string_view note) { tellPlain(note); };
    return engine;
}

// What notes call the document: the end of its path, in whole characters.
std::string describe(const std::string& name) {
    const std::string base = name.substr(name.rfind('/') + 1);
    return std::string(
        qvej::withoutUnfinished(std::string_view(base).substr(0, kDescriptionBytes)));
}

// The file must be new or empty: the engine takes no other.
void prepareNamedCache(const std::string& path, bool force) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0 || (S_ISREG(found.st_mode) && found.st_size == 0)) {
        return;
    }
    if (!S_ISREG(found.st_mode)) {
        throw Failure(FILE_TROUBLE, path + ": not a regular file, not replaced");
    }
    if (!force) {
        throw Failure(FILE_TROUBLE, path + ": the file exists (--force replaces it)");
    }
    if (::unlink(path.c_str()) != 0) {
        throw fileFailure(path);
    }
}

}  // namespace

Session::Session(const Options& options, const std::string& file, const std::string& map)
    : options_(options), input_(file), engine_(engineOptions(options)) {
    if (!map.empty()) {
        map_.emplace(engine_, map);
    }
    try {
        open();
        cleanup::setCacheFile(document_->privateCachePath());
        readAll();
        useMap();
    } catch (const qvej::Error& error) {
        fail(error);
    }
    if (!options.debug.empty()) {
        const JMAPTotals totals = document_->totals();
        tellPlain("totals: records " + std::to_string(totals.records) + ", bytes " +
                  std::to_string(totals.recordBytes) + ", stored bytes " +
                  std::to_string(totals.storedBytes) + ", blocks " + std::to_string(totals.blocks) +
                  ", blocks on disk " + std::to_string(totals.blocksOnDisk));
    }
}

Session::~Session() {
    document_.reset();  // with its private cache file
    cleanup::setCacheFile({});
}

void Session::open() {
    qvej::DocumentOptions document;
    document.encoding = engine_.encodingId(options_.encoding);
    if (document.encoding == 0) {
        converter_.emplace(options_.encoding);
        document.encoding = U_UTF8_CE;
    }
    document.description = describe(input_.name());
    document.debug = options_.debug;
    document.cacheFile = options_.cache;
    document.compress = options_.compress;
    document.ordinals = options_.ordinals;
    document.alldataName = options_.alldataName;
    document.keepFree = options_.keepFree.value_or(options_.memory ? (*options_.memory - 1) / 2 + 1
                                                                   : engine_.availableMemory() / 8);
    if (!options_.cache.empty()) {
        prepareNamedCache(options_.cache, options_.force);
    }
    document_.emplace(engine_, document);
    cachePath_ = options_.cache.empty() ? document_->privateCachePath() : options_.cache;
}

void Session::readAll() {
    for (std::string_view piece = input_.next();; piece = input_.next()) {
        if (!converter_) {
            feed(piece);
        } else {
            const Converter::Piece converted = converter_->convert(piece);
            feed(converted.text);
            if (converted.broken) {
                throw Failure(
                    NOT_JSON,
                    failureLine(trail_.end(), "the text is not valid " + options_.encoding),
                    excerpt(trail_.end()));
            }
        }
        if (piece.empty()) {
            break;
        }
    }
    document_->finish();
}

void Session::useMap() {
    if (!map_) {
        return;
    }
    try {
        document_->useMap(map_->text());
    } catch (const qvej::MapError& error) {
        map_->fail(engine_, error);
    } catch (const qvej::Error& error) {
        if (error.status() != QV_UNMAPPABLE) {
            throw;
        }
        throw Failure(NO_TABLE, map_->name() + ": a character of the map is not in " +
                                    options_.encoding + ", the encoding of " + input_.name());
    }
}

void Session::feed(std::string_view text) {
    if (start_.empty()) {
        start_ = text.substr(0, 2);
    }
    trail_.take(text);
    document_->feed(text);
    trail_.passed();
}

// What to try when the text looks like another encoding than was said.
std::string Session::encodingHint(QVStatus status) const {
    const auto begins = [](char c) { return c == '{' || c == '[' || c == ' ' || c == '\n'; };
    const bool two = start_.size() == 2;
    const bool big = two && start_[0] == '\0' && begins(start_[1]);
    const bool little = two && begins(start_[0]) && start_[1] == '\0';
    if (big || little || start_ == "\xFF\xFE" || start_ == "\xFE\xFF") {
        return " (this looks like UTF-16: --encoding UTF-16)";
    }
    return status == QV_JSON_UTF8 ? " (--encoding NAME for text in another encoding)" : "";
}

std::string Session::failureLine(Place place, const std::string& what) const {
    return input_.name() + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
           ": " + what;
}

std::string Session::excerpt(Place place) const {
    return trail_.excerpt(place, [this](std::string_view text) {
        return document_ ? document_->codec().decoded(text) : std::string(text);
    });
}

void Session::fail(const qvej::Error& error) const {
    const ExitCode code = exitCodeOf(error.status());
    std::string what = error.what();
    if (code == FILE_TROUBLE) {
        throw Failure(code, cachePath_ + ": " + what);
    }
    if (error.status() == QV_NOMEM) {
        what += ", or a path is longer than 1 MiB";
    }
    what += encodingHint(error.status());
    if (error.status() == QV_JSON_DEPTH) {
        what += " of " + std::to_string(options_.depth) + " (--depth)";
    }
    if (code == WRONG_USAGE) {
        throw Failure(code, "an option does not suit the document: " + what);
    }
    const bool atEnd = error.status() == JMAP_INCOMPLETE && error.line() == 0;
    const Place place = atEnd ? trail_.end() : Place{error.line(), error.column()};
    if (place.line == 0) {
        throw Failure(code, input_.name() + ": " + what);
    }
    throw Failure(code, failureLine(place, what), excerpt(place));
}

void Session::failReading(const qvej::Error& error) const {
    const ExitCode code = exitCodeOf(error.status());
    throw Failure(code, (code == FILE_TROUBLE ? cachePath_ : name()) + ": " + error.what());
}
