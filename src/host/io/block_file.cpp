// Block files over the table of system calls: positions are our own, transfers go on until they are
// whole, and what the system answers becomes a status.
//
// Tested by tests/host/io_test.cpp
#include "host/io/block_file.h"

#include "host/io/syscalls.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <unistd.h>

namespace qvhost {
namespace {

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

// Repeats a call that a signal has interrupted.
template <class Call>
auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) {
            return result;
        }
    }
}

bool isFull(int error) noexcept {
    return error == ENOSPC || error == EDQUOT;
}

QVStatus openStatus(int error) noexcept {
    switch (error) {
        case ELOOP:   // a symbolic link
        case EISDIR:  // a directory
        case ENXIO:   // a socket, or a device that is not there
            return QV_IO_REFUSED;
        default:
            return isFull(error) ? QV_IO_FULL : QV_IO_OPEN;
    }
}

bool isOurs(const struct stat& info) noexcept {
    return S_ISREG(info.st_mode) && info.st_size == 0 && info.st_nlink == 1 &&
           info.st_uid == ::geteuid();
}

int open(const Syscalls& calls, const std::string& path, int flags) {
    return uninterrupted([&] {
        return calls.open(path.c_str(), flags | O_RDWR | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly);
    });
}

// A file under a random name, which is removed at once.
int openBriefly(const Syscalls& calls, const std::string& directory) {
    std::random_device random;
    std::string path = directory + "qvejmap-";
    for (int word = 0; word < 4; ++word) {
        path += std::to_string(random());
    }
    const int fd = open(calls, path, O_CREAT | O_EXCL);
    if (fd >= 0 && calls.unlink(path.c_str()) != 0) {
        (void)calls.close(fd);  // nothing has been written
        return -1;
    }
    return fd;
}

int openNameless(const Syscalls& calls, const std::string& directory) {
    const int fd = open(calls, directory, O_TMPFILE | O_EXCL);
    const bool unknown = fd < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL);
    return unknown ? openBriefly(calls, directory) : fd;
}

}  // namespace

QVStatus BlockFile::create(const Syscalls& calls, const std::string& path,
                           std::shared_ptr<BlockFile>& file) {
    const bool nameless = path.ends_with('/');
    // Nothing is cut off an existing file, and a pipe or a device does not keep us waiting.
    const int fd =
        nameless ? openNameless(calls, path) : open(calls, path, O_CREAT | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        return openStatus(errno);
    }
    std::unique_ptr<BlockFile> made;
    try {
        made.reset(new BlockFile(calls, fd));
    } catch (...) {
        calls.close(fd);
        throw;
    }
    if (!nameless) {
        if (const QVStatus status = made->claim(); status != QV_OK) {
            return status;
        }
    }
    file = std::move(made);
    return QV_OK;
}

// Looks at what has been opened before anything of it is changed.
QVStatus BlockFile::claim() {
    struct stat info {};
    if (calls_.fstat(fd_, &info) != 0) {
        return QV_IO_OPEN;
    }
    if (!isOurs(info)) {
        return QV_IO_REFUSED;
    }
    // Two writers of one empty file would mix their blocks.  Where the file system has no locks,
    // only the caller's choice of names prevents that.
    if (calls_.flock(fd_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        return QV_IO_REFUSED;
    }
    // The umask may have left less, an existing file may allow more.
    return calls_.fchmod(fd_, kOwnerOnly) == 0 ? QV_OK : QV_IO_OPEN;
}

BlockFile::~BlockFile() {
    (void)calls_.close(fd_);  // the bytes are not needed any more
}

QVStatus BlockFile::append(std::span<const char> block) {
    blocks_.push_back({size_, static_cast<int64_t>(block.size())});
    int64_t end = size_;
    while (!block.empty()) {
        const ssize_t count =
            uninterrupted([&] { return calls_.pwrite(fd_, block.data(), block.size(), end); });
        if (count <= 0) {
            const QVStatus status = count < 0 && isFull(errno) ? QV_IO_FULL : QV_IO_WRITE;
            blocks_.pop_back();
            (void)calls_.ftruncate(fd_, size_);  // the status is that of the first failure
            return status;
        }
        end += count;
        block = block.subspan(static_cast<std::size_t>(count));
    }
    size_ = end;
    return QV_OK;
}

// A file system that writes late reports at a close.  So one of two descriptors is closed.
QVStatus BlockFile::finish() {
    const int kept = calls_.duplicate(fd_);
    if (kept < 0) {
        return QV_OK;  // no descriptor is free: the file goes on with the one it has
    }
    const int closed = calls_.close(fd_);
    fd_ = kept;
    return closed == 0 ? QV_OK : QV_IO_CLOSE;
}

QVStatus BlockFile::read(const Block& block, char* room) const {
    int64_t done = 0;
    while (done < block.length) {
        const ssize_t count = uninterrupted([&] {
            return calls_.pread(fd_, room + done, static_cast<std::size_t>(block.length - done),
                                block.offset + done);
        });
        if (count <= 0) {
            return count == 0 ? QV_IO_SHORT : QV_IO_READ;
        }
        done += count;
    }
    return QV_OK;
}

}  // namespace qvhost
