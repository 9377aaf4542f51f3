// See columns.h.
#include "client/columns.h"

#include <algorithm>

namespace qvej {
namespace {

constexpr uint64_t kNumberBytes = 8;

LogicalType logicalTypeOf(const JMAPColumnInfo& info) {
    if (info.type == JMAP_ORDINAL) {
        return LogicalType::INTEGER;
    }
    switch (info.kinds & ~(1U << JMAP_KIND_NULL)) {
        case 0:  // not known, or there is nothing but null
            return info.type == JMAP_NUMERIC ? LogicalType::DOUBLE : LogicalType::TEXT;
        case 1U << JMAP_KIND_BOOLEAN:
            return LogicalType::BOOLEAN;
        case 1U << JMAP_KIND_NUMBER:
            return LogicalType::DOUBLE;
        case 1U << JMAP_KIND_STRING:
            return LogicalType::TEXT;
        default:
            return LogicalType::MIXED;
    }
}

}  // namespace

Columns::Columns(JMAPTableh table, const TextCodec& codec) : codec_(&codec) {
    JMAPTableInfo info = {};
    jmapTableInfo(table, &info);
    handles_.reserve(info.columnCount);
    JMAPColumnh column = nullptr;
    while (jmapNextColumn(table, &column) == QV_OK) {
        handles_.push_back(column);
    }
}

Column Columns::operator[](std::size_t i) const {
    JMAPColumnh handle = handles_[i];
    JMAPColumnInfo info = {};
    jmapColumnInfo(handle, &info);
    const auto text = [&](const char* at, QVStrSize length) {
        return codec_->decoded(view(at, length));
    };
    Column column = {text(info.name, info.nameLen),
                     codec_->decoded(pathOf(jmapColumnPath, handle, info.pathLen)),
                     static_cast<ColumnType>(info.type), logicalTypeOf(info), kNumberBytes};
    if (column.type == ColumnType::CHARACTER) {
        column.length = std::min(info.length, kLongestCell);
    }
    column.label = text(info.label, info.labelLen);
    column.format = {text(info.format.name, info.format.nameLen), info.format.width,
                     info.format.decimals};
    column.informat = {text(info.informat.name, info.informat.nameLen), info.informat.width,
                       info.informat.decimals};
    column.quiet = info.informatNoError != 0;
    column.retain = info.retain != 0;
    column.noretain = info.noretain != 0;
    column.currentLength = info.currentLength;
    column.truncated = info.truncation != 0;
    column.lengthFromDocument = info.lengthFromAutomap != 0;
    return column;
}

std::string Table::path() const {
    JMAPTableInfo info = {};
    jmapTableInfo(handle, &info);
    return columns.codec().decoded(pathOf(jmapTablePath, handle, info.tablePathLen));
}

}  // namespace qvej
