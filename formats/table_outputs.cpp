// See table_outputs.h.
#include "formats/table_outputs.h"

#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kMostBuffered = std::size_t{32} << 20;  // bytes of all buffers
constexpr std::size_t kItemsAhead = 6;

// The texts are in the records, which the other thread has looked at, not this one.
void prefetchTexts(const qvej::PassItem& item) {
    for (const qvej::PassCell& cell : item.cells) {
        __builtin_prefetch(cell.text);  // of a count: anything, which does no harm
    }
}

}  // namespace

TableOutputs::Output::Output(TableOutputs& all, std::size_t table)
    : writer(all.files_.writer(table)),
      sink(all.format_.make(writer, all.formatOptions_)),
      row(all.document_, *all.tables_[table], all.rejectsOf_(*all.tables_[table])) {
    sink->begin(all.tables_[table]->columns);
}

TableOutputs::TableOutputs(const qvej::Document& document,
                           const std::vector<const qvej::Table*>& tables, OutputFiles& files,
                           const Format& format, const FormatOptions& formatOptions,
                           RejectsOf rejectsOf)
    : document_(document),
      tables_(tables),
      files_(files),
      format_(format),
      formatOptions_(formatOptions),
      rejectsOf_(std::move(rejectsOf)),
      outputs_(tables.size()),
      rows_(tables.size()) {}

TableOutputs::Output& TableOutputs::outputOf(std::size_t table) {
    std::unique_ptr<Output>& output = outputs_[table];
    if (output == nullptr) {
        output = std::make_unique<Output>(*this, table);
        buffered_ += output->writer.capacity();
    }
    return *output;
}

void TableOutputs::take(std::span<const qvej::PassItem> items) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        const qvej::PassItem& item = items[i];
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
    const std::size_t before = output.writer.capacity();
    output.sink->row(output.row);
    ++rows_[table];
    buffered_ += output.writer.capacity() - before;
    if (buffered_ > kMostBuffered) {
        releaseAll();
    }
}

void TableOutputs::releaseAll() {
    for (const std::unique_ptr<Output>& output : outputs_) {
        if (output != nullptr) {
            output->writer.release();
        }
    }
    buffered_ = 0;
}

void TableOutputs::end() {
    for (std::size_t table = 0; table < outputs_.size(); ++table) {
        Output& output = outputOf(table);
        output.sink->end();
        output.writer.release();
        outputs_[table].reset();
    }
}

}  // namespace qvej
