// See session.h.
#include "tools/cli/session.h"

#include "client/error.h"
#include "client/escape.h"
#include "client/parts/counting.h"
#include "client/parts/input_parts.h"
#include "client/row_stream.h"
#include "client/text.h"
#include "formats/sources.h"
#include "tools/cli/auto_shape.h"
#include "tools/cli/counted_input.h"
#include "tools/cli/failure.h"
#include "tools/cli/plan.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/tell.h"

#include <algorithm>
#include <memory>
#include <sys/stat.h>
#include <utility>

namespace qvej::cli {

namespace {

DocumentOptions documentOptions(const ReadingOptions& options, const Engine& engine) {
    DocumentOptions document;
    document.debug = options.debug;
    document.cacheFile = options.cache;
    document.compress = options.compress;
    document.ordinals = options.ordinals;
    document.alldataName = options.alldataName;
    document.naming = options.naming.value_or(Naming::MAP);
    document.keepFree = options.keepFree.value_or(options.memory ? (*options.memory - 1) / 2 + 1
                                                                 : engine.availableMemory() / 8);
    document.memoryBudget = options.memory.value_or(0);
    document.maxDepth = options.depth;
    document.journal = [](std::string_view note) { tellPlain(note); };
    document.leastMemory = options.memory ? 0 : engine.availableMemory() / 16;
    document.maxPaths = options.maxPaths;
    return document;
}

// The file must be new or empty: the engine takes no other, and a file of the user is not deleted.
void checkNamedCache(const std::string& path, const Sources& sources) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) {
        return;
    }
    if (!S_ISREG(found.st_mode)) {
        throw Failure(FILE_TROUBLE, path + ": not a regular file, not replaced");
    }
    refuseSource(path, sources);
    if (found.st_size != 0) {
        throw Failure(FILE_TROUBLE,
                      path + ": the file is not empty (--cache takes a new or an empty one)");
    }
}

// A text on its way; `fed` is called after each piece.
class FedText final : public TextConsumer {
   public:
    FedText(TextConsumer& to, const std::function<void()>& fed) : to_(to), fed_(fed) {}
    void feed(std::string_view text) override {
        to_.feed(text);
        fed_();
    }
    void finish() override { to_.finish(); }
    [[nodiscard]] Place end() const override { return to_.end(); }

   private:
    TextConsumer& to_;
    const std::function<void()>& fed_;
};

std::vector<RereadableFile> rereadable(const InputList& inputs) {
    return {inputs.files.begin(), inputs.files.end()};
}

// What to try, when the text looks like something else than was said.
std::string hint(const DocumentReader& reader, const Error& error) {
    if (reader.otherEncoding() != nullptr) {
        return " (this looks like " + *reader.otherEncoding() + ")";
    }
    switch (error.status()) {
        case QV_JSON_UTF8:
            return " (--encoding NAME for text in another encoding, --invalid replace to go on)";
        case QV_JSON_TRAILING:
            return error.line() > 1 ? " (--lines for one value a line)" : "";
        case QV_JSON_LINE_END:
            return reader.linesByName()
                       ? " (a file of this name holds one value a line; give any other as \"-\")"
                   : reader.linesByContent() ? " (this looks like JSON Lines, one value a line)"
                                             : "";
        default:
            return {};
    }
}

// What a limit is, or which option moves it; "" for other mistakes.
std::string aboutLimit(const ReadingOptions& options, QVStatus status) {
    switch (status) {
        case QV_JSON_DEPTH:
            return " of " + std::to_string(options.depth) + " (--depth)";
        case QV_LIMIT_PATHS:
            return "; --max-paths N moves this limit";
        case QV_LIMIT_MEMORY:
            return options.memory ? " (--memory)" : "";
        case QV_LIMIT_DISK:
            return " (--cache FILE goes elsewhere, --compress makes them smaller)";
        default:
            return {};
    }
}

// When memory is too little for the names alone: where most of them are, and what to do.
std::string aboutNames(const Document& document, QVStatus status) {
    constexpr uint64_t kMany = 30'000;
    constexpr std::size_t kShownCharacters = 120;
    const MostPaths most = status == QV_LIMIT_MEMORY ? document.mostPaths() : MostPaths();
    if (most.count < kMany) {
        return {};
    }
    const std::string path = escaped(withSlashes(most.path));
    const std::string_view shown = firstCharacters(path, kShownCharacters);
    return "; most paths are below " + std::string(shown) +
           (shown.size() < path.size() ? "..." : "") + " (" + withCommas(most.count) +
           "): --shape auto or --rows PATH makes rows of such names";
}

}  // namespace

