// See raw_file.h.
#include "client/input/raw_file.h"

#include "client/error.h"

#include <poll.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr int kLookAgain = 20;  // milliseconds

bool isNamedPipe(const std::string& file) {
    struct stat found = {};
    return ::stat(file.c_str(), &found) == 0 && S_ISFIFO(found.st_mode);
}

}  // namespace

RawFile::RawFile(const std::string& file, std::shared_ptr<const ReadingStop> stop)
    : RawFile(file, 0) {
    stop_ = std::move(stop);
}

// A named pipe is opened without waiting for one who writes.
RawFile::RawFile(const std::string& file, std::function<bool()> stopped)
    : RawFile(file, stopped && isNamedPipe(file) ? O_NONBLOCK : 0) {
    stopped_ = std::move(stopped);
}

RawFile::RawFile(const std::string& file, int flags)
    : descriptor_(file == "-" ? STDIN_FILENO
                              : ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags)),
      name_(file == "-" ? "<stdin>" : file),
      buffer_(kPieceBytes) {
    if (descriptor_ < 0) {
        throw fileError(QV_IO_OPEN, name_);
    }
    (void)::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);  // only advice
}

RawFile::~RawFile() {
    if (descriptor_ != STDIN_FILENO) {
        (void)::close(descriptor_);  // only read from
    }
}

bool RawFile::isRegular() const {
    struct stat found = {};
    return ::fstat(descriptor_, &found) == 0 && S_ISREG(found.st_mode);
}

std::string_view RawFile::next() {
    std::size_t size = 0;
    while (size < buffer_.size() && !ended_) {
        if (stop_ != nullptr && size != 0 && !isRegular()) {
            break;  // it may be long until more comes
        }
        if (stop_ != nullptr && !stop_->waitFor(descriptor_)) {
            ended_ = true;
            break;
        }
        if (stopped_) {
            waitUntilStopped();
        }
        const ssize_t read = ::read(descriptor_, buffer_.data() + size, buffer_.size() - size);
        if (read < 0 && errno != EINTR && errno != EAGAIN) {
            throw fileError(QV_IO_READ, name_);
        }
        size += read < 0 ? 0 : static_cast<std::size_t>(read);
        ended_ = read == 0;
    }
    return {buffer_.data(), size};
}

// Waits until there is something to read, or the end.
void RawFile::waitUntilStopped() const {
    pollfd waited = {descriptor_, POLLIN, 0};
    while (::poll(&waited, 1, kLookAgain) == 0) {
        if (stopped_()) {
            throw Error(QV_STOPPED, qvStatusText(QV_STOPPED), name_);
        }
    }
}

}  // namespace qvej
