// See outputs.h.
#include "tools/cli/outputs.h"

#include "formats/module.h"
#include "formats/output_files.h"
#include "formats/store_destination.h"
#include "formats/table_directory.h"
#include "formats/table_file.h"
#include "tools/cli/failure.h"

#include <utility>
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

// A file that has tables already may get more.
StoreTarget storeTarget(const Options& options) {
    return {options.out, options.place == OutputPlace::STORE_FILE,
            options.format->name == "sqlite"};
}

}  // namespace

void checkOutput(const Options& options) {
    if (options.out == "-") {
        throw Failure(WRONG_USAGE,
                      "-o -: convert writes files (./- for one of that name); qvejmap read prints "
                      "a table");
    }
    if (!options.format->module.empty()) {
        (void)formatModule(options.format->module);
    }
    const Sources sources = sourcesOf(options.inputs.files, options.map);
    if (options.place == OutputPlace::DIRECTORY) {
        OutputFiles::checkDirectory(options.out);
    } else if (options.place == OutputPlace::STORE_FILE) {
        StoreDestination::checkFile(storeTarget(options), options.force, sources);
    } else if (options.place == OutputPlace::TABLE_FILE) {
        OutputFiles::checkFile(options.out, options.force, sources);
    }
    if (!options.rejects.empty()) {
        OutputFiles::checkFile(options.rejects, options.force, sources,
                               options.place == OutputPlace::DIRECTORY ? options.out : "");
    }
}

std::unique_ptr<Destination> makeDestination(const Options& options, const Sources& sources) {
    DestinationParms parms = {*options.format, options.formatOptions, options.force, sources};
    switch (options.place) {
        case OutputPlace::DIRECTORY:
            return std::make_unique<TableDirectory>(
                options.out, std::move(parms),
                PackageRun{QVEJMAP_VERSION, joined(options.operands), wordsOf(options)});
        case OutputPlace::TABLE_FILE:
            return std::make_unique<TableFile>(options.out, std::move(parms));
        default:
            return std::make_unique<StoreDestination>(storeTarget(options), std::move(parms));
    }
}

std::string shownOutput(const Options& options) {
    return withoutPassword(options.out);
}

}  // namespace qvej::cli