void failReading(const ReadingOptions& options, const DocumentReader& reader, const Error& error,
                 const Document* document) {
    const ExitCode code = exitCodeOf(error.status());
    if (code == FILE_TROUBLE) {
        throw error;
    }
    std::string what = error.what();
    if (code == WRONG_USAGE) {
        throw Failure(code, "an option does not suit the document: " + what);
    }
    if (error.status() == QV_NOMEM && error.line() != 0) {
        what += ", or a path or a number is longer than 1 MiB";
    }
    what += aboutLimit(options, error.status());
    what += document == nullptr ? std::string() : aboutNames(*document, error.status());
    Place place = error.place();
    place.file = reader.name();
    what += place.line == 0 ? "" : hint(reader, error);
    throw Error(error.status(), what, place, error.excerpt());
}

void readText(const ReadingOptions& options, const Engine& engine, DocumentReader& reader,
              TextConsumer& text, const std::function<void(const BadLine&)>& onBad,
              const std::function<void(std::string_view)>& observer) {
    const bool lines = reader.form() == TextForm::LINES;
    if (!options.skipBadLines || (options.several && !lines)) {
        reader.read(text, observer);
        return;
    }
    if (!lines) {
        throw Failure(WRONG_USAGE,
                      reader.name() +
                          ": --skip-bad-lines is for JSON Lines, and this does not look "
                          "like it (--lines says that it is)");
    }
    LineSieve sieve(engine, text, onBad, options.depth);
    reader.read(sieve, observer);
}

std::optional<Error> mistakeOf(const ReadingOptions& options, const Engine& engine,
                               const std::function<ByteSource()>& open, const OnBadLine& onBad,
                               std::string* name) {
    try {
        DocumentReader reader(open(), options.text);
        if (name != nullptr) {
            *name = reader.name();
        }
        try {
            TextCheck check(engine, reader.documentOptions({.maxDepth = options.depth}));
            readText(options, engine, reader, check, [&](const BadLine& line) {
                if (onBad) {
                    onBad(reader.name(), line);
                }
            });
        } catch (const Error& error) {
            failReading(options, reader, error);
        }
        return std::nullopt;
    } catch (const Error& error) {
        const ExitCode code = exitCodeOf(error.status());
        if (code != NOT_JSON && code != FILE_TROUBLE) {
            throw;
        }
        return error;
    }
}

Session::Session(const ReadingOptions& options, const InputList& inputs, const std::string& map,
                 const ReadingWishes& wishes)
    : options_(options),
      progress_(std::make_unique<Progress>(options_.progress, bytesOf(inputs.files))),
      rereadable_(options_.shape.finds() || options_.skipBadFiles ? rereadable(inputs)
                                                                  : std::vector<RereadableFile>()),
      inputs_(options_.skipBadFiles ? goodOf(inputs, !wishes.again) : inputs),
      shape_(shapeOf(options_.shape,
                     [this] {
                         progress_->begin(Progress::SHAPE);
                         Shape found =
                             cli::findShape(engine_, rereadable_, options_, *progress_).shape();
                         progress_->begin(Progress::SCAN);
                         return found;
                     })),
      stop_(wishes.notStreamed.empty() && rereadable_.empty() ? std::make_shared<ReadingStop>()
                                                              : nullptr) {
    openInputs();
    name_ = reader_->name();
    if (!map.empty()) {
        map_.emplace(engine_, map);
    }
    if (!options_.cache.empty()) {
        checkNamedCache(options_.cache, sourcesOf(inputs_.files, map, options_.shape.files()));
    }
    try {
        if (!stream(wishes)) {
            read(wishes);
            useMap();
        }
    } catch (const Error& error) {
        cli::failReading(options_, reader_->current(), error, document_ ? &*document_ : nullptr);
    }
    progress_->erase();
    tellUnmatched(name(), shape_, *document_);
    if (!options_.debug.empty()) {
        const JMAPTotals totals = document_->totals();
        tellPlain("totals: records " + std::to_string(totals.records) + ", bytes " +
                  std::to_string(totals.recordBytes) + ", stored bytes " +
                  std::to_string(totals.storedBytes) + ", blocks " + std::to_string(totals.blocks) +
                  ", blocks on disk " + std::to_string(totals.blocksOnDisk));
    }
}

// From the beginning, also of the progress.
void Session::openInputs() {
    progress_->begin(Progress::SCAN);
    reader_.emplace(inputs_, options_.text,
                    [this, next = std::size_t{0}](const std::string& file) mutable {
                        return counted(rereadable_.empty() ? ByteSource::asItComes(file, stop_)
                                                           : rereadable_[next++].walk(),
                                       *progress_);
                    });
}

