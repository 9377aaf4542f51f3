// See streamed_rows.h.
#include "client/streamed_rows.h"

#include "client/error.h"
#include "client/quiet_thread.h"

#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kMostReady = 4;  // batches
constexpr std::chrono::seconds kFlushTime(1);

// A document that only makes rows.
DocumentOptions optionsOfWalk(DocumentOptions options) {
    options.part = true;
    options.uncounted = false;
    return options;
}

}  // namespace

StreamedRows::StreamedRows(const Document& document, const std::vector<JMAPTableh>& tables)
    : stream_(*document.stream()), walk_(*stream_.engine, optionsOfWalk(stream_.options)) {
    check(jmapWalkOpen(walk_.handle(), document.handle(), tables.data(),
                       static_cast<QVStrSize>(tables.size()), 0, &StreamedRows::take, this,
                       &handle_));
    thread_ = startQuietly([this] { walkAll(); });
    if (!thread_.joinable()) {
        (void)jmapPassClose(handle_);  // it has no file
        throw Error(QV_NOMEM, "the system has no thread to give");
    }
}

StreamedRows::~StreamedRows() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        changed_.notify_all();
    }
    stream_.stop();
    thread_.join();
    (void)jmapPassClose(handle_);  // it has no file
}

void StreamedRows::walkAll() {
    std::exception_ptr failure;
    try {
        made_.items = std::make_unique<ItemBatch>();
        stream_.read(walk_, [this] { handOver(); });
        handOver();
    } catch (...) {
        failure = takeFailure_ != nullptr ? takeFailure_ : std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    if (failure != nullptr && made_.items != nullptr) {
        ready_.push_back(std::move(made_));  // the rows before the mistake
    }
    failure_ = failure;
    ended_ = true;
    changed_.notify_all();
}

// No exception goes through the engine: what taking an item throws is thrown after it.
QVStatus StreamedRows::take(void* arg, const JMAPPassItem* item) {
    auto& rows = *static_cast<StreamedRows*>(arg);
    try {
        rows.add(*item);
        return QV_OK;
    } catch (...) {
        rows.takeFailure_ = std::current_exception();
        return QV_NOMEM;
    }
}

void StreamedRows::add(const JMAPPassItem& item) {
    if (const std::size_t text = textOfRow(); text != made_.text) {
        handOver();
        made_.text = text;
    }
    made_.items->add(itemOf(item), {});
    if (made_.items->full()) {
        handOver();
    }
}

// As in TablePass::addSource.
std::size_t StreamedRows::textOfRow() const {
    const std::vector<TextSource>& texts = walk_.texts();
    std::size_t text = made_.text;
    if (text + 1 < texts.size()) {
        const uint64_t roots = jmapPassRoots(handle_);
        while (text + 1 < texts.size() && texts[text + 1].rootsBefore < roots) {
            ++text;
        }
    }
    return text;
}

void StreamedRows::handOver() {
    if (made_.items->items().empty()) {
        return;
    }
    auto next = std::make_unique<ItemBatch>();
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || ready_.size() < kMostReady; });
    if (stopped_) {
        throw Stopped();
    }
    ready_.push_back({std::exchange(made_.items, std::move(next)), made_.text});
    changed_.notify_all();
}

// Waits for more rows no longer than those that came before can wait for the flush.
void StreamedRows::flushWhenDue(std::unique_lock<std::mutex>& lock) {
    if (!unflushed_ || !flush_) {
        return;
    }
    changed_.wait_until(lock, due_, [&] { return ended_ || !ready_.empty(); });
    if (Clock::now() >= due_) {
        lock.unlock();
        flush_();
        unflushed_ = false;
        lock.lock();
    }
}

bool StreamedRows::takeBatch() {
    std::unique_lock lock(mutex_);
    flushWhenDue(lock);
    changed_.wait(lock, [&] { return ended_ || !ready_.empty(); });
    if (ready_.empty()) {
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
        return false;
    }
    batch_ = std::move(ready_.front());
    ready_.pop_front();
    changed_.notify_all();
    lock.unlock();
    at_ = 0;
    if (!unflushed_) {
        unflushed_ = true;
        due_ = Clock::now() + kFlushTime;
    }
    return true;
}

bool StreamedRows::next(PassItem& item) {
    while (batch_.items == nullptr || at_ == batch_.items->items().size()) {
        if (!takeBatch()) {
            return false;
        }
    }
    item = batch_.items->items()[at_++];
    return true;
}

JMAPPassColumn StreamedRows::column(std::size_t table, std::size_t column) const {
    JMAPPassColumn info = {};
    jmapPassColumn(handle_, static_cast<QVStrSize>(table), static_cast<QVStrSize>(column), &info);
    return info;
}

const PassCell& StreamedRows::left(std::size_t table, std::size_t column) const {
    const PassCell* cells = nullptr;
    QVStrSize count = 0;
    jmapPassLeft(handle_, static_cast<QVStrSize>(table), &cells, &count);
    return cells[column];
}

}  // namespace qvej
