// The rows of a document in parts, handed out one by one.
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "../document.h"
#include "../row_source.h"
#include "../table_pass.h"
#include "item_batch.h"
#include "part_walk.h"

#include <memory>
#include <span>
#include <vector>

namespace qvej {

class WalkedRows final : public RowSource {
   public:
    // As PartWalk.
    WalkedRows(const Document& document, const std::vector<JMAPTableh>& tables);

    bool next(PassItem& item) override;
    [[nodiscard]] JMAPPassColumn column(std::size_t table, std::size_t column) const override {
        return walk_->column(table, column);
    }
    [[nodiscard]] const PassCell& left(std::size_t table, std::size_t column) const override {
        return walk_->left(table, column);
    }
    [[nodiscard]] std::size_t text() const override { return walk_->text(); }
    [[nodiscard]] bool works() const override { return true; }
    void work(const MakeRowWork& make, bool source, const TakeRowResult& take) override;

   private:
    const Document& document_;
    const std::vector<JMAPTableh> tables_;
    std::unique_ptr<PartWalk> walk_;
    std::unique_ptr<RowResult> batch_;
    std::span<const PassItem> items_;  // of it
    std::size_t at_ = 0;               // the next one
};

}  // namespace qvej
