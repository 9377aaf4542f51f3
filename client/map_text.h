// What the text of a map says and the engine's reading of it does not keep: where things stand,
// CURRENT_LENGTH, names before they are cut, and LENGTH before a default takes its place.
//
// Tested by tests/tool/golden/map_check.t and tests/tool/golden/map_merge.t
#pragma once

#include "document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A FORMAT or INFORMAT.
struct ConversionText {
    Spot at;                     // of its name
    std::size_t nameLength = 0;  // bytes, without a "?" in front
};

struct ColumnText {
    Spot at;  // of its '{'
    ConversionText format, informat;
    std::optional<uint64_t> length;         // as the engine takes it: 1 to 32767
    std::optional<uint64_t> currentLength;  // not negative
};

struct TableText {
    Spot at;
    std::string name;
    std::vector<ColumnText> columns;
};

// The tables of a map, in order, as many as the engine finds in it with as many columns each.
// `text` is UTF-8 and a map that the engine has accepted.
std::vector<TableText> readMapText(const Engine& engine, std::string_view text);

}  // namespace qvej
