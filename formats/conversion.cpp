// See conversion.h.
#include "formats/conversion.h"

#include "client/table_pass.h"

#include <algorithm>
#include <utility>

namespace qvej {

namespace {

void checkRoomForTypes(const Document& document, const std::vector<const Table*>& tables,
                       const SchemaOptions& options) {
    document.checkMemory("types and keys", SchemaBuilder::sizeFor(tables, options));
}

}  // namespace

TableConversion::TableConversion(const Document& document, std::vector<const Table*> tables,
                                 const ConversionTarget& target, ConversionOptions options)
    : document_(document),
      tables_(std::move(tables)),
      format_(*target.format),
      packed_(target.options.packing != Packing::NONE),
      options_(std::move(options)) {
    if (format_.typed) {
        findTypes();
    }
    destination_ = makeDestination(target);
    destination_->open(tables_, schema_ ? &*schema_ : nullptr);
}

void TableConversion::findTypes() {
    TablePass pass(document_, tables_, options_.retain, options_.carry);
    checkRoomForTypes(document_, tables_, options_.schema);
    begin(ConversionPhase::TYPES);
    schema_ = schemaOf(document_, tables_, pass, options_.threads, options_.schema,
                       [this](uint64_t rows) { addRows(rows); });
    begin(ConversionPhase::END);
}

void TableConversion::write(const TableOutputs::RejectsOf& rejectsOf) {
    std::optional<SchemaBuilder> facts;
    if (!schema_) {
        SchemaOptions typesAndKeys = options_.schema;
        typesAndKeys.counts = false;
        checkRoomForTypes(document_, tables_, typesAndKeys);
        facts.emplace(document_, tables_, typesAndKeys);
    }
    const auto noRejects = [](const Table&) { return RejectHandler(); };
    TableOutputs outputs(document_, tables_, *destination_, mostHeld(),
                         rejectsOf ? rejectsOf : noRejects, facts ? &*facts : nullptr);
    std::optional<TablePass> pass(std::in_place, document_, tables_, options_.retain,
                                  options_.carry);
    if (!packed_) {  // a flush ends what is packed
        pass->flushInTime([&] { outputs.flush(); });
    }
    begin(ConversionPhase::ROWS);
    outputs.takeAll(*pass, options_.threads, options_.onRows);
    begin(ConversionPhase::END);
    outputs.end();
    if (options_.losses) {
        countLosses(*pass);
    }
    pass.reset();  // what follows needs its memory
    if (!schema_) {
        document_.checkMemory("types and keys");
        schema_ = facts->end();
        facts.reset();
    }
    destination_->end(*schema_);
}

void TableConversion::countLosses(const TablePass& pass) {
    const bool alldata = std::any_of(tables_.begin(), tables_.end(),
                                     [](const Table* table) { return table->alldata; });
    lost_ = alldata ? 0 : lostOf(document_, pass, tables_);
    losses_ = rowLossesOf(pass, tables_);
}

void TableConversion::begin(ConversionPhase phase) const {
    if (options_.onPhase) {
        options_.onPhase(phase);
    }
}

void TableConversion::addRows(uint64_t rows) const {
    if (options_.onRows) {
        options_.onRows(rows);
    }
}

// Bytes of memory for what is on its way to files: no large part of what there is.
std::size_t TableConversion::mostHeld() const {
    return options_.memory != 0 ? std::min<std::size_t>(format_.mostHeld, options_.memory / 8)
                                : format_.mostHeld;
}

}  // namespace qvej
