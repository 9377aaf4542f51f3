// A document whose tables are read by several readers and threads.
//
// Tested by tests/bindings/python/
#pragma once

#include "client/account.h"
#include "client/open/open_document.h"
#include "client/ranges/range_document.h"
#include "client/schema/schema.h"
#include "client/table_pass.h"
#include "formats/arrow_c/batch_reader.h"
#include "formats/arrow_c/batch_tables.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qvej::python {

// A range of a document.
struct OpenedRange {
    explicit OpenedRange(RangeOptions options)
        : file(options.range.file), document(engine, std::move(options)) {}

    Engine engine;
    const std::string file;
    const RangeDocument document;
};

// A document that is open, or a range of one.  One walk of it goes on at a time.
struct Opened {
    // `source`: what the options point to; it is kept as long.
    Opened(OpenOptions wishes, std::shared_ptr<const void> source)
        : held(std::move(source)), options(std::move(wishes)), all(std::in_place, options) {}
    explicit Opened(RangeOptions wishes)
        : options{.threads = 1},
          callsPython(wishes.range.readAt != nullptr),
          range(std::in_place, std::move(wishes)) {}

    [[nodiscard]] const Document& document() const {
        return range ? range->document.document() : all->document();
    }
    // What messages call it.
    [[nodiscard]] std::string name() const { return range ? range->file : all->name(); }

    // Throws QV_UNSUPPORTED for a range.
    [[nodiscard]] const OpenDocument& whole() const;

    // Does the work of a walk, also for one who may hold the interpreter's lock.
    void waiting(const std::function<void()>& work) const;

    const std::shared_ptr<const void> held = {};  // ends last
    const OpenOptions options;
    const bool callsPython = false;  // for the text
    const std::optional<OpenDocument> all = {};
    const std::optional<OpenedRange> range = {};
    std::timed_mutex walking = {};
};

// What rows have shown of values that are not in them, or perhaps in the wrong one.
struct Findings {
    uint64_t rejected = 0;  // their columns cannot take them, or in part only
    uint64_t inNoCell = 0;
    RowLosses losses = {};
};

// Tables of a document: those of its map, or ALLDATA alone.
class SharedDocument {
   public:
    // Reads it.  Throws as OpenDocument.
    //   carry  as of TablePass
    SharedDocument(OpenOptions options, std::shared_ptr<const void> source, bool carry);

    // The rows of a range.  Throws as RangeDocument; QV_BADPARMS when there is no such table.
    //   tables  positions in those of the map; none: all of them
    SharedDocument(RangeOptions options, bool carry,
                   const std::optional<std::vector<std::size_t>>& tables);

    // ALLDATA of that document, which is read once more when it has no records, or of that range.
    // Throws as OpenDocument.
    [[nodiscard]] static std::shared_ptr<SharedDocument> alldata(const SharedDocument& of);

    // Throws QV_UNSUPPORTED for a range.
    [[nodiscard]] const OpenDocument& open() const { return opened_->whole(); }
    [[nodiscard]] const Document& document() const { return opened_->document(); }
    [[nodiscard]] std::string name() const { return opened_->name(); }
    [[nodiscard]] const Opened& opened() const { return *opened_; }
    [[nodiscard]] const std::vector<const Table*>& tables() const { return tables_; }
    [[nodiscard]] bool carry() const { return carry_; }
    [[nodiscard]] unsigned threads() const { return threads_; }
    [[nodiscard]] uint64_t memory() const { return opened_->options.memoryBudget; }  // as there

    // Types and keys of all tables, by a walk when they are asked for first.
    [[nodiscard]] const Schema& schema();
    [[nodiscard]] const Findings& findings();

    // What its rows show of types and keys, as bytes; by a walk.
    [[nodiscard]] std::string facts() const;
    // Of this document, or of ranges of it: the sum of what their rows show, in their order.
    [[nodiscard]] std::string sumOf(const std::vector<std::string>& facts) const;
    // Types and keys are those that rows with these facts have.
    void learn(const std::string& facts);

    // Held while the document is walked.  Throws QV_STOPPED.
    [[nodiscard]] std::unique_lock<std::timed_mutex> turn() const;
    // Likewise, to end a walk.
    [[nodiscard]] std::unique_lock<std::timed_mutex> lastTurn() const {
        return std::unique_lock(opened_->walking);
    }

    // All rows of some tables, by one walk, which finds the types, too, when they are not known.
    [[nodiscard]] std::vector<BatchTables::Batches> batches(const std::vector<std::size_t>& tables);

    // What becomes of the values of each path.
    [[nodiscard]] std::vector<PathAccount> account();

   private:
    SharedDocument(std::shared_ptr<Opened> opened, bool alldata, bool carry);
    void findTypes();
    void learn(Schema schema, uint64_t rejected, const TablePass& pass);
    [[nodiscard]] std::vector<BatchTables::Batches> typedRows(
        const std::vector<std::size_t>& tables) const;
    [[nodiscard]] std::vector<BatchTables::Batches> rowsAndTypes(
        const std::vector<std::size_t>& tables);

    const std::shared_ptr<Opened> opened_;
    std::vector<const Table*> tables_;
    const bool alldata_;
    const bool carry_;
    const unsigned threads_;
    std::optional<Schema> schema_;
    Findings findings_;
};

// What `make` makes; a mistake in a map is told with the name of the map.
template <class Make>
std::shared_ptr<SharedDocument> withMapNamed(const std::string& mapName, const Make& make) {
    try {
        return make();
    } catch (const MapError& error) {
        Place place = error.place();
        place.file = mapName;
        throw MapError(error.status(), place, error.excerpt(), error.token());
    }
}

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

// A value that its column cannot take.
struct RejectedValue {
    std::size_t table;
    std::size_t column;
    uint64_t row;  // from 1
    std::string text;
    std::string reason;
};

// The rejected values of all tables, in the order of the rows.
class RejectReader {
   public:
    explicit RejectReader(std::shared_ptr<SharedDocument> document);
    ~RejectReader();
    RejectReader(const RejectReader&) = delete;
    RejectReader& operator=(const RejectReader&) = delete;

    // Some more, none after the last.  Throws as SharedReader::next.
    [[nodiscard]] std::vector<RejectedValue> next();

   private:
    [[nodiscard]] PassRow& rowOf(std::size_t table);

    std::shared_ptr<SharedDocument> document_;
    std::unique_ptr<TablePass> pass_;
    std::vector<std::unique_ptr<PassRow>> rows_;
    std::vector<RejectedValue> values_;
};

}  // namespace qvej::python
