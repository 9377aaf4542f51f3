// See record_batch.h.
#include "formats/arrow_c/record_batch.h"

#include <cstddef>
#include <utility>

namespace qvej {

namespace {

// What an exported structure owns.  A child has its own share of the batch, since readers may move
// it away from its parent.
struct OwnedArray {
    std::shared_ptr<const RecordBatch> batch;
    std::vector<const void*> buffers = {};
    std::vector<std::unique_ptr<ArrowArray>> children = {};
    std::vector<ArrowArray*> pointers = {};
};

void release(ArrowArray* array) {
    auto* const owned = static_cast<OwnedArray*>(array->private_data);
    for (const std::unique_ptr<ArrowArray>& child : owned->children) {
        if (child->release != nullptr) {
            child->release(child.get());
        }
    }
    delete owned;
    array->release = nullptr;
}

void fill(std::unique_ptr<OwnedArray> owned, int64_t nulls, ArrowArray* out) {
    *out = {};
    out->length = owned->batch->rows;
    out->null_count = nulls;
    out->n_buffers = static_cast<int64_t>(owned->buffers.size());
    out->buffers = owned->buffers.data();
    out->n_children = static_cast<int64_t>(owned->pointers.size());
    out->children = owned->pointers.empty() ? nullptr : owned->pointers.data();
    out->release = release;
    out->private_data = owned.release();
}

std::unique_ptr<OwnedArray> ownedColumn(const std::shared_ptr<const RecordBatch>& batch,
                                        const ColumnData& column) {
    auto owned = std::make_unique<OwnedArray>(OwnedArray{batch});
    owned->buffers.push_back(column.nulls == 0 ? nullptr : column.valid.data());
    for (const Buffer& buffer : column.buffers) {
        owned->buffers.push_back(buffer.data());
    }
    return owned;
}

}  // namespace

void exportBatch(const std::shared_ptr<const RecordBatch>& batch, ArrowArray* out) {
    auto owned = std::make_unique<OwnedArray>(OwnedArray{batch, {nullptr}});
    for (std::size_t i = 0; i < batch->columns.size(); ++i) {
        owned->children.push_back(std::make_unique<ArrowArray>());
        owned->pointers.push_back(owned->children.back().get());
    }
    // From here on `release` gives back what there is, whatever fails.
    ArrowArray made = {};
    fill(std::move(owned), 0, &made);
    try {
        for (std::size_t i = 0; i < batch->columns.size(); ++i) {
            const ColumnData& column = batch->columns[i];
            fill(ownedColumn(batch, column), column.nulls, made.children[i]);
        }
    } catch (...) {
        release(&made);
        throw;
    }
    *out = made;
}

}  // namespace qvej
