// Tables as files of a directory, one each, all in one format, and a datapackage.json that lists
// them.
//
// Tested by tests/tool/golden/convert.t
#pragma once

#include "formats/data_package.h"
#include "formats/destination.h"
#include "formats/formats.h"
#include "formats/output_files.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

class TableDirectory final : public Destination {
   public:
    // The directory is made when it is missing.  `force` also removes files that an earlier run has
    // listed.
    //   run  what the list says of this run
    TableDirectory(std::string directory, DestinationParms parms, PackageRun run)
        : directory_(std::move(directory)), parms_(std::move(parms)), run_(std::move(run)) {}

    void open(const std::vector<const Table*>& tables, const Schema* schema) override;
    [[nodiscard]] bool shares(const OutputFiles& files) const override;
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] bool makesPieces() const override { return parms_.format.pieces; }
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override;
    void end(const Schema& schema) override;
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* with) override;

    [[nodiscard]] std::vector<std::string> remarks() const override;

   private:
    void removeEarlier();

    std::string directory_;
    DestinationParms parms_;
    PackageRun run_;
    // False when the directory had files and no list of ours: then files of the earlier run that
    // are not replaced stay.
    bool earlierKnown_ = true;
    std::size_t cutNames_ = 0;  // files whose names are cut, since file systems take no longer ones
    std::vector<const Table*> tables_;
    std::vector<bool> begun_;  // tables that a sink was made for
    const Schema* schema_ = nullptr;
    std::optional<OutputFiles> files_;  // once it is open: of the tables and, last, the list
};

}  // namespace qvej
