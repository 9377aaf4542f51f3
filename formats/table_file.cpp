// See table_file.h.
#include "formats/table_file.h"

#include <utility>

namespace qvej {

TableFile::TableFile(std::string path, const Format& format, FormatOptions options, bool force,
                     Sources sources)
    : path_(std::move(path)),
      format_(format),
      options_(std::move(options)),
      force_(force),
      sources_(std::move(sources)) {}

void TableFile::open(const std::vector<const Table*>& tables, const Schema* schema) {
    if (tables.size() != 1) {
        throw Error(QV_IO_REFUSED,
                    "a file of " + std::string(format_.name) + " has one table, and here are " +
                        std::to_string(tables.size()) +
                        " (--table NAME chooses one; -o DIR --format " + std::string(format_.name) +
                        " writes them all)",
                    path_);
    }
    table_ = tables.front();
    schema_ = schema;
    files_.reset(new OutputFiles(OutputFiles::single(path_, force_, sources_)));
}

bool TableFile::shares(const OutputFiles& files) const {
    return files_->shares(files);
}

std::unique_ptr<Sink> TableFile::sink(std::size_t /*table*/) {
    return makeSink(format_, Writer(packed(files_->target(0), options_.packing)),
                    {*table_, options_, schema_, 0});
}

std::vector<std::string> TableFile::commit(OutputFiles* with) {
    return files_->commit(with);
}

}  // namespace qvej
