// See columns.h.
#include "client/columns.h"

#include <algorithm>
#include <utility>

namespace qvej {
namespace {

constexpr uint64_t kNumberBytes = 8;
constexpr std::string_view kOrdinalPrefix = "ordinal_";

std::string objectOf(JMAPTableh table) {
    std::string path(static_cast<std::size_t>(jmapTableObject(table, nullptr)), '\0');
    (void)jmapTableObject(table, path.data());
    return path;
}

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

Columns::Columns(JMAPTableh table, const TextCodec& codec, Naming naming) : codec_(&codec) {
    JMAPTableInfo info = {};
    jmapTableInfo(table, &info);
    handles_.reserve(info.columnCount);
    JMAPColumnh column = nullptr;
    while (jmapNextColumn(table, &column) == QV_OK) {
        handles_.push_back(column);
    }
    if (naming == Naming::ORIGINAL) {
        nameOriginally(table);
    }
}

// The ordinals come first, the outermost before the others: so each has the same name in all tables
// that it joins.  Their paths begin that of the table, which is built once: a table has as many
// ordinals as it is deep.
void Columns::nameOriginally(JMAPTableh table) {
    static const auto lastPieces = std::make_shared<const std::vector<PathName>>();
    const std::string object = objectOf(table);
    std::string path;
    std::string decoded;
    const auto pathOfColumn = [&](std::size_t i) -> NamedPath {
        JMAPColumnInfo info = {};
        jmapColumnInfo(handles_[i], &info);
        if (info.type == JMAP_ORDINAL) {
            return {kOrdinalPrefix, codec_->decode(view(object.data(), info.pathLen), decoded)};
        }
        path.resize(static_cast<std::size_t>(info.pathLen));
        jmapColumnPath(handles_[i], path.data());
        return {{}, codec_->decode(path, decoded)};
    };
    std::vector<PathName> names = distinctNames(handles_.size(), pathOfColumn, Longer::LATER);
    original_ = names.empty() ? lastPieces
                              : std::make_shared<const std::vector<PathName>>(std::move(names));
}

ColumnType Columns::type(std::size_t i) const {
    if (i < ownColumns()) {
        return first_->type;
    }
    JMAPColumnInfo info = {};
    jmapColumnInfo(handles_[i - ownColumns()], &info);
    return static_cast<ColumnType>(info.type);
}

Column Columns::operator[](std::size_t i) const {
    if (i < ownColumns()) {
        return *first_;
    }
    i -= ownColumns();
    JMAPColumnh handle = handles_[i];
    JMAPColumnInfo info = {};
    jmapColumnInfo(handle, &info);
    const auto text = [&](const char* at, QVStrSize length) {
        return codec_->decoded(view(at, length));
    };
    Column column = {text(info.name, info.nameLen),
                     codec_->decoded(pathOf(jmapColumnPath, handle, info.pathLen)),
                     static_cast<ColumnType>(info.type), logicalTypeOf(info), kNumberBytes};
    const bool greatest = uncounted_ && info.length == 0;
    if (column.type == ColumnType::CHARACTER) {
        column.length = greatest ? kLongestCell : std::min(info.length, kLongestCell);
    }
    if (original_ != nullptr) {
        const bool ordinal = column.type == ColumnType::ORDINAL;
        column.name = nameOf({ordinal ? kOrdinalPrefix : std::string_view(), column.path},
                             original_->empty() ? PathName() : (*original_)[i]);
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
    column.lengthFromDocument = info.lengthFromAutomap != 0 || greatest;
    return column;
}

std::string Table::path() const {
    JMAPTableInfo info = {};
    jmapTableInfo(handle, &info);
    return columns.codec().decoded(pathOf(jmapTablePath, handle, info.tablePathLen));
}

std::string Table::objectPath() const {
    return columns.codec().decoded(objectOf(handle));
}

std::vector<const Table*> each(const std::vector<Table>& tables) {
    std::vector<const Table*> result;
    result.reserve(tables.size());
    for (const Table& table : tables) {
        result.push_back(&table);
    }
    return result;
}

}  // namespace qvej
