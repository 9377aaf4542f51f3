// See shared_document.h.
#include "bindings/python/shared_document.h"

#include "bindings/python/interrupt.h"
#include "formats/arrow_c/kept_tables.h"
#include "formats/table_outputs.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace qvej::python {

namespace {

constexpr std::chrono::milliseconds kLookAgain{20};
constexpr std::size_t kMostHeld = std::size_t{16} << 20;  // bytes of rows that are in no batch yet
constexpr std::size_t kRejectsAtOnce = 1000;

unsigned threadsOf(const OpenOptions& options) {
    return options.threads != 0 ? options.threads
                                : std::max(1U, std::thread::hardware_concurrency());
}

// What `work` does, with the name of the document in what it throws.
template <class Work>
auto named(const Opened& document, const Work& work) {
    try {
        return work();
    } catch (const Error& error) {
        if (!error.file().empty()) {
            throw;
        }
        throw Error(error.status(), error.what(), document.name());
    }
}

}  // namespace

const OpenDocument& Opened::whole() const {
    if (!all) {
        throw Error(QV_UNSUPPORTED, "of a part of a document there are the rows only", name());
    }
    return *all;
}

void Opened::waiting(const std::function<void()>& work) const {
    if (callsPython) {
        unlocked(work);
    } else {
        work();
    }
}

SharedDocument::SharedDocument(std::shared_ptr<Opened> opened, bool alldata, bool carry)
    : opened_(std::move(opened)),
      alldata_(alldata),
      carry_(carry),
      threads_(threadsOf(opened_->options)) {
    tables_ =
        alldata ? std::vector<const Table*>{&document().alldata()} : each(document().tables());
}

SharedDocument::SharedDocument(OpenOptions options, std::shared_ptr<const void> source, bool carry)
    : SharedDocument(std::make_shared<Opened>(std::move(options), std::move(source)), false,
                     carry) {}

SharedDocument::SharedDocument(RangeOptions options, bool carry,
                               const std::optional<std::vector<std::size_t>>& tables)
    : SharedDocument(std::make_shared<Opened>(std::move(options)), false, carry) {
    if (tables) {
        const std::vector<const Table*> all = std::exchange(tables_, {});
        for (const std::size_t position : *tables) {
            if (position >= all.size()) {
                throw Error(QV_BADPARMS, "the plan has a table that is not in its map", name());
            }
            tables_.push_back(all[position]);
        }
    }
}

std::shared_ptr<SharedDocument> SharedDocument::alldata(const SharedDocument& of) {
    std::shared_ptr<Opened> opened = of.opened_;
    if (!opened->range && of.document().parts() != nullptr) {
        const OpenDocument& whole = of.open();
        whole.checkUnchanged();
        OpenOptions options = opened->options;
        options.records = true;
        opened = std::make_shared<Opened>(std::move(options), opened->held);
        whole.checkUnchanged();  // nor while it was read
    }
    return std::shared_ptr<SharedDocument>(new SharedDocument(std::move(opened), true, false));
}

std::string SharedDocument::facts() const {
    const std::unique_lock lock = turn();
    return named(*opened_, [&] {
        SchemaBuilder noRows(document(), tables_, {});
        if (tables_.empty() && !document().tables().empty()) {
            return noRows.takeBatch(noRows).bytes();  // the text need not be read
        }
        return factsOf(document(), tables_, carry_, noRows).bytes();
    });
}

std::string SharedDocument::sumOf(const std::vector<std::string>& facts) const {
    const SchemaBuilder noRows(document(), tables_, {});
    SchemaBuilder sum = noRows;
    for (const std::string& of : facts) {
        sum.add({of, noRows});
    }
    return sum.takeBatch(noRows).bytes();
}

void SharedDocument::learn(const std::string& facts) {
    const std::unique_lock lock = turn();
    const SchemaBuilder noRows(document(), tables_, {});
    SchemaBuilder sum = noRows;
    sum.add({facts, noRows});
    schema_ = sum.end();
}

std::unique_lock<std::timed_mutex> SharedDocument::turn() const {
    std::unique_lock lock(opened_->walking, std::defer_lock);
    while (!lock.try_lock_for(kLookAgain)) {
        if (isStopped()) {
            throw Error(QV_STOPPED);
        }
    }
    return lock;
}

void SharedDocument::findTypes() {
    const std::unique_lock lock = turn();
    if (schema_) {
        return;
    }
    TablePass pass(document(), tables_, false, carry_);
    uint64_t rejected = 0;
    Schema schema = schemaOf(document(), tables_, pass, threads_, {}, {}, &rejected);
    learn(std::move(schema), rejected, pass);
}

