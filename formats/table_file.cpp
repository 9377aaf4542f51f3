// See table_file.h.
#include "formats/table_file.h"

namespace qvej {

void TableFile::open(const std::vector<const Table*>& tables, const Schema* schema) {
    if (tables.size() != 1) {
        throw Error(QV_IO_REFUSED,
                    "a file of " + std::string(parms_.format.name) +
                        " has one table, and here are " + std::to_string(tables.size()) +
                        " (--table NAME chooses one; -o DIR --format " +
                        std::string(parms_.format.name) + " writes them all)",
                    path_);
    }
    table_ = tables.front();
    schema_ = schema;
    files_.reset(new OutputFiles(OutputFiles::single(path_, parms_.force, parms_.sources)));
}

bool TableFile::shares(const OutputFiles& files) const {
    return files_->shares(files);
}

std::unique_ptr<Sink> TableFile::sink(std::size_t /*table*/) {
    return makeSink(parms_.format, Writer(packed(files_->target(0), parms_.options.packing)),
                    {*table_, parms_.options, schema_, 0});
}

std::unique_ptr<Sink> TableFile::pieceSink(std::size_t /*table*/) const {
    return makePieceSink(parms_.format, {*table_, parms_.options, schema_, 0});
}

std::vector<std::string> TableFile::commit(OutputFiles* with) {
    return files_->commit(with);
}

}  // namespace qvej
