// See data_package.h.
#include "formats/data_package.h"

#include "client/document.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/escape.h"
#include "client/path_names.h"
#include "client/text.h"
#include "formats/file_names.h"

#include <charconv>
#include <fstream>
#include <utility>

namespace qvej {

namespace {

void putString(Writer& out, std::string_view text) {
    out.put('"');
    appendEscaped(out, text, JSON_STRING);
    out.put('"');
}

// Paths of what is read.
constexpr std::string_view kVersion = "\2root\2qvejmap\2version";
constexpr std::string_view kResource = "\2root\2resources";
constexpr std::string_view kPath = "\2root\2resources\2path";
constexpr std::string_view kBytes = "\2root\2resources\2bytes";
constexpr std::string_view kModified = "\2root\2resources\2modified";

std::optional<uint64_t> wholeNumber(std::string_view text) {
    uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, trouble] = std::from_chars(text.data(), end, number);
    return last == end && trouble == std::errc() ? std::optional(number) : std::nullopt;
}

// Collects the resources from the records of a package.
class ResourceReader {
   public:
    // False when no package of ours has the record.
    bool take(const Record& record) {
        const bool text = record.kind == JMAP_KIND_STRING;
        if (record.path == kResource) {  // where an object begins
            endResource();
        } else if (record.path == kVersion) {
            return ours_ = text;
        } else if (record.path == kPath) {
            name_ = record.value;
            return text && isFileName(record.value);
        } else if (record.path == kModified) {
            modified_ = record.value;
            return text;
        } else if (record.path == kBytes) {
            bytes_ = wholeNumber(record.value);
            return record.kind == JMAP_KIND_NUMBER && bytes_.has_value();
        }
        return true;
    }

    // Nothing: it is no package of ours.
    std::optional<std::vector<ListedFile>> end() {
        endResource();
        return ours_ ? std::optional(std::move(files_)) : std::nullopt;
    }

   private:
    // A resource without size or time was added by others: it is no file of ours.
    void endResource() {
        if (name_ && bytes_ && modified_) {
            files_.push_back({std::move(*name_), {*bytes_, std::move(*modified_)}});
        }
        name_.reset();
        bytes_.reset();
        modified_.reset();
    }

    bool ours_ = false;
    std::optional<std::string> name_;
    std::optional<uint64_t> bytes_;
    std::optional<std::string> modified_;
    std::vector<ListedFile> files_;
};

}  // namespace

PackageWriter::PackageWriter(Writer& out, const PackageRun& run, const Schema& schema,
                             const std::vector<std::string>& files, const Format& format,
                             const FormatOptions& options)
    : out_(out), schema_(schema), files_(files), format_(format), options_(options) {
    out_.append(R"({"qvejmap":{"version":)");
    putString(out_, run.version);
    out_.append(R"(,"input":)");
    putString(out_, run.input);
    out_.append(R"(,"options":[)");
    for (std::size_t i = 0; i < run.options.size(); ++i) {
        out_.append(i == 0 ? "" : ",");
        putString(out_, run.options[i]);
    }
    out_.append("]},\n\"resources\":[");
}

// The standard allows lower case letters, digits and "._-" in a name.  File names differ in lower
// case, too, and "." is doubled, so that the names of resources differ as well.
std::string PackageWriter::resourceName(std::size_t table) const {
    const std::size_t ending = 1 + format_.extension.size() + extensionOf(options_.packing).size();
    std::string name;
    for (const char c : lowerCased(files_[table].substr(0, files_[table].size() - ending))) {
        name += c == '.' ? ".." : c == '%' ? ".x" : c == '~' ? ".n" : std::string(1, c);
    }
    return name;
}

