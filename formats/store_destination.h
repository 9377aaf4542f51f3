// All tables in one file or database, by the store of a module.
//
// A new file is made under a temporary name and renamed.  A database, and a file that is there
// already, are changed in one transaction; a link to such a file is followed.
//
// Tested by tests/tool/golden/dictionary.t
#pragma once

#include "formats/cleanup.h"
#include "formats/destination.h"
#include "formats/formats.h"
#include "formats/output_files.h"
#include "formats/store.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

// Where a store is.
struct StoreTarget {
    std::string text;  // as the user gives it
    bool file;         // it is a file; else the address of a database
    bool grows;        // a file that exists gets the tables too, unless `force` replaces it
};

// An address as messages may show it: without its password.
[[nodiscard]] std::string withoutPassword(const std::string& address);

class StoreDestination final : public Destination {
   public:
    StoreDestination(StoreTarget target, DestinationParms parms)
        : target_(std::move(target)), parms_(std::move(parms)) {}

    // What can be told of a file before there is anything to write.  Throws qvej::Error.
    static void checkFile(const StoreTarget& target, bool force, const Sources& sources);

    void open(const std::vector<const Table*>& tables, const Schema* schema) override;
    [[nodiscard]] bool shares(const OutputFiles& files) const override;
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] bool makesPieces() const override { return parms_.format.pieces; }
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override {
        return store_->pieceSink(table);
    }
    void end(const Schema& schema) override;
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* with) override;
    [[nodiscard]] std::vector<std::string> remarks() const override;

   private:
    StoreTarget target_;
    DestinationParms parms_;
    std::unique_ptr<OutputFiles> files_;      // of a new file, once it is open
    std::optional<cleanup::Output> cleanup_;  // of a database or a file that grows: for a signal
    std::unique_ptr<Store> store_;            // while it is open
    std::vector<std::string> remarks_;        // of the store, when it is not any more
};

}  // namespace qvej
