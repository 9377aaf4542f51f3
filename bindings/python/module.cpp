// The module qvejmap._qvejmap, which the package qvejmap stands on.
//
// Positions of tables and columns go in and out here; names are a matter of the package.
#include "bindings/python/capsules.h"
#include "bindings/python/failures.h"
#include "bindings/python/shared_document.h"
#include "bindings/python/source.h"
#include "bindings/python/texts.h"
#include "bindings/python/values.h"
#include "client/error.h"
#include "client/text.h"
#include "formats/arrow_c/table_fields.h"

#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <cstddef>
#include <memory>
#include <mutex>
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

std::string stringOf(const nb::bytes& bytes) {
    return {bytes.c_str(), bytes.size()};
}

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
        const nb::gil_scoped_release unlocked;
        reader_ = std::make_unique<SharedReader>(document, wish);
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
        {
            const nb::gil_scoped_release unlocked;
            rows = reader_->next();
        }
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

// A mistake in a map is told with the name of the map.
DocumentPtr openDocument(OpenOptions options, std::shared_ptr<const void> source,
                         const std::string& mapName) {
    const nb::gil_scoped_release unlocked;
    try {
        return std::make_shared<SharedDocument>(std::move(options), std::move(source));
    } catch (const MapError& error) {
        Place place = error.place();
        place.file = mapName;
        throw MapError(error.status(), place, error.excerpt(), error.token());
    }
}

//   words  files, folders and patterns; of no use when `buffer` or `read` is the text
//   lines  else it is found by name and text
DocumentPtr open(const std::vector<nb::bytes>& words, const nb::object& buffer, nb::object read,
                 const nb::bytes& name, const std::string& encoding, bool lines,
                 const std::string& shape, const nb::bytes& map, const nb::bytes& mapName,
                 bool originalNames, uint64_t memory, unsigned threads, uint64_t depth,
                 uint64_t maxPaths) {
    OpenOptions options;
    options.name = stringOf(name);
    options.text.encoding = encoding;
    options.text.lines = lines;
    options.shape = shape;
    options.map = stringOf(map);
    options.naming = originalNames ? Naming::ORIGINAL : Naming::MAP;
    options.memoryBudget = memory;
    options.threads = threads;
    options.depth = depth;
    options.maxPaths = maxPaths;
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
    return openDocument(std::move(options), std::move(source), stringOf(mapName));
}

// Of each table: its name, its path, and of each column the name, the path and the label.
nb::list tablesOf(const SharedDocument& document) {
    nb::list tables;
    for (const Table& table : document.tables()) {
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

const Schema& schemaOf(SharedDocument& document) {
    const nb::gil_scoped_release unlocked;
    return document.schema();
}

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

nb::object tableSchema(SharedDocument& document, std::size_t table, const Positions& columns) {
    return schemaCapsule(tableFields(schemaOf(document), table, columns));
}

nb::object tableStream(const DocumentPtr& document, std::size_t table, const Positions& columns,
                       std::size_t rows) {
    std::shared_ptr<SharedReader> reader;
    {
        const nb::gil_scoped_release unlocked;
        reader = std::make_shared<SharedReader>(document, BatchWish{table, columns, rows});
    }
    return streamCapsule(tableFields(schemaOf(*document), table, columns),
                         [reader] { return reader->next(); });
}

nb::object mapText(SharedDocument& document) {
    std::string text;
    {
        const nb::gil_scoped_release unlocked;
        const std::lock_guard lock(document.mutex());
        text = document.open().document().mapText();
    }
    return textOf(text);
}

Batches batchesOf(const DocumentPtr& document, std::size_t table, const Positions& columns,
                  std::size_t rows) {
    return {document, {table, columns, rows}};
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the macro makes names of it
NB_MODULE(_qvejmap, module) {
    registerFailures();

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

    nb::class_<SharedDocument>(module, "Document")
        .def_prop_ro(
            "name",
            [](const SharedDocument& document) { return fileNameOf(document.open().name()); })
        .def("map_text", &mapText)
        .def("tables", &tablesOf)
        .def("schema", &schemaList)
        .def("arrow_schema", &tableSchema, "table"_a, "columns"_a)
        .def("arrow_stream", &tableStream, "table"_a, "columns"_a, "rows"_a)
        .def("batches", &batchesOf, "table"_a, "columns"_a, "rows"_a);

    module.def("open", &open, "words"_a, "buffer"_a.none(), "read"_a.none(), "name"_a, "encoding"_a,
               "lines"_a, "shape"_a, "map"_a, "map_name"_a, "original_names"_a, "memory"_a,
               "threads"_a, "depth"_a, "max_paths"_a);
}

}  // namespace qvej::python
