// See map_file.h.
#include "tools/cli/maps/map_file.h"

#include "client/input/text_file.h"
#include "client/suggestion.h"
#include "tools/cli/failure.h"
#include "tools/cli/options/option_values.h"

#include <algorithm>
#include <set>

namespace qvej::cli {

namespace {

// Words that may stand where a mistake was found.
struct KnownWords {
    QVStatus status;
    std::vector<std::string> words;
};
const KnownWords kKnownWords[] = {
    {JMAP_MAP_DATASETS, {"DATASETS"}},
    {JMAP_MAP_TABLEKEY, {"DSNAME", "TABLEPATH", "VARIABLES"}},
    {JMAP_MAP_COLUMNKEY,
     {"NAME", "TYPE", "PATH", "LENGTH", "CURRENT_LENGTH", "FORMAT", "INFORMAT", "LABEL",
      "OPTIONS"}},
    {JMAP_MAP_TYPE, {"ORDINAL", "NUMERIC", "CHARACTER"}},
    {JMAP_MAP_OPTION, {"RETAIN", "NORETAIN"}},
};

// The names of formats and informats, and what begins a pattern.
std::vector<std::string> catalogue(const Engine& engine) {
    QVFMTh formats = engine.formats();
    std::set<std::string> names;
    for (const auto at : {formats->informatAt, formats->formatAt}) {
        QVFMTEntry entry = {};
        for (QVStrSize i = 0; at(formats, i, &entry) == QV_OK; ++i) {
            names.insert(entry.name);
        }
    }
    return {names.begin(), names.end()};
}

// What the offending word may have been meant as; empty: no word is at fault.
std::vector<std::string> knownWords(const Engine& engine, QVStatus status) {
    for (const KnownWords& known : kKnownWords) {
        if (known.status == status) {
            return known.words;
        }
    }
    return status == QV_FMT_NAME ? catalogue(engine) : std::vector<std::string>();
}

bool isOfFormats(QVStatus status) {
    const auto code = static_cast<uint32_t>(status);
    return code >= static_cast<uint32_t>(QV_FMT_NAME) && code <= static_cast<uint32_t>(QV_FMT_LONG);
}

// What is wrong, the word that is wrong, and the nearest right one.
std::string describe(const Engine& engine, const MapError& error) {
    const QVStatus status = error.status();
    if (status == JMAP_INCOMPLETE) {
        return "the map ends too soon";
    }
    if (status == QV_NOTNUM) {
        return "the integer is outside of 64 bits";
    }
    const std::vector<std::string> words = knownWords(engine, status);
    std::string text = error.what();
    if (!error.token().empty() && (!words.empty() || isOfFormats(status))) {
        text = "\"" + error.token() + "\": " + text;
    }
    return text + suggestion(error.token(), words);
}

// " [-15]": what the engine returned; nothing for what it does not look at.
std::string engineCode(QVStatus status) {
    if (isOfFormats(status)) {
        return {};
    }
    const bool own = status <= JMAP_INCOMPLETE && status >= JMAP_MAP_NOPATH;
    return " [" + std::to_string(own ? status : JMAP_PARSE) + "]";
}

}  // namespace

MapFile::MapFile(Engine& engine, const std::string& file)
    : name_(file == "-" ? "<stdin>" : file),
      text_(textOfFile(file)),
      document_(std::make_unique<Document>(engine)) {
    document_->feed("[]");
    document_->finish();
    try {
        document_->useMap(text_);
    } catch (const MapError& error) {
        fail(engine, error);
    }
}

void MapFile::fail(const Engine& engine, const MapError& error) const {
    throw Failure(NO_TABLE,
                  name_ + ":" + std::to_string(error.line()) + ":" +
                      std::to_string(error.column()) + ": " + describe(engine, error) +
                      engineCode(error.status()),
                  error.excerpt());
}

std::vector<MapModel> readMapModels(const std::vector<std::string>& files) {
    if (std::count(files.begin(), files.end(), "-") > 1) {
        usageError("only one of the maps can be standard input");
    }
    Engine engine;
    std::vector<MapModel> models;
    models.reserve(files.size());
    for (const std::string& file : files) {
        const MapFile map(engine, file);
        models.push_back(mapModel(engine, map.text(), map.tables()));
    }
    return models;
}

}  // namespace qvej::cli
