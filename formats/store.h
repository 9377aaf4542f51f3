// Takes all tables of a document into one file or database.
//
//     std::unique_ptr<Store> store = module.openStore(parms);
//     for each table, when its first row comes or at the end:
//         std::unique_ptr<Sink> sink = store->sink(i);
//         sink->row(...); ...
//         sink->end();
//     store->end();
//     store->commit();
//
// The calls come from one thread at a time.
//
// Tested by tests/formats/conformance.py
#pragma once

#include "client/schema/schema.h"
#include "formats/formats.h"
#include "formats/sink.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// All must outlive the store.
struct StoreParms {
    std::string target;       // the file, or the address of the database
    std::string shownTarget;  // what messages call it
    bool isNew;               // the file was made for this store, and goes away when anything fails
    const Schema& schema;
    const FormatOptions& options;
};

// Nothing of it can be seen before `commit`; without that, its end takes everything back.  All
// throw qvej::Error.
class Store {
   public:
    Store() = default;
    virtual ~Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // The sink of a table, by its position in the schema; once each.
    [[nodiscard]] virtual std::unique_ptr<Sink> sink(std::size_t table) = 0;

    // Of a format whose sinks make pieces: as of a Destination.
    [[nodiscard]] virtual std::unique_ptr<Sink> pieceSink(std::size_t /*table*/) const {
        return nullptr;
    }

    // When all sinks have ended: what is left to do, such as keys and views.
    virtual void end() = 0;

    // After `end`.  Nothing can fail after it.
    virtual void commit() = 0;

    // Sentences on what differs from the schema, such as names that had to change.  Known when the
    // store is open.
    [[nodiscard]] virtual std::vector<std::string> remarks() const { return {}; }
};

}  // namespace qvej
