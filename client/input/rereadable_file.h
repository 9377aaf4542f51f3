// A file that is read more than once, also when it is a pipe.
//
//     qvej::RereadableFile file("-");
//     ... file.walk() ... file.walk() ...
//
// A regular file is opened for each walk.  What cannot be opened twice is copied, as it is read, to
// a file without a name in privateCacheDirectory(), which ends with this object.
//
// Tested by tests/client/document_reader_test.cpp
#pragma once

#include "byte_source.h"

#include <memory>
#include <string>

namespace qvej {

class RereadableFile {
   public:
    // A file, or standard input: "-".
    explicit RereadableFile(std::string file);

    // The bytes from the beginning; a walk ends those before it.  Throws Error (QV_IO_OPEN), and
    // its `next` also QV_IO_WRITE and QV_IO_FULL, with the directory of the copy.
    ByteSource walk();

   private:
    class Copy;
    std::string file_;
    std::shared_ptr<Copy> copy_;  // null: of a regular file
};

}  // namespace qvej
