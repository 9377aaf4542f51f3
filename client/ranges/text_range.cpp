// See text_range.h.
#include "client/ranges/text_range.h"

#include "client/error.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <unistd.h>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::size_t kLineBytes = std::size_t{1} << 16;  // in which most lines end
// Of a file that is read by a function each piece is a request, which an object store answers some
// 50 ms later, at 100 MB in a second: this many bytes take as long as the wait for them.  Rows are
// made of one piece while the next one comes, so larger ones would only need more memory.
constexpr std::size_t kRequestBytes = std::size_t{4} << 20;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

// A file that is read at any place.
class PlacedFile {
   public:
    explicit PlacedFile(const TextRange& range) : name_(range.file), readAt_(range.readAt) {
        if (!readAt_) {
            descriptor_ = ::open(name_.c_str(), O_RDONLY | O_CLOEXEC);
            if (descriptor_ < 0) {
                throw fileError(QV_IO_OPEN, name_);
            }
        }
    }
    ~PlacedFile() {
        if (descriptor_ >= 0) {
            (void)::close(descriptor_);  // only read from
        }
    }
    PlacedFile(const PlacedFile&) = delete;
    PlacedFile& operator=(const PlacedFile&) = delete;

    // That are read at once.
    [[nodiscard]] std::size_t pieceBytes() const { return readAt_ ? kRequestBytes : kPieceBytes; }

    // As many bytes as there are, at most `size`.
    [[nodiscard]] std::string read(uint64_t at, std::size_t size) const {
        if (readAt_) {
            return size == 0 ? std::string() : readAt_(at, size);
        }
        std::string bytes(size, '\0');
        std::size_t done = 0;
        while (done < size) {
            const ssize_t count = ::pread(descriptor_, bytes.data() + done, size - done,
                                          static_cast<off_t>(at + done));
            if (count < 0 && errno != EINTR) {
                throw fileError(QV_IO_READ, name_);
            }
            if (count == 0) {
                break;
            }
            done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        bytes.resize(done);
        return bytes;
    }

    // The place after the first line feed from there on, or the end of the file.
    [[nodiscard]] uint64_t afterLineFeed(uint64_t at) const {
        for (;;) {
            const std::string bytes = read(at, kLineBytes);
            const std::size_t feed = bytes.find('\n');
            if (feed != std::string::npos) {
                return at + feed + 1;
            }
            at += bytes.size();
            if (bytes.size() < kLineBytes) {
                return at;
            }
        }
    }

   private:
    const std::string& name_;
    const ReadAt& readAt_;
    int descriptor_ = -1;
};

// Takes the partitions of a text as ranges of its file.
class Ranges final : public TextConsumer {
   public:
    Ranges(const DocumentReader& reader, uint64_t bytes, uint64_t before)
        : reader_(reader),
          before_(before),
          finder_(reader.form(), bytes),
          partitions_(finder_, [this](const Partition& partition) { add(partition); }) {}

    void feed(std::string_view text) override { partitions_.feed(text); }
    void finish() override { partitions_.finish(); }
    [[nodiscard]] Place end() const override { return {}; }

    // Empty: the text is not to be divided.
    [[nodiscard]] std::vector<TextRange> take() {
        if (!divisible_) {
            return {};
        }
        std::vector<TextRange> ranges;
        std::optional<TextPiece> head;
        for (TextPiece& piece : pieces_) {
            const bool after = !ranges.empty() && (head || piece.kind == Kind::TAIL);
            if (piece.kind == Kind::TAIL) {
                ranges.back().head = head_;
            }
            if (!after) {
                ranges.push_back({reader_.name(), reader_.form(), {}});
            }
            ranges.back().pieces.push_back(piece);
            head.reset();
            if (piece.kind == Kind::HEAD) {
                head = head_ = piece;
            }
        }
        return ranges;
    }

   private:
    using Kind = Partition::Kind;

