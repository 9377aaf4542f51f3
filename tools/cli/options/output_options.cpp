// See output_options.h.
#include "tools/cli/options/output_options.h"

#include "client/escape.h"
#include "formats/conversion_target.h"
#include "tools/cli/options/option_values.h"
#include "tools/cli/options/options.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <re2/re2.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace qvej::cli {

namespace {

std::string commaSeparated(std::string names) {
    RE2::GlobalReplace(&names, "\\|", ", ");
    return names;
}

constexpr std::size_t kLongestSchema = 63;  // bytes, in PostgreSQL

// It stands in the file as it is, without quotes.
void checkNull(const std::string& text, const Format& format) {
    if (format.ownNull) {
        usageError("--null: " + std::string(format.name) + " has a null of its own");
    }
    if (text.find_first_of(",\"") != std::string::npos || shown(text) != text) {
        usageError("--null: " + inQuotes(text) +
                   " has a comma, a quote or a character that cannot be shown");
    }
}

// Of the verbs that do not write rows.
void readOtherFormat(const CLI::App& app, const RawOutput& raw, Options& o) {
    const bool given = app.count("--format") != 0;
    o.format = findFormat("csv");
    if (o.verb->name == "tables") {
        o.json = given;
        if (given && raw.format != "json") {
            usageError("--format: " + inQuotes(raw.format) + " is not json");
        }
    } else if (o.verb->name == "diagram") {
        const std::optional<PictureFormat> picture =
            given ? pictureNamed(raw.format) : pictureOf(o.out);
        if (!picture && !given) {
            usageError("-o " + o.out + ": no picture has this ending; --format says which of " +
                       commaSeparated(pictureNames()) + " it is");
        }
        if (!picture) {
            usageError("--format: " + inQuotes(raw.format) + " is none of " +
                       commaSeparated(pictureNames()));
        }
        o.picture = *picture;
    }
}

void readPlace(const CLI::App& app, const RawOutput& raw, Options& o) {
    if (o.verb->name != "read" && o.verb->name != "convert") {
        readOtherFormat(app, raw, o);
        return;
    }
    const bool convert = o.verb->name == "convert";
    const std::string name(app.count("--format") != 0 ? raw.format
                           : convert                  ? std::string(formatOf(o.out))
                                                      : "csv");
    o.format = findFormat(name);
    if (o.format == nullptr || (!convert && !o.format->text())) {
        usageError("--format: " + inQuotes(name) + " is none of " + formatNames(!convert));
    }
    if (o.format->name == "postgres" && !isAddress(o.out)) {
        usageError("--format postgres: -o takes an address such as postgresql://host/database");
    }
    if (isAddress(o.out) && o.format->name != "postgres") {
        usageError("--format: a database takes no " + std::string(o.format->name));
    }
}

}  // namespace

std::string formatChoices(std::string_view verb) {
    if (verb == "tables") {
        return "json";
    }
    if (verb == "diagram") {
        return pictureNames();
    }
    std::string names = formatNames(verb == "read");
    RE2::GlobalReplace(&names, ", ", "|");
    return verb.empty() ? names + "|json|" + pictureNames() : names;
}

void declareOutputOptions(CLI::App& app, RawOutput& raw, Options& options) {
    const std::string group = "Output";
    app.add_option(
           "--format", raw.format,
           "read: what rows are written as (default: csv); convert: what rows are written "
           "as (default: by OUT, else csv); tables: one JSON object, for programs; diagram: "
           "kind of picture (default: by OUT, else svg)")
        ->type_name(formatChoices({}))
        ->group(group);
    app.add_option("--null", raw.null,
                   "CSV and TSV: what stands for null and for no value (default: nothing, as for "
                   "an empty text)")
        ->type_name("TEXT")
        ->group(group);
    app.add_flag("--gzip", raw.gzip, "compress the files of csv, tsv and ndjson: .gz")
        ->group(group);
    app.add_flag("--zstd", raw.zstd, "the same: .zst")->group(group);
    app.add_option("--dates", raw.dates,
                   "columns whose texts all are dates or times have that type: auto (default), or "
                   "off")
        ->type_name("auto|off")
        ->group(group);
    app.add_option("--schema", options.formatOptions.schema,
                   "of a PostgreSQL database, made when missing (default: the first of its search "
                   "path)")
        ->type_name("NAME")
        ->group(group);
    app.add_flag("--replace", raw.replace,
                 "tables that SQLite or PostgreSQL has already are made anew")
        ->group(group);
    app.add_flag("--append", raw.append, "their rows are added to such tables")->group(group);
}

void readOutputOptions(const CLI::App& app, const RawOutput& raw, Options& o) {
    readPlace(app, raw, o);
    FormatOptions& format = o.formatOptions;
    if (app.count("--null") != 0) {
        checkNull(raw.null, *o.format);
        format.null = raw.null;
    }
    if (raw.gzip && raw.zstd) {
        usageError("--gzip and --zstd exclude each other");
    }
    if ((raw.gzip || raw.zstd) && !o.format->text()) {
        usageError(std::string(raw.gzip ? "--gzip" : "--zstd") + ": " +
                   std::string(o.format->name) + " has a compression of its own, or none");
    }
    format.packing = raw.gzip ? Packing::GZIP : raw.zstd ? Packing::ZSTD : Packing::NONE;
    if (raw.dates != "auto" && raw.dates != "off") {
        usageError("--dates: " + inQuotes(raw.dates) + " is none of auto, off");
    }
    o.schema.dates = raw.dates == "auto";
    if (raw.replace && raw.append) {
        usageError("--replace and --append exclude each other");
    }
    const bool database = o.format->name == "sqlite" || o.format->name == "postgres";
    if ((raw.replace || raw.append) && !database) {
        usageError(std::string(raw.replace ? "--replace" : "--append") +
                   " is for SQLite and PostgreSQL");
    }
    if ((raw.replace || raw.append) && o.force) {
        usageError(std::string(raw.replace ? "--replace" : "--append") +
                   " changes a database, and --force replaces the whole file: they exclude each "
                   "other");
    }
    if (app.count("--schema") != 0 && o.format->name != "postgres") {
        usageError("--schema is for PostgreSQL");
    }
    if (app.count("--schema") != 0 &&
        (format.schema.empty() || format.schema.size() > kLongestSchema)) {
        usageError("--schema: a name has 1 to " + std::to_string(kLongestSchema) + " bytes");
    }
    format.existing = raw.replace  ? FormatOptions::REPLACE
                      : raw.append ? FormatOptions::APPEND
                                   : FormatOptions::REFUSE;
    format.threads = o.threads;
}

}  // namespace qvej::cli
