// See input_parts.h.
#include "client/parts/input_parts.h"

#include "client/error.h"
#include "client/parts/part_sequence.h"
#include "client/text_consumer.h"

#include <optional>
#include <sys/stat.h>
#include <utility>

namespace qvej {
namespace {

// What changes with a file, or nearly always does.
struct FileState {
    bool regular = false;
    off_t size = 0;
    timespec changed = {};
    ino_t inode = 0;

    explicit FileState(const std::string& file) {
        struct stat found = {};
        if (file != "-" && ::stat(file.c_str(), &found) == 0) {
            regular = S_ISREG(found.st_mode);
            size = found.st_size;
            changed = found.st_mtim;
            inode = found.st_ino;
        }
    }
    friend bool operator==(const FileState& a, const FileState& b) {
        return a.regular == b.regular && a.size == b.size && a.inode == b.inode &&
               a.changed.tv_sec == b.changed.tv_sec && a.changed.tv_nsec == b.changed.tv_nsec;
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

ReadParts partsOf(const InputList& inputs, const TextOptions& options, InputsReader::Open open,
                  std::function<void(std::string_view)> observer) {
    std::vector<FileState> states(inputs.files.begin(), inputs.files.end());
    return [=](uint64_t bytes, const TakePart& take) {
        checkUnchanged(inputs, states);
        InputsReader texts(inputs, options, open);
        texts.each([&](std::size_t text, DocumentReader& reader) {
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
        checkUnchanged(inputs, states);
    };
}

std::optional<uint64_t> rereadableBytes(const InputList& inputs) {
    uint64_t bytes = 0;
    for (const std::string& file : inputs.files) {
        const FileState state(file);
        if (!state.regular) {
            return std::nullopt;
        }
        bytes += static_cast<uint64_t>(state.size);
    }
    return bytes;
}

}  // namespace qvej
