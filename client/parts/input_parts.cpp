// See input_parts.h.
#include "client/parts/input_parts.h"

#include "client/error.h"
#include "client/parts/part_sequence.h"
#include "client/text_consumer.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kEndBytes = std::size_t{1} << 16;

// Of the first and the last bytes of a file; 0: it cannot be read.
std::size_t checksumOf(const std::string& name, off_t size) {
    std::ifstream file(name, std::ios::binary);
    std::string bytes(std::min<std::size_t>(static_cast<std::size_t>(size), kEndBytes), '\0');
    const auto count = static_cast<std::streamsize>(bytes.size());
    std::size_t sum = 0;
    for (const off_t at : {off_t{0}, size - static_cast<off_t>(count)}) {
        if (!file.seekg(at) || !file.read(bytes.data(), count)) {
            return 0;
        }
        sum = sum * 31 + std::hash<std::string_view>()(bytes);
    }
    return sum;
}

// What changes with a file, or nearly always does.
struct FileState {
    bool regular = false;
    off_t size = 0;
    timespec changed = {};
    ino_t inode = 0;
    std::size_t checksum = 0;  // of its ends

    explicit FileState(const std::string& file) {
        struct stat found = {};
        if (file != "-" && ::stat(file.c_str(), &found) == 0) {
            regular = S_ISREG(found.st_mode);
            size = found.st_size;
            changed = found.st_mtim;
            inode = found.st_ino;
            checksum = regular ? checksumOf(file, size) : 0;
        }
    }
    friend bool operator==(const FileState& a, const FileState& b) {
        return a.regular == b.regular && a.size == b.size && a.inode == b.inode &&
               a.checksum == b.checksum && a.changed.tv_sec == b.changed.tv_sec &&
               a.changed.tv_nsec == b.changed.tv_nsec;
    }
};

void checkUnchanged(const InputList& inputs, const std::vector<FileState>& states) {
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (FileState(inputs.files[i]) != states[i]) {
            throw Error(QV_IO_CHANGED, "the file has changed while it was read",
                        Place{inputs.files[i]});
        }
    }
}

// Gives a text out in pieces as they come.
class Pieces final : public TextConsumer {
   public:
    Pieces(std::size_t text, const DocumentReader& reader, const TakePart& take)
        : text_(text), reader_(reader), take_(take) {}
    void feed(std::string_view text) override { give(text, true); }
    void finish() override { give({}, false); }
    [[nodiscard]] Place end() const override { return {}; }

   private:
    void give(std::string_view text, bool more) {
        Partition piece;
        piece.text = text;
        piece.more = more;
        take_({text_, reader_.name(), reader_.form(), std::move(piece), {}});
    }

    const std::size_t text_;
    const DocumentReader& reader_;
    const TakePart& take_;
};

// Gives the text to a PartitionReader.
class Divider final : public TextConsumer {
   public:
    explicit Divider(PartitionReader& to) : to_(to) {}
    void feed(std::string_view text) override { to_.feed(text); }
    void finish() override { to_.finish(); }
    [[nodiscard]] Place end() const override { return {}; }

   private:
    PartitionReader& to_;
};

}  // namespace

std::function<void()> checkOfChanges(const InputList& inputs) {
    std::vector<FileState> states;
    for (const std::string& file : inputs.files) {
        states.emplace_back(file);
    }
    return [=] { checkUnchanged(inputs, states); };
}

ReadParts partsOf(const InputList& inputs, const TextOptions& options, InputsReader::Open open,
                  std::function<void()> check, std::function<void(std::string_view)> observer) {
    return [=](uint64_t bytes, const TakePart& take) {
        if (check) {
            check();
        }
        InputsReader texts(inputs, options, open);
        texts.each([&](std::size_t text, DocumentReader& reader) {
            if (bytes == kUndivided) {
                Pieces pieces(text, reader, take);
                reader.read(pieces, observer);
                return;
            }
            if (reader.recoded()) {
                throw Indivisible();
            }
            PartitionFinder finder(reader.form(), bytes);
            PartitionReader partitions(finder, [&](Partition partition) {
                const bool ofMember = finder.ofMember() && partition.kind != Partition::Kind::HEAD;
                take({text, reader.name(), reader.form(), std::move(partition),
                      ofMember ? std::string(finder.member()) : std::string()});
            });
            Divider divider(partitions);
            reader.read(divider, observer);
        });
        if (check) {
            check();
        }
    };
}

std::optional<uint64_t> rereadableBytes(const InputList& inputs) {
    uint64_t bytes = 0;
    for (const std::string& file : inputs.files) {
        struct stat found = {};
        if (file == "-" || ::stat(file.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) {
            return std::nullopt;
        }
        bytes += static_cast<uint64_t>(found.st_size);
    }
    return bytes;
}

}  // namespace qvej
