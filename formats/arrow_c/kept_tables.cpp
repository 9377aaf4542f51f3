// See kept_tables.h.
#include "formats/arrow_c/kept_tables.h"

#include "client/error.h"
#include "client/quiet_thread.h"
#include "formats/arrow_c/batch_maker.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <utility>

namespace qvej {

namespace {

struct KeptPiece final : Piece {
    explicit KeptPiece(RowBytes kept) : rows(std::move(kept)) {}
    RowBytes rows;
};

class KeptSink final : public Sink {
   public:
    // `to`: gets the rows; null: they are handed out as pieces.
    KeptSink(std::size_t columns, std::vector<RowBytes>* to) : rows_(columns), to_(to) {}

    void row(const PassRow& row) override { rows_.take(row); }
    void end() override { flush(); }
    [[nodiscard]] std::size_t held() const override { return rows_.size(); }
    void flush() override {
        if (rows_.rows() != 0) {
            to_->push_back(rows_.release());
        }
    }
    [[nodiscard]] std::unique_ptr<Piece> piece() override {
        return std::make_unique<KeptPiece>(rows_.release());
    }
    void append(std::unique_ptr<Piece> piece) override {
        flush();
        to_->push_back(std::move(static_cast<KeptPiece&>(*piece).rows));
    }

   private:
    RowBytes rows_;
    std::vector<RowBytes>* to_;
};

class NoSink final : public Sink {
   public:
    void row(const PassRow& /*row*/) override {}
    void end() override {}
};

// Rows that become a batch.
struct BatchToMake {
    const TableSchema& table;
    RowBytes& rows;
    std::shared_ptr<const RecordBatch>& batch;
};

// Does them one after the other.
class BatchWork {
   public:
    void make(const BatchToMake& wish) {
        if (table_ != &wish.table) {  // else buffers are as large as they must be
            table_ = &wish.table;
            maker_.emplace(*table_);
        }
        const RowBytes rows = std::move(wish.rows);
        rows.forEach([&](std::span<const Cell> row) { maker_->take(row); });
        wish.batch = maker_->batch();
    }

   private:
    const TableSchema* table_ = nullptr;
    std::optional<BatchMaker> maker_;
};

// Does them on the calling thread and others.
class BatchesToMake {
   public:
    explicit BatchesToMake(std::vector<BatchToMake> wishes) : all_(std::move(wishes)) {}

    // Throws what `check` throws on the calling thread, and std::bad_alloc.
    void run(unsigned threads, const std::function<void()>& check) {
        std::vector<std::thread> others;
        for (unsigned i = 1; i < threads && i < all_.size(); ++i) {
            others.push_back(startQuietly([this] { makeSome([] {}); }));
        }
        makeSome(check);
        for (std::thread& other : others) {
            if (other.joinable()) {
                other.join();
            }
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

   private:
    void makeSome(const std::function<void()>& check) {
        try {
            BatchWork work;
            for (std::size_t i = next_++; i < all_.size(); i = next_++) {
                check();
                work.make(all_[i]);
            }
        } catch (...) {
            const std::lock_guard lock(mutex_);
            failure_ = std::current_exception();
            next_ = all_.size();
        }
    }

    const std::vector<BatchToMake> all_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;  // for `failure_`
    std::exception_ptr failure_;
};

}  // namespace

void KeptTables::open(const std::vector<const Table*>& tables, const Schema* /*schema*/) {
    for (const Table* table : tables) {
        tables_.push_back({table->columns.size()});
    }
    for (const std::size_t table : wanted_) {
        tables_[table].wanted = true;
    }
}

std::unique_ptr<Sink> KeptTables::sink(std::size_t table) {
    OfTable& of = tables_[table];
    if (!of.wanted) {
        return std::make_unique<NoSink>();
    }
    return std::make_unique<KeptSink>(of.columns, &of.rows);
}

std::unique_ptr<Sink> KeptTables::pieceSink(std::size_t table) const {
    const OfTable& of = tables_[table];
    if (!of.wanted) {
        return std::make_unique<NoSink>();
    }
    return std::make_unique<KeptSink>(of.columns, nullptr);
}

std::vector<BatchTables::Batches> KeptTables::batches(const Schema& schema, unsigned threads,
                                                      const std::function<bool()>& stopped) {
    std::vector<BatchTables::Batches> all(wanted_.size());
    std::vector<BatchToMake> wishes;
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
        std::vector<RowBytes>& rows = tables_[wanted_[i]].rows;
        all[i].resize(rows.size());
        for (std::size_t piece = 0; piece < rows.size(); ++piece) {
            wishes.push_back({schema.tables[wanted_[i]], rows[piece], all[i][piece]});
        }
    }
    BatchesToMake(std::move(wishes)).run(threads, [&] {
        if (stopped()) {
            throw Error(QV_STOPPED);
        }
    });
    return all;
}

}  // namespace qvej
