// What is compressed reads back, by the libraries and as one text, wherever it was ended in
// between.
#include "formats/packing.h"

#include <gtest/gtest.h>
#include <zlib.h>
#include <zstd.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

class Kept final : public qvej::Target {
   public:
    explicit Kept(std::string& bytes) : bytes_(bytes) {}
    void write(const char* text, std::size_t size) override { bytes_.append(text, size); }

   private:
    std::string& bytes_;
};

// The text of all members, and how many there are.
struct Unpacked {
    std::string text;
    std::size_t members = 0;
};

Unpacked gunzip(std::string bytes) {
    Unpacked unpacked;
    z_stream stream = {};
    stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    while (stream.avail_in != 0) {
        EXPECT_EQ(::inflateInit2(&stream, 15 + 16), Z_OK);
        int status = Z_OK;
        while (status == Z_OK) {
            char room[1 << 15];
            stream.next_out = reinterpret_cast<Bytef*>(room);
            stream.avail_out = sizeof room;
            status = ::inflate(&stream, Z_NO_FLUSH);
            unpacked.text.append(room, sizeof room - stream.avail_out);
        }
        (void)::inflateEnd(&stream);
        if (status != Z_STREAM_END) {
            ADD_FAILURE() << "a member ends too soon: " << status;
            break;
        }
        ++unpacked.members;
    }
    return unpacked;
}

Unpacked unzstd(const std::string& bytes) {
    Unpacked unpacked;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t size = ::ZSTD_findFrameCompressedSize(&bytes[at], bytes.size() - at);
        if (::ZSTD_isError(size) != 0) {
            ADD_FAILURE() << ::ZSTD_getErrorName(size);
            break;
        }
        std::string text(std::size_t{1} << 20, '\0');
        const std::size_t length = ::ZSTD_decompress(text.data(), text.size(), &bytes[at], size);
        EXPECT_EQ(::ZSTD_isError(length), 0U) << ::ZSTD_getErrorName(length);
        unpacked.text += text.substr(0, length);
        ++unpacked.members;
        at += size;
    }
    return unpacked;
}

TEST(Packing, ReadsBackAsOneTextWhereverItWasReleased) {
    // Does not get smaller, so that its last block fills the room for output more than once.
    std::string large;
    for (uint32_t number = 1; large.size() < 230000; number = number * 1664525 + 1013904223) {
        large += static_cast<char>(number >> 24);
    }
    const struct {
        const char* name;
        std::vector<std::string> pieces;  // "" releases
        std::size_t members;
    } kCases[] = {
        {"nothing", {""}, 1},
        {"one piece", {"a", ""}, 1},
        {"pieces", {"a", "b", large, "c", ""}, 1},
        {"released twice", {"a", "", ""}, 1},
        {"released in between", {"a", "", "b", "c", "", large, ""}, 3},
    };
    for (const auto& c : kCases) {
        for (const qvej::Packing packing : {qvej::Packing::GZIP, qvej::Packing::ZSTD}) {
            SCOPED_TRACE(std::string(c.name) + std::string(qvej::extensionOf(packing)));
            std::string bytes;
            std::string expected;
            const std::unique_ptr<qvej::Target> target =
                qvej::packed(std::make_unique<Kept>(bytes), packing);
            for (const std::string& piece : c.pieces) {
                if (piece.empty()) {
                    target->release();
                    EXPECT_EQ(target->held(), 0U);
                } else {
                    target->write(piece.data(), piece.size());
                    EXPECT_GT(target->held(), 0U);
                    expected += piece;
                }
            }
            const Unpacked unpacked =
                packing == qvej::Packing::GZIP ? gunzip(bytes) : unzstd(bytes);
            EXPECT_TRUE(unpacked.text == expected);
            EXPECT_EQ(unpacked.members, c.members);
        }
    }
}

}  // namespace
