// See option_owners.h.
#include "tools/cli/options/option_owners.h"

#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

constexpr std::string_view kSeparator = ", ";

// The verbs that read a document.
constexpr std::string_view kReaders =
    "tables, map, map check, map explain, read, convert, report, diagram, records, check";
constexpr std::string_view kShapers =
    "tables, map, map check, map explain, read, convert, report, diagram, records, shape, check";

// Those that walk through its text at least.
constexpr std::string_view kWalkers =
    "tables, map, map check, map explain, read, convert, report, diagram, find, records, shape, "
    "check";

constexpr Owner kOwners[] = {
    {"--names", "tables"},
    {"--columns", "tables"},
    {"--output", "map, map merge, shape, convert, report, diagram"},
    {"--exact", "map"},
    {"--compact", "map, map merge"},
    {"--verbose", "map check"},
    {"--account", "convert, check"},
    {"--alldata", "convert"},
    {"--per-file", "convert"},
    {"--threads", "convert"},
    {"--plan", "read, convert"},
    {"--limit", "read, find"},
    {"--value", "find"},
    {"--regex", "find"},
    {"--ignore-case", "find"},
    {"--table", "tables, map, convert, report, diagram"},
    {"--path", "tables, map, convert, report, diagram, find"},
    {"--key-names", kShapers},
    {"--key-containers", kShapers},
    {"--fixed-length", kShapers},
    {"--inline-columns", kShapers},
    {"--map", "tables, map explain, read, convert, report, diagram, check"},
    {"--rejects", "read, convert"},
    {"--format", "read, convert, tables, diagram"},
    {"--null", "read, convert"},
    {"--gzip", "convert"},
    {"--zstd", "convert"},
    {"--dates", "convert"},
    {"--schema", "convert"},
    {"--replace", "convert"},
    {"--append", "convert"},
    {"--retain", "read, convert, report, check"},
    {"--carry", "read, convert, report, check"},
    {"--ordinals", "tables, map, read, convert, report, diagram"},
    {"--alldata-name", "tables, read, convert"},
    {"--naming", "tables, read, convert, report, diagram"},
    {"--force", "map, map merge, shape, read, convert, report, diagram"},
    {"--lines", kWalkers},
    {"--skip-bad-lines", "tables, map, read, convert, report, diagram, find, records, check"},
    {"--skip-bad-files", "tables, map, convert, report, diagram, find, check"},
    {"--encoding", kWalkers},
    {"--invalid", kWalkers},
    {"--depth", kWalkers},
    {"--max-paths", kReaders},
    {"--compress", kReaders},
    {"--memory", kReaders},
    {"--keep-free", kReaders},
    {"--cache", kReaders},
    {"--shape", kReaders},
    {"--rows", kReaders},
    {"--inline", kReaders},
    {"--as-text", kReaders},
    {"--drop", kReaders},
    {"--only", kReaders},
    {"--keep", kReaders},
    {"--drop-empty", kReaders},
    {"--debug", kReaders},
    {"--progress", kShapers},
};

}  // namespace

std::span<const Owner> optionOwners() {
    return kOwners;
}

bool owns(const Verb& verb, const Owner& owner) {
    for (std::string_view rest = owner.verbs; !rest.empty();) {
        const std::string_view name = rest.substr(0, rest.find(kSeparator));
        if (name == verb.name) {
            return true;
        }
        rest.remove_prefix(std::min(rest.size(), name.size() + kSeparator.size()));
    }
    return false;
}

}  // namespace qvej::cli
