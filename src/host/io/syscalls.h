// The system calls of the module "qvioe", in a table, so that a test can make each of them fail.
//
// Tested by tests/host/io_test.cpp
#pragma once

#include <cstddef>
#include <sys/stat.h>
#include <sys/types.h>

namespace qvhost {

// Each as the system's own: -1 and errno for failure.
struct Syscalls {
    int (*open)(const char* path, int flags, mode_t mode);
    int (*fstat)(int fd, struct stat* info);
    int (*fchmod)(int fd, mode_t mode);
    int (*flock)(int fd, int operation);
    ssize_t (*pwrite)(int fd, const void* bytes, std::size_t count, off_t offset);
    ssize_t (*pread)(int fd, void* bytes, std::size_t count, off_t offset);
    int (*ftruncate)(int fd, off_t size);
    int (*unlink)(const char* path);
    int (*duplicate)(int fd);  // closed when another program is started
    int (*close)(int fd);
};

[[nodiscard]] const Syscalls& posixSyscalls() noexcept;

}  // namespace qvhost
