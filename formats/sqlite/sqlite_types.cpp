// See sqlite_types.h.
#include "formats/sqlite/sqlite_types.h"

namespace qvej {

namespace {

constexpr std::size_t kColumns = 2000;  // the library's limit, unless it was built with another
constexpr std::size_t kJoined = 64;     // likewise, and that one is fixed

}  // namespace

const DatabaseLimits& sqliteLimits() {
    static const DatabaseLimits limits = {
        .product = "SQLite",
        .tableNames = {.same = NameRules::ASCII,
                       .forbidden = kNul,
                       .forbiddenStart = "sqlite_",
                       .mayBeEmpty = true},
        .columnNames = {.same = NameRules::ASCII, .forbidden = kNul, .mayBeEmpty = true},
        .columns = kColumns,
        .joined = kJoined,
        .emptyTables = false,
        .laterKeys = false,
        .fewTypes = true,
        .tableEnd = " STRICT",
    };
    return limits;
}

// A REAL column makes 0 of -0, since it stores whole numbers as such; ANY keeps what it gets.
const char* sqliteTypeOf(const Field& field) {
    switch (field.type.kind) {
        case DataType::BOOLEAN:
        case DataType::BIGINT:
            return "INTEGER";
        case DataType::DOUBLE:
            return field.minusZero ? "ANY" : "REAL";
        default:
            return "TEXT";
    }
}

}  // namespace qvej
