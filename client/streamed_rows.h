// Rows that are made while the text of their document is read, in one walk over it.
//
// Another thread reads and walks, and hands over the rows that a piece of the text completed.  It
// is some batches ahead at the most.
//
// Tested by tests/tool/stream.py
#pragma once

#include "document.h"
#include "parts/item_batch.h"
#include "row_source.h"
#include "row_stream.h"
#include "table_pass.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace qvej {

class StreamedRows final : public RowSource {
   public:
    // Tables of the document's maps; it has a stream, and must outlive this object.  Throws
    // QV_NOMEM.
    StreamedRows(const Document& document, const std::vector<JMAPTableh>& tables);
    ~StreamedRows() override;

    bool next(PassItem& item) override;
    void flushInTime(std::function<void()> flush) override { flush_ = std::move(flush); }
    [[nodiscard]] JMAPPassColumn column(std::size_t table, std::size_t column) const override;
    [[nodiscard]] const PassCell& left(std::size_t table, std::size_t column) const override;
    [[nodiscard]] std::size_t text() const override { return batch_.text; }

   private:
    using Clock = std::chrono::steady_clock;

    // Items of one text.
    struct Batch {
        std::unique_ptr<ItemBatch> items = {};
        std::size_t text = 0;
    };
    class Stopped {};  // thrown through the walking thread when its rows are not needed any more

    // Of the walking thread.
    void walkAll();
    static QVStatus take(void* arg, const JMAPPassItem* item);
    void add(const JMAPPassItem& item);
    [[nodiscard]] std::size_t textOfRow() const;
    void handOver();

    // Of the taking one.
    bool takeBatch();
    void flushWhenDue(std::unique_lock<std::mutex>& lock);

    const RowStream& stream_;
    Document walk_;
    JMAPPassh handle_ = nullptr;
    Batch made_;  // the walking thread's
    std::exception_ptr takeFailure_;

    Batch batch_;  // the taking thread's, as these
    std::size_t at_ = 0;
    std::function<void()> flush_;
    bool unflushed_ = false;  // rows have come since the last flush
    Clock::time_point due_;   // of the next one then

    std::mutex mutex_;  // of what follows
    std::condition_variable changed_;
    std::deque<Batch> ready_;
    bool ended_ = false;
    bool stopped_ = false;
    std::exception_ptr failure_;

    std::thread thread_;
};

}  // namespace qvej
