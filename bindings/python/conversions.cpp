// See conversions.h.
#include "bindings/python/conversions.h"

#include "bindings/python/documents.h"
#include "bindings/python/interrupt.h"
#include "bindings/python/patterns.h"
#include "bindings/python/shared_document.h"
#include "bindings/python/texts.h"
#include "client/find/table_choice.h"
#include "formats/conversion.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <optional>
#include <string>
#include <vector>

namespace nb = nanobind;
using namespace nb::literals;

namespace qvej::python {

namespace {

using Texts = std::vector<nb::bytes>;

// What a person wants of an output, checked.
class Target {
   public:
    //   existing  a value of FormatOptions::existing
    //   packing   "", "gzip" or "zstd"
    //   stream    the file of a file object; empty: there is none, as for `map` and `shape`
    Target(const nb::bytes& out, const std::optional<std::string>& format, bool force,
           const std::optional<std::string>& null, const std::string& packing, int existing,
           const std::string& databaseSchema, const Texts& documents, const nb::bytes& stream,
           const nb::bytes& map, const nb::bytes& shape)
        : target_{.out = stringOf(out), .format = nullptr, .force = force} {
        const std::string name = format ? *format : std::string(formatOf(target_.out));
        target_.format = findFormat(name);
        if (target_.format == nullptr) {
            throw nb::value_error(("format: there is no '" + name + "'").c_str());
        }
        const bool text = target_.format->text();
        const bool database = name == "sqlite" || name == "postgres";
        refuse(null && name != "csv" && name != "tsv", "null: of CSV and TSV alone");
        refuse(!packing.empty() && !text, "packing: of csv, tsv and ndjson alone");
        refuse(existing != FormatOptions::REFUSE && !database,
               "existing: of SQLite and PostgreSQL alone");
        refuse(existing != FormatOptions::REFUSE && force,
               "existing changes a database, and force replaces the whole file");
        refuse(!databaseSchema.empty() && name != "postgres",
               "database_schema: of PostgreSQL alone");
        FormatOptions& options = target_.options;
        options.null = null;
        options.packing = packing == "gzip"   ? Packing::GZIP
                          : packing == "zstd" ? Packing::ZSTD
                                              : Packing::NONE;
        options.existing = existing == FormatOptions::REPLACE  ? FormatOptions::REPLACE
                           : existing == FormatOptions::APPEND ? FormatOptions::APPEND
                                                               : FormatOptions::REFUSE;
        options.schema = databaseSchema;
        std::vector<std::string> files;
        for (const nb::bytes& document : documents) {
            files.push_back(stringOf(document));
        }
        files = files.empty() ? files : inputList(files).files;
        target_.run = {
            QVEJMAP_VERSION, files.empty() ? std::string() : files.front(), {"--format=" + name}};
        files.push_back(stringOf(stream));
        target_.sources = sourcesOf(files, stringOf(map), {stringOf(shape)});
    }

    // Looks at the place; without the interpreter's lock.
    void check() const { checkTarget(target_); }

    [[nodiscard]] ConversionTarget of(unsigned threads) const {
        ConversionTarget target = target_;
        target.options.threads = threads;
        return target;
    }

   private:
    static void refuse(bool wrong, const char* what) {
        if (wrong) {
            throw nb::value_error(what);
        }
    }

    ConversionTarget target_;
};

// What has been written, and what has not.
struct Converted {
    std::vector<std::pair<std::string, uint64_t>> tables;  // with their rows
    std::vector<std::string> remarks;
    Findings findings;
};

Converted converted(SharedDocument& document, const TableChoice& choice, bool alldata, bool dates,
                    bool carry, const Target& wish) {
    const std::unique_lock lock = document.turn();
    std::vector<const Table*> tables = chosenTables(choice, document.document().tables());
    if (alldata) {
        tables.push_back(&document.document().alldata());
    }
    ConversionOptions options;
    options.carry = carry;
    options.threads = document.threads();
    options.memory = document.memory();
    options.schema.dates = dates;
    Converted result;
    TableConversion conversion(document.document(), tables, wish.of(document.threads()), options);
    conversion.write([&](const Table&) {
        return [&](const Row&, const Rejected&) { ++result.findings.rejected; };
    });
    (void)conversion.destination().commit(nullptr);
    for (const TableSchema& table : conversion.schema().tables) {
        result.tables.emplace_back(table.table->name, table.rows);
    }
    result.remarks = conversion.destination().remarks();
    result.findings.inNoCell = conversion.lost();
    result.findings.losses = conversion.losses();
    return result;
}

// Names and rows of the tables, remarks, and what findingsOf has of a document.
nb::tuple convert(const std::shared_ptr<SharedDocument>& document, const Target& target,
                  const Texts& names, const Texts& paths, bool alldata, bool dates) {
    Converted result;
    TableChoice choice;
    for (const nb::bytes& name : names) {
        choice.names.push_back(stringOf(name));
    }
    std::vector<std::string> patterns;
    for (const nb::bytes& path : paths) {
        patterns.push_back(stringOf(path));
    }
    interruptible([&] {
        choice.paths = patternsOf(patterns);
        std::shared_ptr<SharedDocument> of = document;
        if (alldata) {
            of = SharedDocument::alldata(*document);
        }
        result = converted(*of, choice, alldata, dates, document->carry(), target);
    });
    nb::list tables;
    for (const auto& [name, rows] : result.tables) {
        tables.append(nb::make_tuple(textOf(name), rows));
    }
    nb::list remarks;
    for (const std::string& remark : result.remarks) {
        remarks.append(textOf(remark));
    }
    return nb::make_tuple(tables, remarks, findingsTuple(result.findings));
}

}  // namespace

void registerConversions(nb::module_& module) {
    nb::class_<Target>(module, "Target")
        .def(
            nb::init<const nb::bytes&, const std::optional<std::string>&, bool,
                     const std::optional<std::string>&, const std::string&, int, const std::string&,
                     const Texts&, const nb::bytes&, const nb::bytes&, const nb::bytes&>(),
            "out"_a, "format"_a.none(), "force"_a, "null"_a.none(), "packing"_a, "existing"_a,
            "database_schema"_a, "documents"_a, "stream"_a, "map"_a, "shape"_a)
        .def("check", [](const Target& target) { interruptible([&] { target.check(); }); });
    module.def("convert", &convert, "document"_a, "target"_a, "names"_a, "paths"_a, "alldata"_a,
               "dates"_a);
}

}  // namespace qvej::python
