// Threads that no signal interrupts: signals go to the thread that the program began with.
#pragma once

#include <csignal>
#include <system_error>
#include <thread>

namespace qvej {

// While it lives, no signal comes to the calling thread; threads that it starts inherit that.
class SignalsBlocked {
   public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        (void)::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { (void)::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

   private:
    sigset_t before_;
};

// The result is not joinable when the system has no thread to give.
template <class Routine>
std::thread startQuietly(const Routine& routine) {
    const SignalsBlocked blocked;
    try {
        return std::thread(routine);
    } catch (const std::system_error&) {
        return {};
    }
}

}  // namespace qvej