// What a pass over all tables has shown, which is at its end.
void SharedDocument::learn(Schema schema, uint64_t rejected, const TablePass& pass) {
    Findings found{.rejected = rejected};
    if (!alldata_) {
        found.inNoCell = lostOf(document(), pass, tables_);
        found.losses = rowLossesOf(pass, tables_);
    }
    findings_ = found;
    schema_ = std::move(schema);
}

const Schema& SharedDocument::schema() {
    named(*opened_, [&] { findTypes(); });
    return *schema_;
}

const Findings& SharedDocument::findings() {
    (void)schema();
    return findings_;
}

std::vector<BatchTables::Batches> SharedDocument::batches(const std::vector<std::size_t>& tables) {
    const std::unique_lock lock = turn();
    return named(*opened_, [&] { return schema_ ? typedRows(tables) : rowsAndTypes(tables); });
}

std::vector<BatchTables::Batches> SharedDocument::typedRows(
    const std::vector<std::size_t>& tables) const {
    Schema some;
    std::vector<const Table*> of;
    for (const std::size_t table : tables) {
        some.tables.push_back(schema_->tables[table]);
        of.push_back(tables_[table]);
    }
    TablePass pass(document(), of, false, carry_);
    BatchTables destination;
    destination.open(of, &some);
    TableOutputs outputs(
        document(), of, destination, kMostHeld, [](const Table&) { return RejectHandler(); },
        nullptr);
    outputs.takeAll(pass, threads_);
    outputs.end();
    return std::move(destination.batches());
}

std::vector<BatchTables::Batches> SharedDocument::rowsAndTypes(
    const std::vector<std::size_t>& tables) {
    TablePass pass(document(), tables_, false, carry_);
    KeptTables kept(tables);
    kept.open(tables_, nullptr);
    SchemaBuilder facts(document(), tables_, {});
    uint64_t rejected = 0;
    TableOutputs outputs(
        document(), tables_, kept, kMostHeld,
        [&](const Table&) { return [&](const Row&, const Rejected&) { ++rejected; }; }, &facts);
    outputs.takeAll(pass, threads_);
    outputs.end();
    learn(facts.end(), rejected, pass);
    return kept.batches(*schema_, threads_, isStopped);
}

std::vector<PathAccount> SharedDocument::account() {
    const std::unique_lock lock = turn();
    return named(*opened_, [&] { return accountOf(document(), false, carry_); });
}

SharedReader::SharedReader(std::shared_ptr<SharedDocument> document, const BatchWish& wish)
    : document_(std::move(document)) {
    const TableSchema& table = document_->schema().tables[wish.table];
    const std::unique_lock lock = document_->turn();
    reader_ = std::make_unique<BatchReader>(document_->document(), table, wish.columns, wish.rows,
                                            document_->carry());
}

SharedReader::~SharedReader() {
    document_->opened().waiting([&] {
        const std::unique_lock lock = document_->lastTurn();
        reader_.reset();
    });
}

std::shared_ptr<const RecordBatch> SharedReader::next() {
    std::shared_ptr<const RecordBatch> batch;
    document_->opened().waiting([&] {
        const std::unique_lock lock = document_->turn();
        batch = named(document_->opened(), [&] { return reader_->next(); });
    });
    return batch;
}

RejectReader::RejectReader(std::shared_ptr<SharedDocument> document)
    : document_(std::move(document)), rows_(document_->tables().size()) {
    const std::unique_lock lock = document_->turn();
    pass_ = std::make_unique<TablePass>(document_->document(), document_->tables(), false,
                                        document_->carry());
}

RejectReader::~RejectReader() {
    const std::unique_lock lock = document_->lastTurn();
    pass_.reset();
}

PassRow& RejectReader::rowOf(std::size_t table) {
    std::unique_ptr<PassRow>& row = rows_[table];
    if (row == nullptr) {
        row = std::make_unique<PassRow>(
            document_->document(), *document_->tables()[table],
            [this, table](const Row&, const Rejected& value) {
                values_.push_back({table, value.column, value.row, std::string(value.text),
                                   std::string(value.reason)});
            });
    }
    return *row;
}

std::vector<RejectedValue> RejectReader::next() {
    const std::unique_lock lock = document_->turn();
    return named(document_->opened(), [&] {
        PassItem item;
        while (values_.size() < kRejectsAtOnce && pass_->next(item)) {
            (void)rowOf(item.table).take(item);
        }
        return std::exchange(values_, {});
    });
}

}  // namespace qvej::python
