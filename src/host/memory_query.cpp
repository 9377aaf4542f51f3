// Reading the system's figures.
//
//   /proc/meminfo            "MemAvailable:   24319516 kB"
//   /proc/self/cgroup        "0::/user.slice" (unified) and "4:memory:/user.slice" (older): the
//                            path of this process's group below the mount; its parents bind it
//                            too
//   memory.max, memory.limit_in_bytes       a number, or "max"
//   memory.current, memory.usage_in_bytes   a number
//   /proc/self/statm         "2345 1200 900 ...": pages mapped, present, present and of files
//   memory.stat              "inactive_file 4096" a line; the older form has totals with "total_"
//
// Tested by tests/host/memory_query_test.cpp
#include "host/memory_query.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace qvhost {

namespace {

constexpr std::size_t kTextSize = 8192;  // more than any of these files has

// The number at the start of a text, after blanks.
std::optional<uint64_t> numberIn(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end == text.data()) {
        return std::nullopt;
    }
    return value;
}

// The number after `key` at the start of a line.
std::optional<uint64_t> fieldIn(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        if (text.starts_with(key)) {
            return numberIn(text.substr(key.size()));
        }
        const std::size_t line = text.find('\n');
        text.remove_prefix(line == std::string_view::npos ? text.size() : line + 1);
    }
    return std::nullopt;
}

// Memory that is wholly unused: less than what is available, but known without /proc.
std::optional<uint64_t> freePages() {
    const long pages = sysconf(_SC_AVPHYS_PAGES);
    const long size = sysconf(_SC_PAGESIZE);
    if (pages < 0 || size < 0) {
        return std::nullopt;
    }
    return static_cast<uint64_t>(pages) * static_cast<uint64_t>(size);
}

}  // namespace

PolledFile::PolledFile(const std::string& path) noexcept
    : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

PolledFile::PolledFile(PolledFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

PolledFile::~PolledFile() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

std::string_view PolledFile::read(char* buffer, std::size_t size) const noexcept {
    std::size_t length = 0;
    while (fd_ >= 0 && length < size) {
        const ssize_t got = pread(fd_, buffer + length, size - length, static_cast<off_t>(length));
        if (got <= 0) {
            break;
        }
        length += static_cast<std::size_t>(got);
    }
    return {buffer, length};
}

MemoryQuery::MemoryQuery(const MemoryPaths& paths)
    : meminfo_(paths.meminfo), ownPages_(paths.ownPages) {
    std::array<char, kTextSize> buffer;
    std::string_view text = PolledFile(paths.ownGroups).read(buffer.data(), buffer.size());
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (first == std::string_view::npos || second == std::string_view::npos) {
            continue;
        }
        const std::string_view controllers = line.substr(first + 1, second - first - 1);
        const std::string path(line.substr(second + 1));
        if (controllers.empty()) {
            addGroups(paths.groupRoot, path, true);
        } else if (controllers == "memory") {
            addGroups(paths.groupRoot + "/memory", path, false);
        }
    }
}

// Adds the group at `path` and those above it, as far as they have a limit to read.  Inside a
// container the path may lie outside of what is mounted; then the root is used.
void MemoryQuery::addGroups(const std::string& root, std::string path, bool isUnified) {
    for (;;) {
        while (path.ends_with('/')) {
            path.pop_back();
        }
        const std::string folder = root + path + "/memory.";
        Group group{PolledFile(folder + (isUnified ? "max" : "limit_in_bytes")),
                    PolledFile(folder + (isUnified ? "current" : "usage_in_bytes")),
                    PolledFile(folder + "stat"),
                    isUnified ? "inactive_file " : "total_inactive_file "};
        if (group.limit.isOpen() && group.usage.isOpen()) {
            groups_.push_back(std::move(group));
        }
        if (path.empty()) {
            return;
        }
        path.resize(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
    }
}

uint64_t MemoryQuery::held() const {
    std::array<char, kTextSize> buffer;
    std::string_view text = ownPages_.read(buffer.data(), buffer.size());
    const auto nextNumber = [&text] {
        text.remove_prefix(std::min(text.find(' '), text.size()));
        return numberIn(text);
    };
    const auto present = nextNumber();
    text.remove_prefix(std::min<std::size_t>(1, text.size()));
    const auto ofFiles = nextNumber();
    const long page = sysconf(_SC_PAGESIZE);
    if (!present || !ofFiles || page < 0) {
        return 0;
    }
    return (*present - std::min(*present, *ofFiles)) * static_cast<uint64_t>(page);
}

std::optional<uint64_t> MemoryQuery::available() const {
    std::array<char, kTextSize> buffer;
    const auto textOf = [&buffer](const PolledFile& file) {
        return file.read(buffer.data(), buffer.size());
    };
    constexpr uint64_t kKibi = 1024;
    std::optional<uint64_t> least;
    if (const auto system = fieldIn(textOf(meminfo_), "MemAvailable:")) {
        least = *system * kKibi;
    } else {
        least = freePages();
    }
    for (const Group& group : groups_) {
        const auto limit = numberIn(textOf(group.limit));
        const auto usage = numberIn(textOf(group.usage));
        if (!limit || !usage) {
            continue;  // "max": no limit here
        }
        uint64_t left = *limit - std::min(*limit, *usage);
        if (!least || left < *least) {
            // The statistics are slow to read, and are needed only here.
            const auto inactive = fieldIn(textOf(group.stat), group.inactiveKey);
            left = *limit - std::min(*limit, *usage - std::min(*usage, inactive.value_or(0)));
            least = std::min(left, least.value_or(left));
        }
    }
    return least;
}

}  // namespace qvhost
