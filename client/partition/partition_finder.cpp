// See partition_finder.h.
#include "client/partition/partition_finder.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace qvej {
namespace {

// A large array that begins later in the text is not looked for: what comes before it is one
// partition, and is held until the array is found.
constexpr uint64_t kHeadBytes = uint64_t{16} << 20;

const uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const uint8_t*>(text.data());
}

// The bits from `at` on.  `at` is below 64.
uint64_t from(uint64_t bits, unsigned at) {
    return bits >> at << at;
}

bool isOneOf(uint8_t byte, std::string_view bytes) {
    return bytes.find(static_cast<char>(byte)) != bytes.npos;
}

unsigned lowest(uint64_t bits) {
    return static_cast<unsigned>(std::countr_zero(bits));
}

}  // namespace

PartitionFinder::PartitionFinder(TextForm form, uint64_t target, SkimKernel kernel)
    : skim_(skimRoutine(kernel)),
      target_(std::max(target, uint64_t{1})),
      state_(form == TextForm::LINES ? State::LINES : State::TEXT),
      status_(form == TextForm::SEQUENCE ? Status::STOPPED : Status::LOOKING),
      next_(target_) {}

void PartitionFinder::feed(std::string_view text, std::vector<Cut>& cuts) {
    if (status_ != Status::LOOKING || text.empty()) {
        return;
    }
    if (state_ == State::LINES) {
        feedLines(text, cuts);
        return;
    }
    piece_ = text;
    const uint8_t* p = bytesOf(text);
    const uint8_t* const end = p + text.size();
    const auto blockAt = [&](const uint8_t* block) {
        return offset_ + static_cast<uint64_t>(block - bytesOf(text));
    };
    while (status_ == Status::LOOKING && end - p >= kSkimBytes) {
        p = skim_(p, end, dueIn(text), skimmed_, block_);
        if (end - p >= kSkimBytes) {
            blockOffset_ = blockAt(p);
            look(p, 0, cuts);
            p += kSkimBytes;
        }
    }
    if (status_ == Status::LOOKING && p != end) {
        // Less than a block: it gets bytes in front that mean nothing.  An escape goes on from the
        // last of them.
        const auto left = static_cast<std::size_t>(end - p);
        const std::size_t filled = kSkimBytes - left;
        uint8_t last[kSkimBytes];
        std::memset(last, ' ', filled);
        std::memcpy(last + filled, p, left);
        last[filled - 1] = skimmed_.escaped != 0 ? '\\' : ' ';
        skimmed_.escaped = 0;
        const bool passed = skim_(last, last + kSkimBytes, last, skimmed_, block_) != last;
        skimmed_.feedBlock = skimmed_.feedBlock == last ? p : skimmed_.feedBlock;
        if (!passed) {
            blockOffset_ = blockAt(p) - filled;  // may wrap; no byte before `filled` has an offset
            look(last, static_cast<unsigned>(filled), cuts);
        }
    }
    offset_ += text.size();
    if (skimmed_.feeds != feedsBefore_) {
        feedsBefore_ = skimmed_.feeds;
        lineStart_ = offset_ - text.size() + lastFeed(text.size()) + 1;
    }
    if (status_ == Status::LOOKING && !inArray() && offset_ > kHeadBytes) {
        stop();
    }
}

// A cut at the end of a piece is one when something comes after it.
void PartitionFinder::feedLines(std::string_view text, std::vector<Cut>& cuts) {
    for (std::size_t at = 0; at < text.size();) {
        if (due_) {
            cuts.push_back(cut_);
            next_ = cut_.offset + target_;
            due_ = false;
        }
        const uint64_t earliest = std::max(next_ - 1, offset_ + at) - offset_;
        const std::size_t feed =
            earliest < text.size() ? text.find('\n', earliest) : std::string_view::npos;
        const std::size_t stop = feed == text.npos ? text.size() : feed + 1;
        skimmed_.feeds += std::count(text.begin() + static_cast<std::ptrdiff_t>(at),
                                     text.begin() + static_cast<std::ptrdiff_t>(stop), '\n');
        due_ = feed != text.npos;
        cut_ = {offset_ + stop, skimmed_.feeds + 1, 1};
        at = stop;
    }
    offset_ += text.size();
}

// Where in the piece the last line feed before `end` stands.  There is one, mostly in the last
// block that has any.
std::size_t PartitionFinder::lastFeed(std::size_t end) const {
    const auto block = static_cast<std::size_t>(skimmed_.feedBlock - bytesOf(piece_));
    const std::string_view before = piece_.substr(0, end);
    return before.rfind('\n', block + kSkimBytes);
}

// The place `after` bytes after the byte `at` of the block, which is no line feed.
Cut PartitionFinder::place(unsigned at, unsigned after) const {
    const uint64_t feeds = block_.feeds;
    const uint64_t feedsBefore = feeds & ~from(~uint64_t{0}, at);
    const int64_t blockFeeds = skimmed_.feeds - std::popcount(feeds);
    uint64_t lineStart = lineStart_;
    if (feedsBefore != 0) {
        lineStart = offsetOf(static_cast<unsigned>(std::bit_width(feedsBefore)));
    } else if (blockFeeds != feedsBefore_) {
        lineStart = offset_ + lastFeed(offsetOf(at) - offset_) + 1;
    }
    const uint64_t offset = offsetOf(at) + after;
    return {offset, blockFeeds + std::popcount(feedsBefore) + 1,
            static_cast<int64_t>(offset - lineStart) + 1};
}

