// See kept_tables.h.
#include "formats/arrow_c/kept_tables.h"

#include "client/error.h"
#include "client/quiet_thread.h"
#include "formats/arrow_c/batch_maker.h"

#include <atomic>
#include <exception>
#include <mutex>
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

// Does `count` pieces of work, by their numbers, on the calling thread and others.
class SharedWork {
   public:
    SharedWork(std::size_t count, std::function<void(std::size_t)> work)
        : count_(count), work_(std::move(work)) {}

    // Throws what the work throws, and what `check` does on the calling thread.
    void run(unsigned threads, const std::function<void()>& check) {
        std::vector<std::thread> others;
        for (unsigned i = 1; i < threads && i < count_; ++i) {
            others.push_back(startQuietly([this] { doSome({}); }));
        }
        doSome(check);
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
    void doSome(const std::function<void()>& check) {
        try {
            for (std::size_t i = next_++; i < count_; i = next_++) {
                if (check) {
                    check();
                }
                work_(i);
            }
        } catch (...) {
            const std::lock_guard lock(mutex_);
            failure_ = std::current_exception();
            next_ = count_;
        }
    }

    const std::size_t count_;
    const std::function<void(std::size_t)> work_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    std::exception_ptr failure_;
};

std::shared_ptr<const RecordBatch> batchOf(const TableSchema& table, RowBytes rows) {
    BatchMaker maker(table);
    rows.forEach([&](std::span<const Cell> row) { maker.take(row); });
    return maker.batch();
}

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
    struct Source {
        const TableSchema& table;
        RowBytes& rows;
        std::shared_ptr<const RecordBatch>& batch;
    };
    std::vector<BatchTables::Batches> all(wanted_.size());
    std::vector<Source> sources;
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
        std::vector<RowBytes>& rows = tables_[wanted_[i]].rows;
        all[i].resize(rows.size());
        for (std::size_t piece = 0; piece < rows.size(); ++piece) {
            sources.push_back({schema.tables[wanted_[i]], rows[piece], all[i][piece]});
        }
    }
    SharedWork work(sources.size(), [&](std::size_t i) {
        const Source& source = sources[i];
        source.batch = batchOf(source.table, std::move(source.rows));
    });
    work.run(threads, [&] {
        if (stopped()) {
            throw Error(QV_STOPPED);
        }
    });
    return all;
}

}  // namespace qvej
