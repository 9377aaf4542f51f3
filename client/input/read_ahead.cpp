// See read_ahead.h.
#include "client/input/read_ahead.h"

#include "client/quiet_thread.h"

#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kAhead = 4;  // pieces

}  // namespace

ReadAhead::~ReadAhead() {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

std::string_view ReadAhead::next() {
    if (thread_.joinable()) {
        return take();
    }
    const std::string_view piece = source_.next();
    if (std::exchange(begun_, true) || !isFile() || !source_.packed() ||
        piece.size() < Unpacker::kPieceBytes) {
        return piece;
    }
    current_.assign(piece.begin(), piece.end());  // the thread writes over the piece
    start();
    return {current_.data(), current_.size()};
}

void ReadAhead::start() {
    thread_ = startQuietly([this] { run(); });  // without a thread `next` goes on itself
}

void ReadAhead::run() {
    std::unique_lock lock(mutex_);
    try {
        while (!ended_) {
            changed_.wait(lock, [&] { return stopped_ || ready_.size() < kAhead; });
            if (stopped_) {
                return;
            }
            lock.unlock();
            const std::string_view piece = source_.next();
            Piece copy(piece.begin(), piece.end());
            lock.lock();
            ended_ = copy.empty();
            ready_.push_back(std::move(copy));
            changed_.notify_all();
        }
    } catch (...) {
        if (!lock.owns_lock()) {
            lock.lock();
        }
        failure_ = std::current_exception();
        ended_ = true;
        changed_.notify_all();
    }
}

std::string_view ReadAhead::take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return ended_ || !ready_.empty(); });
    if (ready_.empty()) {
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
        return {};
    }
    current_ = std::move(ready_.front());
    ready_.pop_front();
    changed_.notify_all();
    return {current_.data(), current_.size()};
}

}  // namespace qvej
