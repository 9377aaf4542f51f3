// See archive_check.h.  An archive, numbers in little endian:
//
//     for each file      "PK\3\4" ... 26, 28: lengths of its name and of extra bytes ... 30: both
//                        and then its deflated text
//     again for each     "PK\1\2" ... 20, 24: size packed and unpacked, 28, 30, 32: lengths of its
//                        name, of extra bytes and of a comment, 42: offset of the above, 46: all
//                        three
//     22 bytes, the last "PK\5\6" ... 12: bytes of the list, 16: its offset
#include "formats/xlsx/archive_check.h"

#include "client/error.h"

#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace qvej {

namespace {

constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kHeadSize = 30;

struct Entry {
    std::string name;
    uint64_t packed, unpacked, offset;
};

// 2 or 4 bytes of a text; 0 outside.
uint64_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
    uint64_t number = 0;
    for (std::size_t i = size; i != 0 && at + size <= bytes.size(); --i) {
        number = number << 8 | static_cast<uint8_t>(bytes[at + i - 1]);
    }
    return number;
}

std::string bytesAt(std::ifstream& in, uint64_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    in.clear();
    in.seekg(static_cast<std::streamoff>(offset));
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
    return bytes;
}

// The files that the archive lists; none when its end is not there.
std::vector<Entry> entriesOf(std::ifstream& in) {
    std::vector<Entry> entries;
    in.seekg(0, std::ios::end);
    const auto size = static_cast<uint64_t>(in.tellg());
    if (!in || size < kEndSize) {
        return entries;
    }
    const std::string end = bytesAt(in, size - kEndSize, kEndSize);
    const uint64_t listSize = numberAt(end, 12, 4);
    const uint64_t list = numberAt(end, 16, 4);
    if (!end.starts_with("PK\5\6") || list + listSize + kEndSize != size) {
        return entries;
    }
    const std::string bytes = bytesAt(in, list, listSize);
    for (std::string_view rest = bytes; rest.starts_with("PK\1\2") && rest.size() > kEntrySize;) {
        const std::size_t nameSize = numberAt(rest, 28, 2);
        entries.push_back({std::string(rest.substr(kEntrySize, nameSize)), numberAt(rest, 20, 4),
                           numberAt(rest, 24, 4), numberAt(rest, 42, 4)});
        rest.remove_prefix(std::min(
            rest.size(), kEntrySize + nameSize + numberAt(rest, 30, 2) + numberAt(rest, 32, 2)));
    }
    return entries;
}

// Where a text begins and ends.
struct Ends {
    std::string first, last;
    uint64_t size = 0;

    void take(std::string_view text) {
        constexpr std::size_t kKept = 512;  // bytes
        size += text.size();
        first.append(text.substr(0, kKept - std::min(kKept, first.size())));
        last.append(text.substr(text.size() - std::min(kKept, text.size())));
        last.erase(0, last.size() - std::min(kKept, last.size()));
    }
};

// Nothing: the text is damaged.
std::optional<Ends> unpacked(std::ifstream& in, const Entry& entry) {
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    const std::string head = bytesAt(in, entry.offset, kHeadSize);
    uint64_t at = entry.offset + kHeadSize + numberAt(head, 26, 2) + numberAt(head, 28, 2);
    const uint64_t end = at + entry.packed;
    z_stream stream = {};
    if (::inflateInit2(&stream, -15) != Z_OK) {  // without a header
        throw Error(QV_NOMEM);
    }
    Ends ends;
    int status = Z_OK;
    std::string room(kPiece, '\0');
    while (status == Z_OK && at < end) {
        std::string piece = bytesAt(in, at, std::min<uint64_t>(kPiece, end - at));
        at += kPiece;
        stream.next_in = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_in = static_cast<uInt>(piece.size());
        do {
            stream.next_out = reinterpret_cast<Bytef*>(room.data());
            stream.avail_out = static_cast<uInt>(room.size());
            status = ::inflate(&stream, Z_NO_FLUSH);
            ends.take(std::string_view(room).substr(0, room.size() - stream.avail_out));
        } while (status == Z_OK && stream.avail_out == 0);
        status = status == Z_BUF_ERROR ? Z_OK : status;  // the piece was at its end
    }
    (void)::inflateEnd(&stream);
    return status == Z_STREAM_END ? std::optional(std::move(ends)) : std::nullopt;
}

// Does the text end with the end of the element that it begins with, after the line of XML itself?
bool isWhole(const Ends& ends) {
    const std::size_t begin = ends.first.find('<', ends.first.find("?>") + 1);
    if (begin == std::string::npos) {
        return false;
    }
    const std::string name =
        ends.first.substr(begin + 1, ends.first.find_first_of(" />\r\n", begin + 1) - begin - 1);
    const std::string end = ends.last.substr(0, ends.last.find_last_not_of("\r\n") + 1);
    return end.ends_with("</" + name + ">");
}

}  // namespace

void checkArchive(const std::string& path, const std::map<std::string, uint64_t>& least,
                  const std::string& shown) {
    std::ifstream in(path, std::ios::binary);
    std::size_t found = 0;
    bool whole = true;
    for (const Entry& entry : entriesOf(in)) {
        const std::optional<Ends> ends = unpacked(in, entry);
        whole &= ends && ends->size == entry.unpacked && isWhole(*ends);
        if (const auto known = least.find(entry.name); known != least.end()) {
            ++found;
            whole &= entry.unpacked >= known->second;
        }
    }
    if (!whole || found != least.size()) {
        throw Error(QV_IO_FULL,
                    "could not be written whole: the disk is full, or a sheet has more than 4 GB",
                    shown);
    }
}

}  // namespace qvej
