// See cleanup.h.
#include "formats/cleanup.h"

#include "client/error.h"
#include "client/escape.h"
#include "formats/writer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace qvej {

namespace cleanup {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGXFSZ};
constexpr std::size_t kDigits = 20;

// A signal that comes so soon after the first is the same request: timeout(1) signals the process
// and then its group, a closed terminal comes with a shell that passes it on.
constexpr long kSameRequestMs = 200;

std::atomic<int> holders = 0;        // threads with a Hold
std::atomic<bool> stopping = false;  // no thread begins another
thread_local int holds = 0;          // of this thread, in each other

thread_local volatile std::sig_atomic_t asked = 0;  // the first signal, on the main thread only
timespec askedAt;                                   // likewise

// Changed only under a Hold, so the handler never sees them half-written.
struct Slot {
    bool taken;
    char prefix[PATH_MAX + NAME_MAX + 1];  // a path longer than that names no file
    std::size_t prefixLen;
    const std::string* names;  // null: numbers
    std::size_t count;
    char directory[PATH_MAX];
    std::size_t directories;
    Output::State state;
    std::string untouched, complete;  // what is said after the first signal, with line ends
    std::string left, between;        // after the second
};
Slot slots[2];

bool installed = false;  // else no handler looks at the slots
constexpr std::size_t kNoSlot = SIZE_MAX;

// Writes `number` and a terminator at `at`.
void putDecimal(char* at, std::size_t number) {
    char reversed[kDigits];
    std::size_t digits = 0;
    do {
        reversed[digits++] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    while (digits != 0) {
        *at++ = reversed[--digits];
    }
    *at = '\0';
}

void removeOutput(Slot& slot) {
    for (std::size_t i = 0; i < slot.count; ++i) {
        char* const name = slot.prefix + slot.prefixLen;
        if (slot.names == nullptr) {
            putDecimal(name, i);
        } else {
            std::memcpy(name, slot.names[i].c_str(),
                        std::min<std::size_t>(slot.names[i].size() + 1, NAME_MAX));
        }
        (void)::unlink(slot.prefix);
    }
    if (slot.names != nullptr) {
        slot.prefix[slot.prefixLen] = '\0';
        (void)::rmdir(slot.prefix);
    }
    for (std::size_t i = 0; i < slot.directories && ::rmdir(slot.directory) == 0; ++i) {
        char* slash = std::strrchr(slot.directory, '/');
        if (slash == nullptr) {
            break;
        }
        *slash = '\0';
    }
}

void say(const std::string& line) {
    (void)writeAll(STDERR_FILENO, line.data(), line.size());
}

// The default action, as if there were no handler.
void endBy(int signal) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    (void)::signal(signal, SIG_DFL);
    (void)::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    (void)::raise(signal);
}

// Removes all unfinished output and ends.  On the main thread, which has no Hold.
void end(int signal) {
    stopping = true;
    while (holders != 0) {
        constexpr timespec kShort = {0, 1000000};
        (void)::nanosleep(&kShort, nullptr);
    }
    for (Slot& slot : slots) {
        removeOutput(slot);
    }
    // Outputs of one command appear together, so the first speaks for all.
    const Slot& first = slots[0].taken ? slots[0] : slots[1];
    say(first.state == Output::COMPLETE ? first.complete : first.untouched);
    endBy(signal);
}

long sinceAskedMs() {
    timespec now = {};
    (void)::clock_gettime(CLOCK_MONOTONIC, &now);
    return (now.tv_sec - askedAt.tv_sec) * 1000 + (now.tv_nsec - askedAt.tv_nsec) / 1000000;
}

void onSignal(int signal) {
    const int before = errno;
    if (asked == 0) {
        (void)::clock_gettime(CLOCK_MONOTONIC, &askedAt);
        asked = signal;
        if (holds == 0) {
            end(signal);
        }
    } else if (sinceAskedMs() >= kSameRequestMs) {
        for (const Slot& slot : slots) {
            say(slot.state == Output::COMPLETE  ? slot.complete
                : slot.state == Output::BETWEEN ? slot.between
                                                : slot.left);
        }
        endBy(signal);
    }
    errno = before;
}

void copyPath(char* to, std::size_t size, const std::string& path) {
    if (path.size() >= size) {
        throw Error(QV_IO_OPEN, "the path is too long", path);
    }
    std::memcpy(to, path.c_str(), path.size() + 1);
}

}  // namespace

void install() {
    installed = true;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_NODEFER);  // a second one gets through
    for (const int signal : kSignals) {
        struct sigaction before = {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            (void)::sigaction(signal, &action, nullptr);
        }
    }
}

Output::Output(const std::string& name) : slot_(!installed ? kNoSlot : slots[0].taken ? 1 : 0) {
    if (slot_ == kNoSlot) {
        return;
    }
    const std::string start = "qvejmap: interrupted: " + shown(name);
    const Hold hold;
    Slot& slot = slots[slot_];
    slot = {};
    slot.taken = true;
    slot.untouched = start + " is as it was, nothing was written to it\n";
    slot.complete = start + " is complete\n";
}

Output::~Output() {
    if (slot_ == kNoSlot) {
        return;
    }
    const Hold hold;
    slots[slot_] = {};
}

void Output::set(const std::string& prefix, const std::vector<std::string>* names,
                 const std::string& directory, std::size_t directories) {
    if (slot_ == kNoSlot) {
        return;
    }
    const Hold hold;
    Slot& slot = slots[slot_];
    const std::string twice = "qvejmap: interrupted twice: ";
    const std::string stays = shown(prefix) + "* may still be there\n";
    slot.left = twice + stays;
    slot.between = twice + "some of the new files may be in place and others not, " + stays;
    copyPath(slot.directory, sizeof slot.directory, directory);
    slot.directories = directories;
    copyPath(slot.prefix, PATH_MAX, prefix);
    slot.prefixLen = prefix.size();
    slot.names = names == nullptr ? nullptr : names->data();
    slot.count = 0;
}

void Output::setCount(std::size_t count) {
    if (slot_ == kNoSlot) {
        return;
    }
    const Hold hold;
    slots[slot_].count = count;
}

void Output::setState(State state) {
    if (slot_ == kNoSlot) {
        return;
    }
    const Hold hold;
    Slot& slot = slots[slot_];
    slot.state = state;
    if (state == COMPLETE) {
        slot.count = 0;
        slot.directories = 0;
    }
}

// end() first sets `stopping` and then looks at `holders`, this the other way round: so either the
// handler waits for this thread, or this thread stops.
Hold::Hold() {
    if (holds++ == 0) {
        ++holders;
        if (stopping) {
            --holders;
            while (true) {
                (void)::pause();
            }
        }
    }
}

Hold::~Hold() {
    if (holds == 1) {
        --holders;
    }
    // A signal up to here has waited, one after it does not.
    if (--holds == 0 && asked != 0) {
        end(asked);
    }
}

}  // namespace cleanup

}  // namespace qvej
