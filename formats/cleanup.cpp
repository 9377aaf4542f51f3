// See cleanup.h.
#include "formats/cleanup.h"

#include "client/error.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace qvej {

namespace cleanup {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGXFSZ};
constexpr std::size_t kDigits = 20;

// Changed only while the signals are held back, so the handler never sees them half-written.
struct Slot {
    bool taken;
    char prefix[PATH_MAX + NAME_MAX + 1];  // a path longer than that names no file
    std::size_t prefixLen;
    const std::string* names;  // null: numbers
    std::size_t count;
    char directory[PATH_MAX];
    std::size_t directories;
};
Slot slots[2];

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

void removeAll() {
    for (Slot& slot : slots) {
        removeOutput(slot);
    }
}

void onSignal(int signal) {
    removeAll();
    (void)::raise(signal);  // SA_RESETHAND: the default action now, once the handler returns
}

sigset_t signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kSignals) {
        sigaddset(&set, signal);
    }
    return set;
}

void copyPath(char* to, std::size_t size, const std::string& path) {
    if (path.size() >= size) {
        throw qvej::Error(QV_IO_OPEN, "the path is too long", path);
    }
    std::memcpy(to, path.c_str(), path.size() + 1);
}

}  // namespace

void install() {
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    action.sa_mask = signals();
    for (const int signal : kSignals) {
        struct sigaction before = {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            (void)::sigaction(signal, &action, nullptr);
        }
    }
}

Output::Output() : slot_(slots[0].taken ? 1 : 0) {
    const Hold hold;
    slots[slot_] = {};
    slots[slot_].taken = true;
}

Output::~Output() {
    const Hold hold;
    slots[slot_] = {};
}

void Output::set(const std::string& prefix, const std::vector<std::string>* names,
                 const std::string& directory, std::size_t directories) {
    const Hold hold;
    Slot& slot = slots[slot_];
    copyPath(slot.directory, sizeof slot.directory, directory);
    slot.directories = directories;
    copyPath(slot.prefix, PATH_MAX, prefix);
    slot.prefixLen = prefix.size();
    slot.names = names == nullptr ? nullptr : names->data();
    slot.count = 0;
}

void Output::setCount(std::size_t count) {
    const Hold hold;
    slots[slot_].count = count;
}

Hold::Hold() {
    const sigset_t set = signals();
    (void)::sigprocmask(SIG_BLOCK, &set, &before_);
}

Hold::~Hold() {
    (void)::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace cleanup

}  // namespace qvej
