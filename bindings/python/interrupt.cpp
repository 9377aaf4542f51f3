// See interrupt.h.
#include "bindings/python/interrupt.h"

#include "client/quiet_thread.h"

#include <nanobind/nanobind.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace qvej::python {

namespace nb = nanobind;

namespace {

constexpr std::chrono::milliseconds kLookForSignals{20};

thread_local const std::atomic<bool>* stop = nullptr;  // of the work that the thread does

bool onMainThread() {
    const nb::module_ threading = nb::module_::import_("threading");
    return threading.attr("current_thread")().is(threading.attr("main_thread")());
}

// Work on a thread of its own.
class Task {
   public:
    explicit Task(const std::function<void()>& work)
        : thread_(startQuietly([this, &work] { run(work); })) {}
    ~Task() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    [[nodiscard]] bool started() const { return thread_.joinable(); }
    void stop() { stopped_ = true; }

    // False: it goes on.
    [[nodiscard]] bool waitFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return ended_.wait_for(lock, time, [&] { return done_; });
    }
    void rethrow() const {
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
    }

   private:
    void run(const std::function<void()>& work) {
        python::stop = &stopped_;
        try {
            work();
        } catch (...) {
            failure_ = std::current_exception();
        }
        const std::lock_guard lock(mutex_);
        done_ = true;
        ended_.notify_all();
    }

    std::atomic<bool> stopped_ = false;
    std::exception_ptr failure_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool done_ = false;
    std::thread thread_;  // the last: it uses the others
};

// What the handler of a signal that has come threw; null: nothing.
std::exception_ptr raisedBySignal() {
    const nb::gil_scoped_acquire locked;
    return PyErr_CheckSignals() == 0 ? nullptr : std::make_exception_ptr(nb::python_error());
}

}  // namespace

bool isStopped() {
    return stop != nullptr && stop->load(std::memory_order_relaxed);
}

void unlocked(const std::function<void()>& work) {
    const nb::gil_scoped_acquire locked;  // nothing else tells whether it is held
    const nb::gil_scoped_release released;
    work();
}

void interruptible(const std::function<void()>& work) {
    if (!onMainThread()) {
        const nb::gil_scoped_release unlocked;
        work();
        return;
    }
    std::exception_ptr raised;
    {
        const nb::gil_scoped_release unlocked;
        Task task(work);
        if (!task.started()) {
            work();
            return;
        }
        while (!task.waitFor(kLookForSignals)) {
            raised = raised != nullptr ? raised : raisedBySignal();
            if (raised != nullptr) {
                task.stop();
            }
        }
        if (raised == nullptr) {
            task.rethrow();
        }
    }
    if (raised != nullptr) {
        std::rethrow_exception(raised);
    }
}

}  // namespace qvej::python
