// datapackage.json: what a directory holds, as a Data Package of Frictionless, for other tools and
// for the next run, which may remove what it lists.
//
//     {"qvejmap":{"version":"1.0.0","input":"orders.json","options":["--format=csv"]},
//     "resources":[
//     {"name":"orders","path":"orders.csv","format":"csv","rows":2,"bytes":77,
//     "modified":"2024-02-29T13:05:00.123456789Z"},
//     ...
//     ]}
//
// A resource is a line; `rows` and `modified` are ours, the other members are of the standard.
//
// Tested by tests/tool/golden/convert_again.t
#pragma once

#include "formats/file_state.h"
#include "formats/writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

inline constexpr const char* kPackageFile = "datapackage.json";

// What a package says of the run that wrote it.
struct PackageRun {
    std::string version;
    std::string input;                 // as the user names it
    std::vector<std::string> options;  // words of the command line
    bool titles = false;               // resources have the names of their tables as titles
};

class PackageWriter {
   public:
    // `out` must outlive this object.  All of these throw qvej::Error.
    PackageWriter(Writer& out, const PackageRun& run);
    // `file`: a name of uniqueFileNames().
    void add(std::string_view file, std::string_view table, std::string_view format, uint64_t rows,
             const FileState& state);
    void end();

   private:
    Writer& out_;
    bool titles_;
    bool first_ = true;
};

// The files that a package lists.  Nothing when the file is not one that a PackageWriter can have
// written: it is not there or not readable, no JSON, without our member, or names anything but
// files of its directory as we name them.  Starts an engine of its own.
[[nodiscard]] std::optional<std::vector<ListedFile>> readPackage(const std::string& path);

}  // namespace qvej
