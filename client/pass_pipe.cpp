// See pass_pipe.h.
//
// Items are copied into batches, cells and all; the texts of the cells only when they do not live
// as long as the document.  There are a few batches: full ones go to the taking thread, empty ones
// come back.
#include "client/pass_pipe.h"

#include "client/quiet_thread.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace qvej {
namespace {

constexpr std::size_t kBatches = 4;
constexpr std::size_t kBatchItems = 4096;
constexpr std::size_t kBatchCells = 32768;
constexpr std::size_t kBatchBytes = std::size_t{1} << 20;  // of texts
constexpr std::size_t kMostText = 32767;                   // bytes of a cell

// Items with all that they point to.
class Batch {
   public:
    //   pass  that the item is of
    void add(const PassItem& item, bool copyTexts, const TablePass& pass) {
        if (copyTexts && item.cells.size() * kMostText > kBatchBytes) {
            makeRoom(item, pass);
        }
        items_.push_back(item);
        cells_.insert(cells_.end(), item.cells.begin(), item.cells.end());
        copied_ = copyTexts;
        if (copyTexts) {
            keepTexts(item);
        }
    }

    [[nodiscard]] bool full() const {
        return items_.size() >= kBatchItems || cells_.size() >= kBatchCells ||
               texts_.size() >= kBatchBytes;
    }
    [[nodiscard]] bool empty() const { return items_.empty(); }

    // The items, which point into the batch.
    std::span<const PassItem> items() {
        PassCell* cells = cells_.data();
        const char* text = texts_.data();
        for (PassItem& item : items_) {
            const std::span<PassCell> own(cells, item.cells.size());
            item.cells = own;
            cells += own.size();
            if (copied_) {
                text = pointTo(text, item, own);
            }
        }
        return items_;
    }

    void clear() {
        items_.clear();
        cells_.clear();
        texts_.clear();
        if (texts_.capacity() > 2 * kBatchBytes) {
            texts_ = {};  // there are few such rows
        }
    }

   private:
    // A row may hold as much as memory has room for once.
    void makeRoom(const PassItem& item, const TablePass& pass) {
        std::size_t size = item.text.size();
        for (const PassCell& cell : item.cells) {
            size += holdsText(cell) ? static_cast<std::size_t>(cell.textLen) : 0;
        }
        if (size > kBatchBytes) {
            pass.checkRoom(size);
            texts_.reserve(texts_.size() + size);
        }
    }
    static bool holdsText(const PassCell& cell) {
        return cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
    }
    void keepTexts(const PassItem& item) {
        for (const PassCell& cell : item.cells) {
            if (holdsText(cell)) {
                keep({cell.text, static_cast<std::size_t>(cell.textLen)});
            }
        }
        keep(item.text);
    }
    void keep(std::string_view text) { texts_.insert(texts_.end(), text.begin(), text.end()); }

    // The texts of an item are those at `text`; returns where they end.
    static const char* pointTo(const char* text, PassItem& item, std::span<PassCell> cells) {
        for (PassCell& cell : cells) {
            if (holdsText(cell)) {
                cell.text = text;
                text += cell.textLen;
            }
        }
        item.text = {text, item.text.size()};
        return text + item.text.size();
    }

    std::vector<PassItem> items_;
    std::vector<PassCell> cells_;  // in the order of the items
    std::vector<char> texts_;      // in the order of the cells
    bool copied_ = false;
};

// Batches on their way between the two threads.
class Pipe {
   public:
    Pipe() {
        for (std::size_t i = 0; i < kBatches; ++i) {
            empty_.push_back(std::make_unique<Batch>());
        }
    }

    // An empty batch; null: the taking thread has ended.
    std::unique_ptr<Batch> takeEmpty() { return take(empty_, ended_); }
    // A full batch; null: there will be no more.
    std::unique_ptr<Batch> takeFull() { return take(full_, closed_); }

    void putFull(std::unique_ptr<Batch> batch) { put(full_, std::move(batch)); }
    void putEmpty(std::unique_ptr<Batch> batch) { put(empty_, std::move(batch)); }

    void close() { raise(closed_); }  // no more full batches come
    void end() { raise(ended_); }     // none are taken any more

   private:
    using Queue = std::deque<std::unique_ptr<Batch>>;

    std::unique_ptr<Batch> take(Queue& queue, const bool& over) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !queue.empty() || over; });
        if (queue.empty()) {
            return nullptr;
        }
        std::unique_ptr<Batch> batch = std::move(queue.front());
        queue.pop_front();
        return batch;
    }
    void put(Queue& queue, std::unique_ptr<Batch> batch) {
        const std::lock_guard lock(mutex_);
        queue.push_back(std::move(batch));
        changed_.notify_all();
    }
    void raise(bool& flag) {
        const std::lock_guard lock(mutex_);
        flag = true;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    Queue empty_;
    Queue full_;
    bool closed_ = false;
    bool ended_ = false;
};

void fill(Pipe& pipe, TablePass& pass) {
    const bool copyTexts = !pass.textsStay();
    std::unique_ptr<Batch> batch = pipe.takeEmpty();
    PassItem item = {};
    while (batch != nullptr && pass.next(item)) {
        batch->add(item, copyTexts, pass);
        if (batch->full()) {
            pipe.putFull(std::move(batch));
            batch = pipe.takeEmpty();
        }
    }
    if (batch != nullptr && !batch->empty()) {
        pipe.putFull(std::move(batch));
    }
}

void runAlone(TablePass& pass, const std::function<void(std::span<const PassItem>)>& take) {
    PassItem item = {};
    while (pass.next(item)) {
        take({&item, 1});
    }
}

}  // namespace

void runPass(TablePass& pass, unsigned threads,
             const std::function<void(std::span<const PassItem>)>& take) {
    if (threads < 2 || pass.walks()) {
        runAlone(pass, take);
        return;
    }
    Pipe pipe;
    std::exception_ptr failure;  // of the other thread
    std::thread taking = startQuietly([&] {
        try {
            while (std::unique_ptr<Batch> batch = pipe.takeFull()) {
                take(batch->items());
                batch->clear();
                pipe.putEmpty(std::move(batch));
            }
        } catch (...) {
            failure = std::current_exception();
        }
        pipe.end();
    });
    if (!taking.joinable()) {
        runAlone(pass, take);
        return;
    }
    try {
        fill(pipe, pass);
    } catch (...) {
        pipe.close();
        taking.join();
        throw;
    }
    pipe.close();
    taking.join();
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
}

}  // namespace qvej
