// Unpacks a document on a thread of its own, some pieces ahead of who takes them.
//
// Only for a file that is compressed and of more than one piece: nothing else takes long, and a
// pipe may keep a thread waiting for ever.
//
// Tested by tests/client/read_ahead_test.cpp
#pragma once

#include "unpacker.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace qvej {

class ReadAhead {
   public:
    explicit ReadAhead(Unpacker source) : source_(std::move(source)) {}
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // As of Unpacker.  The first call starts the thread.
    std::string_view next();

    [[nodiscard]] const std::string& name() const { return source_.name(); }
    [[nodiscard]] bool isFile() const { return source_.isFile(); }
    [[nodiscard]] bool packed() const { return source_.packed(); }  // as of Unpacker

   private:
    using Piece = std::vector<char>;

    void start();
    void run();
    [[nodiscard]] std::string_view take();

    Unpacker source_;  // the thread's, while it runs
    bool begun_ = false;
    std::thread thread_;
    Piece current_;  // what the caller has

    std::mutex mutex_;  // of what follows
    std::condition_variable changed_;
    std::deque<Piece> ready_;
    bool ended_ = false;          // there will be no more pieces
    bool stopped_ = false;        // nobody wants more
    std::exception_ptr failure_;  // after the pieces
};

}  // namespace qvej
