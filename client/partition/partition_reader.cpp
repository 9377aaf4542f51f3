// See partition_reader.h.
#include "client/partition/partition_reader.h"

#include <utility>

namespace qvej {

PartitionReader::PartitionReader(PartitionFinder& finder, std::function<void(Partition)> take)
    : finder_(finder), take_(std::move(take)) {
    open_.text = buffer();
}

void PartitionReader::feed(std::string_view text) {
    cuts_.clear();
    finder_.feed(text, cuts_);
    for (const Cut& cut : cuts_) {
        divide(cut, text);
    }
    open_.text += text;
    offset_ += text.size();
    if (finder_.status() != PartitionFinder::Status::LOOKING &&
        open_.text.size() >= finder_.target()) {
        deliver(lastKind(), true, buffer());
    }
}

void PartitionReader::finish() {
    deliver(lastKind(), false, {});
}

void PartitionReader::giveBack(std::string buffer) {
    buffer.clear();
    const std::lock_guard lock(mutex_);
    spare_.push_back(std::move(buffer));
}

// Ends the open partition at `cut`, which is in it or in `text`, and takes from `text` what stands
// before it.
void PartitionReader::divide(const Cut& cut, std::string_view& text) {
    std::string next = buffer();
    if (cut.offset >= offset_) {
        const std::size_t size = cut.offset - offset_;
        open_.text += text.substr(0, size);
        text.remove_prefix(size);
        offset_ = cut.offset;
    } else {
        // White space, or the elements before a member was known to be large.
        const std::size_t size = cut.offset - open_.begin.offset;
        next.assign(open_.text, size);
        open_.text.resize(size);
    }
    const bool first = cutCount_++ == 0;
    deliver(!first               ? Partition::Kind::MIDDLE
            : finder_.ofMember() ? Partition::Kind::HEAD
                                 : Partition::Kind::FIRST,
            false, std::move(next));
    open_.begin = cut;
}

// Gives out the open partition.  The next one begins with the text `next`.
void PartitionReader::deliver(Partition::Kind kind, bool more, std::string next) {
    open_.kind = kind;
    open_.more = more;
    take_(std::exchange(open_, Partition{std::move(next), open_.begin}));
}

// What the partition is that nothing cuts any more.
Partition::Kind PartitionReader::lastKind() const {
    if (cutCount_ == 0) {
        return Partition::Kind::WHOLE;
    }
    if (finder_.ofMember() && finder_.status() == PartitionFinder::Status::ENDED) {
        return Partition::Kind::TAIL;
    }
    return finder_.ofLines() || finder_.status() == PartitionFinder::Status::ENDED
               ? Partition::Kind::LAST
               : Partition::Kind::REST;
}

std::string PartitionReader::buffer() {
    const std::lock_guard lock(mutex_);
    if (!spare_.empty()) {
        std::string last = std::move(spare_.back());
        spare_.pop_back();
        return last;
    }
    std::string made;
    made.reserve(finder_.target() + finder_.target() / 8);
    return made;
}

}  // namespace qvej
