// See directory_lock.h.
#include "formats/directory_lock.h"

#include "client/error.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qvej {

namespace {

// Does the descriptor still lead to what has the name?  A new directory is put in its place by
// renaming.
bool isAt(int descriptor, const std::string& path) {
    struct stat own = {};
    struct stat named = {};
    return ::fstat(descriptor, &own) == 0 && ::stat(path.c_str(), &named) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

}  // namespace

DirectoryLock::~DirectoryLock() {
    if (descriptor_ >= 0) {
        (void)::close(descriptor_);
    }
}

void DirectoryLock::lock(const std::string& directory) {
    while (true) {
        descriptor_ = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor_ < 0) {
            return;
        }
        if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) {
                throw Error(QV_IO_REFUSED, "another qvejmap is writing to this directory",
                            directory);
            }
            return;
        }
        if (isAt(descriptor_, directory)) {
            return;
        }
        (void)::close(descriptor_);
    }
}

}  // namespace qvej
