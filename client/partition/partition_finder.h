// Where a JSON text may be cut into partitions, found while the text streams by.
//
//   JSON Lines       after a line feed
//   an array         after a comma between two elements: [{..},|{..},|{..}]
//   a large member   the same, and around the elements: {"n":3,"rows":[|{..},|{..}|],"x":0}
//
// The member is the first one of the outermost object whose value is an array that begins with an
// object and is longer than the target.  All elements must be objects: at the first other one, or
// at a mistake between two elements, the finder stops.  Up to the first mistake of a text each cut
// is right; the parser of a partition finds the mistake.
//
// Tested by tests/client/partition_test.cpp and, for speed, bench/bench_parser.cpp
#pragma once

#include "client/partition/skim.h"
#include "client/text_form.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

constexpr uint64_t kPartitionBytes = uint64_t{4} << 20;

// A place between two partitions.
struct Cut {
    uint64_t offset;  // bytes of the text before it
    int64_t line;     // from 1, of the byte after it
    int64_t column;   // from 1, in bytes
};

class PartitionFinder {
   public:
    // Cuts are at least `target` bytes apart, but for the one after the last element.
    explicit PartitionFinder(TextForm form, uint64_t target = kPartitionBytes,
                             SkimKernel kernel = SkimKernel::BEST);

    // Looks at the next piece of the text (UTF-8) and appends the cuts that it finds.  A cut may
    // lie before the piece: one between elements is known when the next element begins, the one
    // before a member's first element when its array has got long enough.
    void feed(std::string_view text, std::vector<Cut>& cuts);

    enum class Status : uint8_t {
        LOOKING,
        STOPPED,  // there are no more cuts, since the rest of the text is not to be divided
        ENDED,    // the array has ended; for a member's, the last cut is before its ']'
    };
    [[nodiscard]] Status status() const { return status_; }

    [[nodiscard]] uint64_t target() const { return target_; }
    [[nodiscard]] bool ofLines() const { return state_ == State::LINES; }
    // Whether the elements are those of a member: then the first cut is before its first element.
    [[nodiscard]] bool ofMember() const { return ofMember_; }
    // The name of that member, as it stands between the quotes.
    [[nodiscard]] std::string_view member() const { return name_; }

   private:
    // What comes next, but for white space.
    enum class State : uint8_t {
        LINES,            // all the time
        TEXT,             // the value of the text
        MEMBER,           // after '{' or ',' in the outermost object
        NAME,             // the rest of a name
        COLON,            // after a name
        VALUE,            // after ':'
        STRING,           // the rest of a string that is a member's value
        SCALAR,           // the rest of another scalar, or what comes after it
        MEMBER_NEXT,      // after a member's value
        FIRST_ELEMENT,    // after '[' of an array that may be divided
        ELEMENT,          // after ',' in it
        ELEMENT_NEXT,     // after an element
        INSIDE_ELEMENT,   // more of an element: the depth says where it ends
        INSIDE_CONTAINER  // the same, of a member's value that is not divided
    };

    void feedLines(std::string_view text, std::vector<Cut>& cuts);
    void look(const uint8_t* bytes, unsigned from, std::vector<Cut>& cuts);
    unsigned inside(unsigned at);
    unsigned inString(const uint8_t* bytes, unsigned at);
    unsigned token(uint8_t byte, unsigned at, std::vector<Cut>& cuts);
    void value(uint8_t byte, unsigned at);
    unsigned element(uint8_t byte, unsigned at, std::vector<Cut>& cuts);
    void comma(unsigned at);
    void endArray(unsigned at, std::vector<Cut>& cuts);
    void chooseMember(std::vector<Cut>& cuts);
    void stop() { status_ = Status::STOPPED; }

    [[nodiscard]] bool inArray() const {
        return state_ >= State::FIRST_ELEMENT && state_ <= State::INSIDE_ELEMENT;
    }
    [[nodiscard]] uint64_t offsetOf(unsigned at) const {
        return blockOffset_ + static_cast<uint64_t>(at);
    }
    [[nodiscard]] const uint8_t* dueIn(std::string_view text) const;
    [[nodiscard]] std::size_t lastFeed(std::size_t end) const;
    [[nodiscard]] Cut place(unsigned at, unsigned after) const;

    const Skim skim_;
    const uint64_t target_;
    State state_;
    Status status_ = Status::LOOKING;
    SkimState skimmed_;  // its depth is 0 outside INSIDE_ELEMENT and INSIDE_CONTAINER
    bool ofObject_ = false;
    bool ofMember_ = false;
    bool due_ = false;  // `cut_` is a cut if an object comes next, or any line
    uint64_t next_;     // a cut may be made from this offset on
    Cut cut_ = {};
    Cut begin_ = {};    // of a member's elements
    std::string name_;  // of the last member

    uint64_t offset_ = 0;     // of the piece
    uint64_t lineStart_ = 0;  // of the line in which it begins
    int64_t feedsBefore_ = 0;

    // During `look`.
    std::string_view piece_;
    uint64_t blockOffset_ = 0;  // of the block's first byte
    SkimBlock block_ = {};
};

}  // namespace qvej
