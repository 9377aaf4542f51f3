// The tables of a document on their way to where they are kept.
//
//     ConversionTarget target = {.out = "orders.db", .format = findFormat("sqlite")};
//     checkTarget(target);                                 // before the document is read
//     TableConversion conversion(document, tables, target);
//     conversion.write();
//     conversion.destination().commit(nullptr);
//     ... conversion.schema().tables[0].rows ...
//
// Nothing is there before `commit`, and what was begun goes away with the object.
//
// Tested by tests/formats/conversion_test.cpp, tests/formats/conversion_threads_test.cpp and
// tests/tool/golden/convert.t
#pragma once

#include "client/account.h"
#include "client/document.h"
#include "client/row.h"
#include "client/schema/schema.h"
#include "formats/conversion_target.h"
#include "formats/destination.h"
#include "formats/table_outputs.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qvej {

enum class ConversionPhase : uint8_t {
    TYPES,  // are found, of formats that must know them first
    ROWS,   // are written
    END     // of the phase before
};

struct ConversionOptions {
    bool retain = false;  // as of TablePass
    bool carry = false;
    unsigned threads = 1;
    uint64_t memory = 0;  // bytes that the process may hold; 0: any number
    SchemaOptions schema = {};
    bool losses = true;  // are counted
    // Told which phase begins, and how many further rows have come.  The latter comes from one
    // thread at a time, which may be another than the calling one.  What they throw ends the
    // conversion.
    std::function<void(ConversionPhase phase)> onPhase = {};
    std::function<void(uint64_t rows)> onRows = {};
};

class TableConversion {
   public:
    // Finds types and keys when the format needs them, and opens the destination.  `tables`: of the
    // document, which must outlive this object; ALLDATA may be one.  All throw Error.
    TableConversion(const Document& document, std::vector<const Table*> tables,
                    const ConversionTarget& target, ConversionOptions options = {});
    TableConversion(const TableConversion&) = delete;
    TableConversion& operator=(const TableConversion&) = delete;

    // Writes all rows, once.  `rejectsOf`: what takes the rejected values of a table; empty:
    // nothing does.
    void write(const TableOutputs::RejectsOf& rejectsOf = {});

    // Takes the commit after that, and has remarks then.
    [[nodiscard]] Destination& destination() { return *destination_; }

    // ---- after `write` ----

    // Each table with its rows, in their order.
    [[nodiscard]] const Schema& schema() const { return *schema_; }

    // Values that the rows lose, and values in no row: see account.h.  0 when they are not counted;
    // with ALLDATA none are in no row.
    [[nodiscard]] const RowLosses& losses() const { return losses_; }
    [[nodiscard]] uint64_t lost() const { return lost_; }

   private:
    void findTypes();
    void countLosses(const TablePass& pass);
    void begin(ConversionPhase phase) const;
    void addRows(uint64_t rows) const;
    [[nodiscard]] std::size_t mostHeld() const;

    const Document& document_;
    const std::vector<const Table*> tables_;
    const Format& format_;
    const bool packed_;
    const ConversionOptions options_;
    std::optional<Schema> schema_;
    std::unique_ptr<Destination> destination_;
    RowLosses losses_;
    uint64_t lost_ = 0;
};

}  // namespace qvej
