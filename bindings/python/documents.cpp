// See documents.h.
#include "bindings/python/documents.h"

#include "bindings/python/capsules.h"
#include "bindings/python/interrupt.h"
#include "bindings/python/patterns.h"
#include "bindings/python/shared_document.h"
#include "bindings/python/source.h"
#include "bindings/python/texts.h"
#include "bindings/python/values.h"
#include "client/error.h"
#include "client/find/find_values.h"
#include "client/maps/column_explanation.h"
#include "client/parts/text_part.h"
#include "client/shape/reshaper.h"
#include "client/text.h"
#include "formats/table_metadata.h"

#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nb = nanobind;
using namespace nb::literals;

namespace qvej::python {

namespace {

using DocumentPtr = std::shared_ptr<SharedDocument>;
using Positions = std::vector<std::size_t>;

// Rows of one batch with what is needed to understand them.
struct Batch {
    std::shared_ptr<const RecordBatch> rows;
    std::shared_ptr<const TableFields> fields;
    std::shared_ptr<const std::vector<DataType>> types;
};

// The batches of a table.  The interpreter's lock is left while it works, also at its end.
class Batches {
   public:
    Batches(const DocumentPtr& document, const BatchWish& wish) {
        interruptible([&] { reader_ = std::make_unique<SharedReader>(document, wish); });
        const Schema& schema = document->schema();
        fields_ = std::make_shared<TableFields>(tableFields(schema, wish.table, wish.columns));
        auto types = std::make_shared<std::vector<DataType>>();
        for (const std::size_t c : wish.columns) {
            types->push_back(schema.tables[wish.table].fields[c].type);
        }
        types_ = std::move(types);
    }
    Batches(Batches&&) = default;
    ~Batches() {
        const nb::gil_scoped_release unlocked;
        reader_.reset();
    }

    // None after the last.
    [[nodiscard]] std::optional<Batch> next() {
        std::shared_ptr<const RecordBatch> rows;
        interruptible([&] { rows = reader_->next(); });
        if (rows == nullptr) {
            return std::nullopt;
        }
        return Batch{std::move(rows), fields_, types_};
    }

