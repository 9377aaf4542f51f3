// What a destination is asked for, and when.
#include "formats/table_outputs.h"

#include "tests/client/read_document.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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

}  // namespace