// Whether the document's rows are to be made while it is read; if so, all is ready for that.
bool Session::stream(const ReadingWishes& wishes) {
    if (stop_ == nullptr || !shape_.empty() || !whyRecords(options_).empty()) {
        return false;
    }
    DocumentOptions options = documentOptions(options_, engine_);
    options.sourceColumn = wishes.sourceColumn;
    options.several = inputs_.several;
    options.uncounted = true;
    document_.emplace(engine_, options);
    if (inputs_.several) {
        for (const std::string& file : inputs_.files) {
            document_->addText(file == "-" ? "<stdin>" : file);
        }
    }
    document_->finishParts();
    useMap();
    whyCounted_ = whyCounted(*document_, wishes.table);
    if (!whyCounted_.empty()) {
        document_.reset();
        return false;
    }
    auto stream = std::make_shared<RowStream>();
    stream->engine = &engine_;
    stream->options = reader_->documentOptions(options);
    stream->read = [this](Document& walk, const std::function<void()>& fed) {
        readStream(walk, fed);
    };
    stream->stop = [this] { stop_->stop(); };
    document_->setStream(std::move(stream));
    tellPlan(options_, "one walk, rows as they come");
    return true;
}

void Session::readStream(Document& walk, const std::function<void()>& fed) {
    try {
        reader_->read(walk, [&](DocumentReader& reader, TextConsumer& text) {
            FedText all(text, fed);
            reader.read(all);
        });
    } catch (const Error& error) {
        cli::failReading(options_, reader_->current(), error);
    }
}

// Why the inputs are not read again for the rows; empty: they are.
std::string Session::whyNotAgain(const ReadingWishes& wishes) const {
    if (const std::string why = whyRecords(options_); !why.empty()) {
        return why;
    }
    if (const std::string why = whyOnce(inputs_); !why.empty()) {
        return why;
    }
    if (wishes.partThreads == 0) {
        return !wishes.notStreamed.empty() ? wishes.notStreamed
               : !shape_.empty()           ? "the shape needs them"
                                           : whyCounted_;
    }
    return rereadableBytes(inputs_).value_or(0) < kWorthCounting ? "the input is small" : "";
}

void Session::read(const ReadingWishes& wishes) {
    DocumentOptions options = documentOptions(options_, engine_);
    options.watches = wishes.watches;
    options.shape = shape_;
    options.sourceColumn = wishes.sourceColumn;
    std::string whyRecords = whyNotAgain(wishes);
    if (whyRecords.empty()) {
        const CountingOptions counting = {
            .engine = engine_,
            .inputs = inputs_,
            .text = options_.text,
            .options = options,
            .threads = wishes.partThreads,
            .memory = options_.memory.value_or(UINT64_MAX),
            .open =
                [this](const std::string& file) {
                    // Once the paths are counted, the rows show how far it is.
                    return document_->parts() != nullptr
                               ? ByteSource::file(file)
                               : counted(ByteSource::file(file), *progress_);
                },
            .observer = wishes.observer,
            .readWhole =
                [&](const DocumentOptions& whole) {
                    openInputs();
                    readWhole(whole, wishes);
                },
        };
        if (const std::string how = countDocument(counting, document_); !how.empty()) {
            tellPlan(options_, how);
            return;
        }
        openInputs();
        whyRecords = kWhyNotCounted;
    }
    tellPlan(options_, "records, since " + whyRecords);
    readWhole(options, wishes);
}

void Session::readWhole(const DocumentOptions& options, const ReadingWishes& wishes) {
    document_.emplace(engine_, reader_->documentOptions(options));
    if (wishes.keepBadLines) {
        skipped_.keepLines();
    }
    reader_->read(*document_, [&](DocumentReader& reader, TextConsumer& text) {
        const auto onBad = [&](const BadLine& line) { skipped_.takeLine(reader.name(), line); };
        readText(options_, engine_, reader, text, onBad, wishes.observer);
    });
    if (!wishes.again) {
        skipped_.tellLines();
    }
}

// The inputs that are well formed; the others are told.
InputList Session::goodOf(InputList inputs, bool tells) {
    InputList good = {{}, inputs.several};
    std::vector<RereadableFile> files;
    progress_->begin(Progress::FILES);
    for (std::size_t i = 0; i < inputs.files.size(); ++i) {
        const std::optional<Error> mistake = mistakeOf(
            options_, engine_, [&] { return counted(rereadable_[i].walk(), *progress_); });
        if (!mistake) {
            good.files.push_back(inputs.files[i]);
            files.push_back(rereadable_[i]);
        } else if (good.files.empty() && i + 1 == inputs.files.size()) {
            throw AllBad(*mistake);
        } else if (tells) {
            skipped_.takeFile(*mistake);
        }
    }
    rereadable_ = std::move(files);
    progress_->begin(Progress::SCAN);
    return good;
}

void Session::useMap() {
    if (!map_) {
        return;
    }
    try {
        document_->useMap(map_->text());
    } catch (const MapError& error) {
        map_->fail(engine_, error);
    }
}

void Session::failReading(const Error& error) const {
    const std::string limit =
        aboutLimit(options_, error.status()) + aboutNames(*document_, error.status());
    if (!error.file().empty() && limit.empty()) {
        throw error;  // of an output
    }
    const bool cache = exitCodeOf(error.status()) == FILE_TROUBLE;
    throw Error(error.status(), error.what() + limit, cache ? document_->cacheFile() : name());
}

}  // namespace qvej::cli