   private:
    std::unique_ptr<SharedReader> reader_;
    std::shared_ptr<const TableFields> fields_;
    std::shared_ptr<const std::vector<DataType>> types_;
};

// All rows of a table, in memory.
struct HeldRows {
    std::shared_ptr<const BatchTables::Batches> batches;
    std::shared_ptr<const TableFields> fields;
};

nb::object streamOf(const HeldRows& rows) {
    return streamCapsule(*rows.fields, [batches = rows.batches, next = std::size_t{0}]() mutable {
        return next < batches->size() ? (*batches)[next++] : nullptr;
    });
}

//   words  files, folders and patterns; of no use when `buffer` or `read` is the text
//   lines  else it is found by name and text
DocumentPtr open(const std::vector<nb::bytes>& words, const nb::object& buffer, nb::object read,
                 const nb::bytes& name, const std::string& encoding, bool lines,
                 const std::string& shape, const nb::bytes& shapeName, const nb::bytes& map,
                 const nb::bytes& mapName, bool originalNames, bool exact, bool carry,
                 uint64_t memory, unsigned threads, uint64_t depth, uint64_t maxPaths) {
    OpenOptions options;
    options.name = stringOf(name);
    options.text.encoding = encoding;
    options.text.lines = lines;
    options.shape = shape;
    options.shapeName = stringOf(shapeName);
    options.map = stringOf(map);
    options.naming = originalNames ? Naming::ORIGINAL : Naming::MAP;
    options.exact = exact;
    options.memoryBudget = memory;
    options.threads = threads;
    options.depth = depth;
    options.maxPaths = maxPaths;
    options.stopped = &isStopped;
    std::shared_ptr<const HeldBuffer> source;
    if (!buffer.is_none()) {
        source = std::make_shared<const HeldBuffer>(buffer);
        options.memory = source->bytes();
    } else if (!read.is_none()) {
        options.pull = pullOf(std::move(read));
    } else {
        std::vector<std::string> files;
        for (const nb::bytes& word : words) {
            files.push_back(stringOf(word));
        }
        options.inputs = inputList(files);
    }
    DocumentPtr document;
    const auto work = [&, name = stringOf(mapName)] {
        document = withMapNamed(name, [&] {
            return std::make_shared<SharedDocument>(std::move(options), std::move(source), carry);
        });
    };
    if (options.pull) {  // a file object looks for signals itself, while it waits
        const nb::gil_scoped_release unlocked;
        work();
    } else {
        interruptible(work);
    }
    return document;
}

// The files, and whether they are several texts.
nb::tuple inputFiles(const std::vector<nb::bytes>& words) {
    std::vector<std::string> named(words.size());
    std::transform(words.begin(), words.end(), named.begin(), stringOf);
    InputList inputs;
    interruptible([&] { inputs = inputList(named); });
    nb::list files;
    for (const std::string& file : inputs.files) {
        files.append(nb::bytes(file.data(), file.size()));
    }
    return nb::make_tuple(files, inputs.several);
}

// Of each table: its name, its path, and of each column the name, the path and the label.
nb::list tablesOf(const SharedDocument& document) {
    nb::list tables;
    for (const Table* of : document.tables()) {
        const Table& table = *of;
        const std::vector<std::string> names = fieldNames(table);
        nb::list columns;
        for (std::size_t c = 0; c < names.size(); ++c) {
            const Column column = table.columns[c];
            columns.append(nb::make_tuple(textOf(names[c]), textOf(withSlashes(column.path)),
                                          textOf(column.label)));
        }
        tables.append(
            nb::make_tuple(textOf(table.name), textOf(withSlashes(table.path())), columns));
    }
    return tables;
}

// The ordinal columns of a table, and what they count: objects and arrays with that path, as
// open_part takes them.
nb::list ordinalsOf(const SharedDocument& document, std::size_t position) {
    const Table& table = *document.tables().at(position);
    nb::list ordinals;
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const std::string path = table.columns[c].path;
        if (table.columns.type(c) == ColumnType::ORDINAL && !path.empty()) {
            ordinals.append(nb::make_tuple(c, nb::bytes(path.data(), path.size())));
        }
    }
    return ordinals;
}

// The positions of a table and of those above it.
std::vector<std::size_t> withTablesAbove(const SharedDocument& document, std::size_t position) {
    (void)document.tables().at(position);
    return SchemaBuilder(document.document(), document.tables(), {}).withTablesAbove(position);
}

const Schema& schemaOf(SharedDocument& document) {
    interruptible([&] { (void)document.schema(); });
    return document.schema();
}

nb::tuple findingsOf(SharedDocument& document) {
    (void)schemaOf(document);
    return findingsTuple(document.findings());
}

DocumentPtr alldataOf(const SharedDocument& document) {
    DocumentPtr alldata;
    interruptible([&] { alldata = SharedDocument::alldata(document); });
    return alldata;
}

// Of each path: it, its values, those in cells, and of those cut, strayed, overwritten, without a
// column, without a row and rejected the number and which is the first, 0 when that is not known.
nb::list accountList(SharedDocument& document) {
    std::vector<PathAccount> account;
    interruptible([&] { account = document.account(); });
    nb::list paths;
    for (const PathAccount& path : account) {
        nb::list lost;
        const auto add = [&](const LostValues& values) {
            lost.append(nb::make_tuple(values.count, values.first));
        };
        add(path.cut);
        add(path.strayed);
        std::for_each(path.lost.begin(), path.lost.end(), add);
        paths.append(nb::make_tuple(textOf(withSlashes(path.path)), path.values, path.cells, lost));
    }
    return paths;
}

std::vector<HeldRows> rowsOf(SharedDocument& document, const Positions& tables) {
    std::vector<HeldRows> all;
    interruptible([&] {
        std::vector<BatchTables::Batches> batches = document.batches(tables);
        const Schema& schema = document.schema();
        for (std::size_t i = 0; i < tables.size(); ++i) {
            Positions columns(schema.tables[tables[i]].fields.size());
            std::iota(columns.begin(), columns.end(), std::size_t{0});
            all.push_back({std::make_shared<BatchTables::Batches>(std::move(batches[i])),
                           std::make_shared<TableFields>(tableFields(schema, tables[i], columns))});
        }
    });
    return all;
}

// The rejected values of a document, some at a time; none after the last.  Of each its table and
// column by position, the row, the text and the reason.
class Rejects {
   public:
    explicit Rejects(const DocumentPtr& document) {
        interruptible([&] { reader_ = std::make_unique<RejectReader>(document); });
    }
    Rejects(Rejects&&) = default;
    ~Rejects() {
        const nb::gil_scoped_release unlocked;
        reader_.reset();
    }

    [[nodiscard]] nb::list next() {
        std::vector<RejectedValue> values;
        interruptible([&] { values = reader_->next(); });
        nb::list list;
        for (const RejectedValue& value : values) {
            list.append(nb::make_tuple(value.table, value.column, value.row, textOf(value.text),
                                       textOf(value.reason)));
        }
        return list;
    }