void PackageWriter::add(std::size_t table, const FileState& state) {
    const TableSchema& of = schema_.tables[table];
    out_.append(std::exchange(first_, false) ? "\n{\"name\":" : ",\n{\"name\":");
    putString(out_, resourceName(table));
    out_.append(R"(,"title":)");
    putString(out_, of.table->name);
    out_.append(R"(,"path":)");
    putString(out_, files_[table]);
    out_.append(R"(,"format":)");
    putString(out_, format_.name);
    if (options_.packing != Packing::NONE) {
        out_.append(R"(,"compression":)");
        putString(out_, extensionOf(options_.packing).substr(1));
    }
    if (format_.name == "tsv") {
        out_.append(R"(,"dialect":{"delimiter":"\t"})");
    }
    out_.append(R"(,"rows":)");
    out_.append(std::to_string(of.rows));
    out_.append(R"(,"bytes":)");
    out_.append(std::to_string(state.bytes));
    out_.append(R"(,"modified":)");
    putString(out_, state.modified);
    out_.append(R"(,"schema":)");
    putSchema(of);
    out_.put('}');
}

void PackageWriter::putSchema(const TableSchema& table) {
    out_.append("{\"fields\":[");
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        out_.append(c == 0 ? "\n" : ",\n");
        putField(table.table->columns[c], table.fields[c].type);
    }
    out_.append("]");
    if (!format_.ownNull) {
        out_.append(R"(,"missingValues":[)");
        putString(out_, options_.null.value_or(""));
        out_.put(']');
    }
    putKeys(table);
    out_.put('}');
}

void PackageWriter::putField(const Column& column, const DataType& type) {
    static constexpr std::string_view kTypes[] = {"string", "boolean", "integer", "number",
                                                  "number", "date",    "datetime"};
    // A time that a map made of a number is written as that number.
    const bool number = type.kind == DataType::TIMESTAMP && column.type == ColumnType::NUMERIC &&
                        column.format.name.empty();
    out_.append("{\"name\":");
    putString(out_, column.name);
    out_.append(R"(,"type":)");
    putString(out_, number && format_.text() ? "number" : kTypes[type.kind]);
    if (type.kind == DataType::TIMESTAMP && !number) {
        out_.append(R"(,"format":"any")");
    }
    if (!column.label.empty()) {
        out_.append(R"(,"title":)");
        putString(out_, column.label);
    }
    if (column.type != ColumnType::ORDINAL && !column.path.empty()) {
        out_.append(R"(,"originalName":)");
        putString(out_, lastPiece(column.path));
    }
    if (!column.path.empty()) {
        out_.append(R"(,"path":)");
        putString(out_, withSlashes(column.path));
    }
    out_.put('}');
}

void PackageWriter::putKeys(const TableSchema& table) {
    if (table.key) {
        putNames(R"(,"primaryKey":[)", table.table->columns[*table.own].name);
    }
    if (!table.parent || !table.parent->foreignKey) {
        return;
    }
    const ParentKey& parent = *table.parent;
    putNames(R"(,"foreignKeys":[{"fields":[)", table.table->columns[parent.column].name);
    out_.append(R"(,"reference":{"resource":)");
    putString(out_, resourceName(parent.table));
    putNames(R"(,"fields":[)", schema_.tables[parent.table].table->columns[parent.ordinal].name);
    out_.append("}}]");
}

void PackageWriter::putNames(std::string_view member, const std::string& name) {
    out_.append(member);
    putString(out_, name);
    out_.put(']');
}

void PackageWriter::end() {
    out_.append("\n]}\n");
    out_.flush();
}

std::optional<std::vector<ListedFile>> readPackage(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    try {
        Engine engine;
        Document document(engine);
        std::vector<char> piece(std::size_t{1} << 16);
        while (in.read(piece.data(), static_cast<std::streamsize>(piece.size())),
               in.gcount() != 0) {
            document.feed({piece.data(), static_cast<std::size_t>(in.gcount())});
        }
        document.finish();
        ResourceReader reader;
        RecordCursor records(document);
        for (Record record = {}; records.next(record);) {
            if (!reader.take(record)) {
                return std::nullopt;
            }
        }
        return reader.end();
    } catch (const Error&) {
        return std::nullopt;
    }
}

}  // namespace qvej
