// A text in any encoding, on its way to UTF-8.
//
// Tested by tests/client/recoder_test.cpp and tests/tool/golden/encodings.t
#pragma once

#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// The encoding of a JSON text by its first four bytes: a byte order mark, else where bytes are
// zero, else UTF-8.
std::string guessEncoding(std::string_view start);

// Converts a text, piece by piece, and knows where in it each converted byte came from.
class Recoder {
   public:
    enum class Invalid { STOPS, IS_REPLACED };  // by U+FFFD

    // `encoding`: any name that ICU knows.  For UTF-16 and UTF-32 without a byte order, `start`,
    // the first bytes of the text, tells it.  Throws Error: unknown encoding.
    Recoder(const std::string& encoding, std::string_view start, Invalid invalid);

    // ICU's own name of the encoding, and for Unicode that of guessEncoding.
    [[nodiscard]] std::string encoding() const;

    // Converts the first bytes of `input` and moves it past them.  An empty `input` ends the
    // text.  The result lives until the next call; a byte order mark is not in it.
    std::string_view convert(std::string_view& input);

    // The bytes after what was converted are wrong in the encoding.
    [[nodiscard]] bool broken() const { return broken_; }

    // The column, in units of the encoding (bytes, but 16 or 32 bits in UTF-16 and UTF-32), of what
    // became byte `offset` (from 0) of all that was converted.  It must be in the last piece, end
    // included, or before it with nothing but ASCII between.
    [[nodiscard]] int64_t columnOf(int64_t offset) const;

    // How many bytes of the input stand before that byte, whose column is known.  It may be as far
    // back as the line goes that the last piece begins in.
    [[nodiscard]] int64_t inputOf(int64_t offset, int64_t column) const;

   private:
    struct Close {
        void operator()(UConverter* converter) const;
    };

    void decode(std::string_view& input);
    UErrorCode decodeSome(const char*& source, const char* end, bool last);
    void encode();
    [[nodiscard]] int64_t startOfLine(int64_t offset) const;
    [[nodiscard]] int64_t placeOf(std::size_t textAt) const;  // in the input
    [[nodiscard]] std::size_t unitOf(std::size_t textAt) const;

    std::unique_ptr<UConverter, Close> converter_;
    Invalid invalid_;
    int64_t unitBytes_;
    bool broken_ = false;
    bool begun_ = false;
    char16_t half_ = 0;  // of a surrogate pair whose other half comes in the next piece; 0: none
    int64_t halfAt_ = 0;

    // The last piece: UTF-16, where in the input each unit of it came from, and UTF-8.
    std::vector<char16_t> units_;
    std::vector<int32_t> origins_;  // from inputBase_
    std::size_t first_ = 0;         // 1 after a byte order mark
    std::size_t unitCount_ = 0;
    std::vector<char> bytes_;
    std::string_view text_;  // in bytes_
    int64_t inputBase_ = 0;  // where its first byte stands in the whole input
    int64_t inputEnd_ = 0;   // and where the next piece begins
    int64_t textEnd_ = 0;    // where what follows text_ begins: before inputEnd_ when that is the
                             // beginning of a character, or a mistake
    int64_t textBase_ = 0;   // where text_ begins in all that was converted
    int64_t lineStart_ = 0;  // where the line that text_ begins in starts, in the whole input

    // The place in text_ that was asked for last, since questions come in order.
    mutable std::size_t knownText_ = 0;
    mutable std::size_t knownUnit_ = 0;
};

}  // namespace qvej
