// See formats.h.
#include "formats/formats.h"

#include "formats/module.h"

namespace qvej {

namespace {

constexpr std::string_view kTwiceInHeader = "the header has it more than once";
constexpr std::string_view kNumbered = "files have the later ones as NAME~2 and so on";

// Row groups are in memory until they are complete, and good ones are large.
constexpr std::size_t kOfRowGroups = std::size_t{128} << 20;

constexpr Format kFormats[] = {
    {"csv", "csv", false, kTwiceInHeader, false, {}, makeCsvSink, false, true},
    {"tsv", "tsv", false, kTwiceInHeader, false, {}, makeTsvSink, false, true},
    {"ndjson",
     "ndjson",
     true,
     "objects have it more than once, and most programs keep the last",
     false,
     {},
     makeNdjsonSink,
     false,
     true},
    {"sqlite", "sqlite", true, {}, true, "sqlite", nullptr, true, true},
    {"parquet", "parquet", true, kNumbered, true, "arrow", nullptr, false, true, kOfRowGroups},
    {"arrow", "arrow", true, kNumbered, true, "arrow", nullptr, false, true},
    {"postgres", {}, true, {}, true, "postgres", nullptr, true, true},
    {"xlsx", "xlsx", true, kTwiceInHeader, true, "xlsx", nullptr, true, false},
};

}  // namespace

const Format* findFormat(std::string_view name) {
    for (const Format& format : kFormats) {
        if (format.name == name) {
            return &format;
        }
    }
    return nullptr;
}

std::string formatNames(bool textOnly) {
    std::string names;
    for (const Format& format : kFormats) {
        if (textOnly && !format.text()) {
            continue;
        }
        names += names.empty() ? "" : ", ";
        names += format.name;
    }
    return names;
}

std::unique_ptr<Sink> makePieceSink(const Format& format, SinkParms parms) {
    parms.pieces = true;
    return makeSink(format, memoryWriter(), parms);
}

std::unique_ptr<Sink> makeSink(const Format& format, Writer out, const SinkParms& parms) {
    return format.make != nullptr
               ? format.make(std::move(out), parms)
               : formatModule(format.module).makeSink(format.name, std::move(out), parms);
}

}  // namespace qvej
