// See table_outputs.h.
#include "formats/table_outputs.h"

#include "client/pass_pipe.h"

#include <algorithm>
#include <optional>
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

uint64_t rowsOf(std::span<const PassItem> items) {
    return static_cast<uint64_t>(
        std::count_if(items.begin(), items.end(),
                      [](const PassItem& item) { return item.kind == PassItem::ROW; }));
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
      places_(tables.size()),
      facts_(facts) {}

std::unique_ptr<TableOutputs::Output> TableOutputs::makeOutput(std::size_t table) {
    const Table& of = *tables_[table];
    return std::unique_ptr<Output>(
        new Output{destination_.sink(table), {document_, of, rejectsOf_(of)}, 0});
}

TableOutputs::Output& TableOutputs::outputOf(std::size_t table) {
    Place& place = places_[table];
    if (place.output == nullptr) {
        if (awake_.size() >= std::max(mostAwake_, 4 * resumed_)) {
            letIdleRest();
        }
        place.output = makeOutput(table);
        place.output->row.beginAfter(place.rows);
        resumed_ += std::exchange(place.rests, false) ? 1 : 0;
        awake_.push_back(table);
        count(*place.output);
    }
    return *place.output;
}

// Where tables come one after the other, those that are done need no memory.  Those with rows since
// the last time stay.  Where rows of many tables come in turns, more stay awake with each that had
// to be woken, so that few are.
void TableOutputs::letIdleRest() {
    std::erase_if(awake_, [&](std::size_t table) {
        Place& place = places_[table];
        Output& output = *place.output;
        if (std::exchange(output.busy, false) || !output.row.replaceable() ||
            !output.sink->rest()) {
            return false;
        }
        held_ -= output.held;
        place.rows = output.row.rows();
        place.rests = true;
        place.output.reset();
        return true;
    });
    mostAwake_ = std::max(kLeastAwake, 2 * awake_.size());
}

void TableOutputs::take(std::span<const PassItem> items) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        const PassItem& item = items[i];
        if (i + kItemsAhead < items.size()) {
            prefetchTexts(items[i + kItemsAhead]);
        }
        Output& output = outputOf(item.table);
        output.busy = true;
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
    if (facts_ != nullptr && pieces.facts) {
        facts_->add(*pieces.facts);
    }
    for (const std::unique_ptr<KeptReject>& reject : pieces.rejects) {
        const std::size_t table = reject->table();
        reject->giveTo(rejectsOf_(*tables_[table]), outputOf(table).row.rows());
    }
    for (OutputPieces::OfTable& of : pieces.tables) {
        Output& output = outputOf(of.table);
        output.busy = true;
        output.row.beginAfter(output.row.rows() + of.rows);
        output.sink->append(std::move(of.piece));
        countAndFlush(output);
    }
}

void TableOutputs::takeAll(TablePass& pass, unsigned threads,
                           const std::function<void(uint64_t)>& onRows) {
    const auto tell = [&](uint64_t rows) {
        if (onRows) {
            onRows(rows);
        }
    };
    if (!destination_.makesPieces() || !pass.works()) {
        runPass(pass, threads, [&](std::span<const PassItem> items) {
            take(items);
            tell(rowsOf(items));
        });
        return;
    }
    const std::optional<const SchemaBuilder> noRows =
        facts_ == nullptr ? std::nullopt : std::optional<const SchemaBuilder>(*facts_);
    pass.work(
        [&] {
            return std::make_unique<OutputWork>(document_, tables_, destination_,
                                                noRows ? &*noRows : nullptr);
        },
        [&](std::unique_ptr<RowResult> result) {
            auto& pieces = static_cast<OutputPieces&>(*result);
            take(pieces);
            tell(pieces.rows);
        });
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
    flushFrom(mostHeld_ / places_.size() / 2);
}

void TableOutputs::flush() {
    flushFrom(1);
}

void TableOutputs::flushFrom(std::size_t least) {
    for (const std::size_t table : awake_) {
        Output& output = *places_[table].output;
        if (output.held >= least) {
            output.sink->flush();
            count(output);
        }
    }
}

void TableOutputs::end() {
    awake_.clear();
    for (std::size_t table = 0; table < places_.size(); ++table) {
        Place& place = places_[table];
        if (!place.rests) {
            (place.output == nullptr ? makeOutput(table) : std::move(place.output))->sink->end();
        }
    }
}

}  // namespace qvej
