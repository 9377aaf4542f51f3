// See option_owners.h.
#include "tools/cli/options/option_owners.h"

#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

constexpr std::string_view kSeparator = ", ";

constexpr Owner kOwners[] = {
    {"--names", "tables", true},
    {"--columns", "tables", true},
    {"--output", "map, map merge, convert", true},
    {"--exact", "map", true},
    {"--account", "convert, check", true},
    {"--alldata", "convert", true},
    {"--threads", "convert", true},
    {"--limit", "read", true},
    {"--map", "tables, read, convert, check", true},
    {"--rejects", "read, convert", true},
    {"--format", "read, convert", false},
    {"--null", "read, convert", true},
    {"--retain", "read, convert, check", false},
    {"--ordinals", "tables, map, read, convert", false},
    {"--alldata-name", "tables, read, convert", false},
    {"--quiet", "tables, convert, check", false},
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
