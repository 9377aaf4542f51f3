// See output_work.h.
#include "formats/output_work.h"

#include <utility>

namespace qvej {

KeptReject::KeptReject(std::size_t table, const Row& row, const Rejected& rejected)
    : table_(table),
      columns_(row.columns()),
      column_(rejected.column),
      row_(rejected.row),
      text_(rejected.text),
      reason_(rejected.reason),
      cut_(rejected.cut) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i].type == ColumnType::ORDINAL) {
            ordinals_.push_back(row.cell(i));
            ordinals_.back().text = {};
        }
    }
    source_ = row.cell(0).text;
}

Cell KeptReject::cell(std::size_t column) const {
    std::size_t ordinal = 0;
    for (std::size_t i = 0; i < column; ++i) {
        ordinal += columns_[i].type == ColumnType::ORDINAL ? 1 : 0;
    }
    return columns_[column].type == ColumnType::ORDINAL ? ordinals_[ordinal]
           : column == 0                                ? Cell{Cell::TEXT, 0, source_}
                                                        : Cell{};
}

void KeptReject::giveTo(const RejectHandler& handler, uint64_t rowsBefore) const {
    if (handler) {
        handler(*this, {column_, rowsBefore + row_, text_, reason_, cut_});
    }
}

OutputWork::OutputWork(const Document& document, const std::vector<const Table*>& tables,
                       const Destination& destination, const SchemaBuilder* noRows)
    : document_(document),
      tables_(tables),
      destination_(destination),
      noRows_(noRows),
      outputs_(tables.size()) {}

OutputWork::Output& OutputWork::outputOf(std::size_t table) {
    std::unique_ptr<Output>& output = outputs_[table];
    if (output == nullptr) {
        const RejectHandler keep = [this, table](const Row& row, const Rejected& rejected) {
            if (!passesOver_) {
                rejects_.push_back(std::make_unique<KeptReject>(table, row, rejected));
                held_ += sizeof(KeptReject) + rejected.text.size();
            }
        };
        output.reset(new Output{{document_, *tables_[table], keep}, destination_.pieceSink(table)});
        made_.push_back(table);
    }
    return *output;
}

void OutputWork::begin(JMAPPassh /*walk*/) {
    for (const std::size_t table : made_) {
        outputs_[table]->row.forgetNotNumbers();
    }
}

void OutputWork::take(const PassItem& item) {
    Output& output = outputOf(item.table);
    if (!output.row.take(item)) {
        return;
    }
    if (output.row.rows() == 1) {
        used_.push_back(item.table);
    }
    if (noRows_ != nullptr) {
        if (!facts_) {
            facts_.emplace(*noRows_);
        }
        facts_->take(item.table, output.row);
    }
    output.sink->row(output.row);
    const std::size_t held = output.sink->held();
    held_ += held - output.held;
    output.held = held;
}

// A value may have come before that belongs to a row to come.
void OutputWork::passOver(const PassItem& item) {
    Output& output = outputOf(item.table);
    passesOver_ = true;
    output.row.take(item);
    output.row.beginAfter(0);
    passesOver_ = false;
}

std::unique_ptr<RowResult> OutputWork::result() {
    auto result = std::make_unique<OutputPieces>();
    for (const std::size_t table : used_) {
        Output& output = *outputs_[table];
        const uint64_t rows = output.row.rows();
        result->tables.push_back({table, rows, output.sink->piece()});
        result->rows += rows;
        output.row.beginAfter(0);
        output.held = output.sink->held();
    }
    result->rejects = std::exchange(rejects_, {});
    if (facts_) {
        result->facts = facts_->takeBatch(*noRows_);
    }
    used_.clear();
    held_ = 0;
    if (made_.size() > kMostOutputs) {
        dropOutputs();
    }
    return result;
}

// Of many tables most are small, and other parts have others.
void OutputWork::dropOutputs() {
    std::erase_if(made_, [&](std::size_t table) {
        if (!outputs_[table]->row.replaceable()) {
            return false;
        }
        outputs_[table].reset();
        return true;
    });
}

}  // namespace qvej
