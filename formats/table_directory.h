// Tables as files of a directory, one each, all in one format.
//
// Tested by tests/tool/golden/convert.t
#pragma once

#include "formats/destination.h"
#include "formats/formats.h"
#include "formats/output_files.h"

#include <optional>
#include <string>

namespace qvej {

class TableDirectory final : public Destination {
   public:
    // The directory is made when it is missing.  Files there are replaced with `force` only, and
    // never one of the `sources`.
    TableDirectory(std::string directory, const Format& format, FormatOptions formatOptions,
                   bool force, Sources sources);

    void open(const std::vector<const Table*>& tables) override;
    [[nodiscard]] bool shares(const OutputFiles& files) const override;
    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* with) override;

   private:
    std::string directory_;
    const Format& format_;
    FormatOptions formatOptions_;
    bool force_;
    Sources sources_;
    std::vector<const Table*> tables_;
    std::optional<OutputFiles> files_;  // once it is open
};

}  // namespace qvej
