// One table as a file of that name.
//
// Tested by tests/tool/golden/dictionary.t
#pragma once

#include "formats/destination.h"
#include "formats/formats.h"
#include "formats/output_files.h"

#include <memory>
#include <string>
#include <utility>

namespace qvej {

class TableFile final : public Destination {
   public:
    TableFile(std::string path, DestinationParms parms)
        : path_(std::move(path)), parms_(std::move(parms)) {}

    // Throws when it is not one table.
    void open(const std::vector<const Table*>& tables, const Schema* schema) override;
    [[nodiscard]] bool shares(const OutputFiles& files) const override;
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] bool makesPieces() const override { return parms_.format.pieces; }
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override;
    void end(const Schema& /*schema*/) override {}
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* with) override;

   private:
    std::string path_;
    DestinationParms parms_;
    const Table* table_ = nullptr;
    const Schema* schema_ = nullptr;
    std::unique_ptr<OutputFiles> files_;  // once it is open
};

}  // namespace qvej
