// See cleanup.h.
#include "tools/cli/cleanup.h"

#include "tools/cli/failure.h"

#include <array>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace cleanup {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGXFSZ};
constexpr std::size_t kDigits = 20;

// Changed only while the signals are held back, so the handler never sees them half-written.
char cacheFile[PATH_MAX];
char outputPrefix[PATH_MAX + kDigits + 1];
std::size_t outputPrefixLen;
std::size_t outputCount;
char madeDirectory[PATH_MAX];
std::size_t madeDirectories;

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

void removeAll() {
    if (cacheFile[0] != '\0') {
        (void)::unlink(cacheFile);
    }
    for (std::size_t i = 0; i < outputCount; ++i) {
        putDecimal(outputPrefix + outputPrefixLen, i);
        (void)::unlink(outputPrefix);
    }
    for (std::size_t i = 0; i < madeDirectories && ::rmdir(madeDirectory) == 0; ++i) {
        char* slash = std::strrchr(madeDirectory, '/');
        if (slash == nullptr) {
            break;
        }
        *slash = '\0';
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
        throw Failure(FILE_TROUBLE, path + ": the path is too long");
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

void setCacheFile(const std::string& path) {
    const Hold hold;
    copyPath(cacheFile, sizeof cacheFile, path);
}

void setOutput(const std::string& prefix, const std::string& directory, std::size_t directories) {
    const Hold hold;
    copyPath(madeDirectory, sizeof madeDirectory, directory);
    madeDirectories = directories;
    copyPath(outputPrefix, PATH_MAX, prefix);
    outputPrefixLen = prefix.size();
    outputCount = 0;
}

void setOutputCount(std::size_t count) {
    const Hold hold;
    outputCount = count;
}

void forgetOutput() {
    const Hold hold;
    outputCount = 0;
    madeDirectories = 0;
}

Hold::Hold() {
    const sigset_t set = signals();
    (void)::sigprocmask(SIG_BLOCK, &set, &before_);
}

Hold::~Hold() {
    (void)::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace cleanup