    void add(const Partition& partition) {
        divisible_ = divisible_ && partition.kind != Kind::REST && partition.kind != Kind::WHOLE;
        const uint64_t begin = before_ + partition.begin.offset;
        if (pieces_.empty() || !more_) {
            const bool ofMember = finder_.ofMember() && partition.kind != Kind::HEAD;
            pieces_.push_back({begin, begin, partition.kind,
                               ofMember ? std::string(finder_.member()) : std::string(),
                               partition.begin.line, partition.begin.column});
        }
        pieces_.back().end += partition.text.size();
        more_ = partition.more;
    }

    const DocumentReader& reader_;
    const uint64_t before_;
    PartitionFinder finder_;
    PartitionReader partitions_;
    std::vector<TextPiece> pieces_;
    std::optional<TextPiece> head_;
    bool more_ = false;
    bool divisible_ = true;
};

// Ranges of a file of JSON Lines by its size alone; empty: it is one.
std::vector<TextRange> linesUnread(const std::string& file, uint64_t bytes, uint64_t size) {
    const uint64_t count = size / std::max<uint64_t>(bytes, 1);
    if (count < 2) {
        return {};
    }
    const uint64_t step = (size - 1) / count + 1;
    std::vector<TextRange> ranges;
    for (uint64_t begin = 0; begin < size; begin += step) {
        const TextPiece piece = {.begin = begin,
                                 .end = std::min(begin + step, size),
                                 .kind = Partition::Kind::MIDDLE,
                                 .line = begin == 0 ? 1 : 0};
        ranges.push_back({file, TextForm::LINES, {piece}});
    }
    return ranges;
}

}  // namespace

ByteSource wholeFile(const std::string& file, const ReadAt& readAt,
                     const std::function<bool()>& stopped) {
    struct Reading {
        ReadAt readAt;
        uint64_t at = 0;
        std::string piece;
    };
    if (!readAt) {
        return stopped ? ByteSource::untilStopped(file, stopped) : ByteSource::file(file);
    }
    const auto pull = [reading = std::make_shared<Reading>(Reading{readAt, 0, {}})] {
        reading->piece = reading->readAt(reading->at, kRequestBytes);
        reading->at += reading->piece.size();
        return std::string_view(reading->piece);
    };
    ByteSource source = ByteSource::pulled(pull, file);
    source.stopWhen(stopped);
    return source;
}

std::vector<TextRange> rangesOf(const std::string& file, uint64_t bytes, const TextOptions& options,
                                const std::function<bool()>& stopped, const ReadAt& readAt,
                                std::optional<uint64_t> size) {
    DocumentReader reader(wholeFile(file, readAt, stopped), options);
    std::vector<TextRange> found;
    const std::optional<int64_t> before = reader.bytesBefore();
    if (before && size && reader.form() == TextForm::LINES) {
        found = linesUnread(file, bytes, *size);
    } else if (before) {
        Ranges ranges(reader, bytes, static_cast<uint64_t>(*before));
        reader.read(ranges);
        found = ranges.take();
    }
    if (found.empty()) {
        found = {{file, reader.form()}};
    }
    for (TextRange& range : found) {
        range.readAt = readAt;
    }
    return found;
}

TextRange withWholeLines(TextRange range) {
    if (range.form == TextForm::LINES && !range.whole()) {
        const PlacedFile file(range);
        const uint64_t first = file.read(0, kMark.size()) == kMark ? kMark.size() : 0;
        TextPiece& piece = range.pieces.front();
        for (uint64_t* const at : {&piece.begin, &piece.end}) {
            *at = *at <= first ? first : *at == UINT64_MAX ? *at : file.afterLineFeed(*at - 1);
        }
    }
    return range;
}

void readPiece(const TextRange& range, const TextPiece& piece,
               const std::function<void(std::string_view bytes, bool more)>& take) {
    const PlacedFile placed(range);
    const std::size_t most = placed.pieceBytes();
    uint64_t at = piece.begin;
    for (bool more = true; more;) {
        const auto size =
            static_cast<std::size_t>(std::min<uint64_t>(most, piece.end > at ? piece.end - at : 0));
        const std::string bytes = placed.read(at, size);
        at += bytes.size();
        more = bytes.size() == most && at < piece.end;
        take(bytes, more);
    }
}

}  // namespace qvej
