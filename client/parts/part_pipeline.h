// Parts of a document on several threads, and what comes of them in the order of the parts.
//
//     reading thread ─► part 1 ─► worker ─► results ─┐
//                       part 2 ─► worker ─► results ─┼─► next(), in order
//                       part 3 ─► ...                ┘
//
// Memory: so many parts as there are workers and two more, each with a few pieces and a few results
// that have not been taken.
//
// Tested by tests/client/part_pipeline_test.cpp
#pragma once

#include "../error.h"
#include "../quiet_thread.h"
#include "text_part.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace qvej {

template <class Result>
class PartPipeline {
   public:
    // Works on one part, on whatever thread; it is made, used and destroyed there.  What it throws
    // is thrown by `next` in the place of its results.
    class Worker {
       public:
        Worker() = default;
        virtual ~Worker() = default;
        Worker(const Worker&) = delete;
        Worker& operator=(const Worker&) = delete;

        // The next piece of the part, and its end.
        virtual void feed(TextPart piece) = 0;
        virtual void finish() = 0;
    };
    // Takes a result of a worker.
    using Put = std::function<void(Result)>;
    using Make = std::function<std::unique_ptr<Worker>(Put put)>;

    // Starts the threads.
    //   read     gives all pieces in order
    //   stopped  see DocumentOptions
    using Read = std::function<void(const TakePart& take)>;
    PartPipeline(const Read& read, unsigned workers, Make make, std::function<bool()> stopped = {});
    ~PartPipeline();
    PartPipeline(const PartPipeline&) = delete;
    PartPipeline& operator=(const PartPipeline&) = delete;

    // The next result; false after the last.  Throws what reading or working threw, and QV_STOPPED.
    bool next(Result& result);

    // The same without threads: one part after the other.
    static void run(const Read& read, const Make& make, const Put& put);

   private:
    static constexpr std::size_t kMostPieces = 2;
    static constexpr std::size_t kMostResults = 4;
    static constexpr std::size_t kMoreParts = 2;
    static constexpr std::chrono::milliseconds kLookAgain{10};  // whether it is still wanted

    struct Stopped {};  // thrown through a thread that is not needed any more

    struct Job {
        std::deque<TextPart> pieces = {};
        bool whole = false;  // all pieces have come
        std::deque<Result> results = {};
        bool done = false;
        std::exception_ptr failure = {};
    };

    // Waits until `ready`; throws Stopped when the pipeline ends.
    template <class Ready>
    void wait(std::unique_lock<std::mutex>& lock, const Ready& ready) {
        changed_.wait(lock, [&] { return stopped_ || ready(); });
        if (stopped_) {
            throw Stopped();
        }
    }

    void waitForResult(std::unique_lock<std::mutex>& lock);
    void stop();
    void give(TextPart piece);
    void readAll(const Read& read);
    void workAll();
    bool takePiece(Job& job, TextPart& piece);
    void workOn(Job& job);
    void put(Job& job, Result result);

    const unsigned workers_;
    const Make make_;
    const std::function<bool()> wantedNoMore_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Job>> jobs_;     // not taken to the end, in order
    std::deque<std::shared_ptr<Job>> waiting_;  // of them those that no worker has
    bool read_ = false;                         // there are no more pieces
    bool stopped_ = false;
    std::exception_ptr readFailure_;
    std::vector<std::thread> threads_;
};

template <class Result>
PartPipeline<Result>::PartPipeline(const Read& read, unsigned workers, Make make,
                                   std::function<bool()> stopped)
    : workers_(workers), make_(std::move(make)), wantedNoMore_(std::move(stopped)) {
    threads_.push_back(startQuietly([this, read] { readAll(read); }));
    for (unsigned i = 0; i < workers; ++i) {
        threads_.push_back(startQuietly([this] { workAll(); }));
    }
    if (!threads_.front().joinable() || !threads_.back().joinable()) {
        stop();
        throw Error(QV_NOMEM, "the system has no thread to give");
    }
}

template <class Result>
PartPipeline<Result>::~PartPipeline() {
    stop();
}

// Ends all threads.
template <class Result>
void PartPipeline<Result>::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
        changed_.notify_all();
    }
    for (std::thread& thread : threads_) {
        if (thread.joinable()) {
            thread.join();
        }
    }
}

