// See walked_rows.h.
#include "client/parts/walked_rows.h"

#include <utility>

namespace qvej {
namespace {

// Collects the items.
class ItemWork final : public RowWork {
   public:
    void take(const PassItem& item) override { batch_->add(item, text_); }
    void holdText(const std::shared_ptr<const void>& holder, std::string_view text) override {
        batch_->hold(holder);
        text_ = text;
    }
    [[nodiscard]] bool full() const override { return batch_->full(); }
    [[nodiscard]] std::unique_ptr<RowResult> result() override {
        return std::exchange(batch_, std::make_unique<ItemBatch>());
    }

   private:
    std::unique_ptr<ItemBatch> batch_ = std::make_unique<ItemBatch>();
    std::string_view text_;
};

}  // namespace

WalkedRows::WalkedRows(const Document& document, const std::vector<JMAPTableh>& tables)
    : document_(document),
      tables_(tables),
      walk_(std::make_unique<PartWalk>(
          document, tables, [] { return std::make_unique<ItemWork>(); }, false)) {}

bool WalkedRows::next(PassItem& item) {
    while (at_ == items_.size()) {
        batch_ = walk_->next();
        if (batch_ == nullptr) {
            items_ = {};
            at_ = 0;
            return false;
        }
        items_ = static_cast<const ItemBatch&>(*batch_).items();
        at_ = 0;
    }
    item = items_[at_++];
    return true;
}

void WalkedRows::work(const MakeRowWork& make, bool source, const TakeRowResult& take) {
    walk_ = std::make_unique<PartWalk>(document_, tables_, make, source);
    walk_->run(take);
}

}  // namespace qvej
