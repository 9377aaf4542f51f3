// See open_file.h.
#include "bindings/sqlite/open_file.h"

#include "bindings/sqlite/interrupt.h"
#include "client/error.h"
#include "client/input/text_file.h"
#include "client/table_pass.h"
#include "client/text.h"
#include "formats/sqlite/sqlite_types.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace qvej::sqlite {

namespace {

constexpr uint64_t kHeldByColumn = 1024;  // bytes, nearly

void refuseStandardInput(const std::string& file) {
    if (file == "-") {
        throw Error(QV_BADPARMS, "tables are of files, not of standard input");
    }
}

InputList inputsOf(const std::string& file) {
    refuseStandardInput(file);
    return inputList({file});
}

std::string shapeOf(const FileOptions& options) {
    refuseStandardInput(options.shape);
    return options.shape.empty() || options.shape == "auto" ? options.shape
                                                            : textOfFile(options.shape);
}

// An empty file is a map that ends too soon, and no missing one.
std::string mapOf(const FileOptions& options) {
    refuseStandardInput(options.map);
    std::string text = options.map.empty() ? std::string() : textOfFile(options.map);
    return text.empty() && !options.map.empty() ? " " : text;
}

OpenOptions openOptions(const FileOptions& options, bool records) {
    OpenOptions open;
    open.inputs = inputsOf(options.file);
    open.text = options.text;
    open.shape = shapeOf(options);
    open.shapeName = options.shape;
    open.map = mapOf(options);
    open.naming = options.naming;
    open.memoryBudget = options.memory;
    open.threads = options.threads;
    open.records = records;
    open.stopped = &isInterrupted;
    return open;
}

// What differs when a file has changed.  One that cannot be looked at says so when it is opened;
// what comes once, as from a pipe, cannot be read anew.
std::string stampOf(const FileOptions& options) {
    std::string stamp;
    std::vector<std::string> files = inputsOf(options.file).files;
    files.insert(files.end(), {options.map, options.shape});
    for (const std::string& file : files) {
        struct stat at = {};
        if (stat(file.c_str(), &at) == 0 && S_ISREG(at.st_mode)) {
            for (const auto number :
                 {int64_t{at.st_size}, int64_t{at.st_mtim.tv_sec}, int64_t{at.st_mtim.tv_nsec},
                  static_cast<int64_t>(at.st_ino), static_cast<int64_t>(at.st_dev)}) {
                stamp += std::to_string(number) + " ";
            }
        }
        stamp += file + "\n";
    }
    return stamp;
}

std::vector<const Table*> tablesOf(const Document& document) {
    std::vector<const Table*> tables;
    for (const Table& table : document.tables()) {
        tables.push_back(&table);
    }
    return tables;
}

}  // namespace

OpenFile::OpenFile(const FileOptions& options, bool records)
    : document_(openOptions(options, records)), file_(options.file), records_(records) {
    const std::vector<const Table*> tables = tablesOf(document());
    schema_ = schemaOf(document(), tables, false, false, std::max(1U, options.threads),
                       {.dates = true, .counts = false});
    std::vector<std::string> names;
    for (const Table* table : tables) {
        names.push_back(table->name);
    }
    names_ = fittedNames(names, sqliteLimits().tableNames).names;
    ascending_.resize(tables.size());
}

std::size_t OpenFile::find(const std::string& name) const {
    for (std::size_t t = 0; t < names_.size(); ++t) {
        if (equalIgnoringCase(names_[t], name)) {
            return t;
        }
    }
    std::string list;
    for (const std::string& has : names_) {
        list += (list.empty() ? "" : ", ") + has;
    }
    const std::string what = name.empty() ? "table=NAME says which of its tables: "
                                          : "there is no table \"" + name + "\": it has ";
    throw Error(JMAP_NOTABLE, what + (list.empty() ? "none" : list), file_);
}

TableShape OpenFile::shapeOf(std::size_t table) const {
    const TableSchema& of = schema_.tables[table];
    const Columns& columns = of.table->columns;
    if (columns.empty() || columns.size() > sqliteLimits().columns) {
        throw Error(QV_UNSUPPORTED,
                    names_[table] + " has " + withCommas(columns.size()) +
                        " columns, and SQLite takes 1 to " + withCommas(sqliteLimits().columns),
                    file_);
    }
    TableShape shape;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        shape.names.push_back(columns[c].name);
        shape.types.emplace_back(sqliteTypeOf(of.fields[c]));
        shape.ordinals.push_back(columns.type(c) == ColumnType::ORDINAL);
    }
    shape.names = fittedNames(shape.names, sqliteLimits().columnNames).names;
    shape.own = of.own;
    shape.key = of.key;
    if (of.parent) {
        shape.parent = of.parent->column;
    }
    return shape;
}

bool OpenFile::ascends(std::size_t table, std::size_t column) const {
    const TableSchema& of = schema_.tables[table];
    if (of.key && column == *of.own) {
        return true;
    }
    std::vector<bool>& ascending = ascending_[table];
    if (ascending.empty()) {
        std::vector<bool> found(of.table->columns.size(), true);
        std::vector<uint64_t> last(found.size(), 0);
        TablePass pass(document(), {of.table});
        PassRow row(document(), *of.table);
        for (PassItem item; pass.next(item);) {
            for (std::size_t c = 0, end = row.take(item) ? found.size() : 0; c < end; ++c) {
                const Cell cell = row.cell(c);
                found[c] = found[c] && cell.kind == Cell::COUNT && cell.count >= last[c];
                last[c] = cell.count;
            }
        }
        ascending = std::move(found);
    }
    return ascending[column];
}

uint64_t OpenFile::held() const {
    uint64_t columns = 0;
    for (const TableSchema& table : schema_.tables) {
        columns += table.fields.size();
    }
    return document().totals().storedBytes + columns * kHeldByColumn;
}

std::shared_ptr<const OpenFile> OpenFiles::read(const FileOptions& options, bool records) {
    try {
        return std::make_shared<const OpenFile>(options, records);
    } catch (const MapError& error) {  // it does not know where the map came from
        throw Error(error.status(), error.what(), Place{options.map, error.line(), error.column()});
    }
}

std::shared_ptr<const OpenFile> OpenFiles::open(const FileOptions& options, bool records) {
    const std::string key = options.key();
    const std::string stamp = stampOf(options);
    const auto isOther = [&](const Kept& kept) { return kept.key == key && kept.stamp != stamp; };
    std::erase_if(kept_, isOther);
    const auto found = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& kept) {
        return kept.key == key && (kept.file->hasRecords() || !records);
    });
    if (found != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, found);
        return found->file;
    }
    kept_.push_front({key, stamp, read(options, records)});
    const std::shared_ptr<const OpenFile> file = kept_.front().file;
    dropUnused();
    return file;
}

// Those that were not used for longest go first.
void OpenFiles::dropUnused() {
    uint64_t held = 0;
    for (const Kept& kept : kept_) {
        held += kept.file->held();
    }
    for (auto kept = kept_.end(); held > mostHeld_ && kept != kept_.begin();) {
        if ((--kept)->file.use_count() == 1) {
            held -= kept->file->held();
            kept = kept_.erase(kept);
        }
    }
}

}  // namespace qvej::sqlite
