// How much real memory is still available, and how much this process holds.
//
// The smaller of what the system has (MemAvailable) and what each control group above this process
// leaves: its limit, less its usage, not counting file pages that it would give up at once.  Asked
// once for each block of records, so the files stay open and a query is a few reads.
//
// Tested by tests/host/memory_query_test.cpp
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvhost {

// The files of the system that are read; a test has its own.
struct MemoryPaths {
    std::string meminfo = "/proc/meminfo";
    std::string ownGroups = "/proc/self/cgroup";
    std::string groupRoot = "/sys/fs/cgroup";
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    std::string ownPages = {};  // most of what there is belongs to the sanitizer
#else
    std::string ownPages = "/proc/self/statm";
#endif
};

// A small file of the system that is read again and again.  Stays closed when it cannot be opened.
class PolledFile {
   public:
    explicit PolledFile(const std::string& path) noexcept;
    ~PolledFile();
    PolledFile(PolledFile&& other) noexcept;
    PolledFile(const PolledFile&) = delete;
    PolledFile& operator=(const PolledFile&) = delete;
    PolledFile& operator=(PolledFile&&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return fd_ >= 0; }
    // The whole text, at most `size` bytes of it; empty when it cannot be read.
    [[nodiscard]] std::string_view read(char* buffer, std::size_t size) const noexcept;

   private:
    int fd_;
};

class MemoryQuery {
   public:
    explicit MemoryQuery(const MemoryPaths& paths = {});

    // Bytes available, or none when the system gives no figure.  Safe to call from several threads.
    [[nodiscard]] std::optional<uint64_t> available() const;

    // Bytes of memory that the process itself has filled, files it has mapped left out; 0 when the
    // system gives no figure.  Safe to call from several threads.
    [[nodiscard]] uint64_t held() const;

   private:
    // One control group with a limit, or one above it.
    struct Group {
        PolledFile limit;
        PolledFile usage;
        PolledFile stat;
        std::string_view inactiveKey;  // field of `stat`: file pages not used lately
    };

    void addGroups(const std::string& root, std::string path, bool isUnified);

    PolledFile meminfo_;
    PolledFile ownPages_;
    std::vector<Group> groups_;
};

}  // namespace qvhost
