// See batch_builder.h.
#include "formats/arrow/batch_builder.h"

#include "client/schema/typed_value.h"
#include "formats/arrow/arrow_stream.h"

#include <arrow/array/builder_binary.h>
#include <arrow/array/builder_decimal.h>
#include <arrow/array/builder_primitive.h>
#include <arrow/array/builder_time.h>
#include <arrow/util/decimal.h>

#include <string>
#include <utility>

namespace qvej {

namespace {

// The type of a column, and where its values are kept.
struct Place {
    std::shared_ptr<arrow::DataType> type;
    arrow::MemoryPool* memory;
};

std::shared_ptr<arrow::Array> arrayOf(arrow::ArrayBuilder& builder) {
    std::shared_ptr<arrow::Array> array;
    checkArrow(builder.Finish(&array));
    return array;
}

// Values of a fixed size.  `Read` makes what the library's builder takes of a cell.
template <class Builder, class Read>
class FixedColumn final : public ColumnBuilder {
   public:
    FixedColumn(const Place& place, std::size_t size, Read read)
        : builder_(place.type, place.memory), size_(size), read_(std::move(read)) {}

    std::size_t take(const Cell& cell) override {
        checkArrow(hasValue(cell) ? builder_.Append(read_(cell)) : builder_.AppendNull());
        return size_;
    }
    [[nodiscard]] std::shared_ptr<arrow::Array> finish() override { return arrayOf(builder_); }

   private:
    Builder builder_;
    std::size_t size_;
    Read read_;
};

class TextColumn final : public ColumnBuilder {
   public:
    TextColumn(const DataType& type, const Place& place) : type_(type), builder_(place.memory) {}

    std::size_t take(const Cell& cell) override {
        constexpr std::size_t kOffset = 4;
        if (!hasValue(cell)) {
            checkArrow(builder_.AppendNull());
            return kOffset;
        }
        const std::string_view text = textOf(cell, type_, buffer_);
        checkArrow(builder_.Append(text));
        return kOffset + text.size();
    }
    [[nodiscard]] std::shared_ptr<arrow::Array> finish() override { return arrayOf(builder_); }

   private:
    DataType type_;
    arrow::StringBuilder builder_;
    std::string buffer_;
};

template <class Builder, class Read>
std::unique_ptr<ColumnBuilder> fixed(const Place& place, std::size_t size, Read read) {
    return std::make_unique<FixedColumn<Builder, Read>>(place, size, std::move(read));
}

// Digits after the second of a unit of the library.
int digitsOf(const arrow::DataType& type) {
    return 3 * static_cast<int>(static_cast<const arrow::TimestampType&>(type).unit());
}

std::unique_ptr<ColumnBuilder> builderOf(const DataType& type, const Place& place) {
    switch (type.kind) {
        case DataType::BOOLEAN:
            return fixed<arrow::BooleanBuilder>(place, 1, booleanOf);
        case DataType::BIGINT:
            return fixed<arrow::Int64Builder>(place, 8, bigintOf);
        case DataType::DOUBLE:
            return fixed<arrow::DoubleBuilder>(place, 8, doubleOf);
        case DataType::DECIMAL:
            return fixed<arrow::Decimal128Builder>(
                place, 16, [scale = type.scale](const Cell& cell) {
                    const Int128 number = decimalOf(cell, scale);
                    return arrow::Decimal128(static_cast<int64_t>(number >> 64),
                                             static_cast<uint64_t>(number));
                });
        case DataType::DATE:
            return fixed<arrow::Date32Builder>(place, 4, daysOf);
        case DataType::TIMESTAMP:
            return fixed<arrow::TimestampBuilder>(
                place, 8, [digits = digitsOf(*place.type)](const Cell& cell) {
                    return unitsOf(cell, digits);
                });
        default:
            return std::make_unique<TextColumn>(type, place);
    }
}

}  // namespace

BatchBuilder::BatchBuilder(const TableSchema& table, std::shared_ptr<arrow::Schema> schema,
                           arrow::MemoryPool* memory)
    : schema_(std::move(schema)) {
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        columns_.push_back(
            builderOf(table.fields[c].type, {schema_->field(static_cast<int>(c))->type(), memory}));
    }
}

void BatchBuilder::take(const PassRow& row) {
    for (std::size_t c = 0; c < columns_.size(); ++c) {
        bytes_ += columns_[c]->take(row.cell(c));
    }
    ++rows_;
}

std::shared_ptr<arrow::RecordBatch> BatchBuilder::finish() {
    std::vector<std::shared_ptr<arrow::Array>> arrays;
    for (const std::unique_ptr<ColumnBuilder>& column : columns_) {
        arrays.push_back(column->finish());
    }
    bytes_ = 0;
    return arrow::RecordBatch::Make(schema_, std::exchange(rows_, 0), std::move(arrays));
}

}  // namespace qvej
