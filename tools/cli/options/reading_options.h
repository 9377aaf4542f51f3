// How a document is read: encoding, limits, memory, what its tables are called.
#pragma once

#include "client/input/document_reader.h"
#include "client/path_names.h"
#include "tools/cli/options/shape_options.h"
#include "tools/cli/reports/progress.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qvej::cli {

struct ReadingOptions {
    TextOptions text;
    ShapeOptions shape;
    bool several = false;  // documents, of which some may be JSON Lines
    bool skipBadLines = false;
    bool skipBadFiles = false;
    uint64_t depth = 1000;           // 0: any
    uint64_t maxPaths = 10'000'000;  // 0: any number
    bool compress = false;
    std::optional<uint64_t> memory;
    std::optional<uint64_t> keepFree;
    std::string cache;  // file of records that leave memory; empty: one without a name
    uint64_t ordinals = UINT64_MAX;
    std::string alldataName = "ALLDATA";
    std::optional<Naming> naming;  // nothing: MAP, and names that differ much are told
    ProgressForm progress = ProgressForm::NONE;
    bool plan = false;  // is told: see plan.h
    std::string debug;  // as the engine wants it: ",MAP,READ,"; empty: none
};

}  // namespace qvej::cli
