// See conversion_target.h.
#include "formats/conversion_target.h"

#include "client/error.h"
#include "client/text.h"
#include "formats/module.h"
#include "formats/output_files.h"
#include "formats/store_destination.h"
#include "formats/table_directory.h"
#include "formats/table_file.h"

#include <utility>

namespace qvej {

namespace {

// What the end of a file's name says of its format.
constexpr struct {
    std::string_view ending, format;
    OutputPlace place;
} kEndings[] = {
    {".db", "sqlite", OutputPlace::STORE_FILE},
    {".sqlite", "sqlite", OutputPlace::STORE_FILE},
    {".sqlite3", "sqlite", OutputPlace::STORE_FILE},
    {".xlsx", "xlsx", OutputPlace::STORE_FILE},
    {".parquet", "parquet", OutputPlace::TABLE_FILE},
    {".arrow", "arrow", OutputPlace::TABLE_FILE},
};

struct Guess {
    std::string_view format;
    OutputPlace place;
};

Guess guessOf(const std::string& name) {
    const std::string out = lowerCased(name);
    if (isAddress(out)) {
        return {"postgres", OutputPlace::DATABASE};
    }
    for (const auto& known : kEndings) {
        if (out.ends_with(known.ending)) {
            return {known.format, known.place};
        }
    }
    return {"csv", OutputPlace::DIRECTORY};
}

// A file that has tables already may get more.
StoreTarget storeTarget(const ConversionTarget& target) {
    return {target.out, target.place() == OutputPlace::STORE_FILE, target.format->name == "sqlite"};
}

}  // namespace

bool isAddress(std::string_view out) {
    return out.starts_with("postgres:") || out.starts_with("postgresql:");
}

std::string_view formatOf(const std::string& out) {
    return guessOf(out).format;
}

OutputPlace placeOf(const std::string& out, const Format& format) {
    const Guess guess = guessOf(out);
    return format.name == guess.format ? guess.place
           : format.store              ? OutputPlace::STORE_FILE
                                       : OutputPlace::DIRECTORY;
}

std::string ConversionTarget::name() const {
    return withoutPassword(out);
}

void checkTarget(const ConversionTarget& target) {
    if (isAddress(target.out) != (target.format->name == "postgres")) {
        throw Error(QV_BADPARMS,
                    isAddress(target.out)
                        ? "a database takes no " + std::string(target.format->name)
                        : "PostgreSQL takes an address such as postgresql://host/database",
                    target.name());
    }
    if (!target.format->module.empty()) {
        (void)formatModule(target.format->module);
    }
    switch (target.place()) {
        case OutputPlace::DIRECTORY:
            OutputFiles::checkDirectory(target.out);
            break;
        case OutputPlace::STORE_FILE:
            StoreDestination::checkFile(storeTarget(target), target.force, target.sources);
            break;
        case OutputPlace::TABLE_FILE:
            OutputFiles::checkFile(target.out, target.force, target.sources);
            break;
        case OutputPlace::DATABASE:
            break;
    }
}

std::unique_ptr<Destination> makeDestination(const ConversionTarget& target) {
    DestinationParms parms = {*target.format, target.options, target.force, target.sources};
    switch (target.place()) {
        case OutputPlace::DIRECTORY:
            return std::make_unique<TableDirectory>(target.out, std::move(parms), target.run);
        case OutputPlace::TABLE_FILE:
            return std::make_unique<TableFile>(target.out, std::move(parms));
        default:
            return std::make_unique<StoreDestination>(storeTarget(target), std::move(parms));
    }
}

}  // namespace qvej
