// Files that are read twice, without records: their paths are counted first, then they are read
// again for their rows.
//
//     qvej::CountingOptions counting = {engine, inputs, text, options, threads};
//     counting.readWhole = [&](const qvej::DocumentOptions& options) { ...reads `document`... };
//     if (qvej::countDocument(counting, document).empty()) { ...it is read with records... }
//
// They are counted in parts, on several threads, or else as one.
//
// Tested by tests/tool/stream.py and tests/tool/golden/plan.t
#pragma once

#include "../document.h"
#include "../input/input_list.h"
#include "../input/inputs_reader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

// Bytes of files from which on it is worth to count them first.
inline constexpr uint64_t kWorthCounting = uint64_t{4} << 20;

struct CountingOptions {
    Engine& engine;
    InputList inputs;  // that can be read again
    TextOptions text;
    DocumentOptions options;
    unsigned threads = 1;
    uint64_t memory = UINT64_MAX;  // bytes that may be held
    // Gives the bytes of an input, each time it is read in parts, or again.
    InputsReader::Open open = &ByteSource::file;
    std::function<void(std::string_view)> observer = {};  // sees each piece, of each reading
    bool changing = true;  // the inputs are files: what has changed between readings is an error
    // Opens the inputs, makes the document with these options and has it read them.
    std::function<void(const DocumentOptions& options)> readWhole;
};

// Why a document is not counted after all.
inline constexpr const char* kWhyNotCounted = "there are many paths";

// Makes and reads `document`, whose rows can then be walked (TablePass).  Returns how that is done.
// Empty: it has too many paths for the memory, and there is no document.  Throws what reading
// throws.
[[nodiscard]] std::string countDocument(const CountingOptions& counting,
                                        std::optional<Document>& document);

}  // namespace qvej
