// Items of a walk with all that they point to, on their way to another thread.
#pragma once

#include "../row_work.h"
#include "../table_pass.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// Memory in pieces that stay where they are.
class Stretches {
   public:
    // Room for `count` of T, not initialised.
    template <class T>
    T* room(std::size_t count) {
        static_assert(std::is_trivially_copyable_v<T>);
        return reinterpret_cast<T*>(bytes(count * sizeof(T)));
    }
    // Bytes that are used, about.
    [[nodiscard]] std::size_t used() const { return used_; }

   private:
    static constexpr std::size_t kStretch = 65536;
    static constexpr std::size_t kAlignment = alignof(std::max_align_t);

    std::byte* bytes(std::size_t size) {
        size = (size + kAlignment - 1) / kAlignment * kAlignment;
        used_ += size;
        if (size > left_) {
            left_ = std::max(size, kStretch);
            stretches_.push_back(std::make_unique_for_overwrite<std::byte[]>(left_));
            at_ = stretches_.back().get();
        }
        std::byte* const room = at_;
        at_ += size;
        left_ -= size;
        return room;
    }

    std::vector<std::unique_ptr<std::byte[]>> stretches_;
    std::byte* at_ = nullptr;
    std::size_t left_ = 0;
    std::size_t used_ = 0;
};

// Texts that lie in one of the buffers of the batch are not copied.
class ItemBatch final : public RowResult {
   public:
    // Bytes of cells and copied texts after which a batch is full.
    static constexpr std::size_t kFull = std::size_t{1} << 20;

    // The batch keeps what holds a text in which values lie.
    void hold(std::shared_ptr<const void> text) { held_.push_back(std::move(text)); }

    // Copies the item.  `stays`: a text that the batch holds.
    void add(const PassItem& from, std::string_view stays) {
        PassItem& item = items_.emplace_back(from);
        item.cells = copied(from.cells, stays);
        item.text = {kept(from.text.data(), from.text.size(), stays), from.text.size()};
    }

    [[nodiscard]] bool full() const { return memory_.used() >= kFull; }
    [[nodiscard]] const std::vector<PassItem>& items() const { return items_; }

   private:
    std::span<const PassCell> copied(std::span<const PassCell> from, std::string_view stays) {
        auto* cells = memory_.room<PassCell>(from.size());
        std::copy(from.begin(), from.end(), cells);
        for (PassCell& cell : std::span(cells, from.size())) {
            if (cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT) {
                cell.text = kept(cell.text, static_cast<std::size_t>(cell.textLen), stays);
            }
        }
        return {cells, from.size()};
    }

    const char* kept(const char* text, std::size_t textLen, std::string_view stays) {
        const auto offset =
            reinterpret_cast<uintptr_t>(text) - reinterpret_cast<uintptr_t>(stays.data());
        if (offset < stays.size() || textLen == 0) {
            return text;
        }
        char* copy = memory_.room<char>(textLen);
        std::memcpy(copy, text, textLen);
        return copy;
    }

    std::vector<PassItem> items_;
    Stretches memory_;  // of cells and texts
    std::vector<std::shared_ptr<const void>> held_;
};

}  // namespace qvej
