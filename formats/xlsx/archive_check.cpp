// See archive_check.h.  The end of an archive, numbers in little endian:
//
//     for each file      "PK\1\2" ... 24: size unpacked, 28, 30, 32: lengths of its name, of extra
//                        bytes and of a comment ... 46: name, extra bytes, comment
//     22 bytes, the last "PK\5\6" ... 10: count of files, 12: bytes of the list above, 16: its
//     offset
#include "formats/xlsx/archive_check.h"

#include "client/error.h"

#include <cstddef>
#include <fstream>
#include <string_view>

namespace qvej {

namespace {

constexpr std::size_t kEnd = 22;
constexpr std::size_t kEntry = 46;

class Bytes {
   public:
    explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}

    // Of 2 or 4 bytes; 0 outside.
    [[nodiscard]] uint64_t number(std::size_t at, std::size_t size) const {
        uint64_t number = 0;
        for (std::size_t i = size; i != 0 && at + size <= bytes_.size(); --i) {
            number = number << 8 | static_cast<uint8_t>(bytes_[at + i - 1]);
        }
        return number;
    }
    [[nodiscard]] bool has(std::size_t at, std::string_view text) const {
        return at <= bytes_.size() && std::string_view(bytes_).substr(at, text.size()) == text;
    }
    [[nodiscard]] std::string text(std::size_t at, std::size_t size) const {
        return at <= bytes_.size() ? bytes_.substr(at, size) : std::string();
    }

   private:
    std::string bytes_;
};

Bytes bytesOf(std::ifstream& in, uint64_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    in.seekg(static_cast<std::streamoff>(offset));
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return Bytes(std::move(bytes));
}

// The files that it lists; none when its end is not there.
std::map<std::string, uint64_t> filesOf(const std::string& path) {
    std::map<std::string, uint64_t> files;
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    const auto size = static_cast<uint64_t>(in.tellg());
    if (!in || size < kEnd) {
        return files;
    }
    const Bytes end = bytesOf(in, size - kEnd, kEnd);
    const uint64_t listSize = end.number(12, 4);
    const uint64_t list = end.number(16, 4);
    if (!end.has(0, "PK\5\6") || list + listSize + kEnd != size) {
        return files;
    }
    const Bytes entries = bytesOf(in, list, listSize);
    for (std::size_t at = 0; entries.has(at, "PK\1\2");) {
        const std::size_t name = entries.number(at + 28, 2);
        files[entries.text(at + kEntry, name)] = entries.number(at + 24, 4);
        at += kEntry + name + entries.number(at + 30, 2) + entries.number(at + 32, 2);
    }
    return files;
}

}  // namespace

void checkArchive(const std::string& path, const std::map<std::string, uint64_t>& least,
                  const std::string& shown) {
    const std::map<std::string, uint64_t> files = filesOf(path);
    for (const auto& [name, size] : least) {
        const auto found = files.find(name);
        if (found == files.end() || found->second < size) {
            throw Error(
                QV_IO_FULL,
                "could not be written whole: the disk is full, or a sheet has more than 4 GB",
                shown);
        }
    }
}

}  // namespace qvej
