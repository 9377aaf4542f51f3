// See raw_file.h.
#include "client/input/raw_file.h"

#include "client/error.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qvej {
namespace {
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
}

RawFile::RawFile(const std::string& file, std::shared_ptr<const ReadingStop> stop)
    : descriptor_(file == "-" ? STDIN_FILENO
                              : ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)),
      stop_(std::move(stop)),
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
        const ssize_t read = ::read(descriptor_, buffer_.data() + size, buffer_.size() - size);
        if (read < 0 && errno != EINTR) {
            throw fileError(QV_IO_READ, name_);
        }
        size += read < 0 ? 0 : static_cast<std::size_t>(read);
        ended_ = read == 0;
    }
    return {buffer_.data(), size};
}

}  // namespace qvej
