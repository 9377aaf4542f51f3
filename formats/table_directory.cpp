// See table_directory.h.
#include "formats/table_directory.h"

#include "formats/file_names.h"

#include <utility>

namespace qvej {

TableDirectory::TableDirectory(std::string directory, const Format& format,
                               FormatOptions formatOptions, bool force, Sources sources)
    : directory_(std::move(directory)),
      format_(format),
      formatOptions_(std::move(formatOptions)),
      force_(force),
      sources_(std::move(sources)) {}

void TableDirectory::open(const std::vector<const Table*>& tables) {
    tables_ = tables;
    std::vector<std::string> names;
    names.reserve(tables.size());
    for (const Table* table : tables) {
        names.push_back(table->name);
    }
    files_.emplace(directory_, true, uniqueFileNames(names, format_.extension), force_, sources_);
}

bool TableDirectory::shares(const OutputFiles& files) const {
    return files_->shares(files);
}

std::unique_ptr<Sink> TableDirectory::sink(std::size_t table) {
    return format_.make(files_->writer(table), tables_[table]->columns, formatOptions_);
}

std::vector<std::string> TableDirectory::commit(OutputFiles* with) {
    return files_->commit(with);
}

}  // namespace qvej
