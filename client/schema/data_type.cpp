// See data_type.h.
#include "client/schema/data_type.h"

namespace qvej {

std::string nameOf(const DataType& type) {
    static constexpr const char* kNames[] = {"TEXT",    "BOOLEAN", "BIGINT",   "DOUBLE",
                                             "DECIMAL", "DATE",    "TIMESTAMP"};
    std::string name = kNames[type.kind];
    if (type.kind == DataType::DECIMAL) {
        name += "(" + std::to_string(type.precision) + "," + std::to_string(type.scale) + ")";
    }
    if (type.kind == DataType::TIMESTAMP) {
        name += "(" + std::to_string(type.fraction) + ")";
        name += type.utc ? " UTC" : "";
    }
    return name;
}

}  // namespace qvej
