// See table_directory.h.
#include "formats/table_directory.h"

#include "formats/file_names.h"

#include <utility>

namespace qvej {

void TableDirectory::open(const std::vector<const Table*>& tables, const Schema* schema) {
    tables_ = tables;
    begun_.resize(tables.size());
    schema_ = schema;
    std::vector<std::string> names;
    names.reserve(tables.size());
    for (const Table* table : tables) {
        names.push_back(table->name);
    }
    FileNames files = uniqueFileNames(
        names, std::string(parms_.format.extension).append(extensionOf(parms_.options.packing)));
    cutNames_ = files.cut;
    files.names.emplace_back(kPackageFile);
    files_.emplace(directory_, true, std::move(files.names), parms_.force, parms_.sources);
    removeEarlier();
}

void TableDirectory::removeEarlier() {
    if (!parms_.force || !files_->foundFiles()) {
        return;
    }
    std::optional<std::vector<ListedFile>> earlier = readPackage(directory_ + "/" + kPackageFile);
    earlierKnown_ = earlier.has_value();
    if (earlier) {
        files_->removeEarlier(std::move(*earlier), parms_.sources);
    }
}

bool TableDirectory::shares(const OutputFiles& files) const {
    return files_->shares(files);
}

std::unique_ptr<Sink> TableDirectory::sink(std::size_t table) {
    const bool resumed = begun_[table];
    begun_[table] = true;
    return makeSink(parms_.format, Writer(packed(files_->target(table), parms_.options.packing)),
                    {*tables_[table], parms_.options, schema_, table, false, resumed});
}

std::unique_ptr<Sink> TableDirectory::pieceSink(std::size_t table) const {
    return makePieceSink(parms_.format, {*tables_[table], parms_.options, schema_, table});
}

// Lists the tables' files, of which all is written, in the last file.
void TableDirectory::end(const Schema& schema) {
    Writer out = files_->writer(tables_.size());
    PackageWriter package(out, run_, schema, files_->names(), parms_.format, parms_.options);
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        package.add(i, files_->closed(i));
    }
    package.end();
}

std::vector<std::string> TableDirectory::commit(OutputFiles* with) {
    return files_->commit(with);
}

std::vector<std::string> TableDirectory::remarks() const {
    std::vector<std::string> remarks;
    if (!earlierKnown_) {
        remarks.push_back(directory_ + " had no " + kPackageFile +
                          " of qvejmap: files were replaced by name, and no others removed");
    }
    if (cutNames_ != 0) {
        remarks.push_back(std::to_string(cutNames_) +
                          (cutNames_ == 1 ? " file name" : " file names") + " cut to " +
                          std::to_string(kLongestFileName) + " bytes: " + kPackageFile +
                          " has the names of the tables");
    }
    return remarks;
}

}  // namespace qvej
