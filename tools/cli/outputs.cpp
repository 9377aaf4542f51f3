// See outputs.h.
#include "tools/cli/outputs.h"

#include "formats/output_files.h"
#include "tools/cli/failure.h"

#include <string>
#include <vector>

namespace qvej::cli {

namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

// The options that shape what is written.
std::vector<std::string> wordsOf(const Options& options) {
    const ReadingOptions standard;
    const ReadingOptions& reading = options.reading;
    std::vector<std::string> words;
    const auto add = [&](bool given, const std::string& word) {
        if (given) {
            words.push_back(word);
        }
    };
    add(true, "--format=" + std::string(options.format->name));
    add(options.formatOptions.packing == Packing::GZIP, "--gzip");
    add(options.formatOptions.packing == Packing::ZSTD, "--zstd");
    add(!options.schema.dates, "--dates=off");
    add(options.formatOptions.null.has_value(),
        "--null=" + options.formatOptions.null.value_or(""));
    for (const std::string& glob : options.tables) {
        add(true, "--table=" + glob);
    }
    for (const PathPattern& pattern : options.paths) {
        add(true, "--path=" + pattern.text());
    }
    add(options.alldata, "--alldata");
    add(reading.alldataName != standard.alldataName, "--alldata-name=" + reading.alldataName);
    add(reading.naming == Naming::ORIGINAL, "--naming=original");
    add(!options.map.empty(), "--map=" + options.map);
    add(options.retain, "--retain");
    add(options.carry, "--carry");
    add(reading.ordinals != standard.ordinals, "--ordinals=" + std::to_string(reading.ordinals));
    const std::vector<std::string> shape = cli::wordsOf(reading.shape);
    words.insert(words.end(), shape.begin(), shape.end());
    add(reading.text.lines, "--lines");
    add(reading.skipBadLines, "--skip-bad-lines");
    add(reading.skipBadFiles, "--skip-bad-files");
    add(reading.text.encoding != standard.text.encoding, "--encoding=" + reading.text.encoding);
    add(reading.text.replaceInvalid, "--invalid=replace");
    return words;
}

}  // namespace

void checkOutput(const Options& options) {
    if (options.out == "-") {
        throw Failure(WRONG_USAGE,
                      "-o -: convert writes files (./- for one of that name); qvejmap read prints "
                      "a table");
    }
    const ConversionTarget target = targetOf(options);
    checkTarget(target);
    if (!options.rejects.empty()) {
        OutputFiles::checkFile(options.rejects, options.force, target.sources,
                               target.place() == OutputPlace::DIRECTORY ? options.out : "");
    }
}

ConversionTarget targetOf(const Options& options) {
    return {options.out,
            options.format,
            options.formatOptions,
            options.force,
            options.sources,  // of --per-file, too, all of them
            {QVEJMAP_VERSION, joined(options.operands), wordsOf(options)}};
}

}  // namespace qvej::cli
