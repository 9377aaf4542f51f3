// Compressed files that are unpacked ahead.
#include "client/input/read_ahead.h"

#include "client/error.h"

#include <gtest/gtest.h>
#include <zstd.h>

#include <thread>

namespace {

std::string packed(const std::string& text) {
    std::string out(::ZSTD_compressBound(text.size()), '\0');
    out.resize(::ZSTD_compress(out.data(), out.size(), text.data(), text.size(), 1));
    return out;
}

// Text of so many mebibytes that does not repeat.
std::string someText(std::size_t mebibytes) {
    std::string text;
    for (std::size_t i = 0; text.size() < mebibytes << 20; ++i) {
        text += std::to_string(i * 7919) + ",";
    }
    return text;
}

// What comes of bytes that are given in pieces, and the threads that gave them.
struct Taken {
    std::string text;
    std::string failure;
    bool elsewhere = false;  // another thread than ours read, too
};

Taken take(const std::string& bytes, bool isFile, std::size_t most = SIZE_MAX) {
    Taken taken;
    const std::thread::id here = std::this_thread::get_id();
    std::size_t at = 0;
    const auto pull = [&]() -> std::string_view {
        taken.elsewhere |= std::this_thread::get_id() != here;
        const std::string_view piece = std::string_view(bytes).substr(at, 100000);
        at += piece.size();
        return piece;
    };
    try {
        qvej::ReadAhead reader(qvej::Unpacker(qvej::ByteSource::pulled(pull, "document", isFile)));
        for (std::string_view piece = reader.next(); !piece.empty() && taken.text.size() < most;
             piece = reader.next()) {
            taken.text += piece;
        }
    } catch (const qvej::Error& error) {
        taken.failure = error.what();
    }
    return taken;
}

TEST(ReadAhead, GivesTheSameTextWhoeverUnpacksIt) {
    const std::string text = someText(9);
    const std::string small = "[1]";
    const struct {
        const char* name;
        std::string bytes;
        bool isFile, elsewhere;
        const std::string& expected;
    } kCases[] = {
        {"packed file", packed(text), true, true, text},
        {"packed pipe", packed(text), false, false, text},
        {"file", text, true, false, text},
        {"empty", "", true, false, ""},
        {"small", packed(small), true, false, small},
    };
    for (const auto& c : kCases) {
        const Taken taken = take(c.bytes, c.isFile);
        EXPECT_TRUE(taken.text == c.expected) << c.name;
        EXPECT_EQ(taken.elsewhere, c.elsewhere) << c.name;
        EXPECT_EQ(taken.failure, "") << c.name;
    }
}

TEST(ReadAhead, TellsDamageAfterWhatCameBeforeIt) {
    const std::string text = someText(6);
    const std::string bytes = packed(text);
    const Taken taken = take(bytes.substr(0, bytes.size() - 10), true);
    EXPECT_EQ(taken.failure, "the Zstandard data end too soon");
    EXPECT_GT(taken.text.size(), std::size_t{4} << 20);
    EXPECT_TRUE(text.starts_with(taken.text));
}

TEST(ReadAhead, EndsWhenNobodyTakesTheRest) {
    EXPECT_LT(take(packed(someText(40)), true, 1).text.size(), std::size_t{2} << 20);
}

}  // namespace
