// The actions of the transitions: they make tables and columns and store their properties.
//
// An action works on the table made last, and on its column made last.  It returns QV_OK, QV_NOMEM,
// or a JMAP_MAP_ code, which it has stored in `vrc`.
//
// Tested by tests/mapdoc/map_reader_test.cpp
#pragma once

#include "core/context.h"

#include <string_view>

namespace jmap {

// The value of an event.
struct TOKEN {
    std::string_view text{};  // of a string
    int64_t number = 0;       // of an integer
};

using ACTION = QVStatus (*)(JMAP_PRIVATE* p, const TOKEN& token);

// Ends the parse with a JMAP_MAP_ code.
[[nodiscard]] QVStatus reject(JMAP_PRIVATE* p, QVStatus code);

// A string that is no key of the state: rejected with the state's code.
[[nodiscard]] QVStatus unknownKey(JMAP_PRIVATE* p, const TOKEN& token);

// Beginnings and ends.
[[nodiscard]] QVStatus newUserMap(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus newTable(JMAP_PRIVATE* p, const TOKEN& token);  // JMAP_MAP_NOMEM
[[nodiscard]] QVStatus newColumn(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus endColumn(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus endTable(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus endTables(JMAP_PRIVATE* p, const TOKEN& token);

// Properties of a table.
[[nodiscard]] QVStatus setDsName(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setTablePath(JMAP_PRIVATE* p, const TOKEN& token);

// Properties of a column.
[[nodiscard]] QVStatus setName(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setType(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setPath(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setLength(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setFormat(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setFormatWidth(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setFormatDec(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setInformat(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setInformatWidth(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setInformatDec(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setLabel(JMAP_PRIVATE* p, const TOKEN& token);
[[nodiscard]] QVStatus setOption(JMAP_PRIVATE* p, const TOKEN& token);

}  // namespace jmap
