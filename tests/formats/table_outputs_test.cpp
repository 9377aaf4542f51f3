// What a destination is asked for, and when.
#include "formats/table_outputs.h"

#include "tests/client/read_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// What happened to the sinks of all tables.
struct Log {
    std::string calls;     // "made", "end" and "flush", each with its table
    std::size_t held = 0;  // by all of them
    std::size_t most = 0;
};

// Holds 10 MiB for each row, for one of x_c 1 MiB.
class HoldingSink final : public qvej::Sink {
   public:
    HoldingSink(Log& log, std::string name) : log_(log), name_(std::move(name)) {
        log_.calls += "made " + name_ + "\n";
    }
    void row(const qvej::PassRow& /*row*/) override {
        const std::size_t size = name_ == "x_c" ? kMiB : 10 * kMiB;
        held_ += size;
        log_.held += size;
        log_.most = std::max(log_.most, log_.held);
    }
    void end() override { log_.calls += "end " + name_ + "\n"; }
    [[nodiscard]] std::size_t held() const override { return held_; }
    void flush() override {
        log_.calls += "flush " + name_ + " " + std::to_string(held_ / kMiB) + "\n";
        log_.held -= held_;
        held_ = 0;
    }

   private:
    Log& log_;
    std::string name_;
    std::size_t held_ = 0;
};

