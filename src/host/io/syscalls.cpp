// The system calls as the system has them.
//
// Tested by tests/host/io_test.cpp
#include "host/io/syscalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace qvhost {

static_assert(sizeof(off_t) == 8, "cache files may be longer than 2 GiB");

const Syscalls& posixSyscalls() noexcept {
    static constexpr Syscalls kCalls = {
        .open = [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
        .fstat = [](int fd, struct stat* info) { return ::fstat(fd, info); },
        .fchmod = &::fchmod,
        .flock = &::flock,
        .pwrite = &::pwrite,
        .pread = &::pread,
        .ftruncate = &::ftruncate,
        .unlink = &::unlink,
        .duplicate = [](int fd) { return ::fcntl(fd, F_DUPFD_CLOEXEC, 0); },
        .close = &::close,
    };
    return kCalls;
}

}  // namespace qvhost
