// See session.h.
#include "tools/cli/session.h"

#include "client/cache_file.h"
#include "client/error.h"
#include "formats/sources.h"
#include "formats/writer.h"
#include "tools/cli/failure.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/verbs/verbs.h"

#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::size_t kDescriptionBytes = 20;

qvej::EngineOptions engineOptions(const Options& options) {
    qvej::EngineOptions engine;
    engine.memoryBudget = options.memory.value_or(0);
    engine.maxDepth = options.depth;
    engine.journal = [](std::string_view note) { tellPlain(note); };
    return engine;
}

// Is the file named as JSON Lines are, compressed or not?
bool namedAsLines(std::string_view file) {
    for (const std::string_view packed : {".gz", ".zst"}) {
        file.remove_suffix(file.ends_with(packed) ? packed.size() : 0);
    }
    return file.ends_with(".jsonl") || file.ends_with(".ndjson");
}

// What notes call the document: the end of its path, in whole characters.
std::string describe(const std::string& name) {
    const std::string base = name.substr(name.rfind('/') + 1);
    return std::string(
        qvej::withoutUnfinished(std::string_view(base).substr(0, kDescriptionBytes)));
}

// The file must be new or empty: the engine takes no other.
void prepareNamedCache(const std::string& path, bool force, const Sources& sources) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0 || (S_ISREG(found.st_mode) && found.st_size == 0)) {
        return;
    }
    if (!S_ISREG(found.st_mode)) {
        throw Failure(FILE_TROUBLE, path + ": not a regular file, not replaced");
    }
    refuseSource(path, sources);
    if (!force) {
        throw Failure(FILE_TROUBLE, path + ": the file exists (--force replaces it)");
    }
    if (::unlink(path.c_str()) != 0) {
        throw qvej::fileError(QV_IO_WRITE, path);
    }
}

}  // namespace

Session::Session(const Options& options, const std::string& file, const std::string& map,
                 std::vector<qvej::Watch> watches)
    : options_(options),
      text_(file, options.encoding, options.replaceInvalid),
      lines_(options.lines || namedAsLines(file)),
      engine_(engineOptions(options)),
      watches_(std::move(watches)) {
    if (!map.empty()) {
        map_.emplace(engine_, map);
    }
    if (!options.cache.empty()) {
        prepareNamedCache(options.cache, options.force, sourcesOf(file, map));
    }
    try {
        open();
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

void Session::open() {
    qvej::DocumentOptions document;
    document.lines = lines_;
    document.watches = watches_;
    if (text_.recoded()) {
        document.columnOf = [this](int64_t offset) { return text_.columnOf(offset); };
    }
    document.description = describe(name());
    document.debug = options_.debug;
    document.cacheFile = options_.cache;
    document.compress = options_.compress;
    document.ordinals = options_.ordinals;
    document.alldataName = options_.alldataName;
    document.keepFree = options_.keepFree.value_or(options_.memory ? (*options_.memory - 1) / 2 + 1
                                                                   : engine_.availableMemory() / 8);
    document.leastMemory = options_.memory ? 0 : engine_.availableMemory() / 16;
    document.maxPaths = options_.maxPaths;
    document_.emplace(engine_, document);
    cachePath_ = options_.cache.empty() ? qvej::privateCacheDirectory() : options_.cache;
}

void Session::readAll() {
    for (std::string_view piece = text_.next(); !piece.empty(); piece = text_.next()) {
        trail_.take(piece);
        if (options_.verb->run == runMap) {
            separators_.take(piece);
        }
        document_->feed(piece);
        trail_.passed();
    }
    if (text_.broken()) {
        failAt(NOT_JSON, trail_.end(), columnOf(trail_.end()),
               "the text is not valid " + text_.encoding() + hint(QV_JSON_UTF8, trail_.end()));
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
    }
}

// What to try, when the text looks like something else than was said.
std::string Session::hint(QVStatus status, Place place) const {
    if (text_.otherEncoding() != nullptr) {
        return " (this looks like " + *text_.otherEncoding() + ")";
    }
    if (status == QV_JSON_UTF8) {
        return " (--encoding NAME for text in another encoding, --invalid replace to go on)";
    }
    if (status == QV_JSON_TRAILING && place.line > 1) {
        return " (--lines for one value a line)";
    }
    if (status == QV_JSON_LINE_END && !options_.lines) {
        return " (a file of this name holds one value a line; give any other as \"-\")";
    }
    return {};
}

// The column of a place of the UTF-8 in the text as it was.
int64_t Session::columnOf(Place place) const {
    const std::optional<int64_t> offset =
        text_.recoded() ? trail_.offsetOf(place) : std::optional<int64_t>();
    return offset ? text_.columnOf(*offset) : place.column;
}

void Session::failAt(ExitCode code, Place place, int64_t column, const std::string& what) const {
    throw Failure(
        code,
        name() + ":" + std::to_string(place.line) + ":" + std::to_string(column) + ": " + what,
        trail_.excerpt(place));
}

void Session::fail(const qvej::Error& error) const {
    if (!error.file().empty()) {
        throw error;
    }
    const QVStatus status = error.status();
    const ExitCode code = exitCodeOf(status);
    std::string what = error.what();
    if (code == FILE_TROUBLE) {
        throw Failure(code, cachePath_ + ": " + what);
    }
    if (status == QV_NOMEM && error.line() != 0) {
        what += ", or a path or a number is longer than 1 MiB";
    }
    if (status == QV_JSON_DEPTH) {
        what += " of " + std::to_string(options_.depth) + " (--depth)";
    }
    if (status == QV_LIMIT_PATHS) {
        what += "; --max-paths N moves this limit";
    }
    if (status == QV_LIMIT_MEMORY && options_.memory) {
        what += " (--memory)";
    }
    if (status == QV_LIMIT_DISK) {
        what +=
            " in " + cachePath_ + " (--cache FILE goes elsewhere, --compress makes them smaller)";
    }
    if (code == WRONG_USAGE) {
        throw Failure(code, "an option does not suit the document: " + what);
    }
    const bool atEnd = status == JMAP_INCOMPLETE && error.line() == 0;
    const Place place = atEnd ? trail_.end() : Place{error.line(), error.column()};
    if (place.line == 0) {
        throw Failure(code, name() + ": " + what);
    }
    // What stands before a document that is no object or array is white space, one unit each.
    const bool noContainer = status == JMAP_INCOMPLETE && !atEnd;
    failAt(code, place, noContainer ? place.column : columnOf(place), what + hint(status, place));
}

void Session::failReading(const qvej::Error& error) const {
    if (!error.file().empty()) {
        throw error;  // of an output
    }
    const ExitCode code = exitCodeOf(error.status());
    throw Failure(code, (code == FILE_TROUBLE ? cachePath_ : name()) + ": " + error.what());
}
