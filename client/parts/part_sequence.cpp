// See part_sequence.h.
#include "client/parts/part_sequence.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qvej {
namespace {

using Kind = Partition::Kind;

// Whether more of the same elements or lines come after the piece.
bool goesOn(const Partition& partition) {
    return partition.kind == Kind::FIRST || partition.kind == Kind::MIDDLE;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Holds back one piece, to see what comes after it.
class Sequence {
   public:
    explicit Sequence(const TakePart& take) : take_(take) {}

    void add(TextPart piece) {
        if (held_) {
            take_(std::move(*held_));
        }
        held_ = std::move(piece);
    }

    // The next piece goes on with the part of the one before.
    //   head  what must be before that one, if it begins the part; null: it says so itself
    void join(std::shared_ptr<const std::string> head) {
        held_->partition.more = true;
        held_->endsPart = false;
        if (head != nullptr) {
            held_->head = std::move(head);
        }
    }

    //   last  the document ends here, too
    void end(bool last) {
        if (held_) {
            held_->endsPart = true;
            held_->last = last;
            take_(std::move(*held_));
        }
    }

   private:
    const TakePart& take_;
    std::optional<TextPart> held_;
};

}  // namespace

void readInParts(const PartsOfDocument& parts, uint64_t least, Members members,
                 const TakePart& take) {
    Sequence sequence(take);
    bool begins = true;  // the next piece begins a part of the text
    std::size_t number = parts.excerpt ? parts.excerpt->number : 0;  // of that part
    uint64_t bytes = 0;                                              // of the part that is given
    std::shared_ptr<const std::string> head;  // what comes before the elements
    parts.read(PartsOfDocument::kPartBytes, [&](TextPart piece) {
        Partition& partition = piece.partition;
        if (partition.kind == Kind::REST) {
            throw Indivisible();
        }
        const bool endsHere = !partition.more;
        if (partition.kind == Kind::HEAD && members == Members::JOINED) {
            head = std::make_shared<const std::string>(partition.text);
            partition.more = true;
        }
        if (partition.kind == Kind::TAIL && members == Members::JOINED && begins) {
            sequence.join(head);
            begins = false;
        }
        // Blank lines are no part: to a parser they would be an empty array.
        if (begins && partition.kind != Kind::WHOLE && isBlank(partition.text)) {
            if (partition.kind != Kind::LAST && !parts.excerpt) {
                throw Indivisible();
            }
            return;
        }
        piece.number = number;
        begins = !partition.more;
        number += endsHere ? 1 : 0;
        bytes += partition.text.size();
        const bool small = goesOn(partition) && piece.member.empty() && bytes < least;
        partition.more = partition.more || small;
        piece.endsPart = !partition.more;
        bytes = piece.endsPart ? 0 : bytes;
        sequence.add(std::move(piece));
    });
    sequence.end(!parts.excerpt || parts.excerpt->last);
}

void readAsOne(const PartsOfDocument& parts, const TakePart& take) {
    Sequence sequence(take);
    parts.read(kUndivided, [&](TextPart piece) {
        piece.endsPart = false;
        sequence.add(std::move(piece));
    });
    sequence.end(true);
}

}  // namespace qvej