class Holding final : public qvej::Destination {
   public:
    explicit Holding(Log& log) : log_(log) {}
    void open(const std::vector<const qvej::Table*>& tables,
              const qvej::Schema* /*schema*/) override {
        tables_ = tables;
    }
    [[nodiscard]] bool shares(const qvej::OutputFiles& /*files*/) const override { return false; }
    [[nodiscard]] std::unique_ptr<qvej::Sink> sink(std::size_t table) override {
        return std::make_unique<HoldingSink>(log_, tables_[table]->name);
    }
    void end(const qvej::Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(qvej::OutputFiles* /*with*/) override {
        return {};
    }

   private:
    Log& log_;
    std::vector<const qvej::Table*> tables_;
};

TEST(TableOutputs, ASinkIsMadeWithItsFirstRowAndLargeOnesFlushedWhenAllHoldTooMuch) {
    const jmap::test::ReadDocument read(
        R"({"":1,"x":[{"b":{"v":1}},{"c":{"v":1}},{"a":{"v":1}},{"b":{"v":2}},{"a":{"v":2}},{"a":{"v":3}}]})");
    const qvej::Document& document = read.document;
    const std::vector<const qvej::Table*> tables = read.tables();
    Log log;
    Holding destination(log);
    destination.open(tables, nullptr);
    qvej::SchemaBuilder facts(document, tables, {});
    qvej::TableOutputs outputs(
        document, tables, destination, 32 * kMiB,
        [](const qvej::Table& /*table*/) { return nullptr; }, &facts);
    qvej::TablePass pass(document, tables);
    for (qvej::PassItem item; pass.next(item);) {
        outputs.take({&item, 1});
    }
    EXPECT_EQ(log.calls, "made x_b\nmade x_c\nmade x_a\nflush x_b 20\nflush x_a 20\n");
    EXPECT_EQ(log.most, 41 * kMiB);
    log.calls.clear();
    outputs.end();
    EXPECT_EQ(log.calls, "made \nend \nend x_b\nend x_c\nend x_a\n");
    const qvej::Schema schema = facts.end();
    EXPECT_EQ(schema.tables[0].rows, 0U);
    EXPECT_EQ(schema.tables[1].rows, 2U);
    EXPECT_EQ(schema.tables[2].rows, 1U);
    EXPECT_EQ(schema.tables[3].rows, 3U);
}

// Its sinks hold nothing.
class Dropping final : public qvej::Destination {
   public:
    class Nothing final : public qvej::Sink {
       public:
        void row(const qvej::PassRow& /*row*/) override {}
        void end() override {}
    };
    void open(const std::vector<const qvej::Table*>& /*tables*/,
              const qvej::Schema* /*schema*/) override {}
    [[nodiscard]] bool shares(const qvej::OutputFiles& /*files*/) const override { return false; }
    [[nodiscard]] std::unique_ptr<qvej::Sink> sink(std::size_t /*table*/) override {
        return nullptr;
    }
    [[nodiscard]] std::unique_ptr<qvej::Sink> pieceSink(std::size_t /*table*/) const override {
        return std::make_unique<Nothing>();
    }
    void end(const qvej::Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(qvej::OutputFiles* /*with*/) override {
        return {};
    }
};

TEST(OutputWork, MayBeFullOfRejectedValues) {
    std::string text = "[";
    for (int i = 0; i < 70; ++i) {
        text += (i == 0 ? R"({"t":")" : R"(,{"t":")") + std::string(40000, 'x') + "\"}";  // cut
    }
    const jmap::test::ReadDocument read(text + "]");
    const std::vector<const qvej::Table*> tables = read.tables();
    const Dropping destination;
    qvej::OutputWork work(read.document, tables, destination, nullptr);
    qvej::TablePass pass(read.document, tables);
    std::vector<std::size_t> results;  // rejects of each
    for (qvej::PassItem item; pass.next(item);) {
        work.take(item);
        if (work.full()) {
            results.push_back(static_cast<qvej::OutputPieces&>(*work.result()).rejects.size());
        }
    }
    EXPECT_EQ(results, std::vector<std::size_t>(2, 32));
}

// Keeps what is written, of each table.
class Kept final : public qvej::Destination {
   public:
    void open(const std::vector<const qvej::Table*>& tables,
              const qvej::Schema* /*schema*/) override {
        tables_ = tables;
        texts.resize(tables.size());
        made.resize(tables.size());
    }
    [[nodiscard]] bool shares(const qvej::OutputFiles& /*files*/) const override { return false; }
    [[nodiscard]] std::unique_ptr<qvej::Sink> sink(std::size_t table) override {
        return std::make_unique<Counted>(
            *this, qvej::makeCsvSink(qvej::Writer(std::make_unique<Appending>(texts[table])),
                                     {.table = *tables_[table],
                                      .options = options_,
                                      .position = table,
                                      .resumed = made[table]++ != 0}));
    }
    [[nodiscard]] std::unique_ptr<qvej::Sink> pieceSink(std::size_t table) const override {
        ++madeForPieces;
        return qvej::makePieceSink(*qvej::findFormat("csv"),
                                   {.table = *tables_[table], .options = options_});
    }
    void end(const qvej::Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(qvej::OutputFiles* /*with*/) override {
        return {};
    }

    std::vector<std::string> texts;  // of each table
    std::vector<int> made;           // sinks of each
    mutable int madeForPieces = 0;   // sinks, of all
    std::size_t alive = 0;           // sinks
    std::size_t mostAlive = 0;

   private:
    class Appending final : public qvej::Target {
       public:
        explicit Appending(std::string& to) : to_(to) {}
        void write(const char* text, std::size_t size) override { to_.append(text, size); }

       private:
        std::string& to_;
    };
    class Counted final : public qvej::Sink {
       public:
        Counted(Kept& kept, std::unique_ptr<qvej::Sink> sink)
            : kept_(kept), sink_(std::move(sink)) {
            kept_.mostAlive = std::max(kept_.mostAlive, ++kept_.alive);
        }
        ~Counted() override { --kept_.alive; }
        void row(const qvej::PassRow& row) override { sink_->row(row); }
        void end() override { sink_->end(); }
        [[nodiscard]] std::size_t held() const override { return sink_->held(); }
        void flush() override { sink_->flush(); }
        void append(std::unique_ptr<qvej::Piece> piece) override {
            sink_->append(std::move(piece));
        }
        bool rest() override { return sink_->rest(); }

       private:
        Kept& kept_;
        std::unique_ptr<qvej::Sink> sink_;
    };

    qvej::FormatOptions options_;
    std::vector<const qvej::Table*> tables_;
};

// Of many tables that come one after the other few sinks are alive, and one that is woken goes on
// where it ended.  Those of tables that come in turns are left awake.
TEST(TableOutputs, SinksOfTablesThatAreDoneRest) {
    constexpr int kTables = 20'000;
    const struct {
        const char* name;
        int turns;
        std::size_t mostAlive;
        int mostMade;  // sinks, of all tables
    } cases[] = {{"in order", 1, 8192, kTables + 1}, {"in turns", 5, kTables, 2 * kTables}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string text = "[";
        for (int i = 0; i < c.turns * kTables; ++i) {
            text += "{\"t" + std::to_string(i % kTables) + "\":{\"v\":1}},";
        }
        const jmap::test::ReadDocument read(text + R"({"t0":{"v":"no"}}])");
        const std::vector<const qvej::Table*> tables = read.tables();
        Kept destination;
        destination.open(tables, nullptr);
        qvej::TableOutputs outputs(
            read.document, tables, destination, 32 * kMiB,
            [](const qvej::Table& /*table*/) { return nullptr; }, nullptr);
        qvej::TablePass pass(read.document, tables);
        for (qvej::PassItem item; pass.next(item);) {
            outputs.take({&item, 1});
        }
        outputs.end();
        EXPECT_LE(destination.mostAlive, c.mostAlive);
        EXPECT_LE(std::accumulate(destination.made.begin(), destination.made.end(), 0), c.mostMade);
        std::string first = "ordinal_root,ordinal_t0,v\r\n";
        for (int turn = 0; turn < c.turns; ++turn) {
            first += std::to_string(turn * kTables + 1) + "," + std::to_string(turn + 1) + ",1\r\n";
        }
        first += std::to_string(c.turns * kTables + 1) + "," + std::to_string(c.turns + 1);
        EXPECT_EQ(destination.texts[0], first + ",no\r\n");
        EXPECT_EQ(destination.alive, 0U);
    }
}

// A map with a table for each of the members t0, t1, ..., whose value v is a number.
std::string mapOfMembers(int tables) {
    std::string map = R"({"DATASETS":[)";
    for (int t = 0; t < tables; ++t) {
        const std::string name = "t" + std::to_string(t), path = "/root/" + name;
        map += (t == 0 ? "" : ",") + R"({"DSNAME":")"s + name + R"(","TABLEPATH":")" + path +
               R"(","VARIABLES":[{"NAME":"n","TYPE":"ORDINAL","PATH":"/root"},)"
               R"({"NAME":"v","TYPE":"NUMERIC","PATH":")" +
               path + "/v\"}]}";
    }
    return map + "]}";
}

// What a worker has of more tables than it keeps outputs of is given up between results, and their
// rows are those without a worker.  A result ends anywhere, also where a value has come for a row
// that is not complete.
TEST(OutputWork, OutputsOfManyTablesAreGivenUpBetweenResults) {
    constexpr int kTables = 4500;
    constexpr int kRows = 6 * kTables;
    std::string text = "[";
    for (int i = 0; i < kRows; ++i) {
        const int table = i % 8 == 0 ? i % 10 : i * 7 % kTables;  // a few come often
        text += (i == 0 ? "{\"t" : ",{\"t") + std::to_string(table) +
                "\":{\"v\":" + (i % 2 == 0 ? "\"no\"" : std::to_string(i)) + "}}";
    }
    jmap::test::ReadDocument read(text + "]");
    read.document.useMap(mapOfMembers(kTables));
    const std::vector<const qvej::Table*> tables = read.tables();
    // Rows and rejects, with a worker between where a result ends after so many items, or without.
    const auto written = [&](std::size_t items) {
        Kept destination;
        destination.open(tables, nullptr);
        std::string rejects;
        qvej::TableOutputs outputs(
            read.document, tables, destination, 32 * kMiB,
            [&](const qvej::Table& table) {
                return [&](const qvej::Row& row, const qvej::Rejected& rejected) {
                    rejects += table.name + " " + std::to_string(rejected.row) + " " +
                               std::to_string(row.cell(0).count) + " " +
                               std::string(rejected.text) + "\n";
                };
            },
            nullptr);
        qvej::OutputWork work(read.document, tables, destination, nullptr);
        qvej::TablePass pass(read.document, tables);
        std::size_t taken = 0;
        for (qvej::PassItem item; pass.next(item);) {
            if (items == 0) {
                outputs.take({&item, 1});
                continue;
            }
            work.take(item);
            if (++taken % items == 0) {
                outputs.take(static_cast<qvej::OutputPieces&>(*work.result()));
            }
        }
        outputs.take(static_cast<qvej::OutputPieces&>(*work.result()));
        outputs.end();
        EXPECT_EQ(destination.texts.size(), kTables);
        EXPECT_EQ(destination.madeForPieces > kTables, items != 0) << "given up and made again";
        destination.texts.push_back(rejects);
        return std::move(destination.texts);
    };
    const std::vector<std::string> expected = written(0);
    EXPECT_TRUE(expected[7].starts_with("n,v\r\n2,1\r\n4502,4501\r\n9002,9001\r\n"));
    EXPECT_TRUE(expected.back().starts_with("t0 1 1 no\n"));
    for (const std::size_t items : {1, 100, 6000}) {
        EXPECT_TRUE(written(items) == expected) << "results of " << items << " items";
    }
}

}  // namespace
