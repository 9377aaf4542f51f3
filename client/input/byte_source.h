// Where the bytes of a document come from, before anything is made of them.
//
// Tested by tests/client/document_reader_test.cpp
#pragma once

#include "reading_stop.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace qvej {

class RawFile;

// Gives the next bytes of a text, empty at its end.  They live until the next call.
using Pull = std::function<std::string_view()>;

class ByteSource {
   public:
    // A file, or standard input: "-".  Throws Error (QV_IO_OPEN).
    static ByteSource file(const std::string& path);
    // The same, for one who cannot wait: a piece is what has come of a pipe, and with `stop` the
    // bytes end.
    static ByteSource asItComes(const std::string& path, std::shared_ptr<const ReadingStop> stop);
    // The same, for one who may want no more of it: see stopWhen.  A wait for a pipe ends, too.
    static ByteSource untilStopped(const std::string& path, std::function<bool()> stopped);
    // `bytes` must outlive the source.
    static ByteSource memory(std::string_view bytes, std::string name = "<memory>");
    // Pieces of any size.  What `pull` throws goes to the caller of `next`.  `isFile`: they come
    // from a regular file, without waiting, and `pull` may be called on another thread.
    static ByteSource pulled(Pull pull, std::string name, bool isFile = false);

    // The next piece, empty at the end.  The first one holds at least the bytes that tell what the
    // text is, if there are as many.  It lives until the next call.  Throws Error (QV_IO_READ).
    std::string_view next();

    // What messages call it: the file as given, "<stdin>", or the name.
    [[nodiscard]] const std::string& name() const { return name_; }

    // From now on `next` throws Error (QV_STOPPED) when `stopped` says so.
    void stopWhen(std::function<bool()> stopped) { stopped_ = std::move(stopped); }

    // Does it come from a regular file?
    [[nodiscard]] bool isFile() const { return isFile_; }

   private:
    static ByteSource of(std::shared_ptr<RawFile> file);
    ByteSource(Pull pull, std::string name, bool isFile)
        : pull_(std::move(pull)), name_(std::move(name)), isFile_(isFile) {}
    std::string_view pull();

    Pull pull_;
    std::string name_;
    bool isFile_;
    std::function<bool()> stopped_;
    std::string start_;  // the first pieces, when they are short
    bool begun_ = false;
    bool ended_ = false;
};

}  // namespace qvej
