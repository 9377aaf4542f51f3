// The text of a document, collected into partitions while it streams by.
//
// Memory: the open partition, and the buffers that were given back.  A partition is as large as the
// target and one element, at least.  Once nothing more can be cut, the rest comes in several parts.
//
// Tested by tests/client/partition_test.cpp
#pragma once

#include "client/partition/partition_finder.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct Partition {
    enum class Kind : uint8_t {
        WHOLE,   // all of the text, which is not divided
        FIRST,   // elements or lines, from the beginning of the text on
        MIDDLE,  // elements or lines
        LAST,    // the same, up to the end of the text
        HEAD,    // up to the '[' before the elements of a member
        TAIL,    // from the ']' after them to the end of the text
        REST     // elements, then to the end of the text what is not to be divided
    };
    std::string text;
    Cut begin = {0, 1, 1};  // where it begins in the document
    Kind kind = Kind::WHOLE;
    bool more = false;  // the next one goes on with it, cut anywhere, and says the same `begin`
};

class PartitionReader {
   public:
    // `take` gets each partition, in order, and may keep it.  `finder` has seen nothing yet,
    // and must outlive the reader.
    PartitionReader(PartitionFinder& finder, std::function<void(Partition)> take);

    // The next piece of the text, UTF-8.
    void feed(std::string_view text);
    // Ends the text.
    void finish();

    // A buffer to use again; from any thread.
    void giveBack(std::string buffer);

   private:
    void divide(const Cut& cut, std::string_view& text);
    void deliver(Partition::Kind kind, bool more, std::string next);
    [[nodiscard]] Partition::Kind lastKind() const;
    [[nodiscard]] std::string buffer();

    PartitionFinder& finder_;
    std::function<void(Partition)> take_;
    std::vector<Cut> cuts_;  // of one piece
    uint64_t cutCount_ = 0;
    uint64_t offset_ = 0;  // of the text to come
    Partition open_;
    std::mutex mutex_;  // for `spare_`
    std::vector<std::string> spare_;
};

}  // namespace qvej
