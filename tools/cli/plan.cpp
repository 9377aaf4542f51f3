// See plan.h.
#include "tools/cli/plan.h"

#include "client/parts/input_parts.h"
#include "client/path_names.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"

#include <string_view>

namespace qvej::cli {

namespace {

// The name that placeholders of empty objects and arrays have.  They have statistics of their own,
// so that a member of this name may get a length that cuts it.
constexpr std::string_view kPlaceholder = "FAKE";

std::string whyCounted(const Column& column) {
    const bool converted = !column.format.name.empty() || !column.informat.name.empty();
    if (column.type == ColumnType::NUMERIC && converted) {
        return "its numbers that doubles do not keep are counted";
    }
    if (column.type == ColumnType::CHARACTER && column.lengthFromDocument &&
        lastPiece(column.path) == kPlaceholder) {
        return "it has no LENGTH";
    }
    return {};
}

}  // namespace

std::string whyNotStreamed(const Options& options) {
    return options.carry                 ? "--carry needs them"
           : options.retain              ? "--retain needs them"
           : options.alldata             ? "ALLDATA needs them"
           : options.account             ? "--account needs them"
           : options.limit != UINT64_MAX ? "--limit needs them"
           : options.format->typed       ? "types and keys are found first"
           : options.map.empty()         ? "the map is made from the whole document"
                                         : "";
}

std::string whyRecords(const ReadingOptions& options) {
    return !options.debug.empty()   ? "--debug needs them"
           : !options.cache.empty() ? "--cache needs them"
           : options.compress       ? "--compress needs them"
           : options.skipBadLines   ? "--skip-bad-lines needs them"
                                    : "";
}

std::string whyCounted(const Document& document, const std::string& table) {
    const Table* const only = table.empty() ? nullptr : document.find(table);
    if (only != nullptr && only->alldata) {
        return "ALLDATA needs them";
    }
    for (const Table& of : document.tables()) {
        for (const Column& column : of.columns) {
            if (const std::string why = whyCounted(column); !why.empty()) {
                return visible(of.name) + "." + column.name + ": " + why;
            }
        }
    }
    return {};
}

std::string whyOnce(const InputList& inputs) {
    for (const std::string& file : inputs.files) {
        if (!rereadableBytes({{file}, false})) {
            return (file == "-" ? "standard input" : file) + " cannot be read again";
        }
    }
    return {};
}

void tellPlan(const ReadingOptions& options, const std::string& plan) {
    if (options.plan) {
        tellPlain("plan: " + plan);
    }
}

}  // namespace qvej::cli
