// See table_outputs.h.
#include "formats/table_outputs.h"

#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kItemsAhead = 6;

// The texts are in the records, which the other thread has read: this one's cache lacks them.
void prefetchTexts(const PassItem& item) {
    for (const PassCell& cell : item.cells) {
        __builtin_prefetch(cell.text);  // of a count any address, which does no harm
    }
}

}  // namespace

TableOutputs::TableOutputs(const Document& document, const std::vector<const Table*>& tables,
                           Destination& destination, std::size_t mostHeld, RejectsOf rejectsOf,
                           SchemaBuilder* facts)
    : document_(document),
      tables_(tables),
      destination_(destination),
      mostHeld_(mostHeld),
      rejectsOf_(std::move(rejectsOf)),
      outputs_(tables.size()),
      facts_(facts) {}

TableOutputs::Output& TableOutputs::outputOf(std::size_t table) {
    std::unique_ptr<Output>& output = outputs_[table];
    if (output == nullptr) {
        const Table& of = *tables_[table];
        output.reset(new Output{destination_.sink(table), {document_, of, rejectsOf_(of)}, 0});
        count(*output);
    }
    return *output;
}

void TableOutputs::take(std::span<const PassItem> items) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        const PassItem& item = items[i];
        if (i + kItemsAhead < items.size()) {
            prefetchTexts(items[i + kItemsAhead]);
        }
        Output& output = outputOf(item.table);
        if (output.row.take(item)) {
            writeRow(item.table, output);
        }
    }
}

void TableOutputs::writeRow(std::size_t table, Output& output) {
    if (facts_ != nullptr) {
        facts_->take(table, output.row);
    }
    output.sink->row(output.row);
    countAndFlush(output);
}

void TableOutputs::take(OutputPieces& pieces) {
    if (facts_ != nullptr && pieces.facts != nullptr) {
        facts_->add(*pieces.facts);
    }
    for (const std::unique_ptr<KeptReject>& reject : pieces.rejects) {
        const std::size_t table = reject->table();
        reject->giveTo(rejectsOf_(*tables_[table]), outputOf(table).rows);
    }
    for (OutputPieces::OfTable& of : pieces.tables) {
        Output& output = outputOf(of.table);
        output.rows += of.rows;
        output.sink->append(std::move(of.piece));
        countAndFlush(output);
    }
}

void TableOutputs::countAndFlush(Output& output) {
    count(output);
    if (held_ > mostHeld_) {
        flushLarge();
    }
}

void TableOutputs::count(Output& output) {
    const std::size_t held = output.sink->held();
    held_ += held - output.held;
    output.held = held;
}

// Those that hold at least half of an equal share: what is left is less than half of the limit, and
// small tables need not be written piece by piece.
void TableOutputs::flushLarge() {
    flushFrom(mostHeld_ / outputs_.size() / 2);
}

void TableOutputs::flush() {
    flushFrom(1);
}

void TableOutputs::flushFrom(std::size_t least) {
    for (const std::unique_ptr<Output>& output : outputs_) {
        if (output != nullptr && output->held >= least) {
            output->sink->flush();
            count(*output);
        }
    }
}

void TableOutputs::end() {
    for (std::size_t table = 0; table < outputs_.size(); ++table) {
        outputOf(table).sink->end();
        outputs_[table].reset();
    }
}

}  // namespace qvej
