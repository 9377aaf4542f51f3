// See open_document.h.
#include "client/open/open_document.h"

#include "client/error.h"
#include "client/maps/exact_map.h"
#include "client/open/shape_of_texts.h"
#include "client/parts/counting.h"
#include "client/parts/input_parts.h"

#include <algorithm>
#include <filesystem>
#include <thread>
#include <utility>

namespace qvej {
namespace {

InputList inputsOf(const OpenOptions& options) {
    const bool files = !options.memory && !options.pull;
    return files ? options.inputs : InputList{{options.name}, false};
}

DocumentOptions documentOptions(const OpenOptions& options, const Engine& engine) {
    DocumentOptions document;
    document.naming = options.naming;
    document.maxDepth = options.depth;
    document.maxPaths = options.maxPaths;
    document.sourceColumn = options.sourceColumn;
    document.memoryBudget = options.memoryBudget;
    const uint64_t available = engine.availableMemory();
    document.keepFree = options.memoryBudget != 0 ? options.memoryBudget / 2 : available / 8;
    document.stopped = options.stopped;
    document.leastMemory = options.memoryBudget != 0 ? 0 : available / 16;
    return document;
}

}  // namespace

OpenDocument::OpenDocument(OpenOptions options)
    : options_(std::move(options)), inputs_(inputsOf(options_)) {
    DocumentOptions document = documentOptions(options_, engine_);
    document.shape = shape();
    read(document);
    if (!options_.map.empty()) {
        document_->useMap(options_.map);
    } else if (options_.exact && !document_->inexactPaths().empty()) {
        document_->useMap(mapDocument(exactMap(*document_, each(document_->tables())).map));
    }
}

ByteSource OpenDocument::open(const std::string& file) const {
    ByteSource bytes = options_.memory ? ByteSource::memory(*options_.memory, options_.name)
                       : options_.pull ? ByteSource::pulled(options_.pull, options_.name)
                                       : ByteSource::untilStopped(file, options_.stopped);
    bytes.stopWhen(options_.stopped);
    return bytes;
}

void OpenDocument::readAgain(
    const std::function<void(DocumentReader&, const DocumentOptions&)>& read) const {
    if (const std::string name = once(); !name.empty()) {
        throw Error(QV_UNSUPPORTED, "cannot be read again", Place{name});
    }
    checkUnchanged();
    for (const std::string& file : inputs_.files) {
        DocumentReader reader(open(file), options_.text);
        read(reader, reader.documentOptions({.maxDepth = options_.depth}));
    }
    checkUnchanged();
}

void OpenDocument::checkUnchanged() const {
    const PartsOfDocument* const parts = document().parts();
    if (parts != nullptr && parts->check) {
        parts->check();
    }
}

// Bytes of what can be read again; 0: it cannot.
uint64_t OpenDocument::bytes() const {
    return options_.memory ? options_.memory->size()
           : options_.pull ? 0
                           : rereadableBytes(inputs_).value_or(0);
}

// The first input that comes once, as messages call it; empty: none does.  A file that is not there
// is for the reading to tell.
std::string OpenDocument::once() const {
    if (options_.memory || options_.pull) {
        return options_.memory ? "" : options_.name;
    }
    const auto found =
        std::find_if(inputs_.files.begin(), inputs_.files.end(), [](const std::string& file) {
            return !rereadableBytes({{file}, false}) &&
                   (file == "-" || std::filesystem::exists(file));
        });
    return found == inputs_.files.end() ? "" : *found == "-" ? "<stdin>" : *found;
}

Shape OpenDocument::shape() {
    Shape shape;
    if (options_.shape != "auto") {
        shape.addText(options_.shape, options_.shapeName);
        return shape;
    }
    if (const std::string name = once(); !name.empty()) {
        throw Error(QV_UNSUPPORTED, "a shape is found by reading twice, and this comes once",
                    Place{name});
    }
    FinderOptions finding;
    finding.maxDepth = options_.depth;
    return shapeOfTexts(
               engine_, inputs_.files.size(), [&](std::size_t i) { return open(inputs_.files[i]); },
               options_.text, finding, options_.stopped)
        .shape();
}

std::string OpenDocument::whyRecords() const {
    if (options_.records) {
        return "they are wanted";
    }
    const std::string name = once();
    return !name.empty()              ? name + " cannot be read again"
           : bytes() < kWorthCounting ? "the input is small"
                                      : "";
}

void OpenDocument::openInputs() {
    reader_.emplace(inputs_, options_.text, [this](const std::string& file) { return open(file); });
}

void OpenDocument::read(const DocumentOptions& options) {
    openInputs();
    std::string why = whyRecords();
    if (why.empty()) {
        const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
        const CountingOptions counting = {
            .engine = engine_,
            .inputs = inputs_,
            .text = options_.text,
            .options = options,
            .threads = options_.threads != 0 ? options_.threads : cores,
            .memory = options_.memoryBudget != 0 ? options_.memoryBudget : UINT64_MAX,
            .open = [this](const std::string& file) { return open(file); },
            .changing = !options_.memory,
            .readWhole =
                [&](const DocumentOptions& whole) {
                    openInputs();
                    readWhole(whole);
                },
        };
        plan_ = countDocument(counting, document_);
        if (!plan_.empty()) {
            return;
        }
        openInputs();
        why = kWhyNotCounted;
    }
    plan_ = "records, since " + why;
    readWhole(options);
}

void OpenDocument::readWhole(const DocumentOptions& options) {
    document_.emplace(engine_, reader_->documentOptions(options));
    reader_->read(*document_);
}

}  // namespace qvej
