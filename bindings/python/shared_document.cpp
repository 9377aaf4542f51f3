// See shared_document.h.
#include "bindings/python/shared_document.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace qvej::python {

namespace {

unsigned threadsOf(const OpenOptions& options) {
    return options.threads != 0 ? options.threads
                                : std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace

SharedDocument::SharedDocument(OpenOptions options, std::shared_ptr<const void> source)
    : source_(std::move(source)), threads_(threadsOf(options)), open_(std::move(options)) {}

const Schema& SharedDocument::schema() {
    const std::lock_guard lock(mutex_);
    if (!schema_) {
        std::vector<const Table*> all;
        for (const Table& table : tables()) {
            all.push_back(&table);
        }
        schema_ = schemaOf(open_.document(), all, false, false, threads_, {});
    }
    return *schema_;
}

SharedReader::SharedReader(std::shared_ptr<SharedDocument> document, const BatchWish& wish)
    : document_(std::move(document)) {
    const TableSchema& table = document_->schema().tables[wish.table];
    const std::lock_guard lock(document_->mutex());
    reader_ =
        std::make_unique<BatchReader>(document_->open().document(), table, wish.columns, wish.rows);
}

SharedReader::~SharedReader() {
    const std::lock_guard lock(document_->mutex());
    reader_.reset();
}

std::shared_ptr<const RecordBatch> SharedReader::next() {
    const std::lock_guard lock(document_->mutex());
    try {
        return reader_->next();
    } catch (const Error& error) {
        if (!error.file().empty()) {
            throw;
        }
        throw Error(error.status(), error.what(), document_->open().name());
    }
}

}  // namespace qvej::python