// Of the reading thread.
template <class Result>
void PartPipeline<Result>::give(TextPart piece) {
    std::unique_lock lock(mutex_);
    if (jobs_.empty() || jobs_.back()->whole) {
        wait(lock, [&] { return jobs_.size() < workers_ + kMoreParts; });
        jobs_.push_back(std::make_shared<Job>());
        waiting_.push_back(jobs_.back());
    }
    const std::shared_ptr<Job> job = jobs_.back();  // it is not taken to the end before it is whole
    wait(lock, [&] { return job->pieces.size() < kMostPieces; });
    job->whole = piece.endsPart;
    job->pieces.push_back(std::move(piece));
    changed_.notify_all();
}

template <class Result>
void PartPipeline<Result>::readAll(const Read& read) {
    std::exception_ptr failure;
    try {
        read([this](TextPart piece) { give(std::move(piece)); });
    } catch (const Stopped&) {
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    readFailure_ = failure;
    read_ = true;
    changed_.notify_all();
}

template <class Result>
void PartPipeline<Result>::workAll() {
    try {
        for (;;) {
            std::unique_lock lock(mutex_);
            wait(lock, [&] { return !waiting_.empty() || read_; });
            if (waiting_.empty()) {
                return;
            }
            const std::shared_ptr<Job> job = std::move(waiting_.front());
            waiting_.pop_front();
            lock.unlock();
            workOn(*job);
        }
    } catch (const Stopped&) {
    }
}

// False after the last piece.
template <class Result>
bool PartPipeline<Result>::takePiece(Job& job, TextPart& piece) {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return !job.pieces.empty() || job.whole || read_; });
    if (job.pieces.empty()) {
        if (!job.whole) {
            throw Stopped();  // the reading has failed
        }
        return false;
    }
    piece = std::move(job.pieces.front());
    job.pieces.pop_front();
    changed_.notify_all();
    return true;
}

template <class Result>
void PartPipeline<Result>::workOn(Job& job) {
    std::exception_ptr failure;
    try {
        const std::unique_ptr<Worker> worker =
            make_([&](Result result) { put(job, std::move(result)); });
        for (TextPart piece; takePiece(job, piece);) {
            worker->feed(std::move(piece));
        }
        worker->finish();
    } catch (const Stopped&) {
        const std::lock_guard lock(mutex_);
        if (stopped_) {
            throw;
        }
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    job.failure = failure;
    job.done = true;
    job.pieces.clear();
    changed_.notify_all();
}

template <class Result>
void PartPipeline<Result>::put(Job& job, Result result) {
    std::unique_lock lock(mutex_);
    wait(lock, [&] { return job.results.size() < kMostResults; });
    job.results.push_back(std::move(result));
    changed_.notify_all();
}

template <class Result>
void PartPipeline<Result>::run(const Read& read, const Make& make, const Put& put) {
    std::unique_ptr<Worker> worker;
    read([&](TextPart piece) {
        if (worker == nullptr) {
            worker = make(put);
        }
        const bool ends = piece.endsPart;
        worker->feed(std::move(piece));
        if (ends) {
            worker->finish();
            worker.reset();
        }
    });
}

// Of the thread that takes the results.
template <class Result>
void PartPipeline<Result>::waitForResult(std::unique_lock<std::mutex>& lock) {
    const auto ready = [&] {
        return jobs_.empty() ? read_ : !jobs_.front()->results.empty() || jobs_.front()->done;
    };
    if (!wantedNoMore_) {
        changed_.wait(lock, ready);
        return;
    }
    do {
        if (wantedNoMore_()) {
            throw Error(QV_STOPPED);
        }
    } while (!changed_.wait_for(lock, kLookAgain, ready));
}

template <class Result>
bool PartPipeline<Result>::next(Result& result) {
    std::unique_lock lock(mutex_);
    for (;;) {
        waitForResult(lock);
        if (jobs_.empty()) {
            if (readFailure_ != nullptr) {
                std::rethrow_exception(readFailure_);
            }
            return false;
        }
        Job& job = *jobs_.front();
        if (!job.results.empty()) {
            result = std::move(job.results.front());
            job.results.pop_front();
            changed_.notify_all();
            return true;
        }
        if (job.failure != nullptr) {
            std::rethrow_exception(job.failure);
        }
        jobs_.pop_front();
        changed_.notify_all();
    }
}

}  // namespace qvej
