// See table_directory.h.
#include "formats/table_directory.h"

#include "formats/file_names.h"

#include <utility>

namespace qvej {

TableDirectory::TableDirectory(std::string directory, const Format& format,
                               FormatOptions formatOptions, bool force, Sources sources,
                               PackageRun run)
    : directory_(std::move(directory)),
      format_(format),
      formatOptions_(std::move(formatOptions)),
      force_(force),
      sources_(std::move(sources)),
      run_(std::move(run)) {}

void TableDirectory::open(const std::vector<const Table*>& tables) {
    tables_ = tables;
    std::vector<std::string> names;
    names.reserve(tables.size());
    for (const Table* table : tables) {
        names.push_back(table->name);
    }
    FileNames files = uniqueFileNames(names, format_.extension);
    cutNames_ = files.cut;
    names_ = std::move(files.names);
    names_.emplace_back(kPackageFile);
    files_.emplace(directory_, true, names_, force_, sources_);
    removeEarlier();
}

void TableDirectory::removeEarlier() {
    if (!force_ || !files_->foundFiles()) {
        return;
    }
    std::optional<std::vector<ListedFile>> earlier = readPackage(directory_ + "/" + kPackageFile);
    earlierKnown_ = earlier.has_value();
    if (earlier) {
        files_->removeEarlier(std::move(*earlier), sources_);
    }
}

bool TableDirectory::shares(const OutputFiles& files) const {
    return files_->shares(files);
}

std::unique_ptr<Sink> TableDirectory::sink(std::size_t table) {
    return format_.make(files_->writer(table), tables_[table]->columns, formatOptions_);
}

// Lists the tables' files, of which all is written, in the last file.
void TableDirectory::end(const std::vector<uint64_t>& rows) {
    Writer out = files_->writer(rows.size());
    PackageWriter package(out, run_);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        package.add(names_[i], tables_[i]->name, format_.name, rows[i], files_->closed(i));
    }
    package.end();
}

std::vector<std::string> TableDirectory::commit(OutputFiles* with) {
    return files_->commit(with);
}

}  // namespace qvej
