// A map as tools compare and merge it: what its text says, without a document.
//
// Tested by tests/client/maps_test.cpp, tests/tool/golden/map_diff.t and
// tests/tool/golden/map_merge.t
#pragma once

#include "../document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// Texts are empty for what the map does not say.
struct MapColumn {
    std::string name;
    std::string path;  // with "/"
    ColumnType type;
    std::optional<uint64_t> length;         // LENGTH, at most what the engine takes
    std::optional<uint64_t> currentLength;  // CURRENT_LENGTH
    std::string format;                     // as a map writes it: ["comma",12,2]
    std::string informat;                   // likewise, "?" in front of the name: ["?date"]
    std::string label;
    std::string option;  // RETAIN, NORETAIN
};

struct MapTable {
    std::string name;  // not cut to 32 bytes
    std::string path;
    std::vector<MapColumn> columns;
};

using MapModel = std::vector<MapTable>;

// A map by its text and the tables that have been read from it.
//   inFront  columns of each table before those of the map: that of the text's name
MapModel mapModel(const Engine& engine, std::string_view text, const std::vector<Table>& tables,
                  std::size_t inFront = 0);

// A map by its text (UTF-8).  Throws MapError.
MapModel readMapModel(Engine& engine, std::string_view text);

// The map as a JSON document without blanks, control characters escaped.
std::string mapDocument(const MapModel& map);

// "ORDINAL", "NUMERIC", "CHARACTER".
std::string_view typeName(ColumnType type);

// A text as JSON has it, control characters escaped.
std::string jsonText(std::string_view text);

// "orders.id", control characters escaped.
std::string columnName(const MapTable& table, const MapColumn& column);

}  // namespace qvej