   private:
    std::unique_ptr<RejectReader> reader_;
};

// Of each table: the number of rows, the types of the columns, the position of the primary key or
// None, and None or of the parent its position, the column here and whether it is a foreign key.
nb::list schemaList(SharedDocument& document) {
    nb::list tables;
    for (const TableSchema& table : schemaOf(document).tables) {
        nb::list types;
        for (const Field& field : table.fields) {
            types.append(textOf(nameOf(field.type)));
        }
        nb::object key = nb::none();
        if (table.key) {
            key = nb::cast(*table.own);
        }
        nb::object parent = nb::none();
        if (table.parent) {
            parent =
                nb::make_tuple(table.parent->table, table.parent->column, table.parent->foreignKey);
        }
        tables.append(nb::make_tuple(table.rows, types, key, parent));
    }
    return tables;
}

// The rules, as a shape has them.
nb::list shapeOf(const SharedDocument& document) {
    nb::list rules;
    const Reshaper* const reshaper = document.document().reshaper();
    const PartsOfDocument* const parts = document.document().parts();
    if (reshaper != nullptr || parts != nullptr) {
        for (const ShapeRule& rule :
             (reshaper != nullptr ? reshaper->shape() : parts->options.shape).rules()) {
            rules.append(textOf(rule.text()));
        }
    }
    return rules;
}

nb::object tableSchema(SharedDocument& document, std::size_t table, const Positions& columns) {
    return schemaCapsule(tableFields(schemaOf(document), table, columns));
}

nb::object tableStream(const DocumentPtr& document, std::size_t table, const Positions& columns,
                       std::size_t rows) {
    std::shared_ptr<SharedReader> reader;
    interruptible([&] {
        reader = std::make_shared<SharedReader>(document, BatchWish{table, columns, rows});
    });
    return streamCapsule(tableFields(schemaOf(*document), table, columns),
                         [reader] { return reader->next(); });
}

nb::object mapText(SharedDocument& document) {
    std::string text;
    interruptible([&] {
        const std::unique_lock lock = document.turn();
        text = document.document().mapText();
    });
    return textOf(text);
}

Batches batchesOf(const DocumentPtr& document, std::size_t table, const Positions& columns,
                  std::size_t rows) {
    return {document, {table, columns, rows}};
}

// Values that are looked for: of each the file, line, column, path and text.
nb::list find(const SharedDocument& document, const std::vector<std::string>& paths,
              const std::optional<std::string>& value, const std::optional<std::string>& regex,
              bool ignoreCase, uint64_t limit) {
    struct Found {
        std::string file;
        Spot at;
        std::string path, text;
    };
    std::vector<Found> found;
    interruptible([&] {
        findValues(document.open(), patternsOf(paths), ValueTest(value, regex, ignoreCase),
                   [&](const std::string& file, const FoundValue& of) {
                       found.push_back({file, of.at, std::string(of.path), std::string(of.text)});
                       return found.size() < limit;
                   });
    });
    nb::list list;
    for (const Found& of : found) {
        list.append(nb::make_tuple(fileNameOf(of.file), of.at.line, of.at.column, textOf(of.path),
                                   textOf(of.text)));
    }
    return list;
}

nb::object explanation(const SharedDocument& document, const std::string& column,
                       const std::string& mapName) {
    std::string text;
    interruptible([&] {
        const std::unique_lock lock = document.turn();
        text = explainedColumn(document.document(), column, document.name(), mapName).text();
    });
    return textOf(text);
}

}  // namespace

// Values that were rejected, that are in no cell, that were overwritten, that strayed.
nb::tuple findingsTuple(const Findings& found) {
    return nb::make_tuple(found.rejected, found.inNoCell, found.losses.overwritten,
                          found.losses.strayed);
}

void registerDocuments(nb::module_& module) {
    nb::class_<Batch>(module, "Batch")
        .def_prop_ro("rows", [](const Batch& batch) { return batch.rows->rows; })
        .def("schema", [](const Batch& batch) { return schemaCapsule(*batch.fields); })
        .def("array", [](const Batch& batch) { return arrayCapsule(batch.rows); })
        .def(
            "values",
            [](const Batch& batch, std::size_t column) {
                return valuesOf(*batch.rows, column, batch.types->at(column));
            },
            "column"_a);

    nb::class_<Batches>(module, "Batches").def("next", &Batches::next);

    nb::class_<HeldRows>(module, "Rows")
        .def("schema", [](const HeldRows& rows) { return schemaCapsule(*rows.fields); })
        .def("stream", &streamOf);

    nb::class_<Rejects>(module, "Rejects").def("next", &Rejects::next);

    nb::class_<SharedDocument>(module, "Document")
        .def_prop_ro("name",
                     [](const SharedDocument& document) { return fileNameOf(document.name()); })
        .def("map_text", &mapText)
        .def("tables", &tablesOf)
        .def("ordinals", &ordinalsOf, "table"_a)
        .def("with_tables_above", &withTablesAbove, "table"_a)
        .def("shape", &shapeOf)
        .def("schema", &schemaList)
        .def("findings", &findingsOf)
        .def("alldata", &alldataOf)
        .def("account", &accountList)
        .def("find", &find, "paths"_a, "value"_a.none(), "regex"_a.none(), "ignore_case"_a,
             "limit"_a)
        .def("explanation", &explanation, "column"_a, "map_name"_a)
        .def("rows", &rowsOf, "tables"_a)
        .def("rejects", [](const DocumentPtr& document) { return Rejects(document); })
        .def("arrow_schema", &tableSchema, "table"_a, "columns"_a)
        .def("arrow_stream", &tableStream, "table"_a, "columns"_a, "rows"_a)
        .def("batches", &batchesOf, "table"_a, "columns"_a, "rows"_a);

    module.def("input_files", &inputFiles, "words"_a);
    module.def("open", &open, "words"_a, "buffer"_a.none(), "read"_a.none(), "name"_a, "encoding"_a,
               "lines"_a, "shape"_a, "shape_name"_a, "map"_a, "map_name"_a, "original_names"_a,
               "exact"_a, "carry"_a, "memory"_a, "threads"_a, "depth"_a, "max_paths"_a);
}

}  // namespace qvej::python
