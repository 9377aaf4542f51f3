// datapackage.json: what a directory holds, as a Data Package of Frictionless, for other tools and
// for the next run, which may remove what it lists.
//
//     {"qvejmap":{"version":"1.0.0","input":"orders.json","options":["--format=csv"]},
//     "resources":[
//     {"name":"orders","title":"orders","path":"orders.csv","format":"csv","rows":2,"bytes":77,
//     "modified":"2024-02-29T13:05:00.123456789Z","schema":{"fields":[
//       {"name":"ordinal_orders","type":"integer","path":"/root/orders"},
//       {"name":"id","type":"integer","originalName":"id","path":"/root/orders/id"},
//     ...],"missingValues":[""],"primaryKey":["ordinal_orders"],"foreignKeys":[
//     {"fields":["ordinal_root"],"reference":{"resource":"root","fields":["ordinal_root"]}}]}},
//     ...
//     ]}
//
// `rows`, `modified`, `originalName` and the `path` of a field are ours, the other members are of
// the standard.
//
// Tested by tests/tool/golden/convert_again.t
#pragma once

#include "client/schema/schema.h"
#include "formats/file_state.h"
#include "formats/formats.h"
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
};

class PackageWriter {
   public:
    // `files`: names of uniqueFileNames() for the tables of the schema.  All must outlive this
    // object.  All of these throw qvej::Error.
    PackageWriter(Writer& out, const PackageRun& run, const Schema& schema,
                  const std::vector<std::string>& files, const Format& format,
                  const FormatOptions& options);
    // The file of a table, by its position.
    void add(std::size_t table, const FileState& state);
    void end();

   private:
    void putSchema(const TableSchema& table);
    void putField(const Column& column, const DataType& type);
    void putKeys(const TableSchema& table);
    void putNames(std::string_view member, const std::string& name);
    [[nodiscard]] std::string resourceName(std::size_t table) const;

    Writer& out_;
    const Schema& schema_;
    const std::vector<std::string>& files_;
    const Format& format_;
    const FormatOptions& options_;
    bool first_ = true;
};

// The files that a package lists.  Nothing when the file is not one that a PackageWriter can have
// written: it is not there or not readable, no JSON, without our member, or names anything but
// files of its directory as we name them.  Starts an engine of its own.
[[nodiscard]] std::optional<std::vector<ListedFile>> readPackage(const std::string& path);

}  // namespace qvej