// From where on a cut may be made.
const uint8_t* PartitionFinder::dueIn(std::string_view text) const {
    return bytesOf(text) + std::min(std::max(next_, offset_) - offset_, uint64_t{text.size()});
}

// A block in which a value ends, or which is outside.
void PartitionFinder::look(const uint8_t* bytes, unsigned at, std::vector<Cut>& cuts) {
    while (at < kSkimBytes && status_ == Status::LOOKING) {
        if (state_ >= State::INSIDE_ELEMENT) {
            at = inside(at);
        } else if (state_ == State::NAME || state_ == State::STRING) {
            at = inString(bytes, at);
        } else if (isOneOf(bytes[at], " \t\r\n")) {
            ++at;
        } else {
            at = token(bytes[at], at, cuts);
        }
    }
}

// The rest of a container; its own bracket may come first.
unsigned PartitionFinder::inside(unsigned at) {
    for (uint64_t brackets = from(block_.opens | block_.closes, at); brackets != 0;
         brackets &= brackets - 1) {
        const uint64_t bracket = brackets & -brackets;
        skimmed_.depth += (block_.opens & bracket) != 0 ? 1 : -1;
        if (skimmed_.depth == 0) {
            state_ = state_ == State::INSIDE_ELEMENT ? State::ELEMENT_NEXT : State::MEMBER_NEXT;
            return lowest(bracket) + 1;
        }
    }
    return kSkimBytes;
}

// The rest of a string of the outermost object.
unsigned PartitionFinder::inString(const uint8_t* bytes, unsigned at) {
    const uint64_t quotes = from(block_.quotes, at);
    const unsigned stop = lowest(quotes);  // 64: not in this block
    if (state_ == State::NAME) {
        name_.append(reinterpret_cast<const char*>(bytes) + at, stop - at);
    }
    if (quotes != 0) {
        state_ = state_ == State::NAME ? State::COLON : State::MEMBER_NEXT;
    }
    return stop + 1;
}

// A byte outside strings and of no container but the outermost ones.
unsigned PartitionFinder::token(uint8_t byte, unsigned at, std::vector<Cut>& cuts) {
    switch (state_) {
        case State::TEXT:
            ofObject_ = byte == '{';
            state_ = ofObject_ ? State::MEMBER : State::FIRST_ELEMENT;
            if ((byte != '{' && byte != '[') || offsetOf(at) > kHeadBytes) {
                stop();
            }
            return at + 1;
        case State::MEMBER:
            name_.clear();
            state_ = State::NAME;
            if (byte != '"') {
                stop();
            }
            return at + 1;
        case State::COLON:
            state_ = State::VALUE;
            if (byte != ':') {
                stop();
            }
            return at + 1;
        case State::VALUE:
            value(byte, at);
            return byte == '{' ? at : at + 1;
        case State::SCALAR:
        case State::MEMBER_NEXT:
            if (byte == ',') {
                state_ = State::MEMBER;
            } else if (state_ == State::MEMBER_NEXT || isOneOf(byte, "[]{}:\"")) {
                stop();
            }
            return at + 1;
        default:
            return element(byte, at, cuts);
    }
}

// The value of a member of the outermost object.
void PartitionFinder::value(uint8_t byte, unsigned at) {
    switch (byte) {
        case '[':
            if (offsetOf(at) > kHeadBytes) {
                stop();
            }
            begin_ = place(at, 1);
            next_ = begin_.offset + target_;
            state_ = State::FIRST_ELEMENT;
            break;
        case '{':
            state_ = State::INSIDE_CONTAINER;
            break;
        case '"':
            state_ = State::STRING;
            break;
        default:
            state_ = State::SCALAR;
    }
}

// Between the elements of an array that may be divided.
unsigned PartitionFinder::element(uint8_t byte, unsigned at, std::vector<Cut>& cuts) {
    if (state_ == State::ELEMENT_NEXT) {
        if (byte == ',') {
            comma(at);
        } else if (byte == ']') {
            endArray(at, cuts);
        } else {
            stop();
        }
        return at + 1;
    }
    if (byte == '{') {
        if (due_) {
            chooseMember(cuts);
            cuts.push_back(cut_);
            next_ = cut_.offset + target_;
            due_ = false;
        }
        state_ = State::INSIDE_ELEMENT;
    } else if (ofObject_ && !ofMember_) {
        // Not the array that is looked for.
        due_ = false;
        skimmed_.depth = 1;
        state_ = State::INSIDE_CONTAINER;
    } else {
        stop();
    }
    return at;
}

void PartitionFinder::comma(unsigned at) {
    state_ = State::ELEMENT;
    if (offsetOf(at) + 1 >= next_) {
        cut_ = place(at, 1);
        due_ = true;
    }
}

void PartitionFinder::endArray(unsigned at, std::vector<Cut>& cuts) {
    if (ofObject_ && !ofMember_ && offsetOf(at) - begin_.offset <= target_) {
        state_ = State::MEMBER_NEXT;
        return;
    }
    if (ofObject_) {
        chooseMember(cuts);
        cuts.push_back(place(at, 0));
    }
    status_ = Status::ENDED;
}

void PartitionFinder::chooseMember(std::vector<Cut>& cuts) {
    if (ofObject_ && !ofMember_) {
        ofMember_ = true;
        cuts.push_back(begin_);
    }
}

}  // namespace qvej
