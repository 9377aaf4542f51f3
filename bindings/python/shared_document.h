// A document that batches of its tables are read from, by several readers and threads.
//
// Tested by tests/bindings/python/
#pragma once

#include "client/open/open_document.h"
#include "client/schema/schema.h"
#include "formats/arrow_c/batch_reader.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace qvej::python {

class SharedDocument {
   public:
    // Reads it.  Throws as OpenDocument.
    //   source  what the options point to; it is kept as long
    SharedDocument(OpenOptions options, std::shared_ptr<const void> source);

    [[nodiscard]] const OpenDocument& open() const { return open_; }
    [[nodiscard]] const std::vector<Table>& tables() const { return open_.document().tables(); }

    // Types and keys of all tables, by a walk when they are asked for first.
    [[nodiscard]] const Schema& schema();

    // Held while the document is walked: one walk goes on at a time.
    [[nodiscard]] std::mutex& mutex() { return mutex_; }

   private:
    const std::shared_ptr<const void> source_;  // ends last
    const unsigned threads_;
    OpenDocument open_;
    std::mutex mutex_;
    std::optional<Schema> schema_;
};

// Which columns of which table, and the most rows of a batch.
struct BatchWish {
    std::size_t table;
    std::vector<std::size_t> columns;
    std::size_t rows;
};

// Batches of one table, on whatever thread.
class SharedReader {
   public:
    SharedReader(std::shared_ptr<SharedDocument> document, const BatchWish& wish);
    ~SharedReader();
    SharedReader(const SharedReader&) = delete;
    SharedReader& operator=(const SharedReader&) = delete;

    // Null after the last.  Throws as BatchReader::next, with the name of the document.
    [[nodiscard]] std::shared_ptr<const RecordBatch> next();

   private:
    std::shared_ptr<SharedDocument> document_;
    std::unique_ptr<BatchReader> reader_;
};

}  // namespace qvej::python
