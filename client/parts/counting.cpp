// See counting.h.
#include "client/parts/counting.h"

#include "client/error.h"
#include "client/parts/input_parts.h"
#include "client/parts/scan_parts.h"

#include <algorithm>
#include <memory>

namespace qvej {
namespace {

constexpr uint64_t kLeastMemory = uint64_t{256} << 20;   // for parts on their way
constexpr uint64_t kMemoryForAPath = uint64_t{8} << 10;  // so that few of it is for paths' trees

// How the inputs are read, and what tells that they have changed since.
struct Inputs {
    std::function<void()> check;  // empty: they do not change
    ReadParts read;

    explicit Inputs(const CountingOptions& of)
        : check(of.changing ? checkOfChanges(of.inputs) : std::function<void()>()),
          read(partsOf(of.inputs, of.text, of.open, check, of.observer)) {}
};

std::shared_ptr<PartsOfDocument> partsOf(const CountingOptions& counting, const Inputs& inputs) {
    auto parts = std::make_shared<PartsOfDocument>();
    parts->engine = &counting.engine;
    parts->options = counting.options;
    parts->options.several = counting.inputs.several;
    parts->threads = counting.memory < kLeastMemory ? 1 : counting.threads;
    parts->read = inputs.read;
    parts->check = inputs.check;
    return parts;
}

// What keeps the inputs from being read in parts; empty: nothing does.
std::string whyAsOne(const CountingOptions& counting) {
    return counting.threads == 1               ? "--threads is 1"
           : !counting.options.shape.empty()   ? "a shape needs the whole text"
           : !counting.options.watches.empty() ? "places of values are asked for"
           : counting.memory < kLeastMemory    ? "--memory is below 256M"
                                               : "";
}

bool countInParts(const CountingOptions& counting, const Inputs& inputs,
                  std::optional<Document>& document) {
    const auto parts = partsOf(counting, inputs);
    DocumentOptions sum = parts->options;
    sum.ofParts = true;
    document.emplace(counting.engine, sum);
    if (!scanParts(*parts, *document)) {
        document.reset();
        return false;
    }
    document->setParts(parts);
    return true;
}

// False: there are too many paths.
bool countAsOne(const CountingOptions& counting, const Inputs& inputs,
                std::optional<Document>& document) {
    const auto parts = partsOf(counting, inputs);
    parts->asOne = true;
    DocumentOptions whole = counting.options;
    const uint64_t most = std::min(kMostPathsCounted, counting.memory / kMemoryForAPath);
    const bool limited = whole.maxPaths != 0 && whole.maxPaths < most;
    whole.counted = true;
    whole.maxPaths = limited ? whole.maxPaths : most;
    try {
        counting.readWhole(whole);
    } catch (const Error& error) {
        if (error.status() != QV_LIMIT_PATHS || limited) {
            throw;
        }
        document.reset();
        return false;
    }
    document->setParts(parts);
    return true;
}

}  // namespace

std::string countDocument(const CountingOptions& counting, std::optional<Document>& document) {
    constexpr const char* kThen = ", then read again for the rows";
    // What the files are is looked at now, before the first reading: the last one finds them
    // changed, whichever reading they changed in.
    const Inputs inputs(counting);
    std::string why = whyAsOne(counting);
    if (why.empty() && countInParts(counting, inputs, document)) {
        return "counted in parts on " + std::to_string(counting.threads) + " threads" + kThen;
    }
    why = why.empty() ? "the text cannot be divided" : why;
    return countAsOne(counting, inputs, document) ? "counted as one, since " + why + kThen : "";
}

}  // namespace qvej
