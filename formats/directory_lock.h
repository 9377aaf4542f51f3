// One writer of a directory at a time.
//
// The lock is the system's, on the directory itself: no file stands for it, and it ends with the
// process.  Where the file system has no such locks, or the directory may not be read, all goes on
// without.
//
// Tested by tests/tool/golden/convert_again.t
#pragma once

#include <string>

namespace qvej {

class DirectoryLock {
   public:
    DirectoryLock() = default;
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

    // Locks a directory that exists, until this object ends.  Throws qvej::Error when another has
    // the lock.  At most once.
    void lock(const std::string& directory);

   private:
    int descriptor_ = -1;
};

}  // namespace qvej
