// What a scan of a range of the input has counted: bytes that can be stored, sent and added up, in
// the layout of src/scan/partial_scan.h.
//
//     const qvej::PartialScan first = qvej::PartialScan::of(engine, range, {});    // anywhere
//     const qvej::PartialScan all = qvej::PartialScan::merged(engine, {first, second});
//     all.mapText(engine);
//
// Scans are added in the order of the text, those of several files file by file.  Sums may be added
// in their turn.
//
// Tested by tests/client/partial_scan_test.cpp
#pragma once

#include "../engine.h"
#include "../input/document_reader.h"
#include "../parts/part_counts.h"
#include "../shape/shape.h"
#include "text_range.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvej {

struct PartialScanOptions {
    TextOptions text = {};               // of a range that is a whole text
    uint64_t maxDepth = 1000;            // 0: any
    uint64_t maxPaths = 10'000'000;      // 0: any number
    Shape shape = {};                    // rules, as of DocumentOptions
    bool skipBadLines = false;           // of JSON Lines: see LineSieve
    std::function<bool()> stopped = {};  // see DocumentOptions
};

// What a scan has seen of the lines of a range.
struct SeenLines {
    uint64_t feeds = 0;  // line feeds
    uint64_t bad = 0;    // lines that were left out
};

class PartialScan {
   public:
    // Bytes that one had.  What uses them throws QV_BADPARMS for others.
    explicit PartialScan(std::string bytes) : bytes_(std::move(bytes)) {}

    // Scans it.  Throws Error: a mistake in the text has its place in the file; QV_UNSUPPORTED for
    // what cannot be scanned in ranges.
    //   seen  gets what has been seen of JSON Lines, if that is not null
    static PartialScan of(Engine& engine, const TextRange& range, const PartialScanOptions& options,
                          SeenLines* seen = nullptr);
    // A whole text, compressed or not.
    static PartialScan of(Engine& engine, std::string_view text, const PartialScanOptions& options);

    // The sum.  Throws as `of`.
    //   maxPaths  as of the options
    static PartialScan merged(Engine& engine, const std::vector<PartialScan>& scans,
                              uint64_t maxPaths = 0);

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

    // The automatic map of what has been scanned.
    [[nodiscard]] std::string mapText(Engine& engine) const;

    // How often each object and array has come.  Paths have separator 0x02.
    [[nodiscard]] std::vector<ContainerCount> counts(Engine& engine) const;

    // Is that what ordinals count?  Not where outermost arrays have elements that are no objects:
    // these have rows, too.
    [[nodiscard]] bool tellsOrdinals(Engine& engine) const;

   private:
    std::string bytes_;
};

}  // namespace qvej
