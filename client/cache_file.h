// The name of a private cache file.
//
// The engine opens its cache file only when blocks must leave memory, so a document needs a name
// long before it needs a file, and most documents never need the file.  The name is therefore an
// unpredictable one (128 random bits) in the temporary directory: nothing is made until the engine
// makes the file itself, exclusively, mode 0600, through no symbolic link.  A private directory
// would be as safe but would have to be made and removed for every document.
//
// The file is unlinked as soon as it exists for sure (the host keeps the descriptor and reads from
// it), and once more when the object ends.
//
// Tested by tests/tool/golden/spill.t
#pragma once

#include <string>

namespace qvej {

// 128 random bits as 32 digits.
std::string randomHex();

class PrivateCacheFile {
   public:
    // Chooses a name in `directory`; empty: in $TMPDIR, else in /tmp.
    explicit PrivateCacheFile(const std::string& directory = {});
    ~PrivateCacheFile();
    PrivateCacheFile(const PrivateCacheFile&) = delete;
    PrivateCacheFile& operator=(const PrivateCacheFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    // Removes the file when it is there.  No failure is reported: nobody else knows the name.
    void remove() const;

   private:
    std::string path_;
};

}  // namespace qvej
