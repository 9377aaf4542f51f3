// See column_buffers.h.
#include "formats/arrow_c/column_buffers.h"

#include "client/schema/typed_value.h"

#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace qvej {

namespace {

// A bit for each cell, the lowest first.
class Bits {
   public:
    void append(bool bit) {
        const auto at = static_cast<unsigned>(count_ % 8);
        if (at == 0) {
            bytes_.append(std::byte{0});
        }
        bytes_.bytes()[count_ / 8] |= std::byte{bit} << at;
        ++count_;
    }
    [[nodiscard]] Buffer finish() {
        count_ = 0;
        return bytes_.take();
    }

   private:
    Buffer bytes_;
    std::size_t count_ = 0;
};

// Which cells have a value.  There are bits from the first null on: most columns have none.
class Validity {
   public:
    // Returns whether this one has.
    bool take(const Cell& cell) {
        const bool has = hasValue(cell);
        if (!has && nulls_++ == 0) {
            for (std::size_t i = 0; i < cells_; ++i) {
                valid_.append(true);
            }
        }
        if (nulls_ != 0) {
            valid_.append(has);
        }
        ++cells_;
        return has;
    }
    void finish(ColumnData& data) {
        data.valid = valid_.finish();
        data.nulls = std::exchange(nulls_, 0);
        cells_ = 0;
    }

   private:
    Bits valid_;
    std::size_t cells_ = 0;
    int64_t nulls_ = 0;
};

// Values of a fixed size.  `Read` makes one of a cell.
template <class Read>
class FixedColumn final : public ColumnBuffers {
   public:
    explicit FixedColumn(Read read) : read_(std::move(read)) {}

    void take(const Cell& cell) override {
        using Value = decltype(read_(cell));
        values_.append(validity_.take(cell) ? read_(cell) : Value{});
    }
    [[nodiscard]] ColumnData finish() override {
        ColumnData data;
        validity_.finish(data);
        data.buffers.push_back(values_.take());
        return data;
    }

   private:
    Validity validity_;
    Buffer values_;
    Read read_;
};

class BooleanColumn final : public ColumnBuffers {
   public:
    void take(const Cell& cell) override {
        values_.append(validity_.take(cell) && booleanOf(cell));
    }
    [[nodiscard]] ColumnData finish() override {
        ColumnData data;
        validity_.finish(data);
        data.buffers.push_back(values_.finish());
        return data;
    }

   private:
    Validity validity_;
    Bits values_;
};

class TextColumn final : public ColumnBuffers {
   public:
    explicit TextColumn(const DataType& type) : type_(type) { begin(); }

    void take(const Cell& cell) override {
        if (validity_.take(cell)) {
            const std::string_view text = textOf(cell, type_, buffer_);
            bytes_.append(text.data(), text.size());
        }
        offsets_.append(static_cast<int32_t>(bytes_.size()));
    }
    // Offsets have 32 bits.  A cell is less than 1 MiB: that is the longest number, and texts are
    // shorter.
    [[nodiscard]] bool full() const override {
        constexpr std::size_t kLongest = std::size_t{1} << 20;
        return bytes_.size() >= std::numeric_limits<int32_t>::max() - kLongest;
    }
    [[nodiscard]] ColumnData finish() override {
        ColumnData data;
        validity_.finish(data);
        data.buffers.push_back(offsets_.take());
        data.buffers.push_back(bytes_.take());
        begin();
        return data;
    }

   private:
    void begin() { offsets_.append(int32_t{0}); }

    DataType type_;
    Validity validity_;
    Buffer offsets_;
    Buffer bytes_;
    std::string buffer_;
};

template <class Read>
std::unique_ptr<ColumnBuffers> fixed(Read read) {
    return std::make_unique<FixedColumn<Read>>(std::move(read));
}

}  // namespace

int unitDigits(const DataType& type) {
    return (type.fraction + 2) / 3 * 3;
}

std::unique_ptr<ColumnBuffers> makeColumnBuffers(const DataType& type) {
    switch (type.kind) {
        case DataType::BOOLEAN:
            return std::make_unique<BooleanColumn>();
        case DataType::BIGINT:
            return fixed(bigintOf);
        case DataType::DOUBLE:
            return fixed(doubleOf);
        case DataType::DECIMAL:
            return fixed([scale = type.scale](const Cell& cell) { return decimalOf(cell, scale); });
        case DataType::DATE:
            return fixed(daysOf);
        case DataType::TIMESTAMP:
            return fixed(
                [digits = unitDigits(type)](const Cell& cell) { return unitsOf(cell, digits); });
        default:
            return std::make_unique<TextColumn>(type);
    }
}

}  // namespace qvej
