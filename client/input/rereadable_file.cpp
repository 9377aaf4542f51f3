// See rereadable_file.h.
#include "client/input/rereadable_file.h"

#include "client/cache_file.h"
#include "client/error.h"
#include "client/input/raw_file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace qvej {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

bool isRegular(const std::string& file) {
    struct stat found = {};
    return file != "-" && ::stat(file.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

// A file that has no name, or that loses it at once.
int openNameless(const std::string& directory) {
    const int descriptor =
        ::open(directory.c_str(), O_TMPFILE | O_EXCL | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) {
        return descriptor;
    }
    std::string name = directory + "qvejmap-XXXXXX";
    const int named = ::mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0) {
        (void)::unlink(name.c_str());  // else it stays, readable by this user only
    }
    return named;
}

}  // namespace

// What has been read of a pipe so far, and the pipe.
class RereadableFile::Copy {
   public:
    explicit Copy(const std::string& file)
        : source_(file), directory_(privateCacheDirectory()), copy_(openNameless(directory_)) {
        if (copy_ < 0) {
            throw fileError(QV_IO_OPEN, directory_);
        }
    }
    ~Copy() { (void)::close(copy_); }  // nobody misses what it held
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    [[nodiscard]] const std::string& name() const { return source_.name(); }

    // The next walk begins.
    void rewind() { at_ = 0; }

    // Bytes that were read before, then further ones.
    std::string_view next() {
        const std::string_view piece = at_ < size_ ? copied() : source_.next();
        if (at_ == size_) {
            keep(piece);
        }
        at_ += static_cast<off_t>(piece.size());
        return piece;
    }

   private:
    std::string_view copied() {
        buffer_.resize(kPieceBytes);
        ssize_t read = 0;
        do {
            read = ::pread(copy_, buffer_.data(), buffer_.size(), at_);
        } while (read < 0 && errno == EINTR);
        if (read <= 0) {
            throw fileError(QV_IO_READ, directory_);
        }
        return {buffer_.data(), static_cast<std::size_t>(read)};
    }

    void keep(std::string_view piece) {
        while (!piece.empty()) {
            const ssize_t written = ::pwrite(copy_, piece.data(), piece.size(), size_);
            if (written < 0 && errno != EINTR) {
                throw fileError(errno == ENOSPC || errno == EDQUOT ? QV_IO_FULL : QV_IO_WRITE,
                                directory_);
            }
            const std::size_t size = written < 0 ? 0 : static_cast<std::size_t>(written);
            piece.remove_prefix(size);
            size_ += static_cast<off_t>(size);
        }
    }

    RawFile source_;
    std::string directory_;
    int copy_;
    off_t size_ = 0;  // bytes in the copy
    off_t at_ = 0;    // of the walk
    std::vector<char> buffer_;
};

RereadableFile::RereadableFile(std::string file) : file_(std::move(file)) {}

ByteSource RereadableFile::walk() {
    if (copy_) {
        copy_->rewind();
    } else if (isRegular(file_)) {
        return ByteSource::file(file_);
    } else {
        copy_ = std::make_shared<Copy>(file_);
    }
    return ByteSource::pulled([copy = copy_] { return copy->next(); }, copy_->name());
}

}  // namespace qvej
